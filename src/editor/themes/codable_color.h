// A colour as themes hold it.
#pragma once

#include <QColor>
#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringView>

#include <optional>

namespace kelm {

/// Red, green, blue and alpha, each from 0 to 1 by convention. Nothing clamps them before they are painted.
struct CodableColor
{
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    /// The colour of a text such as "#282A36": the lowest 24 bits of its hexadecimal number, opaque. "#" counts for
    /// nothing wherever it stands, and so does white space around. A text without a number is black.
    static CodableColor fromHexadecimal(QStringView text);

    /// The colour of an object with the four numbers "red", "green", "blue" and "alpha"; absent when one is missing or
    /// is not a number. Other keys are ignored.
    static std::optional<CodableColor> decode(const QJsonValue& value);
    QJsonObject encode() const;

    /// For painting: clamped to 0 to 1.
    QColor toColor() const;

    friend bool operator==(const CodableColor&, const CodableColor&) = default;
    friend size_t qHash(const CodableColor& color, size_t seed = 0) noexcept
    {
        return qHashMulti(seed, color.red, color.green, color.blue, color.alpha);
    }
};

} // namespace kelm
