// The folder of the copies of unsaved texts.
#pragma once

#include "app/recovery/copy_file.h"
#include "app/recovery/copy_header.h"
#include "app/recovery/copy_records.h"
#include "platform/files/file_error.h"
#include "platform/files/open_file.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <atomic>
#include <map>
#include <optional>

namespace kelm {

/// One copy, as a list names it.
struct UnsavedText
{
    /// Names the copy in its folder.
    QString id;
    CopyHeader header;
    QString firstWords;

    friend bool operator==(const UnsavedText&, const UnsavedText&) = default;
};

/// Keeps the copies of one program, and finds those of programs that have ended. Folder and files are for their owner
/// alone.
///
/// The name of a copy begins with a number by chance that each program draws for itself. A lock on a file of that
/// number, which the system drops when the program ends, however it ends, tells others that the copies are in use: no
/// program touches those of another that runs. Whoever takes one over renames it, which only one can.
///
/// For one thread at a time.
class RecoveryFolder
{
public:
    /// How much is kept. Of more than that the oldest go first, but none before it has come to its age.
    struct Bounds
    {
        qsizetype copies = 200;
        qint64 bytes = 500'000'000;
        qint64 leastAge = 24LL * 60 * 60 * 1000;
    };

    /// The folder need not exist: it is made for the first copy.
    explicit RecoveryFolder(const QString& path) : RecoveryFolder(path, Bounds()) {}
    RecoveryFolder(QString path, const Bounds& bounds);
    /// Leaves the copies where they are.
    ~RecoveryFolder();
    RecoveryFolder(const RecoveryFolder&) = delete;
    RecoveryFolder& operator=(const RecoveryFolder&) = delete;

    /// A name for a new copy of this program, behind those that it gave before; from any thread.
    QString newId();

    /// Has a copy hold a text, and makes it if need be. What went wrong, the copy being as it was then, or nothing.
    std::optional<FileError> write(const QString& id, const CopyHeader& header, const TextTree& text);
    /// Nothing more is written to a copy soon: what is kept in memory for that is let go.
    void letGo(const QString& id) { copies_.erase(id); }
    /// Removes a copy; one that is not there, or is another program's, is none.
    void remove(const QString& id);

    /// The copies of this program and of those that have ended, the latest first.
    QList<UnsavedText> texts();
    /// Reads a copy, which from then on has the name `newId` of this program. Absent, with all as it was, when it is
    /// gone, damaged, or that of another program that runs.
    std::optional<CopyContent> take(const QString& id, const QString& newId);

    /// Removes what is beyond the bounds but for `kept`, and what programs that have ended left half written. `now` is
    /// in milliseconds since 1970.
    void prune(const QList<QString>& kept, qint64 now);

    /// Makes copies of what programs that were killed had kept while they wrote over it in place.
    void takeReplaced(qint64 now);

private:
    struct Found;

    /// Makes the folder and locks this program's number; false, with `errno` set, when that fails.
    bool begin();
    bool isOurs(const QString& id) const;
    QByteArray pathOf(const QString& name) const;
    /// Whether a program has ended, by its number. Holds its lock as long as the result is kept.
    OpenFile lockOfEnded(const QString& session) const;
    /// The files of the folder that may be touched, by the numbers of programs that have ended and of this one.
    QList<Found> find() const;

    const QString path_;
    const Bounds bounds_;
    const QString session_;
    std::atomic<quint64> lastId_ = 0;
    /// Holds the lock of this program.
    OpenFile lock_;
    /// The copies that are written.
    std::map<QString, CopyFile> copies_;
};

} // namespace kelm
