// Any bytes as what is stored in JSON: strict reading takes what the toolkit's parser takes too, and what is read comes
// back from its own writing.
#include "app/kept_ready/keyboard_shortcut.h"
#include "app/state/recent_files.h"
#include "platform/text/strict_json.h"

#include <QJsonDocument>
#include <QUrl>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    const QByteArray json(reinterpret_cast<const char*>(data), qsizetype(size));
    if (const auto document = parseStrictJson(json)) {
        const auto again = parseStrictJson(document->toJson());
        require(again && *again == *document);
    }
    const auto urls = decodeURLs(json);
    // Others than those of files are read, and never written.
    if (urls && std::all_of(urls->begin(), urls->end(), [](const QUrl& url) { return url.isLocalFile(); })) {
        require(decodeURLs(encodeURLs(*urls)) == urls);
    }
    if (const auto shortcut = KeyboardShortcut::decoded(json)) {
        require(KeyboardShortcut::decoded(shortcut->encoded()) == shortcut);
    }
    return 0;
}
