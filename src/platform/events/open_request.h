// The message by which a second start of the program hands its list to the first, and the answer to it.
#pragma once

#include <QByteArray>
#include <QStringList>
#include <QUuid>

class QDataStream;

/// A request as bytes: a mark, the sixteen bytes of its number, how many texts there are, and each text as its length
/// and its UTF-8 bytes, lengths and counts as four bytes with the highest first. A message of more than 64 MiB, or of
/// more than 65,536 texts, is none. The answer is another mark and the number of the request that it answers.
namespace kelm::openRequest {

inline constexpr qsizetype largestMessage = 64 * qsizetype(1024) * 1024;
inline constexpr qsizetype mostTexts = 65'536;

struct Request
{
    /// Stays the same when a start asks again, so that what was taken already is not taken once more.
    QUuid id;
    QStringList urlTexts;

    bool operator==(const Request&) const = default;
};

/// The message of a request; empty when it would be too large.
QByteArray encode(const Request& request);

/// What the first start says when it has taken the request of that number. All answers are of one length.
QByteArray answerTo(const QUuid& id);

enum class State { incomplete, invalid, complete };

/// Takes one message from the pieces in which it comes. Linear in the length of the message, and it never makes room
/// for what has not come.
class Reader
{
public:
    /// Takes what has come. What can no longer become a message is invalid at once and stays so.
    State add(QByteArrayView bytes);

    /// What has come whole: number and texts.
    const Request& request() const { return request_; }

private:
    /// Each takes its part whole or not at all, and tells by the stream's status which.
    void readHead(QDataStream& stream);
    void readText(QDataStream& stream);

    QByteArray pending_;
    State state_ = State::incomplete;
    bool hasHead_ = false;
    quint32 count_ = 0;
    qsizetype size_ = 0;
    Request request_;
};

} // namespace kelm::openRequest
