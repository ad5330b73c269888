// The sheet with the changes of one file.
#pragma once

#include "git/diff.h"
#include "git/git_service.h"

#include <QDialog>
#include <QPointer>

#include <functional>

namespace kelm {

class DiffViewer;
class SegmentedPicker;

/// Which file's changes a sheet shows; one path is one sheet.
struct DiffSheet
{
    QString path;

    const QString& id() const { return path; }
    bool operator==(const DiffSheet&) const = default;
};

/// Shows what changed in one file, in the working tree or in the index, and stages or unstages single hunks. A
/// window-modal dialog: show it with `open`.
///
/// git is asked when the sheet appears, when another view is chosen, and after a hunk has gone; a failure's words are
/// in the service's `lastError`.
class DiffSheetView final : public QDialog
{
    Q_OBJECT

public:
    DiffSheetView(GitService& git, DiffSheet sheet, QWidget* parent);
    ~DiffSheetView() override;

    /// Called once when the sheet has been closed, by its button or otherwise.
    std::function<void()> onClose;

    const QString& path() const { return sheet_.path; }
    /// The diff as git printed it.
    const QString& diff() const { return diff_; }
    /// Whether the index is shown rather than the working tree.
    bool stagedView() const { return stagedView_; }
    void setStagedView(bool staged);

    DiffViewer& viewer() { return *viewer_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader();
    void load();
    void updateAction();
    void applyHunk(const DiffFile& file, qsizetype hunk);

    QPointer<GitService> git_;
    DiffSheet sheet_;
    QString diff_;
    bool stagedView_ = false;
    bool hasAppeared_ = false;
    SegmentedPicker* picker_ = nullptr;
    DiffViewer* viewer_ = nullptr;
};

} // namespace kelm
