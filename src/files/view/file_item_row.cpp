#include "files/view/file_item_row.h"

#include "files/view/file_tree_model.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int rowHeight = 24;
constexpr int leading = 10;
constexpr int indent = 16;
constexpr int chevronSize = 10;
constexpr int chevronWidth = 14;
constexpr int iconFrame = 20;
constexpr int iconSize = 14;
constexpr int spacing = 4;
constexpr int badgeSize = 10;
constexpr int trailing = 10;
constexpr int badgeTrailing = 4;
constexpr double hoverOpacity = 0.1;

Tint tintIn(const QModelIndex& index, int role)
{
    return static_cast<SystemColor>(index.data(role).toInt());
}

} // namespace

QSize FileItemRow::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const
{
    return {1, rowHeight};
}

void FileItemRow::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const Appearance appearance = style::appearanceOf(*option.widget);
    const QRect& box = option.rect;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool isMarked = marksCurrent_ && option.state.testFlag(QStyle::State_HasFocus);
    if (isMarked || option.state.testFlag(QStyle::State_MouseOver)) {
        const Tint ground = isMarked ? Tint::accent().at(0.2) : Tint::secondary().at(hoverOpacity);
        painter->setPen(Qt::NoPen);
        painter->setBrush(ground.in(appearance));
        painter->drawRoundedRect(QRectF(box), style::radius::chip, style::radius::chip);
    }
    const qreal middle = QRectF(box).center().y();
    int x = box.left() + leading + indent * index.data(FileTreeModel::depthRole).toInt();
    if (index.data(FileTreeModel::isDirectoryRole).toBool()) {
        const bool isExpanded = index.data(FileTreeModel::isExpandedRole).toBool();
        icons::paint(*painter, isExpanded ? u"chevron.down"_s : u"chevron.right"_s,
                     QRectF(x, middle - chevronSize / 2.0, chevronSize, chevronSize), Tint::secondary().in(appearance));
    }
    x += chevronWidth;
    icons::paint(*painter, index.data(FileTreeModel::iconRole).toString(),
                 QRectF(x + (iconFrame - iconSize) / 2.0, middle - iconSize / 2.0, iconSize, iconSize),
                 style::ink(tintIn(index, FileTreeModel::iconColorRole), appearance));
    x += iconFrame + spacing;

    int right = box.right() - trailing;
    const QString badge = index.data(FileTreeModel::badgeRole).toString();
    if (!badge.isEmpty()) {
        right = box.right() - badgeTrailing;
        const QFont font = style::interfaceFont(badgeSize, QFont::Bold);
        painter->setFont(font);
        painter->setPen(style::ink(tintIn(index, FileTreeModel::badgeColorRole), appearance));
        painter->drawText(QRect(x, box.top(), right - x + 1, box.height()),
                          Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, badge);
        right -= QFontMetrics(font).horizontalAdvance(badge) + spacing;
    }
    const QFont font = style::interfaceFont(style::typeSize::body);
    painter->setFont(font);
    painter->setPen(Tint::primary().in(appearance));
    painter->drawText(QRect(x, box.top(), right - x + 1, box.height()), Qt::AlignVCenter | Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(index.data().toString(), Qt::ElideMiddle, right - x + 1));
    painter->restore();
}

} // namespace kelm
