#include "git/panel/view/branches_tab.h"
#include "git/panel/view/changes_tab.h"
#include "git/panel/view/commit_composer.h"
#include "git/panel/view/history_tab.h"
#include "git/panel/view/panel_fixture.h"
#include "git/service/git_names.h"
#include "platform/view/confirmation_dialog.h"
#include "platform/view/labels.h"
#include "support/test_program.h"

#include <QCheckBox>

namespace source_control_view_tabs_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What the panel is to show for a repository, read anew and put together here.
QStringList freshLines(const TemporaryRepository& repo, SourceControlTab tab)
{
    GitService git{ProcessRunner::sharedSystem()};
    git.open(repo.url());
    QStringList lines;
    const auto letter = [](GitFileChange change) {
        return QStringList{u"M"_s, u"A"_s, u"D"_s, u"R"_s, u"C"_s, u"U"_s, u"!"_s}.at(qsizetype(change));
    };
    switch (tab) {
    case SourceControlTab::changes:
        for (const bool isStaged : {true, false}) {
            QStringList section;
            for (const GitFileStatus& file : git.status()) {
                if (const auto& change = isStaged ? file.staged : file.unstaged) {
                    section.append(letter(*change) + u' ' + shownNames(file));
                }
            }
            if (!section.isEmpty()) {
                lines += QStringList{isStaged ? u"# Staged"_s : u"# Changes"_s} + section;
            }
        }
        break;
    case SourceControlTab::history:
        for (const GitCommit& commit : git.log(50)) {
            lines.append(commit.id.left(7) + u' ' + commit.summary + u" / "_s + commit.author + u' ' + commit.date);
        }
        break;
    case SourceControlTab::branches:
        lines.append(u"# Local"_s);
        for (const bool isRemote : {false, true}) {
            for (const GitBranch& branch : git.branches()) {
                if (branch.isRemote == isRemote) {
                    lines.append(branch.upstream ? branch.name + u' ' + *branch.upstream : branch.name);
                }
            }
            if (!isRemote) {
                lines.append(u"# Remote"_s);
            }
        }
        break;
    case SourceControlTab::stashes:
        for (const GitStash& stash : git.stashes()) {
            lines.append(stash.message + u" / "_s + stash.label);
        }
        break;
    case SourceControlTab::tags:
        for (const GitTag& tag : git.tags()) {
            lines.append(tag.name + u' ' + tag.sha->left(7) +
                         (tag.annotation ? u" / "_s + *tag.annotation : QString()));
        }
        break;
    case SourceControlTab::remotes:
        for (const GitRemote& remote : git.remotes()) {
            lines.append(remote.name + u" / "_s + remote.url);
        }
        break;
    }
    return lines;
}

/// Presses an answer of the dialog that is shown.
void answer(PanelFixture& f, const QString& title, const QString& name)
{
    const auto* dialog = f.window.findChild<ConfirmationDialog*>();
    QVERIFY(dialog != nullptr && dialog->isVisible());
    QCOMPARE(dialog->windowTitle(), title);
    clickOn(*dialog, name);
    QVERIFY(!dialog->isVisible());
    QTRY_VERIFY(f.window.findChild<ConfirmationDialog*>() == nullptr);
}

void typeMessage(PanelFixture& f, const QString& text)
{
    auto* field = f.view.findChild<CommitMessageField*>();
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

} // namespace

#define COMPARE_WITH_FRESH(f, tab) QCOMPARE((f).lines(), freshLines((f).repo, tab))

class SourceControlViewTabsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    // Changes
    void aCleanTreeSaysSo();
    void aFileWithBothChangesStandsInBothLists();
    void everyKindOfChangeHasItsRow();
    void filesAreStagedAndUnstaged();
    void aChangeIsDiscarded();
    void everythingIsStagedAtOnce();
    void aCommitTakesWhatIsStaged();
    void committingNothingClearsTheMessageToo();
    void aRefusedCommitKeepsTheMessage();
    void blankMessagesCannotBeCommitted_data();
    void blankMessagesCannotBeCommitted();
    void theLastCommitIsAmended();
    void amendingWithoutAMessageKeepsTheOldOne();
    void theMessageFieldGrowsToFourLines();
    void aMergeIsAborted();
    void markupInAPathIsText();
    void aFileIsStagedByKeys();
    // History
    void commitsStandNewestFirst();
    void theLimitIsChosen();
    void commitsAreReadWhenTheTabAppearsAndOnReload();
    void aRepositoryWithoutCommitsSaysSo();
    // Branches
    void aBranchIsCreatedAndCheckedOut();
    void aBlankBranchIsNotCreated();
    void aBranchIsCheckedOut();
    void theCurrentBranchOffersNothing();
    void aBranchIsMergedAfterAQuestion();
    void aBranchIsDeletedAfterAQuestion();
    void aRemoteBranchIsCheckedOut();
    // Stashes
    void changesAreStashed();
    void untrackedFilesAreStashedOnDemand();
    void stashesAreAppliedPoppedAndDropped();
    void aStashIsNotTakenForTheOneInItsPlace();
    void stashesOfOneNameAreNotTakenForEachOther();
    // Tags
    void tagsAreMade();
    void aTagIsPushedToOrigin();
    void aTagIsDeleted();
    // Remotes
    void aRemoteIsAddedAndRemoved();
    void anAddressIsEdited();
    void anEditedAddressOutlivesARefresh();
    // The network
    void fetchTellsWhatIsNew();
    void pullRebases();
    void pushSetsTheUpstreamWhenItIsMissing();
    void aFailedPushShowsItsWords();
    // A day's work
    void hiddenTabsTakeTheStateWhenTheyAppear();
    void refusalsReachTheErrorLine();
};

void SourceControlViewTabsTest::initTestCase()
{
    useFixedGitEnvironment();
    style::installOn(*qApp);
}

