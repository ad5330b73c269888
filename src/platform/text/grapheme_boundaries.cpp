#include "platform/text/grapheme_boundaries.h"

#include "platform/text/break_iterator.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>

namespace kelm {

namespace {

/// How a code point stands among its neighbours, as far as that is plain without looking farther.
enum class Joining : quint8 {
    /// Joins neither what stands before it nor what stands behind it, as long as that is no `other`; marks follow it.
    letter,
    /// Nothing joins it, but a line feed the carriage return before it.
    control,
    /// Joins what stands before it, unless that is a control, and nothing behind it but further marks.
    mark,
    /// Whatever only the rules tell: joiners, the signs that leave out a vowel, letters of Korean syllables and of
    /// flags, what stands before a letter, halves of pairs.
    other,
};

Joining joiningOf(char32_t character)
{
    constexpr uint8_t virama = 9;
    const auto point = static_cast<UChar32>(character);
    if (QChar::isSurrogate(character)) {
        return Joining::other;
    }
    switch (u_getIntPropertyValue(point, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_OTHER:
    case U_GCB_LV:
    case U_GCB_LVT:
        return Joining::letter;
    case U_GCB_CONTROL:
    case U_GCB_CR:
    case U_GCB_LF:
        return Joining::control;
    case U_GCB_EXTEND:
    case U_GCB_SPACING_MARK:
        return u_getCombiningClass(point) == virama ? Joining::other : Joining::mark;
    default:
        return Joining::other;
    }
}

/// Those of all single units. Made within a millisecond, at the first text that is not plain.
class UnitJoining
{
public:
    static Joining of(char16_t unit)
    {
        static const UnitJoining table;
        return table.units_[unit];
    }

private:
    UnitJoining()
    {
        for (std::size_t unit = 0; unit < units_.size(); ++unit) {
            units_[unit] = joiningOf(static_cast<char32_t>(unit));
        }
    }

    std::array<Joining, 0x10000> units_{};
};

/// Whether a unit joins neither what stands before it nor what stands behind it, as long as that is one of its kind as
/// well.
bool standsAlone(char16_t unit)
{
    return unit < 0x80 || UnitJoining::of(unit) <= Joining::control;
}

/// Whether a character surely ends between two units; where it is false nothing is said.
bool partSurely(char16_t before, char16_t behind)
{
    return standsAlone(before) && standsAlone(behind) && (before != u'\r' || behind != u'\n');
}

/// A code point and where it ends.
struct CodePoint
{
    Joining joining;
    qsizetype end;

    CodePoint(QStringView text, qsizetype at) : joining(UnitJoining::of(text[at].unicode())), end(at + 1)
    {
        if (text[at].isHighSurrogate() && end < text.size() && text[end].isLowSurrogate()) {
            joining = joiningOf(QChar::surrogateToUcs4(text[at], text[end]));
            ++end;
        }
    }
};

/// The end of a character that is a letter and its marks, and is followed by another letter; 0 where it is not that
/// plain.
qsizetype plainEnd(QStringView text, qsizetype start)
{
    const CodePoint letter(text, start);
    if (letter.joining != Joining::letter) {
        return 0;
    }
    for (qsizetype at = letter.end; at < text.size();) {
        const CodePoint next(text, at);
        if (next.joining != Joining::mark) {
            return next.joining == Joining::other ? 0 : at;
        }
        at = next.end;
    }
    return text.size();
}

/// The units around one place of a text.
class Units
{
public:
    explicit Units(const UnitSource& text) : text_(text) {}

    char16_t at(qsizetype offset)
    {
        if (offset < stretch_.start || offset >= stretch_.start + stretch_.units.size()) {
            stretch_ = text_.stretchAt(offset);
        }
        return stretch_.units[offset - stretch_.start].unicode();
    }

    /// Whether the place stands between the halves of a pair.
    bool isInPair(qsizetype offset)
    {
        return offset > 0 && offset < text_.length() && QChar::isLowSurrogate(at(offset)) &&
               QChar::isHighSurrogate(at(offset - 1));
    }

    /// Whether one of the letters that make flags in twos ends at a place.
    bool flagLetterEnds(qsizetype offset)
    {
        return offset >= 2 && isFlagLetterLow(at(offset - 1)) && at(offset - 2) == flagLetterHigh;
    }

    /// Where the run of such letters begins that ends at a place.
    qsizetype flagRunStart(qsizetype offset)
    {
        while (flagLetterEnds(offset)) {
            offset -= 2;
        }
        return offset;
    }

private:
    static constexpr char16_t flagLetterHigh = 0xd83c;
    static bool isFlagLetterLow(char16_t unit) { return unit >= 0xdde6 && unit <= 0xddff; }

    const UnitSource& text_;
    UnitSource::Stretch stretch_;
};

constexpr qsizetype flagUnits = 4;

/// From where on ICU is shown the text so as to find the boundaries around a place: from its start, but that what is
/// far away is left out. What ICU looks at is its own affair; only a run of flags it would go through from the start,
/// letter by letter.
qsizetype shownFrom(Units& units, qsizetype offset)
{
    // Boundaries are right some characters behind any start, and ICU sees no more than twice as much.
    constexpr qsizetype farAway = qsizetype(1) << 29;
    qsizetype from = std::max<qsizetype>(0, offset - farAway);
    from -= units.isInPair(from) ? 1 : 0;
    constexpr qsizetype shortRun = 16 * flagUnits;
    qsizetype near = offset;
    while (offset - near < shortRun && units.flagLetterEnds(near)) {
        near -= 2;
    }
    if (offset - near < shortRun) {
        return from;
    }
    // Whole flags from the run's start on, some of them before the place: the first one may belong to what is before
    // it.
    const qsizetype run = units.flagRunStart(near);
    return run + ((offset - run) / flagUnits - 2) * flagUnits;
}

} // namespace

qsizetype nextGraphemeBoundary(const UnitSource& text, qsizetype offset)
{
    offset = std::max<qsizetype>(offset, 0);
    if (offset + 1 >= text.length()) {
        return text.length();
    }
    Units units(text);
    if (partSurely(units.at(offset), units.at(offset + 1))) {
        return offset + 1;
    }
    BreakIterator finder(BreakIterator::Kind::characters);
    finder.setText(text, shownFrom(units, offset));
    const qsizetype found = finder.following(offset);
    return found > offset ? found : text.length();
}

qsizetype previousGraphemeBoundary(const UnitSource& text, qsizetype offset)
{
    offset = std::min(offset, text.length());
    if (offset <= 1) {
        return 0;
    }
    Units units(text);
    if (units.isInPair(offset)) {
        return graphemeBoundaryAtOrBefore(text, offset - 1);
    }
    if (partSurely(units.at(offset - 2), units.at(offset - 1))) {
        return offset - 1;
    }
    BreakIterator finder(BreakIterator::Kind::characters);
    finder.setText(text, shownFrom(units, offset));
    return finder.preceding(offset);
}

qsizetype graphemeBoundaryAtOrBefore(const UnitSource& text, qsizetype offset)
{
    if (offset <= 0 || offset >= text.length()) {
        return std::clamp<qsizetype>(offset, 0, text.length());
    }
    Units units(text);
    if (partSurely(units.at(offset - 1), units.at(offset))) {
        return offset;
    }
    offset -= units.isInPair(offset) ? 1 : 0;
    if (offset == 0) {
        return 0;
    }
    BreakIterator finder(BreakIterator::Kind::characters);
    finder.setText(text, shownFrom(units, offset));
    return finder.isBoundary(offset) ? offset : finder.preceding(offset);
}

qsizetype nextGraphemeBoundary(QStringView text, qsizetype offset)
{
    return nextGraphemeBoundary(ViewSource(text), offset);
}

qsizetype previousGraphemeBoundary(QStringView text, qsizetype offset)
{
    return previousGraphemeBoundary(ViewSource(text), offset);
}

qsizetype graphemeBoundaryAtOrBefore(QStringView text, qsizetype offset)
{
    return graphemeBoundaryAtOrBefore(ViewSource(text), offset);
}

qsizetype graphemeBoundaryAtOrBehind(QStringView text, qsizetype offset)
{
    const qsizetype before = graphemeBoundaryAtOrBefore(text, offset);
    return before < offset && before < text.size() ? nextGraphemeBoundary(text, before) : before;
}

qsizetype graphemeCut(QStringView text, qsizetype most)
{
    if (most >= text.size()) {
        return text.size();
    }
    if (const qsizetype boundary = graphemeBoundaryAtOrBefore(text, most); boundary > 0) {
        return boundary;
    }
    return most > 0 && text[most].isLowSurrogate() && text[most - 1].isHighSurrogate() ? most - 1 : most;
}

qsizetype graphemeCount(QStringView text)
{
    const auto isPlain = [](QChar unit) { return unit.unicode() < 0x80 && unit != u'\r'; };
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        return text.size();
    }
    qsizetype count = 0;
    for (GraphemeWalk walk(text); !walk.isAtEnd(); walk.next()) {
        ++count;
    }
    return count;
}

/// ICU's finder over the walk's text, from some place on.
struct GraphemeWalk::Finder
{
    explicit Finder(QStringView text) : source(text) {}

