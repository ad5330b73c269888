// How ICU reads a text that stands in stretches.
#pragma once

#include "platform/text/unit_source.h"

#include <unicode/utext.h>

namespace kelm {

/// The units of a source from `start` on, which is index 0 for ICU; of those behind, as many as it can count. The
/// source must outlive it. A copy that ICU has made of it is not read again once ICU was given another text.
class IcuText
{
public:
    IcuText(const UnitSource& source, qsizetype start);

    UText* get() { return &text_; }

private:
    UText text_;
};

} // namespace kelm
