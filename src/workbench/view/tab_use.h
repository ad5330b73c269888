// The open documents in the order of their use.
#pragma once

#include "app/state/app_state.h"

#include <QList>
#include <QObject>

#include <memory>

namespace kelm {

/// Knows which document was seen last, and which before that. A walk through them shows one after the other while the
/// key that holds it is down; only when that is released, or the window goes to the background, the one that is shown
/// then counts as used. The order is stored nowhere. Main thread only.
class TabUse final : public QObject
{
public:
    TabUse(AppState& appState, QObject* parent);

    /// Shows the document that was used before the one that is shown, or, backwards, after it; at an end it goes on at
    /// the other one. `holder` holds the walk; a step that is made while it is up is a walk of its own.
    void walk(bool backwards, Qt::Key holder, Qt::KeyboardModifier heldAs);

    bool isWalking() const { return holder_ != Qt::Key_unknown; }
    /// The last used first.
    const AppState::Documents& order() const { return order_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followDocuments();
    void followCurrent();
    void settle();

    AppState& appState_;
    AppState::Documents order_;
    Qt::Key holder_ = Qt::Key_unknown;
};

} // namespace kelm
