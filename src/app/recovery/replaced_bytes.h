// What a file held before it was written over in place.
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>

namespace kelm {

/// The bytes of a file that is about to be written over, as they are kept in a file of their own until the new ones are
/// there: one line that names the file, and then the bytes as they are.
struct ReplacedBytes
{
    /// A local file; empty where nobody knows it.
    QUrl url;
    QByteArray content;

    /// What the names of such files begin with.
    static const QString prefix;

    QByteArray encoded() const;
    /// What does not begin with such a line is content alone.
    static ReplacedBytes decoded(const QByteArray& bytes);

    friend bool operator==(const ReplacedBytes&, const ReplacedBytes&) = default;
};

/// The text of bytes that were kept, as well as it can be shown.
struct ShownBytes
{
    QString text;
    /// It is no UTF-8, and saving the text would not give the bytes again.
    bool isOther = false;

    static ShownBytes of(const QByteArray& bytes);
};

/// Gives each of those that programs which were killed have left in a folder to `keep`, and removes it once `keep`
/// returns true. One that a program holds the lock of is left to it, an empty one that is younger than a minute to the
/// program that is about to lock it (an older one is removed), and of several programs that look at the same time one
/// alone takes each. `now` and the time of the bytes are in milliseconds since 1970. From any thread.
void takeLeftBytes(const QString& folder, qint64 now,
                   const std::function<bool(const ReplacedBytes& bytes, qint64 time)>& keep);

} // namespace kelm
