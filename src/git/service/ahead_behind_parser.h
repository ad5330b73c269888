// How far a branch and its upstream are apart, from `git rev-list --left-right --count`.
#pragma once

#include <QStringView>

#include <optional>

namespace kelm {

struct AheadBehind
{
    qint64 behind = 0;
    qint64 ahead = 0;

    bool operator==(const AheadBehind&) const = default;
};

/// Both 0 for a blank output; absent when the output does not have exactly two pieces. A piece that is no decimal
/// integer counts as 0.
std::optional<AheadBehind> parseAheadBehind(QStringView output);

} // namespace kelm
