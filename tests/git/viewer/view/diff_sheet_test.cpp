#include "git/panel/view/panel_fixture.h"
#include "git/viewer/view/commit_details.h"
#include "git/viewer/view/commit_sheet.h"
#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_sheet.h"
#include "git/viewer/view/diff_viewer.h"
#include "git/viewer/view/sheet_failure_line.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

namespace diff_sheet_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Role = HunkControl::Role;

QByteArray linesUpTo(int count, const QMap<int, QByteArray>& changed = {})
{
    QByteArray text;
    for (int line = 1; line <= count; ++line) {
        text += changed.value(line, "line " + QByteArray::number(line)) + '\n';
    }
    return text;
}

template <typename Button>
Button* named(QWidget& within, const QString& text)
{
    for (Button* button : within.findChildren<Button*>()) {
        if (button->text() == text) {
            return button;
        }
    }
    return nullptr;
}

/// A repository with a file of 60 lines, of which two far from each other are changed.
struct ChangedFile
{
    ChangedFile()
    {
        repository.write(u"a.txt"_s, linesUpTo(60));
        repository.commitAll(u"first"_s);
        repository.write(u"a.txt"_s, linesUpTo(60, {{5, "five"}, {50, "fifty"}}));
        git.open(repository.url());
        // Opening leaves words about a branch without an upstream.
        QCoreApplication::processEvents();
        git.setLastError(std::nullopt);
    }

    TemporaryRepository repository;
    GitService git{ProcessRunner::sharedSystem()};
};

SourceControlSheets realSheets()
{
    using OnClose = SourceControlSheets::OnClose;
    return {[](const DiffSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent) {
                auto* view = new DiffSheetView(git, sheet.path, parent);
                view->onClose = onClose;
                return view;
            },
            [](const CommitSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent) {
                auto* view = new CommitDetailView(git, sheet.sha, parent);
                view->onClose = onClose;
                return view;
            }};
}

void open(QWidget& sheet)
{
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
}

} // namespace

/// Sheets on real repositories.
class DiffSheetTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void sheetAsksGitWhenItAppears();
    void oneHunkIsStagedAndUnstaged();
    void hunkOfANewFileIsUnstaged();
    void refusedHunkLeavesItsWordsInTheService();
    void aRefusalIsSaidInTheSheet();
    void untrackedFileShowsItsText_data();
    void untrackedFileShowsItsText();
    void eachViewIsCounted();
    void viewsAreChosenByKey();
    void hunkIsStagedByKey();
    void binaryFileTellsItsSizes();
    void conflictIsShownWithoutAction();
    void hunkThatCannotBeTakenSaysWhy();
    void closeButtonTellsTheOwner();
    void escapeIsLeftToTheDialogAround();
    void sheetOutlivesTheService();
    void commitIsShownReadOnly();
    void commitTellsItsHeadAndFiles();
    void commitsHashIsCopiedWhole();
    void unknownCommitIsEmpty();
    void panelOpensTheSheets();
};

void DiffSheetTest::sheetAsksGitWhenItAppears()
{
    ChangedFile changed;
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    QVERIFY(sheet.diff().isEmpty());
    QVERIFY(!sheet.stagedView());
    open(sheet);
    QCOMPARE(sheet.diff(), changed.git.diff(u"a.txt"_s, false));
    QCOMPARE(sheet.viewer().diffText(), sheet.diff());
    QCOMPARE(sheet.viewer().list().diffLayout().files()[0].hunks.size(), 2);
    QCOMPARE(sheet.viewer().hunkActionLabel(), u"Stage hunk"_s);
}

