#include "run/view/terminal_text_view.h"

#include "platform/style/view/style.h"
#include "platform/text/character_sets.h"
#include "platform/text/shown_name.h"
#include "run/ansi_parser.h"
#include "run/view/terminal_colors.h"
#include "text/view/text_view_accessible.h"
#include "text/view/text_view_keys.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QSizeF terminalInset(4, 6);

TextViewColors colorsOnBlack()
{
    TextViewColors colors;
    colors.background = plainColors::black;
    colors.text = plainColors::green;
    colors.insertionPoint = plainColors::green;
    colors.selection = systemColor(SystemColor::accent, Appearance::dark);
    colors.selection.setAlphaF(0.5F);
    return colors;
}

/// Whether a key leaves the text as it is.
bool onlyLooks(const QKeyEvent& event)
{
    if (const auto index = keyActionFor(event)) {
        const KeyAction& action = keyActions()[static_cast<std::size_t>(*index)];
        return action.kind == KeyAction::Kind::move || action.slot == &TextView::copy ||
               action.slot == &TextView::selectAll;
    }
    return !insertsText(event);
}

} // namespace

TerminalTextView::TerminalTextView(QWidget* parent)
    : TextView(parent), follower_(new EndFollower(*this)), appearance_(style::appearanceOf(*this))
{
    setTextFont(style::monospaced(ANSIParser::fontSize));
    setTextInset(terminalInset);
    setColors(colorsOnBlack());
    // What was pasted is seen before it runs.
    textLayout().setShowsControlCharacters(true);
    setAccessibleName(tr("Terminal"));
    setAccessibleTextRole(*this, QAccessible::Terminal);
    connect(&storage(), &TextStorage::willReplace, this, [this] { isTyping_ = editor().isEditing(); });
    connect(&storage(), &TextStorage::edited, this, &TerminalTextView::textEdited);
}

TerminalTextView::~TerminalTextView() = default;

void TerminalTextView::setSession(TerminalSession* session)
{
    if (session_) {
        disconnect(session_, nullptr, this, nullptr);
    }
    session_ = session;
    typedAhead_.setSession(session);
    typedAhead_.clear();
    followBusy();
    if (session != nullptr) {
        connect(session, &TerminalSession::isBusyChanged, this, &TerminalTextView::followBusy);
        connect(session, &TerminalSession::waitingThrownAway, this, &TerminalTextView::throwAwayLine);
        connect(session, &QObject::destroyed, this, [this] {
            editor().setReadOnly(false);
            setAccessibleTextBusy(*this, false);
        });
    }
}

void TerminalTextView::followBusy()
{
    const bool isBusy = session_ && session_->isBusy();
    editor().setReadOnly(isBusy);
    setAccessibleTextBusy(*this, isBusy);
}

// ---- Writing --------------------------------------------------------------------------------------------------------

void TerminalTextView::appendText(const QString& text, const QColor& color)
{
    append(text, {{{0, text.size()}, color.rgba()}});
}

void TerminalTextView::appendOutput(const AttributedText& text)
{
    append(text.text, terminalColors(text, appearance_));
}

void TerminalTextView::appendPrompt()
{
    const QString directory = session_ ? shownName(session_->currentDirectory()) : QStringLiteral("~");
    appendText(TerminalSession::promptText(directory), plainColors::cyan);
}

void TerminalTextView::clear()
{
    editor().forgetUndo();
    trimmer_.reset();
    storage().setText(QString());
    commandStartLocation_ = 0;
}

QString TerminalTextView::takeTyped()
{
    commitComposition();
    const qsizetype start = std::min(commandStartLocation_, storage().length());
    const TextRange range = TextRange::between(start, storage().length());
    const QString typed = storage().substring(range);
    storage().replace(range, QString());
    return typed;
}

void TerminalTextView::putTyped(const QString& text)
{
    replaceCurrentCommand(text);
}