void SourceControlViewTabsTest::aCleanTreeSaysSo()
{
    PanelFixture f;
    f.show();
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.list().accessibleDescription(), u"Working tree clean"_s);
    f.repo.write(u"a.txt"_s, "two\n");
    f.click(u"Refresh"_s);
    QCOMPARE(f.list().accessibleDescription(), QString());
}

void SourceControlViewTabsTest::aFileWithBothChangesStandsInBothLists()
{
    PanelFixture f;
    f.repo.write(u"new.txt"_s, "one\n");
    f.repo.git({u"add"_s, u"new.txt"_s});
    f.repo.write(u"new.txt"_s, "two\n");
    f.show();
    QCOMPARE(f.lines(), (QStringList{u"# Staged"_s, u"A new.txt"_s, u"# Changes"_s, u"M new.txt"_s}));
    QCOMPARE(static_cast<const RowModel*>(f.list().model())->shownTitleOf(0), u"STAGED"_s);
    hover(f.list(), 1);
    QCOMPARE(shownActions(f.list()), QStringList{u"Unstage"_s});
    hover(f.list(), 3);
    QCOMPARE(shownActions(f.list()), (QStringList{u"Stage"_s, u"Discard"_s}));
}

void SourceControlViewTabsTest::everyKindOfChangeHasItsRow()
{
    PanelFixture f;
    for (const char* name : {"deleted", "renamed", "gone", "conflict"}) {
        f.repo.write(QString::fromLatin1(name), QByteArray(name) + "\n");
    }
    f.repo.commitAll(u"more"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"-b"_s, u"side"_s});
    f.repo.write(u"conflict"_s, "side\n");
    f.repo.commitAll(u"side"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"main"_s});
    f.repo.write(u"conflict"_s, "main\n");
    f.repo.commitAll(u"main"_s);
    f.repo.tryGit({u"merge"_s, u"side"_s});
    f.repo.git({u"rm"_s, u"-q"_s, u"deleted"_s});
    f.repo.git({u"mv"_s, u"renamed"_s, u"new name"_s});
    f.repo.remove(u"gone"_s);
    f.repo.write(u"한글.txt"_s, "x");
    f.show();
    COMPARE_WITH_FRESH(f, SourceControlTab::changes);
    QVERIFY(f.lines().contains(u"! conflict"_s));
    QVERIFY(f.lines().contains(u"R renamed -> new name"_s));
    // In both lists, as both columns say so.
    QCOMPARE(f.lines().count(u"! conflict"_s), 2);
}

void SourceControlViewTabsTest::filesAreStagedAndUnstaged()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.write(u"b.txt"_s, "b\n");
    f.show();
    QCOMPARE(f.lines(), (QStringList{u"# Changes"_s, u"M a.txt"_s, u"U b.txt"_s}));
    act(f.list(), u"U b.txt"_s, u"Stage"_s);
    QCOMPARE(f.lines(), (QStringList{u"# Staged"_s, u"A b.txt"_s, u"# Changes"_s, u"M a.txt"_s}));
    QCOMPARE(f.repo.staged(u"b.txt"_s), QByteArray("b\n"));
    act(f.list(), u"M a.txt"_s, u"Stage"_s);
    COMPARE_WITH_FRESH(f, SourceControlTab::changes);
    QCOMPARE(f.lines(), (QStringList{u"# Staged"_s, u"M a.txt"_s, u"A b.txt"_s}));
    act(f.list(), u"A b.txt"_s, u"Unstage"_s);
    COMPARE_WITH_FRESH(f, SourceControlTab::changes);
    QCOMPARE(f.lines(), (QStringList{u"# Staged"_s, u"M a.txt"_s, u"# Changes"_s, u"U b.txt"_s}));
    QVERIFY(!f.view.diffPath());
}

void SourceControlViewTabsTest::aChangeIsDiscarded()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    act(f.list(), u"M a.txt"_s, u"Discard"_s);
    QCOMPARE(f.repo.read(u"a.txt"_s), QByteArray("one\n"));
    QCOMPARE(f.lines(), QStringList());
    QVERIFY(f.window.findChild<QDialog*>() == nullptr);
}

void SourceControlViewTabsTest::everythingIsStagedAtOnce()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.write(u"deep/b.txt"_s, "b\n");
    f.show();
    f.click(u"Stage All"_s);
    QCOMPARE(f.lines(), (QStringList{u"# Staged"_s, u"M a.txt"_s, u"A deep/b.txt"_s}));
    COMPARE_WITH_FRESH(f, SourceControlTab::changes);
}

void SourceControlViewTabsTest::aCommitTakesWhatIsStaged()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.write(u"b.txt"_s, "b\n");
    f.show();
    act(f.list(), u"M a.txt"_s, u"Stage"_s);
    QVERIFY(!f.isEnabled(u"Commit"_s));
    typeMessage(f, u"Second commit"_s);
    QVERIFY(f.isEnabled(u"Commit"_s));
    f.click(u"Commit"_s);
    QCOMPARE(f.output({u"log"_s, u"-1"_s, u"--format=%s"_s}), QByteArray("Second commit"));
    QCOMPARE(f.view.commitMessage(), QString());
    QCOMPARE(f.lines(), (QStringList{u"# Changes"_s, u"U b.txt"_s}));

    // By the keyboard, in several lines.
    f.click(u"Stage All"_s);
    typeMessage(f, u"Third"_s);
    auto* field = f.view.findChild<CommitMessageField*>();
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClicks(field, u"with a body"_s);
    QTest::keyClick(field, Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(f.output({u"log"_s, u"-1"_s, u"--format=%B"_s}), QByteArray("Third\n\nwith a body"));
    QCOMPARE(f.lines(), QStringList());
}

