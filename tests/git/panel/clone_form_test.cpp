#include "git/panel/clone_form.h"
#include "platform/events/worker_pool.h"
#include "support/fake_file_panels.h"
#include "support/recording_process_runner.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QSignalSpy>

namespace clone_form_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir folder;
    std::shared_ptr<RecordingProcessRunner> runner = std::make_shared<RecordingProcessRunner>();
    GitService git{runner};
    FakeFilePanels panels;
    ManualScheduler scheduler;
    CloneForm form{git, panels, scheduler};

    QUrl parentFolder() const { return QUrl::fromLocalFile(folder.path()); }
    void fill()
    {
        form.setRemoteURL(u"https://host/owner/repo.git"_s);
        form.setDestinationParent(parentFolder());
    }
    void touch(const QString& name) const
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("cannot write");
        }
    }
    QStringList cloned()
    {
        QStringList lines;
        for (const ProcessCommand& command : runner->takeCommands()) {
            if (command.arguments.first() == u"clone") {
                lines << command.arguments.join(u'|') + u'@' + command.workingDirectory;
            }
        }
        return lines;
    }
};

} // namespace

class CloneFormTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void anAddressGivesAName_data();
    void anAddressGivesAName();
    void startsEmpty();
    void aNameIsDerivedOnceWhileTyping();
    void aClearedNameIsDerivedAgain();
    void theSameAddressDerivesNothing();
    void canStartNeedsAllThree_data();
    void canStartNeedsAllThree();
    void theFolderIsPickedInAPanel();
    void withoutAFolderNothingStarts();
    void aTargetThatHoldsSomethingIsRefused_data();
    void aTargetThatHoldsSomethingIsRefused();
    void aTargetIsLeftToGit_data();
    void aTargetIsLeftToGit();
    void addressAndNameGoAsTyped();
    void successShowsAndClosesAfterADelay();
    void aFailureShowsItsWords();
    void aFormThatGoesIsNotToldOfTheEnd();
    void aRealCloneOpens();
    void aRealFailureTellsGitsWords();
    void aMissingParentFolderTellsTheLaunchError();
};

void CloneFormTest::anAddressGivesAName_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("name");
    QTest::newRow("https") << u"https://host/owner/repo.git"_s << u"repo"_s;
    QTest::newRow("no suffix") << u"https://host/owner/repo"_s << u"repo"_s;
    QTest::newRow("slash at the end") << u"https://host/owner/repo.git/"_s << u"repo"_s;
    QTest::newRow("slashes at the end") << u"https://host/owner/repo///"_s << u"repo"_s;
    QTest::newRow("inner .git") << u"https://host/my.gitlog"_s << u"mylog"_s;
    QTest::newRow("many .git") << u"https://host/a.git.gitb.git"_s << u"ab"_s;
    QTest::newRow("only .git") << u"https://host/.git"_s << u""_s;
    QTest::newRow("what removing makes stays") << u"x/.g.gitit"_s << u".git"_s;
    QTest::newRow("ssh") << u"git@host:owner/repo.git"_s << u"repo"_s;
    QTest::newRow("ssh without a slash") << u"git@host:repo.git"_s << u"git@host:repo"_s;
    QTest::newRow("upper case stays") << u"https://host/Repo.GIT"_s << u"Repo.GIT"_s;
    QTest::newRow("blanks stay") << u"https://host/ a b "_s << u" a b "_s;
    QTest::newRow("query stays") << u"https://host/repo.git?x=1"_s << u"repo?x=1"_s;
    QTest::newRow("Korean") << u"https://host/저장소.git"_s << u"저장소"_s;
    QTest::newRow("one letter") << u"h"_s << u"h"_s;
    QTest::newRow("slashes alone") << u"///"_s << u""_s;
    QTest::newRow("empty") << u""_s << u""_s;
}

void CloneFormTest::anAddressGivesAName()
{
    QFETCH(QString, url);
    QTEST(derivedFolderName(url), "name");
}

void CloneFormTest::startsEmpty()
{
    Fixture f;
    QVERIFY(f.form.isPresented());
    QVERIFY(f.form.remoteURL().isEmpty() && f.form.destinationName().isEmpty());
    QVERIFY(!f.form.destinationParent() && !f.form.errorMessage());
    QVERIFY(!f.form.inProgress() && !f.form.didSucceed() && !f.form.canStart());
}

void CloneFormTest::aNameIsDerivedOnceWhileTyping()
{
    Fixture f;
    const QString url = u"https://host/repo.git"_s;
    for (qsizetype length = 1; length <= url.size(); ++length) {
        f.form.setRemoteURL(url.left(length));
    }
    QCOMPARE(f.form.destinationName(), u"h"_s);
}

