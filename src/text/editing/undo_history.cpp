#include "text/editing/undo_history.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// How many foreign edits wait for one that takes them back. More come from a program that writes, not from folds.
constexpr std::size_t mostWaiting = 256;

/// Whether an edit lies wholly before or behind a range; touching its ends counts as outside.
bool isOutside(TextRange edit, TextRange range)
{
    return edit.end() <= range.location || edit.location >= range.end();
}

/// Moves a foreign edit, told in the text after `step`, to the text before it, and the step to the text with the edit
/// in it. False where both touch the same text.
bool exchange(Replacement& foreign, Replacement& step)
{
    if (!isOutside(foreign.oldRange(), step.newRange())) {
        return false;
    }
    // Where the edit ends at the very place at which the step begins it counts as standing before it.
    if (foreign.oldRange().end() <= step.location) {
        step.location += foreign.inserted.length() - foreign.removed.length();
    } else {
        foreign.location -= step.inserted.length() - step.removed.length();
    }
    return true;
}

void moveThrough(SelectionSet& selections, const Replacement& foreign)
{
    TextEdit edit;
    edit.range = foreign.oldRange();
    edit.newLength = foreign.inserted.length();
    selections.moveThrough(edit);
}

/// Carries the steps, the next to be taken last, over a foreign edit. `inverted` says whether their replacements are
/// the way back (undo) or the way ahead (redo) from the text of now.
void carrySteps(std::vector<UndoStep>& steps, Replacement foreign, bool backwards)
{
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        bool moved = true;
        moveThrough(backwards ? step->after : step->before, foreign);
        const auto pass = [&](Replacement& replacement) {
            if (backwards) {
                return exchange(foreign, replacement);
            }
            Replacement inverse = replacement.inverted();
            const bool done = exchange(foreign, inverse);
            replacement = inverse.inverted();
            return done;
        };
        if (backwards) {
            moved = std::all_of(step->replacements.rbegin(), step->replacements.rend(), pass);
        } else {
            moved = std::all_of(step->replacements.begin(), step->replacements.end(), pass);
        }
        if (!moved) {
            steps.erase(steps.begin(), step.base());
            return;
        }
        moveThrough(backwards ? step->before : step->after, foreign);
    }
}

} // namespace

void UndoHistory::push(UndoStep step)
{
    settleForeignEdits();
    redo_.clear();
    if (runIsOpen_ && !steps_.empty() && mergesInto(steps_.back(), step)) {
        UndoStep& last = steps_.back();
        std::move(step.replacements.begin(), step.replacements.end(), std::back_inserter(last.replacements));
        last.after = std::move(step.after);
    } else {
        steps_.push_back(std::move(step));
    }
    runIsOpen_ = steps_.back().kind != EditKind::other;
}

bool UndoHistory::mergesInto(const UndoStep& last, const UndoStep& next) const
{
    if (last.kind != next.kind || next.kind == EditKind::other || !(last.after == next.before)) {
        return false;
    }
    // Each typed line is a step: to lose a whole paragraph at one key is as bad as to undo letter by letter.
    return next.kind != EditKind::typing || last.replacements.back().inserted.lineFeeds() == 0;
}

void UndoHistory::foreignEdit(const Replacement& edit)
{
    runIsOpen_ = false;
    if (steps_.empty() && redo_.empty()) {
        return;
    }
    // An edit that takes an earlier one back cancels it, also when others were made elsewhere in between.
    Replacement sought = edit;
    for (auto earlier = foreign_.rbegin(); earlier != foreign_.rend(); ++earlier) {
        if (sought == earlier->inverted()) {
            // What came in between now stands on a text without the cancelled edit.
            Replacement cancelled = earlier->inverted();
            std::vector<Replacement> rest;
            for (auto later = earlier.base(); later != foreign_.end(); ++later) {
                Replacement moved = *later;
                if (moved.location >= cancelled.oldRange().end()) {
                    moved.location += cancelled.inserted.length() - cancelled.removed.length();
                } else {
                    cancelled.location += moved.inserted.length() - moved.removed.length();
                }
                rest.push_back(std::move(moved));
            }
            foreign_.erase(std::prev(earlier.base()), foreign_.end());
            std::move(rest.begin(), rest.end(), std::back_inserter(foreign_));
            return;
        }
        Replacement passed = *earlier;
        if (!exchange(sought, passed)) {
            break;
        }
    }
    if (foreign_.size() >= mostWaiting) {
        settleForeignEdits();
    }
    foreign_.push_back(edit);
}

void UndoHistory::clear()
{
    steps_.clear();
    redo_.clear();
    foreign_.clear();
    runIsOpen_ = false;
}

std::optional<UndoStep> UndoHistory::takeUndo()
{
    settleForeignEdits();
    runIsOpen_ = false;
    if (steps_.empty()) {
        return {};
    }
    redo_.push_back(std::move(steps_.back()));
    steps_.pop_back();
    return redo_.back();
}

std::optional<UndoStep> UndoHistory::takeRedo()
{
    settleForeignEdits();
    runIsOpen_ = false;
    if (redo_.empty()) {
        return {};
    }
    steps_.push_back(std::move(redo_.back()));
    redo_.pop_back();
    return steps_.back();
}

void UndoHistory::settleForeignEdits()
{
    for (const Replacement& foreign : std::exchange(foreign_, {})) {
        carryOver(foreign);
    }
}

void UndoHistory::carryOver(const Replacement& foreign)
{
    carrySteps(steps_, foreign, true);
    carrySteps(redo_, foreign, false);
}

} // namespace kelm
