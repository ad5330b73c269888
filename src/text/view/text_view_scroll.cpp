// What of the page a text view shows: scrolling, and staying at the same text when rows, width or font change.
#include "platform/events/main_queue.h"
#include "text/view/text_view.h"

#include <QGuiApplication>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QWheelEvent>

#include <cmath>

namespace kelm {

namespace {

/// Distance of the letters from the inset on both sides, so that a caret before the first letter is seen whole.
constexpr qreal sidePadding = 5;

} // namespace

QRectF TextView::visibleRect() const
{
    return {0, scrollY(), static_cast<qreal>(viewport()->width()), static_cast<qreal>(viewport()->height())};
}

qreal TextView::pageHeight() const
{
    return layout_.height() + 2 * inset_.height();
}

std::vector<TextRow> TextView::visibleRows()
{
    const auto rowsOnScreen = [this] {
        const qreal top = scrollY() - inset_.height();
        return layout_.rowsBetween(top, top + viewport()->height());
    };
    std::vector<TextRow> rows = rowsOnScreen();
    // The last lines may turn out to be shorter than was estimated, and so the page.
    if (keepWithinPage()) {
        rows = rowsOnScreen();
    }
    // The line at the top, too.
    const qreal top = scrollY() - inset_.height();
    for (TextRow& row : rows) {
        row.top -= top;
    }
    return rows;
}

TextRange TextView::shownRange() const
{
    const qreal top = scrollY() - inset_.height();
    const TextRange first = storage_.lines().extent(layout_.lineAtY(top));
    const TextRange last = storage_.lines().extent(layout_.lineAtY(top + viewport()->height()));
    return TextRange::between(first.location, last.end());
}

CaretPlace TextView::placeAt(QPoint point)
{
    // What is on screen has its true rows first, also where it has not been painted since it came into sight.
    visibleRows();
    return layout_.placeAt(QPointF(point) - pageOrigin());
}

QRectF TextView::caretRect(CaretPlace place)
{
    const QRectF onPage = layout_.caretRect(place);
    return onPage.translated(pageOrigin());
}

QPointF TextView::pageOrigin() const
{
    return {inset_.width() + sidePadding, inset_.height() - scrollY()};
}

qreal TextView::scrollY() const
{
    return inset_.height() + layout_.yOf(anchor_);
}

void TextView::setAnchor(qreal y)
{
    anchor_ = layout_.pagePlaceAt(y - inset_.height());
    topBeforeResize_.reset();
    viewport()->update();
}

void TextView::scrollToY(qreal y)
{
    const qreal last = std::max<qreal>(0, pageHeight() - viewport()->height());
    setAnchor(std::clamp<qreal>(y, -topObscured_, last));
    syncScrollBar();
}

void TextView::scrollBy(qreal distance)
{
    anchor_ = layout_.movedBy(anchor_, distance);
    topBeforeResize_.reset();
    viewport()->update();
    syncScrollBar();
}

void TextView::scrollRangeToVisible(TextRange range)
{
    // Laying out the lines that come into sight may move the target, so that it is looked at again.
    for (int round = 0; round < 3; ++round) {
        const QRectF end = layout_.caretRect({range.end(), false});
        const QRectF start = layout_.caretRect({range.location, false});
        const qreal height = viewport()->height() - 2 * inset_.height();
        const qreal top = scrollY();
        qreal wanted = top;
        if (end.bottom() + 2 * inset_.height() > top + viewport()->height()) {
            wanted = end.bottom() + 2 * inset_.height() - viewport()->height();
        }
        const qreal startTop = start.top() - topObscured_;
        if (startTop < wanted || end.bottom() - startTop > height) {
            wanted = std::min(wanted, startTop);
        }
        if (wanted == top) {
            return;
        }
        // What is far away is shown in the middle, with its surroundings.
        const bool isFar = wanted > top + viewport()->height() || wanted < top - viewport()->height();
        scrollToY(isFar ? start.top() - viewport()->height() / 2.0 : wanted);
        visibleRows();
    }
}

void TextView::showCaret()
{
    scrollRangeToVisible({editor_.selections().primary().head.offset, 0});
}

bool TextView::keepWithinPage()
{
    const auto last = [this] { return std::max<qreal>(0, std::ceil(pageHeight() - viewport()->height())); };
    if (scrollY() > last()) {
        // The page ends on screen, so that the true heights of its last lines are what counts.
        const qreal top = scrollY() - inset_.height();
        layout_.rowsBetween(top, top + viewport()->height());
    }
    const qreal past = scrollY() - std::clamp<qreal>(scrollY(), -topObscured_, last());
    if (past == 0) {
        return false;
    }
    const bool isNear = std::abs(past) <= 2 * viewport()->height();
    anchor_ = isNear ? layout_.movedBy(anchor_, -past) : layout_.pagePlaceAt(scrollY() - past - inset_.height());
    viewport()->update();
    return true;
}

void TextView::syncScrollBar()
{
    keepWithinPage();
    QScrollBar* bar = verticalScrollBar();
    {
        const QScopedValueRollback syncing(isSyncingScrollBar_, true);
        bar->setPageStep(viewport()->height());
        bar->setRange(static_cast<int>(-topObscured_),
                      static_cast<int>(std::max<qreal>(0, std::ceil(pageHeight() - viewport()->height()))));
        bar->setValue(static_cast<int>(std::lround(scrollY())));
    }
    Q_EMIT visibleRectChanged();
}

void TextView::queueScrollSync()
{
    if (isScrollSyncQueued_) {
        return;
    }
    isScrollSyncQueued_ = true;
    onMainQueue(this, [this] {
        isScrollSyncQueued_ = false;
        syncScrollBar();
        if (painted_.rowsRevision != layout_.rowsRevision()) {
            viewport()->update();
        }
    });
}

void TextView::scrollBarMoved(int value)
{
    if (isSyncingScrollBar_) {
        return;
    }
    const qreal distance = value - std::round(scrollY());
    if (std::abs(distance) <= 2 * viewport()->height()) {
        scrollBy(distance);
    } else {
        setAnchor(value);
        Q_EMIT visibleRectChanged();
    }
}

void TextView::wheelEvent(QWheelEvent* event)
{
    // What X11 drivers tell as pixels is not reliable.
    static const bool hasPixels = QGuiApplication::platformName() != u"xcb";
    const int pixels = event->pixelDelta().y();
    if (!hasPixels || pixels == 0 || event->modifiers() != Qt::NoModifier) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    const PagePlace before = anchor_;
    scrollBy(-pixels);
    // At the page's end what is around the view may scroll.
    event->setAccepted(anchor_ != before);
}

void TextView::scrollContentsBy(int /*dx*/, int /*dy*/)
{
    viewport()->update();
}

void TextView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateWrapWidth();
}

