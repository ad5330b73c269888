// The message by which a second start of the program hands its list to the first.
#pragma once

#include <QByteArray>
#include <QDataStream>
#include <QStringList>

/// A list of texts as bytes: a mark, the number of texts, and each text as its length and its UTF-8 bytes, the numbers
/// as four bytes with the highest first. A message of more than 64 MiB, or of more
/// than 65,536 texts, is none.
namespace kelm::openRequest {

inline constexpr qsizetype largestMessage = 64 * qsizetype(1024) * 1024;
inline constexpr qsizetype mostTexts = 65'536;

/// The message of a list; empty when it would be too large.
QByteArray encode(const QStringList& texts);

enum class State { incomplete, invalid, complete };

/// Takes one message from a device as it comes there. Linear in the length of the message, and it never makes room for
/// what has not come.
class Reader
{
public:
    /// The device, which is open, outlives the reader.
    explicit Reader(QIODevice& device) : stream_(&device) {}

    /// Reads what has come. What can no longer become a message is invalid at once; of such a device no more is read.
    State read();

    /// The texts that have come whole.
    const QStringList& texts() const { return texts_; }

private:
    /// Each takes its part whole or not at all, and tells by the stream's status which.
    void readHead();
    void readText();

    QDataStream stream_;
    bool hasHead_ = false;
    quint32 count_ = 0;
    qsizetype size_ = 0;
    QStringList texts_;
};

} // namespace kelm::openRequest
