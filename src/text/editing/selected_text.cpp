#include "text/editing/selected_text.h"

#include <utility>

namespace kelm {

SelectedText::SelectedText(TextTree text, std::vector<TextRange> ranges)
    : text_(std::move(text)), ranges_(std::move(ranges))
{}

QStringList SelectedText::texts() const
{
    QStringList texts;
    for (const TextRange& range : ranges_) {
        texts.append(text_.substring(range));
    }
    return texts;
}

void SelectedText::letGoOfTheRest()
{
    std::vector<TextTree> parts;
    qsizetype at = 0;
    for (TextRange& range : ranges_) {
        parts.push_back(text_.part(range));
        range.location = at;
        at += range.length;
    }
    text_ = TextTree::joined(parts);
}

} // namespace kelm