void SourceControlViewTabsTest::committingNothingClearsTheMessageToo()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    typeMessage(f, u"nothing is staged"_s);
    f.click(u"Commit"_s);
    QCOMPARE(f.output({u"log"_s, u"--format=%s"_s}), QByteArray("first"));
    QCOMPARE(f.view.commitMessage(), QString());
    // It was not lost for good.
    QTest::keyClick(f.view.findChild<CommitMessageField*>(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(f.view.commitMessage(), u"nothing is staged"_s);
}

void SourceControlViewTabsTest::aRefusedCommitKeepsTheMessage()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.git({u"add"_s, u"-A"_s});
    f.repo.write(u".git/hooks/pre-commit"_s, "#!/bin/sh\necho 'not today' >&2\nexit 1\n");
    QFile::setPermissions(f.repo.filePath(u".git/hooks/pre-commit"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    f.show();
    typeMessage(f, u"refused"_s);
    f.click(u"Commit"_s);
    QCOMPARE(f.view.commitMessage(), u"refused"_s);
    QVERIFY(f.wasTold(u"not today\n"_s));
}

void SourceControlViewTabsTest::blankMessagesCannotBeCommitted_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("canCommit");
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("blanks") << u"  \t"_s << false;
    QTest::newRow("lines") << u"\n\n"_s << false;
    QTest::newRow("wide blanks") << u"\u00a0\u3000"_s << false;
    QTest::newRow("a letter") << u"\n x"_s << true;
}

void SourceControlViewTabsTest::blankMessagesCannotBeCommitted()
{
    QFETCH(QString, message);
    PanelFixture f;
    f.show();
    f.view.setCommitMessage(message);
    QTEST(f.isEnabled(u"Commit"_s), "canCommit");
    f.click(u"Amend last"_s);
    QVERIFY(f.isEnabled(u"Amend"_s));
    QVERIFY(visibleButton(f.view, u"Commit"_s) == nullptr);
}

void SourceControlViewTabsTest::theLastCommitIsAmended()
{
    PanelFixture f;
    f.repo.commitAll(u"wrong"_s);
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    f.click(u"Stage All"_s);
    f.click(u"Amend last"_s);
    typeMessage(f, u"right"_s);
    f.click(u"Amend"_s);
    QCOMPARE(f.output({u"log"_s, u"--format=%s"_s}), QByteArray("right\nfirst"));
    QCOMPARE(f.output({u"show"_s, u"HEAD:a.txt"_s}), QByteArray("two"));
    QCOMPARE(f.view.commitMessage(), QString());
    QVERIFY(visibleButton(f.view, u"Commit"_s) != nullptr);
}

void SourceControlViewTabsTest::amendingWithoutAMessageKeepsTheOldOne()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    f.click(u"Stage All"_s);
    f.click(u"Amend last"_s);
    f.click(u"Amend"_s);
    QCOMPARE(f.output({u"log"_s, u"--format=%s"_s}), QByteArray("first"));
    QCOMPARE(f.output({u"show"_s, u"HEAD:a.txt"_s}), QByteArray("two"));
    QCOMPARE(f.lines(), QStringList());
}

void SourceControlViewTabsTest::theMessageFieldGrowsToFourLines()
{
    PanelFixture f;
    f.show();
    auto* field = f.view.findChild<CommitMessageField*>();
    QList<int> heights;
    for (int lines = 1; lines <= 6; ++lines) {
        f.view.setCommitMessage(QStringList(lines, u"line"_s).join(u'\n'));
        heights.append(field->height());
    }
    const int line = field->fontMetrics().lineSpacing();
    QCOMPARE(heights[1], heights[0]);
    QCOMPARE(heights[2], heights[1] + line);
    QCOMPARE(heights[3], heights[2] + line);
    QCOMPARE(heights[5], heights[3]);
}

void SourceControlViewTabsTest::aMergeIsAborted()
{
    PanelFixture f;
    f.repo.makeConflictingBranches();
    f.repo.tryGit({u"merge"_s, u"side"_s});
    f.show();
    QCOMPARE(f.lines(), (QStringList{u"# Staged"_s, u"! a.txt"_s, u"# Changes"_s, u"! a.txt"_s}));
    bool isCounted = false;
    for (const auto* label : f.view.findChildren<TextLabel*>()) {
        isCounted = isCounted || (label->isVisible() && label->text() == u"1 conflicted");
    }
    QVERIFY(isCounted);
    f.click(u"Abort Merge"_s);
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.repo.read(u"a.txt"_s), QByteArray("main\n"));
    QVERIFY(visibleButton(f.view, u"Abort Merge"_s) == nullptr);
}

void SourceControlViewTabsTest::markupInAPathIsText()
{
    PanelFixture f;
    f.repo.write(u"<b>bold<b> & co"_s, "x");
    f.show();
    QCOMPARE(f.lines().last(), u"U <b>bold<b> & co"_s);
    const QModelIndex row = f.list().model()->index(1, 0);
    QVERIFY(row.data(Qt::ToolTipRole).toString().contains(u"&lt;b&gt;bold&lt;b&gt; &amp; co"));
}

void SourceControlViewTabsTest::aFileIsStagedByKeys()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.write(u"b.txt"_s, "b\n");
    f.repo.write(u"c.txt"_s, "c\n");
    f.show();
    f.list().setFocus(Qt::TabFocusReason);
    const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
    press(Qt::Key_Down);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    QCOMPARE(f.lines(), (QStringList{u"# Staged"_s, u"A b.txt"_s, u"# Changes"_s, u"M a.txt"_s, u"U c.txt"_s}));
    press(Qt::Key_Escape);
    press(Qt::Key_Return);
    QVERIFY(f.view.diffPath().has_value());
}

