#include "app/state/recent_files.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/text/strict_json.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace kelm {

QByteArray encodeURLs(const QList<QUrl>& urls)
{
    QJsonArray array;
    for (const QUrl& url : urls) {
        array.append(url.toString(QUrl::FullyEncoded));
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::optional<QList<QUrl>> decodeURLs(const QByteArray& data)
{
    const std::optional<QJsonDocument> document = parseStrictJson(data);
    if (!document || !document->isArray()) {
        return std::nullopt;
    }
    QList<QUrl> urls;
    const QJsonArray array = document->array();
    for (const auto& value : array) {
        const QUrl url(value.toString(), QUrl::StrictMode);
        if (!value.isString() || url.isEmpty() || !url.isValid()) {
            return std::nullopt;
        }
        urls.append(url);
    }
    return urls;
}

QList<QUrl> existingFiles(const QList<QUrl>& urls)
{
    QList<QUrl> existing;
    std::copy_if(urls.begin(), urls.end(), std::back_inserter(existing), [](const QUrl& url) {
        const QString path = filePath(url);
        return !path.isEmpty() && isThere(path);
    });
    return existing;
}

} // namespace kelm
