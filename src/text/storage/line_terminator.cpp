#include "text/storage/line_terminator.h"

namespace kelm {

namespace {

constexpr char16_t carriageReturn = u'\r';

/// Written so that the common unit falls out of the first comparison but one.
bool mayTerminate(char16_t unit)
{
    return unit <= carriageReturn ? unit == u'\n' || unit == carriageReturn
                                  : unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

} // namespace

qsizetype lineTerminatorLength(QStringView text, qsizetype offset)
{
    if (offset >= text.size() || !mayTerminate(text[offset].unicode())) {
        return 0;
    }
    const bool isPair = text[offset] == u'\r' && offset + 1 < text.size() && text[offset + 1] == u'\n';
    return isPair ? 2 : 1;
}

} // namespace kelm
