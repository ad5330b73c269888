#include "files/view/file_tree_view.h"
#include "git/service/git_service.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "support/app_state_fixture.h"
#include "support/painted.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QListView>
#include <QMimeData>
#include <QSignalSpy>
#include <QtTest>

namespace file_tree_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : AppStateFixture
{
    QTemporaryDir project;
    std::unique_ptr<FileTreeView> view;

    Fixture()
    {
        QDir(project.path()).mkpath(u"src/deep"_s);
        QDir(project.path()).mkpath(u"empty/.git"_s);
        for (const char* name : {"readme.md", "src/b.py", "src/A.swift", "src/deep/x.txt", "empty/.hidden"}) {
            make(QString::fromLatin1(name));
        }
    }

    void make(const QString& name) const
    {
        QFile file(project.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write("text") != 4) {
            qFatal("no file");
        }
    }
    void show(bool withProject = true)
    {
        if (withProject) {
            state.setCurrentProject(QUrl::fromLocalFile(project.path()));
        }
        view = std::make_unique<FileTreeView>(state, filePanels);
        view->resize(260, 500);
        view->show();
        if (!QTest::qWaitForWindowActive(view.get())) {
            qFatal("no window");
        }
    }
    /// The rows as they are seen: two blanks a level, "v" and ">" before folders.
    QStringList rows() const
    {
        QStringList rows;
        const FileTreeModel& model = view->model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row);
            const QString depth(2 * index.data(FileTreeModel::depthRole).toInt(), u' ');
            const bool isFolder = index.data(FileTreeModel::isDirectoryRole).toBool();
            const QString chevron = index.data(FileTreeModel::isExpandedRole).toBool() ? u"v "_s : u"> "_s;
            rows.append(depth + (isFolder ? chevron : QString()) + index.data().toString());
        }
        return rows;
    }
    void click(const QString& name) const
    {
        for (int row = 0; row < view->model().rowCount(); ++row) {
            const QModelIndex index = view->model().index(row);
            if (index.data().toString() == name) {
                QTest::mouseClick(view->list().viewport(), Qt::LeftButton, {}, view->list().visualRect(index).center());
                return;
            }
        }
        QFAIL("no such row");
    }
    PlainButton* button(const QString& name) const
    {
        for (auto* button : view->findChildren<PlainButton*>()) {
            if ((button->text() == name || button->accessibleName() == name) && button->isVisible()) {
                return button;
            }
        }
        return nullptr;
    }
};

} // namespace

class FileTreeViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theTopLevelIsListed();
    void aFolderExpandsAndCollapses();
    void aFolderOfHiddenFilesShowsNone();
    void expandingAgainReadsAgain();
    void theHeaderNamesTheFolder();
    void aFileOpens();
    void refreshReadsTheTopLevel();
    void refreshMakesEntriesAnewAndListsNoFolder();
    void aFolderInsideAnExpandedOneIsListedByItselfAlone();
    void withoutAProjectAFolderCanBeOpened();
    void aProjectThatComesFromElsewhereIsListed();
    void cancellingChangesNothing();
    void aChangeOfTheProjectWaitsForTheNextRead();
    void aProjectThatIsGoneIsTold();
    void aFolderThatCannotBeReadHasNoChildren();
    void theKeyboardWalksTheTree();
    void aHeldKeyOpensOnce();
    void aDroppedFolderBecomesTheProject();
    void aDroppedFileIsCopied();
    void aRowIsDraggedOutAsItsFile();
    void linksAndTextsAreLeftToTheWindow();
    void badgesComeFromTheRepository();
    void badgesComeWithTheProject();
    void signalsOfOneTurnAreCountedOnce();
    void aCloneIsListed();
    void aProjectNamedWithASlashIsTheSame();
    void aWindowThatComesBackKeepsTheTree();
    void theTreeThatAppearsAgainIsCollapsed();
    void onlyTheKeyboardMarksARow();
    void rowsAreNamedForScreenReaders();
    void aLargeFolderExpands();
};

void FileTreeViewTest::theTopLevelIsListed()
{
    Fixture fixture;
    fixture.show();
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"> src"_s, u"readme.md"_s}));
}

