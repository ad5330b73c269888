#include "platform/events/open_request.h"

#include "platform/files/utf8_file.h"

#include <QIODevice>

#include <optional>

namespace kelm::openRequest {

namespace {

constexpr QByteArrayView mark("kelm-open-1\n");
constexpr qsizetype numberSize = sizeof(quint32);

} // namespace

QByteArray encode(const QStringList& texts)
{
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream.writeRawData(mark.data(), static_cast<int>(mark.size()));
    stream << static_cast<quint32>(texts.size());
    for (const QString& text : texts) {
        const QByteArray bytes = encodeUtf8Text(text);
        stream.writeBytes(bytes.constData(), static_cast<uint>(bytes.size()));
    }
    return message.size() > largestMessage || texts.size() > mostTexts ? QByteArray() : message;
}

State Reader::read()
{
    while (!hasHead_ || texts_.size() < count_) {
        stream_.startTransaction();
        hasHead_ ? readText() : readHead();
        if (!stream_.commitTransaction()) {
            return stream_.status() == QDataStream::ReadPastEnd ? State::incomplete : State::invalid;
        }
    }
    return stream_.atEnd() ? State::complete : State::invalid;
}

void Reader::readHead()
{
    const QByteArray begin = stream_.device()->peek(mark.size());
    if (!mark.startsWith(begin)) {
        stream_.setStatus(QDataStream::ReadCorruptData);
        return;
    }
    stream_.skipRawData(static_cast<int>(mark.size()));
    stream_ >> count_;
    if (count_ > mostTexts) {
        stream_.setStatus(QDataStream::ReadCorruptData);
    }
    hasHead_ = stream_.status() == QDataStream::Ok;
    size_ = mark.size() + numberSize;
}

void Reader::readText()
{
    quint32 length = 0;
    stream_ >> length;
    const qsizetype size = size_ + numberSize + length;
    // A byte array's own operator would copy what there is of it each time that more has come.
    if (size > largestMessage) {
        stream_.setStatus(QDataStream::ReadCorruptData);
    } else if (stream_.device()->bytesAvailable() < length) {
        stream_.setStatus(QDataStream::ReadPastEnd);
    }
    if (stream_.status() != QDataStream::Ok) {
        return;
    }
    QByteArray bytes(length, Qt::Uninitialized);
    stream_.readRawData(bytes.data(), static_cast<int>(length));
    if (const std::optional<QString> text = decodeUtf8Text(bytes)) {
        texts_.append(*text);
        size_ = size;
    } else {
        stream_.setStatus(QDataStream::ReadCorruptData);
    }
}

} // namespace kelm::openRequest
