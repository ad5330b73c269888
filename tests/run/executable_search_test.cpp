#include "run/executable_search.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace executable_search_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

/// Answers each command with what the test has put down, and keeps the commands.
class FakeRunner final : public ProcessRunner
{
public:
    ProcessResult run(const ProcessCommand& command) override
    {
        commands.append(command);
        return answer;
    }

    ProcessResult answer{.exit = {1, false}};
    QList<ProcessCommand> commands;
};

void makeFile(const QString& path, QFile::Permissions permissions)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.setPermissions(permissions));
}

constexpr QFile::Permissions executable = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeUser;
constexpr QFile::Permissions ordinary = QFile::ReadOwner | QFile::WriteOwner;

} // namespace

class ExecutableSearchTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usualFoldersStandInTheirOrder();
    void firstFolderThatHasItWins();
    void whatIsNoExecutableFileIsPassedOver();
    void whichIsAskedLast();
    void answerOfWhich_data();
    void answerOfWhich();
    void nothingIsRemembered();
    void realWhichSearchesThePath();
};

void ExecutableSearchTest::usualFoldersStandInTheirOrder()
{
    QCOMPARE(ExecutableSearch::usualFolders(), (QStringList{u"/usr/local/bin"_s, u"/usr/bin"_s, u"/opt/homebrew/bin"_s,
                                                            u"/opt/local/bin"_s, QDir::homePath() + u"/.local/bin"_s}));
}

void ExecutableSearchTest::firstFolderThatHasItWins()
{
    QTemporaryDir first;
    QTemporaryDir second;
    FakeRunner runner;
    const ExecutableSearch search({first.path(), second.path()}, u"/which"_s, runner);
    makeFile(second.filePath(u"tool"_s), executable);
    QCOMPARE(search.find(u"tool"_s), second.filePath(u"tool"_s));
    makeFile(first.filePath(u"tool"_s), executable);
    QCOMPARE(search.find(u"tool"_s), first.filePath(u"tool"_s));
    QVERIFY(runner.commands.isEmpty());
}

void ExecutableSearchTest::whatIsNoExecutableFileIsPassedOver()
{
    QTemporaryDir first;
    QTemporaryDir second;
    QTemporaryDir third;
    FakeRunner runner;
    const ExecutableSearch search({first.path(), second.path(), third.path()}, u"/which"_s, runner);
    makeFile(first.filePath(u"tool"_s), ordinary);
    QVERIFY(QDir(second.path()).mkdir(u"tool"_s));
    makeFile(third.filePath(u"tool"_s), executable);
    QCOMPARE(search.find(u"tool"_s), third.filePath(u"tool"_s));
}

void ExecutableSearchTest::whichIsAskedLast()
{
    QTemporaryDir folder;
    FakeRunner runner;
    runner.answer = {.exit = {0, false}, .standardOutput = "/found/tool\n"};
    QCOMPARE(ExecutableSearch({folder.path()}, u"/which"_s, runner).find(u"tool"_s), u"/found/tool"_s);
    QCOMPARE(runner.commands.size(), 1);
    QCOMPARE(runner.commands[0].program, u"/which"_s);
    QCOMPARE(runner.commands[0].arguments, QStringList{u"tool"_s});
    QVERIFY(!runner.commands[0].environment);
}

void ExecutableSearchTest::answerOfWhich_data()
{
    QTest::addColumn<ProcessResult>("answer");
    QTest::addColumn<std::optional<QString>>("path");
    const auto row = [](const char* name, const ProcessResult& answer, const std::optional<QString>& path) {
        QTest::newRow(name) << answer << path;
    };
    row("trimmed at both ends", {.standardOutput = " \t\n/a b/tool \r\n\n"}, u"/a b/tool"_s);
    row("not looked at any further", {.standardOutput = "no path at all"}, u"no path at all"_s);
    row("empty", {.standardOutput = ""}, u""_s);
    row("not UTF-8", {.standardOutput = "/\xff/tool"}, std::nullopt);
    row("status 1", {.exit = {1, false}, .standardOutput = "/a/tool"}, std::nullopt);
    row("ended by a signal", {.exit = {9, true}, .standardOutput = "/a/tool"}, std::nullopt);
    row("errors do not count", {.standardOutput = "/a/tool", .standardError = "warning"}, u"/a/tool"_s);
    row("cannot be started", {.launchError = u"no such file"_s}, std::nullopt);
}

void ExecutableSearchTest::answerOfWhich()
{
    QFETCH(ProcessResult, answer);
    FakeRunner runner;
    runner.answer = answer;
    QFETCH(std::optional<QString>, path);
    QCOMPARE(ExecutableSearch({}, u"/which"_s, runner).find(u"tool"_s), path);
}

void ExecutableSearchTest::nothingIsRemembered()
{
    QTemporaryDir folder;
    FakeRunner runner;
    const ExecutableSearch search({folder.path()}, u"/which"_s, runner);
    QCOMPARE(search.find(u"tool"_s), std::nullopt);
    QCOMPARE(search.find(u"tool"_s), std::nullopt);
    QCOMPARE(runner.commands.size(), 2);
    makeFile(folder.filePath(u"tool"_s), executable);
    QCOMPARE(search.find(u"tool"_s), folder.filePath(u"tool"_s));
    QVERIFY(QFile::remove(folder.filePath(u"tool"_s)));
    QCOMPARE(search.find(u"tool"_s), std::nullopt);
}

void ExecutableSearchTest::realWhichSearchesThePath()
{
    if (!QFile::exists(u"/usr/bin/which"_s)) {
        QSKIP("There is no /usr/bin/which.");
    }
    QTemporaryDir folder;
    makeFile(folder.filePath(u"kelm-private-tool"_s), executable);
    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.path()) + ':' + before);
    const auto found = ExecutableSearch(ProcessRunner::system()).find(u"kelm-private-tool"_s);
    const auto missing = ExecutableSearch(ProcessRunner::system()).find(u"kelm-no-such-tool"_s);
    qputenv("PATH", before);
    QCOMPARE(found, folder.filePath(u"kelm-private-tool"_s));
    QCOMPARE(missing, std::nullopt);
}

const kelm::test::Registered<ExecutableSearchTest> registered;

} // namespace executable_search_test

#include "executable_search_test.moc"
