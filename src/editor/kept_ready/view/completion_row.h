// One entry of the list of completions.
#pragma once

#include "editor/kept_ready/completion_item.h"

#include <QWidget>

namespace kelm {

/// Shows an entry: the badge of its kind, its text, and its detail in grey.
class CompletionRow final : public QWidget
{
    Q_OBJECT

public:
    CompletionRow(const CompletionItem& item, QWidget* parent);

    const CompletionItem& item() const { return item_; }
    bool isSelected() const { return isSelected_; }
    void setIsSelected(bool isSelected);

Q_SIGNALS:
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    CompletionItem item_;
    bool isSelected_ = false;
};

} // namespace kelm
