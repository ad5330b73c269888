// The window's panels, menus and settings.
#include "settings/view/settings_view.h"
#include "soak/action.h"
#include "soak/world.h"
#include "workbench/status/view/document_status.h"
#include "workbench/status/view/status_bar_items.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/controls.h"
#include "workbench/view/sidebar_view.h"

#include <QCheckBox>
#include <QMenuBar>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

void togglePanel(World& world)
{
    static const std::vector<std::pair<Qt::Key, Qt::KeyboardModifiers>> keys{
        {Qt::Key_B, Qt::ControlModifier},
        {Qt::Key_QuoteLeft, Qt::ControlModifier},
        {Qt::Key_M, Qt::ControlModifier | Qt::ShiftModifier},
    };
    const auto& [key, modifiers] = world.chance.pick(keys);
    world.note(QString::number(key));
    QTest::keyClick(&world.window, key, modifiers);
}

bool hasSidebar(World& world)
{
    return world.window.sidebar() != nullptr;
}

void chooseSidebarTab(World& world)
{
    const auto tabs = SidebarTab::allCases();
    const SidebarTab tab = tabs.at(static_cast<std::size_t>(world.chance.below(tabs.size())));
    world.note(tab.helpLabel());
    world.window.sidebar()->tabButton(tab).click();
}

void chooseBottomTab(World& world)
{
    const auto tabs = BottomPanelTab::allCases();
    world.state.setShowBottomPanel(true);
    world.state.setBottomPanelTab(tabs.at(static_cast<std::size_t>(world.chance.below(tabs.size()))));
}

void resize(World& world)
{
    world.window.resize(static_cast<int>(900 + world.chance.below(900)),
                        static_cast<int>(600 + world.chance.below(500)));
}

bool hasStatus(World& world)
{
    return world.window.statusBarView().leftStatus() != nullptr;
}

/// Opens the menu of a button of the status bar and chooses a line of it.
void chooseFrom(World& world, StatusBarMenu& button)
{
    QMenu* menu = test::openMenu(button);
    if (!world.expect(menu != nullptr, u"a menu of the status bar does not open"_s)) {
        return;
    }
    QStringList lines;
    for (const QAction* action : menu->actions()) {
        if (!action->isSeparator() && action->isEnabled()) {
            lines.append(action->text());
        }
    }
    const QString line = world.chance.pick(lines);
    world.note(line);
    test::choose(*menu, line);
    world.settle();
}

void chooseLabel(World& world)
{
    DocumentLeftStatus& left = *world.window.statusBarView().leftStatus();
    const std::vector<StatusBarMenu*> menus{&left.languageMenu(), &left.encodingMenu(), &left.lineEndingMenu(),
                                            &world.window.statusBarView().rightStatus()->indentMenu()};
    chooseFrom(world, *world.chance.pick(menus));
}

void chooseTheme(World& world)
{
    chooseFrom(world, world.window.statusBarView().themeMenu());
}

void useSettings(World& world)
{
    QTest::keyClick(&world.window, Qt::Key_Comma, Qt::ControlModifier);
    SettingsView* settings = world.window.settings();
    if (!world.expect(settings != nullptr && settings->isVisible(), u"the settings do not open"_s)) {
        return;
    }
    for (int tab = 0; tab < SettingsView::tabCount; ++tab) {
        settings->select(static_cast<SettingsView::Tab>(tab));
        world.settle();
        const auto boxes = settings->page(static_cast<SettingsView::Tab>(tab))->findChildren<QCheckBox*>();
        if (!boxes.isEmpty()) {
            world.chance.pick(boxes)->click();
        }
    }
    settings->close();
    world.bringToFront();
}

/// The panels over the window that do nothing to a text.
void useOverlay(World& world)
{
    static const std::vector<std::pair<Qt::Key, Qt::KeyboardModifiers>> keys{
        {Qt::Key_F, Qt::ControlModifier},
        {Qt::Key_H, Qt::ControlModifier},
        {Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier},
        {Qt::Key_G, Qt::ControlModifier},
    };
    const auto& [key, modifiers] = world.chance.pick(keys);
    QTest::keyClick(&world.window, key, modifiers);
    world.settle();
    QWidget* const target = world.window.focusWidget() != nullptr ? world.window.focusWidget() : &world.window;
    QTest::keyClicks(target, u"12"_s);
    QTest::keyClick(target, Qt::Key_Escape);
    world.expect(!world.state.showSearch() && !world.state.showGoToLine(), u"an overlay stays"_s);
}

void draw(World& world)
{
    world.expect(!world.window.grab().isNull(), u"the window cannot be drawn"_s);
}

} // namespace

std::vector<Action> windowActions()
{
    return {
        {"toggle a panel", 8, nullptr, togglePanel},
        {"choose a tab of the sidebar", 6, hasSidebar, chooseSidebarTab},
        {"choose a tab of the bottom panel", 4, nullptr, chooseBottomTab},
        {"resize", 5, nullptr, resize},
        {"choose a label", 6, hasStatus, chooseLabel},
        {"choose a theme", 2, nullptr, chooseTheme},
        {"use the settings", 1, nullptr, useSettings},
        {"use an overlay", 2, nullptr, useOverlay},
        {"draw", 4, nullptr, draw},
    };
}

} // namespace kelm::soak
