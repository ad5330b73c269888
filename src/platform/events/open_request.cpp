#include "platform/events/open_request.h"

#include "platform/files/utf8_file.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <optional>
#include <utility>

namespace kelm::openRequest {

namespace {

constexpr QByteArrayView mark("kelm-open-3\n");
constexpr QByteArrayView answerMark("kelm-taken-3\n");

void writeText(QDataStream& stream, const QString& text)
{
    const QByteArray bytes = encodeUtf8Text(text);
    stream.writeBytes(bytes.constData(), static_cast<uint>(bytes.size()));
}

} // namespace

QByteArray encode(const Request& request)
{
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream.writeRawData(mark.data(), static_cast<int>(mark.size()));
    stream << request.id << quint8(request.waits ? 1 : 0);
    writeText(stream, request.tokens.startupId);
    writeText(stream, request.tokens.activation);
    stream << static_cast<quint32>(request.items.size());
    for (const Item& item : request.items) {
        stream << static_cast<quint8>(item.kind) << item.line << item.column;
        writeText(stream, item.text);
    }
    return message.size() > largestMessage || request.items.size() > mostItems ? QByteArray() : message;
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
    while (stream.status() == QDataStream::Ok && (!hasHead_ || request_.items.size() < count_)) {
        stream.startTransaction();
        hasHead_ ? readItem(stream) : readHead(stream);
        stream.commitTransaction();
    }
    if (stream.status() == QDataStream::ReadPastEnd) {
        state_ = State::incomplete;
    } else {
        state_ = stream.status() == QDataStream::Ok && stream.atEnd() ? State::complete : State::invalid;
    }
    taken_ += stream.device()->pos();
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
    Request head;
    quint8 waits = 0;
    stream >> head.id >> waits;
    if (waits > 1) {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
    head.waits = waits == 1;
    head.tokens.startupId = readText(stream);
    head.tokens.activation = readText(stream);
    stream >> count_;
    if (stream.status() == QDataStream::Ok && count_ > mostItems) {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
    hasHead_ = stream.status() == QDataStream::Ok;
    if (hasHead_) {
        request_ = std::move(head);
    }
}

void Reader::readItem(QDataStream& stream)
{
    quint8 kind = 0;
    Item item;
    stream >> kind;
    if (kind > static_cast<quint8>(Item::Kind::folderPanel)) {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
    stream >> item.line >> item.column;
    item.kind = static_cast<Item::Kind>(kind);
    item.text = readText(stream);
    if (stream.status() == QDataStream::Ok) {
        request_.items.append(item);
    }
}

QString Reader::readText(QDataStream& stream)
{
    quint32 length = 0;
    stream >> length;
    if (stream.status() == QDataStream::Ok && taken_ + stream.device()->pos() + length > largestMessage) {
        stream.setStatus(QDataStream::ReadCorruptData);
    } else if (stream.device()->bytesAvailable() < length) {
        stream.setStatus(QDataStream::ReadPastEnd);
    }
    if (stream.status() != QDataStream::Ok) {
        return {};
    }
    QByteArray bytes(length, Qt::Uninitialized);
    stream.readRawData(bytes.data(), static_cast<int>(length));
    std::optional<QString> text = decodeUtf8Text(bytes);
    if (!text) {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
    return std::move(text).value_or(QString());
}

} // namespace kelm::openRequest
