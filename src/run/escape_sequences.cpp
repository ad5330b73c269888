#include "run/escape_sequences.h"

#include "run/ansi_parser.h"

namespace kelm {

namespace {

constexpr char16_t bell = 0x07;
constexpr char16_t cancel = 0x18;
constexpr char16_t substitute = 0x1a;
constexpr char16_t escapeUnit = 0x1b;
constexpr char16_t lastControl = 0x1f;
constexpr char16_t lastIntermediate = 0x2f;
constexpr char16_t lastParameter = 0x3f;
constexpr char16_t deleteUnit = 0x7f;
constexpr char16_t nextLine = 0x85;
constexpr char16_t controlSequenceIntroducer = 0x9b;
constexpr char16_t stringTerminator = 0x9c;
constexpr char16_t lastHighControl = 0x9f;

bool isLineEnd(char16_t unit)
{
    return (unit >= u'\n' && unit <= u'\r') || unit == nextLine || unit == 0x2028 || unit == 0x2029;
}

bool isControl(char16_t unit)
{
    return unit <= lastControl || (unit >= deleteUnit && unit <= lastHighControl);
}

/// Device control, start of string, operating system, privacy and application strings, by the letter behind ESC.
bool beginsString(char16_t letter)
{
    return letter == u'P' || letter == u'X' || letter == u']' || letter == u'^' || letter == u'_';
}

/// The letter that stands behind ESC for a control character of one unit.
constexpr char16_t letterOf(char16_t highControl)
{
    return highControl - 0x40;
}

} // namespace

std::vector<Stretch> EscapeSequences::take(QStringView piece)
{
    std::vector<Stretch> found;
    take(piece, 0, found);
    return found;
}

std::vector<Stretch> EscapeSequences::takeBehindColors(QStringView piece)
{
    std::vector<Stretch> found;
    qsizetype from = 0;
    qsizetype offset = 0;
    while (const auto colors = ANSIParser::nextSequence(piece, from)) {
        const QStringView before = piece.sliced(from, colors->start - from);
        take(before, offset, found);
        // What had begun ends where another sequence begins.
        reset();
        offset += before.size();
        from = colors->start + colors->length;
    }
    take(piece.sliced(from), offset, found);
    return found;
}

void EscapeSequences::take(QStringView piece, qsizetype offset, std::vector<Stretch>& found)
{
    for (qsizetype at = 0; at < piece.size(); ++at) {
        if (takeUnit(piece[at].unicode())) {
            continue;
        }
        if (!found.empty() && found.back().start + found.back().length == offset + at) {
            ++found.back().length;
        } else {
            found.push_back({offset + at, 1});
        }
    }
}

bool EscapeSequences::takeUnit(char16_t unit)
{
    if (unit == escapeUnit) {
        state_ = State::escape;
        return false;
    }
    if (isLineEnd(unit)) {
        // A string that nobody ends must not swallow all that follows.
        reset();
        return true;
    }
    if (unit == cancel || unit == substitute || unit == stringTerminator) {
        reset();
        return false;
    }
    if (state_ == State::controlString) {
        state_ = unit == bell ? State::text : state_;
        return false;
    }
    if (unit > deleteUnit && isControl(unit)) {
        state_ = behindHighControl(unit);
        return false;
    }
    if (unit > deleteUnit || unit == u'\t') {
        reset();
        return true;
    }
    return isControl(unit) ? false : state_ == State::text || takeBehindEscape(unit);
}

EscapeSequences::State EscapeSequences::behindHighControl(char16_t unit)
{
    if (unit == controlSequenceIntroducer) {
        return State::controlSequence;
    }
    return beginsString(letterOf(unit)) ? State::controlString : State::text;
}

/// A unit from blank to tilde within a sequence: it is never text.
bool EscapeSequences::takeBehindEscape(char16_t unit)
{
    if (state_ == State::controlSequence) {
        state_ = unit <= lastParameter ? state_ : State::text;
    } else if (unit <= lastIntermediate) {
        state_ = State::longEscape;
    } else if (state_ == State::escape && unit == u'[') {
        state_ = State::controlSequence;
    } else if (state_ == State::escape && beginsString(unit)) {
        state_ = State::controlString;
    } else {
        reset();
    }
    return false;
}

} // namespace kelm
