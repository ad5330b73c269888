// Documents on their way to the disk.
#pragma once

#include "app/document/document.h"
#include "app/state/file_failures.h"
#include "app/state/replaced_files.h"
#include "platform/files/atomic_file.h"
#include "platform/files/file_error.h"

#include <QSet>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

namespace kelm {

class Notices;
class WatchedFiles;

/// Writes the texts of documents to files and tells what a person should know of it. What another program has put there
/// unseen is kept before it is written over, and so is what is written in place; a notice offers the one, and the other
/// is not needed any more once the new text is there. Main thread only.
class DocumentSaving
{
public:
    /// Keeps what another program had written to a file beyond the end of this one; gives what opens it in a tab of its
    /// own.
    using KeepForLater = std::function<std::function<void()>(const QUrl& file, const QByteArray& content)>;

    /// All of it outlives the object.
    DocumentSaving(Notices& notices, WatchedFiles& watchedFiles, ReplacedFiles& replacedFiles,
                   KeepForLater keepForLater);

    /// Writes a document's text to `url`, and makes that its file. What went wrong otherwise, and then nothing has
    /// changed.
    std::optional<FileError> save(const std::shared_ptr<Document>& document, const QUrl& url);

private:
    /// What the save in hand takes the place of, unseen so far, and where it is until the new text is there.
    struct Unseen
    {
        QByteArray content;
        QUrl kept;
    };

    /// Keeps what nobody has seen yet. False when it could not be kept.
    bool keepUnseen(const Document& document, const QUrl& url, const QByteArray& newContent);
    void tellOfUnseen(const QUrl& url, const Unseen& unseen);
    void tell(const QUrl& url, Saved saved);

    Notices& notices_;
    WatchedFiles& watchedFiles_;
    ReplacedFiles& replacedFiles_;
    const KeepForLater keepForLater_;
    std::optional<Unseen> unseen_;
    /// The files of which was told that they are written in place.
    QSet<QUrl> toldInPlace_;
};

} // namespace kelm
