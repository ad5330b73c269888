// Any folds and unfolds of any text: taking all back gives the text as it was.
#include "editor/folding/code_folding_manager.h"
#include "text/storage/text_storage.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;
    // The first bytes, up to a NUL, are pairs of line numbers; what follows is the text.
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const qsizetype end = bytes.indexOf('\0');
    const QString text = QString::fromUtf8(bytes.mid(end + 1));
    NotificationCenter center;
    TextStorage storage;
    storage.setText(text);
    CodeFoldingManager manager(center);
    manager.setStorage(&storage);
    for (const Language language : {Language::html, Language::python, Language::cpp}) {
        manager.detectFoldableRegions(language);
    }
    for (qsizetype i = 0; i + 1 < end; i += 2) {
        const qsizetype start = bytes[i] & 0x3f;
        const FoldableRegion region{0, start, start + (bytes[i + 1] & 0x3f), FoldType::braces};
        if ((bytes[i] & 0x40) != 0) {
            manager.unfold(region);
        } else {
            manager.fold(region);
        }
    }
    manager.unfoldAll();
    if (storage.text() != text || manager.isTextFolded()) {
        std::abort();
    }
    return 0;
}
