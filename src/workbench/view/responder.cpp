#include "workbench/view/responder.h"

#include "text/view/text_view.h"

#include <QApplication>

namespace kelm {

void sendActionToFirstResponder(const char* slot)
{
    const QByteArray signature = QByteArray(slot) + "()";
    for (QWidget* widget = QApplication::focusWidget(); widget != nullptr; widget = widget->parentWidget()) {
        if (widget->metaObject()->indexOfMethod(signature) >= 0) {
            QMetaObject::invokeMethod(widget, slot, Qt::DirectConnection);
            return;
        }
    }
}

void commitCompositionInFocus()
{
    if (auto* view = qobject_cast<TextView*>(QApplication::focusWidget())) {
        view->commitComposition();
    } else {
        QGuiApplication::inputMethod()->commit();
    }
}

} // namespace kelm
