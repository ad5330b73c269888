// A diff viewer on screen.
#pragma once

#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_viewer.h"
#include "platform/view/plain_button.h"
#include "support/patience.h"

#include <QStackedWidget>
#include <QtTest>

namespace kelm::test {

/// A viewer of 800 by 500 in a window of its own.
class ShownViewer
{
public:
    explicit ShownViewer(const QString& text = {}, DiffViewMode mode = DiffViewMode::unified)
    {
        viewer.resize(800, 500);
        viewer.setMode(mode);
        viewer.setDiffText(text);
        viewer.show();
        viewer.activateWindow();
        // A long text is read on another thread.
        isShown = QTest::qWaitForWindowActive(&viewer) &&
                  QTest::qWaitFor([this] { return !viewer.isReading(); }, kelm::test::patience);
    }

    DiffList& list() { return viewer.list(); }
    PlainButton* button(qsizetype file, qsizetype hunk, HunkControl::Role role)
    {
        return list().button({file, hunk, role});
    }
    QWidget* page() { return viewer.findChild<QStackedWidget*>()->currentWidget(); }
    QList<PlainButton*> shownButtons() const
    {
        QList<PlainButton*> buttons = viewer.findChildren<PlainButton*>();
        buttons.removeIf([](PlainButton* button) { return !button->isVisible(); });
        return buttons;
    }
    QPoint pointOf(DiffTextPlace place, SideBySideHunkLines::Side side = SideBySideHunkLines::Side::newSide)
    {
        return list().pointOf(place, side).toPoint();
    }
    /// What the list shows.
    QImage picture() { return list().viewport()->grab().toImage(); }
    QColor colorAt(QPoint point) { return picture().pixelColor(point); }
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(list().viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, list().viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(list().viewport(), &move);
        QTest::mouseRelease(list().viewport(), Qt::LeftButton, {}, to);
    }

    DiffViewer viewer;
    bool isShown = false;
};

} // namespace kelm::test
