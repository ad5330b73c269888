// Random texts and ranges for tests that compare with a naive model. The seed is printed, so that a failure can be run
// again with KELM_TEST_SEED.
#pragma once

#include "text/storage/text_range.h"

#include <QString>
#include <QtTest>

#include <random>

namespace kelm::test {

class RandomText
{
public:
    RandomText()
    {
        bool given = false;
        const uint seed = qEnvironmentVariable("KELM_TEST_SEED").toUInt(&given);
        seed_ = given ? seed : std::random_device()();
        random_.seed(seed_);
        qInfo("seed %u", seed_);
    }

    qsizetype below(qsizetype bound)
    {
        return bound <= 0 ? 0 : std::uniform_int_distribution<qsizetype>(0, bound - 1)(random_);
    }

    TextRange range(qsizetype textLength)
    {
        const qsizetype start = below(textLength + 1);
        // Mostly short ranges, as edits are, and now and then a long one.
        const qsizetype longest = below(8) == 0 ? textLength - start : std::min<qsizetype>(12, textLength - start);
        return {start, below(longest + 1)};
    }

    /// A text of at most `longest` pieces: letters, all kinds of line ends, combining marks, Korean, emoji and odd
    /// units.
    QString text(qsizetype longest)
    {
        static const QStringList pieces{QStringLiteral("a"),
                                        QStringLiteral("b"),
                                        QStringLiteral(" "),
                                        QStringLiteral("word"),
                                        QStringLiteral("\n"),
                                        QStringLiteral("\r"),
                                        QStringLiteral("\r\n"),
                                        QStringLiteral("\n"),
                                        QStringLiteral("\u0085"),
                                        QStringLiteral("\u2028"),
                                        QStringLiteral("\u2029"),
                                        QStringLiteral("\t"),
                                        QStringLiteral("e\u0301"),
                                        QStringLiteral("한"),
                                        QStringLiteral("\u1112\u1161\u11ab"),
                                        QStringLiteral("😀"),
                                        QStringLiteral("👩‍👩‍👧"),
                                        QStringLiteral("\u00a0"),
                                        QString(QChar(0)),
                                        QString(QChar(0xd83d)),
                                        QString(QChar(0xde00)),
                                        QStringLiteral("\ufeff"),
                                        QStringLiteral("\ufdd0"),
                                        QStringLiteral("foo_bar(")};
        QString result;
        for (qsizetype i = below(longest + 1); i > 0; --i) {
            result += pieces[below(pieces.size())];
        }
        return result;
    }

private:
    uint seed_ = 0;
    std::mt19937 random_;
};

} // namespace kelm::test
