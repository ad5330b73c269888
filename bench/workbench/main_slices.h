// How long the main thread was busy without a look at what a person does.
#pragma once

#include <QApplication>

#include <algorithm>
#include <ctime>
#include <utility>

namespace kelm::bench {

/// In milliseconds; the time on a processor is the one that other programs leave alone.
struct Slice
{
    double wall = 0;
    double cpu = 0;
};

/// Times everything that the event loop hands out: while one such slice lasts, no key and no painting comes through.
class TimedApplication final : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        // What a slice sends on belongs to it.
        if (isInside_) {
            return QApplication::notify(receiver, event);
        }
        isInside_ = true;
        const Slice began = now();
        const bool isTaken = QApplication::notify(receiver, event);
        const Slice ended = now();
        longest_.wall = std::max(longest_.wall, ended.wall - began.wall);
        longest_.cpu = std::max(longest_.cpu, ended.cpu - began.cpu);
        isInside_ = false;
        return isTaken;
    }

    /// The longest slices since the last call.
    Slice takeLongest() { return std::exchange(longest_, {}); }

private:
    static double milliseconds(clockid_t clock)
    {
        timespec time{};
        clock_gettime(clock, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    }
    static Slice now() { return {milliseconds(CLOCK_MONOTONIC), milliseconds(CLOCK_THREAD_CPUTIME_ID)}; }

    Slice longest_;
    bool isInside_ = false;
};

} // namespace kelm::bench