void SourceControlViewTabsTest::commitsStandNewestFirst()
{
    PanelFixture f;
    f.repo.commitAll(u"<b>second</b> & 둘째"_s);
    f.show(SourceControlTab::history);
    COMPARE_WITH_FRESH(f, SourceControlTab::history);
    const QString sha = QString::fromLatin1(f.output({u"rev-parse"_s, u"HEAD"_s}));
    QCOMPARE(f.lines().first(), sha.left(7) + u" <b>second</b> & 둘째 / Test Author 2024-02-03"_s);
    hover(f.list(), 0);
    QCOMPARE(shownActions(f.list()), QStringList());
}

void SourceControlViewTabsTest::theLimitIsChosen()
{
    PanelFixture f;
    QByteArray commits;
    for (int i = 0; i < 60; ++i) {
        commits += "commit refs/heads/main\ncommitter A <a@example.org> 1700000000 +0000\ndata 1\nx\n";
        commits += i == 0 ? "from refs/heads/main^0\n" : "";
    }
    QVERIFY(f.repo.tryGit({u"fast-import"_s, u"--quiet"_s}, commits).exit.isSuccess());
    f.show(SourceControlTab::history);
    auto* tab = f.view.findChild<HistoryTab*>();
    QCOMPARE(tab->limit(), 50);
    QCOMPARE(f.lines().size(), 50);
    auto* button = qobject_cast<PlainButton*>(visibleButton(f.view, u"50"_s));
    QVERIFY(button != nullptr);
    QMenu* menu = openMenu(*button);
    QCOMPARE(linesOf(*menu), (QStringList{u"25"_s, u"*50"_s, u"100"_s, u"250"_s}));
    choose(*menu, u"25"_s);
    QCOMPARE(f.lines().size(), 25);
    QCOMPARE(button->text(), u"25"_s);
    QTRY_VERIFY(button->findChild<QMenu*>() == nullptr);
    choose(*openMenu(*button), u"100"_s);
    QCOMPARE(f.lines().size(), 61);
    QCOMPARE(tab->limit(), 100);
}

void SourceControlViewTabsTest::commitsAreReadWhenTheTabAppearsAndOnReload()
{
    PanelFixture f;
    f.show(SourceControlTab::history);
    QCOMPARE(f.lines().size(), 1);
    f.repo.commitAll(u"second"_s);
    f.click(u"Refresh"_s);
    QCOMPARE(f.lines().size(), 1);
    f.click(u"Reload"_s);
    QCOMPARE(f.lines().size(), 2);
    f.repo.commitAll(u"third"_s);
    f.view.setTab(SourceControlTab::tags);
    f.view.setTab(SourceControlTab::history);
    QCOMPARE(f.lines().size(), 3);
}

void SourceControlViewTabsTest::aRepositoryWithoutCommitsSaysSo()
{
    PanelFixture f(false);
    f.show(SourceControlTab::history);
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.list().accessibleDescription(), u"No commits yet"_s);
}

void SourceControlViewTabsTest::aBranchIsCreatedAndCheckedOut()
{
    PanelFixture f;
    f.show(SourceControlTab::branches);
    f.type(u"New branch"_s, u"  기능/하나  "_s);
    f.click(u"Create"_s);
    QCOMPARE(QString::fromUtf8(f.output({u"rev-parse"_s, u"--abbrev-ref"_s, u"HEAD"_s})), u"기능/하나"_s);
    QCOMPARE(f.field(u"New branch"_s).text(), QString());
    QCOMPARE(f.lines(), (QStringList{u"# Local"_s, u"main"_s, u"기능/하나"_s, u"# Remote"_s}));
    QCOMPARE(static_cast<const RowModel*>(f.list().model())->shownTitleOf(0), u"Local"_s);
    COMPARE_WITH_FRESH(f, SourceControlTab::branches);

    f.type(u"New branch"_s, u"second"_s);
    QTest::keyClick(&f.field(u"New branch"_s), Qt::Key_Return);
    QCOMPARE(f.git().branch(), u"second"_s);

    // A refusal clears the field too, and tells.
    f.type(u"New branch"_s, u"second"_s);
    f.click(u"Create"_s);
    QCOMPARE(f.field(u"New branch"_s).text(), QString());
    QVERIFY(f.wasTold(u"already exists"_s));
}

void SourceControlViewTabsTest::aBlankBranchIsNotCreated()
{
    PanelFixture f;
    f.show(SourceControlTab::branches);
    f.type(u"New branch"_s, u" \u3000 "_s);
    f.click(u"Create"_s);
    QCOMPARE(f.field(u"New branch"_s).text(), u" \u3000 "_s);
    QCOMPARE(f.error(), QString());
    QCOMPARE(f.git().branches().size(), 1);
}

void SourceControlViewTabsTest::aBranchIsCheckedOut()
{
    PanelFixture f;
    f.repo.git({u"branch"_s, u"next"_s});
    f.show(SourceControlTab::branches);
    act(f.list(), u"next"_s, u"Checkout"_s);
    QCOMPARE(f.git().branch(), u"next"_s);
    QVERIFY(f.list().rows().rowAt(itemOf(f.list(), u"next"_s)).actions.isEmpty());
    COMPARE_WITH_FRESH(f, SourceControlTab::branches);
}

void SourceControlViewTabsTest::theCurrentBranchOffersNothing()
{
    PanelFixture f;
    f.repo.git({u"branch"_s, u"next"_s});
    f.show(SourceControlTab::branches);
    hover(f.list(), itemOf(f.list(), u"main"_s));
    QCOMPARE(shownActions(f.list()), QStringList());
    QCOMPARE(f.list().rows().rowAt(1).symbol, u"checkmark.circle.fill"_s);
    hover(f.list(), itemOf(f.list(), u"next"_s));
    QCOMPARE(shownActions(f.list()), (QStringList{u"Checkout"_s, u"Merge into current"_s, u"Delete"_s}));
    QCOMPARE(f.list().rows().rowAt(2).symbol, u"circle"_s);
}

