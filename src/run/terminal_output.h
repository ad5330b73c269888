// What a terminal's command writes.
#pragma once

#include "run/attributed_text.h"
#include "run/escape_sequences.h"

namespace kelm {

/// Makes of the pieces that one command writes what is shown of them: all of it is text, and what nobody is meant to
/// read in it is not drawn, wherever the pieces are cut.
class TerminalOutput
{
public:
    /// A piece of the standard output, coloured by `ANSIParser`.
    AttributedText output(const QString& piece);
    /// A piece of the standard error: it begins a line and is red, and its colour sequences are not drawn either.
    AttributedText error(const QString& piece);

private:
    EscapeSequences inOutput_;
    EscapeSequences inError_;
};

} // namespace kelm
