// Long lines, cut into pieces that are laid out one by one.
#pragma once

#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <map>
#include <vector>

namespace kelm {

/// The longest piece of a line that is laid out in one go, in UTF-16 units. Laying out a line takes time in proportion
/// to its length; a piece of this size takes a fifth of a millisecond.
constexpr qsizetype longestPiece = 2048;
/// A piece that an edit leaves shorter than this is cut anew together with its neighbour. Cutting makes none so short.
constexpr qsizetype shortestPiece = longestPiece / 4;
/// A piece that an edit makes longer than this is cut.
constexpr qsizetype longestEditedPiece = longestPiece + longestPiece / 4;

/// A piece of a line is laid out with this many units behind the next cut, which tell where its last row ends.
constexpr qsizetype lookAhead = 256;

/// The pieces of one long line: where each begins, counted from the line's start, and how many rows it takes.
///
/// A row must not end early because a piece does. So a piece begins at the last row that starts at or before the place
/// where the line was cut, once the piece before it is laid out and tells the rows. The cut itself stays: however often
/// the rows change, pieces neither grow nor wander. No piece begins behind its own cut, and each behind that of the
/// piece before.
struct LinePieces
{
    std::vector<qsizetype> starts;
    std::vector<int> rows;
    /// Where the line was cut for each piece.
    std::vector<qsizetype> cuts{};

    /// Pieces that begin at their cuts. The rows are left to the caller.
    static LinePieces cutAt(std::vector<qsizetype> cuts);
    bool isLast(std::size_t piece) const { return piece + 1 >= starts.size(); }
    /// The first piece whose layout depends on the unit at an offset: the one that holds it, or one before, which looks
    /// ahead so far.
    std::size_t firstThatSees(qsizetype offset) const;
    /// The piece that holds an offset, counted from the line's start.
    std::size_t pieceAt(qsizetype offset) const;
    qsizetype rowCount() const;
    qsizetype rowsBefore(std::size_t piece) const;
    /// The piece that holds a row, counted from the line's first.
    std::size_t pieceAtRow(qsizetype row) const;
    /// Forgets all row ends: each piece begins at its cut.
    void resetStarts() { starts = cuts; }
    /// Puts other pieces, whose starts and cuts count from the start of `first`, in the place of `count` pieces. The
    /// text behind them moves by `change`.
    void replace(std::size_t first, std::size_t count, const LinePieces& with, qsizetype change);
};

/// Cuts a line of a text, given without its terminator, into pieces of at most `longestPiece` units: behind a blank
/// where there is one in the last quarter, else between two user-perceived characters, else at the limit, but never
/// inside a surrogate pair. The last two pieces share what is left: each piece begins a row, and a stub would be seen.
/// Starts count from that of the line. Looks at the text around each cut alone.
std::vector<qsizetype> cutIntoPieces(const TextTree& text, TextRange line);

/// The pieces of all lines that are longer than one piece, by line number from 0.
class LongLines
{
public:
    LinePieces* find(qsizetype line);
    const LinePieces* find(qsizetype line) const;
    void erase(qsizetype line) { lines_.erase(line); }
    LinePieces* insert(qsizetype line, LinePieces pieces) { return &(lines_[line] = std::move(pieces)); }
    /// Calls `look(line, pieces)` for each in order.
    template <typename Look>
    void forEach(Look look)
    {
        for (auto& [line, pieces] : lines_) {
            look(line, pieces);
        }
    }
    /// Forgets the lines that an edit replaced and renumbers those behind it.
    void linesReplaced(const TextEdit& edit);

private:
    using Lines = std::map<qsizetype, LinePieces>;

    Lines lines_;
};

} // namespace kelm
