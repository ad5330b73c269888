// Folding by the gutter.
#include "editor/view/editor_text.h"
#include "soak/action.h"
#include "soak/world.h"

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The heights, in the gutter, of the lines on screen that can be folded.
std::vector<int> triangles(EditorContainerView& editor)
{
    std::vector<int> places;
    const TextView& view = editor.textView();
    for (const TextRow& row : editor.textView().visibleRows()) {
        const qsizetype line = view.storage().tree().lineFeedsBefore(row.range.location) + 1;
        if (row.isFirstOfLine && row.top >= 0 && editor.codeFoldingManager().markAt(line)) {
            places.push_back(static_cast<int>(row.top + editorLineHeight / 2));
        }
    }
    return places;
}

bool canFold(World& world)
{
    return world.editor() != nullptr && world.editor()->lineNumberView().isVisible() &&
           !triangles(*world.editor()).empty();
}

void toggle(World& world)
{
    for (qsizetype count = 1 + world.chance.below(3); count > 0; --count) {
        const std::vector<int> places = triangles(*world.editor());
        if (places.empty()) {
            return;
        }
        QTest::mouseClick(&world.editor()->lineNumberView(), Qt::LeftButton, {}, QPoint(8, world.chance.pick(places)));
    }
    world.note(world.isFolded() ? u"folded"_s : u"whole"_s);
}

bool isFolded(World& world)
{
    return world.isFolded();
}

/// All folds opened, the text must be the document's.
void unfoldAll(World& world)
{
    world.editor()->codeFoldingManager().unfoldAll();
    const QString& shown = world.editor()->text();
    world.expect(shown == world.tabs.current()->text(),
                 u"unfolding gives another text: "_s + howTheyDiffer(world.tabs.current()->text(), shown));
}

} // namespace

std::vector<Action> foldingActions()
{
    return {
        {"fold by the gutter", 24, canFold, toggle},
        {"unfold all", 6, isFolded, unfoldAll},
    };
}

} // namespace kelm::soak
