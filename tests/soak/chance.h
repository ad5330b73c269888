// The one source of chance of a run.
#pragma once

#include <QList>
#include <QString>

#include <random>
#include <vector>

namespace kelm::soak {

/// Numbers that a seed decides, so that a run can be repeated.
class Chance
{
public:
    explicit Chance(quint32 seed) : random_(seed) {}

    /// From 0 up to but not including `bound`; 0 where there is nothing to choose from.
    qsizetype below(qsizetype bound)
    {
        return bound <= 0 ? 0 : static_cast<qsizetype>(random_() % static_cast<std::uint64_t>(bound));
    }
    bool oneIn(qsizetype count) { return below(count) == 0; }

    template <typename List>
    const auto& pick(const List& list)
    {
        return list[static_cast<typename List::size_type>(below(static_cast<qsizetype>(list.size())))];
    }

private:
    std::mt19937_64 random_;
};

} // namespace kelm::soak
