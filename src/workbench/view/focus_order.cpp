#include "workbench/view/focus_order.h"

#include <QWidget>

#include <algorithm>

namespace kelm {

namespace {

bool isStop(const QWidget& widget, const QWidget& region)
{
    return (widget.focusPolicy() & Qt::TabFocus) != 0 && widget.isEnabled() && widget.isVisibleTo(&region) &&
           widget.focusProxy() == nullptr;
}

/// Whether all stops cut one horizontal line.
bool standInOneRow(const QList<QWidget*>& stops, const QWidget& region)
{
    int lowestTop = 0;
    int highestBottom = region.height();
    for (const QWidget* stop : stops) {
        const int top = stop->mapTo(&region, QPoint()).y();
        lowestTop = std::max(lowestTop, top);
        highestBottom = std::min(highestBottom, top + stop->height());
    }
    return lowestTop < highestBottom;
}

QList<QWidget*> stopsOf(QWidget& region)
{
    QList<QWidget*> stops;
    // The chain of the whole window holds them in the order in which they were made, or were put since.
    for (QWidget* widget = region.nextInFocusChain(); widget != &region; widget = widget->nextInFocusChain()) {
        if (region.isAncestorOf(widget) && isStop(*widget, region)) {
            stops.append(widget);
        }
    }
    if (standInOneRow(stops, region)) {
        std::stable_sort(stops.begin(), stops.end(), [&region](const QWidget* a, const QWidget* b) {
            return a->mapTo(&region, QPoint()).x() < b->mapTo(&region, QPoint()).x();
        });
    }
    return stops;
}

} // namespace

QWidget* nextFocusStop(const QList<QWidget*>& regions, QWidget* current, bool forward)
{
    QList<QWidget*> stops;
    // Where the stops of the region begin that holds what has the keyboard without being a stop.
    qsizetype regionStart = 0;
    for (QWidget* region : regions) {
        if (region != nullptr && region->isVisible()) {
            if (current != nullptr && region->isAncestorOf(current)) {
                regionStart = stops.size();
            }
            stops.append(stopsOf(*region));
        }
    }
    if (stops.isEmpty()) {
        return nullptr;
    }
    const qsizetype at = stops.indexOf(current);
    const qsizetype count = stops.size();
    if (at < 0) {
        return stops.at((regionStart + (forward ? 0 : count - 1)) % count);
    }
    return stops.at((at + (forward ? 1 : count - 1)) % count);
}

} // namespace kelm
