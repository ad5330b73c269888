#include "git/viewer/view/diff_painter.h"

#include "git/diff/combined_hunk.h"
#include "git/diff/diff_transcript.h"
#include "git/diff/unified_hunk_lines.h"
#include "git/viewer/view/selective_rounded_shape.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"

#include <QFontMetricsF>
#include <QWidget>

#include <algorithm>

namespace kelm {

using namespace diffSizes;

namespace {

using Side = SideBySideHunkLines::Side;

constexpr double fileHeaderGround = 0.08;
constexpr double hunkHeaderGround = 0.06;
constexpr double border = 0.2;
constexpr double lineGround = 0.1;
constexpr double noNewlineGround = 0.05;
constexpr double wordGround = 0.35;
constexpr double numberGround = 0.04;
constexpr double selectionGround = 0.28;

Tint unifiedText(DiffLineKind kind)
{
    switch (kind) {
    case DiffLineKind::removed:
        return SystemColor::red;
    case DiffLineKind::added:
        return SystemColor::green;
    case DiffLineKind::noNewline:
        return Tint::secondary();
    default:
        return Tint::primary();
    }
}

Tint unifiedGround(DiffLineKind kind)
{
    switch (kind) {
    case DiffLineKind::removed:
        return Tint(SystemColor::red).at(lineGround);
    case DiffLineKind::added:
        return Tint(SystemColor::green).at(lineGround);
    case DiffLineKind::noNewline:
        return Tint(SystemColor::gray).at(noNewlineGround);
    default:
        return Tint::clear();
    }
}

Tint sideText(DiffLineKind kind, Side side)
{
    if (kind == DiffLineKind::added && side == Side::newSide) {
        return SystemColor::green;
    }
    if (kind == DiffLineKind::removed && side == Side::oldSide) {
        return SystemColor::red;
    }
    return Tint::primary();
}

} // namespace

QString shownFileLabel(const DiffScene& scene, qsizetype file, qreal left, qreal right)
{
    const QString label = drawnText(fileLabel(scene.layout.files()[file], scene.sizes.value(file))).text;
    return QFontMetricsF(scene.fonts.hunkCount).elidedText(label, Qt::ElideMiddle, (right - left) / 2);
}

QRectF pathRect(const DiffScene& scene, qsizetype file, qint64 headerTop, qreal left, qreal right)
{
    const QString label = shownFileLabel(scene, file, left, right);
    const qreal countWidth = QFontMetricsF(scene.fonts.hunkCount).horizontalAdvance(label);
    const qreal start = left + fileHeaderHorizontal + fileSymbol + headerSpacing;
    const qreal end = right - fileHeaderHorizontal - countWidth - headerSpacing;
    return {start, qreal(headerTop), std::max(0.0, end - start), qreal(scene.layout.metrics().fileHeader)};
}

DiffPainter::DiffPainter(QPainter& painter, const DiffScene& scene, const QWidget& widget, qint64 scrolledTo)
    : painter_(painter),
      scene_(scene),
      widget_(widget),
      scrolledTo_(scrolledTo),
      left_(scene.columns.front().left),
      right_(scene.columns.back().right)
{
    const QFontMetricsF metrics(scene.fonts.body);
    ascent_ = metrics.ascent();
    textHeight_ = metrics.height();
}

QColor DiffPainter::color(const Tint& tint) const
{
    return tint.on(widget_);
}

qreal DiffPainter::baseline(qreal rowTop) const
{
    return std::round(rowTop + (scene_.layout.metrics().row - textHeight_) / 2 + ascent_);
}

void DiffPainter::paint(int top, int bottom)
{
    top_ = top;
    bottom_ = bottom;
    painter_.setRenderHint(QPainter::Antialiasing);
    const DiffLayout& layout = scene_.layout;
    const DiffPlace first = layout.placeAt(scrolledTo_ + top);
    for (qsizetype file = first.file; file < layout.files().size() && viewY(layout.fileTop(file)) < bottom; ++file) {
        paintFile(file, file == first.file ? first : DiffPlace{DiffPlace::Part::fileHeader, file, 0, 0});
    }
}

void DiffPainter::paintFile(qsizetype file, const DiffPlace& first)
{
    using Part = DiffPlace::Part;
    const DiffLayout& layout = scene_.layout;
    if (first.part == Part::gap || first.part == Part::fileHeader) {
        paintFileHeader(file);
    }
    const qsizetype hunks = layout.files()[file].hunks.size();
    for (qsizetype hunk = first.hunk; hunk < hunks && viewY(layout.hunkTop(file, hunk)) < bottom_; ++hunk) {
        const bool isWithin = first.part == Part::entry && hunk == first.hunk;
        if (!isWithin) {
            paintHunkHeader(file, hunk);
        }
        if (!layout.isCollapsed(file, hunk)) {
            paintEntries(file, hunk, isWithin ? first.entry : 0);
        }
    }
    paintBlockBorder(file);
}

void DiffPainter::paintFileHeader(qsizetype file)
{
    const DiffFile& shown = scene_.layout.files()[file];
    const qreal headerTop = viewY(scene_.layout.fileTop(file));
    const QRectF header(left_, headerTop, right_ - left_, scene_.layout.metrics().fileHeader);
    constexpr RectCorner top = RectCorner::topLeft | RectCorner::topRight;
    painter_.fillPath(SelectiveRoundedShape{blockRadius, top}.path(header),
                      color(Tint::secondary().at(fileHeaderGround)));
    icons::paint(painter_, QStringLiteral("doc.text"),
                 QRectF(left_ + fileHeaderHorizontal, header.center().y() - fileSymbol / 2.0, fileSymbol, fileSymbol),
                 color(Tint::primary()));

    const QRectF place = pathRect(scene_, file, 0, left_, right_).translated(0, headerTop);
    const QString path = shownPath(shown);
    const QFontMetricsF metrics(scene_.fonts.path);
    const QString fitting = metrics.elidedText(path, Qt::ElideMiddle, place.width() + 1);
    if (scene_.selection) {
        const auto stretch = selectedStretch(*scene_.selection, {file, -1, 0, 0}, path.size());
        if (stretch && stretch->length > 0) {
            const DiffRowText text(fitting, scene_.fonts.path, place.width() + 1);
            const bool isWhole = fitting != path;
            const qreal from = isWhole ? 0 : text.xOf(stretch->start);
            const qreal to = isWhole ? text.width() : text.xOf(stretch->start + stretch->length);
            painter_.fillRect(QRectF(place.left() + from, headerTop + fileHeaderVertical - 1, to - from,
                                     header.height() - 2 * fileHeaderVertical + 2),
                              color(Tint::accent().at(selectionGround)));
        }
    }
    painter_.setFont(scene_.fonts.path);
    painter_.setPen(color(Tint::primary()));
    painter_.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip, fitting);
    painter_.setFont(scene_.fonts.hunkCount);
    painter_.setPen(color(Tint::secondary()));
    painter_.drawText(header.adjusted(0, 0, -fileHeaderHorizontal, 0), Qt::AlignRight | Qt::AlignVCenter,
                      shownFileLabel(scene_, file, left_, right_));
    if (scene_.marked == std::pair(file, qsizetype(-1))) {
        style::drawFocusRing(painter_, header.adjusted(1, 1, -1, -1), style::radius::chip, widget_);
    }
}