void FileTreeViewTest::aFolderExpandsAndCollapses()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"src"_s);
    fixture.click(u"deep"_s);
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"v src"_s, u"  v deep"_s, u"    x.txt"_s, u"  A.swift"_s,
                                          u"  b.py"_s, u"readme.md"_s}));
    fixture.click(u"src"_s);
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"> src"_s, u"readme.md"_s}));
}

void FileTreeViewTest::aFolderOfHiddenFilesShowsNone()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"empty"_s);
    QCOMPARE(fixture.rows(), (QStringList{u"v empty"_s, u"> src"_s, u"readme.md"_s}));
}

void FileTreeViewTest::expandingAgainReadsAgain()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"src"_s);
    fixture.make(u"src/c.js"_s);
    QVERIFY(!fixture.rows().contains(u"  c.js"_s));
    fixture.click(u"src"_s);
    fixture.click(u"src"_s);
    QVERIFY(fixture.rows().contains(u"  c.js"_s));
}

void FileTreeViewTest::theHeaderNamesTheFolder()
{
    Fixture fixture;
    fixture.show();
    TextLabel* title = nullptr;
    for (auto* label : fixture.view->findChildren<TextLabel*>()) {
        title = label->isVisible() ? label : title;
    }
    QCOMPARE(title->text(), QFileInfo(fixture.project.path()).fileName());
    TextLabel headline(title->text(), style::headlineFont(), Tint::primary());
    headline.setElideMode(Qt::ElideMiddle);
    QVERIFY(looksLike(*title, headline));
    QVERIFY(title->mapTo(fixture.view.get(), QPoint()).y() <
            fixture.view->list().mapTo(fixture.view.get(), QPoint()).y());
    const QString other = fixture.project.filePath(u"src"_s);
    fixture.state.setCurrentProject(QUrl::fromLocalFile(other));
    QCOMPARE(title->text(), u"src"_s);
}

void FileTreeViewTest::aFileOpens()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"readme.md"_s);
    QCOMPARE(fixture.state.currentDocument()->title(), u"readme.md"_s);
}

void FileTreeViewTest::refreshReadsTheTopLevel()
{
    Fixture fixture;
    fixture.show();
    fixture.make(u"new.txt"_s);
    QTest::mouseClick(fixture.button(u"Refresh"_s), Qt::LeftButton);
    QCOMPARE(fixture.rows().at(2), u"new.txt"_s);
}

void FileTreeViewTest::refreshMakesEntriesAnewAndListsNoFolder()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"src"_s);
    const QUuid before = fixture.view->model().item(1).id;
    fixture.make(u"src/c.js"_s);
    QTest::mouseClick(fixture.button(u"Refresh"_s), Qt::LeftButton);
    QVERIFY(fixture.view->model().item(1).id != before);
    // What was expanded still is; an entry that is new has no children yet.
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"v src"_s, u"readme.md"_s}));
    fixture.click(u"src"_s);
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"> src"_s, u"readme.md"_s}));
    fixture.click(u"src"_s);
    QVERIFY(fixture.rows().contains(u"  c.js"_s));
}

void FileTreeViewTest::aFolderInsideAnExpandedOneIsListedByItselfAlone()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"src"_s);
    fixture.click(u"deep"_s);
    fixture.click(u"src"_s);
    fixture.click(u"src"_s);
    QCOMPARE(fixture.rows(),
             (QStringList{u"> empty"_s, u"v src"_s, u"  v deep"_s, u"  A.swift"_s, u"  b.py"_s, u"readme.md"_s}));
}

void FileTreeViewTest::withoutAProjectAFolderCanBeOpened()
{
    Fixture fixture;
    fixture.show(false);
    fixture.filePanels.openAnswer = {{QUrl::fromLocalFile(fixture.project.path()), true}};
    QTest::mouseClick(fixture.button(u"Open Folder…"_s), Qt::LeftButton);
    QVERIFY(fixture.filePanels.openPanelOptions.canChooseDirectories);
    QVERIFY(!fixture.filePanels.openPanelOptions.canChooseFiles);
    QVERIFY(!fixture.filePanels.openPanelOptions.allowsMultipleSelection);
    QCOMPARE(fixture.state.currentProject(), std::optional(QUrl::fromLocalFile(fixture.project.path())));
    QCOMPARE(fixture.rows().size(), 3);
    QVERIFY(fixture.button(u"Open Folder…"_s) == nullptr);
}

