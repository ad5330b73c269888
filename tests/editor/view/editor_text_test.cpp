#include "editor/view/editor_container_view.h"
#include "editor/view/editor_text.h"
#include "platform/style/view/style.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QtTest>

namespace editor_text_test {

using namespace kelm;

namespace {

/// A container before any theme is set.
struct Fixture
{
    ManualScheduler time;
    NotificationCenter notifications;
    EditorContainerView view{time, notifications};

    Fixture()
    {
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
    }
};

} // namespace

class EditorTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aContainerStartsAsItShould();
    void theColoursBeforeAnyTheme();
    void theGroundsArePaintedBeforeAnyTheme();
    void theFontIsMonospacedAndRegular();
    void theTextIsInsetByFour();
    void aThemeKeepsFontAndSelection();
    void theGroundOfSelectedTextFollowsTheAppearance();
};

void EditorTextTest::aContainerStartsAsItShould()
{
    Fixture fixture;
    QCOMPARE(fixture.view.theme(), EditorTheme::monokai());
    QVERIFY(fixture.view.currentLanguage() == Language::plainText);
    QVERIFY(fixture.view.showLineNumbers());
    QVERIFY(fixture.view.showMinimap());
    QVERIFY(!fixture.view.lessonRegion());
    QVERIFY(!fixture.view.textView().isReadOnly());
    QVERIFY(fixture.view.lineNumberView().textView == &fixture.view.textView());
    QVERIFY(fixture.view.lineNumberView().codeFoldingManager == &fixture.view.codeFoldingManager());
    QCOMPARE(fixture.view.minimapView().textView(), &fixture.view.textView());
    QCOMPARE(fixture.view.codeFoldingManager().storage(), &fixture.view.textView().storage());
}

void EditorTextTest::theColoursBeforeAnyTheme()
{
    Fixture fixture;
    const TextViewColors& colors = fixture.view.textView().colors();
    QCOMPARE(colors.background.name(), QStringLiteral("#1f1f24"));
    QCOMPARE(colors.background.alpha(), 255);
    QCOMPARE(colors.text, QColor(255, 255, 255));
    QCOMPARE(style::appearanceOf(fixture.view), Appearance::light);
    QCOMPARE(colors.insertionPoint, QColor(255, 204, 0));
    QCOMPARE(colors.selection.name(), QStringLiteral("#007aff"));
    QCOMPARE(colors.selection.alpha(), 102);
}

void EditorTextTest::theGroundsArePaintedBeforeAnyTheme()
{
    Fixture fixture;
    const QImage image = fixture.view.grab().toImage();
    QCOMPARE(image.pixelColor(EditorContainerView::gutterWidth + 300, 200).name(), QStringLiteral("#1f1f24"));
    QCOMPARE(image.pixelColor(20, 200).name(), QStringLiteral("#1a1a1f"));
}

void EditorTextTest::theFontIsMonospacedAndRegular()
{
    Fixture fixture;
    const QFont& font = fixture.view.textView().textLayout().font();
    QCOMPARE(font.pixelSize(), 14);
    QCOMPARE(font.weight(), int(QFont::Normal));
    QVERIFY(!font.italic());
    const QFontMetricsF metrics(font);
    QCOMPARE(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'W'));
}

void EditorTextTest::theTextIsInsetByFour()
{
    Fixture fixture;
    TextView& text = fixture.view.textView();
    QCOMPARE(text.textInset(), QSizeF(4, 4));
    QCOMPARE(text.caretRect({0, false}).top(), 4.0);
}

void EditorTextTest::aThemeKeepsFontAndSelection()
{
    Fixture fixture;
    TextView& text = fixture.view.textView();
    const TextViewColors before = text.colors();
    const QFont font = text.textLayout().font();
    fixture.view.setTheme(EditorTheme::githubLight());
    QCOMPARE(text.colors().background, EditorTheme::githubLight().backgroundColor.toColor());
    QCOMPARE(text.colors().insertionPoint, EditorTheme::githubLight().cursorColor.toColor());
    // What is typed is read before the highlighter has come by.
    QCOMPARE(text.colors().text, EditorTheme::githubLight().textColor.toColor());
    QCOMPARE(text.colors().selection, before.selection);
    QCOMPARE(text.textLayout().font(), font);
    QCOMPARE(text.textInset(), QSizeF(4, 4));
}

void EditorTextTest::theGroundOfSelectedTextFollowsTheAppearance()
{
    Fixture fixture;
    TextView& text = fixture.view.textView();
    text.storage().setText(QStringLiteral("    "));
    text.setSelectedRange({0, 4});
    // Whatever the theme: it is the window's appearance that counts.
    fixture.view.setTheme(EditorTheme::githubLight());
    const TextViewColors before = text.colors();
    const auto check = [&](Appearance appearance, const QColor& blue) {
        fixture.view.setPalette(style::palette(appearance));
        QCOMPARE(text.colors().selection.name(), blue.name());
        QCOMPARE(text.colors().selection.alpha(), 102);
        const QPoint inside = text.caretRect({2, false}).center().toPoint();
        const QColor seen = text.viewport()->grab().toImage().pixelColor(inside);
        QColor ground = blue;
        ground.setAlphaF(0.4F);
        QVERIFY2(test::isNear(seen, test::over(text.colors().background, ground)), qPrintable(seen.name()));
        QCOMPARE(text.colors().background, before.background);
        QCOMPARE(text.colors().text, before.text);
        QCOMPARE(text.colors().insertionPoint, before.insertionPoint);
        QCOMPARE(text.colors().match, before.match);
    };
    check(Appearance::dark, {10, 132, 255});
    check(Appearance::light, {0, 122, 255});
    // So it is where the dark one was there before the view.
    QWidget window;
    window.setPalette(style::palette(Appearance::dark));
    EditorContainerView dark(fixture.time, fixture.notifications, &window);
    QCOMPARE(dark.textView().colors().selection.name(), QStringLiteral("#0a84ff"));
    QCOMPARE(dark.textView().colors().insertionPoint, QColor(255, 214, 10));
}

const kelm::test::Registered<EditorTextTest> registered(kelm::test::Toolkit::widgets);

} // namespace editor_text_test

#include "editor_text_test.moc"