void DiffSheetTest::oneHunkIsStagedAndUnstaged()
{
    ChangedFile changed;
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    open(sheet);
    DiffList& list = sheet.viewer().list();
    QSignalSpy statusChanged(&changed.git, &GitService::statusChanged);
    QSignalSpy branchesChanged(&changed.git, &GitService::branchesChanged);

    QTest::mouseClick(list.button({0, 1, Role::action}), Qt::LeftButton);
    QCOMPARE(changed.repository.staged(u"a.txt"_s), linesUpTo(60, {{50, "fifty"}}));
    QCOMPARE(changed.repository.read(u"a.txt"_s), linesUpTo(60, {{5, "five"}, {50, "fifty"}}));
    QCOMPARE(list.diffLayout().files()[0].hunks.size(), 1);
    QVERIFY(sheet.diff().contains(u"+five"));
    QVERIFY(!sheet.diff().contains(u"+fifty"));
    QCOMPARE(statusChanged.count(), 1);
    QCOMPARE(branchesChanged.count(), 0);
    QCOMPARE(changed.git.status()[0].staged, std::optional(GitFileChange::modified));
    QCOMPARE(changed.git.status()[0].unstaged, std::optional(GitFileChange::modified));

    QTest::mouseClick(named<QRadioButton>(sheet, u"Staged"_s), Qt::LeftButton, {}, QPoint(20, 5));
    QVERIFY(sheet.stagedView());
    QVERIFY(sheet.diff().contains(u"+fifty"));
    QCOMPARE(list.button({0, 0, Role::action})->text(), u"Unstage hunk"_s);
    QTest::mouseClick(list.button({0, 0, Role::action}), Qt::LeftButton);
    QCOMPARE(changed.repository.staged(u"a.txt"_s), linesUpTo(60));
    QVERIFY(sheet.diff().isEmpty());
    QCOMPARE(changed.repository.read(u"a.txt"_s), linesUpTo(60, {{5, "five"}, {50, "fifty"}}));
    QVERIFY(!changed.git.lastError());

    QTest::mouseClick(named<QRadioButton>(sheet, u"Working"_s), Qt::LeftButton, {}, QPoint(20, 5));
    QVERIFY(!sheet.stagedView());
    QCOMPARE(list.diffLayout().files()[0].hunks.size(), 2);
    QCOMPARE(list.button({0, 0, Role::action})->text(), u"Stage hunk"_s);
}

void DiffSheetTest::hunkOfANewFileIsUnstaged()
{
    TemporaryRepository repository;
    repository.commitAll(u"first"_s);
    repository.write(u"새 파일.txt"_s, "하나\n둘\n");
    repository.git({u"config"_s, u"core.quotePath"_s, u"false"_s});
    repository.git({u"add"_s, u"-A"_s});
    GitService git{ProcessRunner::sharedSystem()};
    git.open(repository.url());
    DiffSheetView sheet(git, u"새 파일.txt"_s, nullptr);
    open(sheet);
    QVERIFY(sheet.diff().isEmpty());
    sheet.setStagedView(true);
    QVERIFY(named<QRadioButton>(sheet, u"Staged"_s)->isChecked());
    QTest::mouseClick(sheet.viewer().list().button({0, 0, Role::action}), Qt::LeftButton);
    QVERIFY(sheet.diff().isEmpty());
    QVERIFY(repository.git({u"ls-files"_s}).isEmpty());
    QCOMPARE(repository.read(u"새 파일.txt"_s), QByteArray("하나\n둘\n"));
}

void DiffSheetTest::refusedHunkLeavesItsWordsInTheService()
{
    ChangedFile changed;
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    open(sheet);
    const QString shown = sheet.diff();
    // Somebody else has staged something different meanwhile.
    changed.repository.write(u"a.txt"_s, "something else\n");
    changed.repository.git({u"add"_s, u"-A"_s});
    const QByteArray index = changed.repository.staged(u"a.txt"_s);
    QTest::mouseClick(sheet.viewer().list().button({0, 0, Role::action}), Qt::LeftButton);
    QTRY_VERIFY(changed.git.lastError().has_value());
    QVERIFY(changed.git.lastError()->contains(u"a.txt"));
    QCOMPARE(sheet.diff(), shown);
    QCOMPARE(changed.repository.staged(u"a.txt"_s), index);
}

