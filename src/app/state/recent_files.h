// The stored form of the recent files.
#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <optional>

namespace kelm {

/// A JSON array with each URL in its percent-encoded form.
QByteArray encodeURLs(const QList<QUrl>& urls);

/// The URLs of such an array. Absent when `data` is none: no JSON, no array, or with an element that is no URL.
std::optional<QList<QUrl>> decodeURLs(const QByteArray& data);

/// Those of `urls` whose path is there on disk, in their order.
QList<QUrl> existingFiles(const QList<QUrl>& urls);

} // namespace kelm