void DiffPainter::paintHunkHeader(qsizetype file, qsizetype hunk)
{
    const DiffLayout& layout = scene_.layout;
    const DiffFile& shown = layout.files()[file];
    const QRectF header(left_, viewY(layout.hunkTop(file, hunk)), right_ - left_, layout.metrics().hunkHeader);
    painter_.fillRect(header, color(Tint(SystemColor::blue).at(hunkHeaderGround)));
    const qreal textLeft = left_ + hunkHeaderHorizontal + toggleSymbol + headerSpacing;
    const QRectF place(textLeft, header.top(), std::max(0.0, left_ + scene_.hunkHeaderTextEnd - textLeft),
                       header.height());
    painter_.setFont(scene_.fonts.hunkHeader);
    painter_.setPen(style::ink(SystemColor::blue, widget_));
    // Longer than any row: the rest would be measured in vain.
    constexpr qsizetype longest = 1000;
    const QString text = drawnText(QStringView(shown.hunks[hunk].header).left(longest)).text;
    painter_.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      QFontMetricsF(scene_.fonts.hunkHeader).elidedText(text, Qt::ElideRight, place.width() + 1));
    if (scene_.marked == std::pair(file, hunk)) {
        style::drawFocusRing(painter_, header.adjusted(1, 1, -1, -1), style::radius::chip, widget_);
    }
}

