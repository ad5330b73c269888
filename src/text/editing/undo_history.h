// What can be undone and redone.
#pragma once

#include "text/editing/selection.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QStringView>

#include <optional>
#include <utility>
#include <vector>

namespace kelm {

/// One replacement with all that is needed to take it back. What it holds it shares with the text, piece by piece.
struct Replacement
{
    qsizetype location = 0;
    TextTree removed;
    TextTree inserted;

    Replacement() = default;
    Replacement(qsizetype at, TextTree out, TextTree in)
        : location(at), removed(std::move(out)), inserted(std::move(in))
    {}
    Replacement(qsizetype at, QStringView out, QStringView in) : location(at), removed(out), inserted(in) {}

    TextRange oldRange() const { return {location, removed.length()}; }
    TextRange newRange() const { return {location, inserted.length()}; }
    Replacement inverted() const { return {location, inserted, removed}; }

    friend bool operator==(const Replacement&, const Replacement&) = default;
};

enum class EditKind {
    typing,        ///< characters typed, one after the other
    deletingBack,  ///< backspace
    deletingAhead, ///< forward delete
    composing,     ///< what an input method puts in, and the selection that made way for it
    other          ///< paste, drop, replace: always a step of its own
};

/// One step: replacements in the order in which they were made, and the selections before and after.
struct UndoStep
{
    std::vector<Replacement> replacements;
    SelectionSet before;
    SelectionSet after;
    EditKind kind = EditKind::other;
};

/// The steps of one text. A run of edits of one kind at adjoining places is one step; a moved caret, another kind of
/// edit, `endRun` and a line break typed end it.
///
/// Edits that go round the history, as a fold does, are told with `foreignEdit`. One that is taken back again leaves no
/// trace. For the others the steps are carried over the foreign edit where they touch other text, and forgotten from
/// the first step on that touches the same.
class UndoHistory
{
public:
    bool hasUndo() const { return !steps_.empty(); }
    bool hasRedo() const { return !redo_.empty(); }

    void push(UndoStep step);
    /// The next edit begins a step of its own.
    void endRun() { runIsOpen_ = false; }
    void foreignEdit(const Replacement& edit);
    void clear();

    /// The step to take back, moved to the redo side; absent when there is none. The caller applies its replacements
    /// inverted, from the last to the first.
    std::optional<UndoStep> takeUndo();
    /// The step to make again, moved back to the undo side.
    std::optional<UndoStep> takeRedo();

private:
    bool mergesInto(const UndoStep& last, const UndoStep& next) const;
    void settleForeignEdits();
    void carryOver(const Replacement& foreign);

    std::vector<UndoStep> steps_;
    std::vector<UndoStep> redo_;
    /// Foreign edits that no step has been carried over yet, in their order.
    std::vector<Replacement> foreign_;
    bool runIsOpen_ = false;
};

} // namespace kelm
