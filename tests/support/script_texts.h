// Texts of many scripts, and where their characters end by ICU's own passage through the whole of them.
#pragma once

#include "support/random.h"

#include <QString>
#include <QStringList>

#include <unicode/ubrk.h>

#include <memory>

namespace kelm::test {

/// All boundaries between the characters of a text, its start and its end among them.
inline QList<qsizetype> characterBoundaries(QStringView text)
{
    static UErrorCode status = U_ZERO_ERROR;
    static const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> finder(
        ubrk_open(UBRK_CHARACTER, "root", nullptr, 0, &status), ubrk_close);
    ubrk_setText(finder.get(), text.utf16(), static_cast<int32_t>(text.size()), &status);
    QList<qsizetype> boundaries;
    for (int32_t at = ubrk_first(finder.get()); at != UBRK_DONE; at = ubrk_next(finder.get())) {
        boundaries.append(at);
    }
    return boundaries;
}

class RandomScripts : public Random
{
public:
    /// A text of at most `longest` pieces: what stands alone, what joins, and what only seems to, in any order.
    QString text(qsizetype longest)
    {
        static const QStringList pieces{QStringLiteral("a"),
                                        QStringLiteral("Z9"),
                                        QStringLiteral("_"),
                                        QStringLiteral(" "),
                                        QStringLiteral("+="),
                                        QStringLiteral("e\u0301"),
                                        QStringLiteral("\u0338"),
                                        QStringLiteral("\u0301\u0323"),
                                        QStringLiteral("\r\n"),
                                        QStringLiteral("\r"),
                                        QStringLiteral("\n"),
                                        QStringLiteral("\t"),
                                        QStringLiteral("\u200b"),
                                        QStringLiteral("한글"),
                                        QStringLiteral("\u1112\u1161\u11ab"),
                                        QStringLiteral("\u1100"),
                                        QStringLiteral("\u1161"),
                                        QStringLiteral("\u11a8"),
                                        QStringLiteral("가\u11a8"),
                                        QStringLiteral("क्षत्रि"),
                                        QStringLiteral("हिन्दी"),
                                        QStringLiteral("\u094d"),
                                        QStringLiteral("\u0915"),
                                        QStringLiteral("ภาษาไทย"),
                                        QStringLiteral("กำลัง"),
                                        QStringLiteral("ខ្មែរ"),
                                        QStringLiteral("தமிழ்"),
                                        QStringLiteral("今天天气"),
                                        QStringLiteral("か\u3099な"),
                                        QStringLiteral("葛\U000E0100"),
                                        QStringLiteral("👩‍👩‍👧"),
                                        QStringLiteral("👍🏽"),
                                        QStringLiteral("❤️"),
                                        QStringLiteral("1️⃣"),
                                        QStringLiteral("🇰🇷"),
                                        QStringLiteral("🇰"),
                                        QStringLiteral("🏴󠁧󠁢󠁥󠁮󠁧󠁿"),
                                        QStringLiteral("\u200d"),
                                        QStringLiteral("\u200c"),
                                        QStringLiteral("\ufe0f"),
                                        QStringLiteral("©"),
                                        QStringLiteral("\u0600"),
                                        QStringLiteral("\u0d4e"),
                                        QStringLiteral("𝒜"),
                                        QStringLiteral("𑂽"),
                                        QString(QChar(0)),
                                        QString(QChar(0xd83d)),
                                        QString(QChar(0xde00)),
                                        QString(QChar(0xd83c))};
        QString result;
        for (qsizetype i = below(longest + 1); i > 0; --i) {
            const QString& piece = pieces[below(pieces.size())];
            // Most runs are short; some are of one kind and long.
            result += below(12) == 0 ? piece.repeated(1 + below(90)) : piece;
        }
        return result;
    }
};

} // namespace kelm::test
