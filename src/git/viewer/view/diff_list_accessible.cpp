#include "git/viewer/view/diff_list_accessible.h"

#include "git/viewer/view/diff_list.h"

#include <QAccessibleTextInterface>
#include <QAccessibleWidget>

#include <algorithm>

namespace kelm {

namespace {

/// Tells the diff as one text that can be read and selected. The buttons of the hunks are children, as they are of the
/// widget.
class AccessibleDiffList final : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    explicit AccessibleDiffList(DiffList& list) : QAccessibleWidget(&list, QAccessible::Document) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TextInterface) {
            return static_cast<QAccessibleTextInterface*>(this);
        }
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.multiLine = true;
        state.readOnly = true;
        state.selectableText = true;
        return state;
    }

    using QAccessibleWidget::text;

    // QAccessibleTextInterface. Offsets are UTF-16 units.
    int characterCount() const override { return static_cast<int>(transcript().text().size()); }

    QString text(int start, int end) const override
    {
        const qsizetype from = std::clamp(start, 0, characterCount());
        return transcript().text().sliced(from, std::clamp<qsizetype>(end - from, 0, characterCount() - from));
    }

    int selectionCount() const override { return selectedOffsets() ? 1 : 0; }

    void selection(int index, int* start, int* end) const override
    {
        const auto offsets = index == 0 ? selectedOffsets() : std::nullopt;
        *start = offsets ? offsets->first : 0;
        *end = offsets ? offsets->second : 0;
    }

    void addSelection(int start, int end) override { setSelection(0, start, end); }

    void removeSelection(int index) override
    {
        if (index == 0) {
            list().clearSelection();
        }
    }

    void setSelection(int index, int start, int end) override
    {
        const DiffTranscript::Line* const line = transcript().lineAt(start);
        if (index == 0 && line != nullptr) {
            list().select({textPlace(start), textPlace(end), line->side});
        }
    }

    int cursorPosition() const override
    {
        const auto offsets = selectedOffsets();
        return offsets ? offsets->second : 0;
    }

    void setCursorPosition(int position) override { scrollToSubstring(position, position); }

    QRect characterRect(int offset) const override
    {
        const DiffTranscript::Line* const line = transcript().lineAt(offset);
        if (line == nullptr) {
            return {};
        }
        const QRect box = list().rectOf(transcript().placeOf(offset), line->side);
        return {list().viewport()->mapToGlobal(box.topLeft()), box.size()};
    }

    int offsetAtPoint(const QPoint& point) const override
    {
        const auto [place, side] = list().textAt(list().viewport()->mapFromGlobal(point));
        return static_cast<int>(transcript().offsetOf(place, side).value_or(-1));
    }

    void scrollToSubstring(int start, int) override
    {
        if (transcript().lineAt(start) != nullptr) {
            list().scrollTo(transcript().placeOf(start));
        }
    }

    QString attributes(int /*offset*/, int* start, int* end) const override
    {
        *start = 0;
        *end = characterCount();
        return {};
    }

private:
    DiffList& list() const { return *static_cast<DiffList*>(object()); }
    const DiffTranscript& transcript() const { return list().transcript(); }

    /// A place in a text that can be selected: the header of a hunk is passed over.
    DiffTextPlace textPlace(int offset) const
    {
        DiffTextPlace place = transcript().placeOf(offset);
        if (place.entry < 0) {
            place.entry = 0;
            place.unit = 0;
        }
        return place;
    }

    std::optional<std::pair<int, int>> selectedOffsets() const
    {
        const std::optional<DiffSelection>& selection = list().selection();
        if (!selection || selection->isEmpty()) {
            return std::nullopt;
        }
        const auto [first, last] = std::minmax(selection->anchor, selection->caret);
        const qsizetype end = transcript().text().size();
        return std::pair(static_cast<int>(transcript().offsetOf(first, selection->side).value_or(end)),
                         static_cast<int>(transcript().offsetOf(last, selection->side).value_or(end)));
    }
};

QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object)
{
    auto* list = qobject_cast<DiffList*>(object);
    return list == nullptr ? nullptr : new AccessibleDiffList(*list);
}

} // namespace

void installAccessibleDiffListFactory()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(isInstalled)
}

} // namespace kelm
