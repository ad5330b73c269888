// The list of completions.
#pragma once

#include <QScrollArea>

namespace kelm {

class AutoCompleteManager;
class CompletionRow;

/// Shows the manager's suggestions, 300 points wide and as high as its rows up to 200, and keeps the selected one in
/// sight. A click on a row chooses it. It is as its manager is, and keeps no state of its own.
class AutoCompleteView final : public QScrollArea
{
public:
    /// All in points.
    static constexpr int listWidth = 300;
    static constexpr int rowHeight = 28;
    static constexpr int greatestHeight = 200;

    AutoCompleteView(AutoCompleteManager& manager, QWidget* parent);

    /// The rows in their order.
    const QList<CompletionRow*>& rows() const { return rows_; }

private:
    void fill();
    void showSelection();

    AutoCompleteManager& manager_;
    QWidget* list_;
    QList<CompletionRow*> rows_;
};

} // namespace kelm
