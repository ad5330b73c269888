#include "git/panel/view/clone_dialog.h"
#include "git/panel/view/panel_fixture.h"
#include "git/panel/view/source_control_bottom_bar.h"
#include "git/panel/view/source_control_tab_bar.h"
#include "git/panel/view/source_control_view.h"
#include "git/viewer/view/commit_sheet.h"
#include "git/viewer/view/diff_sheet.h"
#include "platform/view/labels.h"
#include "support/test_program.h"

#include <QDialog>
#include <QSignalSpy>

namespace source_control_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The texts of the labels that are shown, in the order in which they stand.
QStringList shownLabels(const QWidget& widget)
{
    QStringList texts;
    for (const auto* label : widget.findChildren<QWidget*>()) {
        if (!label->isVisible()) {
            continue;
        }
        if (const auto* line = qobject_cast<const TextLabel*>(label)) {
            texts.append(line->text());
        } else if (const auto* lines = qobject_cast<const QLabel*>(label)) {
            texts.append(lines->text());
        }
    }
    return texts;
}

FakeSheet* shownSheet(const QWidget& window)
{
    for (auto* sheet : window.findChildren<QWidget*>(u"sheet"_s)) {
        if (sheet->isVisible()) {
            return static_cast<FakeSheet*>(sheet);
        }
    }
    return nullptr;
}

QWidget* withHelp(const QWidget& widget, const QString& help)
{
    for (auto* child : widget.findChildren<QWidget*>()) {
        if (child->toolTip() == help) {
            return child;
        }
    }
    return nullptr;
}

} // namespace

class SourceControlViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void withoutProjectAndDocumentNothingCanBeInitialized();
    void aProjectWithoutARepositoryIsInitialized();
    void aFailedInitializationTellsItsWords();
    void theEmptyStateClones();
    void theProjectGoesBeforeTheDocument();
    void withoutAProjectTheDocumentsFolderIsOpened();
    void withNeitherWhatWasOpenStays();
    void anotherProjectIsOpenedWhenItChanges();
    void aClosedProjectLeavesTheDocumentsFolder();
    void aClosedProjectWithoutASavedDocumentStays();
    void theHeaderTellsTheBranch();
    void theHeaderTellsOfConflicts();
    void refreshReadsEverything();
    void tabsStandInTheirOrder();
    void badgesFollowTheRepository();
    void aTabIsChosenByMouseAndByKey();
    void theTabBarFitsItsWidth_data();
    void theTabBarFitsItsWidth();
    void theMessageSurvivesAChangeOfTab();
    void aClickOnAFileOpensItsDiffUntilItIsClosed();
    void anotherPathReplacesTheSheet();
    void aClickOnACommitOpensIt();
    void theProgramsOwnSheetsShowWhatWasClicked();
    void escapeClosesASheet();
    void aSheetGoesWithThePanel();
    void theErrorLineShowsGitsWordsWhole();
    void aDismissedErrorRunsNothing();
    void markupInAnErrorIsText();
    void buttonsRestWhileATransferRuns();
    void thePanelFitsTheNarrowestSidebar();
};

void SourceControlViewTest::initTestCase()
{
    useFixedGitEnvironment();
    style::installOn(*qApp);
}

void SourceControlViewTest::withoutProjectAndDocumentNothingCanBeInitialized()
{
    PanelFixture f;
    f.window.show();
    QVERIFY(!f.git().repoURL());
    QCOMPARE(shownLabels(f.view), (QStringList{u"Not a Git repository"_s, u"Open a folder, or clone one below."_s}));
    QVERIFY(visibleButton(f.view, u"Initialize Repository"_s) == nullptr);
    QVERIFY(visibleButton(f.view, u"Clone Repository…"_s) != nullptr);
    QVERIFY(visibleButton(f.view, u"Fetch"_s) == nullptr);
}

void SourceControlViewTest::aProjectWithoutARepositoryIsInitialized()
{
    PanelFixture f;
    const QTemporaryDir folder;
    f.app.state.setCurrentProject(QUrl::fromLocalFile(folder.path()));
    f.window.show();
    QVERIFY(!f.git().repoURL());
    f.click(u"Initialize Repository"_s);
    QVERIFY(QFileInfo::exists(folder.filePath(u".git"_s)));
    QVERIFY(f.git().repoURL() == QUrl::fromLocalFile(folder.path()));
    QVERIFY(visibleButton(f.view, u"Initialize Repository"_s) == nullptr);
    QVERIFY(visibleButton(f.view, u"Fetch"_s) != nullptr);
    QFile head(folder.filePath(u".git/HEAD"_s));
    QVERIFY(head.open(QIODevice::ReadOnly));
    QCOMPARE(head.readAll(), QByteArray("ref: refs/heads/main\n"));
}

