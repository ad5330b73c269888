#include "soak/editing.h"

#include <algorithm>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Whether `found` is `whole` with some units left out.
bool isWithin(const QString& found, const QString& whole)
{
    qsizetype at = 0;
    for (const QChar unit : found) {
        at = whole.indexOf(unit, at) + 1;
        if (at == 0) {
            return false;
        }
    }
    return true;
}

/// What was selected on screen; absent where a fold is a part of it, whose text goes with its placeholder.
std::optional<QString> selectedText(const Before& before)
{
    const TextRange range = before.ranges.front();
    if (range.isEmpty()) {
        return QString();
    }
    const QString& mark = CodeFoldingManager::foldPlaceholder;
    const qsizetype fold = before.shown.indexOf(mark, std::max<qsizetype>(0, range.location - mark.size() + 1));
    return fold >= 0 && fold < range.end() ? std::nullopt
                                           : std::optional(before.shown.mid(range.location, range.length));
}

/// Looks at an edit of one selection whose place is read off the caret afterwards: what stands before and behind what
/// was put in must be the beginning and the end of the text before. `selected` is what had been selected, absent where
/// the edit may have taken more.
void expectAround(World& world, const Before& before, const QString& piece, const std::optional<QString>& selected)
{
    const QString content = world.document()->content();
    const qsizetype caret = world.editor()->textView().selectedRange().location;
    const QString head = content.left(caret - piece.size());
    const QString tail = content.mid(caret);
    const qsizetype taken = before.text.size() - head.size() - tail.size();
    const bool isWhole = content.mid(head.size(), piece.size()) == piece && before.text.left(head.size()) == head &&
                         before.text.right(tail.size()) == tail && taken >= 0;
    const bool isSelection = !selected || before.text.mid(head.size(), taken) == *selected;
    // What stands on screen before the place must stand before it, up to the nearest fold.
    const TextRange range = before.ranges.front();
    const QString shown = before.shown.left(range.location).section(CodeFoldingManager::foldPlaceholder, -1).right(20);
    const bool isThere = !selected || head.right(shown.size()) == shown;
    world.expect(isThere, u"an edit went elsewhere: \"%1\" does not stand before it"_s.arg(shown));
    world.expect(isWhole && isSelection, u"an edit changed more than what was edited: "_s +
                                             howTheyDiffer(before.text, content) +
                                             u"; caret at %1, %2 units missing"_s.arg(caret).arg(taken));
    if (content != before.text) {
        world.tabs.current()->edited(content);
    }
}

} // namespace

Before beforeEdit(World& world)
{
    TextView& view = world.text();
    Before before;
    before.isFolded = world.isFolded();
    if (before.isFolded && !view.editor().selections().isSingle()) {
        view.setSelectedRange(view.selectedRange());
    }
    before.text = world.tabs.current()->text();
    before.shown = view.text();
    for (const Selection& selection : view.editor().selections().all()) {
        before.ranges.push_back(selection.range());
    }
    before.canUndo = view.editor().canUndo();
    before.canRedo = view.editor().canRedo();
    return before;
}

QString replaced(const QString& text, const std::vector<TextRange>& ranges, const QStringList& pieces)
{
    QString result;
    qsizetype from = 0;
    for (std::size_t index = 0; index < ranges.size(); ++index) {
        const TextRange range = ranges[index];
        if (range.location > from) {
            result += text.mid(from, range.location - from);
        }
        result += pieces.size() == 1 ? pieces.first() : pieces.at(static_cast<qsizetype>(index));
        from = std::max(from, range.end());
    }
    return result + text.mid(from);
}

void expectInserted(World& world, const Before& before, const QStringList& pieces)
{
    if (before.isFolded) {
        expectAround(world, before, pieces.first(), selectedText(before));
        return;
    }
    expectEdited(world, before, replaced(before.text, before.ranges, pieces));
}

void expectErased(World& world, const Before& before, const std::vector<TextRange>& ranges)
{
    if (before.isFolded) {
        expectErasedSomewhere(world, before);
        return;
    }
    expectEdited(world, before, replaced(before.text, ranges, {QString()}));
}

void expectErasedSomewhere(World& world, const Before& before)
{
    if (before.ranges.size() == 1) {
        expectAround(world, before, {}, std::nullopt);
        return;
    }
    const QString content = world.document()->content();
    world.expect(isWithin(content, before.text),
                 u"erasing has put something in: "_s + howTheyDiffer(before.text, content));
    if (content != before.text) {
        world.tabs.current()->edited(content);
    }
}

void expectEdited(World& world, const Before& before, const QString& text)
{
    const QString content = world.document()->content();
    world.expect(content == text, u"an edit has another result: "_s + howTheyDiffer(text, content));
    if (text != before.text) {
        world.tabs.current()->edited(text);
    }
}

void expectUndone(World& world, const Before& before)
{
    const QString content = world.document()->content();
    if (!before.canUndo) {
        world.expect(content == before.text, u"an undo with nothing to undo has changed the text"_s);
    } else {
        world.expect(world.tabs.current()->undone(content),
                     u"an undo leads to a text that never was: "_s + howTheyDiffer(before.text, content));
    }
}

void expectRedone(World& world, const Before& before)
{
    const QString content = world.document()->content();
    if (!before.canRedo) {
        world.expect(content == before.text, u"a redo with nothing to redo has changed the text"_s);
    } else {
        world.expect(world.tabs.current()->redone(content),
                     u"a redo leads to a text that never was: "_s + howTheyDiffer(before.text, content));
    }
}

} // namespace kelm::soak
