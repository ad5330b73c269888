#include "search/view/project_search_model.h"

#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/text/grapheme_boundaries.h"
#include "platform/text/shown_name.h"
#include "platform/view/plain_help.h"

#include <QPainter>

namespace kelm {

namespace {

constexpr int rowHeight = 44;
constexpr int padding = 12;
constexpr int lineFontSize = 11;
/// More than a sidebar ever shows of a line.
constexpr qsizetype shownLength = 240;

/// The start of the line that was found, on one line.
QString shownLine(const SearchResult& result)
{
    QString text = result.matchLine.first(graphemeCut(result.matchLine, shownLength));
    text.replace(u'\n', u' ').replace(u'\t', u' ');
    return text;
}

} // namespace

ProjectSearchModel::ProjectSearchModel(ProjectSearch& search, QObject* parent)
    : QAbstractListModel(parent), search_(search)
{
    connect(&search_, &ProjectSearch::resultsCleared, this, [this] {
        beginResetModel();
        rows_ = 0;
        endResetModel();
    });
    connect(&search_, &ProjectSearch::resultsAdded, this, [this](qsizetype count) {
        beginInsertRows({}, rows_, rows_ + static_cast<int>(count) - 1);
        rows_ += static_cast<int>(count);
        endInsertRows();
    });
}

int ProjectSearchModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : rows_;
}

QVariant ProjectSearchModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= search_.results().size()) {
        return {};
    }
    const SearchResult& result = search_.results().at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return shownName(result.fileName);
    case lineRole:
        return shownLine(result);
    case Qt::ToolTipRole:
        return plainHelp(shownName(result.fileURL.toLocalFile()));
    case Qt::AccessibleTextRole:
        return QString(shownName(result.fileName) + QStringLiteral(", ") + shownLine(result));
    default:
        return {};
    }
}

QSize ProjectSearchDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const
{
    return {1, rowHeight};
}

void ProjectSearchDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const Appearance appearance = style::appearanceOf(*option.widget);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool isMarked = option.state.testFlag(QStyle::State_HasFocus);
    if (isMarked || option.state.testFlag(QStyle::State_MouseOver)) {
        painter->setPen(Qt::NoPen);
        painter->setBrush((isMarked ? Tint::accent().at(0.2) : Tint::secondary().at(0.1)).in(appearance));
        painter->drawRoundedRect(QRectF(option.rect).adjusted(4, 1, -4, -1), style::radius::control,
                                 style::radius::control);
    }
    const QRect inner = option.rect.adjusted(padding, 4, -padding, -4);
    const QFont nameFont = style::headlineFont();
    painter->setFont(nameFont);
    painter->setPen(style::ink(Tint::accent(), appearance));
    painter->drawText(inner, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                      QFontMetrics(nameFont).elidedText(index.data().toString(), Qt::ElideMiddle, inner.width()));
    const QFont lineFont = style::monospaced(lineFontSize);
    painter->setFont(lineFont);
    painter->setPen(Tint::primary().in(appearance));
    const QString line = index.data(ProjectSearchModel::lineRole).toString();
    painter->drawText(inner, Qt::AlignLeft | Qt::AlignBottom | Qt::TextSingleLine,
                      QFontMetrics(lineFont).elidedText(line, Qt::ElideRight, inner.width()));
    painter->restore();
}

} // namespace kelm