void DiffPainter::paintEntries(qsizetype file, qsizetype hunk, qsizetype firstEntry)
{
    const DiffLayout& layout = scene_.layout;
    const DiffHunk& shown = layout.files()[file].hunks[hunk];
    const qsizetype entries = layout.entryCount(file, hunk);
    for (qsizetype entry = firstEntry; entry < entries; ++entry) {
        const qreal top = viewY(layout.entryTop(file, hunk, entry));
        if (top >= bottom_) {
            return;
        }
        const qsizetype rows = layout.entryRows(file, hunk, entry);
        const auto [oldLine, newLine] = layout.lines(file, hunk, entry);
        for (const DiffColumn& column : scene_.columns) {
            const qint32 index = column.side == Side::oldSide ? oldLine : newLine;
            if (index < 0) {
                continue;
            }
            const Line line{shown, shown.lines[index], {file, hunk, entry, 0}, column, top, rows};
            if (layout.mode() == DiffViewMode::unified) {
                paintUnified(line);
                const auto partner = UnifiedHunkLines(shown).partner(index);
                const auto other = static_cast<qint32>(partner.value_or(index));
                paintBody(line, std::min(index, other), std::max(index, other));
            } else {
                paintSide(line);
                paintBody(line, oldLine, newLine);
            }
        }
        if (layout.mode() == DiffViewMode::sideBySide) {
            const qreal x = scene_.columns.front().right;
            painter_.fillRect(QRectF(x, top, divider, qreal(rows) * layout.metrics().row),
                              color(Tint::secondary().at(border)));
        }
    }
}

void DiffPainter::paintUnified(const Line& line)
{
    const DiffLayout& layout = scene_.layout;
    const QColor ground = color(unifiedGround(line.line.kind));
    if (ground.alpha() > 0) {
        const QRectF row(left_, line.top, right_ - left_, qreal(line.rows) * layout.metrics().row);
        painter_.fillRect(row, ground);
    }
    paintNumber(line.line.oldLineNumber, left_, line.top);
    paintNumber(line.line.newLineNumber, left_ + lineNumber, line.top);
    paintSign(line);
}

void DiffPainter::paintSide(const Line& line)
{
    const DiffLayout& layout = scene_.layout;
    const QRectF gutter(line.column.left, line.top, lineNumber, qreal(line.rows) * layout.metrics().row);
    painter_.fillRect(gutter, color(Tint::secondary().at(numberGround)));
    const bool isOld = line.column.side == Side::oldSide;
    paintNumber(isOld ? line.line.oldLineNumber : line.line.newLineNumber, line.column.left, line.top);
    paintSign(line);
}

void DiffPainter::paintNumber(const std::optional<qint64>& number, qreal left, qreal top)
{
    if (!number) {
        return;
    }
    const QString digits = QString::number(*number);
    painter_.setFont(scene_.fonts.lineNumber);
    painter_.setPen(color(Tint::secondary()));
    const qreal width = painter_.fontMetrics().horizontalAdvance(digits);
    if (width <= lineNumber) {
        painter_.drawText(QPointF(left + lineNumber - width, baseline(top)), digits);
        return;
    }
    // No digit is lost of a number that is wider than its column.
    painter_.save();
    painter_.translate(left, baseline(top));
    painter_.scale(lineNumber / width, 1);
    painter_.drawText(QPointF(), digits);
    painter_.restore();
}

