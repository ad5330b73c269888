// The sections of a row list as an item model.
#pragma once

#include "platform/view/row.h"

#include <QAbstractListModel>

namespace kelm {

/// A flat list: each section's title, if it has one, and then its rows. Titles are disabled items, so the keyboard
/// passes over them.
class RowModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    /// Where an item stands: a position of -1 is the section's title.
    struct Place
    {
        qsizetype section = 0;
        qsizetype position = 0;
    };

    using QAbstractListModel::QAbstractListModel;

    void setSections(QList<RowSection> sections);
    const QList<RowSection>& sections() const { return sections_; }

    /// The place of an item that there is. Linear in the number of sections.
    Place placeOf(int item) const;
    int itemAt(const Place& place) const;
    bool isTitle(int item) const { return placeOf(item).position < 0; }
    QString titleOf(int item) const { return sections_[placeOf(item).section].title; }
    /// The title as it is drawn.
    QString shownTitleOf(int item) const
    {
        const RowSection& section = sections_[placeOf(item).section];
        return section.isTitleUpperCase ? section.title.toUpper() : section.title;
    }
    /// The row of an item that is no title.
    Row rowAt(int item) const;
    /// The file as which an item can be dragged out; empty for one that has none.
    QUrl fileAt(int item) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    QList<RowSection> sections_;
    int count_ = 0;
};

} // namespace kelm
