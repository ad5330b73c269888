#include "app/recovery/copy_records.h"

#include "text/storage/text_tree_builder.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace kelm {

namespace {

constexpr qsizetype sizeBytes = sizeof(quint32);
constexpr qsizetype checksumBytes = 8;
constexpr qsizetype frameBytes = sizeBytes + checksumBytes + 1;
constexpr qsizetype numberBytes = sizeof(quint64);
constexpr qsizetype stretchUnits = 65536;
constexpr qsizetype mostFirstUnits = 2000;
constexpr qsizetype mostShownUnits = 120;

QByteArray checksumOf(char kind, QByteArrayView content)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(QByteArrayView(&kind, 1));
    hash.addData(content);
    return hash.result().first(checksumBytes);
}

QByteArray numberBytesOf(qsizetype number)
{
    QByteArray bytes(numberBytes, Qt::Uninitialized);
    qToLittleEndian(quint64(number), bytes.data());
    return bytes;
}

/// The units of a stretch, as `kind` has them.
QByteArray encodeUnits(QStringView units, CopyRecord kind)
{
    if (kind == CopyRecord::narrow) {
        QByteArray bytes(units.size(), Qt::Uninitialized);
        std::transform(units.begin(), units.end(), bytes.begin(), [](QChar unit) { return char(unit.unicode()); });
        return bytes;
    }
    QByteArray bytes(2 * units.size(), Qt::Uninitialized);
    qToLittleEndian<quint16>(units.utf16(), units.size(), bytes.data());
    return bytes;
}

CopyRecord kindFor(QStringView units)
{
    constexpr char16_t lastNarrow = 0xff;
    // A sum without a way out in between, which the compiler takes eight at a time.
    char16_t all = 0;
    for (const QChar unit : units) {
        all = char16_t(all | unit.unicode());
    }
    return all <= lastNarrow ? CopyRecord::narrow : CopyRecord::wide;
}

std::optional<QString> decodeUnits(QByteArrayView bytes, CopyRecord kind)
{
    if (kind == CopyRecord::narrow) {
        return QString::fromLatin1(bytes);
    }
    if (kind != CopyRecord::wide || bytes.size() % 2 != 0) {
        return std::nullopt;
    }
    if (bytes.isEmpty()) {
        // What copies the units wants some.
        return QString();
    }
    QString units(bytes.size() / 2, Qt::Uninitialized);
    qFromLittleEndian<quint16>(bytes.data(), units.size(), units.data());
    return units;
}

/// A number of 8 bytes that is no more than `most`.
std::optional<qsizetype> readNumber(QByteArrayView bytes, qsizetype most)
{
    const auto number = qFromLittleEndian<quint64>(bytes.data());
    return number <= quint64(most) ? std::optional(qsizetype(number)) : std::nullopt;
}

/// False, with the text as it was, for an edit that the text has no place for.
bool applyEdit(TextTree& text, QByteArrayView content)
{
    constexpr qsizetype head = 2 * numberBytes + 1;
    if (content.size() < head) {
        return false;
    }
    const std::optional<qsizetype> start = readNumber(content, text.length());
    const std::optional<qsizetype> length =
        start ? readNumber(content.sliced(numberBytes), text.length() - *start) : std::nullopt;
    const std::optional<QString> units = decodeUnits(content.sliced(head), CopyRecord(content[head - 1]));
    if (!length || !units) {
        return false;
    }
    text.replace({*start, *length}, *units);
    return true;
}

/// Takes the text up to its end; absent when it does not come to one.
std::optional<TextTree> readText(CopyRecordReader& reader)
{
    TextTreeBuilder builder;
    while (reader.next()) {
        const std::optional<QByteArray> content = reader.content();
        if (!content) {
            return std::nullopt;
        }
        if (reader.kind() == CopyRecord::whole) {
            const bool isWhole =
                content->size() == numberBytes && readNumber(*content, builder.length()) == builder.length();
            return isWhole ? std::optional(builder.take()) : std::nullopt;
        }
        const std::optional<QString> units = decodeUnits(*content, reader.kind());
        if (!units) {
            return std::nullopt;
        }
        builder.append(*units);
    }
    return std::nullopt;
}

std::optional<CopyHeader> readHeader(CopyRecordReader& reader)
{
    if (!reader.next() || reader.kind() != CopyRecord::header) {
        return std::nullopt;
    }
    const std::optional<QByteArray> content = reader.content();
    return content ? decodeHeader(*content) : std::nullopt;
}

} // namespace

