#include "app/state/document_saving.h"

#include "app/state/left_files.h"
#include "app/state/notices.h"
#include "app/state/text_file.h"
#include "app/state/watched_files.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/files/open_file.h"

#include <cerrno>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

DocumentSaving::DocumentSaving(Notices& notices, WatchedFiles& watchedFiles, ReplacedFiles& replacedFiles,
                               KeepForLater keepForLater)
    : notices_(notices),
      watchedFiles_(watchedFiles),
      replacedFiles_(replacedFiles),
      keepForLater_(std::move(keepForLater))
{}

std::optional<FileError> DocumentSaving::save(const std::shared_ptr<Document>& document, const QUrl& url)
{
    if (!url.isLocalFile()) {
        return notLocal(url);
    }
    watchedFiles_.willSave(*document);
    const TextTree text = document->text();
    const QByteArray content = encodedText(text);
    unseen_.reset();
    if (document->fileURL() == url && watchedFiles_.hasUnseenChange(*document) &&
        !keepUnseen(*document, url, content)) {
        return FileError{descriptionOf(url) + u": What another program wrote there could not be kept."_s,
                         u"another program has changed it, and what it wrote could not be kept. Saving once more "
                         u"writes over it"_s};
    }
    std::optional<QUrl> old;
    const auto keep = [&](const QByteArray& oldContent) {
        old = replacedFiles_.keepReplaced(url, oldContent);
        return old.has_value();
    };
    const std::variant<Saved, FileError> result = saveFile(filePath(url), content, keep);
    if (const auto* error = std::get_if<FileError>(&result)) {
        // What a failure in the middle could not take back is kept on. The other program's text is still there, and
        // unseen.
        if (unseen_) {
            replacedFiles_.forget(unseen_->kept);
        }
        return *error;
    }
    if (old) {
        replacedFiles_.forget(*old);
    }
    document->setFileURL(url);
    document->setIsModified(false);
    watchedFiles_.noteSaved(document, text);
    tidyBeside({url});
    if (const std::optional<Unseen> unseen = std::exchange(unseen_, {})) {
        tellOfUnseen(url, *unseen);
    }
    tell(url, std::get<Saved>(result));
    return std::nullopt;
}

bool DocumentSaving::keepUnseen(const Document& document, const QUrl& url, const QByteArray& newContent)
{
    const OpenFile file = OpenFile::openForReading(nativePath(filePath(url)));
    const std::optional<QByteArray> there = file.isOpen() ? file.readAll() : std::nullopt;
    if (there == newContent || (!file.isOpen() && errno == ENOENT)) {
        return true;
    }
    if (there) {
        if (const std::optional<QUrl> kept = replacedFiles_.keepReplaced(url, *there)) {
            unseen_ = Unseen{*there, *kept};
        }
    }
    if (!unseen_) {
        // Whoever saves once more knows of it.
        watchedFiles_.noteSeen(document);
    }
    return unseen_.has_value();
}

void DocumentSaving::tellOfUnseen(const QUrl& url, const Unseen& unseen)
{
    const std::function<void()> open = keepForLater_(url, unseen.content);
    replacedFiles_.forget(unseen.kept);
    notices_.report(u"%1 was saved over what another program had written there."_s.arg(shownName(url)),
                    {{u"Open what was there"_s, open}});
}

void DocumentSaving::tell(const QUrl& url, Saved saved)
{
    if (saved == Saved::byReplacing || toldInPlace_.contains(url)) {
        return;
    }
    toldInPlace_.insert(url);
    const QString name = shownName(url);
    notices_.report(saved == Saved::inPlaceForItsFolder
                        ? u"%1 was written in place, since nothing may be replaced in its folder."_s.arg(name)
                        : u"%1 was written in place, so that its other names stay the same file."_s.arg(name));
}

} // namespace kelm
