// The panel that takes a line number.
#pragma once

#include "search/view/overlay_card.h"

class QLineEdit;

namespace kelm {

class AppState;
class Log;

/// Takes a number and prints it; it moves no caret and scrolls nothing. It tells the number, so that the way to that
/// line can be offered.
class GoToLineView final : public OverlayCard
{
    Q_OBJECT

public:
    /// `log` takes what is printed, and outlives the view.
    GoToLineView(AppState& appState, Log& log, QWidget* parent = nullptr);

Q_SIGNALS:
    /// The number was printed; any, also one that no line has.
    void submitted(qint64 number);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void submit();

    AppState& appState_;
    Log& log_;
    QLineEdit* lineNumber_;
};

} // namespace kelm
