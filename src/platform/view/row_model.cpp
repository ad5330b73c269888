#include "platform/view/row_model.h"

#include "platform/style/view/style.h"
#include "platform/view/plain_help.h"

namespace kelm {

const RowFonts& RowFonts::standard()
{
    static const RowFonts fonts{.body = style::interfaceFont(12),
                                .caption = style::interfaceFont(style::typeSize::subheadline),
                                .monospaced = style::monospaced(12),
                                .smallMonospaced = style::monospaced(11),
                                .mark = style::interfaceFont(10, QFont::Bold)};
    return fonts;
}

void RowModel::setSections(QList<RowSection> sections)
{
    beginResetModel();
    sections_ = std::move(sections);
    count_ = 0;
    for (const RowSection& section : sections_) {
        count_ += static_cast<int>(section.count) + (section.title.isEmpty() ? 0 : 1);
    }
    endResetModel();
}

RowModel::Place RowModel::placeOf(int item) const
{
    qsizetype rest = item;
    for (qsizetype section = 0; section < sections_.size(); ++section) {
        const qsizetype titles = sections_[section].title.isEmpty() ? 0 : 1;
        if (rest < sections_[section].count + titles) {
            return {section, rest - titles};
        }
        rest -= sections_[section].count + titles;
    }
    return {sections_.size(), 0};
}

int RowModel::itemAt(const Place& place) const
{
    qsizetype item = place.position;
    for (qsizetype section = 0; section <= place.section && section < sections_.size(); ++section) {
        item += sections_[section].title.isEmpty() ? 0 : 1;
        item += section < place.section ? sections_[section].count : 0;
    }
    return static_cast<int>(item);
}

Row RowModel::rowAt(int item) const
{
    const Place place = placeOf(item);
    return sections_[place.section].row(place.position);
}

QUrl RowModel::fileAt(int item) const
{
    const Place place = placeOf(item);
    const RowSection& section = sections_[place.section];
    return place.position < 0 || !section.file ? QUrl() : section.file(place.position);
}

int RowModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count_;
}

QVariant RowModel::data(const QModelIndex& index, int role) const
{
    const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    if (!index.isValid() || (!isText && role != Qt::ToolTipRole)) {
        return {};
    }
    if (isTitle(index.row())) {
        return isText ? titleOf(index.row()) : QVariant();
    }
    const QString help = rowAt(index.row()).help;
    return isText ? help : plainHelp(help);
}

Qt::ItemFlags RowModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || isTitle(index.row())) {
        return Qt::ItemNeverHasChildren;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

} // namespace kelm
