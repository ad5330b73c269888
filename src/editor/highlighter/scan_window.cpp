#include "editor/highlighter/scan_window.h"

#include "editor/highlighter/character_classes.h"

#include <algorithm>

namespace kelm {

namespace {

/// Where a window begins that is to show what stands before `from`: never within a pair of surrogates.
qsizetype windowStart(const TextTree& text, qsizetype from)
{
    const qsizetype start = std::max<qsizetype>(0, from - 2 * ScanWatcher::margin);
    const bool cutsPair = start > 0 && text.at(start).isLowSurrogate() && text.at(start - 1).isHighSurrogate();
    return start - (cutsPair ? 1 : 0);
}

/// The longest stretch that is read at a time while nothing but marks comes.
constexpr qsizetype longestChunk = 4096;

/// Whether the character before `place`, which cuts no pair, is on the inner side of a boundary of words.
bool isInsideBefore(const TextTree& text, qsizetype place)
{
    const CharacterClasses& classes = CharacterClasses::ofUnicode();
    for (qsizetype size = 16; place > 0; size = std::min(2 * size, longestChunk)) {
        const qsizetype start = windowStart(text, std::max<qsizetype>(0, place - size) + 2 * ScanWatcher::margin);
        const QString chunk = text.substring(TextRange::between(start, place));
        for (qsizetype i = chunk.size(); i > 0;) {
            const bool isPair = i > 1 && chunk[i - 1].isLowSurrogate() && chunk[i - 2].isHighSurrogate();
            const quint8 found = isPair
                                     ? CharacterClasses::ofCodePoint(QChar::surrogateToUcs4(chunk[i - 2], chunk[i - 1]))
                                     : classes.ofUnit(chunk[i - 1].unicode());
            if (!(found & CharacterClasses::transparent)) {
                return found & CharacterClasses::word;
            }
            i -= isPair ? 2 : 1;
        }
        place = start;
    }
    return false;
}

} // namespace

ScanWindow::ScanWindow(const TextTree& text, qsizetype from, qsizetype to)
    : start_(windowStart(text, from)),
      units_(text.substring(TextRange::between(start_, std::max(from, to)))),
      endsText_(end() == text.length()),
      part_(units_, isInsideBefore(text, start_))
{}

WatchedText::Ending ScanWindow::scan(const PatternScanner& scanner, qsizetype from, ScanWatcher& watcher) const
{
    WatchedText watched(part_, start_, endsText_, from - start_, watcher);
    std::visit(
        [&watched](const auto& pattern) {
            pattern.scan(watched, [&watched](qsizetype start, qsizetype end) { watched.found(start, end); });
        },
        scanner);
    return watched.finish();
}

qsizetype ScanWindow::lookBack(const PatternScanner& scanner, qsizetype place) const
{
    const qsizetype inPart = place - start_;
    return start_ + std::visit(
                        [this, inPart](const auto& pattern) {
                            if constexpr (requires { pattern.lookBack(part_, inPart); }) {
                                return pattern.lookBack(part_, inPart);
                            } else {
                                return inPart;
                            }
                        },
                        scanner);
}

qsizetype ScanWindow::lineStart(qsizetype from, qsizetype to) const
{
    return std::min(start_ + part_.lineStart(from - start_), to);
}

qsizetype endOfTransparent(const TextTree& text, qsizetype place)
{
    const CharacterClasses& classes = CharacterClasses::ofUnicode();
    for (qsizetype size = 16;; size = std::min(2 * size, longestChunk)) {
        const QString chunk = text.substring({place, size});
        for (qsizetype i = 0; i < chunk.size(); ++i) {
            // The second half of a character goes with the first.
            const QChar unit = chunk[i];
            const QChar following = text.at(place + i + 1);
            const bool isPair = unit.isHighSurrogate() && following.isLowSurrogate();
            const quint8 found = isPair ? CharacterClasses::ofCodePoint(QChar::surrogateToUcs4(unit, following))
                                        : classes.ofUnit(unit.unicode());
            if (!unit.isLowSurrogate() && !(found & CharacterClasses::transparent)) {
                return place + i;
            }
        }
        place += chunk.size();
        if (chunk.size() < size) {
            return place;
        }
    }
}

} // namespace kelm
