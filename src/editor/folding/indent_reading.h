// The indents of a part of a text, and what they close as far as both stand in it.
#pragma once

#include <QStringView>

#include <vector>

namespace kelm {

/// What a chunk holds of lines that are indented; lines of blanks and tabs alone are passed over. Lines count from the
/// chunk's first.
struct IndentReading
{
    struct Line
    {
        quint32 indent;
        quint16 line;
    };
    /// From a line to the last of the lines behind it that are indented deeper, of which one is not the next line. The
    /// line that ends it stands in the chunk too.
    struct Region
    {
        quint16 startLine;
        quint16 endLine;
    };
    /// A line that is less indented than all before it in the chunk.
    struct Minimum
    {
        quint32 indent;
        /// The line before it; for the chunk's first that stands in another chunk.
        quint16 lineBefore;
    };

    /// By their start lines.
    std::vector<Region> regions;
    /// The lines that no line behind them in the chunk is as little indented as, each deeper than the one before it.
    /// The last is the chunk's last.
    std::vector<Line> open;
    /// From the chunk's first line on.
    std::vector<Minimum> minima;
    /// The chunk's first two lines, or fewer.
    std::vector<Line> firstLines;
};

/// Reads chunks one after the other.
class IndentReader
{
public:
    /// What the whole lines in `text` hold; `lines` becomes the number of their ends, as `LineIndex` knows them.
    IndentReading read(QStringView text, qsizetype& lines);

private:
    void addLine(IndentReading& reading, quint32 indent, qsizetype line);

    struct Open
    {
        quint32 indent;
        /// Its place among the spans.
        quint32 span;
    };

    /// One for each line; while that is open it ends where it starts.
    std::vector<IndentReading::Region> spans_;
    std::vector<Open> open_;
};

/// The first offset from `at` on where a line end begins, as `LineIndex` knows them; the text's size if there is none.
qsizetype nextLineEnd(QStringView text, qsizetype at);

} // namespace kelm
