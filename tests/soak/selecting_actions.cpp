// Carets, selections and scrolling.
#include "soak/action.h"
#include "soak/editing.h"

#include <QWheelEvent>

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

QPoint somewhere(World& world, const QWidget& widget)
{
    return {static_cast<int>(world.chance.below(widget.width())),
            static_cast<int>(world.chance.below(widget.height()))};
}

void moveCaret(World& world)
{
    static const std::vector<Qt::Key> keys{Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,     Qt::Key_Down,
                                           Qt::Key_Home, Qt::Key_End,   Qt::Key_PageUp, Qt::Key_PageDown};
    static const std::vector<Qt::KeyboardModifiers> modifiers{Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier,
                                                              Qt::ControlModifier,
                                                              Qt::ControlModifier | Qt::ShiftModifier};
    const Qt::KeyboardModifiers held = world.chance.pick(modifiers);
    for (qsizetype count = 1 + world.chance.below(6); count > 0; --count) {
        const Qt::Key key = world.chance.pick(keys);
        // With Ctrl these go to other tabs.
        const bool isOfPages = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
        QTest::keyClick(&world.text(), key, isOfPages ? held & Qt::ShiftModifier : held);
    }
}

void click(World& world)
{
    static const std::vector<Qt::KeyboardModifiers> modifiers{Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier,
                                                              Qt::ControlModifier};
    // A press into a selection could begin a drag, which waits for a hand.
    QTest::keyClick(&world.text(), Qt::Key_Right);
    QWidget* const page = world.text().viewport();
    const Qt::KeyboardModifiers held = world.chance.pick(modifiers);
    if (world.chance.oneIn(5)) {
        QTest::mouseDClick(page, Qt::LeftButton, held, somewhere(world, *page));
    } else {
        QTest::mouseClick(page, Qt::LeftButton, held, somewhere(world, *page));
    }
}

void drag(World& world)
{
    QTest::keyClick(&world.text(), Qt::Key_Left);
    QWidget* const page = world.text().viewport();
    const QPoint to = somewhere(world, *page);
    QTest::mousePress(page, Qt::LeftButton, {}, somewhere(world, *page));
    QMouseEvent move(QEvent::MouseMove, to, page->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(page, &move);
    QTest::mouseRelease(page, Qt::LeftButton, {}, to);
}

void addCarets(World& world)
{
    for (qsizetype count = 1 + world.chance.below(3); count > 0; --count) {
        QTest::keyClick(&world.text(), world.chance.oneIn(2) ? Qt::Key_Down : Qt::Key_Up,
                        Qt::ControlModifier | Qt::AltModifier);
    }
}

void selectAll(World& world)
{
    QTest::keyClick(&world.text(), Qt::Key_A, Qt::ControlModifier);
}

void scroll(World& world)
{
    QWidget* const page = world.text().viewport();
    const QPointF place = page->rect().center();
    const int turn = world.chance.oneIn(2) ? 120 : -120;
    for (qsizetype count = 1 + world.chance.below(10); count > 0; --count) {
        QWheelEvent event(place, page->mapToGlobal(place), {}, QPoint(0, turn), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(page, &event);
    }
    if (world.editor()->minimapView().isVisible() && world.chance.oneIn(3)) {
        QWidget& map = world.editor()->minimapView();
        QTest::mouseClick(&map, Qt::LeftButton, {}, somewhere(world, map));
    }
}

} // namespace

std::vector<Action> selectingActions()
{
    return {
        {"move the caret", 40, hasText, moveCaret}, {"click", 16, hasText, click},
        {"select by dragging", 12, hasText, drag},  {"add carets", 8, hasText, addCarets},
        {"select all", 2, hasText, selectAll},      {"scroll", 12, hasText, scroll},
    };
}

} // namespace kelm::soak
