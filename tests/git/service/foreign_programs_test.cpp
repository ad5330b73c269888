#include "git/service/foreign_repository.h"
#include "support/recording_process_runner.h"
#include "support/test_program.h"

#include <QMap>
#include <QScopeGuard>
#include <QtTest>

#include <sys/stat.h>

namespace foreign_programs_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// A repository whose own settings name programs, and what is read of it without being asked for.
class ForeignProgramsTest final : public QObject, private ForeignRepository
{
    Q_OBJECT

private Q_SLOTS:
    void init() { prepare(); }
    void nothingRunsForWhatIsRead_data();
    void nothingRunsForWhatIsRead();
    void settingsFoundThroughAnIncludeRunNothing();
    void settingsOfABranchRunNothing();
    void hooksDoNotRunForWhatIsRead();
    void signatureIsNotLookedAt();
    void missingObjectIsNotFetchedByAForeignProgram();
    void missingObjectIsFetchedInAnOrdinaryClone();
    void programsOfThePersonGoOnWorking();
    void comparisonOfThePersonIsPlainToo_data();
    void comparisonOfThePersonIsPlainToo();
    void textWithAConversionIsShownAsItIs();
    void whatIsAskedForRunsHooksAndFilters();
    void plainRepositoryStartsNothingMore();
    void headThatIsAPipeOrHugeIsNoRepository_data();
    void headThatIsAPipeOrHugeIsNoRepository();
};

void ForeignProgramsTest::nothingRunsForWhatIsRead_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("rest");
    const auto row = [](const char* key, const QString& rest = u"cat"_s) {
        QTest::newRow(key) << QString::fromUtf8(key) << rest;
    };
    row("core.fsmonitor");
    row("diff.external", u"true"_s);
    row("diff.evil.command", u"true"_s);
    row("diff.evil.textconv");
    row("DIFF.evil.TextConv");
    row("filter.evil.clean");
    row("filter.evil.process");
    row("Filter.evil.Clean");
    row("core.pager");
    row("pager.diff");
    row("core.editor");
    row("gpg.program");
    row("core.sshCommand");
    row("core.alternateRefsCommand");
    row("credential.helper");
    row("diff.tool");
}

void ForeignProgramsTest::nothingRunsForWhatIsRead()
{
    QFETCH(QString, key);
    QFETCH(QString, rest);
    set(key, key == u"core.fsmonitor" ? program() : command(rest));
    if (key.startsWith(u"filter.", Qt::CaseInsensitive)) {
        set(u"filter.evil.required"_s, u"true"_s);
    }
    readEverything();
    QVERIFY(!takeMarker());
    verifyTheChangeIsThere();
    QVERIFY(git_->showCommit(u"HEAD"_s).contains(u"+line"_s));
    QVERIFY(!takeMarker());
}

void ForeignProgramsTest::settingsFoundThroughAnIncludeRunNothing()
{
    const QString other = folder_->filePath(u"other"_s);
    repository_->git({u"config"_s, u"--file"_s, other, u"filter.evil.clean"_s, command()});
    set(u"include.path"_s, other);
    readEverything();
    // It may change without any file of the repository.
    repository_->git({u"config"_s, u"--file"_s, other, u"diff.evil.command"_s, command(u"true"_s)});
    readEverything();
    QVERIFY(!takeMarker());
    verifyTheChangeIsThere();
}

void ForeignProgramsTest::settingsOfABranchRunNothing()
{
    const QString other = folder_->filePath(u"other"_s);
    repository_->git({u"config"_s, u"--file"_s, other, u"filter.evil.clean"_s, command()});
    set(u"includeIf.onbranch:trap.path"_s, other);
    readEverything();
    repository_->git({u"branch"_s, u"trap"_s});
    repository_->git({u"symbolic-ref"_s, u"HEAD"_s, u"refs/heads/trap"_s});
    readEverything();
    QVERIFY(!takeMarker());
    verifyTheChangeIsThere();
}

