// A diff text as a person reads it.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/diff_view_mode.h"

#include <QSet>
#include <QWidget>

#include <functional>

class QPlainTextEdit;
class QStackedWidget;

namespace kelm {

class DiffList;
class SegmentedPicker;
class TextLabel;

/// Shows a diff text in a unified or a side-by-side form, with collapsible hunks, changed words and, if wanted, a
/// button on each hunk. Knows nothing of git.
///
/// The text is parsed when it is set and again when the form is changed. Every parse gives the hunks other identities,
/// so that what was collapsed is open after it.
class DiffViewer final : public QWidget
{
    Q_OBJECT

public:
    /// Is called with the file and the index of the hunk in it.
    using HunkAction = std::function<void(const DiffFile& file, qsizetype hunk)>;

    explicit DiffViewer(QWidget* parent = nullptr);
    ~DiffViewer() override;

    const QString& diffText() const { return diffText_; }
    /// Setting the text that is shown already changes nothing.
    void setDiffText(const QString& text);

    const HunkAction& onHunkAction() const { return onHunkAction_; }
    const QString& hunkActionLabel() const { return hunkActionLabel_; }
    /// Gives each hunk a button, or none without `action`.
    void setHunkAction(const QString& label, HunkAction action);

    DiffViewMode mode() const { return mode_; }
    void setMode(DiffViewMode mode);

    /// The ids of all hunks that were collapsed, also of hunks that are shown no more.
    const QSet<QUuid>& collapsedHunks() const { return collapsedHunks_; }
    void toggleHunk(const QUuid& hunk);

    /// The text beside the picker.
    QString filesSummary() const;

    /// The list that shows the files when there are any.
    DiffList& list() { return *list_; }

private:
    QWidget* makeToolbar();
    void evaluate();

    QString diffText_;
    HunkAction onHunkAction_;
    QString hunkActionLabel_;
    DiffViewMode mode_ = DiffViewMode::unified;
    QSet<QUuid> collapsedHunks_;

    SegmentedPicker* picker_ = nullptr;
    TextLabel* summary_ = nullptr;
    QStackedWidget* content_ = nullptr;
    QWidget* noChanges_ = nullptr;
    QPlainTextEdit* rawText_ = nullptr;
    DiffList* list_ = nullptr;
};

} // namespace kelm
