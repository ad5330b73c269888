// The colours of a text: one colour, or none, for each UTF-16 unit.
#pragma once

#include "text/storage/shifted_offsets.h"
#include "text/storage/text_range.h"

#include <QRgb>

#include <deque>
#include <optional>
#include <vector>

namespace kelm {

/// A stretch of text of one colour.
struct ColorRun
{
    TextRange range;
    QRgb color = 0;

    friend bool operator==(const ColorRun&, const ColorRun&) = default;
};

/// Colours by run, kept right through edits: what is typed takes the colour of the unit before it, as text typed into a
/// coloured word does everywhere.
class ColorRuns
{
public:
    using Color = std::optional<QRgb>;
    /// Stands for a colour that is still to be found. Clear black, which no text is drawn in.
    static constexpr QRgb pending = 0;
    /// Stands for what is not drawn at all and takes no width. Clear as well.
    static constexpr QRgb unshown = 1;

    Color colorAt(qsizetype offset) const;
    /// The coloured runs that meet `range`, cut to it, in order and each as long as its colour goes; what has no colour
    /// is left out.
    std::vector<ColorRun> runsIn(TextRange range) const;

    /// Colours `range`, or takes its colour away.
    void set(TextRange range, Color color);
    /// Colours the ranges of `runs`, which are in order and lie side by side without a gap, in one go.
    void set(const std::vector<ColorRun>& runs);
    /// Colours the whole text anew: `runs` are in order and do not overlap. Returns the range within which the colours
    /// differ from those before, empty where none does.
    TextRange assign(const std::vector<ColorRun>& runs);
    /// The text has been replaced as a whole, and nothing in it has a colour.
    void clear(qsizetype textLength);

    /// Carries the runs over an edit of the text.
    void textReplaced(TextRange range, qsizetype newLength);

private:
    qsizetype runAt(qsizetype offset) const { return starts_.upperBound(offset) - 1; }
    qsizetype runEnd(qsizetype run) const { return run + 1 < starts_.size() ? starts_.at(run + 1) : length_; }
    /// Puts runs that begin at `starts` in the place of what `whole` holds; neighbours among them differ in colour.
    void setSideBySide(TextRange whole, std::vector<qsizetype> starts, const std::vector<Color>& colors);
    /// Makes a run begin at `offset` and returns its index; at the end of the text that is one past the last.
    qsizetype splitAt(qsizetype offset);
    void replaceRuns(qsizetype first, qsizetype count, const std::vector<qsizetype>& starts,
                     const std::vector<Color>& colors);

    // Run i goes from starts_[i] to the next start or the end of the text. An empty text has no run.
    QueuedOffsets starts_;
    std::deque<Color> colors_;
    qsizetype length_ = 0;
};

} // namespace kelm
