// Scanners for words, names and numbers. See span_scanners.h for what a scanner is.
#pragma once

#include "editor/highlighter/scanned_text.h"

#include <array>
#include <vector>

namespace kelm::scanners {

/// A set of short ASCII words that answers from a hash table, and mostly from the first letter and the length already.
class WordTable
{
public:
    /// Words of 1 to `longestWord` units of `[a-zA-Z0-9_]`, at most `mostWords`.
    static constexpr qsizetype longestWord = 31;
    static constexpr std::size_t mostWords = 250;

    void insert(QStringView word);
    bool isEmpty() const { return words_.empty(); }

    bool contains(QStringView word) const
    {
        const char16_t first = word.front().unicode();
        if (first >= lengths_.size() || word.size() > longestWord || !((lengths_[first] >> word.size()) & 1)) {
            return false;
        }
        for (std::size_t slot = slotOf(word); slots_[slot] != 0; slot = (slot + 1) % slots_.size()) {
            if (words_[slots_[slot] - 1u] == word) {
                return true;
            }
        }
        return false;
    }

private:
    static std::size_t slotOf(QStringView word)
    {
        const qsizetype length = word.size();
        const std::size_t mixed = word[0].unicode() * 37u + word[length - 1].unicode() * 11u +
                                  word[length / 2].unicode() * 5u + static_cast<std::size_t>(length) * 67u;
        return mixed % slotCount;
    }

    static constexpr std::size_t slotCount = 1024;

    std::vector<QStringView> words_;
    /// For each first letter the lengths of its words, one bit a length.
    std::array<quint32, 128> lengths_{};
    /// One more than the index of the word, 0 where the slot is free.
    std::array<quint8, slotCount> slots_{};
};

/// `\b(one|two|@three)\b`. A word with "@" needs a word right before it, as `\b` holds there only then.
struct WordList
{
    WordTable words;
    /// The words behind "@".
    WordTable signedWords;

    qsizetype lookBack(const ScannedText& text, qsizetype place) const
    {
        return place - (text.at(place - 1) == u'@' && !signedWords.isEmpty() ? 1 : 0);
    }

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        text.forEachWord([&](qsizetype start, qsizetype end) {
            const QStringView word = text.sliced(start, end);
            if (words.contains(word)) {
                found(start, end);
            } else if (text.at(start - 1) == u'@' && text.isBoundary(start - 1) && signedWords.contains(word)) {
                found(start - 1, end);
            }
            return end;
        });
    }
};

/// `\b\d+\.?\d*\b`.
struct Number
{
    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        text.forEachWord([&](qsizetype start, qsizetype end) {
            if (text.digitAt(start) == 0) {
                return end;
            }
            const qsizetype whole = text.skipDigits(start);
            if (text.at(whole) == u'.') {
                // The longest form that ends at a boundary: with fraction, with the point, without it.
                const qsizetype point = whole + 1;
                const qsizetype fraction = text.skipDigits(point);
                const qsizetype taken = text.isBoundary(fraction) ? fraction : text.isBoundary(point) ? point : whole;
                found(start, taken);
                return taken;
            }
            if (text.isBoundary(whole)) {
                found(start, whole);
            }
            return end;
        });
    }
};

/// `\b([a-zA-Z_][a-zA-Z0-9_]*)\s*(?=\()`, or with "$" among the letters: a name before a parenthesis, and the white
/// space between them.
struct CalledName
{
    bool withDollar = false;

    qsizetype lookBack(const ScannedText& text, qsizetype place) const
    {
        return nameStart(text, text.skipSpaceBack(place));
    }

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'('); };
        for (qsizetype bracket = text.next(text.begin(), search); bracket < text.size();
             bracket = text.next(bracket + 1, search)) {
            const qsizetype end = text.skipSpaceBack(bracket);
            for (qsizetype i = nameStart(text, end); i < end && (i = text.nextBoundary(i, end)) < end; ++i) {
                if (!isAsciiDigit(text.at(i))) {
                    found(i, bracket);
                    break;
                }
            }
        }
    }

private:
    template <class Text>
    qsizetype nameStart(Text& text, qsizetype end) const
    {
        return text.skipBack(end, [this](char16_t c) { return isNamePart(c) || (withDollar && (c == u'$')); });
    }
};

/// `\bdef\s+([a-zA-Z_][a-zA-Z0-9_]*)`: a word of ASCII letters and the name behind it.
struct IntroducedName
{
    QStringView word;

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        text.forEachWord([&](qsizetype start, qsizetype end) {
            if (end - start != word.size() || text.sliced(start, end) != word) {
                return end;
            }
            const qsizetype name = text.skipSpace(end);
            if (name == end || !isNameStart(text.at(name))) {
                return end;
            }
            const qsizetype taken = text.skip(name, isNamePart);
            found(start, taken);
            return taken;
        });
    }
};

/// `@[a-zA-Z_][a-zA-Z0-9_]*` with any sign.
struct SignedName
{
    char16_t sign;

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, sign); };
        qsizetype start = text.next(text.begin(), search);
        while (start < text.size()) {
            qsizetype end = start + 1;
            if (isNameStart(text.at(end))) {
                end = text.skip(end, isNamePart);
                found(start, end);
            }
            start = text.next(end, search);
        }
    }
};

/// `[a-zA-Z_][a-zA-Z0-9_]*!`.
struct MacroName
{
    static qsizetype lookBack(const ScannedText& text, qsizetype place) { return text.skipBack(place, isNamePart); }

    template <class Text, class Found>
    void scan(Text& text, Found found) const
    {
        const auto search = [&](qsizetype from) { return text.find(from, u'!'); };
        for (qsizetype mark = text.next(text.begin(), search); mark < text.size(); mark = text.next(mark + 1, search)) {
            const qsizetype start = text.skip(text.skipBack(mark, isNamePart), isAsciiDigit);
            if (start < mark) {
                found(start, mark + 1);
            }
        }
    }
};

} // namespace kelm::scanners
