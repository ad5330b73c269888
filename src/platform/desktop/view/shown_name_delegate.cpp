#include "platform/desktop/view/shown_name_delegate.h"

#include "platform/text/shown_name.h"

namespace kelm {

void ShownNameDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() == 0) {
        option->text = shownName(option->text);
    }
}

} // namespace kelm
