// What is left in memory when all is quiet.
#pragma once

#include "soak/world.h"

#include <vector>

namespace kelm::soak {

/// Brings the window back to where it began, now and then, and looks at what is left.
///
/// What is left at the first calm points says nothing: fonts, glyphs, icons and styles are kept on purpose, and more of
/// them are met as time goes on. So the points are cut into thirds, and the median of the last is held against that of
/// the middle one. Medians, since a single point may hold a buffer that goes with the next event. Growth beyond both an
/// absolute and a relative bound is a failure: what is kept on purpose comes rarer and rarer, while a leak comes with
/// every step, so that a third of a long run, thousands of steps, goes far beyond the bounds. Widgets are counted
/// too: one that is left behind at each turn is seen at once, though it is small beside all else.
class CalmPoints
{
public:
    struct Sample
    {
        qsizetype bytes = 0;
        qsizetype widgets = 0;
    };

    /// Closes all that is open, compares the disk once more, puts the project back and takes a sample.
    void take(World& world);

    const std::vector<Sample>& samples() const { return samples_; }
    /// Why the samples are not those of a program that keeps its size; absent when they are, or are too few to tell.
    std::optional<QString> growth() const;

private:
    std::vector<Sample> samples_;
};

} // namespace kelm::soak
