#include "text/find/literal_search.h"

#include "text/boundaries/word_boundary.h"

#include <unicode/uchar.h>

#include <algorithm>
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

struct AsTheyAre
{
    char16_t operator()(char16_t unit) const { return unit; }
    /// The first place from `at` on where the unit stands, or -1.
    qsizetype next(QStringView text, qsizetype at, char16_t unit) const { return text.indexOf(QChar(unit), at); }
};

struct Folded
{
    const FoldTable& table;

    char16_t operator()(char16_t unit) const { return table[unit]; }
    qsizetype next(QStringView text, qsizetype at, char16_t unit) const
    {
        const char16_t* const units = text.utf16();
        const qsizetype end = text.size();
        // Without a branch for each, so that several are looked up at once.
        const auto isAt = [&](qsizetype place) { return int(table[units[place]] == unit); };
        while (at + 4 <= end && (isAt(at) | isAt(at + 1) | isAt(at + 2) | isAt(at + 3)) == 0) {
            at += 4;
        }
        while (at < end && table[units[at]] != unit) {
            ++at;
        }
        return at < end ? at : -1;
    }
};

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

/// Calls `use` with what the units of a text are compared by.
template <typename Use>
auto LiteralSearch::withFolding(Use use) const
{
    return case_ == Case::matters ? use(AsTheyAre()) : use(Folded{foldTable()});
}

/// Goes on from `at`, what stands before it ending with the first `matched` units of what is wanted. Gives the place
/// behind the next match, or -1 where the units end first.
template <typename Fold>
qsizetype LiteralSearch::behindNext(QStringView text, qsizetype at, std::size_t& matched, Fold fold) const
{
    const char16_t* units = text.utf16();
    const qsizetype end = text.size();
    for (; at < end; ++at) {
        if (matched == 0) {
            // Most of a text is passed over here.
            at = fold.next(text, at, wanted_.front());
            if (at < 0) {
                return -1;
            }
        }
        while (matched > 0 && fold(units[at]) != wanted_[matched]) {
            matched = fallbacks_[matched - 1];
        }
        matched += fold(units[at]) == wanted_[matched] ? 1 : 0;
        if (matched == wanted_.size()) {
            return at + 1;
        }
    }
    return -1;
}

template <typename IsInside>
bool LiteralSearch::isAccepted(TextRange match, IsInside isInside) const
{
    return words_ == Words::partsToo || (!isInside(match.location) && !isInside(match.end()));
}

std::optional<TextRange> LiteralSearch::find(QStringView text, TextRange range) const
{
    if (wanted_.empty()) {
        return {};
    }
    const TextRange searched = range.clampedTo(text.size());
    const QStringView units = text.first(searched.end());
    const auto isInside = [text](qsizetype offset) { return isInsideWord(text, offset); };
    return withFolding([&](auto fold) -> std::optional<TextRange> {
        std::size_t matched = 0;
        qsizetype at = searched.location;
        while ((at = behindNext(units, at, matched, fold)) >= 0) {
            const TextRange match{at - length(), length()};
            if (isAccepted(match, isInside)) {
                return match;
            }
            matched = fallbacks_[matched - 1];
        }
        return {};
    });
}

bool LiteralSearch::enumerate(const TextTree& text, TextRange range, const std::function<bool(TextRange)>& found) const
{
    return enumerate(text, range, Overlapping::no, found);
}

bool LiteralSearch::enumerate(const TextTree& text, TextRange range, Overlapping overlapping,
                              const std::function<bool(TextRange)>& found) const
{
    if (wanted_.empty()) {
        return true;
    }
    range = range.clampedTo(text.length());
    return withFolding([&](auto fold) {
        std::size_t matched = 0;
        qsizetype start = range.location;
        return text.forEachPiece(range, [&](QStringView piece) {
            const auto isInside = [&](qsizetype offset) {
                const qsizetype in = offset - start;
                if (in >= context && in + context <= piece.size()) {
                    return isInsideWord(piece, in);
                }
                const qsizetype from = std::max<qsizetype>(offset - context, 0);
                return isInsideWord(text.substring({from, offset + context - from}), offset - from);
            };
            qsizetype at = 0;
            while ((at = behindNext(piece, at, matched, fold)) >= 0) {
                const TextRange match{start + at - length(), length()};
                const bool isOne = isAccepted(match, isInside);
                if (isOne && !found(match)) {
                    return false;
                }
                matched = isOne && overlapping == Overlapping::no ? 0 : fallbacks_[matched - 1];
            }
            start += piece.size();
            return true;
        });
    });
}

std::optional<qsizetype> LiteralSearch::restartBefore(const TextTree& text, qsizetype offset, qsizetype furthest) const
{
    const qsizetype wanted = length();
    for (qsizetype back = 2 * wanted;; back *= 4) {
        const qsizetype from = std::max<qsizetype>(offset - back, 0);
        // A run of places that overlap. One that stands in the text before `from` may go on up to here.
        qsizetype runStart = from;
        qsizetype runEnd = from == 0 ? 0 : from + wanted - 1;
        bool isStartKnown = from == 0;
        enumerate(text, TextRange::between(from, std::min(offset + wanted - 1, text.length())), Overlapping::yes,
                  [&](TextRange place) {
                      if (place.location >= runEnd) {
                          runStart = place.location;
                          isStartKnown = true;
                      }
                      runEnd = std::max(runEnd, place.end());
                      return true;
                  });
        if (runEnd <= offset) {
            return offset;
        }
        if (isStartKnown) {
            return runStart;
        }
        if (back >= furthest) {
            return {};
        }
    }
}

} // namespace kelm
