// JSON texts of any units: what is formatted is formatted for good, and a strict parser takes it and what it came from
// alike.
#include "editor/transforms/json_formatter.h"

#include <QJsonDocument>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString once = kelm::JSONFormatter::format(text, 2);
    if (kelm::JSONFormatter::format(once, 2) != once) {
        std::abort();
    }
    kelm::JSONFormatter::format(text, 4);
    // The toolkit's parser is laxer here and there and stricter in its depth: what it takes twice must say the same. It
    // drops a byte-order mark from the start of a string without escapes.
    const auto before = QJsonDocument::fromJson(text.toUtf8());
    const auto after = QJsonDocument::fromJson(once.toUtf8());
    const bool hasMark = text.contains(u'\ufeff') || once.contains(u'\ufeff');
    if (!hasMark && !before.isNull() && before != after) {
        std::abort();
    }
    return 0;
}
