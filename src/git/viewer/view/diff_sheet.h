// The sheet with the changes of one file.
#pragma once

#include "git/diff/file_facts.h"
#include "git/service/git_service.h"

#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <optional>

namespace kelm {

class DiffViewer;
class SegmentedPicker;
class SheetFailureLine;
class TextLabel;

/// What a sheet with the changes of one file holds: the working tree's or the index's, of which single hunks are staged
/// or unstaged.
///
/// git is asked when it appears, when the other view is chosen, and after a hunk has gone; a failure's words are in the
/// service's `lastError`, and said in the sheet. Where git prints no diff since it does not know the file, the file
/// itself is shown.
class DiffSheetView final : public QWidget
{
    Q_OBJECT

public:
    DiffSheetView(GitService& git, QString path, QWidget* parent);
    ~DiffSheetView() override;

    /// Called by the button "Close".
    std::function<void()> onClose;

    const QString& path() const { return path_; }
    /// The diff as git printed it.
    const QString& diff() const { return diff_; }
    /// Whether the index is shown rather than the working tree.
    bool stagedView() const { return stagedView_; }
    void setStagedView(bool staged);

    DiffViewer& viewer() { return *viewer_; }
    /// What is said of the two views below the diff, such as "Working: 2 hunks · Staged: none".
    QString counts() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makeHeader();
    /// What is told below the diff: what git refused, and the counts of both views.
    QWidget* makeFooter(GitService& git);
    void load();
    void updateAction();
    void applyHunk(const DiffFile& file, qsizetype hunk);

    bool isRepositoryOpen() const;
    void addShortcuts();
    void showDiff();
    /// The file's entry of the status; null where there is none.
    const GitFileStatus* entry() const;
    QString pathOnDisk() const;
    DiffFileSizes sizesOf(const DiffFileFacts& facts);
    bool isUntracked() const;
    void updateCounts();
    void countOther();

    QPointer<GitService> git_;
    /// The one that the path belongs to. While another is open, nothing is read or done.
    std::optional<QUrl> repository_;
    QString path_;
    QString diff_;
    bool stagedView_ = false;
    bool hasAppeared_ = false;
    /// The hunks of each view, as far as they are known.
    std::optional<qsizetype> workingHunks_;
    std::optional<qsizetype> stagedHunks_;
    TextLabel* counts_ = nullptr;
    SegmentedPicker* picker_ = nullptr;
    DiffViewer* viewer_ = nullptr;
    SheetFailureLine* failure_ = nullptr;
};

} // namespace kelm
