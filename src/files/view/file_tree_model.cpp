#include "files/view/file_tree_model.h"

#include "platform/text/shown_name.h"
#include "platform/view/file_drag.h"
#include "platform/view/plain_help.h"

#include <QHash>
#include <QMimeData>

#include <algorithm>

namespace kelm {

namespace {

/// What a badge's letter stands for.
QString badgeInWords(const QString& letter)
{
    static const QHash<QString, QString> words{
        {QStringLiteral("M"), FileTreeModel::tr("modified")},    {QStringLiteral("A"), FileTreeModel::tr("added")},
        {QStringLiteral("D"), FileTreeModel::tr("deleted")},     {QStringLiteral("R"), FileTreeModel::tr("renamed")},
        {QStringLiteral("C"), FileTreeModel::tr("copied")},      {QStringLiteral("U"), FileTreeModel::tr("untracked")},
        {QStringLiteral("!"), FileTreeModel::tr("in conflict")},
    };
    return words.value(letter, FileTreeModel::tr("changed"));
}

} // namespace

void FileTreeModel::setFiles(const QList<FileItem>& files)
{
    beginResetModel();
    rows_.clear();
    rows_.reserve(static_cast<std::size_t>(files.size()));
    for (const FileItem& item : files) {
        rows_.push_back({item, 0});
    }
    endResetModel();
}

void FileTreeModel::collapseAll()
{
    beginResetModel();
    expandedFolders_.clear();
    std::erase_if(rows_, [](const Row& row) { return row.depth > 0; });
    endResetModel();
}

bool FileTreeModel::isExpanded(int row) const
{
    return item(row).isDirectory && expandedFolders_.contains(item(row).url);
}

int FileTreeModel::parentRow(int row) const
{
    const int depth = rows_.at(static_cast<std::size_t>(row)).depth;
    while (row >= 0 && rows_[static_cast<std::size_t>(row)].depth >= depth) {
        --row;
    }
    return row;
}

void FileTreeModel::toggleExpand(int row)
{
    const FileItem folder = item(row);
    if (!folder.isDirectory) {
        return;
    }
    removeChildren(row);
    if (expandedFolders_.remove(folder.url)) {
        Q_EMIT dataChanged(index(row), index(row));
        return;
    }
    expandedFolders_.insert(folder.url);
    Q_EMIT dataChanged(index(row), index(row));
    auto children = listFolder(folder.url);
    if (const auto* items = std::get_if<QList<FileItem>>(&children)) {
        insertChildren(row, *items);
    }
}

void FileTreeModel::removeChildren(int row)
{
    const auto first = rows_.begin() + row + 1;
    const int depth = rows_.at(static_cast<std::size_t>(row)).depth;
    const auto last = std::find_if(first, rows_.end(), [depth](const Row& each) { return each.depth <= depth; });
    if (first != last) {
        beginRemoveRows({}, row + 1, row + static_cast<int>(last - first));
        rows_.erase(first, last);
        endRemoveRows();
    }
}

void FileTreeModel::insertChildren(int row, const QList<FileItem>& children)
{
    if (children.isEmpty()) {
        return;
    }
    const int depth = rows_.at(static_cast<std::size_t>(row)).depth + 1;
    std::vector<Row> added;
    added.reserve(static_cast<std::size_t>(children.size()));
    for (const FileItem& child : children) {
        added.push_back({child, depth});
    }
    beginInsertRows({}, row + 1, row + static_cast<int>(added.size()));
    rows_.insert(rows_.begin() + row + 1, std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
    endInsertRows();
}

void FileTreeModel::setBadges(GitBadges badges)
{
    badges_ = std::move(badges);
    if (!rows_.empty()) {
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {badgeRole, badgeColorRole});
    }
}

int FileTreeModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant FileTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return shownName(row.item.name());
    case Qt::ToolTipRole:
        return plainHelp(shownName(row.item.url.toLocalFile()));
    case Qt::AccessibleTextRole: {
        const auto badge = badges_.badge(row.item);
        const QString kind = row.item.isDirectory ? tr("folder") : tr("file");
        return QString(shownName(row.item.name()) + QStringLiteral(", ") + kind +
                       (badge ? QStringLiteral(", ") + badgeInWords(badge->letter) : QString()));
    }
    case depthRole:
        return row.depth;
    case isDirectoryRole:
        return row.item.isDirectory;
    case isExpandedRole:
        return isExpanded(index.row());
    case iconRole:
        return row.item.icon();
    case iconColorRole:
        return static_cast<int>(row.item.iconColor());
    case badgeRole: {
        const auto badge = badges_.badge(row.item);
        return badge ? QVariant(badge->letter) : QVariant();
    }
    case badgeColorRole: {
        const auto badge = badges_.badge(row.item);
        return badge ? QVariant(static_cast<int>(badge->color)) : QVariant();
    }
    default:
        return {};
    }
}

Qt::ItemFlags FileTreeModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractListModel::flags(index);
    return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

QMimeData* FileTreeModel::mimeData(const QModelIndexList& indexes) const
{
    QList<QUrl> files;
    for (const QModelIndex& index : indexes) {
        files << item(index.row()).url;
    }
    return dataOfFiles(files).release();
}

} // namespace kelm
