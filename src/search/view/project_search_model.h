// The results of a project search as rows.
#pragma once

#include "search/project_search.h"

#include <QAbstractListModel>
#include <QStyledItemDelegate>

namespace kelm {

/// One row a result. It holds nothing: the results are the search's, and rows come as they do.
class ProjectSearchModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    /// The piece of the line that a row shows; lines may be of any length.
    static constexpr int lineRole = Qt::UserRole;

    explicit ProjectSearchModel(ProjectSearch& search, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    ProjectSearch& search_;
    int rows_ = 0;
};

/// Paints the file's name over the line.
class ProjectSearchDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace kelm
