// Runs at several scales of the screen; see the folder's list of tests.
#include "editor/view/editor_container_view.h"
#include "support/test_program.h"

#include <QtTest>

namespace editor_container_view_alignment_test {

using namespace kelm;

namespace {

/// First and last pixel row of a stretch of one colour in a pixel column; the colour is that of neither end of it.
std::pair<int, int> stretch(const QImage& image, int x)
{
    const QRgb ground = image.pixel(x, image.height() - 1);
    int first = 0;
    while (first < image.height() && image.pixel(x, first) == ground) {
        ++first;
    }
    int last = image.height() - 1;
    while (last > first && image.pixel(x, last) == ground) {
        --last;
    }
    return {first, last};
}

} // namespace

class EditorContainerViewAlignmentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gutterRowsLineUpWithTextRows_data();
    void gutterRowsLineUpWithTextRows();
};

void EditorContainerViewAlignmentTest::gutterRowsLineUpWithTextRows_data()
{
    QTest::addColumn<int>("theme");
    QTest::addColumn<int>("scroll");
    QTest::newRow("dark") << 0 << 0;
    QTest::newRow("light") << 4 << 0;
    QTest::newRow("scrolled by part of a row") << 0 << 25;
    QTest::newRow("light, scrolled") << 4 << 40;
}

void EditorContainerViewAlignmentTest::gutterRowsLineUpWithTextRows()
{
    QFETCH(int, theme);
    QFETCH(int, scroll);
    NotificationCenter notifications;
    EditorContainerView view{Scheduler::system(), notifications};
    view.resize(700, 300);
    view.setText(QString(QStringLiteral("line\n")).repeated(100));
    view.setTheme(EditorTheme::allThemes()[theme]);
    view.setLessonRegion(LineRegion{5, 8});
    // The selection covers the same lines, and runs to the right edge.
    view.textView().setSelectedRange({4 * 5, 4 * 5});
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.textView().scrollToY(scroll);
    const QImage image = view.grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    const int gutterX = qRound(25 * ratio);
    const int textX = qRound(400 * ratio);
    const auto band = stretch(image, gutterX);
    const auto selection = stretch(image, textX);
    QCOMPARE(band, selection);
    QCOMPARE(band.first, qRound((4 + 4 * 17 - scroll) * ratio));
    QCOMPARE(band.second, qRound((4 + 8 * 17 - scroll) * ratio) - 1);
}

const kelm::test::Registered<EditorContainerViewAlignmentTest> registered(kelm::test::Toolkit::widgets);

} // namespace editor_container_view_alignment_test

#include "editor_container_view_alignment_test.moc"
