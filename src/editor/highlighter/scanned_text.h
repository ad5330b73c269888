// A text while it is scanned for the matches of patterns.
#pragma once

#include "editor/highlighter/character_classes.h"
#include "editor/highlighter/unit_search.h"
#include "editor/highlighter/word_boundaries.h"

#include <QStringView>

#include <algorithm>
#include <memory>

namespace kelm {

/// The questions that scanners ask of a text. Offsets are UTF-16 units; a search that finds nothing gives the text's
/// length.
///
/// A surrogate pair counts as its code point where a class of characters beyond ASCII is asked for; a search that
/// compares units may step into one, as no unit of a pair is equal to a character of a pattern.
class ScannedText
{
public:
    /// `beginsInWord` is for a part of a text: whether the character before it is on the inner side of a boundary.
    explicit ScannedText(QStringView text, bool beginsInWord = false)
        : text_(text), units_(text.utf16()), size_(text.size()), beginsInWord_(beginsInWord)
    {}

    /// Where a scan begins.
    static constexpr qsizetype begin() { return 0; }
    /// The place of the next attempt of a scan: what `search` finds from `from` on.
    template <class Search>
    qsizetype next(qsizetype from, Search search) const
    {
        return search(from);
    }
    /// Makes an attempt at each word in order: `word(start, end)` returns the place before which no other may begin.
    template <class Word>
    void forEachWord(Word word) const
    {
        qsizetype taken = 0;
        words().forEachWord(0, [&](qsizetype start, qsizetype end) {
            if (start >= taken) {
                taken = word(start, end);
            }
            return true;
        });
    }

    qsizetype size() const { return size_; }
    /// A unit of the text. NUL outside of it, which no pattern asks for.
    char16_t at(qsizetype place) const { return place >= 0 && place < size_ ? units_[place] : u'\0'; }

    template <class Test>
    qsizetype find(qsizetype from, Test test) const
    {
        return findUnit(units_, from, size_, test);
    }
    qsizetype find(qsizetype from, char16_t unit) const
    {
        return findUnit(units_, from, size_, [unit](char16_t c) { return c == unit; });
    }
    /// Where `needle` stands next. The search runs for the unit at `anchor` in it, the rarest.
    qsizetype find(qsizetype from, QStringView needle, qsizetype anchor) const
    {
        for (qsizetype i = from + anchor;; ++i) {
            i = i < size_ ? find(i, needle[anchor].unicode()) : size_;
            if (i == size_) {
                return size_;
            }
            if (startsWith(i - anchor, needle)) {
                return i - anchor;
            }
        }
    }
    bool startsWith(qsizetype place, QStringView needle) const
    {
        return size_ - place >= needle.size() && text_.sliced(place, needle.size()) == needle;
    }

    qsizetype lineEnd(qsizetype from) const
    {
        return find(from, [](char16_t c) { return isLineEnd(c); });
    }
    /// Where the next line begins, `from` itself counted. Between CR and LF no line begins.
    qsizetype lineStart(qsizetype from) const
    {
        if (from == 0) {
            return 0;
        }
        const qsizetype end = lineEnd(from - 1);
        return end == size_ ? size_ : end + (units_[end] == u'\r' && at(end + 1) == u'\n' ? 2 : 1);
    }

    bool isSpace(qsizetype place) const
    {
        const char16_t unit = at(place);
        return unit < 0x80 ? (unit == u' ') | (char16_t(unit - u'\t') < 5)
                           : CharacterClasses::ofUnicode().ofUnit(unit) & CharacterClasses::space;
    }
    qsizetype skipSpace(qsizetype from) const
    {
        while (isSpace(from)) {
            ++from;
        }
        return from;
    }
    qsizetype skipSpaceBack(qsizetype end) const
    {
        while (isSpace(end - 1)) {
            --end;
        }
        return end;
    }
    /// Goes on or back over units for which `test` holds.
    template <class Test>
    qsizetype skip(qsizetype from, Test test) const
    {
        while (from < size_ && test(units_[from])) {
            ++from;
        }
        return from;
    }
    template <class Test>
    qsizetype skipBack(qsizetype end, Test test) const
    {
        while (end > 0 && test(units_[end - 1])) {
            --end;
        }
        return end;
    }

    qsizetype findDigit(qsizetype from) const
    {
        for (qsizetype i = from;; ++i) {
            // No digit lies between those of ASCII and U+0660.
            i = find(i, [](char16_t c) { return isAsciiDigit(c) | (c >= 0x660); });
            if (i >= size_ || digitAt(i) > 0) {
                return i;
            }
        }
    }
    qsizetype skipDigits(qsizetype from) const
    {
        while (const qsizetype length = digitAt(from)) {
            from += length;
        }
        return from;
    }
    /// The length of the decimal digit at a place, 0 where there is none.
    qsizetype digitAt(qsizetype place) const
    {
        const char16_t unit = at(place);
        if (unit < 0x80) {
            return isAsciiDigit(unit) ? 1 : 0;
        }
        return (classesAt(place) & CharacterClasses::digit) ? (isPair(place) ? 2 : 1) : 0;
    }

    /// Whether a word that has a letter or a digit right before `place` ends there.
    bool endsWordAt(qsizetype place) const
    {
        return place >= size_ || !(classesAt(place) & (CharacterClasses::word | CharacterClasses::transparent));
    }
    /// Whether a word begins or ends at `place`.
    bool isBoundary(qsizetype place) const { return words().at(place); }
    /// The first place from `from` on where one does, or `end`.
    qsizetype nextBoundary(qsizetype from, qsizetype end) const { return std::min(words().next(from), end); }
    /// All boundaries of words, found at the first call.
    const WordBoundaries& words() const
    {
        if (!words_) {
            words_ = std::make_unique<WordBoundaries>(text_, beginsInWord_);
        }
        return *words_;
    }
    QStringView sliced(qsizetype start, qsizetype end) const { return text_.sliced(start, end - start); }

private:
    bool isPair(qsizetype place) const
    {
        return QChar::isHighSurrogate(at(place)) && QChar::isLowSurrogate(at(place + 1));
    }
    quint8 classesAt(qsizetype place) const
    {
        return isPair(place) ? CharacterClasses::ofCodePoint(QChar::surrogateToUcs4(at(place), at(place + 1)))
                             : CharacterClasses::ofUnicode().ofUnit(at(place));
    }

    QStringView text_;
    const char16_t* units_;
    qsizetype size_;
    bool beginsInWord_;
    mutable std::unique_ptr<WordBoundaries> words_;
};

} // namespace kelm
