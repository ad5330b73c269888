// A diff text as a person reads it.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/diff_view_mode.h"
#include "git/diff/hunk_hindrance.h"
#include "git/viewer/view/diff_blocks.h"
#include "platform/events/background_task.h"

#include <QSet>
#include <QWidget>

#include <functional>
#include <memory>

class QPlainTextEdit;
class QStackedWidget;

namespace kelm {

class DiffFindLine;
class DiffList;
class SegmentedPicker;
class TextLabel;

/// Shows a diff text in a unified or a side-by-side form, with collapsible hunks, changed words and, if wanted, a
/// button on each hunk. Knows nothing of git.
///
/// The text is parsed when it is set and again when the form is changed. Every parse gives the hunks other identities,
/// so that what was collapsed is open after it. A long text is parsed and laid out on another thread; what was shown
/// before stays until then and offers no action.
class DiffViewer final : public QWidget
{
    Q_OBJECT

public:
    /// Is called with the file and the index of the hunk in it.
    using HunkAction = std::function<void(const DiffFile& file, qsizetype hunk)>;
    using Hindrance = std::function<HunkHindrance(const DiffFile& file, qsizetype hunk)>;

    /// A text longer than this, in UTF-16 units, is not parsed at once.
    static constexpr qsizetype longestAtOnce = 1'000'000;

    explicit DiffViewer(QWidget* parent = nullptr);
    ~DiffViewer() override;

    const QString& diffText() const { return diffText_; }
    /// Setting the text that is shown already changes nothing.
    void setDiffText(const QString& text);

    const HunkAction& onHunkAction() const { return onHunkAction_; }
    const QString& hunkActionLabel() const { return hunkActionLabel_; }
    /// Gives each hunk a button, or none without `action`. `hindrance` tells for which hunks it is of no use, and why.
    void setHunkAction(const QString& label, HunkAction action, Hindrance hindrance = {});
    /// Whether a text is being parsed on another thread.
    bool isReading() const { return reading_.isRunning(); }

    // Finding a text.
    /// Shows the line with the field, which takes the keyboard.
    void showFindLine();
    void hideFindLine();
    DiffFindLine& findLine() { return *findLine_; }

    /// What stands in the middle when there is no text; "No changes" unless somebody knows better.
    void setEmptyText(const QString& text);

    DiffViewMode mode() const { return mode_; }
    void setMode(DiffViewMode mode);

    /// The ids of all hunks that were collapsed, also of hunks that are shown no more.
    const QSet<QUuid>& collapsedHunks() const { return collapsedHunks_; }
    void toggleHunk(const QUuid& hunk);

    /// The text beside the picker.
    QString filesSummary() const;

    /// The list that shows the files when there are any.
    DiffList& list() { return *list_; }

Q_SIGNALS:
    /// The files are there, laid out and shown, or there is none.
    void shown();

private:
    struct Reading;
    void addShortcuts();
    void take(const std::shared_ptr<Reading>& reading);
    FileBlock blockOf(qsizetype file);

    QWidget* makeToolbar();
    void evaluate();

    QString diffText_;
    HunkAction onHunkAction_;
    Hindrance hindrance_;
    QString hunkActionLabel_;
    DiffViewMode mode_ = DiffViewMode::unified;
    QSet<QUuid> collapsedHunks_;

    BackgroundTask reading_;
    QString emptyText_;

    SegmentedPicker* picker_ = nullptr;
    TextLabel* summary_ = nullptr;
    QStackedWidget* content_ = nullptr;
    TextLabel* noChanges_ = nullptr;
    DiffFindLine* findLine_ = nullptr;
    QPlainTextEdit* rawText_ = nullptr;
    DiffList* list_ = nullptr;
};

} // namespace kelm
