// What an editor's selections mean in a text that may be shown in short.
#include "text/editing/text_editor.h"

#include <utility>

namespace kelm {

SelectedText TextEditor::selected() const
{
    const bool isShortened = wholeText_ != nullptr && wholeText_->isShortened();
    std::vector<TextRange> ranges;
    for (const Selection& selection : selections_.all()) {
        if (!selection.isCaret()) {
            ranges.push_back(wholeRange(selection.range()));
        }
    }
    return {isShortened ? wholeText_->text() : storage_.snapshot(), std::move(ranges)};
}

QStringList TextEditor::selectedTexts() const
{
    return selected().texts();
}

TextRange TextEditor::wholeRange(TextRange range) const
{
    return wholeText_ != nullptr && wholeText_->isShortened() ? wholeText_->whole(range) : range;
}

void TextEditor::selectWhatIsMeant()
{
    if (wholeText_ == nullptr || !wholeText_->isShortened() || !selections_.hasText()) {
        return;
    }
    // A selection over a part of what stands for more is one over all of it.
    std::vector<Selection> meant = selections_.all();
    for (Selection& selection : meant) {
        if (selection.isCaret()) {
            continue;
        }
        const TextRange range = wholeText_->shown(wholeText_->whole(selection.range()));
        if (range != selection.range()) {
            const bool isForward = selection.anchor < selection.head.offset;
            selection.anchor = isForward ? range.location : range.end();
            selection.head = {isForward ? range.end() : range.location, false};
        }
    }
    SelectionSet selections = selections_;
    selections.replaceAll(std::move(meant));
    assignSelections(std::move(selections));
}

} // namespace kelm
