#include "editor/minimap/minimap_bars.h"

#include "text/text_boundaries.h"

#include <QRectF>

#include <algorithm>
#include <array>
#include <cmath>

namespace kelm {

namespace {

/// How many bars are painted over one pixel at most. A bar's tint is at least half opaque, so that of what lies under
/// this many of them less than a thousandth is left to be seen.
constexpr qsizetype barsPerPixel = 12;

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
    explicit LineFeedLines(const TextStorage& storage) : storage_(storage)
    {
        if (storage.lines().oddTerminators() == 0) {
            return;
        }
        // Some lines of the index end in something else: the line feeds are looked for.
        const QString& text = storage.text();
        starts_.push_back(0);
        for (qsizetype at = text.indexOf(u'\n'); at >= 0; at = text.indexOf(u'\n', at + 1)) {
            starts_.push_back(at + 1);
        }
    }

    qsizetype count() const
    {
        return starts_.empty() ? storage_.lines().lineCount() : static_cast<qsizetype>(starts_.size());
    }

    QStringView line(qsizetype number) const
    {
        const qsizetype start = startOf(number);
        const bool isLast = number + 1 == count();
        const qsizetype end = isLast ? storage_.length() : startOf(number + 1) - 1;
        return QStringView(storage_.text()).mid(start, end - start);
    }

private:
    qsizetype startOf(qsizetype number) const
    {
        return starts_.empty() ? storage_.lines().start(number) : starts_[static_cast<std::size_t>(number)];
    }

    const TextStorage& storage_;
    std::vector<qsizetype> starts_;
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
    return LineFeedLines(storage).count();
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
    const LineFeedLines lines(storage);
    const qreal pitch = geometry.scale() * MinimapGeometry::lineHeight;
    // The bars that begin within one pixel; of more than a few only the last can be seen.
    const qreal linesPerPixel = 1 / (pitch * pixelRatio);
    const bool isCrowded = linesPerPixel > static_cast<qreal>(barsPerPixel);
    for (qsizetype number = 0; number < lines.count(); ++number) {
        const qreal y = geometry.barY(number);
        if (y > geometry.height) {
            break;
        }
        if (isCrowded) {
            const qreal pixelEnd = std::floor(y * pixelRatio) + 1;
            const auto firstOfNext =
                static_cast<qsizetype>(std::ceil((pixelEnd / pixelRatio - MinimapGeometry::topMargin) / pitch));
            number = std::clamp(firstOfNext - barsPerPixel, number, lines.count() - 1);
        }
        const QStringView line = lines.line(number);
        const QColor color = minimapLineColor(line, theme);
        const qreal width = color.alpha() == 0 ? 0 : barWidth(line, geometry.longestBar());
        if (width > 0) {
            bars.push_back({geometry.barY(number), width, color});
        }
    }
    return bars;
}

} // namespace kelm
