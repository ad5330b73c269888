// What becomes of texts that are closed without having been saved.
#pragma once

#include "app/document/document.h"
#include "app/recovery/recovery_store.h"
#include "app/state/notices.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <functional>
#include <memory>

namespace kelm {

/// Keeps copies of the documents that are open, and gives back those that were closed with unsaved changes: by a notice
/// from memory, with all that belongs to them, and else from their copies. Nothing opens by itself. Main thread only.
class UnsavedTexts
{
public:
    using Documents = QList<std::shared_ptr<Document>>;

    /// The tabs, and what shows others in one go.
    struct Tabs
    {
        std::function<Documents()> documents;
        std::function<void(const Documents& documents, qsizetype current)> show;
        /// Told before a document is shown whose text was made from its file as it was then.
        std::function<void(const QUrl& url, const FileIdentity& read)> willShow;
    };

    /// How many notices of closed tabs there are at most. The texts of older ones are opened from their copies.
    static constexpr qsizetype mostNotices = 10;

    /// The copies are in `folder`; there are none when it is empty.
    UnsavedTexts(Scheduler& scheduler, Notices& notices, const QString& folder, Tabs tabs);

    RecoveryStore& store() { return store_; }

    /// There are other tabs than before. Tells of those that were closed with unsaved changes.
    void noteTabs(const Documents& before, const std::shared_ptr<Document>& currentBefore);

    /// Takes the document that a copy was opened as; null for a copy that could not be.
    using Opened = std::function<void(const std::shared_ptr<Document>& document)>;

    /// Opens the text of a copy as a modified document, bound to its file as before. A failure is told.
    void open(const QString& id, const Opened& opened = {});

    /// Shows a document again that was closed, beside those of `order` that it stood beside. What is open again is
    /// offered no longer.
    void reopen(const std::shared_ptr<Document>& document, const QList<QUuid>& order);

private:
    /// Tabs that were closed in one go.
    struct Closed
    {
        Documents documents;
        /// All tabs as they stood.
        QList<QUuid> order;
        /// Which of them was seen.
        QUuid current;
        Notices::Id notice = 0;
    };

    std::shared_ptr<Closed> closedWith(const std::shared_ptr<Document>& document) const;
    void tell(const std::shared_ptr<Closed>& closed);
    void reopen(const Closed& closed);
    void show(const Documents& documents, const QList<QUuid>& order, const std::shared_ptr<Document>& current);
    /// Puts a document among others, one for each file.
    void put(const std::shared_ptr<Document>& document, const QList<QUuid>& order, Documents& documents) const;

    Notices& notices_;
    const Tabs tabs_;
    RecoveryStore store_;
    /// The notices hold them.
    QList<std::weak_ptr<Closed>> closed_;
};

} // namespace kelm
