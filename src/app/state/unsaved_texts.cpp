#include "app/state/unsaved_texts.h"

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Where a document goes among others: beside the tabs that it stood beside, as far as they are still there.
qsizetype placeAmong(const QList<std::shared_ptr<Document>>& documents, const QList<QUuid>& order, const QUuid& id)
{
    const auto indexOf = [&documents](const QUuid& wanted) {
        const auto found = std::find_if(documents.begin(), documents.end(),
                                        [&wanted](const auto& document) { return document->id() == wanted; });
        return found != documents.end() ? found - documents.begin() : -1;
    };
    const qsizetype former = order.indexOf(id);
    for (qsizetype before = former - 1; before >= 0; --before) {
        if (const qsizetype index = indexOf(order[before]); index >= 0) {
            return index + 1;
        }
    }
    for (qsizetype behind = former + 1; former >= 0 && behind < order.size(); ++behind) {
        if (const qsizetype index = indexOf(order[behind]); index >= 0) {
            return index;
        }
    }
    return documents.size();
}

} // namespace

UnsavedTexts::UnsavedTexts(Scheduler& scheduler, Notices& notices, const QString& folder, Tabs tabs)
    : notices_(notices), tabs_(std::move(tabs)), store_(scheduler, folder)
{
    QObject::connect(&store_, &RecoveryStore::failed, &store_, [this](const FileError& error) {
        notices_.report(u"Unsaved text could not be copied to a safe place: "_s + error.message);
    });
}

void UnsavedTexts::noteTabs(const Documents& before, const std::shared_ptr<Document>& currentBefore)
{
    const Documents now = tabs_.documents();
    auto closed = std::make_shared<Closed>();
    for (const std::shared_ptr<Document>& document : before) {
        closed->order.append(document->id());
        const bool isNothing = !document->fileURL() && document->text().isEmpty();
        if (!now.contains(document) && document->isModified() && !isNothing && !closedWith(document)) {
            closed->documents.append(document);
        }
    }
    store_.setDocuments(now);
    if (!closed->documents.isEmpty()) {
        const bool wasSeen = closed->documents.contains(currentBefore);
        closed->current = wasSeen ? currentBefore->id() : closed->documents.constFirst()->id();
        tell(closed);
    }
}

void UnsavedTexts::tell(const std::shared_ptr<Closed>& closed)
{
    closed->notice =
        notices_.report(u"Closed with unsaved changes"_s, {{u"Reopen"_s, [this, closed] { reopen(*closed); }}});
    closed_.removeIf([](const std::weak_ptr<Closed>& each) { return each.expired(); });
    closed_.append(closed);
    if (closed_.size() > mostNotices) {
        if (const std::shared_ptr<Closed> oldest = closed_.takeFirst().lock()) {
            notices_.remove(oldest->notice);
        }
    }
}

std::shared_ptr<UnsavedTexts::Closed> UnsavedTexts::closedWith(const std::shared_ptr<Document>& document) const
{
    for (const std::weak_ptr<Closed>& each : closed_) {
        if (std::shared_ptr<Closed> closed = each.lock(); closed && closed->documents.contains(document)) {
            return closed;
        }
    }
    return nullptr;
}

void UnsavedTexts::reopen(const Closed& closed)
{
    const Documents open = tabs_.documents();
    Documents documents;
    for (const std::shared_ptr<Document>& document : closed.documents) {
        if (!open.contains(document)) {
            documents.append(document);
        }
    }
    const auto seen = std::find_if(documents.begin(), documents.end(),
                                   [&closed](const auto& document) { return document->id() == closed.current; });
    if (!documents.isEmpty()) {
        show(documents, closed.order, seen != documents.end() ? *seen : documents.constFirst());
    }
}

void UnsavedTexts::open(const QString& id, const Opened& opened)
{
    if (const std::shared_ptr<Document> document = store_.closedDocument(id)) {
        const std::shared_ptr<Closed> closed = closedWith(document);
        reopen(document, closed ? closed->order : QList<QUuid>());
        if (opened) {
            opened(document);
        }
        return;
    }
    store_.read(id, [this, opened](const std::optional<CopyContent>& content, const QString& copy) {
        if (!content) {
            notices_.report(u"The unsaved text could not be opened"_s);
            if (opened) {
                opened(nullptr);
            }
            return;
        }
        auto document =
            std::make_shared<Document>(content->text, content->header.url, content->header.language, std::nullopt);
        document->setIsModified(true);
        store_.adopt(document, copy, content->header.identity);
        if (content->header.url && content->header.identity) {
            tabs_.willShow(*content->header.url, *content->header.identity);
        }
        show({document}, {}, document);
        if (opened) {
            opened(document);
        }
    });
}

void UnsavedTexts::reopen(const std::shared_ptr<Document>& document, const QList<QUuid>& order)
{
    const std::shared_ptr<Closed> closed = closedWith(document);
    show({document}, order, document);
    const Documents open = tabs_.documents();
    if (closed && std::all_of(closed->documents.begin(), closed->documents.end(),
                              [&open](const auto& each) { return open.contains(each); })) {
        notices_.remove(closed->notice);
    }
}

void UnsavedTexts::show(const Documents& documents, const QList<QUuid>& order, const std::shared_ptr<Document>& current)
{
    Documents all = tabs_.documents();
    for (const std::shared_ptr<Document>& document : documents) {
        put(document, order, all);
    }
    tabs_.show(all, all.indexOf(current));
}

void UnsavedTexts::put(const std::shared_ptr<Document>& document, const QList<QUuid>& order, Documents& documents) const
{
    const auto same = std::find_if(documents.begin(), documents.end(), [&document](const auto& each) {
        return document->fileURL() && each->fileURL() == document->fileURL();
    });
    if (same != documents.end() && !(*same)->isModified()) {
        // The file was opened anew; its own text is on the disk.
        *same = document;
        return;
    }
    if (same != documents.end()) {
        // Two unsaved texts of one file: the save of one must not be the end of the other.
        document->setExplicitLanguage(document->language());
        document->setFileURL(std::nullopt);
    }
    documents.insert(placeAmong(documents, order, document->id()), document);
}

} // namespace kelm
