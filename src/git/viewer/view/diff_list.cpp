#include "git/viewer/view/diff_list.h"

#include "git/viewer/view/diff_list_accessible.h"
#include "git/viewer/view/diff_painter.h"
#include "platform/view/plain_button.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <limits>

namespace kelm {

using namespace diffSizes;

namespace {

/// Of a row of a line, at least: Hangul of a fallback family needs more than the font's own height.
constexpr int leastRowHeight = 16;
/// Of the content: in less room, lines are cut off at the right rather than broken into rows of a letter.
constexpr int leastWidth = 320;
/// Farther away than this a button is not told exactly where.
constexpr qint64 farAway = 30'000;

DiffMetrics metricsOf(const DiffFonts& fonts)
{
    const auto height = [](const QFont& font) { return static_cast<int>(std::ceil(QFontMetricsF(font).height())); };
    DiffMetrics metrics;
    metrics.fileHeader = 2 * fileHeaderVertical + std::max(height(fonts.path), height(fonts.hunkCount));
    metrics.hunkHeader = 2 * hunkHeaderVertical + height(fonts.hunkHeader);
    metrics.row = std::max(leastRowHeight, height(fonts.body));
    return metrics;
}

} // namespace

DiffList::DiffList(std::function<FileBlock(qsizetype)> blockOf, QWidget* parent)
    : QAbstractScrollArea(parent),
      blockOf_(std::move(blockOf)),
      metrics_(metricsOf(fonts_)),
      words_([this] { viewport()->update(); }),
      controls_(*viewport())
{
    installAccessibleDiffListFactory();
    texts_.setFont(fonts_.body);
    setAccessibleName(tr("Diff"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    // A bar that came and went would change the width, and with it the height that it depends on.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setAutoFillBackground(true);
    verticalScrollBar()->setBackgroundRole(QPalette::Base);
    updateColumns();
}

DiffList::~DiffList() = default;

DiffList::Frame DiffList::frameOf(DiffViewMode mode) const
{
    return {mode, metrics_, texts_.columns(columnsOf(mode).front().bodyWidth())};
}

void DiffList::setDiffLayout(DiffLayout layout)
{
    const std::optional<HunkControl> focused = controls_.focused();
    if (focused) {
        setFocus();
    }
    endDrag();
    selection_.reset();
    sizes_.clear();
    transcript_.reset();
    texts_.clear();
    words_.clear();
    columns_ = columnsOf(layout.mode());
    layout_ = std::move(layout);
    layout_.setColumns(texts_.columns(columns_.front().bodyWidth()));
    if (current_ && current_->file < layout_.files().size()) {
        current_->hunk = std::min(current_->hunk, layout_.files()[current_->file].hunks.size() - 1);
    } else {
        current_.reset();
    }
    updateScrollBar();
    updateBlocks();
    if (focused) {
        restoreFocus(*focused);
    }
}

void DiffList::setSizes(qsizetype file, const DiffFileSizes& sizes)
{
    sizes_.insert(file, sizes);
    viewport()->update();
}

void DiffList::updateBlocks()
{
    actionWidth_ =
        hasActions() ? controls_.actionWidth(blockOf_(0).hunkActionLabel) + headerSpacing : hunkHeaderHorizontal;
    controls_.reset();
    placeControls();
    viewport()->update();
}

void DiffList::setCollapsed(qsizetype file, qsizetype hunk, bool isCollapsed)
{
    if (layout_.isCollapsed(file, hunk) == isCollapsed) {
        return;
    }
    layout_.setCollapsed(file, hunk, isCollapsed);
    transcript_.reset();
    updateScrollBar();
    updateBlocks();
}

int DiffList::blockWidth() const
{
    return static_cast<int>(columns_.back().right - columns_.front().left);
}

DiffScene DiffList::scene()
{
    return {layout_, fonts_, texts_, words_, columns_, selection_, sizes_, markedHunk(), blockWidth() - actionWidth_};
}

void DiffList::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), palette().color(QPalette::Base));
    if (!layout_.files().isEmpty()) {
        const DiffScene shown = scene();
        DiffPainter(painter, shown, *this, scrolledTo()).paint(event->rect().top(), event->rect().bottom() + 1);
    }
}

void DiffList::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateColumns();
}

std::vector<DiffColumn> DiffList::columnsOf(DiffViewMode mode) const
{
    return diffColumns(mode, metrics_.padding, std::max(viewport()->width(), leastWidth) - metrics_.padding);
}

void DiffList::updateColumns()
{
    // What stands at the upper edge stays there, whatever the lines above it come to.
    const DiffPlace top = layout_.placeAt(scrolledTo());
    const qint64 within = scrolledTo() - topOf(top);
    columns_ = columnsOf(layout_.mode());
    texts_.clear();
    layout_.setColumns(texts_.columns(columns_.front().bodyWidth()));
    updateScrollBar();
    verticalScrollBar()->setValue(
        static_cast<int>(std::min<qint64>(topOf(top) + within, verticalScrollBar()->maximum())));
    placeControls();
}

void DiffList::updateScrollBar()
{
    const qint64 range = layout_.height() - viewport()->height();
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(metrics_.row);
    verticalScrollBar()->setRange(0, static_cast<int>(std::clamp<qint64>(range, 0, std::numeric_limits<int>::max())));
}