void SourceControlViewTest::aFailedInitializationTellsItsWords()
{
    PanelFixture f;
    // A file stands where the folder is to be.
    const QUrl file = f.app.write(u"file"_s, "text");
    f.app.state.setCurrentProject(file);
    f.window.show();
    f.click(u"Initialize Repository"_s);
    QVERIFY(!f.git().repoURL());
    QVERIFY(!f.git().lastError().value_or(QString()).isEmpty());
}

void SourceControlViewTest::theEmptyStateClones()
{
    PanelFixture f;
    f.window.show();
    QVERIFY(!f.view.showCloneDialog());
    f.click(u"Clone Repository…"_s);
    QVERIFY(f.view.showCloneDialog());
    auto* dialog = f.window.findChild<CloneDialog*>();
    QVERIFY(dialog != nullptr && dialog->isVisible() && dialog->isModal());
    QVERIFY(!f.app.state.showCloneDialog());
    clickOn(*dialog, u"Cancel"_s);
    QVERIFY(!f.view.showCloneDialog());

    f.view.setShowCloneDialog(true);
    f.view.setShowCloneDialog(true);
    QTRY_COMPARE(f.window.findChildren<CloneDialog*>().size(), 1);
    f.view.setShowCloneDialog(false);
    QVERIFY(!f.view.showCloneDialog());
    QTRY_VERIFY(f.window.findChild<CloneDialog*>() == nullptr);
}

void SourceControlViewTest::theProjectGoesBeforeTheDocument()
{
    PanelFixture f;
    const TemporaryRepository other;
    other.write(u"b.txt"_s, "b");
    f.app.state.openFile(QUrl::fromLocalFile(other.filePath(u"b.txt"_s)));
    f.app.state.setCurrentProject(f.repo.url());
    f.window.show();
    QVERIFY(f.git().repoURL() == f.repo.url());
}

void SourceControlViewTest::withoutAProjectTheDocumentsFolderIsOpened()
{
    PanelFixture f;
    f.repo.write(u"deep/er/b.txt"_s, "b");
    f.app.state.openFile(QUrl::fromLocalFile(f.repo.filePath(u"deep/er/b.txt"_s)));
    QVERIFY(!f.git().repoURL());
    f.window.show();
    QVERIFY(f.git().repoURL() == f.repo.url());
    QVERIFY(visibleButton(f.view, u"Fetch"_s) != nullptr);
}

void SourceControlViewTest::withNeitherWhatWasOpenStays()
{
    PanelFixture f;
    f.git().open(f.repo.url());
    f.app.state.createNewTab();
    f.window.show();
    QVERIFY(f.git().repoURL() == f.repo.url());
    QVERIFY(visibleButton(f.view, u"Fetch"_s) != nullptr);
}

void SourceControlViewTest::anotherProjectIsOpenedWhenItChanges()
{
    PanelFixture f;
    f.show(SourceControlTab::history);
    QCOMPARE(f.lines().size(), 1);
    const TemporaryRepository other;
    other.write(u"b.txt"_s, "b");
    other.commitAll(u"other"_s);
    other.commitAll(u"another"_s);
    f.app.state.setCurrentProject(other.url());
    QVERIFY(f.git().repoURL() == other.url());
    QCOMPARE(f.lines().size(), 2);

    const QTemporaryDir plain;
    f.app.state.setCurrentProject(QUrl::fromLocalFile(plain.path()));
    QVERIFY(!f.git().repoURL());
    QVERIFY(visibleButton(f.view, u"Initialize Repository"_s) != nullptr);

    // A panel that is not shown waits until it appears.
    f.window.hide();
    f.app.state.setCurrentProject(f.repo.url());
    QVERIFY(!f.git().repoURL());
    f.window.show();
    QVERIFY(f.git().repoURL() == f.repo.url());
    QCOMPARE(f.lines().size(), 1);
}

