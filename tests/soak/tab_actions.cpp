// Opening, choosing and closing tabs.
#include "app/state/lesson_links.h"
#include "app/state/link_runs.h"
#include "app/state/notices.h"
#include "app/state/open_events.h"
#include "files/view/file_tree_view.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"
#include "search/view/project_search_view.h"
#include "search/view/quick_open_view.h"
#include "soak/action.h"
#include "soak/files_on_disk.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"

#include <QLineEdit>
#include <QListView>
#include <QMenu>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype mostTabs = 12;

bool hasRoomForTab(World& world)
{
    return world.tabs.all().size() < mostTabs;
}

bool hasTabs(World& world)
{
    return !world.tabs.all().isEmpty();
}

bool hasSidebarAndRoom(World& world)
{
    return hasRoomForTab(world) && world.state.showSidebar() && world.state.currentProject();
}

void clickRow(QListView& list, int row)
{
    const QModelIndex index = list.model()->index(row, 0);
    list.scrollTo(index);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(index).center());
}

void openByState(World& world)
{
    const QUrl url = world.chance.oneIn(10) ? world.url(u"not there.txt"_s) : someFile(world);
    if (url.isEmpty()) {
        return;
    }
    world.note(url.fileName());
    world.state.openFile(url);
    expectOpened(world, url);
}

void openByTree(World& world)
{
    world.window.sidebar()->select(SidebarTab::files);
    auto* tree = world.window.findChild<FileTreeView*>();
    world.settle();
    if (world.chance.oneIn(4)) {
        tree->loadFiles();
    }
    const int rows = tree->model().rowCount();
    if (rows == 0) {
        return;
    }
    const int row = static_cast<int>(world.chance.below(rows));
    const FileItem item = tree->model().item(row);
    world.note(item.url.fileName());
    clickRow(tree->list(), row);
    if (!item.isDirectory) {
        expectOpened(world, item.url);
    }
}

void openByQuickOpen(World& world)
{
    QTest::keyClick(&world.window, Qt::Key_P, Qt::ControlModifier);
    auto* panel = world.window.findChild<QuickOpenView*>();
    if (!world.expect(panel != nullptr, u"quick open does not open"_s)) {
        return;
    }
    auto* field = panel->findChild<QLineEdit*>();
    if (world.chance.oneIn(2)) {
        QTest::keyClicks(field, world.chance.pick(QStringList{u"t"_s, u"co"_s, u"json"_s, u"zz"_s}));
    }
    if (world.chance.oneIn(3)) {
        QTest::keyClick(field, Qt::Key_Down);
    }
    const QList<QUrl> files = panel->filteredFiles();
    const std::optional<QUrl> chosen =
        panel->selectedIndex() < files.size() ? std::optional(files.at(panel->selectedIndex())) : std::nullopt;
    if (world.chance.oneIn(5)) {
        QTest::keyClick(field, Qt::Key_Escape);
    } else {
        QTest::keyClick(field, Qt::Key_Return);
        if (chosen) {
            world.note(chosen->fileName());
            expectOpened(world, *chosen);
        }
    }
    world.expect(!world.state.showQuickOpen(), u"quick open stays"_s);
}

bool hasResults(World& world)
{
    const auto* search = world.window.findChild<ProjectSearchView*>();
    return hasRoomForTab(world) && search != nullptr && search->isVisible() && !search->results().isEmpty();
}

void openByResult(World& world)
{
    auto* search = world.window.findChild<ProjectSearchView*>();
    const int row = static_cast<int>(world.chance.below(std::min<qsizetype>(search->results().size(), 50)));
    const QUrl url = search->results().at(row).fileURL;
    world.note(url.fileName());
    auto* list = search->findChild<QListView*>();
    if (row < list->model()->rowCount()) {
        clickRow(*list, row);
        expectOpened(world, url);
    }
}

