// How a row of the file tree looks.
#pragma once

#include <QStyledItemDelegate>

namespace kelm {

/// A chevron before a folder, the icon, the name, and the badge at the end.
class FileItemRow final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Whether the current row is marked: it is while the keyboard walks the tree, and not after a click.
    void setMarksCurrent(bool marksCurrent) { marksCurrent_ = marksCurrent; }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    bool marksCurrent_ = false;
};

} // namespace kelm
