// What stands where on a widget.
#pragma once

#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "support/painted_text.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QList>
#include <QPushButton>
#include <QStringList>

#include <algorithm>
#include <optional>

namespace kelm::test {

/// What is shown and of one of some types, from the top, and from the left within a line. The types are such as do not
/// lie in each other.
template <typename... Types>
QList<QWidget*> shownOf(const QWidget& parent)
{
    QList<QWidget*> found;
    for (QWidget* child : parent.findChildren<QWidget*>()) {
        if (child->isVisible() && (... || (dynamic_cast<Types*>(child) != nullptr))) {
            found.append(child);
        }
    }
    std::stable_sort(found.begin(), found.end(), [&parent](const QWidget* a, const QWidget* b) {
        const QRect first(a->mapTo(&parent, QPoint()), a->size());
        const QRect second(b->mapTo(&parent, QPoint()), b->size());
        const bool isOneLine = first.top() <= second.bottom() && second.top() <= first.bottom();
        return isOneLine ? first.left() < second.left() : first.top() < second.top();
    });
    return found;
}

/// The same of one type.
template <typename Type>
QList<Type*> shownIn(const QWidget& parent)
{
    QList<Type*> found;
    for (QWidget* widget : shownOf<Type>(parent)) {
        found.append(dynamic_cast<Type*>(widget));
    }
    return found;
}

/// The symbols of the shown buttons with their texts, in the same order.
inline QStringList buttonsIn(const QWidget& parent)
{
    QStringList lines;
    for (const PlainButton* button : shownIn<PlainButton>(parent)) {
        lines.append(button->look().symbol + u'|' + (button->text().isEmpty() ? button->toolTip() : button->text()));
    }
    return lines;
}

/// The fields, boxes and buttons that are shown, by what stands on them, in the same order.
inline QStringList controlsIn(const QWidget& parent)
{
    QStringList lines;
    for (const QWidget* widget : shownOf<QLineEdit, QCheckBox, PlainButton>(parent)) {
        if (const auto* field = qobject_cast<const QLineEdit*>(widget)) {
            lines.append(field->placeholderText());
        } else if (const auto* box = qobject_cast<const QCheckBox*>(widget)) {
            lines.append(box->text());
        } else if (const auto* button = qobject_cast<const PlainButton*>(widget)) {
            lines.append(button->text());
        }
    }
    return lines;
}

/// The shown label of a text, or null.
inline TextLabel* labelOf(const QWidget& parent, const QString& text)
{
    const QList<TextLabel*> labels = shownIn<TextLabel>(parent);
    const auto found =
        std::find_if(labels.begin(), labels.end(), [&text](const TextLabel* label) { return label->text() == text; });
    return found == labels.end() ? nullptr : *found;
}

/// Whether a label shows a symbol in a colour, and in a size if one is given.
inline bool shows(SymbolLabel& label, const QString& symbol, const Tint& tint, std::optional<int> size = std::nullopt)
{
    SymbolLabel expected(symbol, size.value_or(label.width()), tint);
    return icons::has(symbol) && (!size || label.size() == QSize(*size, *size)) && looksLike(label, expected);
}

/// Whether a label is drawn in a colour and a type.
inline bool isDrawn(TextLabel* label, const Tint& tint, const QFont& font)
{
    if (label == nullptr) {
        return false;
    }
    const QImage picture = label->grab().toImage();
    const QColor ground = label->palette().color(QPalette::Window);
    return isSame(ink(picture, picture.rect(), ground), inkOf(label->text(), font, tint, ground));
}

/// The names of the toolkit's own buttons that are shown, in the same order.
inline QStringList namesOfPushButtonsIn(const QWidget& parent)
{
    QStringList names;
    for (const QPushButton* button : shownIn<QPushButton>(parent)) {
        names.append(button->text());
    }
    return names;
}

} // namespace kelm::test
