#include "editor/kept_ready/view/kelm_text_view.h"

#include "editor/kept_ready/bracket_match.h"
#include "editor/kept_ready/view/kelm_editor_container.h"
#include "platform/events/key_event.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/text/character_sets.h"
#include "text/view/text_view_keys.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <array>
#include <chrono>

namespace kelm {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::chrono::milliseconds focusDelay{500};
constexpr double matchOpacity = 0.3;
const QString indent = u"    "_s;
const QString commentToken = u"//"_s;
const QString insertedComment = u"// "_s;

struct AutoClosePair
{
    char16_t opening;
    char16_t closing;
};

constexpr std::array autoClosePairs{
    AutoClosePair{u'(', u')'}, AutoClosePair{u'[', u']'},   AutoClosePair{u'{', u'}'},
    AutoClosePair{u'"', u'"'}, AutoClosePair{u'\'', u'\''},
};

std::optional<QChar> closingOf(const QString& characters)
{
    const auto pair = std::find_if(autoClosePairs.begin(), autoClosePairs.end(), [&](const AutoClosePair& entry) {
        return characters.size() == 1 && characters.front() == entry.opening;
    });
    return pair != autoClosePairs.end() ? std::optional<QChar>(pair->closing) : std::nullopt;
}

bool beginsWord(const QString& characters)
{
    return characters == u"_" || characters == u"@" ||
           (!characters.isEmpty() && QChar::isLetter(characters.toUcs4().front()));
}

QString inWords(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

/// A key that is held with others. Pressed alone it is no key of the text.
bool isModifierKey(const QKeyEvent& event)
{
    constexpr std::array keys{Qt::Key_Control, Qt::Key_Shift, Qt::Key_Alt,
                              Qt::Key_Meta,    Qt::Key_AltGr, Qt::Key_CapsLock};
    return std::find(keys.begin(), keys.end(), event.key()) != keys.end();
}

/// Another window's coming and going, and a menu's, leave the view where the keyboard is in its own.
bool resignsFirstResponder(const QFocusEvent& event)
{
    return event.reason() != Qt::ActiveWindowFocusReason && event.reason() != Qt::PopupFocusReason;
}

} // namespace

KelmTextView::KelmTextView(Scheduler& scheduler, Log& log, QWidget* parent)
    : TextView(parent), scheduler_(scheduler), log_(log)
{}

bool KelmTextView::acceptsFirstResponder()
{
    log_.print(u"🎯 acceptsFirstResponder called -> true"_s);
    return true;
}

void KelmTextView::becomeFirstResponder(QFocusEvent* event)
{
    log_.print(u"🎯 becomeFirstResponder called"_s);
    TextView::focusInEvent(event);
    log_.print(u"   result: "_s + inWords(hasFocus()));
    viewport()->update();
}

void KelmTextView::resignFirstResponder(QFocusEvent* event)
{
    log_.print(u"🎯 resignFirstResponder called"_s);
    TextView::focusOutEvent(event);
}

void KelmTextView::focusInEvent(QFocusEvent* event)
{
    if (!isFirstResponder_ && acceptsFirstResponder()) {
        isFirstResponder_ = true;
        becomeFirstResponder(event);
    } else {
        TextView::focusInEvent(event);
    }
}

void KelmTextView::focusOutEvent(QFocusEvent* event)
{
    if (resignsFirstResponder(*event)) {
        isFirstResponder_ = false;
        resignFirstResponder(event);
    } else {
        TextView::focusOutEvent(event);
    }
}

void KelmTextView::mouseDown(const QMouseEvent& event)
{
    if (event.button() == Qt::LeftButton) {
        const QPoint place = viewport()->mapTo(window(), event.position().toPoint());
        log_.print(u"🖱️ mouseDown at (%1, %2)"_s.arg(place.x()).arg(place.y()));
        setFocus(Qt::MouseFocusReason);
    }
}

void KelmTextView::mousePressEvent(QMouseEvent* event)
{
    mouseDown(*event);
    TextView::mousePressEvent(event);
}

void KelmTextView::mouseDoubleClickEvent(QMouseEvent* event)
{
    // It is what the toolkit makes of the second press.
    mouseDown(*event);
    TextView::mouseDoubleClickEvent(event);
}

bool KelmTextView::event(QEvent* event)
{
    const bool isHandled = TextView::event(event);
    if (event->type() == QEvent::ParentChange || event->type() == QEvent::Show) {
        noteWindow();
    }
    return isHandled;
}

void KelmTextView::noteWindow()
{
    // A view without a parent is a window of its own as soon as it is shown.
    QWidget* const now = window() != this || isVisible() ? window() : nullptr;
    if (now != window_) {
        window_ = now;
        viewDidMoveToWindow(now);
    }
}

void KelmTextView::viewDidMoveToWindow(QWidget* window)
{
    log_.print(u"📍 viewDidMoveToWindow - window: "_s + inWords(window != nullptr));
    if (window == nullptr) {
        return;
    }
    scheduler_.after(focusDelay, QCoreApplication::instance(), [view = QPointer(this), &log = log_] {
        if (view && view->window_) {
            view->setFocus();
        }
        log.print(u"📍 Requested first responder"_s);
    });
}

void KelmTextView::keyPressEvent(QKeyEvent* event)
{
    if (isModifierKey(*event)) {
        TextView::keyPressEvent(event);
        return;
    }
    const QString characters = charactersOf(*event);
    log_.print(u"⌨️ keyDown: '%1' keyCode: %2"_s.arg(characters.isEmpty() ? u"nil"_s : characters)
                   .arg(virtualKeyCode(*event)));
    if (editorContainer && editorContainer->autoCompleteManager().handleKeyEvent(*event)) {
        return;
    }
    // The third level of a keyboard may come as Control with Alt: such a key types its sign.
    const bool typesASign = event->modifiers().testFlag(Qt::AltModifier) && insertsText(*event);
    if (event->modifiers().testFlag(Qt::ControlModifier) && !typesASign && runCommandKey(*event)) {
        return;
    }
    if (isControlHeld(*event) && virtualKeyCode(*event) == virtualKey::space) {
        triggerCompletion();
        return;
    }
    if (const auto closing = closingOf(characters)) {
        typePair(event, *closing);
        return;
    }
    TextView::keyPressEvent(event);
    if (beginsWord(characters)) {
        triggerCompletion();
    }
    updateBracketMatching();
}

bool KelmTextView::runCommandKey(const QKeyEvent& event)
{
    const int code = virtualKeyCode(event);
    if (event.modifiers().testFlag(Qt::AltModifier) && (code == virtualKey::downArrow || code == virtualKey::upArrow)) {
        if (editorContainer) {
            MultiCursorManager& cursors = editorContainer->multiCursorManager();
            code == virtualKey::downArrow ? cursors.addCursorBelow() : cursors.addCursorAbove();
        }
        return true;
    }
    // What is being composed is part of the text that the command is for.
    commitComposition();
    const QString characters = charactersIgnoringModifiers(event);
    if (event.modifiers().testFlag(Qt::ShiftModifier) && characters.toLower() == u"l") {
        if (editorContainer) {
            editorContainer->selectionManager().selectAllOccurrences();
        }
        return true;
    }
    return runLineCommand(characters);
}

bool KelmTextView::runLineCommand(const QString& characters)
{
    if (characters == u"/") {
        toggleComment();
    } else if (characters == u"[") {
        decreaseIndent();
    } else if (characters == u"]") {
        indentLine();
    } else if (characters == u"d") {
        duplicateLine();
    } else if (characters == u"l") {
        if (editorContainer) {
            editorContainer->selectionManager().selectLine();
        }
    } else {
        return false;
    }
    return true;
}

void KelmTextView::typePair(QKeyEvent* event, QChar closing)
{
    TextView::keyPressEvent(event);
    if (!isReadOnly()) {
        editor().insertText(QString(closing), EditKind::typing);
        std::vector<Selection> between;
        for (const Selection& behind : editor().selections().all()) {
            between.push_back(Selection::caret({behind.head.offset - 1, false}));
        }
        editor().setSelections(SelectionSet(std::move(between)));
    }
    triggerCompletion();
}

void KelmTextView::triggerCompletion()
{
    if (editorContainer) {
        editorContainer->autoCompleteManager().triggerCompletion(editorContainer->currentLanguage());
    }
}

void KelmTextView::updateBracketMatching()
{
    if (matchingBracketRange_) {
        storage().setBackground(*matchingBracketRange_, {});
        matchingBracketRange_.reset();
    }
    if (const auto partner = partnerOfBracketBefore(text(), selectedRange().location)) {
        matchingBracketRange_ = {*partner, 1};
        storage().setBackground(*matchingBracketRange_, Tint(SystemColor::yellow).at(matchOpacity).on(*this).rgba());
    }
}

void KelmTextView::toggleComment()
{
    if (isReadOnly()) {
        return;
    }
    const TextRange lines = selectedLines();
    const QString line = storage().substring(lines);
    const QStringView content = trimmed(QStringView(line), [](char16_t unit) { return unit == u' ' || unit == u'\t'; });
    if (content.startsWith(commentToken)) {
        const qsizetype spaced = line.indexOf(insertedComment);
        const qsizetype start = spaced >= 0 ? spaced : line.indexOf(commentToken);
        const qsizetype length = spaced >= 0 ? insertedComment.size() : commentToken.size();
        storage().replace({lines.location + start, length}, QStringView());
        return;
    }
    const auto text =
        std::find_if_not(line.begin(), line.end(), [](QChar unit) { return isWhitespaceOrNewline(unit.unicode()); });
    editor().insertText(insertedComment, {lines.location + (text - line.begin()), 0});
}

void KelmTextView::indentLine()
{
    editor().insertText(indent, {selectedLines().location, 0});
}

void KelmTextView::decreaseIndent()
{
    if (isReadOnly()) {
        return;
    }
    const TextRange lines = selectedLines();
    const QString line = storage().substring(lines);
    if (line.startsWith(indent)) {
        storage().replace({lines.location, indent.size()}, QStringView());
    } else if (line.startsWith(u'\t')) {
        storage().replace({lines.location, 1}, QStringView());
    }
}

void KelmTextView::duplicateLine()
{
    const TextRange lines = selectedLines();
    editor().insertText(storage().substring(lines), {lines.end(), 0});
}

} // namespace kelm
