#include "platform/text/icu_text.h"

#include <algorithm>

namespace kelm {

namespace {

/// ICU counts places in 31 bits, and what stands in one stretch as well.
constexpr int64_t mostCounted = int64_t(1) << 30;
constexpr int64_t longestChunk = int64_t(1) << 20;

/// The functions by which ICU reads.
struct IcuTextProvider
{
    static const UnitSource& sourceOf(const UText* opened) { return *static_cast<const UnitSource*>(opened->context); }
    /// Where the text begins in its source.
    static int64_t startOf(const UText* opened) { return opened->a; }

    static void open(UText* into, const UnitSource& source, int64_t start);
    static void load(UText* opened, int64_t index);

    static int64_t U_CALLCONV nativeLength(UText* opened);
    static UBool U_CALLCONV access(UText* opened, int64_t index, UBool forward);
    static int32_t U_CALLCONV extract(UText* opened, int64_t start, int64_t limit, UChar* to, int32_t capacity,
                                      UErrorCode* status);
    static UText* U_CALLCONV clone(UText* into, const UText* from, UBool deep, UErrorCode* status);
};

constexpr UTextFuncs providerFunctions{sizeof(UTextFuncs),
                                       0,
                                       0,
                                       0,
                                       IcuTextProvider::clone,
                                       IcuTextProvider::nativeLength,
                                       IcuTextProvider::access,
                                       IcuTextProvider::extract,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       nullptr};

void IcuTextProvider::open(UText* into, const UnitSource& source, int64_t start)
{
    into->pFuncs = &providerFunctions;
    into->context = &source;
    into->a = start;
    // Nothing is loaded.
    into->chunkNativeStart = 0;
    into->chunkNativeLimit = 0;
    into->chunkOffset = 0;
    into->chunkLength = 0;
    into->nativeIndexingLimit = 0;
    into->chunkContents = u"";
}

/// Puts the stretch that holds the unit at an index before ICU.
void IcuTextProvider::load(UText* opened, int64_t index)
{
    const int64_t start = startOf(opened);
    const UnitSource::Stretch stretch = sourceOf(opened).stretchAt(start + index);
    const int64_t stretchStart = stretch.start - start;
    const auto first = std::max<int64_t>({stretchStart, index - longestChunk, 0});
    const auto end =
        std::min<int64_t>({stretchStart + stretch.units.size(), index + longestChunk, nativeLength(opened)});
    opened->chunkContents = reinterpret_cast<const UChar*>(stretch.units.utf16()) + (first - stretchStart);
    opened->chunkNativeStart = first;
    opened->chunkNativeLimit = end;
    opened->chunkLength = static_cast<int32_t>(end - first);
    opened->nativeIndexingLimit = opened->chunkLength;
}

int64_t U_CALLCONV IcuTextProvider::nativeLength(UText* opened)
{
    return std::min<int64_t>(sourceOf(opened).length() - startOf(opened), mostCounted);
}

UBool U_CALLCONV IcuTextProvider::access(UText* opened, int64_t index, UBool forward)
{
    const int64_t length = nativeLength(opened);
    index = std::clamp<int64_t>(index, 0, length);
    const bool isThere = forward ? index < length : index > 0;
    const bool isLoaded = forward ? index >= opened->chunkNativeStart && index < opened->chunkNativeLimit
                                  : index > opened->chunkNativeStart && index <= opened->chunkNativeLimit;
    const bool isAtEdge = !isThere && index >= opened->chunkNativeStart && index <= opened->chunkNativeLimit;
    if (!isLoaded && !isAtEdge && length > 0) {
        // At an end of the text there is nothing on the side that is asked for; what lies on the other side is.
        const bool behind = isThere ? forward != 0 : index == 0;
        load(opened, behind ? index : index - 1);
    }
    opened->chunkOffset = static_cast<int32_t>(index - opened->chunkNativeStart);
    return isThere;
}

int32_t U_CALLCONV IcuTextProvider::extract(UText* opened, int64_t start, int64_t limit, UChar* to, int32_t capacity,
                                            UErrorCode* status)
{
    const int64_t length = nativeLength(opened);
    start = std::clamp<int64_t>(start, 0, length);
    const int64_t count = std::clamp<int64_t>(limit, start, length) - start;
    for (int64_t done = 0; done < std::min<int64_t>(count, capacity);) {
        const int64_t from = startOf(opened) + start + done;
        const UnitSource::Stretch stretch = sourceOf(opened).stretchAt(from);
        const QStringView units = stretch.units.sliced(from - stretch.start);
        const auto taken = std::min<int64_t>(units.size(), std::min<int64_t>(count, capacity) - done);
        std::copy(units.utf16(), units.utf16() + taken, to + done);
        done += taken;
    }
    if (count > capacity) {
        *status = U_BUFFER_OVERFLOW_ERROR;
    } else if (count < capacity) {
        to[count] = 0;
    }
    return static_cast<int32_t>(count);
}

UText* U_CALLCONV IcuTextProvider::clone(UText* into, const UText* from, UBool deep, UErrorCode* status)
{
    if (deep) {
        *status = U_UNSUPPORTED_ERROR;
    }
    into = utext_setup(into, 0, status);
    if (U_SUCCESS(*status)) {
        open(into, sourceOf(from), startOf(from));
    }
    return into;
}

} // namespace

IcuText::IcuText(const UnitSource& source, qsizetype start) : text_ UTEXT_INITIALIZER
{
    UErrorCode status = U_ZERO_ERROR;
    utext_setup(&text_, 0, &status);
    IcuTextProvider::open(&text_, source, start);
}

} // namespace kelm