void ForeignProgramsTest::hooksDoNotRunForWhatIsRead()
{
    const QString script = program();
    for (const char* hook : {"post-index-change", "fsmonitor-watchman", "reference-transaction", "post-checkout"}) {
        QVERIFY(QFile::copy(script, repository_->filePath(u".git/hooks/"_s + QLatin1String(hook))));
    }
    readEverything();
    QVERIFY(!takeMarker());
    verifyTheChangeIsThere();
    set(u"core.hooksPath"_s, repository_->filePath(u".git/hooks"_s));
    readEverything();
    QVERIFY(!takeMarker());
}

void ForeignProgramsTest::signatureIsNotLookedAt()
{
    const QByteArray tree = repository_->git({u"write-tree"_s}).trimmed();
    const ProcessResult signedCommit = repository_->tryGit(
        {u"hash-object"_s, u"-t"_s, u"commit"_s, u"-w"_s, u"--stdin"_s},
        "tree " + tree +
            "\nauthor A <a@b> 1700000000 +0000\ncommitter A <a@b> 1700000000 +0000\n"
            "gpgsig -----BEGIN PGP SIGNATURE-----\n \n abc\n -----END PGP SIGNATURE-----\n\nsigned\n");
    repository_->git({u"reset"_s, u"-q"_s, QString::fromLatin1(signedCommit.standardOutput.trimmed())});
    for (const QString& key : {u"gpg.program"_s, u"gpg.openpgp.program"_s}) {
        set(key, program());
        set(u"log.showSignature"_s, u"true"_s);
        readEverything();
        QVERIFY(!takeMarker());
        QCOMPARE(git_->log(10).size(), 1);
        set(u"log.showSignature"_s, u"false"_s);
        set(u"format.pretty"_s, u"%G? %s"_s);
        readEverything();
        QVERIFY(!takeMarker());
    }
}

void ForeignProgramsTest::missingObjectIsNotFetchedByAForeignProgram()
{
    const QByteArray blob = repository_->git({u"rev-parse"_s, u"HEAD:a.txt"_s}).trimmed();
    const QString object = u".git/objects/"_s + QLatin1String(blob.first(2)) + u'/' + QLatin1String(blob.sliced(2));
    QVERIFY(QFile::remove(repository_->filePath(object)));
    set(u"core.repositoryFormatVersion"_s, u"1"_s);
    set(u"extensions.partialClone"_s, u"origin"_s);
    set(u"remote.origin.promisor"_s, u"true"_s);
    const std::pair<QString, QString> ways[] = {{u"ssh://host/x"_s, u"core.sshCommand"_s},
                                                {u"ext::"_s + program(), u"protocol.ext.allow"_s},
                                                {repository_->path(), u"remote.origin.uploadpack"_s}};
    for (const auto& [url, key] : ways) {
        set(u"remote.origin.url"_s, url);
        set(key, key == u"protocol.ext.allow" ? u"always"_s : program());
        readEverything();
        QCOMPARE(git_->contentSize(QString::fromLatin1(blob)), std::nullopt);
        QVERIFY2(!takeMarker(), qPrintable(key));
    }
}

void ForeignProgramsTest::missingObjectIsFetchedInAnOrdinaryClone()
{
    const auto runner = std::make_shared<RecordingProcessRunner>();
    git_ = std::make_unique<GitService>(runner);
    const auto allowed = [&] {
        open();
        runner->takeCommands();
        git_->showCommit(u"HEAD"_s);
        const QList<ProcessCommand> commands = runner->takeCommands();
        return commands.last().environment->value(u"GIT_ALLOW_PROTOCOL"_s);
    };
    set(u"remote.origin.url"_s, u"https://host/owner/repo.git"_s);
    set(u"remote.origin.promisor"_s, u"true"_s);
    set(u"remote.origin.partialCloneFilter"_s, u"blob:none"_s);
    QCOMPARE(allowed(), u"http:https:ssh:git"_s);
    set(u"core.sshCommand"_s, command());
    QCOMPARE(allowed(), u"none"_s);
}

