#include "platform/text/break_iterator.h"

#include "platform/text/icu_text.h"

#include <array>
#include <vector>

namespace kelm {

/// Those of one thread that nobody has.
struct BreakIterator::Kept
{
    std::array<std::vector<Finder>, 2> finders;

    std::vector<Finder>& of(Kind kind) { return finders[static_cast<std::size_t>(kind)]; }

    static Kept& ofThread()
    {
        thread_local Kept kept;
        return kept;
    }
};

BreakIterator::BreakIterator(Kind kind) : kind_(kind)
{
    std::vector<Finder>& kept = Kept::ofThread().of(kind);
    if (!kept.empty()) {
        finder_ = std::move(kept.back());
        kept.pop_back();
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    finder_.reset(ubrk_open(kind == Kind::characters ? UBRK_CHARACTER : UBRK_WORD, "root", nullptr, 0, &status));
    // The rules are part of the library: only memory can be missing.
    Q_CHECK_PTR(finder_.get());
}

BreakIterator::~BreakIterator()
{
    Kept::ofThread().of(kind_).push_back(std::move(finder_));
}

void BreakIterator::setText(const UnitSource& source, qsizetype start)
{
    UErrorCode status = U_ZERO_ERROR;
    IcuText text(source, start);
    ubrk_setUText(finder_.get(), text.get(), &status);
    start_ = start;
}

} // namespace kelm
