#include "text/find/near_matches.h"

#include <algorithm>

namespace kelm {

namespace {

constexpr qsizetype furthest = 1 << 18;

} // namespace

std::vector<TextRange> matchesNear(const LiteralSearch& wanted, const TextTree& text, TextRange range)
{
    const qsizetype from = std::max<qsizetype>(range.location - wanted.length(), 0);
    const qsizetype start = wanted.restartBefore(text, from, furthest).value_or(from);
    const qsizetype end = std::min(range.end() + wanted.length(), start + furthest + 2 * wanted.length());
    std::vector<TextRange> matches;
    wanted.enumerate(text, TextRange::between(start, end), [&](TextRange match) {
        if (match.end() >= range.location && match.location <= range.end()) {
            matches.push_back(match);
        }
        return match.location <= range.end();
    });
    return matches;
}

std::optional<TextRange> nextNear(const LiteralSearch& wanted, const TextTree& text, qsizetype offset)
{
    const auto start = wanted.restartBefore(text, offset, furthest);
    if (!start) {
        return {};
    }
    std::optional<TextRange> next;
    wanted.enumerate(text, {*start, offset - *start + furthest + wanted.length()}, [&](TextRange match) {
        if (match.location >= offset) {
            next = match;
        }
        return !next;
    });
    return next;
}

std::optional<TextRange> previousNear(const LiteralSearch& wanted, const TextTree& text, qsizetype offset)
{
    for (qsizetype back = furthest / 64; back <= furthest; back *= 4) {
        const qsizetype from = std::max<qsizetype>(offset - back - wanted.length(), 0);
        const auto start = wanted.restartBefore(text, from, furthest);
        if (!start) {
            return {};
        }
        std::optional<TextRange> last;
        wanted.enumerate(text, TextRange::between(*start, offset), [&](TextRange match) {
            last = match;
            return true;
        });
        if (last || from == 0) {
            return last;
        }
    }
    return {};
}

} // namespace kelm