void DiffSheetTest::aRefusalIsSaidInTheSheet()
{
    ChangedFile changed;
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    open(sheet);
    const auto* line = sheet.findChild<SheetFailureLine*>();
    QCOMPARE(line->sentence(), QString());
    const QRect place = sheet.viewer().geometry();
    // What fails elsewhere is no matter of the sheet.
    changed.git.checkoutBranch(u"gone"_s);
    QTRY_VERIFY(changed.git.lastFailure().has_value());
    QCOMPARE(line->sentence(), QString());
    changed.repository.write(u"a.txt"_s, "something else\n");
    changed.repository.git({u"add"_s, u"-A"_s});
    QTest::mouseClick(sheet.viewer().list().button({0, 0, Role::action}), Qt::LeftButton);
    QTRY_COMPARE(line->sentence(), u"The hunk does not fit what is there now."_s);
    QVERIFY(line->isVisible());
    // Nothing moves to make room for it, whether or not there is more to read.
    const auto placeNow = [&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        return sheet.viewer().geometry();
    };
    QCOMPARE(placeNow(), place);
    changed.git.applyPartialPatch(u"no patch"_s, false);
    QTRY_VERIFY(changed.git.lastError()->contains(u"patch"));
    QVERIFY(line->isVisible());
    QCOMPARE(placeNow(), place);
    // It goes when the person goes on.
    sheet.setStagedView(true);
    QCOMPARE(line->sentence(), QString());
    QVERIFY(!line->isVisible());
    QCOMPARE(placeNow(), place);
}

void DiffSheetTest::untrackedFileShowsItsText_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("words");
    const QString none = u"0 files   +0 \u22120"_s;
    QTest::newRow("text") << QByteArray("a\n\nb\n") << u"1 file   +3 \u22120"_s << QString();
    QTest::newRow("no newline at the end") << QByteArray("a") << u"1 file   +1 \u22120"_s << QString();
    QTest::newRow("empty") << QByteArray() << none << u"Untracked empty file"_s;
    QTest::newRow("binary") << QByteArray("a\0b", 3) << none << u"Untracked binary file, 3 bytes"_s;
    QTest::newRow("no UTF-8") << QByteArray("\xff\xfe") << none << u"Untracked binary file, 2 bytes"_s;
    QTest::newRow("long") << QByteArray("0123456789abcde\n").repeated(300'000) << u"1 file   +250000 \u22120"_s
                          << QString();
}

void DiffSheetTest::untrackedFileShowsItsText()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, words);
    TemporaryRepository repository;
    repository.write(u"new.txt"_s, content);
    GitService git{ProcessRunner::sharedSystem()};
    git.open(repository.url());
    DiffSheetView sheet(git, u"new.txt"_s, nullptr);
    open(sheet);
    QVERIFY(sheet.diff().isEmpty());
    QTRY_VERIFY(!sheet.viewer().isReading());
    QTEST(sheet.viewer().filesSummary(), "summary");
    const auto labels = sheet.viewer().findChildren<TextLabel*>();
    QCOMPARE(std::any_of(labels.begin(), labels.end(),
                         [&](TextLabel* label) { return label->isVisible() && label->text() == words; }),
             !words.isEmpty());
    if (words.isEmpty()) {
        // It can only be staged as a whole.
        PlainButton* action = sheet.viewer().list().button({0, 0, Role::action});
        QVERIFY(!action->isEnabled());
        QVERIFY(action->toolTip().contains(u"as a whole"));
        QTest::keyClick(&sheet.viewer().list(), Qt::Key_S);
        QVERIFY(repository.git({u"ls-files"_s}).isEmpty());
    }
}

void DiffSheetTest::eachViewIsCounted()
{
    ChangedFile changed;
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    open(sheet);
    QTRY_COMPARE(sheet.counts(), u"Working: 2 hunks · Staged: none"_s);
    QTest::mouseClick(sheet.viewer().list().button({0, 0, Role::action}), Qt::LeftButton);
    QTRY_COMPARE(sheet.counts(), u"Working: 1 hunk · Staged: 1 hunk"_s);
    sheet.setStagedView(true);
    QTRY_COMPARE(sheet.counts(), u"Working: 1 hunk · Staged: 1 hunk"_s);
    QTest::mouseClick(sheet.viewer().list().button({0, 0, Role::action}), Qt::LeftButton);
    QTRY_COMPARE(sheet.counts(), u"Working: 2 hunks · Staged: none"_s);
}

