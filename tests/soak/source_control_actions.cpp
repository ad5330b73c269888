// The source control panel over the project's repository.
#include "git/panel/view/commit_composer.h"
#include "git/panel/view/source_control_view.h"
#include "git/service/git_service.h"
#include "platform/view/plain_button.h"
#include "platform/view/row_list.h"
#include "soak/action.h"
#include "soak/git_model.h"
#include "workbench/view/controls.h"
#include "workbench/view/sidebar_view.h"

#include <QDialog>
#include <QLineEdit>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

SourceControlView& panel(World& world, SourceControlTab tab)
{
    world.state.setShowSidebar(true);
    world.window.sidebar()->select(SidebarTab::sourceControl);
    world.settle();
    auto* view = world.window.findChild<SourceControlView*>();
    view->setTab(tab);
    if (QAbstractButton* refresh = test::visibleButton(*view, u"Refresh"_s)) {
        refresh->click();
    }
    world.settle();
    return *view;
}

RowList* shownList(const QWidget& parent)
{
    for (auto* list : parent.findChildren<RowList*>()) {
        if (list->isVisible()) {
            return list;
        }
    }
    return nullptr;
}

/// The rows, as items of a list, that offer an action.
std::vector<int> rowsWith(const RowList& list, const QString& action)
{
    std::vector<int> items;
    for (int item = 0; item < list.rows().rowCount(); ++item) {
        if (list.rows().isTitle(item)) {
            continue;
        }
        for (const RowAction& each : list.rows().rowAt(item).actions) {
            if (each.help == action) {
                items.push_back(item);
            }
        }
    }
    return items;
}

/// Moves the mouse over a row and presses one of the buttons that appear.
bool act(RowList& list, int item, const QString& action)
{
    const QModelIndex index = list.model()->index(item, 0);
    list.scrollTo(index);
    const QRect place = list.visualRect(index);
    QTest::mouseMove(list.viewport(), QPoint(place.left() + 3, place.center().y() + 1));
    QTest::mouseMove(list.viewport(), QPoint(place.left() + 5, place.center().y()));
    QAbstractButton* button = test::visibleButton(*list.viewport(), action);
    for (auto* each : list.viewport()->findChildren<PlainButton*>()) {
        if (button == nullptr && each->isVisible() && each->toolTip() == action) {
            button = each;
        }
    }
    if (button != nullptr) {
        QTest::mouseClick(button, Qt::LeftButton);
    }
    return button != nullptr;
}

/// The path of a row of changes; empty for a name that git writes in another form, and for a folder.
QString plainPath(const RowList& list, int item)
{
    const QString path = list.rows().rowAt(item).firstLine.at(1).text;
    const bool isPlain = !path.startsWith(u'"') && !path.contains(u" -> "_s) && !path.endsWith(u'/');
    return isPlain ? path : QString();
}

/// Presses an action of some row of the changes, after telling `expect` of it.
void actOnChange(World& world, const QString& action, void (*expect)(World& world, const QString& path))
{
    RowList* list = shownList(panel(world, SourceControlTab::changes));
    if (list == nullptr) {
        return;
    }
    const std::vector<int> items = rowsWith(*list, action);
    if (items.empty()) {
        return;
    }
    const int item = world.chance.pick(items);
    const QString path = plainPath(*list, item);
    world.note(path);
    if (!path.isEmpty()) {
        expect(world, path);
        world.expect(act(*list, item, action), u"a row of the changes does not offer: "_s + action);
    }
}

void stage(World& world)
{
    actOnChange(world, u"Stage"_s, [](World&, const QString&) {});
}

void unstage(World& world)
{
    actOnChange(world, u"Unstage"_s, [](World&, const QString&) {});
}

void discard(World& world)
{
    actOnChange(world, u"Discard"_s, expectFromIndex);
}

void commit(World& world)
{
    SourceControlView& view = panel(world, SourceControlTab::changes);
    if (world.chance.oneIn(2)) {
        test::visibleButton(view, u"Stage All"_s)->click();
    }
    if (gitText(world, {u"diff"_s, u"--cached"_s, u"--name-only"_s}).isEmpty()) {
        return;
    }
    const QByteArray tree = gitText(world, {u"write-tree"_s});
    auto* field = view.findChild<CommitMessageField*>();
    field->setFocus();
    QTest::keyClicks(field, u"a \"commit\" 1"_s);
    QTest::keyClick(field, Qt::Key_Return, Qt::ControlModifier);
    world.settle();
    world.expect(gitText(world, {u"rev-parse"_s, u"HEAD^{tree}"_s}) == tree, u"the commit is not what was staged"_s);
}

QDialog* shownSheet(World& world)
{
    for (auto* dialog : world.window.findChildren<QDialog*>()) {
        if (dialog->isVisible()) {
            return dialog;
        }
    }
    return nullptr;
}

void closeSheet(World& world)
{
    if (QDialog* sheet = shownSheet(world)) {
        test::visibleButton(*sheet, u"Close"_s)->click();
    }
    world.settle();
    world.expect(shownSheet(world) == nullptr, u"a sheet stays open"_s);
    world.bringToFront();
}

void clickRow(RowList& list, int item)
{
    const QModelIndex index = list.model()->index(item, 0);
    list.scrollTo(index);
    // A row that has slid under a pointer at rest takes no press.
    QTest::mouseMove(list.viewport(), list.visualRect(index).center() + QPoint(2, 1));
    QTest::mouseMove(list.viewport(), list.visualRect(index).center());
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(index).center());
}

