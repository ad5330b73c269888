// Finding a text in a shown diff.
#pragma once

#include "git/diff/diff_selection.h"

#include <optional>

namespace kelm {

/// Looks for a text from one place onwards, or backwards, through the paths and all lines, also those of collapsed
/// hunks, and once around. Upper and lower case are the same.
///
/// It is done in pieces, so that the whole of a large diff is never gone through at once. The layout has to outlive it
/// and stay as it is, but for what is collapsed.
class DiffSearch
{
public:
    enum class Direction { forwards, backwards };
    enum class State { looking, found, nothing };

    /// `from` is the first place that counts forwards, and the one before which a match has to begin backwards.
    DiffSearch(const DiffLayout& layout, QString text, const DiffTextPlace& from, SideBySideHunkLines::Side side,
               Direction direction);

    /// Looks through no more than about so many UTF-16 units, at least one line.
    State look(qsizetype units);
    /// What was found, as a selection.
    const std::optional<DiffSelection>& match() const { return match_; }
    /// Whether it came round an end of the diff.
    bool hasWrapped() const { return hasWrapped_; }

private:
    /// A line of one side; an entry of a hunk of -1 is a path.
    struct Spot
    {
        qsizetype file = 0;
        qsizetype hunk = -1;
        qsizetype entry = 0;
        SideBySideHunkLines::Side side = SideBySideHunkLines::Side::oldSide;

        bool operator==(const Spot&) const = default;
    };

    /// The text there, as long as no other is asked for; absent where that side shows nothing, or the same as the
    /// other.
    std::optional<QStringView> textAt(const Spot& spot);
    /// False at the end.
    bool step(Spot& spot) const;
    bool stepForwards(Spot& spot) const;
    bool stepBackwards(Spot& spot) const;
    Spot firstSpot() const;
    Spot lastSpot() const;
    bool take(QStringView text, qsizetype at);

    const DiffLayout& layout_;
    QString text_;
    Direction direction_;
    Spot spot_;
    /// The path of the file that was looked at last, as it is shown.
    QString path_;
    Spot start_;
    qsizetype startUnit_;
    std::optional<DiffSelection> match_;
    bool isFirst_ = true;
    bool hasWrapped_ = false;
};

} // namespace kelm
