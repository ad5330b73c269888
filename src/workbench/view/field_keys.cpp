#include "workbench/view/field_keys.h"

#include "platform/events/erasing_keys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace kelm {

FieldKeys::FieldKeys(QObject* parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool FieldKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) {
        return false;
    }
    return erasesUnnamed(static_cast<QKeyEvent*>(event)->keyCombination()) &&
           (qobject_cast<QLineEdit*>(watched) != nullptr || qobject_cast<QTextEdit*>(watched) != nullptr ||
            qobject_cast<QPlainTextEdit*>(watched) != nullptr);
}

} // namespace kelm
