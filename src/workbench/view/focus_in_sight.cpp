#include "workbench/view/focus_in_sight.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QScrollArea>

namespace kelm {

namespace {

/// Around what is scrolled to.
constexpr int margin = 8;

void showRow(QAbstractItemView& list)
{
    if (list.currentIndex().isValid()) {
        list.scrollTo(list.currentIndex(), QAbstractItemView::EnsureVisible);
    }
}

void bringIntoSight(QWidget* focused)
{
    if (focused == nullptr || QGuiApplication::mouseButtons() != Qt::NoButton) {
        return;
    }
    if (auto* list = qobject_cast<QAbstractItemView*>(focused)) {
        showRow(*list);
    }
    for (QWidget* around = focused->parentWidget(); around != nullptr; around = around->parentWidget()) {
        auto* const area = qobject_cast<QScrollArea*>(around);
        if (area != nullptr && area->widget() != nullptr && area->widget()->isAncestorOf(focused)) {
            area->ensureWidgetVisible(focused, margin, margin);
        }
    }
}

} // namespace

FocusInSight::FocusInSight(QObject* parent) : QObject(parent)
{
    connect(qApp, &QApplication::focusChanged, this, [](QWidget*, QWidget* now) { bringIntoSight(now); });
}

} // namespace kelm
