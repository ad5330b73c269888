#include "platform/files/utf8_file.h"

#include "platform/files/utf8_decoding.h"
#include "platform/files/utf8_file_reader.h"

#include <QStringEncoder>

#include <utility>
#include <vector>

namespace kelm {

namespace {

/// Takes a text in as one string.
class StringSink final : public Utf8Sink
{
public:
    void begin(int sections, qint64 bytes) override
    {
        sections_.assign(std::size_t(sections), QString());
        for (QString& section : sections_) {
            section.reserve(qsizetype(bytes) / sections);
        }
    }
    void append(int section, QStringView units) override { sections_[std::size_t(section)] += units; }

    QString take()
    {
        QString text = std::move(sections_.front());
        for (std::size_t section = 1; section < sections_.size(); ++section) {
            text += std::exchange(sections_[section], {});
        }
        text.squeeze();
        return text;
    }

private:
    std::vector<QString> sections_;
};

} // namespace

std::optional<QString> decodeUtf8Text(QByteArrayView bytes)
{
    QString text(bytes.size() + 1, Qt::Uninitialized);
    const QChar* const end = decodeUtf8To(text.data(), bytes);
    if (end == nullptr) {
        return std::nullopt;
    }
    text.resize(end - text.constData());
    return text;
}

QByteArray encodeUtf8Text(QStringView text)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    return encoder.encode(text);
}

std::variant<QString, FileError> readUtf8File(const QString& path)
{
    StringSink sink;
    if (std::optional<FileError> error = readUtf8File(path, sink)) {
        return *std::move(error);
    }
    return sink.take();
}

} // namespace kelm