void SourceControlViewTest::aClosedProjectLeavesTheDocumentsFolder()
{
    PanelFixture f;
    const TemporaryRepository other;
    other.write(u"deep/b.txt"_s, "b");
    f.app.state.openFile(QUrl::fromLocalFile(other.filePath(u"deep/b.txt"_s)));
    f.show();
    QVERIFY(f.git().repoURL() == f.repo.url());
    f.app.state.setCurrentProject(std::nullopt);
    QVERIFY(f.git().repoURL() == other.url());
    QCOMPARE(f.lines(), (QStringList{u"# Changes"_s, u"U deep/"_s}));

    // A document outside every repository closes what was open.
    f.app.state.setCurrentProject(f.repo.url());
    QVERIFY(f.git().repoURL() == f.repo.url());
    f.app.state.openFile(f.app.write(u"plain.txt"_s, "text"));
    f.app.state.setCurrentProject(std::nullopt);
    QVERIFY(!f.git().repoURL());
    QVERIFY(visibleButton(f.view, u"Clone Repository…"_s) != nullptr);
    QVERIFY(visibleButton(f.view, u"Initialize Repository"_s) == nullptr);
}

void SourceControlViewTest::aClosedProjectWithoutASavedDocumentStays()
{
    PanelFixture f;
    f.app.state.createNewTab();
    f.show();
    QSignalSpy reads(&f.git(), &GitService::branchChanged);
    f.app.state.setCurrentProject(std::nullopt);
    QVERIFY(f.git().repoURL() == f.repo.url());
    QVERIFY(visibleButton(f.view, u"Fetch"_s) != nullptr);
    QVERIFY(reads.isEmpty());
}

void SourceControlViewTest::theHeaderTellsTheBranch()
{
    PanelFixture f;
    const TemporaryRepository origin;
    f.repo.git({u"push"_s, u"-q"_s, origin.path(), u"main:up"_s});
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, origin.path()});
    f.repo.git({u"fetch"_s, u"-q"_s, u"origin"_s});
    f.repo.git({u"branch"_s, u"-q"_s, u"-u"_s, u"origin/up"_s});
    f.repo.commitAll(u"second"_s);
    f.repo.commitAll(u"third"_s);
    f.show();
    QVERIFY(shownLabels(f.view).contains(u"main"_s));
    QVERIFY(shownLabels(f.view).contains(u"↑2 ↓0"_s));

    // A branch without a commit has a name all the same, and a HEAD on no branch stands somewhere.
    const TemporaryRepository empty;
    f.app.state.setCurrentProject(empty.url());
    QVERIFY(shownLabels(f.view).contains(u"main"_s));
    QVERIFY(shownLabels(f.view).contains(u"↑0 ↓0"_s));
    f.repo.git({u"checkout"_s, u"-q"_s, u"--detach"_s});
    f.app.state.setCurrentProject(f.repo.url());
    const QString hash = QString::fromLatin1(f.output({u"rev-parse"_s, u"HEAD"_s}));
    QVERIFY(shownLabels(f.view).contains(u"detached at "_s + hash.first(7)));

    // Where git says nothing of a branch there is none to be named.
    const QTemporaryDir broken;
    QVERIFY(QDir(broken.path()).mkdir(u".git"_s));
    f.app.state.setCurrentProject(QUrl::fromLocalFile(broken.path()));
    QVERIFY(f.git().repoURL());
    QCOMPARE(f.git().branch(), QString());
    QVERIFY(shownLabels(f.view).contains(u"—"_s));
}

void SourceControlViewTest::theHeaderTellsOfConflicts()
{
    PanelFixture f;
    f.show();
    QWidget* sign = withHelp(f.view, u"Merge conflicts in working tree"_s);
    QVERIFY(sign != nullptr && !sign->isVisible());
    QCOMPARE(sign->accessibleName(), u"Merge conflicts in working tree"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"-b"_s, u"side"_s});
    f.repo.write(u"a.txt"_s, "side\n");
    f.repo.commitAll(u"side"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"main"_s});
    f.repo.write(u"a.txt"_s, "main\n");
    f.repo.commitAll(u"main"_s);
    f.repo.tryGit({u"merge"_s, u"side"_s});
    f.click(u"Refresh"_s);
    QVERIFY(sign->isVisible());
    f.click(u"Abort Merge"_s);
    QVERIFY(!sign->isVisible());
}

