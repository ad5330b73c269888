#include "app/recovery/copy_header.h"

#include "platform/files/file_url.h"

#include <QDataStream>
#include <QIODevice>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr quint16 headerVersion = 1;

enum HeaderFlag : quint8 {
    hasUrl = 1,
    hasLanguage = 2,
    hasIdentity = 4,
    replacedFlag = 8,
};

QDataStream& operator<<(QDataStream& stream, const FileIdentity& identity)
{
    return stream << identity.device << identity.inode << identity.size << identity.written;
}

QDataStream& operator>>(QDataStream& stream, FileIdentity& identity)
{
    return stream >> identity.device >> identity.inode >> identity.size >> identity.written;
}

} // namespace

QString CopyHeader::title() const
{
    return url ? lastPathComponent(*url) : u"Untitled"_s;
}

QByteArray encodeHeader(const CopyHeader& header)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    const int flags = (header.url ? hasUrl : 0) | (header.language ? hasLanguage : 0) |
                      (header.identity ? hasIdentity : 0) | (header.isReplaced ? replacedFlag : 0);
    stream << headerVersion << quint8(flags) << header.time;
    if (header.url) {
        stream << header.url->toEncoded();
    }
    if (header.language) {
        stream << header.language->rawValue();
    }
    if (header.identity) {
        stream << *header.identity;
    }
    return bytes;
}

std::optional<CopyHeader> decodeHeader(QByteArrayView bytes)
{
    const QByteArray held = QByteArray::fromRawData(bytes.data(), bytes.size());
    QDataStream stream(held);
    stream.setVersion(QDataStream::Qt_6_0);
    CopyHeader header;
    quint16 version = 0;
    quint8 flags = 0;
    stream >> version >> flags >> header.time;
    if (version != headerVersion) {
        return std::nullopt;
    }
    header.isReplaced = (flags & replacedFlag) != 0;
    if ((flags & hasUrl) != 0) {
        QByteArray url;
        stream >> url;
        header.url = QUrl::fromEncoded(url);
    }
    if ((flags & hasLanguage) != 0) {
        QString name;
        stream >> name;
        // One that is not known any more is that of the file's name again.
        header.language = Language::fromRawValue(name);
    }
    if ((flags & hasIdentity) != 0) {
        stream >> header.identity.emplace();
    }
    if (stream.status() != QDataStream::Ok || (header.url && !header.url->isValid())) {
        return std::nullopt;
    }
    return header;
}

} // namespace kelm
