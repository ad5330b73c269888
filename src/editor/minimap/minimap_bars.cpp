#include "editor/minimap/minimap_bars.h"

#include "text/boundaries/text_boundaries.h"

#include <QRectF>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace kelm {

namespace {

/// How many bars hide what lies under them: a bar's tint is at least half opaque, so that at most a sixtieth of it is
/// left to be seen.
constexpr std::size_t barsPerPixel = 6;

/// Words with which a line of code begins.
constexpr std::array<QStringView, 13> keywordPrefixes{u"func", u"def",   u"class",  u"struct", u"enum", u"if", u"else",
                                                      u"for",  u"while", u"import", u"return", u"let",  u"var"};

bool isBlank(QChar unit)
{
    return unit == u' ' || unit == u'\t';
}

QStringView trimmed(QStringView line)
{
    while (!line.isEmpty() && isBlank(line.front())) {
        line = line.mid(1);
    }
    while (!line.isEmpty() && isBlank(line.back())) {
        line.chop(1);
    }
    return line;
}

bool beginsWithKeyword(QStringView line)
{
    return std::any_of(keywordPrefixes.begin(), keywordPrefixes.end(), [line](QStringView prefix) {
        return line.startsWith(prefix) && line.size() > prefix.size() &&
               (line[prefix.size()] == u' ' || line[prefix.size()] == u'(');
    });
}

QColor withAlpha(const CodableColor& color, float alpha)
{
    QColor result = color.toColor();
    result.setAlphaF(alpha);
    return result;
}

/// The line's characters, counted no further than the longest bar shows.
qreal barWidth(QStringView line, qreal longest)
{
    const auto shown = static_cast<qsizetype>(std::ceil(longest / MinimapGeometry::charWidth));
    qsizetype offset = 0;
    qsizetype count = 0;
    const qsizetype plain = std::min(shown, line.size() - 1);
    // A character that joins the one before it is none of ASCII's.
    while (offset < plain && line[offset].unicode() < 0x80 && line[offset] != u'\r') {
        ++offset;
    }
    offset = std::max<qsizetype>(0, offset - 1);
    count = offset;
    while (count < shown && offset < line.size()) {
        offset = nextGraphemeBoundary(line, offset);
        ++count;
    }
    return std::min(static_cast<qreal>(count) * MinimapGeometry::charWidth, longest);
}

/// The lines of a text between its line feeds, by number.
class LineFeedLines
{
public:
    explicit LineFeedLines(const TextTree& text) : text_(text) {}

    qsizetype count() const { return text_.lineFeeds() + 1; }
    qsizetype startOf(qsizetype number) const { return text_.behindLineFeeds(number); }
    /// The offset of the line's line feed, or of the text's end.
    qsizetype endOf(qsizetype number) const { return number + 1 == count() ? text_.length() : startOf(number + 1) - 1; }
    const TextTree& text() const { return text_; }

private:
    const TextTree& text_;
};

/// The bars that begin within one pixel. The later lie over the earlier, so they are looked at from the last on: a bar
/// that others at least as long have covered often enough cannot be seen.
class BarsOfPixel
{
public:
    BarsOfPixel(const MinimapGeometry& geometry, const EditorTheme& theme)
        : geometry_(geometry), theme_(theme), longest_(geometry.longestBar())
    {}

    /// Those of the lines from `first` up to `end`, the last one first.
    std::vector<MinimapBar> of(const LineFeedLines& lines, qsizetype first, qsizetype end)
    {
        std::vector<MinimapBar> seen;
        qsizetype lineEnd = lines.endOf(end - 1);
        for (qsizetype number = end - 1; number >= first && !isCovered(longest_); --number) {
            const qsizetype start = lines.startOf(number);
            const qsizetype length = lineEnd - start;
            lineEnd = start - 1;
            // No longer than its units are, which is told without reading it.
            if (length == 0 || isCovered(static_cast<qreal>(length) * MinimapGeometry::charWidth)) {
                continue;
            }
            const QString line = lines.text().substring({start, length});
            const qreal width = barWidth(line, longest_);
            if (isCovered(width)) {
                continue;
            }
            if (const QColor color = minimapLineColor(line, theme_); color.alpha() > 0) {
                seen.push_back({geometry_.barY(number), width, color, covers_.back()});
                cover(width);
            }
        }
        return seen;
    }

private:
    bool isCovered(qreal width) const { return covers_.back() >= width; }

