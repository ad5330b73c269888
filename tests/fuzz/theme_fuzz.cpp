// Theme files of any bytes: what is read as a theme comes back from its own encoding, and everything else is refused.
#include "editor/themes/editor_theme.h"

#include <QJsonDocument>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using kelm::EditorTheme;

    const QByteArray json(reinterpret_cast<const char*>(data), qsizetype(size));
    const std::optional<EditorTheme> theme = EditorTheme::decode(json);
    if (!theme) {
        return 0;
    }
    for (const EditorTheme::ColorField& field : EditorTheme::colorFields()) {
        if (!((*theme).*field.member).toColor().isValid()) {
            std::abort();
        }
    }
    const std::optional<EditorTheme> again = EditorTheme::decode(QJsonDocument(theme->encode()).toJson());
    if (again != theme || qHash(*again) != qHash(*theme)) {
        std::abort();
    }
    return 0;
}