void DiffSheetTest::viewsAreChosenByKey()
{
    ChangedFile changed;
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    open(sheet);
    sheet.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&sheet));
    QTest::keyClick(&sheet.viewer().list(), Qt::Key_2, Qt::ControlModifier);
    QVERIFY(sheet.stagedView());
    QTest::keyClick(&sheet.viewer().list(), Qt::Key_1, Qt::ControlModifier);
    QVERIFY(!sheet.stagedView());
}

void DiffSheetTest::hunkIsStagedByKey()
{
    ChangedFile changed;
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    open(sheet);
    DiffList& list = sheet.viewer().list();
    QTest::keyClick(&list, Qt::Key_N);
    QTest::keyClick(&list, Qt::Key_N);
    QTest::keyClick(&list, Qt::Key_S);
    QCOMPARE(changed.repository.staged(u"a.txt"_s), linesUpTo(60, {{50, "fifty"}}));
    QCOMPARE(list.diffLayout().files()[0].hunks.size(), 1);
    // The key goes on with the hunk that is left.
    QTest::keyClick(&list, Qt::Key_S);
    QCOMPARE(changed.repository.staged(u"a.txt"_s), linesUpTo(60, {{5, "five"}, {50, "fifty"}}));
    QVERIFY(!changed.git.lastError());
}

void DiffSheetTest::binaryFileTellsItsSizes()
{
    TemporaryRepository repository;
    repository.write(u"b"_s, QByteArray(12 * 1024, '\0'));
    repository.commitAll(u"first"_s);
    repository.write(u"b"_s, QByteArray(15 * 1024, '\0'));
    GitService git{ProcessRunner::sharedSystem()};
    git.open(repository.url());
    QCoreApplication::processEvents();
    git.setLastError(std::nullopt);
    const auto label = [](DiffViewer& viewer) {
        const QString text = viewer.list().fileLabelOf(0);
        return text;
    };
    DiffSheetView sheet(git, u"b"_s, nullptr);
    open(sheet);
    QTRY_COMPARE(label(sheet.viewer()), u"Binary file, 12 KB → 15 KB"_s);
    git.stage({u"b"_s});
    sheet.setStagedView(true);
    QTRY_COMPARE(label(sheet.viewer()), u"Binary file, 12 KB → 15 KB"_s);
    repository.commitAll(u"second"_s);
    CommitDetailView commit(git, u"HEAD"_s, nullptr);
    open(commit);
    QTRY_COMPARE(label(commit.viewer()), u"Binary file, 12 KB → 15 KB"_s);
    QVERIFY(!git.lastError());
}

void DiffSheetTest::conflictIsShownWithoutAction()
{
    TemporaryRepository repository;
    const auto write = [&](const QByteArray& text) { repository.write(u"a"_s, text); };
    write("old\n");
    repository.commitAll(u"base"_s);
    repository.git({u"checkout"_s, u"-q"_s, u"-b"_s, u"other"_s});
    write("theirs\n");
    repository.commitAll(u"theirs"_s);
    repository.git({u"checkout"_s, u"-q"_s, u"main"_s});
    write("ours\n");
    repository.commitAll(u"ours"_s);
    repository.tryGit({u"merge"_s, u"other"_s});
    GitService git{ProcessRunner::sharedSystem()};
    git.open(repository.url());
    DiffSheetView sheet(git, u"a"_s, nullptr);
    open(sheet);
    QCOMPARE(sheet.viewer().filesSummary(), u"1 file   +5 \u22120"_s);
    QVERIFY(!sheet.viewer().list().button({0, 0, Role::action})->isEnabled());
    const QByteArray before = repository.git({u"ls-files"_s, u"-s"_s});
    QTest::keyClick(&sheet.viewer().list(), Qt::Key_S);
    QCOMPARE(repository.git({u"ls-files"_s, u"-s"_s}), before);
    // What git says of the index is no diff.
    sheet.setStagedView(true);
    QCOMPARE(sheet.diff(), u"* Unmerged path a\n"_s);
}

