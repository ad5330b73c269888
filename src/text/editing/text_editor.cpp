#include "text/editing/text_editor.h"

#include "text/boundaries/text_boundaries.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <numeric>
#include <utility>

namespace kelm {

namespace {

/// How many changes are made and told one by one. More of them are one change, of all between the first and the last:
/// who follows the text has then one place to look at.
constexpr std::size_t mostToldChanges = 1000;

/// A range of the text before an edit as it is behind it. A place stays before what was put in at it; a range that
/// begins in what was replaced does not take the replacement in.
TextRange carried(TextRange range, const TextEdit& edit)
{
    const qsizetype start = edit.moved(range.location, !range.isEmpty());
    return TextRange::between(start, std::max(start, edit.moved(range.end(), !range.isEmpty())));
}

/// Whether several changes leave the text as it is, as moving a letter behind its equal does.
bool cancelsOut(const TextTree& text, const ChangeBatch& batch)
{
    const auto growth = [](qsizetype sum, const Change& change) {
        return sum + change.text.length() - change.range.length;
    };
    if (batch.size() < 2 || std::accumulate(batch.begin(), batch.end(), qsizetype(0), growth) != 0) {
        return false;
    }
    const Change whole = combined(text, batch);
    return whole.text == text.part(whole.range);
}

} // namespace

TextEditor::TextEditor(TextStorage& storage, TextLayout& layout, QObject* parent)
    : QObject(parent), storage_(storage), layout_(layout)
{
    connect(&storage, &TextStorage::willReplace, this, &TextEditor::foreignReplacement);
    connect(&storage, &TextStorage::willReset, this, [this] {
        wasReset_ = true;
        history_.clear();
        Q_EMIT undoAvailabilityChanged();
    });
    connect(&storage, &TextStorage::edited, this, &TextEditor::foreignEditDone);
}

void TextEditor::foreignReplacement(TextRange range, const TextTree& replacement)
{
    if (carriedChanges_ != nullptr) {
        carryChanges(range, replacement.length());
    }
    if (isOwnReplacement_) {
        return;
    }
    history_.foreignEdit({range.location, storage_.tree().part(range), replacement});
    if (!beforeForeignEdit_) {
        beforeForeignEdit_ = selections_;
    }
    TextEdit edit;
    edit.range = range;
    edit.newLength = replacement.length();
    selections_.moveThrough(edit);
}

void TextEditor::carryChanges(TextRange range, qsizetype newLength)
{
    TextEdit edit;
    edit.range = range;
    edit.newLength = newLength;
    for (Change& change : *carriedChanges_) {
        change.range = carried(change.range, edit);
    }
}

void TextEditor::foreignEditDone(const TextEdit& edit)
{
    const std::optional<SelectionSet> before = std::exchange(beforeForeignEdit_, {});
    SelectionSet carried = selections_;
    if (std::exchange(wasReset_, false)) {
        carried.moveThrough(edit);
        std::vector<Selection> valid = carried.all();
        for (Selection& selection : valid) {
            selection.anchor = std::min(selection.anchor, storage_.length());
            selection.head.offset = std::min(selection.head.offset, storage_.length());
        }
        carried.replaceAll(std::move(valid));
    }
    const bool same = carried == before.value_or(selections_);
    selections_ = std::move(carried);
    if (!same) {
        Q_EMIT selectionChanged();
    }
}

void TextEditor::forgetUndo()
{
    if (history_.hasUndo() || history_.hasRedo()) {
        history_.clear();
        Q_EMIT undoAvailabilityChanged();
    }
}

void TextEditor::setSelections(SelectionSet selections)
{
    std::vector<Selection> valid = selections.all();
    for (Selection& selection : valid) {
        selection.anchor = graphemeBoundaryAtOrBefore(storage_.tree(), selection.anchor);
        selection.head.offset = graphemeBoundaryAtOrBefore(storage_.tree(), selection.head.offset);
    }
    selections.replaceAll(std::move(valid));
    if (!(selections == selections_)) {
        history_.endRun();
    }
    assignSelections(std::move(selections));
}

void TextEditor::selectAll()
{
    setSelections(SelectionSet(Selection::over({0, storage_.length()})));
}

void TextEditor::insertText(const QString& text, EditKind kind)
{
    if (!prepareEdit()) {
        return;
    }
    std::vector<Change> changes;
    for (const Selection& selection : selections_.all()) {
        changes.push_back({selection.range(), text});
    }
    commit(changes, kind, Afterwards::caretBehindEach);
}

void TextEditor::paste(const QStringList& texts)
{
    if (!prepareEdit()) {
        return;
    }
    const bool oneEach = texts.size() > 1 && texts.size() == static_cast<qsizetype>(selections_.all().size());
    const QString joined = texts.join(u'\n');
    std::vector<Change> changes;
    for (const Selection& selection : selections_.all()) {
        const auto index = static_cast<qsizetype>(changes.size());
        changes.push_back({selection.range(), oneEach ? texts[index] : joined});
    }
    commit(changes, EditKind::other, Afterwards::caretBehindEach);
}

void TextEditor::erase(Movement movement)
{
    if (!prepareEdit()) {
        return;
    }
    const bool hadText = selections_.hasText();
    SelectionSet ranges = selections_;
    std::vector<Selection> all;
    for (const Selection& selection : ranges.all()) {
        all.push_back(selection.isCaret() ? moved(selection, movement, Extend::yes) : selection);
    }
    // Two carets may reach for the same text.
    ranges.replaceAll(std::move(all));
    std::vector<Change> changes;
    for (const Selection& selection : ranges.all()) {
        changes.push_back({selection.range(), QString()});
    }
    EditKind kind = EditKind::other;
    if (!hadText && movement == Movement::characterLeft) {
        kind = EditKind::deletingBack;
    } else if (!hadText && movement == Movement::characterRight) {
        kind = EditKind::deletingAhead;
    }
    commit(changes, kind, Afterwards::caretBehindEach);
}

void TextEditor::apply(std::vector<Change> changes, EditKind kind)
{
    if (prepareEdit(changes)) {
        commit(changes, kind, Afterwards::caretBehindEach);
    }
}

void TextEditor::insertText(const TextTree& text, TextRange replacedRange)
{
    std::vector<Change> changes{{replacedRange.clampedTo(storage_.length()), text}};
    if (prepareEdit(changes)) {
        commit(changes, EditKind::other, Afterwards::caretsStayWithText);
    }
}

void TextEditor::applyAndSelect(std::vector<Change> changes)
{
    if (prepareEdit(changes)) {
        commit(changes, EditKind::other, Afterwards::insertedIsSelected);
    }
}

bool TextEditor::moveSelectedTextTo(qsizetype offset)
{
    std::vector<Change> target{{{offset, 0}, TextTree()}};
    if (!prepareEdit(target)) {
        return false;
    }
    offset = target.front().range.location;
    std::vector<Change> changes;
    for (const Selection& selection : selections_.all()) {
        const TextRange range = selection.range();
        if (!range.isEmpty() && range.location <= offset && offset <= range.end()) {
            return false;
        }
        if (!range.isEmpty()) {
            changes.push_back({range, QString()});
        }
    }
    const auto behind = std::find_if(changes.begin(), changes.end(),
                                     [offset](const Change& change) { return change.range.location > offset; });
    changes.insert(behind, {{offset, 0}, selectedTexts().join(u'\n')});
    commit(changes, EditKind::other, Afterwards::insertedIsSelected);
    return true;
}

void TextEditor::undo()
{
    if (!prepareEdit()) {
        return;
    }
    if (const std::optional<UndoStep> step = history_.takeUndo()) {
        replay(batchesBack(step->replacements), step->before);
    }
}

void TextEditor::redo()
{
    if (!prepareEdit()) {
        return;
    }
    if (const std::optional<UndoStep> step = history_.takeRedo()) {
        replay(batchesAhead(step->replacements), step->after);
    }
}

bool TextEditor::prepareEdit()
{
    if (isReadOnly_) {
        return false;
    }
    selectWhatIsMeant();
    if (beforeEdit_) {
        beforeEdit_();
    }
    return true;
}

bool TextEditor::prepareEdit(std::vector<Change>& changes)
{
    const QScopedValueRollback carrying(carriedChanges_, &changes);
    return prepareEdit();
}

void TextEditor::replace(const ChangeBatch& batch)
{
    const QScopedValueRollback own(isOwnReplacement_, true);
    if (batch.size() > mostToldChanges) {
        const Change whole = combined(storage_.tree(), batch);
        storage_.replace(whole.range, whole.text);
        return;
    }
    // From the end on, so that what stands before keeps its place.
    for (auto change = batch.rbegin(); change != batch.rend(); ++change) {
        storage_.replace(change->range, change->text);
    }
}

SelectionSet TextEditor::selectionsAfter(const std::vector<Change>& changes, Afterwards afterwards) const
{
    SelectionSet result = selections_;
    if (afterwards == Afterwards::caretsStayWithText) {
        for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
            TextEdit edit;
            edit.range = change->range;
            edit.newLength = change->text.length();
            result.moveThrough(edit);
        }
        return result;
    }
    std::vector<Selection> after;
    qsizetype shift = 0;
    for (const Change& change : changes) {
        const TextRange inserted{change.range.location + shift, change.text.length()};
        if (afterwards == Afterwards::caretBehindEach) {
            after.push_back(Selection::caret({inserted.end(), false}));
        } else if (!inserted.isEmpty()) {
            after.push_back(Selection::over(inserted));
        } else if (after.empty() && &change == &changes.back()) {
            after.push_back(Selection::caret({inserted.location, false}));
        }
        shift += change.text.length() - change.range.length;
    }
    result.replaceAll(std::move(after));
    return result;
}

