// Names of files in the toolkit's own lists.
#pragma once

#include <QStyledItemDelegate>

namespace kelm {

/// Shows the names in the first column of a list of files as `shownName` has them. What is renamed or chosen has the
/// name itself.
class ShownNameDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace kelm
