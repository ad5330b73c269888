#include "git/panel/source_control_tab.h"
#include "git/service/file_status_mark.h"
#include "git/service/git_service.h"
#include "git/service/remote_branch_checkout.h"
#include "support/recording_process_runner.h"
#include "support/test_program.h"

#include <QtTest>

namespace source_control_tab_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What git prints for a repository with one thing more of each kind than of the last.
ProcessResult answer(const ProcessCommand& command)
{
    const QStringList& arguments = command.arguments;
    if (arguments.first() == u"status") {
        return ended(0, "M  a\n");
    }
    if (arguments.last() == u"refs/heads") {
        return ended(0, withNulls("main#*#origin/main\nnext##\n"));
    }
    if (arguments.last() == u"refs/remotes") {
        return ended(0, "origin/main\norigin/next\norigin/HEAD\n");
    }
    if (arguments.first() == u"stash") {
        return ended(0, "stash@{0}\x1fone\nstash@{1}\x1ftwo\nstash@{2}\x1fthree\n");
    }
    if (arguments.last() == u"refs/tags") {
        return ended(0, withNulls("a#commit##1#x\nb#commit##2#x\nc#commit##3#x\nd#commit##4#x\n"));
    }
    if (arguments.first() == u"remote") {
        return ended(0, "a\t1\nb\t2\nc\t3\nd\t4\ne\t5\n");
    }
    return ended(0);
}

} // namespace

class SourceControlTabTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tabsStandInTheirOrder();
    void badgesCount();
    void aMarkFollowsItsList_data();
    void aMarkFollowsItsList();
    void aRemoteBranchIsCheckedOutByItsLocalName_data();
    void aRemoteBranchIsCheckedOutByItsLocalName();
    void aRemoteBranchBeginsWithItsRemote_data();
    void aRemoteBranchBeginsWithItsRemote();
};

void SourceControlTabTest::tabsStandInTheirOrder()
{
    QStringList lines;
    for (const SourceControlTab tab : allSourceControlTabs) {
        lines << rawValue(tab) + u' ' + label(tab) + u' ' + symbol(tab);
    }
    QCOMPARE(lines, (QStringList{u"changes Changes doc.text"_s, u"history History clock"_s,
                                 u"branches Branches arrow.triangle.branch"_s, u"stashes Stashes tray.full"_s,
                                 u"tags Tags tag"_s, u"remotes Remotes network"_s}));
}

void SourceControlTabTest::badgesCount()
{
    const auto runner = std::make_shared<RecordingProcessRunner>();
    runner->setAnswer(answer);
    GitService git(runner);
    QList<std::optional<qsizetype>> counts;
    const auto count = [&] {
        counts.clear();
        for (const SourceControlTab tab : allSourceControlTabs) {
            counts << badgeCount(tab, git);
        }
    };
    count();
    QCOMPARE(counts, (QList<std::optional<qsizetype>>{0, std::nullopt, 0, 0, 0, 0}));

    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u".git"_s));
    QVERIFY(git.open(QUrl::fromLocalFile(folder.path())));
    count();
    QCOMPARE(git.branches().size(), 4);
    QCOMPARE(counts, (QList<std::optional<qsizetype>>{1, std::nullopt, 2, 3, 4, 5}));
}