void ForeignProgramsTest::programsOfThePersonGoOnWorking()
{
    // As a person sets up a store for large files, which takes the text out of the repository.
    const QString global = QString::fromLocal8Bit(qgetenv("GIT_CONFIG_GLOBAL"));
    repository_->git({u"config"_s, u"--file"_s, global, u"filter.evil.clean"_s, command(u"tr a-z A-Z"_s)});
    repository_->git({u"config"_s, u"--file"_s, global, u"filter.evil.smudge"_s, u"tr A-Z a-z"_s});
    open();
    git_->stage({u"a.txt"_s});
    takeMarker();
    repository_->write(u"a.txt"_s, "line\nother\n");
    QVERIFY(git_->diff(u"a.txt"_s, false).contains(u"+OTHER"_s));
    QVERIFY(takeMarker());
    // The repository's own of that name is not taken in its place.
    set(u"filter.evil.clean"_s, u"tr a-z x"_s);
    QVERIFY(git_->diff(u"a.txt"_s, false).contains(u"+OTHER"_s));
}

void ForeignProgramsTest::comparisonOfThePersonIsPlainToo_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::newRow("named by a variable") << QByteArray("GIT_CONFIG_GLOBAL");
    QTest::newRow("in the home folder") << QByteArray("HOME");
    QTest::newRow("in the configuration's folder") << QByteArray("XDG_CONFIG_HOME");
    QTest::newRow("the system's") << QByteArray("GIT_CONFIG_SYSTEM");
    QTest::newRow("a single setting") << QByteArray("GIT_CONFIG_COUNT");
    QTest::newRow("that of a command line") << QByteArray("GIT_CONFIG_PARAMETERS");
}

void ForeignProgramsTest::comparisonOfThePersonIsPlainToo()
{
    QFETCH(QByteArray, variable);
    const QMap<QByteArray, std::pair<QString, QString>> files{
        {"GIT_CONFIG_GLOBAL", {u"person/some"_s, u"person/some"_s}},
        {"HOME", {u"person"_s, u"person/.gitconfig"_s}},
        {"XDG_CONFIG_HOME", {u"person"_s, u"person/git/config"_s}},
        {"GIT_CONFIG_SYSTEM", {u"person/some"_s, u"person/some"_s}}};
    const QByteArrayList variables{"HOME",
                                   "XDG_CONFIG_HOME",
                                   "GIT_CONFIG_GLOBAL",
                                   "GIT_CONFIG_SYSTEM",
                                   "GIT_CONFIG_NOSYSTEM",
                                   "GIT_CONFIG_COUNT",
                                   "GIT_CONFIG_KEY_0",
                                   "GIT_CONFIG_VALUE_0",
                                   "GIT_CONFIG_PARAMETERS"};
    QMap<QByteArray, QByteArray> before;
    for (const QByteArray& name : variables) {
        if (qEnvironmentVariableIsSet(name)) {
            before.insert(name, qgetenv(name));
        }
    }
    const auto restore = qScopeGuard([&] {
        for (const QByteArray& name : variables) {
            before.contains(name) ? qputenv(name, before.value(name)) : qunsetenv(name);
        }
    });
    const QString compare = command(u"true"_s);
    const QByteArray empty = folder_->filePath(u"empty"_s).toLocal8Bit();
    qputenv("HOME", empty);
    qputenv("XDG_CONFIG_HOME", empty);
    if (const auto [value, file] = files.value(variable); !file.isEmpty()) {
        QVERIFY(QDir().mkpath(QFileInfo(folder_->filePath(file)).path()));
        repository_->git({u"config"_s, u"--file"_s, folder_->filePath(file), u"diff.external"_s, compare});
        if (variable == "GIT_CONFIG_SYSTEM") {
            qunsetenv("GIT_CONFIG_NOSYSTEM");
        } else {
            qunsetenv("GIT_CONFIG_GLOBAL");
        }
        qputenv(variable, folder_->filePath(value).toLocal8Bit());
    } else if (variable == "GIT_CONFIG_COUNT") {
        qputenv("GIT_CONFIG_COUNT", "1");
        qputenv("GIT_CONFIG_KEY_0", "diff.external");
        qputenv("GIT_CONFIG_VALUE_0", compare.toLocal8Bit());
    } else {
        qputenv("GIT_CONFIG_PARAMETERS", "'diff.external'='" + program().toLocal8Bit() + "'");
    }
    // Git itself would run it.
    repository_->tryGit({u"diff"_s});
    QVERIFY(takeMarker());
    open();
    verifyTheChangeIsThere();
    QVERIFY(!takeMarker());
}