template <typename Change>
void TextView::keepingTopRow(Change change)
{
    qreal within = 0;
    if (anchor_.distance > 0 || topBeforeResize_) {
        const qreal y = layout_.yOf(anchor_);
        const std::vector<TextRow> rows = layout_.rowsBetween(y, y + 1);
        if (!rows.empty()) {
            within = (y - rows.front().top) / layout_.rowHeight();
            topBeforeResize_ = topBeforeResize_.value_or(rows.front().range.location);
        }
    }
    change();
    if (topBeforeResize_) {
        const qreal top = layout_.rowOf({*topBeforeResize_, false}).top;
        anchor_ = layout_.pagePlaceAt(top + std::floor(within * layout_.rowHeight()));
    }
}

void TextView::setTextFont(const QFont& font, std::optional<qreal> rowHeight)
{
    keepingTopRow([&] { layout_.setFont(font, rowHeight); });
    verticalScrollBar()->setSingleStep(static_cast<int>(layout_.rowHeight()));
    updateWrapWidth();
    viewport()->update();
}

void TextView::setTextInset(QSizeF inset)
{
    inset_ = inset;
    updateWrapWidth();
}

void TextView::setContainerWidth(std::optional<qreal> width)
{
    containerWidth_ = width;
    updateWrapWidth();
}

void TextView::updateWrapWidth()
{
    const qreal container = containerWidth_.value_or(viewport()->width() - 2 * inset_.width());
    const qreal width = container - 2 * sidePadding;
    if (width != layout_.width()) {
        keepingTopRow([&] { layout_.setWidth(width); });
    }
    syncScrollBar();
    viewport()->update();
}

void TextView::setTopObscured(qreal height)
{
    const qreal more = height - topObscured_;
    if (more != 0) {
        topObscured_ = height;
        scrollBy(-more);
    }
}

} // namespace kelm
