#include "editor/themes/codable_color.h"

#include "platform/text/character_sets.h"
#include "platform/text/hexadecimal_scanner.h"

#include <algorithm>

namespace kelm {

namespace {

struct ChannelRow
{
    QLatin1String key;
    double CodableColor::*member;
};

constexpr ChannelRow channelRows[] = {
    {QLatin1String("red"), &CodableColor::red},
    {QLatin1String("green"), &CodableColor::green},
    {QLatin1String("blue"), &CodableColor::blue},
    {QLatin1String("alpha"), &CodableColor::alpha},
};

} // namespace

CodableColor CodableColor::fromHexadecimal(QStringView text)
{
    QString digits = trimmed(text, isWhitespaceOrNewline).toString();
    digits.remove(u'#');
    const quint64 rgb = scanHexadecimal(digits).value_or(0);
    return {double(rgb >> 16 & 0xff) / 255.0, double(rgb >> 8 & 0xff) / 255.0, double(rgb & 0xff) / 255.0, 1.0};
}

std::optional<CodableColor> CodableColor::decode(const QJsonValue& value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = value.toObject();
    CodableColor color;
    for (const ChannelRow& row : channelRows) {
        const QJsonValue channel = object.value(row.key);
        if (!channel.isDouble()) {
            return std::nullopt;
        }
        color.*row.member = channel.toDouble();
    }
    return color;
}

QJsonObject CodableColor::encode() const
{
    QJsonObject object;
    for (const ChannelRow& row : channelRows) {
        object.insert(row.key, this->*row.member);
    }
    return object;
}

QColor CodableColor::toColor() const
{
    const auto channel = [](double value) { return float(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(channel(red), channel(green), channel(blue), channel(alpha));
}

} // namespace kelm