    ViewSource source;
    BreakIterator finder{BreakIterator::Kind::characters};
    qsizetype start = -1;
    /// The boundary that it told last.
    qsizetype told = -1;

    qsizetype following(qsizetype place)
    {
        // It counts no further, and is as right from any boundary on.
        constexpr qsizetype farthest = qsizetype(1) << 29;
        if (start < 0 || place - start > farthest) {
            finder.setText(source, place);
            start = place;
            told = place;
        }
        told = told == place ? finder.next() : finder.following(place);
        return told;
    }
};

GraphemeWalk::GraphemeWalk(QStringView text) : text_(text) {}

GraphemeWalk::~GraphemeWalk() = default;

QStringView GraphemeWalk::next()
{
    const qsizetype start = at_;
    at_ = nextPlace();
    return text_.sliced(start, at_ - start);
}

qsizetype GraphemeWalk::nextPlace()
{
    if (at_ + 1 >= text_.size()) {
        return text_.size();
    }
    if (partSurely(text_[at_].unicode(), text_[at_ + 1].unicode())) {
        return at_ + 1;
    }
    // Once the finder stands here it is quicker than a look at each unit.
    const bool isFollowed = finder_ && finder_->told == at_;
    if (const qsizetype end = isFollowed ? 0 : plainEnd(text_, at_); end > 0) {
        return end;
    }
    if (!finder_) {
        finder_ = std::make_unique<Finder>(text_);
    }
    return finder_->following(at_);
}

} // namespace kelm
