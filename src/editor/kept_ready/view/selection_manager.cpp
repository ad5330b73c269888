#include "editor/kept_ready/view/selection_manager.h"

#include "editor/kept_ready/cursor_places.h"
#include "text/boundaries/text_boundaries.h"

#include <algorithm>

namespace kelm {

void SelectionManager::selectAllOccurrences()
{
    if (!textView_ || textView_->selectedRange().isEmpty()) {
        return;
    }
    textView_->commitComposition();
    const QString selected = textView_->storage().substring(textView_->selectedRange());
    const std::vector<TextRange> found = occurrences(textView_->text(), selected);
    if (found.empty()) {
        return;
    }
    std::vector<Selection> selections;
    std::transform(found.begin(), found.end(), std::back_inserter(selections), Selection::over);
    textView_->editor().setSelections(SelectionSet(std::move(selections)));
}

void SelectionManager::selectWord()
{
    if (textView_) {
        textView_->setSelectedRange(wordAt(textView_->text(), textView_->selectedRange().location));
    }
}

void SelectionManager::selectLine()
{
    if (textView_) {
        textView_->setSelectedRange(textView_->storage().lineRange(textView_->selectedRange()));
    }
}

void SelectionManager::expandSelection()
{
    if (textView_) {
        textView_->setSelectedRange(expanded(textView_->storage(), textView_->selectedRange()));
    }
}

} // namespace kelm
