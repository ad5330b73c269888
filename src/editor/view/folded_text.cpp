#include "editor/view/folded_text.h"

#include <algorithm>
#include <utility>

namespace kelm {

FoldedText::FoldedText(CodeFoldingManager& manager, std::function<void()> revealed)
    : manager_(manager), revealed_(std::move(revealed))
{
    manager_.onTextFolds = [this] { Q_EMIT willShorten(); };
    manager_.onTextUnfolded = [this] { Q_EMIT becameWhole(); };
    manager_.onFoldedTextEdited = [this] { Q_EMIT replaced(); };
}

FoldedText::~FoldedText()
{
    manager_.onTextFolds = {};
    manager_.onTextUnfolded = {};
    manager_.onFoldedTextEdited = {};
}

std::vector<TextRange> FoldedText::plainParts(TextRange shown) const
{
    std::vector<TextRange> parts;
    qsizetype from = shown.location;
    for (const TextRange placeholder : manager_.placeholders()) {
        if (placeholder.end() <= from) {
            continue;
        }
        if (placeholder.location >= shown.end()) {
            break;
        }
        if (placeholder.location > from) {
            parts.push_back(TextRange::between(from, placeholder.location));
        }
        from = placeholder.end();
    }
    if (from < shown.end()) {
        parts.push_back(TextRange::between(from, shown.end()));
    }
    return parts;
}

void FoldedText::reveal(TextRange whole)
{
    if (manager_.reveal(whole) && revealed_) {
        revealed_();
    }
}

} // namespace kelm