void SourceControlViewTest::refreshReadsEverything()
{
    PanelFixture f;
    f.show();
    f.repo.git({u"tag"_s, u"v1"_s});
    f.repo.git({u"branch"_s, u"next"_s});
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, u"/x"_s});
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.git({u"stash"_s, u"push"_s, u"-q"_s});
    f.repo.write(u"b.txt"_s, "b\n");
    QVERIFY(f.git().status().isEmpty());
    f.click(u"Refresh"_s);
    QCOMPARE(f.git().status().size(), 1);
    QCOMPARE(f.git().branches().size(), 2);
    QCOMPARE(f.git().tags().size(), 1);
    QCOMPARE(f.git().remotes().size(), 1);
    QCOMPARE(f.git().stashes().size(), 1);
    QCOMPARE(f.lines(), (QStringList{u"# Changes"_s, u"U b.txt"_s}));
}

void SourceControlViewTest::tabsStandInTheirOrder()
{
    PanelFixture f;
    f.show();
    QStringList labels;
    for (const auto* button : f.view.findChildren<SourceControlTabButton*>()) {
        labels.append(button->text());
    }
    QCOMPARE(labels, (QStringList{u"Changes"_s, u"History"_s, u"Branches"_s, u"Stashes"_s, u"Tags"_s, u"Remotes"_s}));
    QCOMPARE(int(f.view.tab()), int(SourceControlTab::changes));
}

void SourceControlViewTest::badgesFollowTheRepository()
{
    PanelFixture f;
    f.repo.git({u"branch"_s, u"next"_s});
    f.repo.git({u"update-ref"_s, u"refs/remotes/origin/far"_s, u"HEAD"_s});
    f.repo.write(u"b.txt"_s, "b");
    f.show();
    auto* bar = f.view.findChild<SourceControlTabBar*>();
    QStringList badges;
    for (const SourceControlTab tab : allSourceControlTabs) {
        badges.append(bar->button(tab).badge());
    }
    QCOMPARE(badges, (QStringList{u"1"_s, QString(), u"2"_s, QString(), QString(), QString()}));
    QCOMPARE(bar->button(SourceControlTab::branches).accessibleName(), u"Branches, 2"_s);
    f.click(u"Stage All"_s);
    f.view.setCommitMessage(u"second"_s);
    f.click(u"Commit"_s);
    QCOMPARE(bar->button(SourceControlTab::changes).badge(), QString());
    QCOMPARE(bar->button(SourceControlTab::changes).accessibleName(), u"Changes"_s);
}

void SourceControlViewTest::aTabIsChosenByMouseAndByKey()
{
    PanelFixture f;
    f.show();
    auto* bar = f.view.findChild<SourceControlTabBar*>();
    QTest::mouseClick(&bar->button(SourceControlTab::tags), Qt::LeftButton);
    QCOMPARE(int(f.view.tab()), int(SourceControlTab::tags));
    QVERIFY(f.field(u"Tag name (e.g. v1.0)"_s).isVisible());
    bar->button(SourceControlTab::tags).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&bar->button(SourceControlTab::tags), Qt::Key_Right);
    QCOMPARE(int(f.view.tab()), int(SourceControlTab::remotes));
    QVERIFY(f.field(u"Name (e.g. origin)"_s).isVisible());
}

void SourceControlViewTest::theTabBarFitsItsWidth_data()
{
    QTest::addColumn<int>("width");
    for (const int width : {220, 260, 330, 420, 800}) {
        QTest::addRow("%d", width) << width;
    }
}

void SourceControlViewTest::theTabBarFitsItsWidth()
{
    QFETCH(int, width);
    SourceControlTabBar bar;
    for (const SourceControlTab tab : allSourceControlTabs) {
        bar.setBadge(tab, 128);
    }
    bar.resize(width, bar.heightForWidth(width));
    bar.show();
    QRect last;
    for (const SourceControlTab tab : allSourceControlTabs) {
        const SourceControlTabButton& button = bar.button(tab);
        QVERIFY(bar.rect().contains(button.geometry()));
        QVERIFY(button.width() >= button.sizeHint().width());
        QVERIFY(button.y() > last.y() || button.x() > last.right() || tab == SourceControlTab::changes);
        last = button.geometry();
    }
}

void SourceControlViewTest::theMessageSurvivesAChangeOfTab()
{
    PanelFixture f;
    f.show();
    f.view.setCommitMessage(u"one\n\u00a0two  \n"_s);
    f.view.setTab(SourceControlTab::history);
    f.view.setTab(SourceControlTab::changes);
    QCOMPARE(f.view.commitMessage(), u"one\n\u00a0two  \n"_s);
}