void FileTreeViewTest::aProjectThatComesFromElsewhereIsListed()
{
    Fixture fixture;
    fixture.show(false);
    QVERIFY(fixture.rows().isEmpty());
    // With it the tree appears.
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.project.path()));
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"> src"_s, u"readme.md"_s}));
    QVERIFY(fixture.view->list().isVisible());
    fixture.state.setCurrentProject(std::nullopt);
    QVERIFY(!fixture.view->list().isVisible());
    QVERIFY(fixture.button(u"Open Folder…"_s) != nullptr);
}

void FileTreeViewTest::cancellingChangesNothing()
{
    Fixture fixture;
    fixture.show(false);
    QTest::mouseClick(fixture.button(u"Open Folder…"_s), Qt::LeftButton);
    QCOMPARE(fixture.state.currentProject(), std::nullopt);
    QVERIFY(fixture.button(u"Open Folder…"_s) != nullptr);
}

void FileTreeViewTest::aChangeOfTheProjectWaitsForTheNextRead()
{
    Fixture fixture;
    fixture.show();
    const QStringList before = fixture.rows();
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.project.filePath(u"src"_s)));
    QCOMPARE(fixture.rows(), before);
    QTest::mouseClick(fixture.button(u"Refresh"_s), Qt::LeftButton);
    QCOMPARE(fixture.rows(), (QStringList{u"> deep"_s, u"A.swift"_s, u"b.py"_s}));
}

void FileTreeViewTest::aProjectThatIsGoneIsTold()
{
    Fixture fixture;
    fixture.show();
    fixture.project.remove();
    QTest::mouseClick(fixture.button(u"Refresh"_s), Qt::LeftButton);
    QCOMPARE(fixture.rows().size(), 3);
    QVERIFY(fixture.log.printed.last().startsWith(u"Error loading files: "_s));
    fixture.click(u"src"_s);
    QCOMPARE(fixture.rows().size(), 3);
}

void FileTreeViewTest::aFolderThatCannotBeReadHasNoChildren()
{
    Fixture fixture;
    fixture.show();
    QVERIFY(QDir(fixture.project.filePath(u"src"_s)).removeRecursively());
    const qsizetype printed = fixture.log.printed.size();
    fixture.click(u"src"_s);
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"v src"_s, u"readme.md"_s}));
    QCOMPARE(fixture.log.printed.size(), printed);
}

void FileTreeViewTest::theKeyboardWalksTheTree()
{
    Fixture fixture;
    fixture.show();
    QListView& list = fixture.view->list();
    list.setFocus();
    QCOMPARE(list.currentIndex().data().toString(), u"empty"_s);
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(list.currentIndex().data().toString(), u"src"_s);
    QTest::keyClick(&list, Qt::Key_Right);
    QVERIFY(fixture.rows().contains(u"v src"_s));
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Left);
    QCOMPARE(list.currentIndex().data().toString(), u"src"_s);
    QTest::keyClick(&list, Qt::Key_Left);
    QVERIFY(fixture.rows().contains(u"> src"_s));
    QTest::keyClick(&list, Qt::Key_Space);
    QVERIFY(fixture.rows().contains(u"v src"_s));
    QTest::keyClick(&list, Qt::Key_R);
    QCOMPARE(list.currentIndex().data().toString(), u"readme.md"_s);
    QTest::keyClick(&list, Qt::Key_Return);
    QCOMPARE(fixture.state.currentDocument()->title(), u"readme.md"_s);
}

void FileTreeViewTest::aHeldKeyOpensOnce()
{
    Fixture fixture;
    fixture.show();
    QListView& list = fixture.view->list();
    list.setFocus();
    const auto sendRepeated = [&list](Qt::Key key) {
        QKeyEvent repeated(QEvent::KeyPress, key, Qt::NoModifier, {}, true);
        QCoreApplication::sendEvent(&list, &repeated);
    };
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        list.setCurrentIndex(fixture.view->model().index(1));
        const bool wasExpanded = fixture.rows().contains(u"v src"_s);
        QTest::keyPress(&list, key);
        sendRepeated(key);
        QCOMPARE(fixture.rows().contains(u"v src"_s), !wasExpanded);
        QTest::keyRelease(&list, key);
        // The key went down before, somewhere else.
        list.setCurrentIndex(fixture.view->model().index(fixture.view->model().rowCount() - 1));
        QCOMPARE(list.currentIndex().data().toString(), u"readme.md"_s);
        sendRepeated(key);
        QVERIFY(fixture.state.documents().isEmpty());
    }
}

