#include "platform/text/pieced_text.h"

#include <unicode/utext.h>

#include <algorithm>
#include <memory>

namespace kelm {

namespace {

/// How much is asked for at a time, and how much of it stands before the place that is gone on from: what looks behind
/// by a few units then need not ask again.
constexpr int64_t windowLength = 1 << 15;
constexpr int64_t windowLead = 1 << 10;

/// What one opened text holds of its text.
struct Window
{
    const PiecedText* text;
    QString units;
};

/// ICU keeps it as a constant.
Window& windowOf(const UText* opened)
{
    return *static_cast<Window*>(const_cast<void*>(opened->context));
}

const PiecedText& textOf(const UText* opened)
{
    return *windowOf(opened).text;
}

int64_t U_CALLCONV nativeLength(UText* opened)
{
    return textOf(opened).length;
}

/// Puts the units from `start` to `end` into the window, one more at an end that would part a pair of surrogates.
void load(UText* opened, int64_t start, int64_t end)
{
    Window& window = windowOf(opened);
    const qsizetype length = window.text->length;
    const qsizetype before = start > 0 ? 1 : 0;
    const qsizetype behind = end < length ? 1 : 0;
    window.units = window.text->units(start - before, end - start + before + behind);
    const QString& units = window.units;
    const bool partsAtStart = before > 0 && units.front().isHighSurrogate() && units[1].isLowSurrogate();
    const bool partsAtEnd = behind > 0 && units[units.size() - 2].isHighSurrogate() && units.back().isLowSurrogate();
    const qsizetype skipped = before - (partsAtStart ? 1 : 0);
    opened->chunkContents = reinterpret_cast<const UChar*>(units.utf16()) + skipped;
    opened->chunkNativeStart = start - (partsAtStart ? 1 : 0);
    opened->chunkNativeLimit = end + (partsAtEnd ? 1 : 0);
    opened->chunkLength = static_cast<int32_t>(opened->chunkNativeLimit - opened->chunkNativeStart);
    opened->nativeIndexingLimit = opened->chunkLength;
}

UBool U_CALLCONV access(UText* opened, int64_t index, UBool forward)
{
    const int64_t length = textOf(opened).length;
    index = std::clamp<int64_t>(index, 0, length);
    const bool isThere = forward ? index < length : index > 0;
    const bool isLoaded = forward ? index >= opened->chunkNativeStart && index < opened->chunkNativeLimit
                                  : index > opened->chunkNativeStart && index <= opened->chunkNativeLimit;
    const bool isAtEdge = !isThere && index >= opened->chunkNativeStart && index <= opened->chunkNativeLimit;
    if (!isLoaded && !isAtEdge) {
        const int64_t lead = forward ? windowLead : windowLength - windowLead;
        const int64_t start = std::clamp<int64_t>(index - lead, 0, std::max<int64_t>(length - windowLength, 0));
        load(opened, start, std::min(start + windowLength, length));
    }
    opened->chunkOffset = static_cast<int32_t>(index - opened->chunkNativeStart);
    return isThere;
}

int32_t U_CALLCONV extract(UText* opened, int64_t start, int64_t limit, UChar* to, int32_t capacity, UErrorCode* status)
{
    const int64_t length = textOf(opened).length;
    start = std::clamp<int64_t>(start, 0, length);
    const int64_t count = std::clamp<int64_t>(limit, start, length) - start;
    if (count > capacity) {
        *status = U_BUFFER_OVERFLOW_ERROR;
    }
    const QString units = textOf(opened).units(start, std::min<int64_t>(count, capacity));
    std::copy(units.utf16(), units.utf16() + units.size(), to);
    return static_cast<int32_t>(count);
}

UText* open(UText* into, const PiecedText& text, UErrorCode* status);

UText* U_CALLCONV clone(UText* into, const UText* from, UBool /*deep*/, UErrorCode* status)
{
    return U_FAILURE(*status) ? into : open(into, textOf(from), status);
}

void U_CALLCONV close(UText* opened)
{
    const std::unique_ptr<Window> window(&windowOf(opened));
    opened->context = nullptr;
}

constexpr UTextFuncs functions{sizeof(UTextFuncs),
                               0,
                               0,
                               0,
                               clone,
                               nativeLength,
                               access,
                               extract,
                               nullptr,
                               nullptr,
                               nullptr,
                               nullptr,
                               close,
                               nullptr,
                               nullptr,
                               nullptr};

UText* open(UText* into, const PiecedText& text, UErrorCode* status)
{
    into = utext_setup(into, 0, status);
    if (U_FAILURE(*status)) {
        return into;
    }
    into->pFuncs = &functions;
    into->context = std::make_unique<Window>(Window{&text, QString()}).release();
    if (text.length <= windowLength) {
        load(into, 0, text.length);
    }
    return into;
}

} // namespace

UText* openForIcu(const PiecedText& text)
{
    UErrorCode status = U_ZERO_ERROR;
    UText* const opened = open(nullptr, text, &status);
    return U_SUCCESS(status) ? opened : nullptr;
}

} // namespace kelm
