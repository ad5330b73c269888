#include "editor/kept_ready/view/multi_cursor_manager.h"

#include "editor/kept_ready/cursor_places.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"

#include <QPainter>

#include <algorithm>

namespace kelm {

namespace {

const QString barName = QStringLiteral("multiCursor");
constexpr qreal barWidth = 2.0;
constexpr double barOpacity = 0.5;

/// The bar of one cursor, which lets every click through.
class CursorBar final : public QWidget
{
public:
    explicit CursorBar(TextView& view) : QWidget(view.viewport())
    {
        setObjectName(barName);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Tint(SystemColor::blue).at(barOpacity).on(*this));
    }
};

QList<QWidget*> barsOf(const TextView& view)
{
    return view.viewport()->findChildren<QWidget*>(barName, Qt::FindDirectChildrenOnly);
}

} // namespace

MultiCursorManager::MultiCursorManager(TextView* textView, QObject* parent) : QObject(parent), textView_(textView)
{
    if (textView_) {
        connect(textView_, &TextView::visibleRectChanged, this, &MultiCursorManager::placeVisualCursors);
    }
}

MultiCursorManager::~MultiCursorManager()
{
    if (textView_) {
        removeVisualCursors();
    }
}

std::optional<Cursor> MultiCursorManager::primaryCursor() const
{
    return cursors_.empty() ? std::nullopt : std::optional(cursors_.front());
}

void MultiCursorManager::addCursor(qsizetype position)
{
    if (textView_ && isWithinText(position)) {
        add({{position, {}}});
    }
}

void MultiCursorManager::addCursorAbove()
{
    if (!textView_ || cursors_.empty()) {
        return;
    }
    if (const auto place = placeAbove(textView_->storage(), cursors_.front().position)) {
        addCursor(*place);
    }
}

void MultiCursorManager::addCursorBelow()
{
    if (!textView_ || cursors_.empty()) {
        return;
    }
    if (const auto place = placeBelow(textView_->storage(), cursors_.back().position)) {
        addCursor(*place);
    }
}

void MultiCursorManager::addCursorsToLineEnds(TextRange range)
{
    if (!textView_) {
        return;
    }
    std::vector<Cursor> added;
    for (const qsizetype end : lineEnds(textView_->storage(), range)) {
        added.push_back({end, {}});
    }
    add(added);
}

void MultiCursorManager::addCursorsToAllOccurrences(const QString& text)
{
    if (!textView_) {
        return;
    }
    std::vector<Cursor> added;
    for (const TextRange& range : occurrences(textView_->text(), text)) {
        added.push_back({range.end(), range});
    }
    add(added);
}

void MultiCursorManager::removeCursor(qsizetype position)
{
    const auto isThere = [position](const Cursor& cursor) { return cursor.position == position; };
    cursors_.erase(std::remove_if(cursors_.begin(), cursors_.end(), isThere), cursors_.end());
    cursorsChanged();
}

void MultiCursorManager::reset()
{
    cursors_.clear();
    cursorsChanged();
}

void MultiCursorManager::insertText(const QString& text)
{
    editAtCursors([&text](TextEditor& editor) { editor.insertText(text, EditKind::other); });
}

void MultiCursorManager::deleteBackward()
{
    editAtCursors([](TextEditor& editor) { editor.erase(Movement::characterLeft); });
}

bool MultiCursorManager::isWithinText(qsizetype position) const
{
    return position >= 0 && position <= textView_->storage().length();
}

void MultiCursorManager::add(const std::vector<Cursor>& cursors)
{
    const std::size_t before = cursors_.size();
    cursors_.insert(cursors_.end(), cursors.begin(), cursors.end());
    // The sort is stable: of two at one position the one that was there first stays.
    std::stable_sort(cursors_.begin(), cursors_.end(),
                     [](const Cursor& a, const Cursor& b) { return a.position < b.position; });
    const auto same = [](const Cursor& a, const Cursor& b) { return a.position == b.position; };
    cursors_.erase(std::unique(cursors_.begin(), cursors_.end(), same), cursors_.end());
    if (cursors_.size() != before) {
        cursorsChanged();
    }
}

void MultiCursorManager::cursorsChanged()
{
    isMultiCursorMode_ = cursors_.size() > 1;
    updateVisualCursors();
}

template <typename Edit>
void MultiCursorManager::editAtCursors(Edit edit)
{
    if (!textView_ || cursors_.empty() || textView_->isReadOnly()) {
        return;
    }
    textView_->commitComposition();
    const qsizetype length = textView_->storage().length();
    std::vector<Selection> carets;
    for (const Cursor& cursor : cursors_) {
        carets.push_back(Selection::over(cursor.selection.value_or(TextRange{cursor.position, 0}).clampedTo(length)));
    }
    TextEditor& editor = textView_->editor();
    editor.setSelections(SelectionSet(std::move(carets)));
    edit(editor);
    cursors_.clear();
    for (const Selection& caret : editor.selections().all()) {
        cursors_.push_back({caret.head.offset, {}});
    }
    cursorsChanged();
}

void MultiCursorManager::updateVisualCursors()
{
    if (!textView_) {
        return;
    }
    removeVisualCursors();
    if (!isMultiCursorMode_) {
        return;
    }
    for (std::size_t index = 0; index < cursors_.size(); ++index) {
        (new CursorBar(*textView_))->show();
    }
    placeVisualCursors();
}

void MultiCursorManager::removeVisualCursors()
{
    qDeleteAll(barsOf(*textView_));
}

void MultiCursorManager::placeVisualCursors()
{
    if (!textView_) {
        return;
    }
    // One bar for each cursor, in the cursors' order.
    auto cursor = cursors_.begin();
    for (QWidget* bar : barsOf(*textView_)) {
        const qsizetype position = std::min(cursor->position, textView_->storage().length());
        const QRectF place = textView_->caretRect({position, false});
        bar->setGeometry(QRectF(place.x(), place.y(), barWidth, place.height()).toRect());
        ++cursor;
    }
}

} // namespace kelm
