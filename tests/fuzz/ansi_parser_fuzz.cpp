// Output of any bytes: the parser and a regular expression see the same sequences in it, and the runs cover the text.
#include "support/ansi_reference.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    const QString asUtf8 = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    // The same bytes as they stand, so that unpaired surrogates come up too.
    QString asUnits;
    for (std::size_t at = 0; at + 1 < size; at += 2) {
        asUnits += QChar(data[at] | data[at + 1] << 8);
    }
    for (const QString& output : {asUtf8, asUnits}) {
        const AttributedText text = ANSIParser::parse(output);
        if (!test::runsCoverText(text) || text != test::parseByRegularExpression(output)) {
            std::abort();
        }
    }
    return 0;
}
