#include "app/state/watched_file_look.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"

#include <utility>

namespace kelm {

namespace {

/// `text`, with all that it has in common with `other` at its start and its end taken from there: comparing the two
/// costs next to nothing then, and so does putting the one in the place of the other.
TextTree sharing(const TextTree& text, const TextTree& other)
{
    const qsizetype start = commonStart(other, text);
    const qsizetype end = commonEnd(other, text, start);
    TextTree shared = other;
    shared.replace(TextRange::between(start, other.length() - end),
                   text.part(TextRange::between(start, text.length() - end)));
    return shared;
}

} // namespace

FileLook::Finding FileLook::operator()(const std::atomic<bool>& stop) const
{
    Finding finding{.document = document, .age = age, .sight = identityOf(nativePath(filePath(url)))};
    const bool isKnown = finding.sight ? finding.sight == known && !isGone : isGone;
    const bool isTold = finding.sight && finding.sight == told && !wantsReload;
    if ((isKnown && !wantsReload) || isTold) {
        return finding;
    }
    // Written out, since an absent look and a look that found nothing are not the same.
    if (!before.has_value() || *before != finding.sight) {
        finding.outcome = Outcome::unquiet;
        return finding;
    }
    if (!finding.sight) {
        finding.outcome = Outcome::gone;
        return finding;
    }
    return read(std::move(finding), stop);
}

FileLook::Finding FileLook::read(Finding finding, const std::atomic<bool>& stop) const
{
    auto result = readTextFile(url, [&stop](double) { return !stop; });
    if (identityOf(nativePath(filePath(url))) != finding.sight) {
        finding.outcome = Outcome::unquiet;
        finding.sight.reset();
    } else if (auto* error = std::get_if<FileError>(&result)) {
        finding.outcome = Outcome::unreadable;
        finding.error = std::move(*error);
    } else {
        const auto& text = std::get<TextTree>(result);
        finding.outcome = text == fileText ? Outcome::sameText : Outcome::newText;
        finding.text = sharing(text, documentText);
    }
    return finding;
}

} // namespace kelm
