// The records that the file of a copy is made of.
#pragma once

#include "app/recovery/copy_header.h"
#include "text/storage/text_range.h"
#include "text/storage/text_tree.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QIODevice>

#include <functional>
#include <optional>

namespace kelm {

// A copy begins with `copyMark`. Records follow: the size of what a record holds (4 bytes), a checksum of its kind and
// of what it holds (8 bytes), its kind (1 byte), and what it holds. First a header, then the text in stretches, then
// the number of its units, which ends it; behind that edits of the text and headers that take the place of the first,
// as they came. All numbers are little-endian. A record that was cut off, or is not as it was written, ends the file
// for whoever reads it.
//
// The text is kept unit for unit, unpaired surrogates too, for which UTF-8 has no form: a stretch holds one byte for
// each unit where all of them are below 256, and else two.

/// The kinds of records.
enum class CopyRecord : char {
    header = 'H',
    /// A stretch of the text, a byte for each unit.
    narrow = 'N',
    /// The same, two bytes for each.
    wide = 'W',
    /// The end of the text: the number of its units.
    whole = '.',
    /// Where an edit begins and how many units it takes away, both in 8 bytes, the kind of what it puts in, and that.
    edit = 'E',
};

inline constexpr QByteArrayView copyMark = "KelmWright copy 1\n";
/// No record holds more bytes.
inline constexpr quint32 largestRecord = 64 * 1024 * 1024;

/// A whole record.
QByteArray copyRecord(CopyRecord kind, QByteArrayView content);

/// Calls `take` with the records of a text in their order, until that returns false. False when it did.
bool forEachTextRecord(const TextTree& text, const std::function<bool(const QByteArray& record)>& take);

/// The record of an edit; what it puts in is small enough for one.
QByteArray editRecord(TextRange range, const TextTree& text, TextRange inserted);

/// Goes through the records of a copy without reading what nobody asks for.
class CopyRecordReader
{
public:
    /// `device` is open, stands at its start and outlives the reader.
    explicit CopyRecordReader(QIODevice& device);

    /// Whether there is another record, which then is the one in hand.
    bool next();
    CopyRecord kind() const { return kind_; }
    /// What the record in hand holds; absent when it is not what was written. Once for each.
    std::optional<QByteArray> content();

private:
    QIODevice& device_;
    qint64 end_ = 0;
    qint64 next_ = 0;
    QByteArray checksum_;
    quint32 size_ = 0;
    CopyRecord kind_ = CopyRecord::whole;
    bool isCopy_ = false;
};

/// What a copy holds.
struct CopyContent
{
    CopyHeader header;
    TextTree text;
};

/// Reads a whole copy, with the edits behind it up to the first that is damaged. Absent when the copy itself is, or is
/// none. From any thread.
std::optional<CopyContent> readCopy(QIODevice& device);

/// What a list shows of a copy.
struct CopySummary
{
    CopyHeader header;
    /// The first words of the text, on one line; as the text was when it was copied whole.
    QString firstWords;
};

/// Reads little more than the headers of a copy. From any thread.
std::optional<CopySummary> readCopySummary(QIODevice& device);

} // namespace kelm
