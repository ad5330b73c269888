// Texts of a wanted size for the benchmarks of the text system.
#pragma once

#include <QString>

namespace kelm::bench {

/// Lines as sources have them, 33 units long on the average, up to about `units` in all.
inline QString sourceText(qsizetype units)
{
    static const QString block =
        QStringLiteral("// Adds up what was sold in a day.\n"
                       "qreal Shop::revenue(const QList<Sale>& sales) const\n"
                       "{\n"
                       "    qreal sum = 0;\n"
                       "    for (const Sale& sale : sales) {\n"
                       "        sum += sale.price * sale.count; // 합계\n"
                       "    }\n"
                       "\n"
                       "    return sum > 0 ? sum : defaultRevenue(QStringLiteral(\"none\"), sales.size());\n"
                       "}\n"
                       "\n");
    return block.repeated(units / block.size() + 1);
}

/// One line without an end, of words.
inline QString longLine(qsizetype units)
{
    return QStringLiteral("{\"name\":\"value\", \"count\":12345}, ").repeated(units / 33 + 1);
}

} // namespace kelm::bench
