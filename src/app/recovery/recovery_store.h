// Copies of unsaved texts, kept up while they are typed.
#pragma once

#include "app/document/document.h"
#include "app/recovery/recovery_folder.h"
#include "platform/events/scheduler.h"
#include "platform/events/serial_worker.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

namespace kelm {

/// Keeps a copy of each document whose text differs from what was read or saved last, beyond the end of the program
/// however it ends. A copy goes when its document is saved and when its text comes to be what it was, as long as the
/// file holds that too; it stays when the document is closed, and is offered from then on.
///
/// Of a key the store only learns that the text has changed. A moment later it takes a snapshot, and all else is done
/// by a thread of its own. Main thread only.
class RecoveryStore final : public QObject
{
    Q_OBJECT

public:
    using Documents = QList<std::shared_ptr<Document>>;
    /// Takes what a copy holds, and the name that the copy has from now on; nothing for one that is gone or cannot be
    /// read.
    using Deliver = std::function<void(const std::optional<CopyContent>& content, const QString& id)>;

    /// From a change to the beginning of its copy. What is typed meanwhile is in it.
    static constexpr std::chrono::milliseconds delay{1000};
    /// Until a copy that failed is tried again.
    static constexpr std::chrono::seconds retryDelay{10};

    /// The copies are in `folder`, which need not exist; a store without a folder keeps nothing and offers nothing.
    RecoveryStore(Scheduler& scheduler, const QString& folder);
    /// Begins no copy any more, and waits a moment for those that are begun; see `finish`.
    ~RecoveryStore() override;

    /// The documents that are open from now on. The texts of those that were open and are not any more stay in the
    /// store, and are offered.
    void setDocuments(const Documents& documents);

    /// A document's text is what its file holds.
    void noteSaved(const Document& document);

    /// Keeps what a save of another text is about to take the place of. Gives the name of its copy.
    QString keepReplaced(const QUrl& url, const TextTree& text);
    /// The same with the bytes of a file, which are shown as well as they can be when they are no UTF-8.
    QString keepReplaced(const QUrl& url, const QByteArray& bytes);

    /// The copies that can be opened, the latest first: those of no open document.
    const QList<UnsavedText>& texts() const { return texts_; }
    /// Looks for them again, since other programs end too.
    void refresh();
    /// The document of a copy, while it still lives; null for others.
    std::shared_ptr<Document> closedDocument(const QString& id) const;
    /// Reads a copy, once for each. A document that is made of it is to be given to `adopt`, before it is shown.
    void read(QString id, const Deliver& deliver);
    /// The text of a document is that of a copy that was read, which is the document's from now on. `identity` is that
    /// of the copy's header.
    void adopt(const std::shared_ptr<Document>& document, const QString& id,
               const std::optional<FileIdentity>& identity);
    /// Removes a copy that nobody wants.
    void remove(QString id);

    /// Begins all copies that are due at once, for a caller behind which no time passes for a while.
    void copyWhatIsDue();
    /// Begins all copies that are due, and those that failed once more, and waits for them, but not longer than
    /// `longest`. False when some are not finished then; the program may end all the same.
    bool finish(std::chrono::milliseconds longest);

Q_SIGNALS:
    void textsChanged();
    /// A copy could not be written; once for each store.
    void failed(const kelm::FileError& error);

private:
    struct Origin;
    struct Kept;

    bool isOn() const { return folder_ != nullptr; }
    Kept* keptOf(const Document* document) const;
    Kept& watch(const std::shared_ptr<Document>& document);
    void drop(const Document* document);
    /// What the document holds is what its file holds, or what it was made with.
    void setOrigin(Kept& kept, const Document& document);
    /// The file holds `text` by now, if any: what the origin was is in need of a copy, and `text` is in none.
    void setOriginText(Kept& kept, const std::optional<TextTree>& text);
    void noteChange(const Document* document);
    void close(const Document* document, Kept& kept);
    /// Has what has changed be copied after the delay.
    void begin();
    void copy(const Document& document, Kept& kept);
    void finishCopy(const Document* document, const std::optional<FileError>& error);
    void offer();
    QList<QString> openIds() const;
    /// From a worker: has the main thread do something with the store, unless that is gone by then.
    using OnMain = std::function<void(std::function<void(RecoveryStore&)> work)>;
    OnMain onMain();

    Scheduler& scheduler_;
    /// Used by the worker alone, but for the making of names.
    std::shared_ptr<RecoveryFolder> folder_;
    std::unordered_map<const Document*, std::unique_ptr<Kept>> kept_;
    /// What the folder had when it was looked at last.
    QList<UnsavedText> found_;
    /// The names of copies that were removed or read since the store began. None comes again.
    QSet<QString> taken_;
    QList<UnsavedText> texts_;
    /// The contexts of what waits: dropping one cancels that.
    std::unique_ptr<QObject> due_;
    std::unique_ptr<QObject> retry_;
    bool hasToldOfFailure_ = false;
    /// Ends first.
    SerialWorker worker_;
};

} // namespace kelm
