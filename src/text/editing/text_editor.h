// Editing a text at one or several selections.
#pragma once

#include "text/editing/change_batch.h"
#include "text/editing/selected_text.h"
#include "text/editing/selection.h"
#include "text/editing/undo_history.h"
#include "text/editing/whole_text.h"
#include "text/layout/text_layout.h"
#include "text/storage/text_storage.h"

#include <QObject>
#include <QString>

#include <functional>
#include <vector>

namespace kelm {

/// Where a caret goes. Rows are what is seen, lines what the text holds.
enum class Movement {
    characterLeft,
    characterRight,
    wordLeft,
    wordRight,
    rowUp,
    rowDown,
    pageUp,
    pageDown,
    rowStart,
    rowEnd,
    lineStart,
    lineEnd,
    textStart,
    textEnd
};

enum class Extend { no, yes };

/// All that a person does to a text, without the window: moving carets, typing, deleting, undoing. Every edit acts on
/// all selections at once and is one undo step. Edits of the storage that others make go round the undo history; carets
/// are carried over them.
///
/// Main thread only. Characters are user-perceived characters; offsets are UTF-16 units.
class TextEditor final : public QObject
{
    Q_OBJECT

public:
    TextEditor(TextStorage& storage, TextLayout& layout, QObject* parent = nullptr);

    TextStorage& storage() { return storage_; }
    const TextStorage& storage() const { return storage_; }

    const SelectionSet& selections() const { return selections_; }
    /// Offsets are clamped to the text and moved out of the middle of characters.
    void setSelections(SelectionSet selections);
    void select(TextRange range) { setSelections(SelectionSet(Selection::over(range))); }
    TextRange selectedRange() const { return selections_.primary().range(); }
    /// What is selected, of the whole text where there is one. Costs next to nothing.
    SelectedText selected() const;
    /// The selected texts in the order of the text, of the whole text where there is one.
    QStringList selectedTexts() const;
    /// Where a range of what is shown stands in the whole text.
    TextRange wholeRange(TextRange range) const;
    void selectAll();

    bool isReadOnly() const { return isReadOnly_; }
    void setReadOnly(bool readOnly) { isReadOnly_ = readOnly; }
    /// How many rows a page has.
    void setPageRows(int rows) { pageRows_ = rows; }
    /// Whether an edit by the user is being made right now; every such edit ends in `textChanged`.
    bool isEditing() const { return isOwnReplacement_; }
    /// What is behind a text that may be shown in short; none for one that is always shown as it is. It outlives the
    /// editor. Whatever is shown in short must be shown in full by what `setBeforeEdit` is given.
    void setWholeText(const WholeText* text) { wholeText_ = text; }
    /// Called before each edit by the user, which then acts on the text and the selections as the call left them.
    void setBeforeEdit(std::function<void()> call) { beforeEdit_ = std::move(call); }
    /// Makes ready for an edit by the user, which may change the text: does what `setBeforeEdit` was given. Each edit
    /// does so by itself; whoever works an edit out from the text does it before. False when the text is read-only.
    bool prepareEdit();

    void move(Movement movement, Extend extend);
    /// Adds a caret in the row above or below each one.
    void addCarets(Movement direction);

    /// Puts `text` in the place of every selection.
    void insertText(const QString& text, EditKind kind);
    /// Puts each text in the place of one selection where there are as many of both, else all of them, a line each, in
    /// the place of every selection.
    void paste(const QStringList& texts);
    /// Deletes the selected text, or from each caret as far as the movement goes.
    void erase(Movement movement);
    /// Makes changes as one undo step. They are in order and do not overlap; carets stand behind each change
    /// afterwards. Their places are those of the text before the call; where making ready for the edit changes it, they
    /// are carried along.
    void apply(std::vector<Change> changes, EditKind kind);
    /// Puts `text` in the place of a range, which is carried along likewise, as one undo step. Carets and selections
    /// stay with their text: one at the range's end, or within it, stands behind what was put in.
    void insertText(const TextTree& text, TextRange replacedRange);
    void insertText(const QString& text, TextRange replacedRange) { insertText(TextTree(text), replacedRange); }
    /// As `apply`, and then selects the text that was put in; where it only takes text away no caret stays.
    void applyAndSelect(std::vector<Change> changes);
    /// Moves the selected text to an offset as one undo step and selects it there, several texts a line each. False,
    /// and nothing happens, where the offset lies in or right beside a selected text.
    bool moveSelectedTextTo(qsizetype offset);

    void undo();
    void redo();
    bool canUndo() const { return !isReadOnly_ && history_.hasUndo(); }
    bool canRedo() const { return !isReadOnly_ && history_.hasRedo(); }
    /// Forgets what can be undone and redone.
    void forgetUndo();
    /// The next edit begins an undo step of its own.
    void endUndoRun() { history_.endRun(); }

Q_SIGNALS:
    void selectionChanged();
    /// The user has changed the text; not sent for edits that others make.
    void textChanged();
    void undoAvailabilityChanged();

private:
    /// As above, with the places of `changes` carried along.
    bool prepareEdit(std::vector<Change>& changes);
    void selectWhatIsMeant();
    void carryChanges(TextRange range, qsizetype newLength);
    void foreignReplacement(TextRange range, const TextTree& replacement);
    void foreignEditDone(const TextEdit& edit);
    /// Changes the text as an edit of this editor's.
    void replace(const ChangeBatch& batch);
    enum class Afterwards { caretBehindEach, insertedIsSelected, caretsStayWithText };
    SelectionSet selectionsAfter(const std::vector<Change>& changes, Afterwards afterwards) const;
    void commit(const std::vector<Change>& changes, EditKind kind, Afterwards afterwards);
    void replay(const std::vector<ChangeBatch>& batches, const SelectionSet& selections);
    void assignSelections(SelectionSet selections);
    Selection moved(const Selection& selection, Movement movement, Extend extend);
    CaretPlace target(const Selection& selection, Movement movement, std::optional<qreal>& goalX);
    CaretPlace byRows(const Selection& selection, qsizetype rows, std::optional<qreal>& goalX);

    TextStorage& storage_;
    TextLayout& layout_;
    SelectionSet selections_;
    UndoHistory history_;
    std::function<void()> beforeEdit_;
    const WholeText* wholeText_ = nullptr;
    bool isReadOnly_ = false;
    bool isOwnReplacement_ = false;
    // Changes whose edit is being made ready.
    std::vector<Change>* carriedChanges_ = nullptr;
    // The selections before others edited; they are carried over each replacement, and told when all are done.
    std::optional<SelectionSet> beforeForeignEdit_;
    bool wasReset_ = false;
    int pageRows_ = 1;
};

} // namespace kelm
