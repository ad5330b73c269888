#include "app/recovery/recovery_store.h"

#include "app/recovery/replaced_bytes.h"
#include "platform/events/main_queue.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QPointer>

#include <algorithm>
#include <atomic>
#include <utility>

namespace kelm {

namespace {

/// A disk that does not answer holds the end up no longer.
constexpr std::chrono::seconds longestEnd{1};

} // namespace

/// What a document's file holds: what was read or saved, and what another program wrote since. Made on the main thread,
/// and then for the worker alone.
struct RecoveryStore::Origin
{
    /// Absent where nobody knows it, and where the file has gone or is no text any more.
    std::optional<TextTree> text;
    /// Of what was read or saved.
    std::optional<FileIdentity> identity;
};

struct RecoveryStore::Kept
{
    std::weak_ptr<Document> document;
    /// The name of the copy; empty until there is one.
    QString id = {};
    std::shared_ptr<Origin> origin = std::make_shared<Origin>();
    bool isOpen = true;
    /// Since the snapshot that was taken last.
    bool isChanged = false;
    /// Whether a snapshot is being copied.
    bool isInHand = false;
    /// Whether the copy that was taken last could not be written; the worker sets it.
    std::shared_ptr<std::atomic<bool>> hasFailed = std::make_shared<std::atomic<bool>>(false);
    /// The context of its connections.
    std::unique_ptr<QObject> watching = std::make_unique<QObject>();

