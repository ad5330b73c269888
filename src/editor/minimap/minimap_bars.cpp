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

/// The characters of a line, counted no further than the longest bar shows.
qreal barWidth(const TextTree& text, TextRange line, qreal longest)
{
    const auto shown = static_cast<qsizetype>(std::ceil(longest / MinimapGeometry::charWidth));
    // A character that joins the one before it is none of ASCII's.
    const QString head = text.substring(line.intersected({line.location, shown + 1}));
    const qsizetype plain = std::min(shown, line.length - 1);
    qsizetype offset = 0;
    while (offset < plain && head[offset].unicode() < 0x80 && head[offset] != u'\r') {
        ++offset;
    }
    offset = std::max<qsizetype>(0, offset - 1);
    qsizetype count = offset;
    while (count < shown && offset < line.length) {
        offset = std::min(nextGraphemeBoundary(text, line.location + offset) - line.location, line.length);
        ++count;
    }
    return std::min(static_cast<qreal>(count) * MinimapGeometry::charWidth, longest);
}

/// The lines of a text between its line feeds, from one back to those before it. The text is taken out some lines at a
/// time, since most lines are short.
class LinesBackwards
{
public:
    /// Begins with the line before that number.
    LinesBackwards(const TextTree& text, qsizetype end) : text_(text), line_(end)
    {
        const bool isLast = end == text.lineFeeds() + 1;
        lineEnd_ = isLast ? text.length() : text.behindLineFeeds(end) - 1;
    }

    /// The next line before, without its line feed.
    TextRange next()
    {
        --line_;
        const TextRange line = TextRange::between(startOf(lineEnd_), lineEnd_);
        lineEnd_ = line.location - 1;
        return line;
    }
    /// The number of the line that `next` gave.
    qsizetype number() const { return line_; }

private:
    qsizetype startOf(qsizetype lineEnd)
    {
        constexpr qsizetype stretch = 1024;
        if (lineEnd < known_.location || lineEnd > known_.end()) {
            known_ = TextRange::between(std::max<qsizetype>(0, lineEnd - stretch), lineEnd);
            units_ = text_.substring(known_);
        }
        const QStringView before = QStringView(units_).first(lineEnd - known_.location);
        if (const qsizetype found = before.lastIndexOf(u'\n'); found >= 0) {
            return known_.location + found + 1;
        }
        return known_.location == 0 ? 0 : text_.behindLineFeeds(line_);
    }

    const TextTree& text_;
    qsizetype line_;
    qsizetype lineEnd_ = 0;
    TextRange known_;
    QString units_;
};

/// The bars that begin within one pixel. The later lie over the earlier, so they are looked at from the last on: a bar
/// that others at least as long have covered often enough cannot be seen.
class BarsOfPixel
{
public:
    BarsOfPixel(const MinimapGeometry& geometry, const EditorTheme& theme)
        : geometry_(geometry), theme_(theme), longest_(geometry.longestBar())
    {}

    /// Those of the pixel's lines, the last one first.
    std::vector<MinimapBar> of(const TextTree& text, MinimapPixel pixel)
    {
        std::vector<MinimapBar> seen;
        LinesBackwards lines(text, pixel.end);
        while (lines.number() > pixel.first && !isCovered(longest_)) {
            const TextRange line = lines.next();
            // No longer than its units are, which is told without reading it.
            if (line.isEmpty() || isCovered(static_cast<qreal>(line.length) * MinimapGeometry::charWidth)) {
                continue;
            }
            const qreal width = barWidth(text, line, longest_);
            if (isCovered(width)) {
                continue;
            }
            if (const QColor color = minimapLineColor(text, line, theme_); color.alpha() > 0) {
                seen.push_back({geometry_.barY(lines.number()), width, color, covers_.back()});
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

QColor minimapLineColor(const TextTree& text, TextRange line, const EditorTheme& theme)
{
    constexpr qsizetype ordinary = 1024;
    if (line.length <= ordinary) {
        return minimapLineColor(text.substring(line), theme);
    }
    // Of a long line its beginning says nearly all; the rest is asked for quotes, and whether there is anything.
    qsizetype blanks = 0;
    text.forEachPiece(line, [&blanks](QStringView piece) {
        const auto found = std::find_if_not(piece.begin(), piece.end(), isBlank);
        blanks += found - piece.begin();
        return found == piece.end();
    });
    const TextRange rest{line.location + blanks, line.length - blanks};
    const bool hasQuote =
        !text.forEachPiece(rest, [](QStringView piece) { return !piece.contains(u'"') && !piece.contains(u'\''); });
    const bool endsInHead =
        text.forEachPiece({rest.location + ordinary, std::max<qsizetype>(rest.length - ordinary, 0)},
                          [](QStringView piece) { return std::all_of(piece.begin(), piece.end(), isBlank); });
    QString said = text.substring({rest.location, std::min(rest.length, ordinary)});
    if (hasQuote) {
        said += u'"';
    } else if (!endsInHead) {
        said += u'x';
    }
    return minimapLineColor(said, theme);
}

std::vector<MinimapPixel> minimapPixels(const MinimapGeometry& geometry, qreal pixelRatio)
{
    std::vector<MinimapPixel> pixels;
    if (!geometry.isDrawable()) {
        return pixels;
    }
    const qreal pitch = geometry.scale() * MinimapGeometry::lineHeight;
    for (qsizetype first = 0; first < geometry.lineCount && geometry.barY(first) <= geometry.height;) {
        const qreal pixelEnd = (std::floor(geometry.barY(first) * pixelRatio) + 1) / pixelRatio;
        const auto next = static_cast<qsizetype>(std::ceil((pixelEnd - MinimapGeometry::topMargin) / pitch));
        // Bars begin within the map.
        const auto behindLast =
            static_cast<qsizetype>(std::floor((geometry.height - MinimapGeometry::topMargin) / pitch)) + 1;
        const qsizetype end = std::clamp(std::min(next, behindLast), first + 1, geometry.lineCount);
        pixels.push_back({first, end});
        first = end;
    }
    return pixels;
}

std::vector<MinimapBar> minimapBarsIn(const TextTree& text, MinimapPixel pixel, const MinimapGeometry& geometry,
                                      const EditorTheme& theme)
{
    std::vector<MinimapBar> bars = BarsOfPixel(geometry, theme).of(text, pixel);
    std::reverse(bars.begin(), bars.end());
    return bars;
}

std::vector<MinimapBar> minimapBars(const TextStorage& storage, const MinimapGeometry& geometry,
                                    const EditorTheme& theme, qreal pixelRatio)
{
    std::vector<MinimapBar> bars;
    for (const MinimapPixel pixel : minimapPixels(geometry, pixelRatio)) {
        const std::vector<MinimapBar> seen = minimapBarsIn(storage.tree(), pixel, geometry, theme);
        bars.insert(bars.end(), seen.begin(), seen.end());
    }
    return bars;
}

} // namespace kelm
