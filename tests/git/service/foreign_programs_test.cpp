#include "git/service/git_service.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace foreign_programs_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Settings = QList<std::pair<QString, QString>>;

} // namespace

/// A repository whose own settings name programs, and what is read of it without being asked for.
class ForeignProgramsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void nothingRunsForWhatIsRead_data();
    void nothingRunsForWhatIsRead();
    void settingsFoundThroughAnIncludeRunNothing();
    void settingsOfABranchRunNothing();
    void hooksDoNotRunForWhatIsRead();
    void submoduleRunsNothing_data();
    void submoduleRunsNothing();
    void submoduleThatIsToBePassedOverStaysSo();
    void submoduleFetchesNothing();
    void signatureIsNotLookedAt();
    void missingObjectIsNotFetchedByAForeignProgram();
    void missingObjectIsFetchedInAnOrdinaryClone();
    void programsOfThePersonGoOnWorking();
    void comparisonOfThePersonIsPlainToo();
    void textWithAConversionIsShownAsItIs();
    void whatIsAskedForRunsHooksAndFilters();
    void plainRepositoryStartsNothingMore();
    void headThatIsAPipeOrHugeIsNoRepository_data();
    void headThatIsAPipeOrHugeIsNoRepository();

private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<TemporaryRepository> repository_;
    std::unique_ptr<GitService> git_;
    QString marker_;

    /// A shell command that leaves the marker and then behaves as `rest` does.
    QString command(const QString& rest = u"cat"_s) const { return u"touch '%1'; %2"_s.arg(marker_, rest); }
    /// The same as a program without arguments of its own.
    QString program() const
    {
        const QString path = folder_->filePath(u"program"_s);
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write("#!/bin/sh\ntouch '" + marker_.toUtf8() + "'\ncat 2>/dev/null\nexit 0\n");
        }
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }
    bool takeMarker() const { return QFile::remove(marker_); }
    void set(const QString& key, const QString& value) const { repository_->git({u"config"_s, key, value}); }
    void open()
    {
        QVERIFY(git_->open(repository_->url()));
        clearError();
    }
    void clearError()
    {
        QCoreApplication::sendPostedEvents();
        git_->setLastError({});
    }
    /// Has everything read that fills a list or a sheet.
    void readEverything()
    {
        open();
        git_->refreshAll();
        git_->diff(u"a.txt"_s, false);
        git_->diff(u"a.txt"_s, true);
        git_->log(10);
        git_->fileLog(u"a.txt"_s, 10);
        git_->showCommit(u"HEAD"_s);
        git_->blame(u"a.txt"_s);
        git_->stashShow(u"stash@{0}"_s);
        git_->userName();
    }
    /// The change of "a.txt" is in the status and in the diff, as git itself would show it without any setting.
    void verifyTheChangeIsThere()
    {
        git_->refreshStatus();
        QVERIFY(std::any_of(git_->status().begin(), git_->status().end(), [](const GitFileStatus& file) {
            return file.path == u"a.txt" && file.unstaged == GitFileChange::modified;
        }));
        const QString diff = git_->diff(u"a.txt"_s, false);
        QVERIFY2(diff.startsWith(u"diff --git a/a.txt b/a.txt\n"_s) && diff.contains(u"\n+changed\n"_s),
                 qPrintable(diff));
    }
};

void ForeignProgramsTest::init()
{
    useFixedGitEnvironment();
    qunsetenv("GIT_EXTERNAL_DIFF");
    folder_ = std::make_unique<QTemporaryDir>();
    marker_ = folder_->filePath(u"marker"_s);
    repository_ = std::make_unique<TemporaryRepository>();
    git_ = std::make_unique<GitService>(ProcessRunner::sharedSystem());
    repository_->write(u".gitattributes"_s, "*.txt filter=evil diff=evil\n");
    repository_->write(u"a.txt"_s, "line\n");
    repository_->commitAll(u"first"_s);
    repository_->write(u"a.txt"_s, "line\nstashed\n");
    repository_->git({u"stash"_s, u"push"_s, u"-q"_s});
    repository_->write(u"a.txt"_s, "line\nchanged\n");
}

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

void ForeignProgramsTest::submoduleRunsNothing_data()
{
    QTest::addColumn<QString>("ignore");
    QTest::addColumn<QString>("modules");
    QTest::addColumn<QString>("key");
    const QString monitor = u"core.fsmonitor"_s;
    QTest::newRow("nothing said") << QString() << u"kept"_s << monitor;
    QTest::newRow("said in .gitmodules") << u".gitmodules"_s << u"kept"_s << monitor;
    QTest::newRow("said in .gitmodules, which is gone") << u".gitmodules"_s << u"gone"_s << monitor;
    QTest::newRow("said in .gitmodules, gone from the index too") << u".gitmodules"_s << u"forgotten"_s << monitor;
    QTest::newRow("said in the settings") << u".git/config"_s << u"kept"_s << monitor;
    QTest::newRow("a filter") << QString() << u"kept"_s << u"filter.evil.clean"_s;
    QTest::newRow("a filter, said in .gitmodules") << u".gitmodules"_s << u"kept"_s << u"filter.evil.clean"_s;
    QTest::newRow("a filter found through an include") << QString() << u"kept"_s << u"include.path"_s;
}