void SourceControlViewTabsTest::aBranchIsMergedAfterAQuestion()
{
    PanelFixture f;
    f.repo.git({u"checkout"_s, u"-q"_s, u"-b"_s, u"<b>side</b>"_s});
    f.repo.write(u"b.txt"_s, "b\n");
    f.repo.commitAll(u"side"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"main"_s});
    f.show(SourceControlTab::branches);
    auto* tab = f.view.findChild<BranchesTab*>();
    const QString title = u"Merge <b>side</b> into main?"_s;

    act(f.list(), u"<b>side</b>"_s, u"Merge into current"_s);
    QVERIFY(tab->showingMergePicker() && tab->showingMergePicker()->name == u"<b>side</b>");
    answer(f, title, u"Cancel"_s);
    QVERIFY(!tab->showingMergePicker());
    QVERIFY(!QFile::exists(f.repo.filePath(u"b.txt"_s)));

    act(f.list(), u"<b>side</b>"_s, u"Merge into current"_s);
    answer(f, title, u"Merge"_s);
    QVERIFY(!tab->showingMergePicker());
    QVERIFY(QFile::exists(f.repo.filePath(u"b.txt"_s)));
    COMPARE_WITH_FRESH(f, SourceControlTab::branches);
}

void SourceControlViewTabsTest::aBranchIsDeletedAfterAQuestion()
{
    PanelFixture f;
    f.repo.git({u"branch"_s, u"merged"_s});
    f.repo.git({u"checkout"_s, u"-q"_s, u"-b"_s, u"unmerged"_s});
    f.repo.commitAll(u"more"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"main"_s});
    f.show(SourceControlTab::branches);
    auto* tab = f.view.findChild<BranchesTab*>();
    act(f.list(), u"merged"_s, u"Delete"_s);
    QVERIFY(tab->showingDeleteConfirm() && tab->showingDeleteConfirm()->name == u"merged");
    answer(f, u"Delete branch merged?"_s, u"Delete (safe)"_s);
    QVERIFY(!tab->showingDeleteConfirm());
    QCOMPARE(f.lines(), (QStringList{u"# Local"_s, u"main"_s, u"unmerged"_s, u"# Remote"_s}));

    act(f.list(), u"unmerged"_s, u"Delete"_s);
    answer(f, u"Delete branch unmerged?"_s, u"Delete (safe)"_s);
    QVERIFY(f.wasTold(u"not fully merged"_s));
    QCOMPARE(f.lines().size(), 4);
    act(f.list(), u"unmerged"_s, u"Delete"_s);
    answer(f, u"Delete branch unmerged?"_s, u"Cancel"_s);
    QCOMPARE(f.lines().size(), 4);
    act(f.list(), u"unmerged"_s, u"Delete"_s);
    answer(f, u"Delete branch unmerged?"_s, u"Force delete (-D)"_s);
    QCOMPARE(f.lines(), (QStringList{u"# Local"_s, u"main"_s, u"# Remote"_s}));
    COMPARE_WITH_FRESH(f, SourceControlTab::branches);
}

void SourceControlViewTabsTest::aRemoteBranchIsCheckedOut()
{
    PanelFixture f;
    const TemporaryRepository origin;
    origin.write(u"a.txt"_s, "one\n");
    origin.commitAll(u"first"_s);
    origin.git({u"branch"_s, u"feature/x"_s});
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, origin.path()});
    f.repo.git({u"fetch"_s, u"-q"_s, u"origin"_s});
    f.show(SourceControlTab::branches);
    QCOMPARE(f.lines(), (QStringList{u"# Local"_s, u"main"_s, u"# Remote"_s, u"origin/feature/x"_s, u"origin/main"_s}));
    act(f.list(), u"origin/feature/x"_s, u"Checkout (create local tracking branch)"_s);
    QCOMPARE(f.git().branch(), u"feature/x"_s);
    QVERIFY(f.lines().contains(u"feature/x origin/feature/x"_s));
    COMPARE_WITH_FRESH(f, SourceControlTab::branches);
}

void SourceControlViewTabsTest::changesAreStashed()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show(SourceControlTab::stashes);
    QCOMPARE(f.list().accessibleDescription(), u"No stashes"_s);
    f.type(u"Stash message (optional)"_s, u"작업 <i>중</i>"_s);
    f.click(u"Stash"_s);
    QCOMPARE(f.lines(), QStringList{u"On main: 작업 <i>중</i> / stash@{0}"_s});
    QCOMPARE(f.field(u"Stash message (optional)"_s).text(), QString());
    QCOMPARE(f.repo.read(u"a.txt"_s), QByteArray("one\n"));

    f.repo.write(u"a.txt"_s, "three\n");
    f.click(u"Stash"_s);
    QCOMPARE(f.lines().size(), 2);
    QVERIFY(f.lines().first().startsWith(u"WIP on main"));
    COMPARE_WITH_FRESH(f, SourceControlTab::stashes);
}

void SourceControlViewTabsTest::untrackedFilesAreStashedOnDemand()
{
    PanelFixture f;
    f.repo.write(u"b.txt"_s, "b\n");
    f.show(SourceControlTab::stashes);
    f.click(u"Stash"_s);
    QVERIFY(QFile::exists(f.repo.filePath(u"b.txt"_s)));
    f.click(u"Include untracked files (-u)"_s);
    f.click(u"Stash"_s);
    QVERIFY(!QFile::exists(f.repo.filePath(u"b.txt"_s)));
    QCOMPARE(f.lines().size(), 1);
}