QByteArray copyRecord(CopyRecord kind, QByteArrayView content)
{
    QByteArray record(sizeBytes, Qt::Uninitialized);
    qToLittleEndian(quint32(content.size()), record.data());
    record.reserve(frameBytes + content.size());
    record.append(checksumOf(char(kind), content));
    record.append(char(kind));
    record.append(content);
    return record;
}

bool forEachTextRecord(const TextTree& text, const std::function<bool(const QByteArray&)>& take)
{
    for (qsizetype start = 0; start < text.length(); start += stretchUnits) {
        const QString units = text.substring({start, std::min(stretchUnits, text.length() - start)});
        const CopyRecord kind = kindFor(units);
        if (!take(copyRecord(kind, encodeUnits(units, kind)))) {
            return false;
        }
    }
    return take(copyRecord(CopyRecord::whole, numberBytesOf(text.length())));
}

QByteArray editRecord(TextRange range, const TextTree& text, TextRange inserted)
{
    const QString units = text.substring(inserted);
    const CopyRecord kind = kindFor(units);
    return copyRecord(CopyRecord::edit, numberBytesOf(range.location) + numberBytesOf(range.length) + char(kind) +
                                            encodeUnits(units, kind));
}

CopyRecordReader::CopyRecordReader(QIODevice& device) : device_(device), end_(device.size())
{
    isCopy_ = device_.read(copyMark.size()) == copyMark;
    next_ = copyMark.size();
}

bool CopyRecordReader::next()
{
    if (!isCopy_ || end_ - next_ < frameBytes || !device_.seek(next_)) {
        return false;
    }
    const QByteArray frame = device_.read(frameBytes);
    if (frame.size() != frameBytes) {
        return false;
    }
    size_ = qFromLittleEndian<quint32>(frame.constData());
    checksum_ = frame.sliced(sizeBytes, checksumBytes);
    kind_ = CopyRecord(frame.back());
    next_ += frameBytes + size_;
    return size_ <= largestRecord && next_ <= end_;
}

std::optional<QByteArray> CopyRecordReader::content()
{
    QByteArray content = device_.read(size_);
    const bool isRight = content.size() == qsizetype(size_) && checksumOf(char(kind_), content) == checksum_;
    return isRight ? std::optional(std::move(content)) : std::nullopt;
}

std::optional<CopyContent> readCopy(QIODevice& device)
{
    CopyRecordReader reader(device);
    std::optional<CopyHeader> header = readHeader(reader);
    std::optional<TextTree> text = header ? readText(reader) : std::nullopt;
    if (!text) {
        return std::nullopt;
    }
    while (reader.next()) {
        const std::optional<QByteArray> content = reader.content();
        if (!content) {
            break;
        }
        if (reader.kind() == CopyRecord::header) {
            if (const std::optional<CopyHeader> later = decodeHeader(*content)) {
                header = later;
            }
        } else if (reader.kind() != CopyRecord::edit || !applyEdit(*text, *content)) {
            break;
        }
    }
    return CopyContent{*std::move(header), *std::move(text)};
}

std::optional<CopySummary> readCopySummary(QIODevice& device)
{
    CopyRecordReader reader(device);
    const std::optional<CopyHeader> header = readHeader(reader);
    if (!header) {
        return std::nullopt;
    }
    CopySummary summary{*header, {}};
    bool isFirst = true;
    bool isWhole = false;
    while (reader.next()) {
        if (isWhole && reader.kind() != CopyRecord::header && reader.kind() != CopyRecord::edit) {
            break;
        }
        if (reader.kind() == CopyRecord::header) {
            const std::optional<QByteArray> content = reader.content();
            const std::optional<CopyHeader> later = content ? decodeHeader(*content) : std::nullopt;
            summary.header = later.value_or(summary.header);
        } else if (std::exchange(isFirst, false)) {
            const std::optional<QString> units = decodeUnits(reader.content().value_or(QByteArray()), reader.kind());
            summary.firstWords = units ? units->first(std::min(units->size(), mostFirstUnits)).simplified() : QString();
            summary.firstWords.truncate(mostShownUnits);
        }
        isWhole = isWhole || reader.kind() == CopyRecord::whole;
    }
    return isWhole ? std::optional(summary) : std::nullopt;
}

} // namespace kelm
