#include "app/state/watched_files.h"

#include "app/state/file_failures.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

WatchedFiles::WatchedFiles(Notices& notices, Scheduler& scheduler)
    : notices_(notices),
      lookDebounce_(scheduler, lookDelay, [this] { look(); }),
      quietDebounce_(scheduler, quietTime, [this] { look(); })
{
    connect(&watch_, &FileWatch::changed, this, &WatchedFiles::lookAgain);
}

WatchedFiles::~WatchedFiles() = default;

// ---- Which files ----------------------------------------------------------------------------------------------------

const WatchedFiles::File* WatchedFiles::fileOf(const Document& document) const
{
    const auto file =
        std::find_if(files_.begin(), files_.end(), [&document](const File& each) { return each.id == document.id(); });
    return file != files_.end() ? &*file : nullptr;
}

WatchedFiles::File* WatchedFiles::fileOf(const Document& document)
{
    return const_cast<File*>(std::as_const(*this).fileOf(document));
}

void WatchedFiles::setDocuments(const QList<std::shared_ptr<Document>>& documents)
{
    const auto isClosed = [&documents](const File& file) { return !documents.contains(file.document.lock()); };
    for (File& file : files_) {
        if (isClosed(file)) {
            forget(file);
            closed_.append(file);
            if (const std::shared_ptr<Document> document = file.document.lock()) {
                connect(document.get(), &QObject::destroyed, this, &WatchedFiles::forgetEnded, Qt::UniqueConnection);
            }
        }
    }
    closed_.removeIf([](const File& file) {
        const std::shared_ptr<Document> document = file.document.lock();
        return !document || !document->isModified();
    });
    files_.removeIf(isClosed);
    for (const std::shared_ptr<Document>& document : documents) {
        follow(document);
    }
    watchFiles();
}

void WatchedFiles::follow(const std::shared_ptr<Document>& document)
{
    if (!document->fileURL() || !document->fileURL()->isLocalFile() || fileOf(*document) != nullptr) {
        return;
    }
    const QUrl url = *document->fileURL();
    const auto before = std::find_if(closed_.cbegin(), closed_.cend(), [&document, &url](const File& file) {
        return file.id == document->id() && file.url == url;
    });
    if (before != closed_.cend()) {
        files_.append(*before);
        files_.last().told.reset();
        files_.last().givenUp.reset();
        closed_.erase(before);
        lookAgain();
        return;
    }
    const auto read = read_.constFind(url);
    const std::optional<FileIdentity> known =
        read != read_.cend() ? std::optional(*read) : identityOf(nativePath(filePath(url)));
    read_.remove(url);
    files_.append({.id = document->id(),
                   .document = document,
                   .url = url,
                   .known = known,
                   .text = document->text(),
                   .isGone = !known});
}

void WatchedFiles::forget(File& file)
{
    if (const Notices::Id notice = std::exchange(file.notice, 0)) {
        notices_.remove(notice);
    }
}

void WatchedFiles::forgetEnded()
{
    closed_.removeIf([](const File& file) { return file.document.expired(); });
}

void WatchedFiles::watchFiles()
{
    QList<QByteArray> paths;
    for (const File& file : std::as_const(files_)) {
        paths.append(nativePath(filePath(file.url)));
    }
    watch_.setFiles(paths);
}

void WatchedFiles::willRead(const QUrl& url)
{
    if (const std::optional<FileIdentity> identity = identityOf(nativePath(filePath(url)))) {
        read_[url] = *identity;
    }
}

void WatchedFiles::willShow(const QUrl& url, const FileIdentity& read)
{
    FileIdentity known = read;
    if (const std::optional<FileIdentity> now = identityOf(nativePath(filePath(url)))) {
        // A device may have another number since the system was started anew.
        known.device = now->device;
    }
    read_[url] = known;
    lookDebounce_.restart();
}

void WatchedFiles::willSave(const Document& document)
{
    if (File* file = fileOf(document); file != nullptr && file->isGone) {
        forget(*file);
    }
}

void WatchedFiles::noteSaved(const std::shared_ptr<Document>& document, const TextTree& text)
{
    follow(document);
    File* file = fileOf(*document);
    if (file == nullptr) {
        return;
    }
    forget(*file);
    ++file->age;
    const bool isElsewhere = file->url != *document->fileURL() || &files_.constLast() == file;
    file->url = *document->fileURL();
    file->known = identityOf(nativePath(filePath(file->url)));
    file->text = text;
    file->told.reset();
    file->sight.reset();
    file->givenUp.reset();
    if (std::exchange(file->isGone, !file->known) || isElsewhere) {
        watchFiles();
    }
}

bool WatchedFiles::hasUnseenChange(const Document& document) const
{
    const File* const file = fileOf(document);
    if (file == nullptr || file->url != document.fileURL()) {
        return false;
    }
    const std::optional<FileIdentity> now = identityOf(nativePath(filePath(file->url)));
    return now && now != file->known;
}

void WatchedFiles::noteSeen(const Document& document)
{
    if (File* file = fileOf(document)) {
        forget(*file);
        ++file->age;
        file->known = identityOf(nativePath(filePath(file->url)));
        file->told.reset();
    }
}

// ---- Looking --------------------------------------------------------------------------------------------------------