void TextEditor::commit(const std::vector<Change>& changes, EditKind kind, Afterwards afterwards)
{
    UndoStep step;
    step.before = selections_;
    step.after = selectionsAfter(changes, afterwards);
    step.kind = kind;
    ChangeBatch made;
    {
        const EditingBracket bracket(storage_);
        qsizetype shift = 0;
        for (const Change& change : changes) {
            const TextTree removed = storage_.tree().part(change.range);
            // Text that stays the same is no edit: nobody is told of one.
            if (removed != change.text) {
                step.replacements.push_back({change.range.location + shift, removed, change.text});
                made.push_back(change);
            }
            shift += change.text.length() - change.range.length;
        }
        if (cancelsOut(storage_.tree(), made)) {
            made.clear();
        }
        replace(made);
        selections_ = step.after;
        // The history has the step before anyone hears of the edit, since a receiver may edit in turn.
        if (!made.empty()) {
            history_.push(std::move(step));
        }
    }
    Q_EMIT selectionChanged();
    if (!made.empty()) {
        Q_EMIT textChanged();
        Q_EMIT undoAvailabilityChanged();
    }
}

void TextEditor::replay(const std::vector<ChangeBatch>& batches, const SelectionSet& selections)
{
    const TextTree before = storage_.snapshot();
    {
        const EditingBracket bracket(storage_);
        for (const ChangeBatch& batch : batches) {
            replace(batch);
        }
        selections_ = selections;
    }
    Q_EMIT selectionChanged();
    // A step may have put back what it took away, as composing a word over the same word does.
    if (storage_.tree() != before) {
        Q_EMIT textChanged();
    }
    Q_EMIT undoAvailabilityChanged();
}

void TextEditor::assignSelections(SelectionSet selections)
{
    const bool same = selections == selections_;
    selections_ = std::move(selections);
    if (!same) {
        Q_EMIT selectionChanged();
    }
}

} // namespace kelm
