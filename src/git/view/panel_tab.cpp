#include "git/view/panel_tab.h"

namespace kelm {

void PanelTab::refresh()
{
    isStale_ = !isVisible();
    if (!isStale_) {
        takeState();
    }
}

void PanelTab::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (isStale_) {
        isStale_ = false;
        takeState();
    }
}

} // namespace kelm
