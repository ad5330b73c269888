// The text surface of a terminal session.
#pragma once

#include "run/pasted_lines.h"
#include "run/terminal_screen.h"
#include "run/terminal_session.h"
#include "run/view/end_follower.h"
#include "run/view/front_trimmer.h"
#include "run/view/typed_ahead.h"
#include "text/view/text_view.h"

#include <QPointer>

#include <vector>

namespace kelm {

/// Shows what a session has written, and behind it the line being typed. Return runs that line, Tab completes it, Up
/// and Down walk through the history, Escape interrupts, and Backspace stops at the prompt; all other keys edit, and
/// the caret may be put anywhere. Without a session it is a plain text view.
///
/// While the session waits for a command, nobody can edit: what is typed is kept, and takes effect when the prompt is
/// there, wherever the caret was put meanwhile. Keys that move the caret, scroll and copy work at once, and so does
/// Escape, which throws away what was typed ahead: its lines enter the history and are not run. What waits is told by
/// `typedAhead`. A second Escape ends a command that goes on. Lines that are pasted at the prompt are run, as
/// `pastedLines` has it.
///
/// The last `mostKeptUnits` are kept, in whole lines; the first line says how much was let go. Main thread only.
class TerminalTextView final : public TextView, public TerminalScreen
{
    Q_OBJECT

public:
    explicit TerminalTextView(QWidget* parent = nullptr);
    ~TerminalTextView() override;

    /// Where keys go; not kept alive.
    TerminalSession* session() const { return session_; }
    void setSession(TerminalSession* session);

    /// Where the line being typed starts: the length of the text after the last write, in UTF-16 units.
    qsizetype commandStartLocation() const { return commandStartLocation_; }
    /// The text from `commandStartLocation` to the end, without white space and line ends around it.
    QString currentCommand() const;
    /// Puts `text` in the place of what stands from `commandStartLocation` to the end.
    void replaceCurrentCommand(const QString& text);

    const TypedAhead& typedAhead() const { return typedAhead_; }

    void appendText(const QString& text, const QColor& color) override;
    void appendOutput(const AttributedText& text) override;
    void appendPrompt() override;
    void clear() override;
    QString takeTyped() override;
    void putTyped(const QString& text) override;

public Q_SLOTS:
    void paste() override;

protected:
    void pasteAt(const QString& text, qsizetype offset) override;
    bool keyDown(QKeyEvent* event) override;
    bool isKeyOfText(const QKeyEvent& event) const override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    struct CommandKey
    {
        Qt::Key key;
        void (TerminalTextView::*run)();
    };
    static const std::vector<CommandKey>& commandKeys();

    void runCommand();
    bool isAtPrompt() const;
    void runPasted(const PastedLines& pasted);
    void insertAtPrompt(const QString& text);
    void completeCommand();
    void showNextCommand();
    void showPreviousCommand();
    bool isAnySelectionAtPrompt() const;
    void moveCaretToEnd();

    /// Adds text at the end; the places of `colors` count from its start.
    void append(const QString& text, std::vector<ColorRun> colors);
    void textEdited(const TextEdit& edit);
    void recolor();
    void letFrontGo();
    void escape(const QKeyEvent& event);
    void keepForLater(const QKeyEvent& event);
    void returnToNewPrompt();
    void throwAwayKey(QKeyEvent& event);
    void throwAwayLine();
    /// A command that runs takes no typing.
    void followBusy();

    QPointer<TerminalSession> session_;
    EndFollower* follower_;
    FrontTrimmer trimmer_{storage()};
    TypedAhead typedAhead_;
    qsizetype commandStartLocation_ = 0;
    Appearance appearance_;
    /// Whether the edit in hand is the person's.
    bool isTyping_ = false;
    /// The key that had to wait and is being pressed again.
    const QKeyEvent* keyInTurn_ = nullptr;
    /// Whether that key was typed ahead before an interrupt.
    bool isThrowingAway_ = false;
};

} // namespace kelm