void TerminalTextView::append(const QString& text, std::vector<ColorRun> colors)
{
    // What was typed before has become a part of what was written.
    editor().forgetUndo();
    follower_->willAppend();
    {
        const EditingBracket bracket(storage());
        const qsizetype start = storage().length();
        storage().replace({start, 0}, text);
        for (ColorRun& run : colors) {
            run.range.location += start;
        }
        storage().setForeground(colors);
    }
    follower_->didAppend();
    letFrontGo();
    commandStartLocation_ = storage().length();
}

void TerminalTextView::letFrontGo()
{
    if (const qsizetype line = trimmer_.trim(); line > 0) {
        storage().setForeground({0, line}, plainColors::gray.rgba());
    }
}

void TerminalTextView::textEdited(const TextEdit& edit)
{
    if (std::exchange(isTyping_, false) && editor().selections().isSingle()) {
        // Beside the prompt it would take the prompt's colour.
        storage().setForeground(edit.newRange(), plainColors::green.rgba());
    }
}

void TerminalTextView::recolor()
{
    const Appearance before = std::exchange(appearance_, style::appearanceOf(*this));
    if (before == appearance_) {
        return;
    }
    std::vector<ColorRun> runs = storage().foreground().runsIn({0, storage().length()});
    for (ColorRun& run : runs) {
        for (const ANSIParser::ColorCode& code : ANSIParser::ansiColors()) {
            if (resolved(code.color, before) == run.color) {
                run.color = resolved(code.color, appearance_);
                break;
            }
        }
    }
    storage().assignForeground(runs);
}

void TerminalTextView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        recolor();
    }
    TextView::changeEvent(event);
}

// ---- The line being typed -------------------------------------------------------------------------------------------

QString TerminalTextView::currentCommand() const
{
    const QString line = storage().substring(TextRange::between(commandStartLocation_, storage().length()));
    return trimmed(line, isWhitespaceOrNewline).toString();
}

void TerminalTextView::replaceCurrentCommand(const QString& text)
{
    const qsizetype start = std::min(commandStartLocation_, storage().length());
    const TextRange replaced = TextRange::between(start, storage().length());
    {
        const EditingBracket bracket(storage());
        storage().replace(replaced, text);
        storage().setForeground({replaced.location, text.size()}, plainColors::green.rgba());
    }
    moveCaretToEnd();
}

void TerminalTextView::moveCaretToEnd()
{
    setSelectedRange({storage().length(), 0});
    follower_->resume();
    follower_->scrollToEnd();
}

bool TerminalTextView::isAnySelectionAtPrompt() const
{
    const std::vector<Selection>& all = editor().selections().all();
    return std::any_of(all.begin(), all.end(), [this](const Selection& selection) {
        return selection.range().location <= commandStartLocation_;
    });
}

// ---- Keys -----------------------------------------------------------------------------------------------------------

const std::vector<TerminalTextView::CommandKey>& TerminalTextView::commandKeys()
{
    static const std::vector<CommandKey> keys{
        {Qt::Key_Return, &TerminalTextView::runCommand},       {Qt::Key_Tab, &TerminalTextView::completeCommand},
        {Qt::Key_Backtab, &TerminalTextView::completeCommand}, {Qt::Key_Down, &TerminalTextView::showNextCommand},
        {Qt::Key_Up, &TerminalTextView::showPreviousCommand},
    };
    return keys;
}

bool TerminalTextView::isKeyOfText(const QKeyEvent& event) const
{
    return (session_ && event.key() == Qt::Key_Escape) || TextView::isKeyOfText(event);
}

