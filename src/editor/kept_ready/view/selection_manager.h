// Commands that select.
#pragma once

#include "text/view/text_view.h"

#include <QPointer>

namespace kelm {

/// Selection commands on one text view; without the view they do nothing. Kept ready: the program's window has no
/// command for them. Main thread only.
class SelectionManager
{
public:
    explicit SelectionManager(TextView* textView) : textView_(textView) {}

    QPointer<TextView> textView() const { return textView_; }

    /// Selects every place where the selected text stands, letter by letter and none overlapping another, as the view's
    /// own multiple selection. Without a selection nothing changes.
    void selectAllOccurrences();
    /// Selects the word at the caret.
    void selectWord();
    /// Selects the lines that the selection touches, terminators included.
    void selectLine();
    /// Selects the next larger unit around the selection: word, text of the line, line, all.
    void expandSelection();

private:
    QPointer<TextView> textView_;
};

} // namespace kelm