void FileTreeViewTest::aDroppedFolderBecomesTheProject()
{
    Fixture fixture;
    fixture.show(false);
    QMimeData data;
    data.setUrls(
        {QUrl::fromLocalFile(fixture.project.path()), QUrl::fromLocalFile(fixture.project.filePath(u"readme.md"_s))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(fixture.view.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(fixture.view.get(), &drop);
    QCOMPARE(fixture.state.currentProject(), std::optional(QUrl::fromLocalFile(fixture.project.path())));
    QCOMPARE(fixture.rows().size(), 3);
    QCOMPARE(fixture.state.documents().size(), 1);
}

void FileTreeViewTest::aDroppedFileIsCopied()
{
    Fixture fixture;
    fixture.show(false);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(fixture.project.filePath(u"readme.md"_s))});
    const Qt::DropActions both = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter({10, 10}, both, &data, Qt::LeftButton, Qt::ShiftModifier);
    QDragMoveEvent move({20, 20}, both, &data, Qt::LeftButton, Qt::ShiftModifier);
    QDropEvent drop({20, 20}, both, &data, Qt::LeftButton, Qt::ShiftModifier);
    for (QDropEvent* event : std::initializer_list<QDropEvent*>{&enter, &move, &drop}) {
        QCOMPARE(event->proposedAction(), Qt::MoveAction);
        QCoreApplication::sendEvent(fixture.view.get(), event);
        QVERIFY(event->isAccepted());
        QCOMPARE(event->dropAction(), Qt::CopyAction);
    }
    QCOMPARE(fixture.state.documents().size(), 1);
}

void FileTreeViewTest::aRowIsDraggedOutAsItsFile()
{
    Fixture fixture;
    fixture.show();
    const FileTreeModel& model = fixture.view->model();
    const QModelIndex row = model.index(2);
    QVERIFY(model.flags(row).testFlag(Qt::ItemIsDragEnabled));
    // Whoever hears that it may be moved would take it away.
    QVERIFY(!model.supportedDragActions().testFlag(Qt::MoveAction));
    QVERIFY(fixture.view->list().dragEnabled() && !fixture.view->list().acceptDrops());
    const std::unique_ptr<QMimeData> data(model.mimeData({row}));
    QCOMPARE(data->urls(), QList{model.item(2).url});
}

void FileTreeViewTest::linksAndTextsAreLeftToTheWindow()
{
    Fixture fixture;
    fixture.show(false);
    QMimeData link;
    link.setUrls({QUrl(u"kelmpane://open?code=YQ"_s)});
    QMimeData text;
    text.setText(u"text"_s);
    for (const QMimeData* data : {&link, &text}) {
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, data, Qt::LeftButton, {});
        enter.ignore();
        QCoreApplication::sendEvent(fixture.view.get(), &enter);
        QVERIFY(!enter.isAccepted());
    }
}

void FileTreeViewTest::badgesComeFromTheRepository()
{
    Fixture fixture;
    QVERIFY(QProcess::execute(u"git"_s, {u"init"_s, u"-q"_s, fixture.project.path()}) == 0);
    fixture.show();
    const auto badge = [&](int row) {
        return fixture.view->model().index(row).data(FileTreeModel::badgeRole).toString();
    };
    QCOMPARE(badge(2), QString());
    fixture.state.git().open(QUrl::fromLocalFile(fixture.project.path()));
    QTRY_COMPARE(badge(2), u"U"_s);
    QCOMPARE(badge(1), u"U"_s);
}

void FileTreeViewTest::badgesComeWithTheProject()
{
    Fixture fixture;
    QVERIFY(QProcess::execute(u"git"_s, {u"init"_s, u"-q"_s, fixture.project.path()}) == 0);
    fixture.show();
    const auto badge = [&](int row) {
        return fixture.view->model().index(row).data(FileTreeModel::badgeRole).toString();
    };
    // Nobody has asked git for anything.
    QTRY_COMPARE(badge(2), u"U"_s);
    QVERIFY(fixture.state.git().repoURL() == QUrl::fromLocalFile(fixture.project.path()));
}