/// A lesson link of a shell snippet, which may ask to run: then it may, and the end of the run is waited for.
void openByLink(World& world)
{
    const bool runs = world.chance.oneIn(3);
    const QString code = u"echo \"a lesson\"\n# 한글\nif true; then\n  echo 1\n  echo 2\nfi\n"_s;
    const QString link = u"kelmpane://open?lang=shell&learnSlug=a&learnTitle=b&learnRegion=2-3&learnRequires=HOME"_s +
                         (runs ? u"&run=1&code="_s : u"&code="_s) +
                         QString::fromLatin1(code.toUtf8().toBase64(QByteArray::Base64UrlEncoding));
    world.note(runs ? u"and run"_s : QString());
    QObject context;
    bool isFocusAsked = false;
    NotificationCenter::shared().addObserver(&context, notifications::focusEditor,
                                             [&isFocusAsked](const Notification&) { isFocusAsked = true; });
    LessonLinks links(world.state, [] {});
    openURLs({link}, world.state, [&links](const QString& text) { links.handleKelmPaneURL(text); });
    world.settle();
    world.tabs.open(ShadowDocument(code, std::nullopt));
    if (runs) {
        CodeRunner& runner = world.state.codeRunner();
        bool hasRun = false;
        QObject::connect(&runner, &CodeRunner::isRunningChanged, &context, [&] { hasRun |= !runner.isRunning(); });
        world.expect(world.state.linkRuns().asksAbout(world.state.currentDocument()), u"the lesson's code asks"_s);
        world.state.linkRuns().run(world.state.currentDocument());
        world.waitFor([&hasRun] { return hasRun; }, u"the lesson's code has run"_s);
        world.expect(runner.output().contains(u"a lesson\n1\n2\n"_s),
                     u"the lesson's code printed: "_s + runner.output());
    }
    // The editor takes the keyboard a moment later, with the caret at the top.
    world.waitFor([&isFocusAsked] { return isFocusAsked; }, u"the snippet asks for the keyboard"_s);
    world.settle();
}

void makeTab(World& world)
{
    if (world.chance.oneIn(2)) {
        QTest::keyClick(&world.window, Qt::Key_N, Qt::ControlModifier);
    } else {
        world.window.tabBar().newTabButton().click();
    }
    world.tabs.open(ShadowDocument({}, std::nullopt));
}

void chooseTab(World& world)
{
    const qsizetype index = world.chance.below(world.tabs.all().size());
    world.note(QString::number(index));
    TabItemView& tab = *world.window.tabBar().tabs().at(index);
    world.chance.oneIn(2) ? tab.press() : QTest::mouseClick(&tab, Qt::LeftButton, {}, QPoint(20, tab.height() / 2));
    world.tabs.select(index);
}

void closeTab(World& world)
{
    const qsizetype index = world.chance.below(world.tabs.all().size());
    world.note(QString::number(index));
    TabItemView& tab = *world.window.tabBar().tabs().at(index);
    switch (world.chance.below(3)) {
    case 0:
        QTest::mouseClick(&tab, Qt::MiddleButton, {}, QPoint(20, tab.height() / 2));
        break;
    case 1:
        tab.closeButton().click();
        break;
    default:
        world.state.closeTab(index);
    }
    world.tabs.close(index);
}

void chooseFromMenu(TabItemView& tab, const QString& label)
{
    QMenu menu;
    tab.fillContextMenu(menu);
    for (QAction* action : menu.actions()) {
        if (action->text() == label) {
            action->trigger();
            return;
        }
    }
    qFatal("a tab's menu has no line '%s'", qPrintable(label));
}

void closeOthers(World& world)
{
    const qsizetype index = world.chance.below(world.tabs.all().size());
    chooseFromMenu(*world.window.tabBar().tabs().at(index), u"Close Others"_s);
    world.tabs.closeOthers(index);
}

void closeAll(World& world)
{
    chooseFromMenu(*world.window.tabBar().tabs().first(), u"Close All"_s);
    world.tabs.closeAll();
}

bool offersToReopen(World& world)
{
    const Notice* const notice = world.state.notices().current();
    return world.tabs.canReopen() && notice != nullptr && notice->text == u"Closed with unsaved changes"_s;
}

void reopen(World& world)
{
    world.state.notices().accept(0);
    world.tabs.reopen();
}

} // namespace

std::vector<Action> tabActions()
{
    return {
        {"open a file", 14, hasRoomForTab, openByState},
        {"open by the tree", 10, hasSidebarAndRoom, openByTree},
        {"open by quick open", 5, hasRoomForTab, openByQuickOpen},
        {"open a search result", 6, hasResults, openByResult},
        {"open a lesson link", 4, hasRoomForTab, openByLink},
        {"new tab", 4, hasRoomForTab, makeTab},
        {"choose a tab", 24, hasTabs, chooseTab},
        {"close a tab", 10, hasTabs, closeTab},
        {"close other tabs", 1, hasTabs, closeOthers},
        {"close all tabs", 1, hasTabs, closeAll},
        {"reopen what was closed", 5, offersToReopen, reopen},
    };
}

} // namespace kelm::soak
