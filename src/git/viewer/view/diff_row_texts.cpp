#include "git/viewer/view/diff_row_texts.h"

#include "platform/text/grapheme_boundaries.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kelm {

namespace {

/// Several screens of both sides.
constexpr std::size_t mostKept = 2000;

} // namespace

DiffRowText::DiffRowText(QStringView row, const QFont& font, qreal width) : row_(row.toString()), drawn_(drawnText(row))
{
    layout_.setText(drawn_.text);
    layout_.setFont(font);
    layout_.setCacheEnabled(true);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    // A diff reads from the left whatever its lines hold.
    option.setTextDirection(Qt::LeftToRight);
    layout_.setTextOption(option);
    layout_.beginLayout();
    QTextLine line = layout_.createLine();
    layout_.endLayout();
    if (const qreal natural = line.isValid() ? line.naturalTextWidth() : 0; natural > width && width > 0) {
        scale_ = width / natural;
    }
}

qreal DiffRowText::xOf(qsizetype unit) const
{
    const auto place = drawn_.places[std::size_t(std::clamp<qsizetype>(unit, 0, qsizetype(drawn_.places.size()) - 1))];
    return layout_.lineCount() == 0 ? 0 : layout_.lineAt(0).cursorToX(place) * scale_;
}

qsizetype DiffRowText::unitAt(qreal x) const
{
    if (layout_.lineCount() == 0) {
        return 0;
    }
    const qsizetype unit = drawn_.unitAt(layout_.lineAt(0).xToCursor(x / scale_));
    const qsizetype start = graphemeBoundaryAtOrBefore(row_, unit);
    const qsizetype end = graphemeBoundaryAtOrBehind(row_, unit);
    return std::abs(xOf(end) - x) < std::abs(xOf(start) - x) ? end : start;
}

void DiffRowText::draw(QPainter& painter, const QPointF& baseline) const
{
    if (layout_.lineCount() == 0) {
        return;
    }
    const qreal ascent = layout_.lineAt(0).ascent();
    if (scale_ == 1) {
        layout_.draw(&painter, QPointF(baseline.x(), baseline.y() - ascent));
        return;
    }
    painter.save();
    painter.translate(baseline);
    painter.scale(scale_, 1);
    layout_.draw(&painter, QPointF(0, -ascent));
    painter.restore();
}

void DiffRowTexts::setFont(const QFont& font)
{
    constexpr int sample = 100;
    font_ = font;
    cellWidth_ = std::max(1.0, QFontMetricsF(font).horizontalAdvance(QString(sample, u'0')) / sample);
    clear();
}

qsizetype DiffRowTexts::columns(qreal width) const
{
    // What rounding takes off must not cost a column.
    constexpr qreal tolerance = 0.001;
    return std::max<qsizetype>(1, static_cast<qsizetype>(width / cellWidth_ + tolerance));
}

const LineRows& DiffRowTexts::rows(QStringView line, qsizetype columns)
{
    const auto known = lines_.find(line.data());
    return known != lines_.end() ? known->second : lines_.emplace(line.data(), LineRows(line, columns)).first->second;
}

const DiffRowText& DiffRowTexts::row(QStringView line, qsizetype row, qsizetype columns, qreal width)
{
    if (texts_.size() >= mostKept || lines_.size() >= mostKept) {
        clear();
    }
    const Key key{line.data(), row};
    const auto known = texts_.find(key);
    if (known != texts_.end()) {
        return *known->second;
    }
    const LineRows& cut = rows(line, columns);
    const qsizetype start = cut.start(row);
    auto made = std::make_unique<DiffRowText>(line.sliced(start, cut.end(row) - start), font_, width);
    return *texts_.emplace(key, std::move(made)).first->second;
}

void DiffRowTexts::clear()
{
    lines_.clear();
    texts_.clear();
}

} // namespace kelm
