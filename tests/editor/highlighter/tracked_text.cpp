#include "editor/highlighter/tracked_text.h"

namespace kelm::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QRgb plain = 0xff000001;

/// The rules of a list, each with a colour of its own.
std::vector<HighlightRule> rulesOf(RuleList list)
{
    std::vector<HighlightRule> rules;
    for (const RuleEntry& entry : list) {
        rules.push_back({entry.patternText(), QColor::fromRgba(plain + 1 + QRgb(rules.size())), entry.options});
    }
    return rules;
}

std::vector<QRgb> colorsOf(RuleList list)
{
    std::vector<QRgb> colors;
    for (QRgb i = 0; i <= list.size(); ++i) {
        colors.push_back(plain + i);
    }
    return colors;
}

/// One colour a unit.
std::vector<QRgb> unitColors(const std::vector<ColorRun>& runs)
{
    std::vector<QRgb> colors;
    for (const ColorRun& run : runs) {
        colors.insert(colors.end(), static_cast<std::size_t>(run.range.length), run.color);
    }
    return colors;
}

} // namespace

std::vector<ColorRun> cut(const std::vector<ColorRun>& runs, TextRange range)
{
    std::vector<ColorRun> result;
    for (const ColorRun& run : runs) {
        if (const TextRange part = run.range.intersected(range); !part.isEmpty()) {
            result.push_back({part, run.color});
        }
    }
    return result;
}

QString shown(QStringView text)
{
    QString result;
    for (const QChar unit : text) {
        result += unit.unicode() >= 0x20 && unit.unicode() < 0x7f
                      ? QString(unit)
                      : QStringLiteral("\\x%1").arg(unit.unicode(), 4, 16, QLatin1Char('0'));
    }
    return result;
}

TrackedText::TrackedText(RuleList list, const QString& initial, ScanSizes sizes)
    : text(initial), tree(initial), tracks(list, sizes), rules_(rulesOf(list)), colors_(colorsOf(list))
{
    tracks.reset(text.size());
    shown_.assign(static_cast<std::size_t>(text.size()), 0);
}

void TrackedText::replace(TextRange range, const QString& replacement)
{
    text.replace(range.location, range.length, replacement);
    tree.replace(range, replacement);
    tracks.textReplaced(range, replacement.size());
    const auto first = shown_.begin() + range.location;
    shown_.insert(shown_.erase(first, first + range.length), static_cast<std::size_t>(replacement.size()), 0);
}

void TrackedText::settle(qsizetype mostUnits)
{
    qsizetype behind = -1;
    for (const TextRange range : tracks.settle(tree, mostUnits)) {
        areRangesInOrder_ = areRangesInOrder_ && range.location > behind && range.end() <= text.size();
        behind = range.end();
        std::fill_n(shown_.begin() + range.location, range.length, 0);
    }
}

std::vector<ColorRun> TrackedText::expected() const
{
    return paintRules(text, plain, rules_);
}

QString TrackedText::fault(RandomText& random)
{
    const std::vector<ColorRun> wanted = expected();
    if (!tracks.isSettled() || !areRangesInOrder_) {
        return u"not settled, or ranges out of order"_s;
    }
    for (int i = 0; i < 3; ++i) {
        const TextRange range = i == 0 ? TextRange{0, text.size()} : random.range(text.size());
        if (colorsIn(range) != cut(wanted, range)) {
            return u"colours of %1 to %2 of %3 in: %4"_s.arg(range.location)
                .arg(range.end())
                .arg(text.size())
                .arg(shown(QStringView(text).left(3000)));
        }
    }
    const std::vector<QRgb> colors = unitColors(wanted);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        if (shown_[i] != 0 && shown_[i] != colors[i]) {
            return u"%1 has changed and was not told, in: %2"_s.arg(i).arg(shown(QStringView(text).left(3000)));
        }
    }
    shown_ = colors;
    return {};
}

} // namespace kelm::test
