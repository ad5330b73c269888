#include "app/command_line/command_options.h"
#include "app/command_line/command_texts.h"
#include "support/test_program.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace command_texts_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

QString inPackaging(const QString& name)
{
    return QStringLiteral(KELM_SOURCE_ROOT "/packaging/") + name;
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What the files of the package say is what the table says; KELM_WRITE_COMMAND_TEXTS=1 writes it there.
bool isWhatTheFileSays(const QString& path, const QByteArray& text)
{
    if (qEnvironmentVariableIsSet("KELM_WRITE_COMMAND_TEXTS")) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    }
    return read(path) == text;
}

/// A section of the manual page in the place of the one of its name.
QByteArray withSection(const QByteArray& page, const QByteArray& section)
{
    const QByteArray heading = section.first(section.indexOf('\n') + 1);
    const qsizetype start = page.indexOf(heading);
    const qsizetype end = page.indexOf("\n.SH ", start) + 1;
    return start < 0 || end == 0 ? QByteArray() : page.first(start) + section + page.sliced(end);
}

struct Shell
{
    QString program;
    QStringList arguments;
};

} // namespace

class CommandTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHelpNamesEachOption();
    void theHelpFitsATerminal();
    void theManualPageSaysTheSame();
    void theCompletionsAreThoseOfTheTable_data();
    void theCompletionsAreThoseOfTheTable();
    void bashCompletesOptions();
    void shellsTakeTheirFiles_data();
    void shellsTakeTheirFiles();
};

void CommandTextsTest::theHelpNamesEachOption()
{
    for (const CommandOption& option : commandOptions) {
        QVERIFY(helpText().contains("\n  " + QByteArray(option.name.data(), option.name.size())));
    }
    QCOMPARE(versionText("1.2.3"), "KelmWright 1.2.3\n");
}

void CommandTextsTest::theHelpFitsATerminal()
{
    for (const QByteArray& line : helpText().split('\n')) {
        QVERIFY2(QString::fromUtf8(line).size() <= 80, line.constData());
    }
}

void CommandTextsTest::theManualPageSaysTheSame()
{
    const QString path = inPackaging(u"kelmwright.1.in"_s);
    const QByteArray page = withSection(withSection(read(path), manualOptions()), manualExitStatuses());
    QVERIFY(!page.isEmpty());
    QVERIFY(isWhatTheFileSays(path, page));
}

void CommandTextsTest::theCompletionsAreThoseOfTheTable_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("bash") << u"completions/kelmwright.bash"_s << bashCompletion();
    QTest::newRow("zsh") << u"completions/_kelmwright"_s << zshCompletion();
    QTest::newRow("fish") << u"completions/kelmwright.fish"_s << fishCompletion();
}

void CommandTextsTest::theCompletionsAreThoseOfTheTable()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, text);
    QVERIFY(isWhatTheFileSays(inPackaging(file), text));
}

void CommandTextsTest::bashCompletesOptions()
{
    const QString script = u"source \"$1\"; shift; COMP_WORDS=(kelmwright \"$@\"); COMP_CWORD=$#; "
                           "_kelmwright; echo \"${COMPREPLY[*]}\""_s;
    const auto complete = [&](const QStringList& words) {
        QProcess bash;
        bash.start(u"bash"_s,
                   QStringList{u"-c"_s, script, u"-"_s, inPackaging(u"completions/kelmwright.bash"_s)} + words);
        return bash.waitForFinished() ? bash.readAll().trimmed() : QByteArray("bash did not end");
    };
    QCOMPARE(complete({u"--w"_s}), "--wait");
    QCOMPARE(complete({u"--"_s}), "--line --wait --new-file --open-folder --help --version");
    QCOMPARE(complete({u"--line"_s, u"-"_s}), "");
    QCOMPARE(complete({u"--"_s, u"--w"_s}), "");
    QCOMPARE(complete({u"a"_s}), "");
}

void CommandTextsTest::shellsTakeTheirFiles_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("bash") << u"bash"_s << QStringList{u"-n"_s, inPackaging(u"completions/kelmwright.bash"_s)};
    QTest::newRow("zsh") << u"zsh"_s << QStringList{u"-n"_s, inPackaging(u"completions/_kelmwright"_s)};
    QTest::newRow("fish") << u"fish"_s << QStringList{u"-n"_s, inPackaging(u"completions/kelmwright.fish"_s)};
    QTest::newRow("man") << u"man"_s
                         << QStringList{u"--warnings"_s, u"-E"_s, u"UTF-8"_s, u"-l"_s,
                                        inPackaging(u"kelmwright.1.in"_s)};
}

void CommandTextsTest::shellsTakeTheirFiles()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        QSKIP("it is not there");
    }
    QProcess process;
    process.start(program, arguments);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardError(), "");
}

const kelm::test::Registered<CommandTextsTest> registered;

} // namespace command_texts_test

#include "command_texts_test.moc"
