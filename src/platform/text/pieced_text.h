// A text that does not stand in one piece, for what reads it from place to place.
#pragma once

#include <QString>

#include <functional>

struct UText;

namespace kelm {

/// A text of UTF-16 units that is asked for by the stretch. It must stay as it is while it is read; `units` is called
/// on the thread that reads.
struct PiecedText
{
    qsizetype length = 0;
    /// The units from `from` on, `count` of them, all within the text.
    std::function<QString(qsizetype from, qsizetype count)> units;
};

/// Opens a text for ICU, which reads it through windows of some ten thousand units; a text no longer than one stands
/// whole in it and is read as quickly as one piece. `text` must outlive what is opened, and all copies of that. Null
/// where there is no memory for it. To be closed with `utext_close`.
UText* openForIcu(const PiecedText& text);

} // namespace kelm
