#include "editor/kept_ready/bracket_match.h"

#include <algorithm>
#include <array>

namespace kelm {

namespace {

struct BracketPair
{
    char16_t bracket;
    char16_t partner;
    bool opens;
};

constexpr std::array bracketPairs{
    BracketPair{u'(', u')', true},  BracketPair{u'[', u']', true},  BracketPair{u'{', u'}', true},
    BracketPair{u')', u'(', false}, BracketPair{u']', u'[', false}, BracketPair{u'}', u'{', false},
};

} // namespace

std::optional<qsizetype> partnerOfBracketBefore(QStringView text, qsizetype location)
{
    if (location < 1 || location > text.size()) {
        return {};
    }
    const char16_t bracket = text[location - 1].unicode();
    const auto pair = std::find_if(bracketPairs.begin(), bracketPairs.end(),
                                   [bracket](const BracketPair& entry) { return entry.bracket == bracket; });
    if (pair == bracketPairs.end()) {
        return {};
    }
    const qsizetype step = pair->opens ? 1 : -1;
    qsizetype depth = 1;
    for (qsizetype at = location - 1 + step; at >= 0 && at < text.size(); at += step) {
        if (text[at] == pair->bracket) {
            ++depth;
        } else if (text[at] == pair->partner && --depth == 0) {
            return at;
        }
    }
    return {};
}

} // namespace kelm
