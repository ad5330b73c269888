#include "git/service/git_environment.h"
#include "platform/process/environment.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

namespace git_environment_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// The settings that an environment hands to git, the last of each key.
QMap<QString, QString> settingsOf(const EnvironmentVariables& variables)
{
    QMap<QString, QString> settings;
    const int count = variables.value(u"GIT_CONFIG_COUNT"_s).toInt();
    for (int at = 0; at < count; ++at) {
        settings.insert(variables.value(u"GIT_CONFIG_KEY_%1"_s.arg(at)),
                        variables.value(u"GIT_CONFIG_VALUE_%1"_s.arg(at)));
    }
    return settings;
}

} // namespace

/// Which variables each command gets.
class GitEnvironmentTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void readersAreKnown_data();
    void readersAreKnown();
    void namesAreNoPatterns();
    void nobodyIsAskedAtATerminal_data();
    void nobodyIsAskedAtATerminal();
    void operationKeepsHooksAndHelpers();
    void readerRunsNothingForeign();
    void settingsOfTheEnvironmentStayInFront();
    void settingsOfACommandLineStayInFront_data();
    void settingsOfACommandLineStayInFront();
    void plainDiffTakesTheWordsOfTheCommand();
    void foreignProgramsAreReplacedLast();
};

void GitEnvironmentTest::readersAreKnown_data()
{
    QTest::addColumn<bool>("reads");
    const auto row = [](const char* command, bool reads) { QTest::newRow(command) << reads; };
    for (const char* command : {"status --porcelain=v1", "diff -- a", "diff --cached -- a", "log -n 5", "show a",
                                "blame --porcelain -- a", "rev-parse HEAD", "rev-list a", "for-each-ref refs/heads",
                                "remote -v", "stash list", "stash show -p a", "config user.name"}) {
        row(command, true);
    }
    for (const char* command :
         {"add -- a", "reset HEAD -- a", "checkout -- a", "checkout b", "commit -m status", "apply --cached -", "fetch",
          "pull", "push", "clone u d", "init -b main", "merge a", "remote add a b", "stash push", "stash pop a",
          "tag a", "branch -d a", "config user.name a", ""}) {
        row(command, false);
    }
}

void GitEnvironmentTest::readersAreKnown()
{
    QFETCH(bool, reads);
    QCOMPARE(onlyReads(QString::fromUtf8(QTest::currentDataTag()).split(u' ')), reads);
}

void GitEnvironmentTest::namesAreNoPatterns()
{
    const EnvironmentVariables own{{u"GIT_GLOB_PATHSPECS"_s, u"1"_s}, {u"HOME"_s, u"/h"_s}};
    const EnvironmentVariables named = gitEnvironment({u"add"_s, u"--"_s, u"*"_s}, own);
    QCOMPARE(named.value(u"GIT_LITERAL_PATHSPECS"_s), u"1"_s);
    QVERIFY(!named.contains(u"GIT_GLOB_PATHSPECS"_s));
    QCOMPARE(named.value(u"HOME"_s), u"/h"_s);
    // Hooks have patterns of their own.
    const EnvironmentVariables commit = gitEnvironment({u"commit"_s, u"-m"_s, u"x"_s}, own);
    QVERIFY(!commit.contains(u"GIT_LITERAL_PATHSPECS"_s));
    QVERIFY(commit.contains(u"GIT_GLOB_PATHSPECS"_s));
}

void GitEnvironmentTest::nobodyIsAskedAtATerminal_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<QString>("require");
    QTest::newRow("nothing named") << QString() << u"0"_s << u"force"_s;
    QTest::newRow("a program for git") << u"GIT_ASKPASS"_s << QString() << u"force"_s;
    QTest::newRow("a program for ssh") << u"SSH_ASKPASS"_s << QString() << u"force"_s;
    QTest::newRow("a choice for ssh") << u"SSH_ASKPASS_REQUIRE"_s << u"0"_s << u"/x"_s;
}

void GitEnvironmentTest::nobodyIsAskedAtATerminal()
{
    QFETCH(QString, variable);
    EnvironmentVariables own;
    if (!variable.isEmpty()) {
        own.insert(variable, u"/x"_s);
    }
    const EnvironmentVariables variables = gitEnvironment({u"fetch"_s}, own);
    QTEST(variables.value(u"GIT_TERMINAL_PROMPT"_s), "prompt");
    QTEST(variables.value(u"SSH_ASKPASS_REQUIRE"_s), "require");
}

void GitEnvironmentTest::operationKeepsHooksAndHelpers()
{
    const EnvironmentVariables own{{u"GIT_EXTERNAL_DIFF"_s, u"/x"_s}};
    const EnvironmentVariables variables = gitEnvironment({u"commit"_s, u"-m"_s, u"x"_s}, own);
    QVERIFY(!variables.contains(u"GIT_CONFIG_COUNT"_s));
    QVERIFY(!variables.contains(u"GIT_OPTIONAL_LOCKS"_s));
    QVERIFY(variables.contains(u"GIT_EXTERNAL_DIFF"_s));
}

