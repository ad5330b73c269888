// A text put together from what matches are replaced by and from what stands between them.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QString>
#include <QStringView>

namespace kelm {

/// The part of a text from the first match to the last, with all matches replaced. Long stretches between matches are
/// shared with the text rather than copied.
class ReplacedText
{
public:
    /// At most `longest` units.
    ReplacedText(const TextTree& text, qsizetype longest) : text_(text), longest_(longest) {}

    /// Replaces the next match, which stands behind all before it. False, and nothing more is to be added, when the
    /// whole would be too long.
    bool add(TextRange match, QStringView with);

    qsizetype count() const { return count_; }
    /// From the first match's start to the last one's end.
    TextRange range() const { return range_; }
    /// What goes there. To be called once.
    TextTree take();

private:
    void flush();

    const TextTree text_;
    qsizetype longest_;
    qsizetype length_ = 0;
    qsizetype count_ = 0;
    TextRange range_;
    TextTree done_;
    /// What comes behind `done_`.
    QString pending_;
};

} // namespace kelm
