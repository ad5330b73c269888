#include "editor/highlighter/rule_painting.h"

#include "editor/highlighter/painted_text.h"
#include "editor/highlighter/pattern_scanner.h"

#include <limits>

namespace kelm {

std::vector<ColorRun> paintRules(QStringView text, QRgb textColor, std::span<const HighlightRule> rules)
{
    Q_ASSERT(rules.size() <= std::numeric_limits<quint8>::max());
    const ScannedText scanned(text);
    PaintedText painted(text.size());
    std::vector<QRgb> colors{textColor};
    for (const HighlightRule& rule : rules) {
        const auto coat = static_cast<quint8>(colors.size());
        colors.push_back(rule.color.rgba());
        if (const auto scanner = scannerFor(rule.pattern, rule.options)) {
            scanMatches(*scanner, scanned, [&](qsizetype start, qsizetype end) { painted.paint(start, end, coat); });
        } else if (const auto expression = RegularExpression::compile(rule.pattern, rule.options)) {
            expression->enumerateMatches(text, 0, [&](const RegularExpressionMatch& match) {
                painted.paint(match.location(), match.end(), coat);
                return true;
            });
        }
    }
    return painted.runs(colors);
}

} // namespace kelm