void CloneFormTest::aClearedNameIsDerivedAgain()
{
    Fixture f;
    f.form.setRemoteURL(u"https://host/repo.git"_s);
    QCOMPARE(f.form.destinationName(), u"repo"_s);
    f.form.setRemoteURL(u"https://host/other.git"_s);
    QCOMPARE(f.form.destinationName(), u"repo"_s);
    f.form.setDestinationName(QString());
    QCOMPARE(f.form.destinationName(), QString());
    f.form.setRemoteURL(u"https://host/third.git/"_s);
    QCOMPARE(f.form.destinationName(), u"third"_s);
}

void CloneFormTest::theSameAddressDerivesNothing()
{
    Fixture f;
    f.form.setRemoteURL(u"x/repo"_s);
    f.form.setDestinationName(QString());
    f.form.setRemoteURL(u"x/repo"_s);
    QCOMPARE(f.form.destinationName(), QString());
}

void CloneFormTest::canStartNeedsAllThree_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("hasFolder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("canStart");
    QTest::newRow("all") << u"u"_s << true << u"n"_s << true;
    QTest::newRow("no address") << u""_s << true << u"n"_s << false;
    QTest::newRow("blank address") << u" \t\u00a0\u3000"_s << true << u"n"_s << false;
    QTest::newRow("no folder") << u"u"_s << false << u"n"_s << false;
    QTest::newRow("no name") << u"u"_s << true << u""_s << false;
    QTest::newRow("blank name") << u"u"_s << true << u"  "_s << false;
    QTest::newRow("blanks around") << u" u "_s << true << u" n "_s << true;
    QTest::newRow("a newline is no blank") << u"u"_s << true << u"\n"_s << true;
}

void CloneFormTest::canStartNeedsAllThree()
{
    QFETCH(QString, url);
    QFETCH(bool, hasFolder);
    QFETCH(QString, name);
    Fixture f;
    f.form.setRemoteURL(url);
    f.form.setDestinationName(name);
    if (hasFolder) {
        f.form.setDestinationParent(f.parentFolder());
    }
    QTEST(f.form.canStart(), "canStart");
}

void CloneFormTest::theFolderIsPickedInAPanel()
{
    Fixture f;
    QSignalSpy changes(&f.form, &CloneForm::changed);
    f.form.pickDestination();
    QVERIFY(!f.form.destinationParent() && changes.isEmpty());
    f.panels.openAnswer = {{f.parentFolder(), true}};
    f.form.pickDestination();
    QVERIFY(f.form.destinationParent() == f.parentFolder());
    QCOMPARE(changes.size(), 1);
    f.panels.openAnswer.clear();
    f.form.pickDestination();
    QVERIFY(f.form.destinationParent() == f.parentFolder());
    const OpenPanelOptions& options = f.panels.openPanelOptions;
    QVERIFY(options.canChooseDirectories && !options.canChooseFiles && !options.allowsMultipleSelection);
    QCOMPARE(options.prompt, u"Choose"_s);
}

void CloneFormTest::withoutAFolderNothingStarts()
{
    Fixture f;
    f.form.setRemoteURL(u"x/repo"_s);
    QSignalSpy changes(&f.form, &CloneForm::changed);
    f.form.startClone();
    QVERIFY(changes.isEmpty() && !f.form.inProgress() && !f.form.errorMessage());
    QVERIFY(f.cloned().isEmpty());
}

void CloneFormTest::aTargetThatHoldsSomethingIsRefused_data()
{
    QTest::addColumn<QString>("content");
    QTest::newRow("file") << u"repo/a.txt"_s;
    QTest::newRow("hidden file") << u"repo/.hidden"_s;
}

void CloneFormTest::aTargetThatHoldsSomethingIsRefused()
{
    QFETCH(QString, content);
    Fixture f;
    f.fill();
    QVERIFY(QDir(f.folder.path()).mkdir(u"repo"_s));
    f.touch(content);
    f.form.startClone();
    QVERIFY(!f.form.inProgress());
    QCOMPARE(f.form.errorMessage().value_or(u"none"_s),
             u"Target already exists and is not empty: "_s + f.folder.filePath(u"repo"_s));
    QVERIFY(f.cloned().isEmpty());
}

void CloneFormTest::aTargetIsLeftToGit_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("nothing there") << u"nothing"_s;
    QTest::newRow("an empty folder") << u"folder"_s;
    QTest::newRow("a file") << u"file"_s;
}

void CloneFormTest::aTargetIsLeftToGit()
{
    QFETCH(QString, what);
    Fixture f;
    f.fill();
    if (what == u"folder") {
        QVERIFY(QDir(f.folder.path()).mkdir(u"repo"_s));
    } else if (what == u"file") {
        f.touch(u"repo"_s);
    }
    f.form.startClone();
    QVERIFY(f.form.inProgress());
    QTRY_VERIFY(!f.form.inProgress());
    QCOMPARE(f.cloned(), QStringList{u"clone|https://host/owner/repo.git|repo@"_s + f.folder.path()});
}

