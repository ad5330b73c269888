// The unsaved texts that the welcome offers.
#pragma once

#include "app/recovery/recovery_folder.h"
#include "app/state/app_state.h"
#include "workbench/view/rounded_group.h"

#include <QList>

class QVBoxLayout;

namespace kelm {

class UnsavedTextRow;

/// A heading and a row for each text of the store, the latest first; hidden while there is none. Of more than a few the
/// others come when they are asked for.
///
/// Rows neither move nor go while the pointer is over the group or the keyboard on what has gone: what is pressed twice
/// acts once.
class UnsavedTextsGroup final : public RoundedGroup
{
    Q_OBJECT

public:
    /// How many are shown at first.
    static constexpr qsizetype shownAtFirst = 5;

    /// Tab comes to the rows from `before`, which outlives the group.
    UnsavedTextsGroup(AppState& appState, QWidget& before, QWidget* parent);

    /// Makes the rows anew, with their ages as they are now.
    void rebuild();
    /// The rows, from top to bottom.
    const QList<UnsavedTextRow*>& rows() const { return rows_; }

protected:
    bool event(QEvent* event) override;

private:
    /// Marks what has gone, and shows what is there as soon as nothing is in use.
    void refresh();
    void addRow(const UnsavedText& text, qint64 now);

    AppState& appState_;
    QWidget& before_;
    QVBoxLayout* layout_;
    QList<UnsavedTextRow*> rows_;
    bool showsAll_ = false;
    bool isPointerOver_ = false;
};

} // namespace kelm