void SourceControlViewTabsTest::stashesAreAppliedPoppedAndDropped()
{
    PanelFixture f;
    for (const char* text : {"two\n", "three\n", "four\n"}) {
        f.repo.write(u"a.txt"_s, text);
        f.repo.git({u"stash"_s, u"push"_s, u"-q"_s, u"-m"_s, QString::fromLatin1(text).trimmed()});
    }
    f.show(SourceControlTab::stashes);
    hover(f.list(), 0);
    QCOMPARE(shownActions(f.list()), (QStringList{u"Apply (keep stash)"_s, u"Pop (apply + drop)"_s, u"Drop"_s}));
    act(f.list(), u"On main: two / stash@{2}"_s, u"Apply (keep stash)"_s);
    QCOMPARE(f.repo.read(u"a.txt"_s), QByteArray("two\n"));
    QCOMPARE(f.lines().size(), 3);
    QCOMPARE(f.git().status().size(), 1);
    f.repo.git({u"checkout"_s, u"-q"_s, u"--"_s, u"a.txt"_s});
    act(f.list(), u"On main: three / stash@{1}"_s, u"Pop (apply + drop)"_s);
    QCOMPARE(f.repo.read(u"a.txt"_s), QByteArray("three\n"));
    QCOMPARE(f.lines(), (QStringList{u"On main: four / stash@{0}"_s, u"On main: two / stash@{1}"_s}));
    act(f.list(), u"On main: four / stash@{0}"_s, u"Drop"_s);
    QCOMPARE(f.lines(), QStringList{u"On main: two / stash@{0}"_s});
    COMPARE_WITH_FRESH(f, SourceControlTab::stashes);
}

void SourceControlViewTabsTest::aStashIsNotTakenForTheOneInItsPlace()
{
    PanelFixture f;
    for (const char* text : {"two\n", "three\n", "four\n", "five\n"}) {
        f.repo.write(u"a.txt"_s, text);
        f.repo.git({u"stash"_s, u"push"_s, u"-q"_s, u"-m"_s, QString::fromLatin1(text).trimmed()});
    }
    f.show(SourceControlTab::stashes);
    const Row top = f.list().rows().rowAt(0);
    const Row second = f.list().rows().rowAt(1);
    QCOMPARE(top.actions.last().help, u"Drop"_s);
    // The next row slides under the pointer, which does not move.
    act(f.list(), u"On main: five / stash@{0}"_s, u"Drop"_s);
    clickOn(*f.list().viewport(), u"Drop"_s);
    const QStringList three{u"On main: four / stash@{0}"_s, u"On main: three / stash@{1}"_s,
                            u"On main: two / stash@{2}"_s};
    QCOMPARE(f.lines(), three);
    // What an open menu offers was made for the list before.
    for (const RowAction& action : top.actions) {
        action.run();
    }
    QCOMPARE(f.lines(), three);
    QCOMPARE(f.repo.read(u"a.txt"_s), QByteArray("one\n"));
    second.actions.last().run();
    QCOMPARE(f.lines(), (QStringList{u"On main: three / stash@{0}"_s, u"On main: two / stash@{1}"_s}));
    COMPARE_WITH_FRESH(f, SourceControlTab::stashes);
}

void SourceControlViewTabsTest::stashesOfOneNameAreNotTakenForEachOther()
{
    PanelFixture f;
    const auto stash = [&f](const QByteArray& text) {
        f.repo.write(u"a.txt"_s, text);
        f.repo.git({u"stash"_s, u"push"_s, u"-q"_s, u"-m"_s, u"same"_s});
    };
    stash("two\n");
    stash("three\n");
    f.show(SourceControlTab::stashes);
    const Row three = f.list().rows().rowAt(0);
    // Another one on top moves it down.
    stash("four\n");
    f.git().refreshStashes();
    three.actions.first().run();
    QCOMPARE(f.repo.read(u"a.txt"_s), QByteArray("three\n"));
    f.repo.git({u"checkout"_s, u"-q"_s, u"--"_s, u"a.txt"_s});
    const Row stillThree = f.list().rows().rowAt(1);
    // One below it went, and now the one above has its number.
    f.repo.git({u"stash"_s, u"drop"_s, u"-q"_s, u"stash@{2}"_s});
    f.git().refreshStashes();
    stillThree.actions.last().run();
    QCOMPARE(f.lines().size(), 2);
    COMPARE_WITH_FRESH(f, SourceControlTab::stashes);
}

void SourceControlViewTabsTest::tagsAreMade()
{
    PanelFixture f;
    f.show(SourceControlTab::tags);
    QCOMPARE(f.list().accessibleDescription(), u"No tags"_s);
    QVERIFY(!f.isEnabled(u"Create"_s));
    f.type(u"Tag name (e.g. v1.0)"_s, u"v1"_s);
    QVERIFY(f.isEnabled(u"Create"_s));
    f.click(u"Create"_s);
    QVERIFY(!f.isEnabled(u"Create"_s));
    f.type(u"Tag name (e.g. v1.0)"_s, u"v2"_s);
    f.type(u"Annotation (optional)"_s, u"주석 <u>here</u>"_s);
    f.click(u"Create"_s);
    const QString sha = QString::fromLatin1(f.output({u"rev-parse"_s, u"HEAD"_s})).left(7);
    QCOMPARE(f.lines(), (QStringList{u"v1 "_s + sha, u"v2 "_s + sha + u" / 주석 <u>here</u>"_s}));
    QCOMPARE(f.field(u"Tag name (e.g. v1.0)"_s).text(), QString());
    QCOMPARE(f.field(u"Annotation (optional)"_s).text(), QString());
    QCOMPARE(f.output({u"cat-file"_s, u"-t"_s, u"v1"_s}), QByteArray("commit"));
    QCOMPARE(f.output({u"cat-file"_s, u"-t"_s, u"v2"_s}), QByteArray("tag"));
    COMPARE_WITH_FRESH(f, SourceControlTab::tags);
}

