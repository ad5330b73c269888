// Files that change while their texts are open.
#pragma once

#include "app/document/document.h"
#include "app/state/notices.h"
#include "app/state/watched_file_look.h"
#include "platform/events/background_task.h"
#include "platform/events/file_watch.h"
#include "platform/events/scheduler.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QUrl>
#include <QUuid>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// Watches the files of the open documents. A document that is not modified takes what another program wrote; for one
/// that is, a notice offers to; of a file that has vanished a notice tells. A file is looked at by its identity, read
/// only when that is another one, and not before it has stayed the same for a while, since a program may be in the
/// middle of writing it. What is looked at and read is so on a worker. Main thread only.
class WatchedFiles final : public QObject
{
    Q_OBJECT

public:
    /// How long a file has to stay as it is before it is read.
    static constexpr std::chrono::milliseconds quietTime{200};
    /// What happens to many files at once is looked at once.
    static constexpr std::chrono::milliseconds lookDelay{50};

    /// Both outlive it.
    WatchedFiles(Notices& notices, Scheduler& scheduler);
    ~WatchedFiles() override;

    /// The documents that are open now. Those with a file are watched, and the others no more.
    void setDocuments(const QList<std::shared_ptr<Document>>& documents);

    /// To be called before a file is read for a document: what is changed afterwards is seen.
    void willRead(const QUrl& url);
    /// To be called before a document is shown whose text was made from the file as it was then: what has changed since
    /// is seen.
    void willShow(const QUrl& url, const FileIdentity& read);
    /// The document is about to be saved: that its file has vanished need not be told any longer.
    void willSave(const Document& document);
    /// The document's text is that of its file from now on, as the program itself wrote it.
    void noteSaved(const std::shared_ptr<Document>& document, const TextTree& text);
    /// Whether the file is another one than that which was last read or written for the document, and is there.
    bool hasUnseenChange(const Document& document) const;
    /// The person has been told of how the file is now, and what the program writes next is meant.
    void noteSeen(const Document& document);

    /// Looks at all of them soon: to be called when anything may have been missed.
    void lookAgain();
    /// Whether nothing is being looked at, nor waits for it.
    bool isSettled() const { return !task_.isRunning() && !lookDebounce_.isPending() && !quietDebounce_.isPending(); }
    /// Of how many files it keeps the text: those of the open documents, and those of closed ones that live on.
    qsizetype keptTexts() const { return files_.size() + closed_.size(); }

private:
    /// What is known of one document's file.
    struct File
    {
        QUuid id;
        std::weak_ptr<Document> document;
        QUrl url;
        /// As it was last read or written; absent when nothing is known or it was not there.
        std::optional<FileIdentity> known = std::nullopt;
        /// The text that it had then; shares its pieces with the document's.
        TextTree text = {};
        /// As the person was told that it is; the document has another text.
        std::optional<FileIdentity> told = std::nullopt;
        /// What the last look saw, when that was new.
        std::optional<FileLook::Sight> sight = std::nullopt;
        /// Grows when the program itself has written it, or what is known of it was changed.
        quint64 age = 0;
        bool isGone = false;
        /// The document's text that is to make way for that of the file, when the person wants so.
        std::optional<TextTree> givenUp = std::nullopt;
        Notices::Id notice = 0;
    };

    File* fileOf(const Document& document);
    const File* fileOf(const Document& document) const;
    void follow(const std::shared_ptr<Document>& document);
    void forget(File& file);
    /// Lets go of what is kept of closed documents that live no more.
    void forgetEnded();
    void watchFiles();
    void look();
    void take(const std::vector<FileLook::Finding>& findings);
    /// Each takes what one look found. False when the file has to be looked at again.
    bool take(File& file, Document& document, const FileLook::Finding& finding);
    bool takeText(File& file, Document& document, const FileLook::Finding& finding);
    void tell(File& file, const QString& text, std::vector<NoticeOffer> offers = {});
    void offerReload(File& file, const FileIdentity& identity);

    Notices& notices_;
    QList<File> files_;
    /// Those of modified documents that were closed and live on, since they may be opened again.
    QList<File> closed_;
    QHash<QUrl, FileIdentity> read_;
    FileWatch watch_;
    Debounce lookDebounce_;
    Debounce quietDebounce_;
    BackgroundTask task_;
    bool isMissed_ = false;
};

} // namespace kelm