void GitEnvironmentTest::readerRunsNothingForeign()
{
    const EnvironmentVariables own{{u"GIT_EXTERNAL_DIFF"_s, u"/x"_s}};
    const EnvironmentVariables variables = gitEnvironment({u"status"_s, u"--porcelain=v1"_s}, own);
    QCOMPARE(variables.value(u"GIT_OPTIONAL_LOCKS"_s), u"0"_s);
    QVERIFY(!variables.contains(u"GIT_EXTERNAL_DIFF"_s));
    const QMap<QString, QString> settings = settingsOf(variables);
    QCOMPARE(settings.value(u"core.fsmonitor"_s), u"false"_s);
    QCOMPARE(settings.value(u"core.hooksPath"_s), u"/dev/null"_s);
    QCOMPARE(settings.value(u"core.quotePath"_s), u"true"_s);
    QCOMPARE(settings.value(u"log.showSignature"_s), u"false"_s);
    // Older versions of git do not know these two.
    QCOMPARE(settings.value(u"diff.srcPrefix"_s), u"a/"_s);
    QCOMPARE(settings.value(u"diff.dstPrefix"_s), u"b/"_s);
    QVERIFY(!settings.contains(u"diff.external"_s));
}

void GitEnvironmentTest::settingsOfTheEnvironmentStayInFront()
{
    const EnvironmentVariables own{{u"GIT_CONFIG_COUNT"_s, u"1"_s},
                                   {u"GIT_CONFIG_KEY_0"_s, u"core.fsmonitor"_s},
                                   {u"GIT_CONFIG_VALUE_0"_s, u"/x"_s}};
    const EnvironmentVariables variables = gitEnvironment({u"status"_s}, own);
    QCOMPARE(variables.value(u"GIT_CONFIG_KEY_0"_s), u"core.fsmonitor"_s);
    QCOMPARE(variables.value(u"GIT_CONFIG_VALUE_0"_s), u"/x"_s);
    QCOMPARE(settingsOf(variables).value(u"core.fsmonitor"_s), u"false"_s);
    const EnvironmentVariables broken = gitEnvironment({u"status"_s}, {{u"GIT_CONFIG_COUNT"_s, u"x"_s}});
    QCOMPARE(settingsOf(broken).value(u"core.fsmonitor"_s), u"false"_s);
}

void GitEnvironmentTest::settingsOfACommandLineStayInFront_data()
{
    QTest::addColumn<QString>("given");
    QTest::newRow("none") << QString();
    QTest::newRow("empty") << u""_s;
    QTest::newRow("one") << u"'core.quotePath'='false'"_s;
    QTest::newRow("one in the older form, and the same key as is added") << u"'core.quotePath=false' 'a.c=x'"_s;
}

void GitEnvironmentTest::settingsOfACommandLineStayInFront()
{
    QFETCH(QString, given);
    EnvironmentVariables own = applicationEnvironment();
    own.remove(u"GIT_CONFIG_COUNT"_s);
    if (!given.isNull()) {
        own.insert(u"GIT_CONFIG_PARAMETERS"_s, given);
    }
    EnvironmentVariables variables = gitEnvironment({u"status"_s}, own);
    const GitSettings settings{{u"a.it's.b"_s, u"'%1' \"x\"; a=b ! \\"_s}, {u"a.c"_s, QString()}};
    replaceForeignPrograms(variables, {.settings = settings});
    QVERIFY(variables.value(u"GIT_CONFIG_PARAMETERS"_s).startsWith(given));
    // All stand in one place.
    QCOMPARE(variables.contains(u"GIT_CONFIG_COUNT"_s), given.isEmpty());
    const TemporaryRepository repository;
    const auto read = [&](const QString& key) {
        return QString::fromUtf8(ProcessRunner::system()
                                     .run({.program = u"/usr/bin/git"_s,
                                           .arguments = {u"config"_s, u"--null"_s, u"--get"_s, key},
                                           .workingDirectory = repository.path(),
                                           .environment = variables})
                                     .standardOutput);
    };
    QCOMPARE(read(u"core.quotePath"_s), QString(u"true"_s + QChar(u'\0')));
    for (const auto& [key, value] : settings) {
        QCOMPARE(read(key), value + QChar(u'\0'));
    }
}

void GitEnvironmentTest::plainDiffTakesTheWordsOfTheCommand()
{
    QCOMPARE(plainDiffCommand({u"status"_s}), QString());
    QVERIFY(plainDiffCommand({u"diff"_s, u"--"_s, u"a"_s}).contains(u"git diff --no-ext-diff --no-textconv --"_s));
    QVERIFY(plainDiffCommand({u"diff"_s, u"--cached"_s, u"--"_s, u"a"_s})
                .contains(u"git diff --cached --no-ext-diff --no-textconv --"_s));
    // What follows is data, and never a part of the command.
    QVERIFY(!plainDiffCommand({u"diff"_s, u"--"_s, u"; touch x"_s}).contains(u"touch"_s));
}

void GitEnvironmentTest::foreignProgramsAreReplacedLast()
{
    EnvironmentVariables variables = gitEnvironment({u"status"_s}, {});
    const int count = variables.value(u"GIT_CONFIG_COUNT"_s).toInt();
    replaceForeignPrograms(variables, {});
    QCOMPARE(variables.value(u"GIT_CONFIG_COUNT"_s).toInt(), count);
    QCOMPARE(variables.value(u"GIT_ALLOW_PROTOCOL"_s), u"http:https:ssh:git"_s);
    replaceForeignPrograms(variables, {.settings = {{u"filter.x.clean"_s, QString()}}, .mayFetch = false});
    QCOMPARE(variables.value(u"GIT_CONFIG_KEY_%1"_s.arg(count)), u"filter.x.clean"_s);
    QCOMPARE(variables.value(u"GIT_CONFIG_COUNT"_s).toInt(), count + 1);
    QCOMPARE(variables.value(u"GIT_ALLOW_PROTOCOL"_s), u"none"_s);
    QCOMPARE(variables.value(u"GIT_NO_LAZY_FETCH"_s), u"1"_s);
}

const kelm::test::Registered<GitEnvironmentTest> registered;

} // namespace git_environment_test

#include "git_environment_test.moc"