bool TerminalTextView::keyDown(QKeyEvent* event)
{
    const bool isInTurn = std::exchange(keyInTurn_, nullptr) == event;
    if (!session_) {
        return false;
    }
    if (event->key() == Qt::Key_Escape) {
        escape(*event);
        return true;
    }
    const auto& keys = commandKeys();
    const auto command = std::find_if(keys.begin(), keys.end(),
                                      [event](const CommandKey& candidate) { return candidate.key == event->key(); });
    // A look waits only behind what waits already, so that keys act in the order in which they were pressed.
    const bool mayPass = command == keys.end() && onlyLooks(*event) && !session_->hasWaiting();
    if (!isInTurn && !session_->isIdle() && !mayPass) {
        keepForLater(*event);
        return true;
    }
    if (command != keys.end()) {
        commitComposition();
        (this->*command->run)();
        return true;
    }
    if (event->key() == Qt::Key_Backspace) {
        commitComposition();
        return isAnySelectionAtPrompt();
    }
    return false;
}

void TerminalTextView::escape(const QKeyEvent& event)
{
    follower_->resume();
    // A key that is held down says it once.
    if (session_->isInterrupted() && !event.isAutoRepeat()) {
        session_->endCommand();
    }
    session_->sendInterrupt();
    typedAhead_.clear();
}

void TerminalTextView::runCommand()
{
    const QString line = currentCommand();
    if (isThrowingAway_) {
        session_->remember(line);
        throwAwayLine();
        return;
    }
    moveCaretToEnd();
    // The command runs in an event loop of its own, in which this view may go.
    const QPointer<TerminalTextView> self = this;
    session_->executeCommand(line);
    if (self) {
        appendPrompt();
    }
}

void TerminalTextView::paste()
{
    const QMimeData* contents = QGuiApplication::clipboard()->mimeData();
    if (session_ && !session_->isBusy() && !isThrowingAway_ && isAtPrompt() && contents != nullptr) {
        if (const auto pasted = pastedLines(contents->text())) {
            commitComposition();
            runPasted(*pasted);
            return;
        }
    }
    TextView::paste();
}

void TerminalTextView::pasteAt(const QString& text, qsizetype offset)
{
    if (!session_) {
        TextView::pasteAt(text, offset);
        return;
    }
    if (!session_->isIdle() || isThrowingAway_) {
        return;
    }
    // Wherever the pointer is, a terminal takes what is pasted at its prompt.
    if (const auto pasted = pastedLines(text)) {
        runPasted(*pasted);
    } else {
        insertAtPrompt(text);
        follower_->resume();
        follower_->scrollToEnd();
    }
}

bool TerminalTextView::isAtPrompt() const
{
    return editor().selections().isSingle() && selectedRange().location >= commandStartLocation_;
}

void TerminalTextView::runPasted(const PastedLines& pasted)
{
    const QPointer<TerminalTextView> self = this;
    const quint64 stops = session_->stops();
    for (const QString& command : pasted.commands) {
        if (session_->stops() != stops) {
            // As with lines that were typed ahead.
            session_->remember(command);
            continue;
        }
        insertAtPrompt(command);
        runCommand();
        if (!self || !session_) {
            return;
        }
    }
    if (session_->stops() == stops) {
        insertAtPrompt(pasted.rest);
    }
}

void TerminalTextView::insertAtPrompt(const QString& text)
{
    // While a command runs, the caret may be put elsewhere, and a selection may reach back over what was written.
    if (!isAtPrompt()) {
        moveCaretToEnd();
    }
    editor().insertText(text, EditKind::other);
}

void TerminalTextView::completeCommand()
{
    if (const auto line = session_->getTabCompletion(currentCommand())) {
        replaceCurrentCommand(*line);
    }
}

void TerminalTextView::showNextCommand()
{
    replaceCurrentCommand(session_->getNextCommand());
}

void TerminalTextView::showPreviousCommand()
{
    const qsizetype index = session_->historyIndex() - 1;
    if (index >= 0) {
        session_->setHistoryIndex(index);
        replaceCurrentCommand(session_->commandHistory().at(index));
    }
}

bool TerminalTextView::focusNextPrevChild(bool next)
{
    return !session_ && TextView::focusNextPrevChild(next);
}

} // namespace kelm
