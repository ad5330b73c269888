#include "text/find/literal_search.h"

#include "text/boundaries/word_boundary.h"

#include <unicode/uchar.h>

#include <array>
#include <memory>

namespace kelm {
namespace {

using FoldTable = std::array<char16_t, 0x10000>;

/// The simple case folding of each unit, computed once: a search looks up every unit of a text.
const FoldTable& foldTable()
{
    static const std::unique_ptr<const FoldTable> table = [] {
        auto units = std::make_unique<FoldTable>();
        for (UChar32 unit = 0; unit < UChar32(units->size()); ++unit) {
            const UChar32 folded = u_foldCase(unit, U_FOLD_CASE_DEFAULT);
            (*units)[size_t(unit)] = char16_t(folded < UChar32(units->size()) ? folded : unit);
        }
        return units;
    }();
    return *table;
}

} // namespace

LiteralSearch::LiteralSearch(QStringView wanted, Case letterCase, Words words)
    : wanted_(wanted.utf16(), wanted.utf16() + wanted.size()),
      fallbacks_(wanted_.size()),
      case_(letterCase),
      words_(words)
{
    if (case_ == Case::isIgnored) {
        for (char16_t& unit : wanted_) {
            unit = foldTable()[unit];
        }
    }
    for (size_t i = 1, length = 0; i < wanted_.size(); ++i) {
        while (length > 0 && wanted_[i] != wanted_[length]) {
            length = fallbacks_[length - 1];
        }
        length += wanted_[i] == wanted_[length] ? 1 : 0;
        fallbacks_[i] = length;
    }
}

std::optional<TextRange> LiteralSearch::find(QStringView text, TextRange range) const
{
    if (case_ == Case::matters) {
        return find(text, range, [](char16_t unit) { return unit; });
    }
    return find(text, range, [&table = foldTable()](char16_t unit) { return table[unit]; });
}

template <typename Fold>
std::optional<TextRange> LiteralSearch::find(QStringView text, TextRange range, Fold fold) const
{
    if (wanted_.empty()) {
        return {};
    }
    const TextRange searched = range.clampedTo(text.size());
    const char16_t* units = text.utf16();
    const qsizetype end = searched.end();
    size_t matched = 0;
    for (qsizetype at = searched.location; at < end; ++at) {
        if (matched == 0) {
            // Most of a text is passed over here.
            while (at < end && fold(units[at]) != wanted_.front()) {
                ++at;
            }
            if (at == end) {
                return {};
            }
        }
        while (matched > 0 && fold(units[at]) != wanted_[matched]) {
            matched = fallbacks_[matched - 1];
        }
        matched += fold(units[at]) == wanted_[matched] ? 1 : 0;
        if (matched == wanted_.size()) {
            const TextRange match{at + 1 - length(), length()};
            if (isAccepted(text, match)) {
                return match;
            }
            matched = fallbacks_[matched - 1];
        }
    }
    return {};
}

bool LiteralSearch::isAccepted(QStringView text, TextRange match) const
{
    return words_ == Words::partsToo || (!isInsideWord(text, match.location) && !isInsideWord(text, match.end()));
}

} // namespace kelm
