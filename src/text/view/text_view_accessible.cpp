#include "text/view/text_view_accessible.h"

#include "platform/view/screen_reader.h"
#include "text/boundaries/text_boundaries.h"
#include "text/storage/line_terminator.h"
#include "text/view/text_view.h"

#include <QAccessibleEditableTextInterface>
#include <QAccessibleTextInterface>
#include <QAccessibleWidget>
#include <QVariant>

#include <algorithm>

namespace kelm {

namespace {

constexpr const char* roleProperty = "kelmAccessibleTextRole";
constexpr const char* busyProperty = "kelmAccessibleTextBusy";

/// The most of a text that one answer holds, in UTF-16 units: who asks for all of a long text gets its beginning, and
/// goes on from there.
constexpr qsizetype longestAnswer = qsizetype(1) << 18;
/// The longest unit of text. A longer line is told in pieces of this length.
constexpr qsizetype longestUnit = qsizetype(1) << 14;
/// The most that is told of one edit.
constexpr qsizetype longestNews = qsizetype(1) << 14;

/// Answers from the line index and the text around an offset: no call reads the whole of a long text.
class AccessibleTextView final : public QAccessibleWidget,
                                 public QAccessibleTextInterface,
                                 public QAccessibleEditableTextInterface
{
public:
    explicit AccessibleTextView(TextView& view) : QAccessibleWidget(&view, QAccessible::EditableText) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TextInterface) {
            return static_cast<QAccessibleTextInterface*>(this);
        }
        if (type == QAccessible::EditableTextInterface) {
            return static_cast<QAccessibleEditableTextInterface*>(this);
        }
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessible::Role role() const override
    {
        const QVariant role = view().property(roleProperty);
        return role.isValid() ? static_cast<QAccessible::Role>(role.toInt()) : QAccessible::EditableText;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = view().property(busyProperty).toBool();
        state.multiLine = true;
        state.selectableText = true;
        state.editable = !view().isReadOnly();
        state.readOnly = view().isReadOnly();
        return state;
    }

    QString text(QAccessible::Text what) const override
    {
        return what == QAccessible::Value ? text(0, characterCount()) : QAccessibleWidget::text(what);
    }

    void setText(QAccessible::Text what, const QString& text) override
    {
        if (what == QAccessible::Value) {
            replaceText(0, characterCount(), text);
        }
    }

    // QAccessibleTextInterface. Offsets are UTF-16 units.
    int characterCount() const override { return static_cast<int>(view().storage().length()); }

    QString text(int start, int end) const override
    {
        return beginning(TextRange::between(std::max(0, start), std::max(0, end)), longestAnswer);
    }

    int cursorPosition() const override { return static_cast<int>(view().editor().selections().primary().head.offset); }
    void setCursorPosition(int position) override { select({{position, 0}}); }

    int selectionCount() const override { return static_cast<int>(selectedRanges().size()); }

    void selection(int index, int* start, int* end) const override
    {
        const std::vector<TextRange> ranges = selectedRanges();
        const bool exists = index >= 0 && index < static_cast<int>(ranges.size());
        const TextRange range = exists ? ranges[static_cast<std::size_t>(index)] : TextRange();
        *start = static_cast<int>(range.location);
        *end = static_cast<int>(range.end());
    }

    void addSelection(int start, int end) override
    {
        std::vector<TextRange> ranges = selectedRanges();
        ranges.push_back(TextRange::between(start, end));
        select(ranges);
    }

    void removeSelection(int index) override
    {
        std::vector<TextRange> ranges = selectedRanges();
        if (index >= 0 && index < static_cast<int>(ranges.size())) {
            ranges.erase(ranges.begin() + index);
        }
        select(ranges.empty() ? std::vector<TextRange>{{cursorPosition(), 0}} : ranges);
    }

    void setSelection(int index, int start, int end) override
    {
        std::vector<TextRange> ranges = selectedRanges();
        if (index >= 0 && index < static_cast<int>(ranges.size())) {
            ranges[static_cast<std::size_t>(index)] = TextRange::between(start, end);
        } else {
            ranges.push_back(TextRange::between(start, end));
        }
        select(ranges);
    }

