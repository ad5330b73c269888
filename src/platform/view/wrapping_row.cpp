#include "platform/view/wrapping_row.h"

#include <algorithm>

namespace kelm {

WrappingRow::WrappingRow(QWidget* parent) : QLayout(parent)
{
    setContentsMargins(0, 0, 0, 0);
    setSpacing(6);
}

WrappingRow::~WrappingRow()
{
    qDeleteAll(items_);
}

void WrappingRow::addItem(QLayoutItem* item)
{
    items_.append(item);
}

QLayoutItem* WrappingRow::takeAt(int index)
{
    return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

QSize WrappingRow::sizeHint() const
{
    int width = 0;
    for (const QLayoutItem* item : items_) {
        width += item->sizeHint().width() + spacing();
    }
    const QMargins margins = contentsMargins();
    width = std::max(0, width - spacing()) + margins.left() + margins.right();
    return {width, heightForWidth(width)};
}

QSize WrappingRow::minimumSize() const
{
    QSize size;
    for (const QLayoutItem* item : items_) {
        size = size.expandedTo(item->minimumSize());
    }
    return size.grownBy(contentsMargins());
}

int WrappingRow::heightForWidth(int width) const
{
    return arrange({0, 0, width, 0}, false);
}

void WrappingRow::setGeometry(const QRect& rectangle)
{
    QLayout::setGeometry(rectangle);
    arrange(rectangle, true);
}

int WrappingRow::arrange(const QRect& rectangle, bool moves) const
{
    const QRect inner = rectangle.marginsRemoved(contentsMargins());
    int top = inner.top();
    for (qsizetype from = 0; from < items_.size();) {
        int used = 0;
        int height = 0;
        qsizetype to = from;
        while (to < items_.size()) {
            const QSize size = items_[to]->sizeHint();
            const int width = used + (to > from ? spacing() : 0) + size.width();
            if (to > from && width > inner.width()) {
                break;
            }
            used = width;
            height = std::max(height, size.height());
            ++to;
        }
        if (moves) {
            placeLine({inner.left(), top, inner.width(), height}, from, to, used);
        }
        top += height + (to < items_.size() ? spacing() : 0);
        from = to;
    }
    return top - rectangle.top() + contentsMargins().bottom();
}

void WrappingRow::placeLine(const QRect& line, qsizetype from, qsizetype to, int used) const
{
    int x = line.left();
    for (qsizetype i = from; i < to; ++i) {
        if (i == rightFrom_ && i > from) {
            x += std::max(0, line.width() - used);
        }
        const QSize size = items_[i]->sizeHint();
        items_[i]->setGeometry(
            {x, line.top() + (line.height() - size.height()) / 2, std::min(size.width(), line.width()), size.height()});
        x += size.width() + spacing();
    }
}

} // namespace kelm