    void cover(qreal width)
    {
        const auto place = std::upper_bound(covers_.begin(), covers_.end(), width, std::greater<>());
        std::move_backward(place, covers_.end() - 1, covers_.end());
        *place = width;
    }

    const MinimapGeometry& geometry_;
    const EditorTheme& theme_;
    qreal longest_;
    /// The widths of the longest bars so far, falling.
    std::array<qreal, barsPerPixel> covers_{};
};

} // namespace

qreal MinimapGeometry::scale() const
{
    return std::min(1.0, (height - 10) / (static_cast<qreal>(lineCount) * lineHeight));
}

qreal MinimapGeometry::barHeight() const
{
    return std::max(1.0, scale() * lineHeight * 0.8);
}

QRectF MinimapGeometry::viewportBox(const QRectF& visibleRect) const
{
    const qreal first = std::trunc(visibleRect.y() / textLineHeight);
    const qreal last = std::trunc((visibleRect.y() + visibleRect.height()) / textLineHeight);
    return {0, scale() * first * lineHeight + topMargin, width, std::max(20.0, scale() * (last - first) * lineHeight)};
}

qsizetype MinimapGeometry::lineAt(qreal y) const
{
    const qreal line = std::trunc((y - topMargin) / (scale() * lineHeight)) + 1;
    return static_cast<qsizetype>(std::clamp<qreal>(line, 1, static_cast<qreal>(lineCount)));
}

qsizetype minimapLineCount(const TextStorage& storage)
{
    return storage.tree().lineFeeds() + 1;
}

QColor minimapLineColor(QStringView line, const EditorTheme& theme)
{
    const QStringView text = trimmed(line);
    if (text.isEmpty()) {
        return Qt::transparent;
    }
    if (text.startsWith(u"//") || text.startsWith(u'#')) {
        return withAlpha(theme.commentColor, 0.7F);
    }
    if (text.contains(u'"') || text.contains(u'\'')) {
        return withAlpha(theme.stringColor, 0.7F);
    }
    if (beginsWithKeyword(text)) {
        return withAlpha(theme.keywordColor, 0.8F);
    }
    return QColor::fromRgbF(1, 1, 1, 0.5F);
}

std::vector<MinimapBar> minimapBars(const TextStorage& storage, const MinimapGeometry& geometry,
                                    const EditorTheme& theme, qreal pixelRatio)
{
    std::vector<MinimapBar> bars;
    if (!geometry.isDrawable()) {
        return bars;
    }
    const LineFeedLines lines(storage.tree());
    const qreal pitch = geometry.scale() * MinimapGeometry::lineHeight;
    for (qsizetype first = 0; first < lines.count() && geometry.barY(first) <= geometry.height;) {
        const qreal pixelEnd = (std::floor(geometry.barY(first) * pixelRatio) + 1) / pixelRatio;
        const auto next = static_cast<qsizetype>(std::ceil((pixelEnd - MinimapGeometry::topMargin) / pitch));
        // Bars begin within the map.
        const auto behindLast =
            static_cast<qsizetype>(std::floor((geometry.height - MinimapGeometry::topMargin) / pitch)) + 1;
        const qsizetype end = std::clamp(std::min(next, behindLast), first + 1, lines.count());
        const std::vector<MinimapBar> seen = BarsOfPixel(geometry, theme).of(lines, first, end);
        bars.insert(bars.end(), seen.rbegin(), seen.rend());
        first = end;
    }
    return bars;
}

} // namespace kelm