void DiffSheetTest::hunkThatCannotBeTakenSaysWhy()
{
    TemporaryRepository repository;
    repository.write(u"a"_s, "one\n" + linesUpTo(20) + "last");
    repository.commitAll(u"base"_s);
    repository.write(u"a"_s, "ONE\n" + linesUpTo(20) + "LAST");
    GitService git{ProcessRunner::sharedSystem()};
    git.open(repository.url());
    DiffSheetView sheet(git, u"a"_s, nullptr);
    open(sheet);
    DiffList& list = sheet.viewer().list();
    QVERIFY(list.button({0, 0, Role::action})->isEnabled());
    PlainButton* second = list.button({0, 1, Role::action});
    QVERIFY(!second->isEnabled());
    QVERIFY(second->toolTip().contains(u"newline"));
    QCOMPARE(second->accessibleName().isEmpty(), false);
    // Tab passes it over.
    list.button({0, 1, Role::toggle})->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(!second->hasFocus());
    QVERIFY(!list.button({0, 1, Role::toggle})->hasFocus());
}

void DiffSheetTest::closeButtonTellsTheOwner()
{
    ChangedFile changed;
    QSignalSpy statusChanged(&changed.git, &GitService::statusChanged);
    DiffSheetView sheet(changed.git, u"a.txt"_s, nullptr);
    open(sheet);
    auto* close = named<QPushButton>(sheet, u"Close"_s);
    QTest::mouseClick(close, Qt::LeftButton);
    int closed = 0;
    sheet.onClose = [&] { ++closed; };
    QTest::mouseClick(close, Qt::LeftButton);
    QCOMPARE(closed, 1);
    // Nothing is refreshed by closing.
    QCOMPARE(statusChanged.count(), 0);
}

void DiffSheetTest::escapeIsLeftToTheDialogAround()
{
    ChangedFile changed;
    QDialog dialog;
    auto* sheet = new DiffSheetView(changed.git, u"a.txt"_s, &dialog);
    auto* column = new QVBoxLayout(&dialog);
    column->addWidget(sheet);
    dialog.open();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    // The arrow keys scroll at once.
    QCOMPARE(QApplication::focusWidget(), &sheet->viewer().list());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QVERIFY(dialog.isVisible());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
}

void DiffSheetTest::sheetOutlivesTheService()
{
    auto changed = std::make_unique<ChangedFile>();
    DiffSheetView sheet(changed->git, u"a.txt"_s, nullptr);
    open(sheet);
    changed.reset();
    QTest::mouseClick(sheet.viewer().list().button({0, 0, Role::action}), Qt::LeftButton);
    sheet.setStagedView(true);
    QVERIFY(sheet.diff().isEmpty());
}

void DiffSheetTest::commitIsShownReadOnly()
{
    ChangedFile changed;
    changed.repository.commitAll(u"second"_s);
    const QString sha = QString::fromLatin1(changed.repository.git({u"rev-parse"_s, u"HEAD"_s})).trimmed();
    CommitDetailView sheet(changed.git, sha, nullptr);
    int closed = 0;
    sheet.onClose = [&] { ++closed; };
    QVERIFY(sheet.content().isEmpty());
    open(sheet);
    QCOMPARE(sheet.windowTitle(), u"Commit "_s + sha.left(10));
    const auto labels = sheet.findChildren<TextLabel*>();
    QVERIFY(std::any_of(labels.begin(), labels.end(),
                        [&](TextLabel* label) { return label->text() == u"Commit "_s + sha.left(10); }));
    QCOMPARE(sheet.content(), QString::fromUtf8(changed.repository.git({u"show"_s, u"--no-color"_s, sha})));
    QCOMPARE(sheet.viewer().filesSummary(), u"1 file   +2 \u22122"_s);
    QVERIFY(!sheet.viewer().onHunkAction());
    QVERIFY(sheet.viewer().list().button({0, 0, Role::toggle}) != nullptr);
    QVERIFY(sheet.viewer().list().button({0, 0, Role::action}) == nullptr);
    QTest::mouseClick(named<QPushButton>(sheet, u"Close"_s), Qt::LeftButton);
    QCOMPARE(closed, 1);
}