void ForeignProgramsTest::textWithAConversionIsShownAsItIs()
{
    set(u"diff.evil.textconv"_s, command(u"true"_s));
    repository_->write(u"b.txt"_s, QByteArray("a\0b", 3));
    repository_->write(u"empty.txt"_s, "");
    repository_->commitAll(u"second"_s);
    open();
    const QString shown = git_->showCommit(u"HEAD"_s);
    QVERIFY2(shown.contains(u"+changed"_s), qPrintable(shown));
    // What is no text is told by its hash.
    QVERIFY2(shown.contains(u"+"_s + QLatin1String(repository_->git({u"rev-parse"_s, u"HEAD:b.txt"_s}).trimmed())),
             qPrintable(shown));
    QCOMPARE(git_->blame(u"a.txt"_s).size(), 2);
    QVERIFY(!takeMarker());
}

void ForeignProgramsTest::whatIsAskedForRunsHooksAndFilters()
{
    QVERIFY(QFile::copy(program(), repository_->filePath(u".git/hooks/pre-commit"_s)));
    set(u"filter.evil.clean"_s, command());
    open();
    QVERIFY(!takeMarker());
    git_->stage({u"a.txt"_s});
    QVERIFY(takeMarker());
    QVERIFY(git_->commit(u"second"_s));
    QVERIFY(takeMarker());
}

void ForeignProgramsTest::plainRepositoryStartsNothingMore()
{
    class Counting final : public ProcessRunner
    {
    public:
        ProcessResult run(const ProcessCommand& command) override
        {
            ++count;
            return system().run(command);
        }
        int count = 0;
    };
    const auto runner = std::make_shared<Counting>();
    git_ = std::make_unique<GitService>(runner);
    open();
    QCOMPARE(runner->count, 8);
    git_->diff(u"a.txt"_s, false);
    QCOMPARE(runner->count, 9);
    // Settings that have to be looked into are looked into once.
    set(u"filter.evil.clean"_s, command());
    git_->refreshStatus();
    QCOMPARE(runner->count, 11);
    git_->refreshStatus();
    QCOMPARE(runner->count, 12);
}

void ForeignProgramsTest::headThatIsAPipeOrHugeIsNoRepository_data()
{
    QTest::addColumn<bool>("isPipe");
    QTest::newRow("a pipe") << true;
    QTest::newRow("a gigabyte") << false;
}

void ForeignProgramsTest::headThatIsAPipeOrHugeIsNoRepository()
{
    QFETCH(bool, isPipe);
    const QString head = repository_->filePath(u".git/HEAD"_s);
    if (isPipe) {
        QVERIFY(QFile::remove(head));
        QCOMPARE(::mkfifo(QFile::encodeName(head).constData(), 0600), 0);
    } else {
        QVERIFY(QFile(head).resize(qint64(1) << 30));
    }
    // Git would read it to its end.
    QVERIFY(!git_->open(repository_->url()));
    QVERIFY(!git_->repoURL());
}

const Registered<ForeignProgramsTest> registered;

} // namespace foreign_programs_test

#include "foreign_programs_test.moc"
