#include "run/attributed_text.h"

namespace kelm {

QRgb resolved(const TextColor& color, Appearance appearance)
{
    if (const SystemColor* named = std::get_if<SystemColor>(&color)) {
        return systemColor(*named, appearance).rgba();
    }
    return std::get<QRgb>(color);
}

void AttributedText::append(QStringView piece, const TextColor& color)
{
    if (piece.isEmpty()) {
        return;
    }
    if (!runs.empty() && runs.back().color == color) {
        runs.back().length += piece.size();
    } else {
        runs.push_back({text.size(), piece.size(), color});
    }
    text.append(piece);
}

} // namespace kelm
