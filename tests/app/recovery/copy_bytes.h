// Copies of unsaved texts as bytes, made and read.
#pragma once

#include "app/recovery/copy_records.h"

#include <QBuffer>

namespace kelm::test {

inline QByteArray copyOf(const CopyHeader& header, const TextTree& text)
{
    QByteArray bytes = copyMark.toByteArray() + copyRecord(CopyRecord::header, encodeHeader(header));
    forEachTextRecord(text, [&bytes](const QByteArray& record) {
        bytes += record;
        return true;
    });
    return bytes;
}

inline std::optional<CopyContent> contentOf(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::ReadOnly) ? readCopy(buffer) : std::nullopt;
}

inline std::optional<CopySummary> summaryOf(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::ReadOnly) ? readCopySummary(buffer) : std::nullopt;
}

} // namespace kelm::test
