// The message by which a second start of the program hands its list to the first, and the answer to it.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>

#include <utility>

class QDataStream;

/// A request as bytes: a mark, the sixteen bytes of its number, a byte that says whether the start waits, the two
/// tokens of the desktop, how many items there are, and each of those as a byte for its kind, line, column and text. A
/// text is its length and its UTF-8 bytes; numbers are four bytes with the highest first. A message of more than 64
/// MiB, or of more than 65,536 items, is none. The answer is another mark and the number of the request that it
/// answers. To a start that waits one more byte comes when what it has waited for is over.
namespace kelm::openRequest {

inline constexpr qsizetype largestMessage = 64 * qsizetype(1024) * 1024;
inline constexpr qsizetype mostItems = 65'536;

/// One thing that is to be opened.
struct Item
{
    enum class Kind : quint8 {
        /// The text is that of an absolute URL.
        url,
        /// The text names a copy of an unsaved text, which whoever opens it takes over.
        copy,
        /// A new tab; there is no text.
        newFile,
        /// The panel in which a person chooses the project's folder; there is no text.
        folderPanel,
    };

    Item() = default;
    Item(QString itemText, quint32 itemLine = 0, quint32 itemColumn = 0, Kind itemKind = Kind::url)
        : kind(itemKind), line(itemLine), column(itemColumn), text(std::move(itemText))
    {}

    Kind kind = Kind::url;
    /// Where in the text, both counted from 1; 0 when nothing is said of it.
    quint32 line = 0;
    quint32 column = 0;
    QString text;

    bool operator==(const Item&) const = default;
};

/// By what the desktop knows that a person has asked for this start, so that a window may come to the front for it.
/// Each is empty where there is none.
struct Tokens
{
    /// That of the X Window System's startup notification.
    QString startupId;
    /// That of a Wayland compositor.
    QString activation;

    bool isEmpty() const { return startupId.isEmpty() && activation.isEmpty(); }
    bool operator==(const Tokens&) const = default;
};

struct Request
{
    /// Stays the same when a start asks again, so that what was taken already is not taken once more.
    QUuid id = {};
    QList<Item> items = {};
    Tokens tokens = {};
    /// Whether the start goes on until the tabs that it opens are closed.
    bool waits = false;

    bool operator==(const Request&) const = default;
};

/// What became of the tabs that a start has waited for, as it is said to it: the worst of them. In the order from good
/// to bad.
enum class Outcome : char {
    /// Each was closed with its text saved, or as it was opened.
    saved = 's',
    /// One was closed with unsaved changes.
    unsaved = 'u',
    /// One could not be opened.
    failed = 'x',
    /// The program ended before it opened anything: whoever asked can ask anew.
    untaken = 'z',
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

    /// What has come whole.
    const Request& request() const { return request_; }

private:
    /// Each takes its part whole or not at all, and tells by the stream's status which.
    void readHead(QDataStream& stream);
    void readItem(QDataStream& stream);
    /// The same within the message's bounds.
    QString readText(QDataStream& stream);

    QByteArray pending_;
    State state_ = State::incomplete;
    bool hasHead_ = false;
    quint32 count_ = 0;
    /// How much of the message is not pending any more.
    qint64 taken_ = 0;
    Request request_;
};

} // namespace kelm::openRequest
