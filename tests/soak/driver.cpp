#include "soak/driver.h"

#include "soak/files_on_disk.h"
#include "soak/invariants.h"

#include <cstdio>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype shownActions = 50;
/// The disk is compared with every so many steps, and before each calm point.
constexpr qint64 diskEvery = 10;

void say(const QString& line)
{
    std::fprintf(stdout, "%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace

Driver::Driver(World& world, const RunOptions& options) : world_(world), options_(options), actions_(allActions()) {}

bool Driver::run()
{
    clock_.start();
    say(u"seed %1"_s.arg(options_.seed));
    while (!world_.failure && !isOver()) {
        step();
        if (!world_.failure && step_ % options_.calmEvery == 0) {
            calmPoints_.take(world_);
            const CalmPoints::Sample& sample = calmPoints_.samples().back();
            say(u"step %1, %2 s: %3 KiB and %4 widgets when all is closed"_s.arg(step_)
                    .arg(clock_.elapsed() / 1000)
                    .arg(sample.bytes / 1024)
                    .arg(sample.widgets));
        }
    }
    if (!world_.failure) {
        calmPoints_.take(world_);
    }
    if (!world_.failure) {
        world_.failure = calmPoints_.growth();
    }
    report();
    return !world_.failure;
}

bool Driver::isOver() const
{
    return (options_.steps > 0 && step_ >= options_.steps) ||
           (options_.seconds > 0 && clock_.elapsed() >= options_.seconds * 1000);
}

const Action& Driver::chooseAction()
{
    std::vector<const Action*> possible;
    qsizetype weights = 0;
    for (const Action& action : actions_) {
        if (action.isPossible == nullptr || action.isPossible(world_)) {
            possible.push_back(&action);
            weights += action.weight;
        }
    }
    qsizetype left = world_.chance.below(weights);
    for (const Action* action : possible) {
        left -= action->weight;
        if (left < 0) {
            return *action;
        }
    }
    return *possible.back();
}

void Driver::step()
{
    ++step_;
    const Action& action = chooseAction();
    world_.noted.clear();
    // A run that dies within an action leaves its name behind.
    lastActions_.append(QString::fromLatin1(action.name));
    world_.bringToFront();
    const quint64 diskBefore = world_.disk.revision();
    action.run(world_);
    const QString place = world_.tabs.current() != nullptr
                              ? u" (tab %1 of %2)"_s.arg(world_.tabs.currentIndex()).arg(world_.tabs.all().size())
                              : QString();
    lastActions_.last() = u"%1: %2 %3%4"_s.arg(step_).arg(QLatin1String(action.name), world_.noted, place);
    if (lastActions_.size() > shownActions) {
        lastActions_.removeFirst();
    }
    ++counts_[QString::fromLatin1(action.name)];
    if (world_.disk.revision() != diskBefore) {
        followDisk(world_);
    }
    world_.settle();
    if (!world_.failure) {
        checkInvariants(world_);
    }
    if (!world_.failure && step_ % diskEvery == 0) {
        checkDisk(world_);
        checkStore(world_);
        checkFollowers(world_);
    }
}

void Driver::report() const
{
    QStringList counts;
    for (auto count = counts_.begin(); count != counts_.end(); ++count) {
        counts.append(u"%1 × %2"_s.arg(*count).arg(count.key()));
    }
    if (world_.failure) {
        say(u"The last actions:\n  "_s + lastActions_.join(u"\n  "_s));
        say(u"The log:\n  "_s + world_.log.lines().join(u"\n  "_s));
        say(u"FAILED with seed %1 at step %2: %3"_s.arg(options_.seed).arg(step_).arg(*world_.failure));
        return;
    }
    say(counts.join(u", "_s));
    say(u"passed: %1 steps in %2 s with seed %3, %4 calm points"_s.arg(step_)
            .arg(clock_.elapsed() / 1000)
            .arg(options_.seed)
            .arg(calmPoints_.samples().size()));
}

} // namespace kelm::soak
