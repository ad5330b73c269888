#include "run/terminal_output.h"

#include "run/ansi_parser.h"

namespace kelm {

AttributedText TerminalOutput::output(const QString& piece)
{
    AttributedText text = ANSIParser::parse(piece);
    text.unshown = inOutput_.takeBehindColors(piece);
    return text;
}

AttributedText TerminalOutput::error(const QString& piece)
{
    AttributedText text;
    text.append(u"\n", plainColors::red.rgba());
    text.append(piece, plainColors::red.rgba());
    text.unshown = inError_.take(piece);
    for (Stretch& stretch : text.unshown) {
        ++stretch.start;
    }
    return text;
}

} // namespace kelm