void SourceControlTabTest::aMarkFollowsItsList_data()
{
    using Change = std::optional<GitFileChange>;
    QTest::addColumn<Change>("staged");
    QTest::addColumn<Change>("unstaged");
    QTest::addColumn<bool>("isStagedList");
    QTest::addColumn<QString>("letter");
    QTest::addColumn<SystemColor>("color");
    const Change none;
    QTest::newRow("modified") << Change(GitFileChange::modified) << none << true << u"M"_s << SystemColor::yellow;
    QTest::newRow("added") << Change(GitFileChange::added) << none << true << u"A"_s << SystemColor::green;
    QTest::newRow("deleted") << Change(GitFileChange::deleted) << none << true << u"D"_s << SystemColor::red;
    QTest::newRow("renamed") << Change(GitFileChange::renamed) << none << true << u"R"_s << SystemColor::blue;
    QTest::newRow("copied") << Change(GitFileChange::copied) << none << true << u"C"_s << SystemColor::blue;
    QTest::newRow("untracked") << none << Change(GitFileChange::untracked) << false << u"U"_s << SystemColor::green;
    QTest::newRow("conflicted") << Change(GitFileChange::conflicted) << Change(GitFileChange::conflicted) << false
                                << u"!"_s << SystemColor::orange;
    QTest::newRow("neither") << none << none << false << u"·"_s << SystemColor::yellow;
    QTest::newRow("neither, staged") << none << none << true << u"·"_s << SystemColor::yellow;
    QTest::newRow("both, staged list") << Change(GitFileChange::added) << Change(GitFileChange::deleted) << true
                                       << u"A"_s << SystemColor::green;
    QTest::newRow("both, other list") << Change(GitFileChange::added) << Change(GitFileChange::deleted) << false
                                      << u"D"_s << SystemColor::red;
    QTest::newRow("the other side in the staged list")
        << none << Change(GitFileChange::renamed) << true << u"R"_s << SystemColor::blue;
    QTest::newRow("the other side in the other list")
        << Change(GitFileChange::copied) << none << false << u"C"_s << SystemColor::blue;
}

void SourceControlTabTest::aMarkFollowsItsList()
{
    QFETCH(std::optional<GitFileChange>, staged);
    QFETCH(std::optional<GitFileChange>, unstaged);
    QFETCH(bool, isStagedList);
    QFETCH(QString, letter);
    QFETCH(SystemColor, color);
    const FileStatusMark mark =
        fileStatusMark({.id = {}, .path = {}, .staged = staged, .unstaged = unstaged}, isStagedList);
    QCOMPARE(mark.letter, letter);
    QCOMPARE(int(mark.color), int(color));
}

void SourceControlTabTest::aRemoteBranchIsCheckedOutByItsLocalName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("local");
    QTest::newRow("plain") << u"origin/main"_s << u"main"_s;
    QTest::newRow("with a slash") << u"origin/feature/x"_s << u"feature/x"_s;
    QTest::newRow("empty pieces") << u"//origin//a///b/"_s << u"a/b"_s;
    QTest::newRow("one piece") << u"origin"_s << u"origin"_s;
    QTest::newRow("one piece and a slash") << u"origin/"_s << u"origin/"_s;
    QTest::newRow("slashes alone") << u"//"_s << u"//"_s;
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("Korean") << u"원격/기능/하나"_s << u"기능/하나"_s;
}

void SourceControlTabTest::aRemoteBranchIsCheckedOutByItsLocalName()
{
    QFETCH(QString, name);
    QTEST(localNameOfRemoteBranch(name), "local");
}

void SourceControlTabTest::aRemoteBranchBeginsWithItsRemote_data()
{
    QTest::addColumn<QString>("listed");
    QTest::addColumn<QString>("remote");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << u"origin/x"_s << u"origin"_s << u"origin/x"_s;
    QTest::newRow("shared with a branch here") << u"remotes/origin/x"_s << u"origin"_s << u"origin/x"_s;
    QTest::newRow("of a remote of that name") << u"remotes/x"_s << u"remotes"_s << u"remotes/x"_s;
    QTest::newRow("begins alike") << u"remotes2/x"_s << u"remotes2"_s << u"remotes2/x"_s;
}

void SourceControlTabTest::aRemoteBranchBeginsWithItsRemote()
{
    QFETCH(QString, listed);
    QFETCH(QString, remote);
    QTEST(nameOfListedRemoteBranch(listed, {GitRemote{.id = {}, .name = remote, .url = {}}}), "name");
}

const kelm::test::Registered<SourceControlTabTest> registered;

} // namespace source_control_tab_test

#include "source_control_tab_test.moc"
