#include "platform/events/open_request.h"

#include "platform/files/utf8_file.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <optional>

namespace kelm::openRequest {

namespace {

constexpr QByteArrayView mark("kelm-open-2\n");
constexpr QByteArrayView answerMark("kelm-taken-2\n");
constexpr qsizetype numberSize = sizeof(quint32);
constexpr qsizetype idSize = 16;

} // namespace

QByteArray encode(const Request& request)
{
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream.writeRawData(mark.data(), static_cast<int>(mark.size()));
    stream << request.id << static_cast<quint32>(request.urlTexts.size());
    for (const QString& text : request.urlTexts) {
        const QByteArray bytes = encodeUtf8Text(text);
        stream.writeBytes(bytes.constData(), static_cast<uint>(bytes.size()));
    }
    return message.size() > largestMessage || request.urlTexts.size() > mostTexts ? QByteArray() : message;
}

QByteArray answerTo(const QUuid& id)
{
    return answerMark.toByteArray() + id.toRfc4122();
}

State Reader::add(QByteArrayView bytes)
{
    if (state_ == State::invalid) {
        return state_;
    }
    pending_.append(bytes);
    // The stream shares no bytes that are taken from the front below, since that would copy them.
    QDataStream stream(QByteArray::fromRawData(pending_.constData(), pending_.size()));
    while (stream.status() == QDataStream::Ok && (!hasHead_ || request_.urlTexts.size() < count_)) {
        stream.startTransaction();
        hasHead_ ? readText(stream) : readHead(stream);
        stream.commitTransaction();
    }
    if (stream.status() == QDataStream::ReadPastEnd) {
        state_ = State::incomplete;
    } else {
        state_ = stream.status() == QDataStream::Ok && stream.atEnd() ? State::complete : State::invalid;
    }
    pending_.remove(0, stream.device()->pos());
    return state_;
}

void Reader::readHead(QDataStream& stream)
{
    const qsizetype common = std::min(mark.size(), pending_.size());
    if (mark.first(common) != QByteArrayView(pending_).first(common)) {
        stream.setStatus(QDataStream::ReadCorruptData);
        return;
    }
    stream.skipRawData(static_cast<int>(mark.size()));
    stream >> request_.id >> count_;
    if (stream.status() == QDataStream::Ok && count_ > mostTexts) {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
    hasHead_ = stream.status() == QDataStream::Ok;
    size_ = mark.size() + idSize + numberSize;
}

void Reader::readText(QDataStream& stream)
{
    quint32 length = 0;
    stream >> length;
    const qsizetype size = size_ + numberSize + length;
    if (stream.status() == QDataStream::Ok && size > largestMessage) {
        stream.setStatus(QDataStream::ReadCorruptData);
    } else if (stream.device()->bytesAvailable() < length) {
        stream.setStatus(QDataStream::ReadPastEnd);
    }
    if (stream.status() != QDataStream::Ok) {
        return;
    }
    QByteArray bytes(length, Qt::Uninitialized);
    stream.readRawData(bytes.data(), static_cast<int>(length));
    if (const std::optional<QString> text = decodeUtf8Text(bytes)) {
        request_.urlTexts.append(*text);
        size_ = size;
    } else {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
}

} // namespace kelm::openRequest
