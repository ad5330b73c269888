// The sheets that the source control panel opens over the window.
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace kelm {

class GitService;

/// A file whose diff is shown.
struct DiffSheet
{
    QString path;

    const QString& id() const { return path; }
    bool operator==(const DiffSheet&) const = default;
};

/// A commit that is shown.
struct CommitSheet
{
    QString sha;

    const QString& id() const { return sha; }
    bool operator==(const CommitSheet&) const = default;
};

/// Makes the content of the sheets. The content calls `onClose` when its own button closes it.
struct SourceControlSheets
{
    using OnClose = std::function<void()>;

    std::function<QWidget*(const DiffSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent)> makeDiff;
    std::function<QWidget*(const CommitSheet& sheet, GitService& git, const OnClose& onClose, QWidget* parent)>
        makeCommit;

    /// The diff viewer's sheets.
    static SourceControlSheets standard();
};

} // namespace kelm
