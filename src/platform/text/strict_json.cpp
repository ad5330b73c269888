#include "platform/text/strict_json.h"

#include "platform/text/json_reader.h"

namespace kelm {

namespace {

struct AnyJson : JsonHandler<AnyJson>
{};

bool isStrict(QByteArrayView text)
{
    if (text.startsWith("\xef\xbb\xbf")) {
        text = text.sliced(3);
    }
    JsonStream<rapidjson::UTF8<>> stream(text.begin(), text.end());
    AnyJson handler;
    return readJson(stream, handler);
}

} // namespace

std::optional<QJsonDocument> parseStrictJson(const QByteArray& text)
{
    QJsonParseError error;
    QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError || !isStrict(text)) {
        return std::nullopt;
    }
    return document;
}

} // namespace kelm
