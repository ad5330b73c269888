// ICU's finders of boundaries.
#pragma once

#include "platform/text/unit_source.h"

#include <unicode/ubrk.h>

#include <memory>

namespace kelm {

/// A finder that the thread lends for as long as this stands. Making one takes as long as some hundred steps, so that
/// a thread keeps those that it has lent.
///
/// The rules are those of no language in particular: what a text is cut into is the same for everyone.
class BreakIterator
{
public:
    enum class Kind { characters, words };

    explicit BreakIterator(Kind kind);
    ~BreakIterator();
    BreakIterator(const BreakIterator&) = delete;
    BreakIterator& operator=(const BreakIterator&) = delete;
    BreakIterator(BreakIterator&&) = delete;
    BreakIterator& operator=(BreakIterator&&) = delete;

    /// Goes to the start of the text, which is the source's from `start` on. The source must stay as long as the finder
    /// is asked. Places count from the source's own start.
    void setText(const UnitSource& source, qsizetype start);

    /// The boundary behind the last one told; -1 behind the last of all.
    qsizetype next() { return told(ubrk_next(finder_.get())); }
    /// The boundary behind a place; -1 where there is none.
    qsizetype following(qsizetype place) { return told(ubrk_following(finder_.get(), counted(place))); }
    /// The boundary before a place, which stands at no second half of a pair; -1 where there is none.
    qsizetype preceding(qsizetype place) { return told(ubrk_preceding(finder_.get(), counted(place))); }
    bool isBoundary(qsizetype place) { return ubrk_isBoundary(finder_.get(), counted(place)) != 0; }

private:
    struct Close
    {
        void operator()(UBreakIterator* finder) const { ubrk_close(finder); }
    };
    using Finder = std::unique_ptr<UBreakIterator, Close>;
    struct Kept;

    qsizetype told(int32_t index) const { return index == UBRK_DONE ? -1 : start_ + index; }
    int32_t counted(qsizetype place) const { return static_cast<int32_t>(place - start_); }

    Kind kind_;
    Finder finder_;
    qsizetype start_ = 0;
};

} // namespace kelm
