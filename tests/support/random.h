// Random numbers for tests that compare with a naive model. The seed is printed, so that a failure can be run again
// with KELM_TEST_SEED.
#pragma once

#include <QtTest>

#include <random>

namespace kelm::test {

class Random
{
public:
    Random()
    {
        bool given = false;
        const uint seed = qEnvironmentVariable("KELM_TEST_SEED").toUInt(&given);
        seed_ = given ? seed : std::random_device()();
        random_.seed(seed_);
        qInfo("seed %u", seed_);
    }

    /// From 0 to `bound` - 1; 0 for a bound below 1.
    qsizetype below(qsizetype bound)
    {
        return bound <= 0 ? 0 : std::uniform_int_distribution<qsizetype>(0, bound - 1)(random_);
    }

private:
    uint seed_ = 0;
    std::mt19937 random_;
};

} // namespace kelm::test
