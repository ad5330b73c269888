// The editing keys of a text view.
#pragma once

#include "text/editing/text_editor.h"
#include "text/view/text_view.h"

#include <QKeySequence>

#include <optional>
#include <vector>

class QKeyEvent;

namespace kelm {

/// What a key does: the platform's standard key, or a key of its own, and the operation behind it.
struct KeyAction
{
    enum class Kind { move, erase, addCaret, slot };

    Kind kind;
    /// The platform's meaning of the key, or `QKeySequence::UnknownKey` where `sequence` says it.
    QKeySequence::StandardKey standardKey;
    QKeySequence sequence;
    Movement movement;
    Extend extend;
    void (TextView::*slot)();
};

/// All keys, in the order in which they are looked up.
const std::vector<KeyAction>& keyActions();

/// The index of the action of a key event.
std::optional<int> keyActionFor(const QKeyEvent& event);

/// Whether a key types its text, a line break or a tab included.
bool insertsText(const QKeyEvent& event);

} // namespace kelm
