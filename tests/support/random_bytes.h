// Random names of files. The seed is printed, so that a failure can be run again with KELM_TEST_SEED.
#pragma once

#include <QByteArray>
#include <QtTest>

#include <random>

namespace kelm::test {

class RandomBytes
{
public:
    RandomBytes()
    {
        bool given = false;
        const uint seed = qEnvironmentVariable("KELM_TEST_SEED").toUInt(&given);
        const uint used = given ? seed : std::random_device()();
        random_.seed(used);
        qInfo("seed %u", used);
    }

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }

    /// A name of 1 to `longest` pieces: bytes of all kinds, whole characters, and parts of them. Neither a NUL nor a
    /// slash, which no name has.
    QByteArray bytes(int longest)
    {
        static const QList<QByteArray> pieces{
            "a",        ".",    "\xed\x95\x9c", "\xed\x95", "\xf0\x9f\x98\x80", "\x80",
            "\xf0\x9f", "\xff", "\xed\xa0\x80", "\xe9",     "\xed\xb2\x80",     "%E9"};
        QByteArray name;
        for (int count = 1 + below(longest); count > 0; --count) {
            const int kind = below(2 * int(pieces.size()));
            const char byte = char(1 + below(255));
            name += kind < pieces.size() ? pieces[kind] : QByteArray(1, byte == '/' ? 'x' : byte);
        }
        return name;
    }

private:
    std::mt19937 random_;
};

} // namespace kelm::test