    QRect characterRect(int offset) const override
    {
        const qsizetype at = std::clamp(offset, 0, characterCount());
        const qsizetype next = nextGraphemeBoundary(view().storage().tree(), at);
        const QRectF from = view().caretRect({at, false});
        const QRectF to = view().caretRect({next, true});
        const qreal width = to.y() == from.y() ? std::max<qreal>(1, to.x() - from.x()) : 1;
        const QRect box = QRectF(from.x(), from.y(), width, from.height()).toAlignedRect();
        return {view().viewport()->mapToGlobal(box.topLeft()), box.size()};
    }

    int offsetAtPoint(const QPoint& point) const override
    {
        return static_cast<int>(view().placeAt(view().viewport()->mapFromGlobal(point)).offset);
    }

    void scrollToSubstring(int start, int end) override
    {
        view().scrollRangeToVisible(TextRange::between(start, end).clampedTo(characterCount()));
    }

    QString attributes(int /*offset*/, int* start, int* end) const override
    {
        // None is told, and none all through the text.
        *start = 0;
        *end = characterCount();
        return {};
    }

    QString textAtOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override
    {
        return tell(unitAt(offset, type), start, end);
    }

    QString textBeforeOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override
    {
        const TextRange unit = unitAt(offset, type);
        return unit.location == 0 ? tell({0, 0}, start, end) : tell(unitAt(unit.location - 1, type), start, end);
    }