qint64 DiffList::scrolledTo() const
{
    return verticalScrollBar()->value();
}

qint64 DiffList::topOf(const DiffPlace& place) const
{
    switch (place.part) {
    case DiffPlace::Part::fileHeader:
        return layout_.fileTop(place.file);
    case DiffPlace::Part::hunkHeader:
        return layout_.hunkTop(place.file, place.hunk);
    case DiffPlace::Part::entry:
        return layout_.entryTop(place.file, place.hunk, place.entry);
    case DiffPlace::Part::gap:
        break;
    }
    return place.file < layout_.files().size() ? layout_.fileTop(place.file) : layout_.height();
}

void DiffList::scrollContentsBy(int, int)
{
    placeControls();
    viewport()->update();
}

void DiffList::placeControls()
{
    using Part = DiffPlace::Part;
    const auto placed = [this](qsizetype file, qsizetype hunk) -> PlacedHunk {
        const qint64 top = std::clamp(layout_.hunkTop(file, hunk) - scrolledTo(), -farAway, farAway);
        return {file, hunk, QRect(metrics_.padding, static_cast<int>(top), blockWidth(), metrics_.hunkHeader)};
    };
    std::vector<PlacedHunk> shown;
    const QList<DiffFile>& files = layout_.files();
    const qint64 bottom = scrolledTo() + viewport()->height();
    const DiffPlace first = layout_.placeAt(scrolledTo());
    for (qsizetype file = first.file; file < files.size() && layout_.fileTop(file) < bottom; ++file) {
        qsizetype hunk = 0;
        if (file == first.file && (first.part == Part::hunkHeader || first.part == Part::entry)) {
            hunk = first.part == Part::entry ? first.hunk + 1 : first.hunk;
        }
        for (; hunk < files[file].hunks.size() && layout_.hunkTop(file, hunk) < bottom; ++hunk) {
            shown.push_back(placed(file, hunk));
        }
    }
    // A button that has the keyboard keeps it when it is scrolled away.
    const std::optional<HunkControl> focused = controls_.focused();
    const auto isFocused = [&focused](const PlacedHunk& hunk) {
        return hunk.file == focused->file && hunk.hunk == focused->hunk;
    };
    const bool isThere = focused && focused->file < files.size() && focused->hunk < files[focused->file].hunks.size();
    if (isThere && std::none_of(shown.begin(), shown.end(), isFocused)) {
        shown.push_back(placed(focused->file, focused->hunk));
    }
    controls_.place(shown, [this](const PlacedHunk& hunk) {
        const FileBlock block = blockOf_(hunk.file);
        return std::pair(block.hunkBlock(hunk.hunk), shownPath(block.file));
    });
}

QPointF DiffList::pointOf(const DiffTextPlace& place, SideBySideHunkLines::Side side)
{
    const DiffLine* line = lineOn(side, layout_, place.file, place.hunk, place.entry);
    const DiffColumn& column = columnOf(side);
    const qsizetype row = texts_.rows(line->text, layout_.columns()).rowOf(place.unit);
    const qsizetype start = texts_.rows(line->text, layout_.columns()).start(row);
    const DiffRowText& text = texts_.row(line->text, row, layout_.columns(), column.bodyWidth());
    const qint64 top = layout_.entryTop(place.file, place.hunk, place.entry) + row * metrics_.row - scrolledTo();
    return {column.bodyLeft + text.xOf(place.unit - start), qreal(top) + metrics_.row / 2.0};
}

const DiffTranscript& DiffList::transcript() const
{
    if (!transcript_) {
        transcript_.emplace(layout_);
    }
    return *transcript_;
}

QRect DiffList::rectOf(const DiffTextPlace& place, SideBySideHunkLines::Side side)
{
    const int left = metrics_.padding;
    if (place.hunk < 0) {
        return {left, static_cast<int>(layout_.fileTop(place.file) - scrolledTo()), blockWidth(), metrics_.fileHeader};
    }
    if (place.entry < 0) {
        return {left, static_cast<int>(layout_.hunkTop(place.file, place.hunk) - scrolledTo()), blockWidth(),
                metrics_.hunkHeader};
    }
    const QPointF from = pointOf(place, side);
    DiffTextPlace next = place;
    next.unit = std::min(place.unit + 1, lineOn(side, layout_, place.file, place.hunk, place.entry)->text.size());
    const QPointF to = pointOf(next, side);
    const qreal width = to.y() == from.y() ? std::max(1.0, to.x() - from.x()) : texts_.cellWidth();
    return QRectF(from.x(), from.y() - metrics_.row / 2.0, width, metrics_.row).toAlignedRect();
}

void DiffList::scrollTo(const DiffTextPlace& place)
{
    qint64 top = layout_.fileTop(place.file);
    if (place.hunk >= 0) {
        const bool isHeader = place.entry < 0 || layout_.isCollapsed(place.file, place.hunk);
        top =
            isHeader ? layout_.hunkTop(place.file, place.hunk) : layout_.entryTop(place.file, place.hunk, place.entry);
    }
    const int height = viewport()->height();
    if (top < scrolledTo() || top + metrics_.row > scrolledTo() + height) {
        const qint64 target = top - (height - metrics_.row) / 2;
        verticalScrollBar()->setValue(static_cast<int>(std::clamp<qint64>(target, 0, verticalScrollBar()->maximum())));
    }
}

} // namespace kelm