void SourceControlViewTabsTest::aTagIsPushedToOrigin()
{
    PanelFixture f;
    const TemporaryRepository origin({u"init"_s, u"-q"_s, u"--bare"_s});
    f.repo.git({u"tag"_s, u"v1"_s});
    f.show(SourceControlTab::tags);
    const QString line = f.lines().first();
    hover(f.list(), 0);
    QCOMPARE(shownActions(f.list()), (QStringList{u"Push tag"_s, u"Delete tag"_s}));
    act(f.list(), line, u"Push tag"_s);
    QVERIFY(f.wasTold(u"origin"_s));
    f.dismissError();
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, origin.path()});
    act(f.list(), line, u"Push tag"_s);
    QCOMPARE(f.error(), QString());
    QCOMPARE(origin.git({u"tag"_s}), QByteArray("v1\n"));
}

void SourceControlViewTabsTest::aTagIsDeleted()
{
    PanelFixture f;
    f.repo.git({u"tag"_s, u"v1"_s});
    f.repo.git({u"tag"_s, u"v2"_s});
    f.show(SourceControlTab::tags);
    act(f.list(), f.lines().first(), u"Delete tag"_s);
    QCOMPARE(f.output({u"tag"_s}), QByteArray("v2"));
    QCOMPARE(f.lines().size(), 1);
    COMPARE_WITH_FRESH(f, SourceControlTab::tags);
}

void SourceControlViewTabsTest::aRemoteIsAddedAndRemoved()
{
    PanelFixture f;
    f.show(SourceControlTab::remotes);
    QCOMPARE(f.list().accessibleDescription(), u"No remotes configured"_s);
    QVERIFY(!f.isEnabled(u"Add"_s));
    f.type(u"Name (e.g. origin)"_s, u"origin"_s);
    QVERIFY(!f.isEnabled(u"Add"_s));
    f.type(u"URL"_s, u"https://host/<b>x</b>.git"_s);
    QVERIFY(f.isEnabled(u"Add"_s));
    f.click(u"Add"_s);
    QCOMPARE(f.lines(), QStringList{u"origin / https://host/<b>x</b>.git"_s});
    QCOMPARE(f.field(u"Name (e.g. origin)"_s).text(), QString());
    QCOMPARE(f.field(u"URL"_s).text(), QString());
    COMPARE_WITH_FRESH(f, SourceControlTab::remotes);
    hover(f.list(), 0);
    QCOMPARE(shownActions(f.list()), (QStringList{u"Edit URL"_s, u"Remove remote"_s}));
    act(f.list(), f.lines().first(), u"Remove remote"_s);
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.output({u"remote"_s}), QByteArray());
}

void SourceControlViewTabsTest::anAddressIsEdited()
{
    PanelFixture f;
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, u"/old"_s});
    f.repo.git({u"remote"_s, u"add"_s, u"other"_s, u"/other"_s});
    f.show(SourceControlTab::remotes);
    const auto editor = [&] { return f.list().viewport()->findChild<QLineEdit*>(); };

    act(f.list(), u"origin / /old"_s, u"Edit URL"_s);
    QVERIFY(editor() != nullptr && editor()->isVisible() && editor()->hasFocus());
    QCOMPARE(editor()->text(), u"/old"_s);
    QCOMPARE(editor()->placeholderText(), u"URL"_s);
    editor()->clear();
    QTest::keyClicks(editor(), u"/thrown away"_s);
    clickOn(*f.list().viewport(), u"Cancel"_s);
    QTRY_VERIFY(editor() == nullptr);
    QCOMPARE(f.lines(), (QStringList{u"origin / /old"_s, u"other / /other"_s}));

    act(f.list(), u"origin / /old"_s, u"Edit URL"_s);
    QCOMPARE(editor()->text(), u"/old"_s);
    editor()->clear();
    QTest::keyClicks(editor(), u"/new"_s);
    clickOn(*f.list().viewport(), u"Save"_s);
    QTRY_VERIFY(editor() == nullptr);
    QCOMPARE(f.lines(), (QStringList{u"origin / /new"_s, u"other / /other"_s}));
    QCOMPARE(f.output({u"remote"_s, u"get-url"_s, u"origin"_s}), QByteArray("/new"));
    COMPARE_WITH_FRESH(f, SourceControlTab::remotes);

    // By keys.
    act(f.list(), u"other / /other"_s, u"Edit URL"_s);
    QTest::keyClick(editor(), Qt::Key_Escape);
    QTRY_VERIFY(editor() == nullptr);
    act(f.list(), u"other / /other"_s, u"Edit URL"_s);
    QTest::keyClicks(editor(), u"/typed"_s);
    QTest::keyClick(editor(), Qt::Key_Return);
    QTRY_VERIFY(editor() == nullptr);
    QCOMPARE(f.output({u"remote"_s, u"get-url"_s, u"other"_s}), QByteArray("/typed"));
}

void SourceControlViewTabsTest::anEditedAddressOutlivesARefresh()
{
    PanelFixture f;
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, u"/old"_s});
    f.show(SourceControlTab::remotes);
    act(f.list(), u"origin / /old"_s, u"Edit URL"_s);
    auto* field = f.list().viewport()->findChild<QLineEdit*>();
    QTest::keyClicks(field, u"/half"_s);
    f.git().refreshAll();
    QCOMPARE(f.list().viewport()->findChild<QLineEdit*>(), field);
    QVERIFY(field->hasFocus());
    f.repo.git({u"remote"_s, u"add"_s, u"more"_s, u"/more"_s});
    f.git().refreshAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    field = f.list().viewport()->findChild<QLineEdit*>();
    QVERIFY(field != nullptr);
    QCOMPARE(field->text(), u"/half"_s);
    QCOMPARE(f.lines().size(), 2);
}

