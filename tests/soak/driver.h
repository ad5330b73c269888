// Step after step until the time is over or something is wrong.
#pragma once

#include "soak/action.h"
#include "soak/calm_points.h"
#include "soak/world.h"

#include <QElapsedTimer>
#include <QMap>

namespace kelm::soak {

struct RunOptions
{
    quint32 seed = 0;
    /// The run ends with whichever comes first; 0 for no bound.
    qint64 seconds = 0;
    qint64 steps = 0;
    /// How many steps lie between two calm points.
    qint64 calmEvery = 500;
};

/// Chooses actions by their weights among those that are possible, does them and looks at everything afterwards.
class Driver
{
public:
    Driver(World& world, const RunOptions& options);

    /// True when nothing was wrong.
    bool run();

private:
    bool isOver() const;
    const Action& chooseAction();
    void step();
    void report() const;

    World& world_;
    RunOptions options_;
    std::vector<Action> actions_;
    CalmPoints calmPoints_;
    QElapsedTimer clock_;
    qint64 step_ = 0;
    QStringList lastActions_;
    QMap<QString, int> counts_;
};

} // namespace kelm::soak
