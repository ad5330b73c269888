// Telling control sequences from text in what a program writes.
#pragma once

#include "run/attributed_text.h"

#include <QStringView>

#include <vector>

namespace kelm {

/// Follows what a program writes for a terminal, in pieces of any length, and finds what is no text: control sequences
/// (ECMA-48, 5.4), escape sequences, control strings up to their end or that of the line, and control characters other
/// than tabs and line ends. Each unit is judged by those before it alone, so that it does not matter where the pieces
/// are cut.
class EscapeSequences
{
public:
    /// The stretches of the next piece that are no text, in order and with text between them.
    std::vector<Stretch> take(QStringView piece);
    /// The same with the colour sequences that `ANSIParser` finds left out, as they are from its text.
    std::vector<Stretch> takeBehindColors(QStringView piece);
    /// What comes next begins with text.
    void reset() { state_ = State::text; }

private:
    enum class State {
        text,
        /// Behind ESC, where some letters begin more.
        escape,
        /// Within an escape sequence of more than one letter.
        longEscape,
        controlSequence,
        controlString,
    };

    void take(QStringView piece, qsizetype offset, std::vector<Stretch>& found);
    /// Whether the unit is text.
    bool takeUnit(char16_t unit);
    bool takeBehindEscape(char16_t unit);
    static State behindHighControl(char16_t unit);

    State state_ = State::text;
};

} // namespace kelm