void ForeignProgramsTest::submoduleRunsNothing()
{
    QFETCH(QString, ignore);
    QFETCH(QString, modules);
    QFETCH(QString, key);
    TemporaryRepository inner;
    inner.write(u".gitattributes"_s, "* filter=evil\n");
    inner.write(u"a"_s, "1\n");
    inner.commitAll(u"inner"_s);
    repository_->git({u"submodule"_s, u"--quiet"_s, u"add"_s, inner.path(), u"sub \"x\""_s});
    if (!ignore.isEmpty()) {
        repository_->git({u"config"_s, u"--file"_s, ignore, u"submodule.sub \"x\".ignore"_s, u"none"_s});
    }
    repository_->git({u"add"_s, u".gitmodules"_s});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"with"_s});
    const QString other = folder_->filePath(u"other"_s);
    repository_->git({u"config"_s, u"--file"_s, other, u"filter.evil.clean"_s, program()});
    repository_->git({u"-C"_s, u"sub \"x\""_s, u"config"_s, key, key == u"include.path" ? other : program()});
    if (modules == u"forgotten") {
        repository_->git({u"rm"_s, u"-q"_s, u"--cached"_s, u".gitmodules"_s});
    }
    if (modules != u"kept") {
        QVERIFY(repository_->remove(u".gitmodules"_s));
    }
    repository_->write(u"sub \"x\"/a"_s, "2\n");
    takeMarker();
    readEverything();
    git_->diff(u"sub \"x\""_s, false);
    QVERIFY(!takeMarker());
    verifyTheChangeIsThere();
    // Another commit in it is told.
    repository_->git({u"-C"_s, u"sub \"x\""_s, u"-c"_s, u"core.fsmonitor=false"_s, u"commit"_s, u"-qam"_s, u"more"_s});
    takeMarker();
    QVERIFY(git_->diff(u"sub \"x\""_s, false).contains(u"+Subproject commit"_s));
    QVERIFY(!takeMarker());
}

void ForeignProgramsTest::submoduleThatIsToBePassedOverStaysSo()
{
    TemporaryRepository inner;
    inner.commitAll(u"inner"_s);
    repository_->git({u"submodule"_s, u"--quiet"_s, u"add"_s, inner.path(), u"sub"_s});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"with"_s});
    const auto inSub = [&](const QStringList& words) { repository_->git(QStringList{u"-C"_s, u"sub"_s} + words); };
    inSub({u"commit"_s, u"-q"_s, u"--allow-empty"_s, u"-m"_s, u"more"_s});
    inSub({u"config"_s, u"core.fsmonitor"_s, program()});
    const auto isListed = [&] {
        open();
        return std::any_of(git_->status().begin(), git_->status().end(),
                           [](const GitFileStatus& file) { return file.path == u"sub"; });
    };
    QVERIFY(isListed());
    // Nothing of it is to be looked at, not even which commit it is on.
    for (const QString& place : {u".gitmodules"_s, u".git/config"_s}) {
        repository_->git({u"config"_s, u"--file"_s, place, u"submodule.sub.ignore"_s, u"all"_s});
        QVERIFY2(!isListed(), qPrintable(place));
        repository_->git({u"config"_s, u"--file"_s, place, u"--unset"_s, u"submodule.sub.ignore"_s});
        QVERIFY2(isListed(), qPrintable(place));
    }
    QVERIFY(!takeMarker());
}

void ForeignProgramsTest::submoduleFetchesNothing()
{
    TemporaryRepository inner;
    inner.write(u"a"_s, "1\n");
    inner.commitAll(u"inner"_s);
    repository_->git({u"submodule"_s, u"--quiet"_s, u"add"_s, inner.path(), u"sub"_s});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"with"_s});
    const QStringList inSub{u"-C"_s, u"sub"_s};
    const auto setInSub = [&](const QString& key, const QString& value) {
        repository_->git(inSub + QStringList{u"config"_s, key, value});
    };
    setInSub(u"core.repositoryFormatVersion"_s, u"1"_s);
    setInSub(u"extensions.partialClone"_s, u"origin"_s);
    setInSub(u"remote.origin.promisor"_s, u"true"_s);
    setInSub(u"remote.origin.url"_s, u"ssh://host/x"_s);
    setInSub(u"core.sshCommand"_s, command(u"false"_s));
    const QByteArray tree = repository_->git(inSub + QStringList{u"rev-parse"_s, u"HEAD^{tree}"_s}).trimmed();
    const QString object = u"/"_s + QLatin1String(tree.first(2)) + u'/' + QLatin1String(tree.sliced(2));
    const QString objects = repository_->filePath(u".git/modules/sub/objects"_s);
    QVERIFY(QFile::remove(objects + object));
    takeMarker();
    readEverything();
    git_->diff(u"sub"_s, false);
    QVERIFY(!takeMarker());
    // Such a folder does have git fetch, where nothing keeps it from that.
    repository_->tryGit({u"status"_s, u"--porcelain"_s}, {});
    QVERIFY(takeMarker());
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

void ForeignProgramsTest::comparisonOfThePersonIsPlainToo()
{
    const QString global = QString::fromLocal8Bit(qgetenv("GIT_CONFIG_GLOBAL"));
    repository_->git({u"config"_s, u"--file"_s, global, u"diff.external"_s, command(u"true"_s)});
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