    bool isDue() const { return isChanged || *hasFailed; }
};

RecoveryStore::RecoveryStore(Scheduler& scheduler, const QString& folder)
    : scheduler_(scheduler), folder_(folder.isEmpty() ? nullptr : std::make_shared<RecoveryFolder>(folder))
{
    if (isOn()) {
        worker_.add([folder = folder_, now = QDateTime::currentMSecsSinceEpoch()] {
            folder->takeReplaced(now);
            folder->prune({}, now);
        });
        refresh();
    }
}

RecoveryStore::~RecoveryStore()
{
    // By then the folder is this object's alone, and its lock goes with it.
    worker_.waitUntilIdle(longestEnd);
}

RecoveryStore::OnMain RecoveryStore::onMain()
{
    // Looked at on the main thread alone.
    return [store = QPointer<RecoveryStore>(this)](std::function<void(RecoveryStore&)> work) {
        onMainQueue([store, work = std::move(work)] {
            if (store) {
                work(*store);
            }
        });
    };
}

// ---- Documents ------------------------------------------------------------------------------------------------------

RecoveryStore::Kept* RecoveryStore::keptOf(const Document* document) const
{
    const auto found = kept_.find(document);
    return found != kept_.end() ? found->second.get() : nullptr;
}

void RecoveryStore::setDocuments(const Documents& documents)
{
    if (!isOn()) {
        return;
    }
    QSet<const Document*> open;
    for (const std::shared_ptr<Document>& document : documents) {
        open.insert(document.get());
        Kept* kept = keptOf(document.get());
        if (kept == nullptr) {
            kept = &watch(document);
            if (!document->isModified()) {
                setOrigin(*kept, *document);
            }
        }
        if (!std::exchange(kept->isOpen, true) || kept->id.isEmpty()) {
            kept->isChanged = document->isModified();
        }
    }
    QList<const Document*> closed;
    for (const auto& [document, kept] : kept_) {
        if (kept->isOpen && !open.contains(document)) {
            closed.append(document);
        }
    }
    for (const Document* document : std::as_const(closed)) {
        close(document, *keptOf(document));
    }
    begin();
    offer();
}

RecoveryStore::Kept& RecoveryStore::watch(const std::shared_ptr<Document>& document)
{
    const Document* const key = document.get();
    Kept& kept = *(kept_[key] = std::make_unique<Kept>());
    kept.document = document;
    QObject* const context = kept.watching.get();
    const auto change = [this, key] { noteChange(key); };
    connect(key, &Document::contentChanged, context, change);
    connect(key, &Document::fileURLChanged, context, change);
    connect(key, &Document::explicitLanguageChanged, context, change);
    connect(key, &Document::isModifiedChanged, context, [this, key] {
        // It was saved.
        if (!key->isModified()) {
            setOrigin(*keptOf(key), *key);
        }
    });
    connect(key, &Document::textIsOfFile, context, [this, key] {
        if (Kept* const its = keptOf(key)) {
            setOrigin(*its, *key);
        }
    });
    connect(key, &Document::otherTextIsInFile, context, [this, key](const std::optional<TextTree>& text) {
        if (Kept* const its = keptOf(key)) {
            setOriginText(*its, text);
        }
    });
    connect(key, &QObject::destroyed, context, [this, key] { drop(key); });
    return kept;
}

void RecoveryStore::drop(const Document* document)
{
    const auto found = kept_.find(document);
    // It may be one of its signals that is being answered, and a large text is let go by the worker.
    QObject* const watching = found->second->watching.release();
    disconnect(document, nullptr, watching, nullptr);
    watching->deleteLater();
    worker_.add(
        [folder = folder_, id = found->second->id, origin = std::move(found->second->origin)] { folder->letGo(id); });
    kept_.erase(found);
}

void RecoveryStore::setOrigin(Kept& kept, const Document& document)
{
    auto origin = std::make_shared<Origin>(Origin{document.text(), std::nullopt});
    const std::shared_ptr<Origin> before = std::exchange(kept.origin, origin);
    kept.isChanged = false;
    kept.hasFailed = std::make_shared<std::atomic<bool>>(false);
    worker_.add([folder = folder_, id = std::exchange(kept.id, {}), url = document.fileURL(), origin, before] {
        if (url) {
            origin->identity = url->isLocalFile() ? identityOf(nativePath(filePath(*url))) : std::nullopt;
        }
        if (!id.isEmpty()) {
            folder->remove(id);
        }
    });
}

void RecoveryStore::setOriginText(Kept& kept, const std::optional<TextTree>& text)
{
    worker_.add([origin = kept.origin, text] { origin->text = text; });
    kept.isChanged = true;
    begin();
}

void RecoveryStore::close(const Document* document, Kept& kept)
{
    kept.isOpen = false;
    if (!document->isModified()) {
        drop(document);
        return;
    }
    if (kept.isDue()) {
        copy(*document, kept);
    }
    refresh();
}

void RecoveryStore::noteSaved(const Document& document)
{
    if (Kept* const kept = keptOf(&document)) {
        setOrigin(*kept, document);
    }
}

// ---- Copying --------------------------------------------------------------------------------------------------------

void RecoveryStore::noteChange(const Document* document)
{
    if (Kept* const kept = keptOf(document); !std::exchange(kept->isChanged, true)) {
        begin();
    }
}

void RecoveryStore::begin()
{
    const bool isDue = std::any_of(kept_.begin(), kept_.end(), [](const auto& each) { return each.second->isChanged; });
    if (due_ || !isDue) {
        return;
    }
    due_ = std::make_unique<QObject>();
    scheduler_.after(delay, due_.get(), [this] {
        // The timer that made it may still look at it.
        const std::unique_ptr<QObject> done = std::move(due_);
        copyWhatIsDue();
    });
}

void RecoveryStore::copyWhatIsDue()
{
    for (const auto& [key, kept] : kept_) {
        const std::shared_ptr<Document> document = kept->document.lock();
        // One at a time: where the disk is slow, the changes of that time are copied together.
        if (document && kept->isChanged && !kept->isInHand) {
            copy(*document, *kept);
        }
    }
}

void RecoveryStore::copy(const Document& document, Kept& kept)
{
    kept.isChanged = false;
    kept.hasFailed->store(false);
    if (!document.isModified()) {
        return;
    }
    const bool isNew = kept.id.isEmpty();
    if (isNew) {
        kept.id = folder_->newId();
    }
    kept.isInHand = true;
    CopyHeader header{document.fileURL(), QDateTime::currentMSecsSinceEpoch(), document.explicitLanguage()};
    worker_.add([folder = folder_, id = kept.id, origin = kept.origin, text = document.text(), header,
                 open = isNew ? openIds() : QList<QString>(), key = &document, hasFailed = kept.hasFailed,
                 tell = onMain()]() mutable {
        std::optional<FileError> error;
        if (origin->text && *origin->text == text) {
            folder->remove(id);
        } else {
            header.identity = origin->identity;
            error = folder->write(id, header, text);
            hasFailed->store(error.has_value());
        }
        if (!open.isEmpty()) {
            folder->prune(open, header.time);
        }
        tell([key, error](RecoveryStore& store) { store.finishCopy(key, error); });
    });
}

void RecoveryStore::finishCopy(const Document* document, const std::optional<FileError>& error)
{
    Kept* const kept = keptOf(document);
    if (kept != nullptr) {
        kept->isInHand = false;
    }
    if (!error) {
        begin();
        return;
    }
    if (!retry_ && kept != nullptr) {
        retry_ = std::make_unique<QObject>();
        scheduler_.after(retryDelay, retry_.get(), [this] {
            const std::unique_ptr<QObject> done = std::move(retry_);
            for (const auto& [key, each] : kept_) {
                each->isChanged = each->isDue();
            }
            copyWhatIsDue();
        });
    }
    if (!std::exchange(hasToldOfFailure_, true)) {
        Q_EMIT failed(*error);
    }
}

bool RecoveryStore::finish(std::chrono::milliseconds longest)
{
    const QDeadlineTimer end(longest);
    bool isDone = true;
    // Twice, since what fails once may succeed the next time: there is no later one.
    for (int turn = 0; turn < 2 && isDone; ++turn) {
        for (const auto& [key, kept] : kept_) {
            const std::shared_ptr<Document> document = kept->document.lock();
            if (document && kept->isDue()) {
                copy(*document, *kept);
            }
        }
        isDone = worker_.waitUntilIdle(std::chrono::milliseconds(end.remainingTime()));
    }
    return isDone;
}

QString RecoveryStore::keepReplaced(const QUrl& url, const TextTree& text)
{
    if (!isOn()) {
        return {};
    }
    QString id = folder_->newId();
    CopyHeader header{url.isEmpty() ? std::nullopt : std::optional(url), QDateTime::currentMSecsSinceEpoch()};
    header.isReplaced = true;
    worker_.add([folder = folder_, id, header, text, tell = onMain()] {
        if (const std::optional<FileError> error = folder->write(id, header, text)) {
            tell([error](RecoveryStore& store) { store.finishCopy(nullptr, error); });
        }
        folder->letGo(id);
    });
    refresh();
    return id;
}

QString RecoveryStore::keepReplaced(const QUrl& url, const QByteArray& bytes)
{
    const ShownBytes shown = ShownBytes::of(bytes);
    // Bytes that the text does not give again are not saved over the file's.
    return keepReplaced(shown.isOther ? QUrl() : url, TextTree(shown.text));
}

// ---- What is offered ------------------------------------------------------------------------------------------------

QList<QString> RecoveryStore::openIds() const
{
    QList<QString> ids;
    for (const auto& [document, kept] : kept_) {
        if (kept->isOpen && !kept->id.isEmpty()) {
            ids.append(kept->id);
        }
    }
    return ids;
}

void RecoveryStore::refresh()
{
    if (!isOn()) {
        return;
    }
    worker_.add([folder = folder_, tell = onMain()] {
        tell([found = folder->texts()](RecoveryStore& store) {
            store.found_ = found;
            store.offer();
        });
    });
}

void RecoveryStore::offer()
{
    const QList<QString> open = openIds();
    QList<UnsavedText> texts;
    std::copy_if(found_.begin(), found_.end(), std::back_inserter(texts),
                 [&](const UnsavedText& text) { return !open.contains(text.id) && !taken_.contains(text.id); });
    if (std::exchange(texts_, texts) != texts_) {
        Q_EMIT textsChanged();
    }
}

std::shared_ptr<Document> RecoveryStore::closedDocument(const QString& id) const
{
    for (const auto& [document, kept] : kept_) {
        if (kept->id == id && !kept->isOpen) {
            return kept->document.lock();
        }
    }
    return nullptr;
}

void RecoveryStore::read(QString id, const Deliver& deliver)
{
    if (!isOn() || taken_.contains(id)) {
        return;
    }
    taken_.insert(id);
    offer();
    worker_.add([folder = folder_, id = std::move(id), newId = folder_->newId(), deliver, tell = onMain()] {
        tell([id, newId, deliver, content = folder->take(id, newId)](RecoveryStore& store) {
            if (!content) {
                store.taken_.remove(id);
                store.offer();
            }
            deliver(content, newId);
        });
    });
}

void RecoveryStore::adopt(const std::shared_ptr<Document>& document, const QString& id,
                          const std::optional<FileIdentity>& identity)
{
    Kept& kept = watch(document);
    kept.id = id;
    kept.origin->identity = identity;
}

void RecoveryStore::remove(QString id)
{
    if (!isOn()) {
        return;
    }
    for (const auto& [document, kept] : kept_) {
        if (kept->id == id) {
            kept->id.clear();
        }
    }
    taken_.insert(id);
    offer();
    worker_.add([folder = folder_, id = std::move(id)] { folder->remove(id); });
}

} // namespace kelm