    QString textAfterOffset(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override
    {
        const TextRange unit = unitAt(offset, type);
        const qsizetype length = view().storage().length();
        return unit.end() >= length ? tell({length, 0}, start, end) : tell(unitAt(unit.end(), type), start, end);
    }

    // QAccessibleEditableTextInterface
    void deleteText(int start, int end) override { replaceText(start, end, QString()); }
    void insertText(int offset, const QString& text) override { replaceText(offset, offset, text); }

    void replaceText(int start, int end, const QString& text) override
    {
        view().commitComposition();
        const TextRange range = TextRange::between(start, end).clampedTo(view().storage().length());
        view().editor().apply({{range, text}}, EditKind::other);
    }

private:
    TextView& view() const { return *static_cast<TextView*>(object()); }

    std::vector<TextRange> selectedRanges() const
    {
        std::vector<TextRange> ranges;
        for (const Selection& selection : view().editor().selections().all()) {
            if (!selection.isCaret()) {
                ranges.push_back(selection.range());
            }
        }
        return ranges;
    }

    void select(const std::vector<TextRange>& ranges)
    {
        view().commitComposition();
        std::vector<Selection> selections;
        selections.reserve(ranges.size());
        for (const TextRange range : ranges) {
            selections.push_back(Selection::over(range.clampedTo(view().storage().length())));
        }
        view().editor().setSelections(SelectionSet(std::move(selections)));
    }

    QString beginning(TextRange range, qsizetype most) const
    {
        return view().storage().substring({range.location, std::min(range.length, most)});
    }

    TextRange unitAt(qsizetype offset, QAccessible::TextBoundaryType type) const
    {
        const qsizetype at = std::clamp<qsizetype>(offset, 0, view().storage().length());
        return pieceAt(wholeUnitAt(at, type), at);
    }

    /// The piece that an offset lies in, of a unit that may be too long for one answer.
    TextRange pieceAt(TextRange unit, qsizetype at) const
    {
        if (unit.length <= longestUnit) {
            return unit;
        }
        const auto boundary = [&](qsizetype piece) {
            const qsizetype place = unit.location + piece * longestUnit;
            if (place >= unit.end()) {
                return unit.end();
            }
            return view().storage().substring({place, 1}).front().isLowSurrogate() ? place - 1 : place;
        };
        qsizetype piece = (at - unit.location) / longestUnit;
        // The boundary behind it may lie before the offset, and the last piece ends where the offset may be.
        if (boundary(piece + 1) <= at && boundary(piece + 1) < unit.end()) {
            ++piece;
        } else if (boundary(piece) == unit.end()) {
            --piece;
        }
        return TextRange::between(boundary(piece), boundary(piece + 1));
    }

    TextRange wholeUnitAt(qsizetype at, QAccessible::TextBoundaryType type) const
    {
        const TextTree& text = view().storage().tree();
        switch (type) {
        case QAccessible::CharBoundary: {
            const qsizetype start = graphemeBoundaryAtOrBefore(text, at);
            return TextRange::between(start, nextGraphemeBoundary(text, start));
        }
        case QAccessible::WordBoundary: {
            // A line end is a step of its own, or whoever goes from word to word would never get past it.
            const qsizetype start = graphemeBoundaryAtOrBefore(text, at);
            const qsizetype terminator = lineTerminatorLength(text.substring({start, 2}), 0);
            return terminator > 0 ? TextRange{start, terminator} : wordAt(text, at);
        }
        case QAccessible::NoBoundary:
            return {0, text.length()};
        default:
            // Sentences and paragraphs of a source text are its lines.
            return view().storage().lineRange({at, 0});
        }
    }

    QString tell(TextRange range, int* start, int* end) const
    {
        *start = static_cast<int>(range.location);
        *end = static_cast<int>(range.end());
        return view().storage().substring(range);
    }
};

QAccessibleInterface* makeInterface(const QString& /*key*/, QObject* object)
{
    auto* view = qobject_cast<TextView*>(object);
    return view != nullptr ? new AccessibleTextView(*view) : nullptr;
}

} // namespace

void installAccessibleTextViewFactory()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

void setAccessibleTextRole(TextView& view, QAccessible::Role role)
{
    view.setProperty(roleProperty, static_cast<int>(role));
}

void setAccessibleTextBusy(TextView& view, bool isBusy)
{
    if (view.property(busyProperty).toBool() != isBusy) {
        view.setProperty(busyProperty, isBusy);
        if (screenReader::isListening()) {
            QAccessible::State changed;
            changed.busy = true;
            QAccessibleStateChangeEvent event(&view, changed);
            screenReader::tell(event);
        }
    }
}

std::unique_ptr<QAccessibleTextCursorEvent> accessibleEditEvent(TextView& view, const TextEdit& edit)
{
    const auto at = static_cast<int>(edit.range.location);
    // What was removed is gone by now; its place and length are told with blanks, which the interface allows.
    const QString removed(std::min(edit.range.length, longestNews), u' ');
    const TextRange news = edit.newRange();
    const QString inserted = view.storage().substring({news.location, std::min(news.length, longestNews)});
    std::unique_ptr<QAccessibleTextCursorEvent> event;
    if (removed.isEmpty()) {
        event = std::make_unique<QAccessibleTextInsertEvent>(&view, at, inserted);
    } else if (inserted.isEmpty()) {
        event = std::make_unique<QAccessibleTextRemoveEvent>(&view, at, removed);
    } else {
        event = std::make_unique<QAccessibleTextUpdateEvent>(&view, at, removed, inserted);
    }
    event->setCursorPosition(static_cast<int>(view.editor().selections().primary().head.offset));
    return event;
}

std::unique_ptr<QAccessibleTextCursorEvent> accessibleSelectionEvent(TextView& view)
{
    const Selection& primary = view.editor().selections().primary();
    const auto head = static_cast<int>(primary.head.offset);
    if (primary.isCaret()) {
        return std::make_unique<QAccessibleTextCursorEvent>(&view, head);
    }
    auto event = std::make_unique<QAccessibleTextSelectionEvent>(&view, static_cast<int>(primary.range().location),
                                                                 static_cast<int>(primary.range().end()));
    event->setCursorPosition(head);
    return event;
}

void notifyAccessibleEdit(TextView& view, const TextEdit& edit)
{
    if (screenReader::isListening()) {
        screenReader::tell(*accessibleEditEvent(view, edit));
    }
}

void notifyAccessibleSelection(TextView& view)
{
    if (screenReader::isListening()) {
        screenReader::tell(*accessibleSelectionEvent(view));
    }
}

} // namespace kelm
