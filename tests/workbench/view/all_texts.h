// What a window says, wherever it says it.
#pragma once

#include "platform/view/plain_button.h"
#include "text/view/text_view.h"

#include <QAbstractItemView>
#include <QMenu>
#include <QWidget>

namespace kelm::test {

inline void addTexts(QStringList& texts, const QObject& object)
{
    for (const char* property : {"text", "placeholderText", "title", "windowTitle", "toolTip", "accessibleName",
                                 "accessibleDescription", "statusTip", "iconText", "plainText"}) {
        const QVariant value = object.property(property);
        if (value.metaType() == QMetaType::fromType<QString>() && !value.toString().isEmpty()) {
            texts.append(value.toString());
        }
    }
}

inline void addRows(QStringList& texts, const QAbstractItemModel& model, const QModelIndex& parent = {})
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        for (const int role : {int(Qt::DisplayRole), int(Qt::ToolTipRole), int(Qt::AccessibleTextRole)}) {
            texts.append(index.data(role).toString());
        }
        addRows(texts, model, index);
    }
}

inline void addMenu(QStringList& texts, QMenu& menu)
{
    Q_EMIT menu.aboutToShow();
    addTexts(texts, menu);
    for (const QAction* action : menu.actions()) {
        addTexts(texts, *action);
        texts.append(action->shortcut().toString(QKeySequence::NativeText));
        if (action->menu() != nullptr) {
            addMenu(texts, *action->menu());
        }
    }
}

/// All texts of a window's controls, lists and menus, shown or not: names, labels, prompts, help texts. Not what a
/// person wrote in a text view.
inline QStringList allTexts(QWidget& window)
{
    QStringList texts;
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets.prepend(&window);
    for (QWidget* widget : std::as_const(widgets)) {
        if (qobject_cast<TextView*>(widget) != nullptr) {
            continue;
        }
        addTexts(texts, *widget);
        if (const auto* list = qobject_cast<QAbstractItemView*>(widget); list != nullptr && list->model() != nullptr) {
            addRows(texts, *list->model());
        }
        if (auto* menu = qobject_cast<QMenu*>(widget)) {
            addMenu(texts, *menu);
        }
    }
    return texts;
}

} // namespace kelm::test