void SourceControlViewTest::aClickOnAFileOpensItsDiffUntilItIsClosed()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    QVERIFY(!f.view.diffPath());
    clickRow(f.list(), u"M a.txt"_s);
    QCOMPARE(f.view.diffPath().value_or(QString()), u"a.txt"_s);
    FakeSheet* sheet = shownSheet(f.window);
    QVERIFY(sheet != nullptr && sheet->window()->isModal());
    QCOMPARE(sheet->text, u"a.txt"_s);

    const QStringList before = f.lines();
    QSignalSpy reads(&f.git(), &GitService::statusChanged);
    sheet->onClose();
    QVERIFY(!f.view.diffPath());
    QVERIFY(shownSheet(f.window) == nullptr);
    QCOMPARE(f.lines(), before);
    QVERIFY(reads.isEmpty());
}

void SourceControlViewTest::anotherPathReplacesTheSheet()
{
    PanelFixture f;
    f.show();
    f.view.setDiffPath(u"a"_s);
    f.view.setDiffPath(u"b"_s);
    QCOMPARE(f.view.diffPath().value_or(QString()), u"b"_s);
    QCOMPARE(shownSheet(f.window)->text, u"b"_s);
    QTRY_COMPARE(f.window.findChildren<QWidget*>(u"sheet"_s).size(), 1);
    f.view.setDiffPath(std::nullopt);
    QVERIFY(shownSheet(f.window) == nullptr);
}

void SourceControlViewTest::aClickOnACommitOpensIt()
{
    PanelFixture f;
    f.show(SourceControlTab::history);
    const QString sha = QString::fromLatin1(f.output({u"rev-parse"_s, u"HEAD"_s}));
    clickRow(f.list(), f.lines().first());
    QCOMPARE(f.view.historySha().value_or(QString()), sha);
    QCOMPARE(shownSheet(f.window)->text, sha);
    shownSheet(f.window)->onClose();
    QVERIFY(!f.view.historySha());
}

void SourceControlViewTest::theProgramsOwnSheetsShowWhatWasClicked()
{
    const TemporaryRepository repo;
    repo.write(u"a.txt"_s, "one\n");
    repo.commitAll(u"first"_s);
    repo.write(u"a.txt"_s, "two\n");
    AppStateFixture app;
    app.state.setCurrentProject(repo.url());
    QWidget window;
    SourceControlView view(app.state, {app.filePanels, app.scheduler}, &window);
    window.show();
    const auto shownList = [&] {
        for (auto* list : view.findChildren<RowList*>()) {
            if (list->isVisible()) {
                return list;
            }
        }
        return static_cast<RowList*>(nullptr);
    };

    clickRow(*shownList(), u"M a.txt"_s);
    auto* diff = window.findChild<DiffSheetView*>();
    QVERIFY(diff != nullptr && diff->isVisible());
    QCOMPARE(diff->path(), u"a.txt"_s);
    QVERIFY(diff->diff().contains(u"+two"));
    clickOn(*diff, u"Close"_s);
    QVERIFY(!view.diffPath());
    QTRY_VERIFY(window.findChild<DiffSheetView*>() == nullptr);

    view.setTab(SourceControlTab::history);
    clickRow(*shownList(), linesOf(*shownList()).first());
    auto* commit = window.findChild<CommitDetailView*>();
    QVERIFY(commit != nullptr && commit->isVisible());
    QCOMPARE(commit->sha(), QString::fromLatin1(repo.git({u"rev-parse"_s, u"HEAD"_s}).trimmed()));
    clickOn(*commit, u"Close"_s);
    QVERIFY(!view.historySha());
    QTRY_VERIFY(window.findChild<CommitDetailView*>() == nullptr);
}

void SourceControlViewTest::escapeClosesASheet()
{
    PanelFixture f;
    f.show();
    f.view.setDiffPath(u"a"_s);
    QTest::keyClick(shownSheet(f.window)->window(), Qt::Key_Escape);
    QVERIFY(!f.view.diffPath());
    f.view.setHistorySha(u"1"_s);
    QTest::keyClick(shownSheet(f.window)->window(), Qt::Key_Escape);
    QVERIFY(!f.view.historySha());
}

