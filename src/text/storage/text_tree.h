// A text as a balanced tree of immutable pieces.
#pragma once

#include "text/storage/text_range.h"

#include <QString>
#include <QStringView>

#include <functional>
#include <memory>
#include <vector>

namespace kelm {

/// One UTF-16 text whose edits copy a piece of a few thousand units and the way to it, and whose copies share all else.
/// A copy is a snapshot: it costs a pointer, stays as it is whatever becomes of the original, and may be read on
/// another thread meanwhile. Whatever is put in comes out unit for unit.
///
/// A line ends behind a line feed, a carriage return, the pair of both, U+0085, U+2028 or U+2029; the last line ends at
/// the end of the text and may be empty. Lines count from 0, and a text has always at least one. Offsets are UTF-16
/// units and are clamped to the text. All that is asked takes logarithmic time and a look at one piece, or two.
///
/// An object is for one thread at a time; copies of it may be on different ones.
class TextTree
{
public:
    TextTree() = default;
    explicit TextTree(QStringView text);

    /// The units of a piece of a text that comes in whole: there is room in it for what is typed.
    static constexpr qsizetype freshPiece = 3072;
    /// Texts one behind the other, of which nothing is copied but pieces that fit into one. Linear in their number, and
    /// as low as it can be when they are of one height.
    static TextTree joined(const std::vector<TextTree>& texts);

    qsizetype length() const;
    bool isEmpty() const { return length() == 0; }
    qsizetype lineCount() const;
    qsizetype lineFeeds() const;
    /// The number of units that are newlines: U+000A to U+000D, U+0085, U+2028 and U+2029, each by itself.
    qsizetype newlines() const;

    /// A null character at or behind the end.
    QChar at(qsizetype offset) const;
    /// A copy of the units of a range; linear in its length.
    QString substring(TextRange range) const;
    QString toString() const { return substring({0, length()}); }

    /// The offset of the first unit of a line; for a line behind the last the length.
    qsizetype lineStart(qsizetype line) const;
    /// The offset behind a line's terminator: the next line's start, or the length.
    qsizetype lineEnd(qsizetype line) const { return lineStart(line + 1); }
    /// The line that holds the offset; an offset at the end lies in the last line.
    qsizetype lineAt(qsizetype offset) const;

    /// The number of line feeds before an offset.
    qsizetype lineFeedsBefore(qsizetype offset) const;
    /// The offset behind the first `count` line feeds: where a line begins that only line feeds end. 0 for none, the
    /// length for more than there are.
    qsizetype behindLineFeeds(qsizetype count) const;

    void replace(TextRange range, QStringView replacement);
    /// The same with a whole text, of which nothing is copied but its first and last piece.
    void replace(TextRange range, const TextTree& replacement);

    /// The part of the text in the range, which shares its pieces.
    TextTree part(TextRange range) const;

    /// Calls `look` with the pieces of the range in their order, until it returns false. A piece is never empty; where
    /// pieces end is nowhere in particular, and may be between a pair of surrogates. False when `look` ended it.
    bool forEachPiece(TextRange range, const std::function<bool(QStringView piece)>& look) const;

    /// Unit by unit; what the two share is not looked at.
    friend bool operator==(const TextTree& a, const TextTree& b);
    friend bool operator==(const TextTree& a, QStringView b);

    /// How many units two texts have in common at their start.
    friend qsizetype commonStart(const TextTree& a, const TextTree& b);
    /// How many they have in common at their end, behind the first `start` units of both.
    friend qsizetype commonEnd(const TextTree& a, const TextTree& b, qsizetype start);

    /// How many pieces a walk from the top to a piece passes at most; for tests and benchmarks.
    int height() const;
    qsizetype pieceCount() const;

private:
    struct Node;
    using Tree = std::shared_ptr<const Node>;
    struct Building;

    explicit TextTree(Tree root) : root_(std::move(root)) {}

    /// Null for the empty text.
    Tree root_;
};

} // namespace kelm