void WatchedFiles::lookAgain()
{
    // Not put off by what comes meanwhile, or a busy folder would never be looked at. And not before a file that is to
    // be quiet has been so: the look that waits for it sees all others too.
    if (!lookDebounce_.isPending() && !quietDebounce_.isPending() && !files_.isEmpty()) {
        lookDebounce_.restart();
    }
}

void WatchedFiles::look()
{
    if (task_.isRunning()) {
        isMissed_ = true;
        return;
    }
    std::vector<FileLook> looks;
    for (const File& file : std::as_const(files_)) {
        if (const std::shared_ptr<Document> document = file.document.lock()) {
            looks.push_back({document->id(), file.age, file.url, file.known, file.told, file.isGone,
                             file.givenUp.has_value(), file.sight, file.text, document->text()});
        }
    }
    task_.start([this, looks = std::move(looks)](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        std::vector<FileLook::Finding> findings;
        for (const FileLook& each : looks) {
            findings.push_back(each(stop));
        }
        return [this, findings = std::move(findings)] { take(findings); };
    });
}

void WatchedFiles::take(const std::vector<FileLook::Finding>& findings)
{
    bool isQuiet = true;
    bool isWatchLost = false;
    for (const FileLook::Finding& finding : findings) {
        const auto file = std::find_if(files_.begin(), files_.end(),
                                       [&finding](const File& each) { return each.id == finding.document; });
        const std::shared_ptr<Document> document = file != files_.end() ? file->document.lock() : nullptr;
        if (document && file->age != finding.age) {
            isMissed_ = true;
        } else if (document) {
            isWatchLost = isWatchLost || finding.outcome != FileLook::Outcome::same;
            isQuiet = take(*file, *document, finding) && isQuiet;
        }
    }
    if (isWatchLost) {
        watchFiles();
    }
    if (!isQuiet) {
        lookDebounce_.cancel();
        quietDebounce_.restart();
    }
    if (std::exchange(isMissed_, false)) {
        lookAgain();
    }
}

bool WatchedFiles::take(File& file, Document& document, const FileLook::Finding& finding)
{
    using Outcome = FileLook::Outcome;
    file.sight.reset();
    switch (finding.outcome) {
    case Outcome::same:
        break;
    case Outcome::unquiet:
        file.sight = finding.sight;
        return false;
    case Outcome::gone:
        file.isGone = true;
        file.givenUp.reset();
        file.told.reset();
        document.noteOtherTextInFile(std::nullopt);
        tell(file,
             u"%1 is no longer on disk. Its text stays here, and saving it puts it back."_s.arg(shownName(file.url)));
        break;
    case Outcome::unreadable:
        // Told of, but not known: a save keeps what it writes over.
        file.told = finding.sight;
        file.isGone = false;
        file.givenUp.reset();
        document.noteOtherTextInFile(std::nullopt);
        tell(file, u"%1 has changed on disk and could not be read: %2."_s.arg(
                       shownName(file.url), finding.error.value_or(FileError{}).reason));
        break;
    case Outcome::sameText:
        if (!file.givenUp) {
            forget(file);
            file.known = finding.sight;
            file.isGone = false;
            file.told.reset();
            if (document.text() == finding.text) {
                document.noteTextOfFile();
            } else {
                document.noteOtherTextInFile(finding.text);
            }
            break;
        }
        [[fallthrough]];
    case Outcome::newText:
        return takeText(file, document, finding);
    }
    return true;
}

bool WatchedFiles::takeText(File& file, Document& document, const FileLook::Finding& finding)
{
    file.isGone = false;
    // What was typed since is not what was given up.
    const bool isGivenUp = file.givenUp && document.text() == *file.givenUp;
    file.givenUp.reset();
    if (document.isModified() && !isGivenUp) {
        if (document.text() == finding.text) {
            // Another program wrote what stands here, so that there is nothing to choose.
            forget(file);
            file.known = finding.sight;
            file.text = finding.text;
            document.noteTextOfFile();
            return true;
        }
        document.noteOtherTextInFile(finding.text);
        offerReload(file, *finding.sight);
        return true;
    }
    forget(file);
    file.known = finding.sight;
    file.text = finding.text;
    file.told.reset();
    document.takeFileText(finding.text);
    return true;
}

// ---- Telling --------------------------------------------------------------------------------------------------------

void WatchedFiles::tell(File& file, const QString& text, std::vector<NoticeOffer> offers)
{
    forget(file);
    file.notice = notices_.report(text, std::move(offers));
}

void WatchedFiles::offerReload(File& file, const FileIdentity& identity)
{
    file.told = identity;
    const std::weak_ptr<Document> document = file.document;
    const auto withFile = [this, document](const auto& act) {
        const std::shared_ptr<Document> open = document.lock();
        File* const there = open ? fileOf(*open) : nullptr;
        if (there != nullptr) {
            act(*there);
        }
    };
    const auto reload = [this, withFile] {
        withFile([this](File& there) {
            there.givenUp = there.document.lock()->text();
            look();
        });
    };
    const auto keepMine = [withFile] {
        withFile([](File& there) {
            ++there.age;
            there.known = std::exchange(there.told, std::nullopt);
        });
    };
    tell(file, u"%1 has changed on disk, and here too."_s.arg(shownName(file.url)),
         {{u"Reload"_s, reload}, {u"Keep mine"_s, keepMine}});
}

} // namespace kelm
