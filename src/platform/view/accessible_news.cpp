#include "platform/view/accessible_news.h"

#include "platform/view/screen_reader.h"

#include <QAccessible>
#include <QWidget>

namespace kelm {

void announce(QWidget& widget)
{
    if (!screenReader::isListening() || !widget.isVisible()) {
        return;
    }
    QAccessibleEvent alert(&widget, QAccessible::Alert);
    screenReader::tell(alert);
    // On some platforms alerts go no further; what appears is told on all.
    QAccessibleEvent appeared(&widget, QAccessible::ObjectShow);
    screenReader::tell(appeared);
}

} // namespace kelm
