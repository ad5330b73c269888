// Any bytes as what is stored in JSON: strict reading takes what the toolkit's parser takes too, and what is read comes
// back from its own writing.
#include "app/kept_ready/keyboard_shortcut.h"
#include "app/state/recent_files.h"
#include "fuzz/require.h"
#include "platform/text/strict_json.h"

#include <QJsonDocument>
#include <QUrl>

#include <algorithm>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    const QByteArray json(reinterpret_cast<const char*>(data), qsizetype(size));
    if (const auto document = parseStrictJson(json)) {
        const auto again = parseStrictJson(document->toJson());
        // The toolkit drops a byte-order mark from the start of a string without escapes.
        require(again && (*again == *document || json.contains("\xef\xbb\xbf") || json.contains("\\u")));
    }
    const auto urls = decodeURLs(json);
    // Others than those of files are read, and never written.
    const auto isOfFile = [](const QUrl& url) { return url.isLocalFile() && !url.hasQuery() && !url.hasFragment(); };
    if (urls && std::all_of(urls->begin(), urls->end(), isOfFile)) {
        require(decodeURLs(encodeURLs(*urls)) == urls);
    }
    if (const auto shortcut = KeyboardShortcut::decoded(json)) {
        require(KeyboardShortcut::decoded(shortcut->encoded()) == shortcut);
    }
    return 0;
}
