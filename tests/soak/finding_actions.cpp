// The find bar, and the search of the project.
#include "search/view/project_search_view.h"
#include "soak/action.h"
#include "soak/editing.h"
#include "text/view/find_bar.h"
#include "workbench/view/sidebar_view.h"

#include <QLineEdit>
#include <QToolButton>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

template <typename Control>
Control& controlOf(QWidget& parent, const QString& name)
{
    for (auto* control : parent.findChildren<Control*>()) {
        if (control->accessibleName() == name) {
            return *control;
        }
    }
    qFatal("no control '%s'", qPrintable(name));
}

const QString& needle(World& world)
{
    static const QStringList needles{u"two"_s, u"a"_s, u"return"_s, u"}"_s, u"word"_s, u"한"_s, u"x"_s, u"value"_s};
    return world.chance.pick(needles);
}

FindBar& open(World& world, bool withReplace, const QString& sought)
{
    TextView& view = world.text();
    // Without a text, as the keyboard sends it: a letter with Control and Alt is what the third level types.
    QTest::sendKeyEvent(QTest::Click, &view, withReplace ? Qt::Key_R : Qt::Key_F, QString(),
                        Qt::ControlModifier | Qt::AltModifier);
    FindBar& bar = view.findBar();
    world.expect(bar.isVisible(), u"the find bar does not open"_s);
    auto& matchCase = controlOf<QToolButton>(bar, u"Match case"_s);
    if (!matchCase.isChecked()) {
        matchCase.click();
    }
    auto& field = controlOf<QLineEdit>(bar, u"Find"_s);
    field.selectAll();
    field.insert(sought);
    return bar;
}

void find(World& world)
{
    const QString sought = needle(world);
    world.note(sought);
    FindBar& bar = open(world, false, sought);
    auto& field = controlOf<QLineEdit>(bar, u"Find"_s);
    for (qsizetype count = world.chance.below(5); count > 0; --count) {
        QTest::keyClick(&field, Qt::Key_Return, world.chance.oneIn(3) ? Qt::ShiftModifier : Qt::NoModifier);
    }
    if (!world.chance.oneIn(4)) {
        QTest::keyClick(&field, Qt::Key_Escape);
    }
}

void replaceOne(World& world)
{
    const QString sought = needle(world);
    const QString replacement = world.chance.oneIn(2) ? u"once"_s : QString();
    world.note(sought);
    FindBar& bar = open(world, true, sought);
    Before before;
    before.text = world.tabs.current()->text();
    auto& field = controlOf<QLineEdit>(bar, u"Replace"_s);
    field.selectAll();
    field.insert(replacement);
    world.settle();
    QTest::keyClick(&field, Qt::Key_Return);
    // Which one it is lies with the caret; that it is one, and nothing else, does not.
    const QString content = world.document()->content();
    bool isOne = content == before.text;
    for (qsizetype at = before.text.indexOf(sought); at >= 0 && !isOne; at = before.text.indexOf(sought, at + 1)) {
        isOne = content.size() == before.text.size() - sought.size() + replacement.size() &&
                content == replaced(before.text, {{at, sought.size()}}, {replacement});
    }
    world.expect(isOne, u"replacing one match has changed something else: "_s + howTheyDiffer(before.text, content));
    if (content != before.text) {
        world.tabs.current()->edited(content);
    }
    controlOf<QToolButton>(bar, u"Close the find bar"_s).click();
}

void replaceAll(World& world)
{
    const QString sought = needle(world);
    const QString replacement = world.chance.oneIn(2) ? u"all"_s : u"z"_s;
    world.note(sought + u" by "_s + replacement + (world.isFolded() ? u", folded"_s : QString()));
    FindBar& bar = open(world, true, sought);
    Before before;
    before.text = world.tabs.current()->text();
    auto& field = controlOf<QLineEdit>(bar, u"Replace"_s);
    field.selectAll();
    field.insert(replacement);
    const QString typed = controlOf<QLineEdit>(bar, u"Find"_s).text();
    controlOf<QToolButton>(bar, u"Replace all matches"_s).click();
    expectEdited(world, before, typed.isEmpty() ? before.text : QString(before.text).replace(typed, replacement));
    controlOf<QToolButton>(bar, u"Close the find bar"_s).click();
}

bool hasProject(World& world)
{
    return world.state.currentProject().has_value() && world.state.showSidebar();
}

void searchProject(World& world)
{
    const QString sought = needle(world);
    world.note(sought);
    world.window.sidebar()->select(SidebarTab::search);
    auto* search = world.window.findChild<ProjectSearchView*>();
    auto* field = search->findChild<QLineEdit*>();
    field->setFocus();
    field->selectAll();
    field->insert(sought);
    QTest::keyClick(field, Qt::Key_Return);
    if (!world.chance.oneIn(3)) {
        world.waitFor([search] { return !search->isSearching(); }, u"the search of the project ends"_s);
    }
}

} // namespace

std::vector<Action> findingActions()
{
    return {
        {"find", 8, hasRoom, find},
        {"replace one match", 6, hasRoom, replaceOne},
        {"replace all matches", 4, hasRoom, replaceAll},
        {"search the project", 3, hasProject, searchProject},
    };
}

} // namespace kelm::soak