void DiffSheetTest::commitTellsItsHeadAndFiles()
{
    ChangedFile changed;
    changed.repository.write(u"new.txt"_s, "x\n");
    changed.repository.commitAll(u"Mend it\n\nSince it was broken."_s);
    CommitDetailView sheet(changed.git, u"HEAD"_s, nullptr);
    open(sheet);
    const CommitDetails& details = sheet.details();
    QVERIFY(details.isVisible());
    QCOMPARE(details.author(), u"Test Author <test@example.org>"_s);
    QCOMPARE(details.date(), u"Sat Feb 3 04:05:06 2024 +0000"_s);
    QCOMPARE(details.message(), u"Mend it\n\nSince it was broken."_s);
    QCOMPARE(linesOf(sheet.details().files()), (QStringList{u"M a.txt 2 hunks"_s, u"A new.txt 1 hunk"_s}));
    // A click goes to the file.
    clickRow(sheet.details().files(), u"A new.txt 1 hunk"_s);
    QCOMPARE(sheet.viewer().list().currentHunk(), std::optional(HunkControl{1, 0, Role::toggle}));

    CommitDetailView unknown(changed.git, u"0123456789abcdef"_s, nullptr);
    open(unknown);
    QVERIFY(!unknown.details().isVisible());
}

void DiffSheetTest::commitsHashIsCopiedWhole()
{
    ChangedFile changed;
    const QString sha = QString::fromLatin1(changed.repository.git({u"rev-parse"_s, u"HEAD"_s})).trimmed();
    CommitDetailView sheet(changed.git, sha, nullptr);
    open(sheet);
    QGuiApplication::clipboard()->setText(u"before"_s);
    QTest::mouseClick(named<QPushButton>(sheet, u"Copy SHA"_s), Qt::LeftButton);
    QCOMPARE(QGuiApplication::clipboard()->text(), sha);
    QVERIFY(sheet.isVisible());
}

void DiffSheetTest::unknownCommitIsEmpty()
{
    ChangedFile changed;
    CommitDetailView sheet(changed.git, u"0123456789abcdef"_s, nullptr);
    open(sheet);
    QCOMPARE(sheet.windowTitle(), u"Commit 0123456789"_s);
    QVERIFY(sheet.content().isEmpty());
    QCOMPARE(sheet.viewer().filesSummary(), u"0 files   +0 \u22120"_s);
}

void DiffSheetTest::panelOpensTheSheets()
{
    ChangedFile changed;
    AppStateFixture app;
    QWidget window;
    SourceControlView panel(app.state, {app.filePanels, app.scheduler, realSheets()}, &window);
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(&panel);
    window.resize(1000, 700);
    app.state.setCurrentProject(changed.repository.url());
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const auto shownList = [&] {
        const auto lists = panel.findChildren<RowList*>();
        return *std::find_if(lists.begin(), lists.end(), [](RowList* list) { return list->isVisible(); });
    };

    clickRow(*shownList(), u"M a.txt"_s);
    QCOMPARE(panel.diffPath(), std::optional(u"a.txt"_s));
    QPointer<DiffSheetView> sheet = window.findChild<DiffSheetView*>();
    QVERIFY(sheet);
    QVERIFY(sheet->window()->isModal());
    QTRY_COMPARE(QApplication::focusWidget(), &sheet->viewer().list());
    QTest::mouseClick(sheet->viewer().list().button({0, 0, Role::action}), Qt::LeftButton);
    // The file stands in both lists now.
    QCOMPARE(linesOf(*shownList()), (QStringList{u"# Staged"_s, u"M a.txt"_s, u"# Changes"_s, u"M a.txt"_s}));
    QTest::mouseClick(named<QPushButton>(*sheet, u"Close"_s), Qt::LeftButton);
    QVERIFY(!panel.diffPath());
    QTRY_VERIFY(!sheet);

    panel.setHistorySha(u"HEAD"_s);
    QPointer<CommitDetailView> commit = window.findChild<CommitDetailView*>();
    QVERIFY(commit);
    QVERIFY(commit->content().contains(u"first"));
    QTest::keyClick(&commit->viewer().list(), Qt::Key_Escape);
    QVERIFY(!panel.historySha());
    QTRY_VERIFY(!commit);
}

const kelm::test::Registered<DiffSheetTest> registered(kelm::test::Toolkit::widgets);

} // namespace diff_sheet_test

#include "diff_sheet_test.moc"
