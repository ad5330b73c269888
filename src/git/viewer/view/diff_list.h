// The scrolled list of files of a shown diff.
#pragma once

#include "git/diff/diff_selection.h"
#include "git/diff/diff_transcript.h"
#include "git/diff/file_facts.h"
#include "git/viewer/view/diff_columns.h"
#include "git/viewer/view/diff_fonts.h"
#include "git/viewer/view/diff_hunk_controls.h"
#include "git/viewer/view/diff_row_texts.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QHash>

#include <functional>
#include <optional>
#include <utility>

namespace kelm {

struct DiffScene;

/// Shows the files of a diff below each other and scrolls by pixels. Only what is on screen is laid out and compared
/// word by word; lines that are longer than a row go on in the next.
///
/// Text of paths and lines is selected with the mouse and copied; in the side-by-side form a selection stays on its
/// side. Tab goes from hunk to hunk, also to those that are not on screen.
///
/// The toolkit's text widgets were tried for it: on 1.4 million lines they need 4.6 s and 286 MiB (QTextEdit) or 5.1 s
/// and 735 MiB (QPlainTextEdit) before the first paint, where this list needs 0.6 s, and they hold one text, where here
/// two columns stand side by side, each with a selection of its own.
class DiffList final : public QAbstractScrollArea
{
    Q_OBJECT

public:
    /// `blockOf` tells what a file's buttons do.
    explicit DiffList(std::function<FileBlock(qsizetype file)> blockOf, QWidget* parent = nullptr);
    ~DiffList() override;

    /// What the files are to be laid out by.
    struct Frame
    {
        DiffViewMode mode = DiffViewMode::unified;
        DiffMetrics metrics;
        qsizetype columns = 1;
    };
    Frame frameOf(DiffViewMode mode) const;
    /// Shows other files, scrolled to where the ones before were. Nothing is selected or collapsed in them. They may
    /// have been laid out elsewhere, by a frame of this list; a width that has changed since is made up for.
    void setDiffLayout(DiffLayout layout);
    /// Tells how large the versions of a file are.
    void setSizes(qsizetype file, const DiffFileSizes& sizes);
    /// What stands at the right of a file's header, whole.
    QString fileLabelOf(qsizetype file) const { return fileLabel(layout_.files()[file], sizes_.value(file)); }
    /// To be called when `blockOf` tells something else.
    void updateBlocks();
    void setCollapsed(qsizetype file, qsizetype hunk, bool isCollapsed);

    const DiffLayout& diffLayout() const { return layout_; }
    const std::vector<DiffColumn>& columns() const { return columns_; }
    /// Null when the hunk's header is not on screen or has no such button.
    PlainButton* button(const HunkControl& control) const { return controls_.button(control); }
    /// The y of the content at the upper edge of the viewport.
    qint64 scrolledTo() const;
    /// The left end of a unit of a line, in the viewport, at the middle of its row.
    QPointF pointOf(const DiffTextPlace& place, SideBySideHunkLines::Side side);
    /// The number of pairs of lines that have been compared word by word.
    qsizetype comparedPairs() const { return words_.size(); }

    // Hunks by keyboard.
    /// The hunk that was gone to last, by key or by click; failing that the first whose header is on screen, or the one
    /// that fills it. Nothing where there is no hunk.
    std::optional<HunkControl> currentHunk() const;
    void goToHunk(bool next);
    void goToFile(bool next);
    /// Scrolls to a file, whose first hunk is the current one then.
    void showFile(qsizetype file);
    /// Does the action of the current hunk, or says why it cannot be done.
    void actOnHunk();
    /// Selects a line more, from the current hunk's first.
    void selectLine(bool below);

    const std::optional<DiffSelection>& selection() const { return selection_; }
    void select(const DiffSelection& selection);
    void clearSelection();
    QString selectedText() const;
    /// The selected text, or where there is none the lines of the current hunk. The clipboard is never emptied.
    void copy() const;
    void selectAll();

    // For screen readers.
    /// Everything as one text; made when it is asked for.
    const DiffTranscript& transcript() const;
    /// Where a unit is drawn, in the viewport, also where that is not on screen.
    QRect rectOf(const DiffTextPlace& place, SideBySideHunkLines::Side side);
    /// The place in the text that is nearest to a point of the viewport, and its side.
    std::pair<DiffTextPlace, SideBySideHunkLines::Side> textAt(const QPoint& point);
    /// Scrolls the row of a place to the middle, unless it is on screen.
    void scrollTo(const DiffTextPlace& place);

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    DiffScene scene();
    // Geometry.
    std::vector<DiffColumn> columnsOf(DiffViewMode mode) const;
    int blockWidth() const;
    void updateColumns();
    void updateScrollBar();
    void placeControls();
    qint64 topOf(const DiffPlace& place) const;
    // Keyboard.
    bool hasActions() const;
    bool handlesHunkKey(const QKeyEvent& event);
    std::optional<HunkControl> firstControl() const;
    std::optional<HunkControl> neighbour(const HunkControl& control, bool next) const;
    std::optional<std::pair<qsizetype, qsizetype>> markedHunk() const;
    bool isOnScreen(const HunkControl& hunk) const;
    qint64 bottomOf(const HunkControl& hunk) const;
    bool canAct(qsizetype file, qsizetype hunk) const;
    void setCurrentHunk(const HunkControl& hunk);
    void focusControl(const HunkControl& control, Qt::FocusReason reason);
    void restoreFocus(const HunkControl& control);
    void scrollToHunk(qsizetype file, qsizetype hunk);
    // Mouse.
    const DiffColumn& columnAt(qreal x) const;
    const DiffColumn& columnOf(SideBySideHunkLines::Side side) const;
    bool isOverText(const QPointF& point);
    DiffTextPlace textPlaceAt(const QPointF& point, const DiffColumn& column);
    qsizetype pathUnitAt(qsizetype file, qreal x);
    void extendSelection(const QPointF& point);
    /// Ends a selecting with the mouse, and the scrolling that goes with it.
    void endDrag();
    QString helpAt(const QPoint& point);

    std::function<FileBlock(qsizetype)> blockOf_;
    DiffFonts fonts_;
    DiffMetrics metrics_;
    DiffLayout layout_;
    std::vector<DiffColumn> columns_;
    DiffRowTexts texts_;
    WordDiffCache words_;
    HunkControls controls_;
    /// The room at the right of a hunk's header that its text stays clear of.
    int actionWidth_ = 0;
    std::optional<DiffSelection> selection_;
    /// The hunk that was gone to.
    std::optional<HunkControl> current_;
    /// Of the files whose sizes are known, by their place.
    QHash<qsizetype, DiffFileSizes> sizes_;
    mutable std::optional<DiffTranscript> transcript_;
    bool isDragging_ = false;
    QPointF dragPoint_;
    QBasicTimer dragTimer_;
};

} // namespace kelm