void DiffPainter::paintSign(const Line& line)
{
    // The lines of a combined diff hold their own signs, one for each old file.
    const QString text = isCombined(line.hunk) ? QStringLiteral(" ") : diffSign(line.line.kind);
    if (text == u' ') {
        return;
    }
    painter_.setFont(scene_.fonts.sign);
    painter_.setPen(color(Tint::secondary()));
    const qreal width = painter_.fontMetrics().horizontalAdvance(text);
    painter_.drawText(QPointF(line.column.signLeft + (line.column.signWidth - width) / 2, baseline(line.top)), text);
}

/// The rows of a line that are on screen, with what is behind their letters: what changed against the line that it is
/// compared with, if it is, and what is selected.
void DiffPainter::paintBody(const Line& line, qint32 oldLine, qint32 newLine)
{
    const DiffColumn& column = line.column;
    const QStringView text = line.line.text;
    const int rowHeight = scene_.layout.metrics().row;
    const bool isOld = line.line.kind == DiffLineKind::removed;
    const bool isCompared = oldLine >= 0 && newLine >= 0 && oldLine != newLine;
    const ChangedWords* words = isCompared ? scene_.words.words(line.hunk, oldLine, newLine) : nullptr;
    const auto selected =
        scene_.selection && (scene_.layout.mode() == DiffViewMode::unified || scene_.selection->side == column.side)
            ? selectedStretch(*scene_.selection, line.place, text.size())
            : std::nullopt;

    const qsizetype columns = scene_.layout.columns();
    const qsizetype rows = std::min(line.rows, scene_.texts.rows(text, columns).count());
    const auto firstRow = static_cast<qsizetype>(std::max(0.0, (top_ - line.top) / rowHeight));
    const auto lastRow = std::min(rows, static_cast<qsizetype>(std::max(0.0, (bottom_ - line.top) / rowHeight)) + 1);
    for (qsizetype row = firstRow; row < lastRow; ++row) {
        const DiffRowText& shown = scene_.texts.row(text, row, columns, column.bodyWidth());
        const LineRows& cut = scene_.texts.rows(text, columns);
        const qsizetype start = cut.start(row);
        const qsizetype end = cut.end(row);
        const qreal top = line.top + qreal(row) * rowHeight;
        const auto fill = [&](const LineStretch& stretch, const QColor& ground) {
            const qsizetype from = std::max(stretch.start, start);
            const qsizetype to = std::min(stretch.start + stretch.length, end);
            if (from < to) {
                const qreal x = shown.xOf(from - start);
                painter_.fillRect(QRectF(column.bodyLeft + x, top, shown.xOf(to - start) - x, rowHeight), ground);
            }
        };
        if (words != nullptr) {
            const std::vector<LineStretch>& changed = isOld ? words->oldLine : words->newLine;
            const QColor ground = color(Tint(isOld ? SystemColor::red : SystemColor::green).at(wordGround));
            auto stretch = std::partition_point(changed.begin(), changed.end(), [start](const LineStretch& candidate) {
                return candidate.start + candidate.length <= start;
            });
            for (; stretch != changed.end() && stretch->start < end; ++stretch) {
                fill(*stretch, ground);
            }
        }
        if (selected) {
            fill(*selected, color(Tint::accent().at(selectionGround)));
        }
        const bool isUnified = scene_.layout.mode() == DiffViewMode::unified;
        painter_.setPen(
            style::ink(isUnified ? unifiedText(line.line.kind) : sideText(line.line.kind, column.side), widget_));
        shown.draw(painter_, QPointF(column.bodyLeft, baseline(top)));
    }
}

void DiffPainter::paintBlockBorder(qsizetype file)
{
    // A block may be millions of pixels high: what is drawn of it ends a little beyond the edges of the screen.
    constexpr qreal beyond = 20;
    const qreal top = std::max(viewY(scene_.layout.fileTop(file)), top_ - beyond);
    const qreal bottom =
        std::min(viewY(scene_.layout.fileTop(file) + scene_.layout.fileHeight(file)), bottom_ + beyond);
    const QRectF block(left_, top, right_ - left_, bottom - top);
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(QPen(color(Tint::secondary().at(border)), 1));
    painter_.drawRoundedRect(block.adjusted(0.5, 0.5, -0.5, -0.5), blockRadius, blockRadius);
}

} // namespace kelm