void FileTreeViewTest::signalsOfOneTurnAreCountedOnce()
{
    Fixture fixture;
    fixture.show();
    QCoreApplication::processEvents();
    QSignalSpy counted(&fixture.view->model(), &FileTreeModel::dataChanged);
    for (int i = 0; i < 5; ++i) {
        Q_EMIT fixture.state.git().statusChanged();
    }
    QVERIFY(counted.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(counted.count(), 1);
}

void FileTreeViewTest::aCloneIsListed()
{
    Fixture fixture;
    fixture.show();
    const QTemporaryDir clone;
    QVERIFY(QDir(clone.path()).mkdir(u"only this"_s));
    Q_EMIT fixture.state.git().cloned(QUrl::fromLocalFile(clone.path()));
    QCOMPARE(fixture.rows(), QStringList{u"> only this"_s});
    QVERIFY(fixture.state.currentProject() == QUrl::fromLocalFile(clone.path()));
}

void FileTreeViewTest::aProjectNamedWithASlashIsTheSame()
{
    Fixture fixture;
    QVERIFY(QProcess::execute(u"git"_s, {u"init"_s, u"-q"_s, fixture.project.path()}) == 0);
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.project.path() + u'/'));
    fixture.show(false);
    fixture.state.git().open(*fixture.state.currentProject());
    const auto badge = [&](int row) {
        return fixture.view->model().index(row).data(FileTreeModel::badgeRole).toString();
    };
    QTRY_COMPARE(badge(2), u"U"_s);
    QCOMPARE(badge(1), u"U"_s);
    fixture.click(u"readme.md"_s);
    fixture.state.openFile(QUrl::fromLocalFile(fixture.project.filePath(u"readme.md"_s)));
    QCOMPARE(fixture.state.documents().size(), 1);
    fixture.click(u"src"_s);
    QCOMPARE(fixture.view->model().item(3).url, QUrl::fromLocalFile(fixture.project.filePath(u"src/A.swift"_s)));
}

void FileTreeViewTest::aWindowThatComesBackKeepsTheTree()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"src"_s);
    const QStringList rows = fixture.rows();
    QShowEvent comesBack;
    QSpontaneKeyEvent::setSpontaneous(&comesBack);
    qApp->notify(fixture.view.get(), &comesBack);
    QCOMPARE(fixture.rows(), rows);
}

void FileTreeViewTest::theTreeThatAppearsAgainIsCollapsed()
{
    Fixture fixture;
    fixture.show();
    fixture.click(u"src"_s);
    fixture.view->hide();
    fixture.make(u"new.txt"_s);
    fixture.view->show();
    QCOMPARE(fixture.rows(), (QStringList{u"> empty"_s, u"> src"_s, u"new.txt"_s, u"readme.md"_s}));
}

void FileTreeViewTest::onlyTheKeyboardMarksARow()
{
    Fixture fixture;
    fixture.show();
    QListView& list = fixture.view->list();
    const auto ground = [&](int row) {
        const QRect place = list.visualRect(fixture.view->model().index(row));
        return list.viewport()->grab().toImage().pixelColor(place.right() - 20, place.top() + 3);
    };
    const QColor plain = ground(2);
    fixture.click(u"empty"_s);
    QTest::mouseMove(list.viewport(), QPoint(50, 400));
    QTRY_COMPARE(ground(0), plain);
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(list.currentIndex().data().toString(), u"src"_s);
    QVERIFY(ground(1) != plain);
    QCOMPARE(ground(0), plain);
}

void FileTreeViewTest::rowsAreNamedForScreenReaders()
{
    Fixture fixture;
    fixture.show();
    const auto name = [&](int row) { return fixture.view->model().index(row).data(Qt::AccessibleTextRole).toString(); };
    QCOMPARE(name(1), u"src, folder"_s);
    QCOMPARE(name(2), u"readme.md, file"_s);
}

void FileTreeViewTest::aLargeFolderExpands()
{
    Fixture fixture;
    QDir(fixture.project.path()).mkpath(u"large"_s);
    for (int file = 0; file < 5000; ++file) {
        fixture.make(u"large/file %1.txt"_s.arg(file));
    }
    fixture.show();
    fixture.click(u"large"_s);
    QCOMPARE(fixture.view->model().rowCount(), 5004);
    fixture.click(u"large"_s);
    QCOMPARE(fixture.view->model().rowCount(), 4);
}

const kelm::test::Registered<FileTreeViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace file_tree_view_test

#include "file_tree_view_test.moc"
