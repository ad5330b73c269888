// What a save is about to write over.
#pragma once

#include "platform/files/open_file.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <map>
#include <optional>

namespace kelm {

/// Keeps what files held before they were written over. Main thread only.
class ReplacedFiles
{
public:
    virtual ~ReplacedFiles() = default;

    /// Puts what the file held on the disk; gives the file that holds it from then on, or nothing when it could not be
    /// kept.
    virtual std::optional<QUrl> keepReplaced(const QUrl& file, const QByteArray& content) = 0;

    /// What was kept is not needed any more. Does nothing for what is gone.
    virtual void forget(const QUrl& kept) = 0;
};

/// Keeps each as a file of its own, which only this user can read, in a folder: that of the store of unsaved texts,
/// which offers what a program that was killed has left. Until it is forgotten, or the program ends, a lock says that
/// it is this program's; only some of many that were not forgotten have one.
class ReplacedFilesFolder final : public ReplacedFiles
{
public:
    /// The folder is made, with those above it, when it is first needed.
    explicit ReplacedFilesFolder(QString folder) : folder_(std::move(folder)) {}

    std::optional<QUrl> keepReplaced(const QUrl& file, const QByteArray& content) override;
    void forget(const QUrl& kept) override;

private:
    const QString folder_;
    std::map<QUrl, OpenFile> held_;
};

} // namespace kelm