void SourceControlViewTabsTest::fetchTellsWhatIsNew()
{
    PanelFixture f;
    const TemporaryRepository origin;
    origin.write(u"a.txt"_s, "one\n");
    origin.commitAll(u"first"_s);
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, origin.path()});
    f.repo.git({u"fetch"_s, u"-q"_s, u"origin"_s});
    f.repo.git({u"reset"_s, u"-q"_s, u"--hard"_s, u"origin/main"_s});
    f.repo.git({u"branch"_s, u"-q"_s, u"-u"_s, u"origin/main"_s});
    f.show(SourceControlTab::branches);
    origin.commitAll(u"second"_s);
    origin.git({u"branch"_s, u"new"_s});
    f.click(u"Fetch"_s);
    f.waitForTransfer();
    QCOMPARE(f.git().behind(), 1);
    QVERIFY(f.lines().contains(u"origin/new"_s));
    COMPARE_WITH_FRESH(f, SourceControlTab::branches);
    QCOMPARE(f.error(), QString());
}

void SourceControlViewTabsTest::pullRebases()
{
    PanelFixture f;
    const TemporaryRepository origin;
    origin.write(u"a.txt"_s, "one\n");
    origin.commitAll(u"first"_s);
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, origin.path()});
    f.repo.git({u"fetch"_s, u"-q"_s, u"origin"_s});
    f.repo.git({u"reset"_s, u"-q"_s, u"--hard"_s, u"origin/main"_s});
    f.repo.git({u"branch"_s, u"-q"_s, u"-u"_s, u"origin/main"_s});
    f.repo.write(u"mine"_s, "mine\n");
    f.repo.commitAll(u"mine"_s);
    f.show();
    origin.write(u"theirs"_s, "theirs\n");
    origin.commitAll(u"theirs"_s);
    f.click(u"Pull"_s);
    f.waitForTransfer();
    QCOMPARE(f.output({u"log"_s, u"--format=%s"_s}), QByteArray("mine\ntheirs\nfirst"));
    QCOMPARE(f.git().ahead(), 1);
    QCOMPARE(f.git().behind(), 0);
}

void SourceControlViewTabsTest::pushSetsTheUpstreamWhenItIsMissing()
{
    PanelFixture f;
    const TemporaryRepository origin({u"init"_s, u"-q"_s, u"--bare"_s});
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, origin.path()});
    f.show(SourceControlTab::branches);
    QVERIFY(f.git().upstreamMissingForCurrent());
    f.click(u"Push"_s);
    f.waitForTransfer();
    QCOMPARE(origin.git({u"log"_s, u"--format=%s"_s, u"main"_s}), QByteArray("first\n"));
    QCOMPARE(f.lines(), (QStringList{u"# Local"_s, u"main origin/main"_s, u"# Remote"_s, u"origin/main"_s}));
    QVERIFY(!f.git().upstreamMissingForCurrent());

    f.repo.commitAll(u"second"_s);
    f.click(u"Push"_s);
    f.waitForTransfer();
    QCOMPARE(origin.git({u"log"_s, u"--format=%s"_s, u"main"_s}), QByteArray("second\nfirst\n"));
    QCOMPARE(f.git().ahead(), 0);
}

void SourceControlViewTabsTest::aFailedPushShowsItsWords()
{
    PanelFixture f;
    f.show();
    f.click(u"Push"_s);
    f.waitForTransfer();
    QVERIFY(f.wasTold(u"No configured push destination"_s));
    QVERIFY(f.isEnabled(u"Push"_s));
}

void SourceControlViewTabsTest::hiddenTabsTakeTheStateWhenTheyAppear()
{
    PanelFixture f;
    f.show(SourceControlTab::history);
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.git({u"stash"_s, u"push"_s, u"-q"_s});
    f.repo.git({u"tag"_s, u"v1"_s});
    f.repo.git({u"branch"_s, u"next"_s});
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, u"/x"_s});
    f.repo.write(u"a.txt"_s, "three\n");
    f.click(u"Refresh"_s);
    for (const SourceControlTab tab : allSourceControlTabs) {
        f.view.setTab(tab);
        COMPARE_WITH_FRESH(f, tab);
        QVERIFY2(!f.lines().isEmpty(), qPrintable(rawValue(tab)));
    }
    // The rows of a hidden tab may outlast what they were made from.
    f.view.setTab(SourceControlTab::changes);
    f.list().setCurrentIndex(f.list().model()->index(1, 0));
    f.view.setTab(SourceControlTab::tags);
    f.repo.git({u"checkout"_s, u"-q"_s, u"--"_s, u"a.txt"_s});
    f.click(u"Refresh"_s);
    f.view.setTab(SourceControlTab::changes);
    QCOMPARE(f.lines(), QStringList());
}

void SourceControlViewTabsTest::refusalsReachTheErrorLine()
{
    PanelFixture f;
    f.repo.makeConflictingBranches();
    f.show(SourceControlTab::branches);
    f.repo.write(u"a.txt"_s, "in the way\n");
    act(f.list(), u"side"_s, u"Checkout"_s);
    QVERIFY(f.wasTold(u"would be overwritten"_s));
    QCOMPARE(f.git().status().size(), 1);
    f.repo.git({u"checkout"_s, u"-q"_s, u"--"_s, u"a.txt"_s});
    f.dismissError();
    act(f.list(), u"side"_s, u"Merge into current"_s);
    answer(f, u"Merge side into main?"_s, u"Merge"_s);
    QVERIFY(f.wasTold(u"CONFLICT"_s));
    f.view.setTab(SourceControlTab::changes);
    f.click(u"Abort Merge"_s);
    QCOMPARE(f.lines(), QStringList());
}

const kelm::test::Registered<SourceControlViewTabsTest> registered(kelm::test::Toolkit::widgets);

} // namespace source_control_view_tabs_test

#include "source_control_view_tabs_test.moc"
