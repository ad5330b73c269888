// Further insertion points, shown as thin bars over a text view.
#pragma once

#include "editor/kept_ready/cursor.h"
#include "text/view/text_view.h"

#include <QObject>
#include <QPointer>

#include <optional>
#include <vector>

namespace kelm {

/// Keeps insertion points beside those of the text view and marks them. Typing in the view goes to the view's own
/// carets; only the operations here edit at the cursors. Kept ready: the program's window uses the view's own carets.
///
/// Main thread only. Positions are UTF-16 units; nothing carries them over edits that others make.
class MultiCursorManager final : public QObject
{
public:
    explicit MultiCursorManager(TextView* textView, QObject* parent = nullptr);
    ~MultiCursorManager() override;

    QPointer<TextView> textView() const { return textView_; }

    /// In the order of the text; no two at one position.
    const std::vector<Cursor>& cursors() const { return cursors_; }
    /// Whether there is more than one cursor; only then are they marked.
    bool isMultiCursorMode() const { return isMultiCursorMode_; }
    /// The first cursor in the text.
    std::optional<Cursor> primaryCursor() const;

    /// Adds a cursor at a position within the text or at its end; one that is there already is left alone.
    void addCursor(qsizetype position);
    /// Add a cursor in the line above the first one, or below the last one, as far from the line's start. Without a
    /// cursor to begin with they do nothing.
    void addCursorAbove();
    void addCursorBelow();
    /// Adds one at the end of each line that the range touches.
    void addCursorsToLineEnds(TextRange range);
    /// Adds one behind each occurrence of the text, which becomes the cursor's selection.
    void addCursorsToAllOccurrences(const QString& text);
    void removeCursor(qsizetype position);
    /// Removes all.
    void reset();

    /// Puts text in at every cursor, in the place of its selection, as one undo step.
    void insertText(const QString& text);
    /// Deletes each cursor's selection, or the character before it, as one undo step.
    void deleteBackward();

private:
    bool isWithinText(qsizetype position) const;
    void add(const std::vector<Cursor>& cursors);
    void cursorsChanged();
    /// Edits as the view's own carets would, standing where the cursors are.
    template <typename Edit>
    void editAtCursors(Edit edit);
    void updateVisualCursors();
    void removeVisualCursors();
    /// Puts the bars where the page has been scrolled to.
    void placeVisualCursors();

    QPointer<TextView> textView_;
    std::vector<Cursor> cursors_;
    bool isMultiCursorMode_ = false;
};

} // namespace kelm