void SourceControlViewTest::aSheetGoesWithThePanel()
{
    AppStateFixture app;
    QWidget window;
    auto view = std::make_unique<SourceControlView>(
        app.state, SourceControlView::Services{app.filePanels, app.scheduler, fakeSheets()}, &window);
    window.show();
    view->setDiffPath(u"a"_s);
    const SourceControlSheets::OnClose onClose = shownSheet(window)->onClose;
    view.reset();
    QVERIFY(shownSheet(window) == nullptr);
    onClose();
}

void SourceControlViewTest::theErrorLineShowsGitsWordsWhole()
{
    PanelFixture f;
    f.show();
    auto* line = f.view.findChild<ErrorLine*>();
    QVERIFY(!line->isVisible());
    f.git().mergeBranch(u"absent"_s);
    QTRY_VERIFY(line->isVisible());
    QCOMPARE(line->text(), u"merge: absent - not something we can merge"_s);
    QCOMPARE(line->error(), u"merge: absent - not something we can merge\n"_s);
    QCOMPARE(line->toolTip(), line->error());
    QVERIFY(!line->text().contains(u'\n'));
    QVERIFY(line->height() < 2 * line->fontMetrics().height());
    f.window.resize(500, 600);
    QCOMPARE(line->toolTip(), line->error());

    // Another failure takes its place.
    f.git().setLastError(u"one\ntwo"_s);
    QCOMPARE(line->text(), u"one"_s);
    QCOMPARE(line->toolTip(), u"one\ntwo"_s);
}

void SourceControlViewTest::aDismissedErrorRunsNothing()
{
    PanelFixture f;
    f.show();
    f.git().setLastError(u"words"_s);
    QSignalSpy status(&f.git(), &GitService::statusChanged);
    QSignalSpy branch(&f.git(), &GitService::branchChanged);
    f.click(u"Dismiss"_s);
    QVERIFY(!f.git().lastError());
    QVERIFY(!f.view.findChild<ErrorLine*>()->isVisible());
    QVERIFY(status.isEmpty() && branch.isEmpty());
}

void SourceControlViewTest::markupInAnErrorIsText()
{
    PanelFixture f;
    f.show();
    f.git().setLastError(u"<b>bold</b> & <i>more</i>"_s);
    auto* line = f.view.findChild<ErrorLine*>();
    QCOMPARE(line->text(), u"<b>bold</b> & <i>more</i>"_s);
    QVERIFY(line->toolTip().contains(u"&lt;b&gt;bold&lt;/b&gt; &amp; "));
}

void SourceControlViewTest::buttonsRestWhileATransferRuns()
{
    PanelFixture f;
    f.show();
    QVERIFY(f.isEnabled(u"Fetch"_s) && f.isEnabled(u"Pull"_s) && f.isEnabled(u"Push"_s));
    f.click(u"Fetch"_s);
    QVERIFY(f.git().isBusy());
    QVERIFY(!f.isEnabled(u"Fetch"_s) && !f.isEnabled(u"Pull"_s) && !f.isEnabled(u"Push"_s));
    QVERIFY(f.isEnabled(u"Refresh"_s) && f.isEnabled(u"Stage All"_s));
    f.waitForTransfer();
    QVERIFY(f.isEnabled(u"Fetch"_s) && f.isEnabled(u"Pull"_s) && f.isEnabled(u"Push"_s));
}

void SourceControlViewTest::thePanelFitsTheNarrowestSidebar()
{
    PanelFixture f;
    f.repo.git({u"branch"_s, u"-m"_s, u"a-branch-of-a-name-that-no-sidebar-has-ever-had-room-for/and/more"_s});
    f.show();
    f.git().setLastError(QString(4000, u'x'));
    for (const SourceControlTab tab : allSourceControlTabs) {
        f.view.setTab(tab);
        QVERIFY2(f.view.minimumSizeHint().width() <= 220,
                 qPrintable(u"%1 %2"_s.arg(rawValue(tab)).arg(f.view.minimumSizeHint().width())));
        f.window.resize(220, 500);
        QTRY_COMPARE(f.view.width(), 220);
        for (const auto* child : f.view.findChildren<QAbstractButton*>()) {
            if (child->isVisible()) {
                const QRect place(child->mapTo(&f.view, QPoint()), child->size());
                QVERIFY2(f.view.rect().contains(place), qPrintable(child->text() + child->accessibleName()));
            }
        }
    }
}

const kelm::test::Registered<SourceControlViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace source_control_view_test

#include "source_control_view_test.moc"
