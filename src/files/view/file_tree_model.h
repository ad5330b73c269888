// The rows of the file tree.
#pragma once

#include "files/file_item.h"
#include "files/git_badge.h"

#include <QAbstractListModel>
#include <QSet>

#include <vector>

namespace kelm {

/// The entries that are seen, from top to bottom, each with its depth. A folder is listed when it is expanded, one
/// level at a time; an entry that is made anew has no children until its folder is expanded again.
class FileTreeModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        depthRole = Qt::UserRole,
        isDirectoryRole,
        isExpandedRole,
        iconRole,
        iconColorRole,
        badgeRole,
        badgeColorRole
    };

    using QAbstractListModel::QAbstractListModel;

    /// Puts a new top level in the place of all rows.
    void setFiles(const QList<FileItem>& files);
    /// Collapses all folders and drops what lies in them.
    void collapseAll();

    /// Expands a folder, listing it, or collapses it.
    void toggleExpand(int row);
    void setBadges(GitBadges badges);

    const FileItem& item(int row) const { return rows_.at(static_cast<std::size_t>(row)).item; }
    bool isExpanded(int row) const;
    /// The row of the folder that a row lies in, or -1 at the top.
    int parentRow(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    /// A row can be dragged out as its file.
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction | Qt::LinkAction; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

private:
    struct Row
    {
        FileItem item;
        int depth = 0;
    };

    void removeChildren(int row);
    void insertChildren(int row, const QList<FileItem>& children);

    std::vector<Row> rows_;
    QSet<QUrl> expandedFolders_;
    GitBadges badges_;
};

} // namespace kelm
