#include "platform/view/row_painter.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace kelm {

namespace {

constexpr int sideSpace = 8;
constexpr int pieceSpace = 6;
constexpr int symbolSize = 13;
constexpr int lineSpace = 2;
/// More units than any row has room for: a subject of a million letters is not measured as a whole.
constexpr qsizetype mostUnits = 2000;

QString bounded(const RowText& piece)
{
    const QString& text = piece.text;
    if (text.size() <= mostUnits) {
        return text;
    }
    return piece.elideMode == Qt::ElideRight ? text.first(mostUnits)
                                             : text.first(mostUnits / 2) + u'…' + text.last(mostUnits / 2);
}

int naturalWidth(const RowText& piece)
{
    return std::max(piece.leastWidth, QFontMetrics(piece.font).horizontalAdvance(bounded(piece)) + 1);
}

void paintLine(QPainter& painter, const QRect& rectangle, const QList<RowText>& pieces, Appearance appearance)
{
    const QList<int> widths = pieceWidths(pieces, rectangle.width());
    int x = rectangle.left();
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const RowText& piece = pieces[i];
        painter.setFont(piece.font);
        painter.setPen(style::ink(piece.tint, appearance));
        const QString shown = QFontMetrics(piece.font).elidedText(bounded(piece), piece.elideMode, widths[i]);
        painter.drawText(QRect(x, rectangle.top(), widths[i], rectangle.height()),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
        x += widths[i] + pieceSpace;
    }
}

int lineHeight(const QList<RowText>& pieces)
{
    int height = 0;
    for (const RowText& piece : pieces) {
        height = std::max(height, QFontMetrics(piece.font).height());
    }
    return height;
}

} // namespace

QList<int> pieceWidths(const QList<RowText>& pieces, int width)
{
    QList<int> widths;
    QList<qsizetype> giving;
    int rest = width - pieceSpace * static_cast<int>(std::max<qsizetype>(0, pieces.size() - 1));
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        widths.append(naturalWidth(pieces[i]));
        if (pieces[i].givesWay) {
            giving.append(i);
        } else {
            rest -= widths[i];
        }
    }
    // The narrowest first: what it does not need goes to the others.
    std::sort(giving.begin(), giving.end(), [&](qsizetype a, qsizetype b) { return widths[a] < widths[b]; });
    for (qsizetype i = 0; i < giving.size(); ++i) {
        const int share = std::max(0, rest) / static_cast<int>(giving.size() - i);
        widths[giving[i]] = std::min(widths[giving[i]], share);
        rest -= widths[giving[i]];
    }
    return widths;
}

void paintSectionTitle(QPainter& painter, const QRect& rectangle, const QString& title, Appearance appearance)
{
    painter.setFont(RowFonts::standard().mark);
    painter.setPen(Tint::secondary().in(appearance));
    painter.drawText(rectangle.adjusted(sideSpace, 2, -sideSpace, 0),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, title);
}

void paintRow(QPainter& painter, const QRect& rectangle, const Row& row, int trailingSpace, Appearance appearance)
{
    QRect place = rectangle.adjusted(sideSpace, 0, -sideSpace - trailingSpace, 0);
    if (!row.symbol.isEmpty()) {
        const QRectF box(place.left(), place.top() + (place.height() - symbolSize) / 2.0, symbolSize, symbolSize);
        icons::paint(painter, row.symbol, box, style::ink(row.symbolTint, appearance));
        place.setLeft(place.left() + symbolSize + pieceSpace);
    }
    if (place.width() <= 0) {
        return;
    }
    if (row.secondLine.isEmpty()) {
        paintLine(painter, place, row.firstLine, appearance);
        return;
    }
    const int first = lineHeight(row.firstLine);
    const int second = lineHeight(row.secondLine);
    const int top = place.top() + (place.height() - first - second - lineSpace) / 2;
    paintLine(painter, {place.left(), top, place.width(), first}, row.firstLine, appearance);
    paintLine(painter, {place.left(), top + first + lineSpace, place.width(), second}, row.secondLine, appearance);
}

} // namespace kelm
