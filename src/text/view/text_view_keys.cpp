#include "text/view/text_view_keys.h"

#include "platform/events/erasing_keys.h"

#include <QHash>
#include <QKeyEvent>

namespace kelm {

namespace {

KeyAction moving(QKeySequence::StandardKey key, Movement movement, Extend extend = Extend::no)
{
    return {KeyAction::Kind::move, key, {}, movement, extend, nullptr};
}

KeyAction erasing(QKeySequence::StandardKey key, Movement movement)
{
    return {KeyAction::Kind::erase, key, {}, movement, Extend::no, nullptr};
}

KeyAction calling(QKeySequence::StandardKey key, void (TextView::*slot)())
{
    return {KeyAction::Kind::slot, key, {}, Movement::characterLeft, Extend::no, slot};
}

KeyAction addingCarets(const QKeySequence& sequence, Movement movement)
{
    return {KeyAction::Kind::addCaret, QKeySequence::UnknownKey, sequence, movement, Extend::no, nullptr};
}

KeyAction own(const QKeySequence& sequence, KeyAction action)
{
    action.standardKey = QKeySequence::UnknownKey;
    action.sequence = sequence;
    return action;
}

std::vector<KeyAction> makeActions()
{
    using Key = QKeySequence;
    return {
        moving(Key::MoveToPreviousChar, Movement::characterLeft),
        moving(Key::MoveToNextChar, Movement::characterRight),
        moving(Key::MoveToPreviousWord, Movement::wordLeft),
        moving(Key::MoveToNextWord, Movement::wordRight),
        moving(Key::MoveToPreviousLine, Movement::rowUp),
        moving(Key::MoveToNextLine, Movement::rowDown),
        moving(Key::MoveToPreviousPage, Movement::pageUp),
        moving(Key::MoveToNextPage, Movement::pageDown),
        moving(Key::MoveToStartOfLine, Movement::rowStart),
        moving(Key::MoveToEndOfLine, Movement::rowEnd),
        moving(Key::MoveToStartOfBlock, Movement::lineStart),
        moving(Key::MoveToEndOfBlock, Movement::lineEnd),
        moving(Key::MoveToStartOfDocument, Movement::textStart),
        moving(Key::MoveToEndOfDocument, Movement::textEnd),
        moving(Key::SelectPreviousChar, Movement::characterLeft, Extend::yes),
        moving(Key::SelectNextChar, Movement::characterRight, Extend::yes),
        moving(Key::SelectPreviousWord, Movement::wordLeft, Extend::yes),
        moving(Key::SelectNextWord, Movement::wordRight, Extend::yes),
        moving(Key::SelectPreviousLine, Movement::rowUp, Extend::yes),
        moving(Key::SelectNextLine, Movement::rowDown, Extend::yes),
        moving(Key::SelectPreviousPage, Movement::pageUp, Extend::yes),
        moving(Key::SelectNextPage, Movement::pageDown, Extend::yes),
        moving(Key::SelectStartOfLine, Movement::rowStart, Extend::yes),
        moving(Key::SelectEndOfLine, Movement::rowEnd, Extend::yes),
        moving(Key::SelectStartOfBlock, Movement::lineStart, Extend::yes),
        moving(Key::SelectEndOfBlock, Movement::lineEnd, Extend::yes),
        moving(Key::SelectStartOfDocument, Movement::textStart, Extend::yes),
        moving(Key::SelectEndOfDocument, Movement::textEnd, Extend::yes),
        calling(Key::Undo, &TextView::undo),
        calling(Key::Redo, &TextView::redo),
        own(Qt::CTRL | Qt::SHIFT | Qt::Key_Z, calling(Key::Redo, &TextView::redo)),
        // Few desktops list this one, which most hands know.
        own(Qt::CTRL | Qt::Key_Y, calling(Key::Redo, &TextView::redo)),
        calling(Key::Cut, &TextView::cut),
        calling(Key::Copy, &TextView::copy),
        calling(Key::Paste, &TextView::paste),
        calling(Key::SelectAll, &TextView::selectAll),
        erasing(Key::Backspace, Movement::characterLeft),
        // Most platforms list no key under that name: theirs is the one that is called so.
        own(Qt::Key_Backspace, erasing(Key::Backspace, Movement::characterLeft)),
        own(Qt::SHIFT | Qt::Key_Backspace, erasing(Key::Backspace, Movement::characterLeft)),
        erasing(Key::Delete, Movement::characterRight),
        erasing(Key::DeleteStartOfWord, Movement::wordLeft),
        erasing(Key::DeleteEndOfWord, Movement::wordRight),
        erasing(Key::DeleteEndOfLine, Movement::lineEnd),
        addingCarets(Qt::CTRL | Qt::ALT | Qt::Key_Up, Movement::rowUp),
        addingCarets(Qt::CTRL | Qt::ALT | Qt::Key_Down, Movement::rowDown),
        // Many desktops switch their workspaces by those, or send a window to another one with Shift in Control's
        // place.
        addingCarets(Qt::CTRL | Qt::SHIFT | Qt::Key_Up, Movement::rowUp),
        addingCarets(Qt::CTRL | Qt::SHIFT | Qt::Key_Down, Movement::rowDown),
    };
}

/// Where a key stands in the table; what comes first in it wins.
QHash<QKeySequence, int> makeIndexes()
{
    QHash<QKeySequence, int> indexes;
    int index = 0;
    for (const KeyAction& action : keyActions()) {
        const QList<QKeySequence> keys = action.standardKey == QKeySequence::UnknownKey
                                             ? QList<QKeySequence>{action.sequence}
                                             : QKeySequence::keyBindings(action.standardKey);
        for (const QKeySequence& key : keys) {
            if (!erasesUnnamed(key[0]) && !indexes.contains(key)) {
                indexes.insert(key, index);
            }
        }
        ++index;
    }
    return indexes;
}

} // namespace

const std::vector<KeyAction>& keyActions()
{
    static const std::vector<KeyAction> actions = makeActions();
    return actions;
}

std::optional<int> keyActionFor(const QKeyEvent& event)
{
    // The number block's keys mean what the others do.
    const QKeySequence pressed(event.keyCombination().toCombined() & ~static_cast<int>(Qt::KeypadModifier));
    // The platform makes its list of keys anew whenever it is asked: one look at all of them is enough.
    static const QHash<QKeySequence, int> indexes = makeIndexes();
    const auto found = indexes.find(pressed);
    return found != indexes.end() ? std::optional(*found) : std::nullopt;
}

bool insertsText(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter || event.key() == Qt::Key_Tab) {
        return modifiers == Qt::NoModifier;
    }
    if (event.text().isEmpty()) {
        return false;
    }
    const QChar first = event.text().front();
    if (!first.isPrint() && !first.isSurrogate() && first.category() != QChar::Other_Format) {
        return false;
    }
    // Control with Alt is how some keyboards reach their third level; it types what it says.
    return modifiers == Qt::NoModifier || modifiers == Qt::GroupSwitchModifier ||
           modifiers == (Qt::ControlModifier | Qt::AltModifier);
}

/// Whether a key may go on here that was pressed elsewhere: it only moves the caret, or walks on to the next widget.
bool TextView::goesOnWhenHeld(const QKeyEvent& event) const
{
    if (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab) {
        return isReadOnly();
    }
    const auto action = keyActionFor(event);
    return action && keyActions()[static_cast<std::size_t>(*action)].kind == KeyAction::Kind::move;
}

} // namespace kelm