/// Opens the changes of a file and stages one hunk of them, after which there must be one less.
void stageHunk(World& world)
{
    RowList* list = shownList(panel(world, SourceControlTab::changes));
    const std::vector<int> items = list != nullptr ? rowsWith(*list, u"Discard"_s) : std::vector<int>{};
    if (items.empty()) {
        return;
    }
    const int item = world.chance.pick(items);
    const QString path = plainPath(*list, item);
    const auto bytes = path.isEmpty() ? std::nullopt : world.disk.bytesOf(world.path(path));
    clickRow(*list, item);
    world.settle();
    QDialog* sheet = shownSheet(world);
    if (!world.expect(sheet != nullptr, u"the changes of a file do not open"_s)) {
        return;
    }
    const qsizetype hunks = bytes ? hunkCount(world, path) : 0;
    world.note(u"%1, %2 hunks"_s.arg(path).arg(hunks));
    QAbstractButton* button = test::visibleButton(*sheet, u"Stage hunk"_s);
    if (button != nullptr && hunks > 0) {
        const QByteArray diff = world.repository.git({u"diff"_s, u"--"_s, path});
        button->click();
        const qsizetype left = hunkCount(world, path);
        // A hunk at a line without an end goes to git with that mark changed, and some of them do not apply.
        const bool mayStay = diff.contains("\n\\ No newline");
        world.expect(left == hunks - 1 || (mayStay && left == hunks),
                     u"staging one of %1 hunks leaves %2: "_s.arg(hunks).arg(left) + QString::fromUtf8(diff));
    }
    closeSheet(world);
}

void makeBranch(World& world)
{
    static int count = 0;
    SourceControlView& view = panel(world, SourceControlTab::branches);
    for (auto* field : view.findChildren<QLineEdit*>()) {
        if (field->isVisible() && field->placeholderText() == u"New branch") {
            field->setFocus();
            const QString name = u"branch%1"_s.arg(++count);
            QTest::keyClicks(field, name);
            QTest::keyClick(field, Qt::Key_Return);
            world.expect(gitText(world, {u"symbolic-ref"_s, u"--short"_s, u"HEAD"_s}) == name.toUtf8(),
                         u"the new branch is not checked out"_s);
        }
    }
}

void checkOut(World& world)
{
    if (!isClean(world, true)) {
        return;
    }
    RowList* list = shownList(panel(world, SourceControlTab::branches));
    const std::vector<int> items = list != nullptr ? rowsWith(*list, u"Checkout"_s) : std::vector<int>{};
    if (items.empty()) {
        return;
    }
    const int item = world.chance.pick(items);
    const QString name = list->rows().rowAt(item).firstLine.first().text;
    world.note(name);
    expectTree(world, "HEAD", name.toUtf8());
    world.expect(act(*list, item, u"Checkout"_s), u"a branch cannot be checked out"_s);
}

/// Whether a file that the last commit knows is not in the index: a stash does odd things to such.
bool hasStagedRemovals(const World& world)
{
    return !gitText(world, {u"diff"_s, u"--cached"_s, u"--name-only"_s, u"--diff-filter=D"_s, u"--no-renames"_s})
                .isEmpty();
}

void stash(World& world)
{
    if (isClean(world, false) || hasStagedRemovals(world)) {
        return;
    }
    SourceControlView& view = panel(world, SourceControlTab::stashes);
    // As if all that is tracked were one tree.
    const QByteArray kept = gitText(world, {u"stash"_s, u"create"_s});
    expectTree(world, kept, "HEAD");
    test::visibleButton(view, u"Stash"_s)->click();
}

void popStash(World& world)
{
    if (!isClean(world, true) || gitText(world, {u"stash"_s, u"list"_s}).isEmpty() ||
        gitText(world, {u"rev-parse"_s, u"stash@{0}^1"_s}) != gitText(world, {u"rev-parse"_s, u"HEAD"_s})) {
        return;
    }
    RowList* list = shownList(panel(world, SourceControlTab::stashes));
    const std::vector<int> items = list != nullptr ? rowsWith(*list, u"Pop (apply + drop)"_s) : std::vector<int>{};
    if (!items.empty()) {
        expectTree(world, "HEAD", "stash@{0}");
        world.expect(act(*list, items.front(), u"Pop (apply + drop)"_s), u"a stash cannot be popped"_s);
    }
}

void lookAtTab(World& world)
{
    const SourceControlTab tab = allSourceControlTabs.at(
        static_cast<std::size_t>(world.chance.below(static_cast<qsizetype>(allSourceControlTabs.size()))));
    SourceControlView& view = panel(world, tab);
    RowList* list = shownList(view);
    if (tab == SourceControlTab::history && list != nullptr && list->rows().rowCount() > 0) {
        clickRow(*list, static_cast<int>(world.chance.below(std::min(list->rows().rowCount(), 20))));
        world.settle();
        closeSheet(world);
    }
}

} // namespace

std::vector<Action> sourceControlActions()
{
    return {
        {"stage", 4, nullptr, stage},
        {"unstage", 2, nullptr, unstage},
        {"discard", 2, nullptr, discard},
        {"stage a hunk", 4, nullptr, stageHunk},
        {"commit", 2, nullptr, commit},
        {"make a branch", 1, nullptr, makeBranch},
        {"check out a branch", 2, nullptr, checkOut},
        {"stash", 1, nullptr, stash},
        {"pop a stash", 2, nullptr, popStash},
        {"look at a tab of source control", 2, nullptr, lookAtTab},
    };
}

} // namespace kelm::soak
