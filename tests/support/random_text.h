// Random texts and ranges for tests that compare with a naive model.
#pragma once

#include "support/random.h"
#include "text/storage/text_range.h"

#include <QString>
#include <QtTest>

#include <algorithm>

namespace kelm::test {

class RandomText : public Random
{
public:
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
};

} // namespace kelm::test
