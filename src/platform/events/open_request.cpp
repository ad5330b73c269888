#include "platform/events/open_request.h"

#include "platform/files/utf8_file.h"

#include <QtEndian>

#include <algorithm>

namespace kelm::openRequest {

namespace {

constexpr QByteArrayView mark("kelm-open-1\n");
constexpr qsizetype numberSize = 4;

void appendNumber(QByteArray& bytes, qsizetype number)
{
    char buffer[numberSize];
    qToBigEndian(static_cast<quint32>(number), buffer);
    bytes.append(buffer, numberSize);
}

/// Takes a number off the front; absent when it has not come whole.
std::optional<qsizetype> takeNumber(QByteArrayView& bytes)
{
    if (bytes.size() < numberSize) {
        return std::nullopt;
    }
    const auto number = static_cast<qsizetype>(qFromBigEndian<quint32>(bytes.data()));
    bytes = bytes.sliced(numberSize);
    return number;
}

Decoded decodedTexts(const QList<QByteArrayView>& texts)
{
    Decoded decoded{State::complete};
    for (const QByteArrayView bytes : texts) {
        const std::optional<QString> text = decodeUtf8Text(bytes);
        if (!text) {
            return {State::invalid};
        }
        decoded.texts.append(*text);
    }
    return decoded;
}

} // namespace

QByteArray encode(const QStringList& texts)
{
    QByteArray message = mark.toByteArray();
    appendNumber(message, texts.size());
    for (const QString& text : texts) {
        const QByteArray bytes = encodeUtf8Text(text);
        appendNumber(message, bytes.size());
        message += bytes;
    }
    return message.size() > largestMessage || texts.size() > mostTexts ? QByteArray() : message;
}

Decoded decode(QByteArrayView bytes)
{
    const qsizetype known = std::min(bytes.size(), mark.size());
    if (bytes.first(known) != mark.first(known) || bytes.size() > largestMessage) {
        return {State::invalid};
    }
    if (known < mark.size()) {
        return {State::incomplete};
    }
    QByteArrayView rest = bytes.sliced(mark.size());
    const std::optional<qsizetype> count = takeNumber(rest);
    if (!count) {
        return {State::incomplete};
    }
    if (*count > mostTexts) {
        return {State::invalid};
    }
    // First where the texts are, and only then what they are: most calls find that more has yet to come.
    QList<QByteArrayView> texts;
    for (qsizetype at = 0; at < *count; ++at) {
        const std::optional<qsizetype> length = takeNumber(rest);
        if (length && *length > largestMessage) {
            return {State::invalid};
        }
        if (!length || rest.size() < *length) {
            return {State::incomplete};
        }
        texts.append(rest.first(*length));
        rest = rest.sliced(*length);
    }
    return rest.isEmpty() ? decodedTexts(texts) : Decoded{State::invalid};
}

} // namespace kelm::openRequest
