#include "support/test_program.h"

#include <QProcess>
#include <QtTest>

namespace kept_ready_test {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The names of all that is linked into the program, one a line.
QString namesInProgram()
{
    QProcess names;
    names.start(QStringLiteral(KELM_NM), {u"-C"_s, QStringLiteral(KELM_PROGRAM)});
    if (!names.waitForFinished(60'000) || names.exitCode() != 0) {
        qWarning("%s", names.readAllStandardError().constData());
        return {};
    }
    return QString::fromUtf8(names.readAllStandardOutput());
}

} // namespace

/// What is kept ready is not made by the program: its constructors are not even in it.
class KeptReadyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theProgramCannotMakeOne_data();
    void theProgramCannotMakeOne();
    void liveClassesAreThere_data();
    void liveClassesAreThere();

private:
    bool hasConstructorOf(const QString& name) const { return names_.contains(u"kelm::%1::%1("_s.arg(name)); }

    QString names_;
};

void KeptReadyTest::initTestCase()
{
    names_ = namesInProgram();
    QVERIFY(!names_.isEmpty());
}

void KeptReadyTest::theProgramCannotMakeOne_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name :
         {"AutoCompleteManager", "AutoCompleteView", "CompletionRow", "EditorPane", "KelmEditorContainer",
          "KelmTextView", "KeyboardShortcutManager", "LineNumberView", "MinimapNSView", "MultiCursorManager",
          "PreferencesService", "SplitEditorManager", "TabManager", "TerminalManager"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
    // It has no constructor in a file of its own; its commands are what would be called.
    QTest::newRow("SelectionManager") << u"SelectionManager::selectLine"_s;
}

void KeptReadyTest::theProgramCannotMakeOne()
{
    QFETCH(QString, name);
    if (name.contains(u"::")) {
        QVERIFY(!names_.contains(u"kelm::%1("_s.arg(name)));
    } else {
        QVERIFY(!hasConstructorOf(name));
    }
}

void KeptReadyTest::liveClassesAreThere_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"EditorContainerView", "EditorMinimapView", "SimpleLineNumberView", "TextView",
                             "CodeFoldingManager", "TerminalSession"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void KeptReadyTest::liveClassesAreThere()
{
    QFETCH(QString, name);
    QVERIFY(hasConstructorOf(name));
}

const kelm::test::Registered<KeptReadyTest> registered;

} // namespace kept_ready_test

#include "kept_ready_test.moc"
