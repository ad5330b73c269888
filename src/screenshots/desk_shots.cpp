#include "screenshots/desk_shots.h"

#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "editor/view/editor_container_view.h"
#include "platform/desktop/alerts.h"
#include "platform/view/confirmation_dialog.h"
#include "platform/view/details_sheet.h"
#include "text/view/find_bar.h"
#include "text/view/text_view.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/main_window.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/sidebar_view.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSplitter>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace kelm::screenshots {

namespace {

const QStringList sources{u"Sources/orchard.swift"_s, u"Sources/basket.py"_s};

/// Where another thing than the text is to be seen: text takes most of a picture's room on the disk.
const QStringList shortSources{u"Sources/Weather/forecast.ts"_s, u"Sources/basket.py"_s};

const std::vector<std::pair<QString, QString>> darkOnly{{u"Monokai"_s, u"dark"_s}};

/// Opens a menu of the menu bar, or one inside it, where a click would.
void openMenu(Stage& stage, const QString& title, const QString& inside = {})
{
    const auto& bar = *stage.window.findChild<QMenuBar*>();
    for (QAction* action : bar.actions()) {
        if (action->text().remove(u'&') != title) {
            continue;
        }
        QMenu* menu = action->menu();
        menu->popup(bar.mapToGlobal(bar.actionGeometry(action).bottomLeft() + QPoint(0, 1)));
        settle();
        for (QAction* item : menu->actions()) {
            if (item->menu() != nullptr && item->text().remove(u'&') == inside) {
                item->menu()->popup(menu->mapToGlobal(menu->actionGeometry(item).topRight()));
            }
        }
        return;
    }
}

std::vector<Shot> menuBarShots()
{
    struct Menu
    {
        const char* name;
        QString title;
        QString inside = {};
    };
    const std::vector<Menu> menus{
        {"menu-bar-application", u"KelmWright"_s},
        {"menu-bar-file", u"File"_s},
        {"menu-bar-edit", u"Edit"_s},
        {"menu-bar-edit-find", u"Edit"_s, u"Find"_s},
        {"menu-bar-edit-format", u"Edit"_s, u"Format"_s},
        {"menu-bar-edit-transform", u"Edit"_s, u"Transform"_s},
        {"menu-bar-view", u"View"_s},
        {"menu-bar-run", u"Run"_s},
        {"menu-bar-find", u"Find"_s},
        {"menu-bar-window", u"Window"_s},
    };
    std::vector<Shot> shots;
    for (const Menu& menu : menus) {
        shots.push_back({.name = menu.name,
                         .files = shortSources,
                         .prepare = [menu](Stage& stage) { openMenu(stage, menu.title, menu.inside); },
                         .size = {900, 600}});
    }
    return shots;
}

/// Does what waits for a person's answer, and takes the picture while it waits.
void whileItAsks(const std::function<void()>& ask, const std::function<void()>& takePicture)
{
    QTimer::singleShot(0, qApp, [takePicture] {
        settleUntil([] { return QApplication::activeModalWidget() != nullptr; });
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            return;
        }
        takePicture();
        dialog->reject();
    });
    ask();
}

void chooseFile(Stage& stage, const std::function<void()>& takePicture)
{
    QDir::setCurrent(stage.project);
    whileItAsks([&stage] { stage.state.showOpenPanel(); }, takePicture);
}

void chooseName(Stage& stage, const std::function<void()>& takePicture)
{
    QDir::setCurrent(stage.project);
    stage.state.createNewTab();
    settle();
    whileItAsks([&stage] { stage.state.saveCurrentDocumentAs(); }, takePicture);
}

void warn(Stage& /*stage*/, const std::function<void()>& takePicture)
{
    whileItAsks(
        [] {
            Alerts::shared().runWarning(
                {.message = u"Move KelmWright to the Trash?"_s,
                 .informativeText = u"This will move the KelmWright app and its user data to the Trash. You can drag "
                                    "them back out if you change your mind.\n\nThe following will be moved:\n"
                                    "• Preferences\n• Saved state"_s,
                 .buttons = {u"Cancel"_s, u"Keep User Data"_s, u"Remove Everything"_s}});
        },
        takePicture);
}

void askToMerge(Stage& stage)
{
    auto* dialog =
        new ConfirmationDialog(u"Delete branch fix/ripe-limit?"_s,
                               {{u"Delete"_s, [] {}, true}, {u"Force Delete"_s, [] {}, true}}, &stage.window);
    dialog->open();
}

void showDetails(Stage& stage)
{
    auto* sheet = new DetailsSheet(u"The push was refused"_s,
                                   u"To https://example.org/sol/orchard.git\n ! [rejected]        main -> main "
                                   "(fetch first)\nerror: failed to push some refs\nhint: Updates were rejected "
                                   "because the remote contains work that you do not have locally."_s,
                                   &stage.window);
    sheet->open();
}

void tellNews(Stage& stage, const QString& text, std::vector<NoticeOffer> offers)
{
    stage.state.notices().report(text, std::move(offers));
    settleUntil([&stage] { return stage.window.noticeBar().isVisible(); });
}

void find(Stage& stage)
{
    EditorContainerView& editor = *stage.window.editorArea().currentEditor();
    editor.textView().showReplaceBar();
    editor.textView().findBar().findChild<QLineEdit*>()->setText(u"apples"_s);
    settle();
    editor.textView().findNext();
}

/// With a column of text of 400 points.
void findInNarrowText(Stage& stage)
{
    if (auto* columns = qobject_cast<QSplitter*>(stage.window.sidebar()->parentWidget()); columns != nullptr) {
        const int sidebar = stage.window.width() - 400 - 55 - 80 - 1;
        columns->setSizes({sidebar, columns->width() - sidebar - 1});
    }
    settle();
    find(stage);
}

std::vector<Shot> sizeShots()
{
    return {
        {.name = "find-narrow", .files = sources, .prepare = findInNarrowText, .size = {900, 600}},
        {.name = "find-wide", .files = sources, .prepare = find, .size = {1800, 600}, .themes = darkOnly},
        {.name = "smallest", .files = sources, .size = {900, 600}},
        {.name = "widest", .files = sources, .size = {5120, 1440}, .themes = darkOnly},
        {.name = "editor-1.25x", .files = sources, .scale = 1.25, .themes = darkOnly},
        {.name = "editor-1.5x", .files = sources, .scale = 1.5, .themes = darkOnly},
        {.name = "editor-2x", .files = sources, .scale = 2, .themes = darkOnly},
    };
}

} // namespace

std::vector<Shot> deskShots()
{
    std::vector<Shot> shots{
        {.name = "dialog-open", .files = shortSources, .prepareAround = chooseFile},
        {.name = "dialog-save", .files = shortSources, .prepareAround = chooseName},
        {.name = "alert", .files = shortSources, .prepareAround = warn},
        {"question", shortSources, askToMerge},
        {"details", shortSources, showDetails},
        {"notice", shortSources,
         [](Stage& stage) { tellNews(stage, u"README.md could not be saved: the disk is full"_s, {}); }},
        {"notice-offer", shortSources,
         [](Stage& stage) {
             tellNews(stage, u"Closed with unsaved changes"_s, {{u"Reopen"_s, [] {}}});
         }},
    };
    for (auto* more : {menuBarShots, sizeShots}) {
        for (Shot& shot : more()) {
            shots.push_back(std::move(shot));
        }
    }
    return shots;
}

} // namespace kelm::screenshots
