// What a terminal says below its text.
#pragma once

#include "run/terminal_session.h"
#include "run/view/typed_ahead.h"

#include <QPointer>
#include <QWidget>

class QVBoxLayout;

namespace kelm {

class PlainButton;
class TextLabel;

/// There only while there is something to say: that the command goes on though it was interrupted, and how it is ended;
/// and the lines that were typed ahead, of which the last few are shown. It takes neither keyboard nor keys. Both
/// outlive it or take it along. Main thread only.
class TerminalStrip final : public QWidget
{
    Q_OBJECT

public:
    /// How many lines that wait are shown at most.
    static constexpr qsizetype mostLines = 5;

    TerminalStrip(TerminalSession& session, const TypedAhead& typedAhead, QWidget* parent);

    /// What is said of the command; empty while nothing is.
    QString hint() const;
    PlainButton* endButton() const { return endButton_; }
    /// The lines that are shown as waiting.
    QStringList waitingLines() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void showHint();
    void showWaiting();
    void follow();

    QPointer<TerminalSession> session_;
    const TypedAhead& typedAhead_;
    QWidget* hintRow_;
    TextLabel* hint_;
    TextLabel* howToEnd_;
    PlainButton* endButton_;
    QWidget* waitingRow_;
    QVBoxLayout* waitingLines_;
};

} // namespace kelm