void CloneFormTest::addressAndNameGoAsTyped()
{
    Fixture f;
    f.form.setDestinationParent(f.parentFolder());
    f.form.setDestinationName(u"my repo"_s);
    f.form.setRemoteURL(u"  https://host/x  "_s);
    f.form.startClone();
    QTRY_VERIFY(!f.form.inProgress());
    QCOMPARE(f.cloned(), QStringList{u"clone|  https://host/x  |my repo@"_s + f.folder.path()});
}

void CloneFormTest::successShowsAndClosesAfterADelay()
{
    Fixture f;
    f.fill();
    QSignalSpy dismissals(&f.form, &CloneForm::dismissed);
    f.form.startClone();
    QVERIFY(f.form.inProgress() && !f.git.isBusy());
    QTRY_VERIFY(f.form.didSucceed());
    QVERIFY(!f.form.inProgress() && !f.form.errorMessage());
    f.scheduler.advance(std::chrono::milliseconds(799));
    QVERIFY(f.form.isPresented());
    f.scheduler.advance(std::chrono::milliseconds(1));
    QVERIFY(!f.form.isPresented());
    f.form.dismiss();
    QCOMPARE(dismissals.size(), 1);
}

void CloneFormTest::aFailureShowsItsWords()
{
    Fixture f;
    f.fill();
    f.runner->setAnswer([](const ProcessCommand&) { return ended(128, {}, "fatal: no\n"); });
    f.form.startClone();
    QTRY_VERIFY(!f.form.inProgress());
    QCOMPARE(f.form.errorMessage().value_or(u"none"_s), u"fatal: no\n"_s);
    QVERIFY(!f.form.didSucceed() && f.form.isPresented() && f.form.canStart());
    QCOMPARE(f.scheduler.pending(), 0U);

    // The next attempt starts without the words of the last.
    f.runner->setAnswer({});
    f.form.startClone();
    QVERIFY(f.form.inProgress() && !f.form.errorMessage());
    QTRY_VERIFY(f.form.didSucceed());
}

void CloneFormTest::aFormThatGoesIsNotToldOfTheEnd()
{
    Fixture f;
    auto form = std::make_unique<CloneForm>(f.git, f.panels, f.scheduler);
    form->setRemoteURL(u"x/repo"_s);
    form->setDestinationParent(f.parentFolder());
    form->startClone();
    form.reset();
    commonWorkers().waitForDone();
    QCOMPARE(f.cloned().size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(f.scheduler.pending(), 0U);
}

void CloneFormTest::aRealCloneOpens()
{
    const TemporaryRepository origin;
    origin.write(u"a.txt"_s, "text\n");
    origin.commitAll(u"first"_s);
    QTemporaryDir folder;
    GitService git(ProcessRunner::sharedSystem());
    FakeFilePanels panels;
    ManualScheduler scheduler;
    CloneForm form(git, panels, scheduler);
    form.setRemoteURL(origin.path());
    form.setDestinationParent(QUrl::fromLocalFile(folder.path()));
    form.setDestinationName(u"복제"_s);
    form.startClone();
    QTRY_VERIFY_WITH_TIMEOUT(form.didSucceed(), 20000);
    QVERIFY(QFile::exists(folder.filePath(u"복제/a.txt"_s)));
    QCOMPARE(git.repoURL().value_or(QUrl()), QUrl::fromLocalFile(folder.filePath(u"복제"_s)));
    QCOMPARE(git.branch(), u"main"_s);
}

void CloneFormTest::aRealFailureTellsGitsWords()
{
    QTemporaryDir folder;
    GitService git(ProcessRunner::sharedSystem());
    FakeFilePanels panels;
    ManualScheduler scheduler;
    CloneForm form(git, panels, scheduler);
    form.setRemoteURL(folder.filePath(u"absent/repo.git"_s));
    form.setDestinationParent(QUrl::fromLocalFile(folder.path()));
    form.startClone();
    QTRY_VERIFY_WITH_TIMEOUT(form.errorMessage().has_value(), 20000);
    QVERIFY(form.errorMessage()->contains(u"does not exist"));
    QTRY_COMPARE(git.lastError().value_or(u"none"_s), *form.errorMessage());
    QVERIFY(!git.repoURL());
}

void CloneFormTest::aMissingParentFolderTellsTheLaunchError()
{
    QTemporaryDir folder;
    GitService git(ProcessRunner::sharedSystem());
    FakeFilePanels panels;
    ManualScheduler scheduler;
    CloneForm form(git, panels, scheduler);
    form.setRemoteURL(u"/x/repo.git"_s);
    form.setDestinationParent(QUrl::fromLocalFile(folder.filePath(u"gone"_s)));
    form.startClone();
    QTRY_VERIFY_WITH_TIMEOUT(form.errorMessage().has_value(), 20000);
    QVERIFY(!form.errorMessage()->isEmpty());
    QCoreApplication::processEvents();
    QVERIFY(!git.lastError());
}

const kelm::test::Registered<CloneFormTest> registered;

} // namespace clone_form_test

#include "clone_form_test.moc"
