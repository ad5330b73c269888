// Drawing what is on screen of a diff.
#pragma once

#include "git/diff/diff_selection.h"
#include "git/diff/file_facts.h"
#include "git/viewer/view/diff_columns.h"
#include "git/viewer/view/diff_fonts.h"
#include "git/viewer/view/diff_row_texts.h"

#include <QHash>
#include <QPainter>

#include <optional>
#include <utility>

namespace kelm {

/// What a diff is drawn from.
struct DiffScene
{
    const DiffLayout& layout;
    const DiffFonts& fonts;
    DiffRowTexts& texts;
    WordDiffCache& words;
    const std::vector<DiffColumn>& columns;
    const std::optional<DiffSelection>& selection;
    /// The sizes of files that are known.
    const QHash<qsizetype, DiffFileSizes>& sizes;
    /// The hunk that keys act on, when it is to be marked.
    std::optional<std::pair<qsizetype, qsizetype>> marked;
    /// Where a hunk header's text ends, from the block's left edge, so that it stays clear of the buttons.
    int hunkHeaderTextEnd = 0;
};

/// What stands at the right of a file's header, in no more than half of it.
QString shownFileLabel(const DiffScene& scene, qsizetype file, qreal left, qreal right);

/// The place of a path in its header: from the symbol's right to the label's left.
QRectF pathRect(const DiffScene& scene, qsizetype file, qint64 headerTop, qreal left, qreal right);

/// Draws one frame.
class DiffPainter
{
public:
    /// `scrolledTo` is the y of the content at the viewport's top edge; `widget` gives the appearance.
    DiffPainter(QPainter& painter, const DiffScene& scene, const QWidget& widget, qint64 scrolledTo);

    /// Draws all that touches the rows of pixels from `top` to `bottom` of the viewport.
    void paint(int top, int bottom);

private:
    /// A line as it stands in one column.
    struct Line
    {
        const DiffHunk& hunk;
        const DiffLine& line;
        DiffTextPlace place;
        const DiffColumn& column;
        /// Of the first row, in the viewport.
        qreal top;
        qsizetype rows;
    };

    QColor color(const class Tint& tint) const;
    void paintFile(qsizetype file, const DiffPlace& first);
    void paintFileHeader(qsizetype file);
    void paintHunkHeader(qsizetype file, qsizetype hunk);
    void paintEntries(qsizetype file, qsizetype hunk, qsizetype firstEntry);
    void paintUnified(const Line& line);
    void paintSide(const Line& line);
    void paintNumber(const std::optional<qint64>& number, qreal left, qreal top);
    void paintSign(const Line& line);
    void paintBody(const Line& line, qint32 oldLine, qint32 newLine);
    void paintBlockBorder(qsizetype file);
    qreal baseline(qreal rowTop) const;
    qreal viewY(qint64 y) const { return qreal(y - scrolledTo_); }

    QPainter& painter_;
    const DiffScene& scene_;
    const QWidget& widget_;
    qint64 scrolledTo_;
    qreal left_;
    qreal right_;
    int top_ = 0;
    int bottom_ = 0;
    qreal ascent_;
    qreal textHeight_;
};

} // namespace kelm
