#include "learning/export_line.h"
#include "support/test_program.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace export_line_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class ExportLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreOneWord_data();
    void linesAreOneWord();
    void shellsRunNoPartOfAKey_data();
    void shellsRunNoPartOfAKey();
};

void ExportLineTest::linesAreOneWord_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("line");
    QTest::newRow("a name") << u"OPENAI_API_KEY"_s << u"export OPENAI_API_KEY=..."_s;
    QTest::newRow("digits") << u"key2"_s << u"export key2=..."_s;
    QTest::newRow("a blank before") << u" B"_s << u"export ' B=...'"_s;
    QTest::newRow("a command") << u"A; touch x #"_s << u"export 'A; touch x #=...'"_s;
    QTest::newRow("a substitution") << u"$(touch x)"_s << u"export '$(touch x)=...'"_s;
    QTest::newRow("a quote") << u"A' B"_s << u"export 'A'\\'' B=...'"_s;
    QTest::newRow("Korean") << u"키"_s << u"export '키=...'"_s;
    QTest::newRow("a line feed") << u"A\ntouch x"_s << u"export $'A\\u000atouch x=...'"_s;
    QTest::newRow("an interrupt and a quote") << u"A\u0003'\\\n"_s << u"export $'A\\u0003\\u0027\\u005c\\u000a=...'"_s;
    QTest::newRow("a control of the upper half") << u"A\u009b"_s << u"export $'A\\u009b=...'"_s;
}

void ExportLineTest::linesAreOneWord()
{
    QFETCH(QString, key);
    QFETCH(QString, line);
    QCOMPARE(exportLine(key), line);
}

void ExportLineTest::shellsRunNoPartOfAKey_data()
{
    QTest::addColumn<QString>("key");
    int number = 0;
    for (const QString& key :
         {u"A; touch x; B"_s, u"A`touch x`"_s, u"$(touch x)"_s, u"'; touch x; '"_s, u"A\ntouch x\n"_s,
          u"A'\ntouch x\n'"_s, u"\\'; touch x #"_s, u"A\\'\n; touch x\n"_s, u"A & touch x"_s, u"A=1 touch x"_s,
          u"\"; touch x; \""_s, u"A > x"_s, u"A';touch x;''\n"_s, u"A';touch x;'''\n"_s, u"A\\';touch x;'''\n"_s}) {
        QTest::addRow("%d", ++number) << key;
    }
}

void ExportLineTest::shellsRunNoPartOfAKey()
{
    QFETCH(QString, key);
    for (const QString& name : {u"bash"_s, u"zsh"_s, u"sh"_s}) {
        const QString shell = QStandardPaths::findExecutable(name);
        if (shell.isEmpty()) {
            continue;
        }
        const QTemporaryDir folder;
        QProcess process;
        process.setWorkingDirectory(folder.path());
        process.start(shell, {u"-c"_s, exportLine(key)});
        QVERIFY(process.waitForFinished());
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList());
    }
}

const kelm::test::Registered<ExportLineTest> registered;

} // namespace export_line_test

#include "export_line_test.moc"
