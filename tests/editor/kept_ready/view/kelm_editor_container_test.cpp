#include "editor/kept_ready/view/kelm_editor_container.h"
#include "editor/kept_ready/view/kelm_text_view.h"
#include "platform/style/view/style.h"
#include "support/marked_text.h"
#include "support/paints.h"
#include "support/test_program.h"

#include <QtTest>

namespace kelm_editor_container_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Writes down what it is told, in order.
struct RecordingDelegate final : KelmEditorDelegate
{
    QStringList told;

    void textDidChange(const QString& text) override { told << u"text "_s + text; }
    void cursorDidChange(const CursorPosition& cursor) override
    {
        told << u"cursor %1:%2 at %3"_s.arg(cursor.line).arg(cursor.column).arg(cursor.offset);
    }
    void selectionDidChange(const std::optional<TextSelection>& selection) override
    {
        told << (selection ? u"selection %1:%2 to %3:%4"_s.arg(selection->start.line)
                                 .arg(selection->start.column)
                                 .arg(selection->end.line)
                                 .arg(selection->end.column)
                           : u"no selection"_s);
    }
};

struct Fixture
{
    NotificationCenter notifications;
    KelmEditorContainer container{notifications};
    RecordingDelegate delegate;

    Fixture()
    {
        container.resize(600, 400);
        container.show();
        container.activateWindow();
        container.setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&container));
        container.delegate = &delegate;
    }
};

} // namespace

class KelmEditorContainerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsAsItShould();
    void theGutterIsSixtyFiveWide();
    void theTextsBoxHasAFloor();
    void theDelegateHearsOfTextCaretAndSelection();
    void typingIsNotColoured();
    void languageAndThemeColourTheText();
    void foldsAreToggledInTheGutter();
    void theGutterFollowsTextAndCaret();
    void theTextBehindAFoldHasItsColoursAndRegions();
    void theGroundOfSelectedTextFollowsTheAppearance();
    void aDelegateThatIsGoneIsSkipped();
};

void KelmEditorContainerTest::itStartsAsItShould()
{
    Fixture fixture;
    KelmEditorContainer& container = fixture.container;
    QVERIFY(container.currentLanguage() == Language::swift);
    QVERIFY(container.showLineNumbers());
    QVERIFY(container.theme() == EditorTheme::monokai());
    QVERIFY(dynamic_cast<KelmTextView*>(&container.textView()) == nullptr);
    QCOMPARE(container.textView().textInset(), QSizeF(4, 8));
    QCOMPARE(container.textView().textLayout().font().pixelSize(), 14);
    QCOMPARE(container.autoCompleteManager().textView(), &container.textView());
    QCOMPARE(container.multiCursorManager().textView(), &container.textView());
    QCOMPARE(container.selectionManager().textView(), &container.textView());
    QVERIFY(container.textView().hasFocus());
}

void KelmEditorContainerTest::theGutterIsSixtyFiveWide()
{
    Fixture fixture;
    QCOMPARE(fixture.container.lineNumberView().geometry(), QRect(0, 0, 65, 400));
    QCOMPARE(fixture.container.textView().geometry(), QRect(65, 0, 535, 400));
    fixture.container.setShowLineNumbers(false);
    QVERIFY(!fixture.container.lineNumberView().isVisible());
    QCOMPARE(fixture.container.textView().geometry(), QRect(0, 0, 600, 400));
}

void KelmEditorContainerTest::theTextsBoxHasAFloor()
{
    Fixture fixture;
    TextView& view = fixture.container.textView();
    // The box of the text keeps 5 points free on both sides.
    QCOMPARE(view.textLayout().width(), view.viewport()->width() - 10.0 - 10.0);
    fixture.container.resize(120, 400);
    QCOMPARE(view.textLayout().width(), 100.0 - 10.0);
}

void KelmEditorContainerTest::theDelegateHearsOfTextCaretAndSelection()
{
    Fixture fixture;
    fixture.container.setText(u"ab\ncd"_s);
    fixture.delegate.told.clear();
    fixture.container.textView().setSelectedRange({4, 0});
    QCOMPARE(fixture.delegate.told, (QStringList{u"cursor 2:2 at 4"_s, u"no selection"_s}));
    fixture.delegate.told.clear();
    fixture.container.textView().setSelectedRange({1, 3});
    QCOMPARE(fixture.delegate.told, (QStringList{u"cursor 1:2 at 1"_s, u"selection 1:2 to 2:2"_s}));
    fixture.delegate.told.clear();
    QTest::keyClick(&fixture.container.textView(), Qt::Key_X);
    QVERIFY(fixture.delegate.told.contains(u"text axd"_s));
    QVERIFY(fixture.delegate.told.contains(u"cursor 1:3 at 2"_s));
}

void KelmEditorContainerTest::typingIsNotColoured()
{
    Fixture fixture;
    TextView& view = fixture.container.textView();
    QTest::keyClicks(&view, u"let x = 1"_s);
    QVERIFY(view.storage().foreground().runsIn({0, 9}).empty());
}

void KelmEditorContainerTest::languageAndThemeColourTheText()
{
    Fixture fixture;
    TextView& view = fixture.container.textView();
    fixture.container.setText(u"while x:\n  1\n  2\n"_s);
    fixture.container.setCurrentLanguage(Language::python);
    QCOMPARE(view.storage().colorsIn({0, 1}).front().color, EditorTheme::monokai().keywordColor.toColor().rgba());
    QCOMPARE(fixture.container.codeFoldingManager().foldableRegions().size(), std::size_t(1));
    EditorTheme theme = EditorTheme::monokai();
    theme.keywordColor = theme.stringColor;
    theme.backgroundColor = theme.gutterColor;
    fixture.container.setTheme(theme);
    QCOMPARE(view.storage().colorsIn({0, 1}).front().color, theme.stringColor.toColor().rgba());
    QCOMPARE(view.colors().background, theme.gutterColor.toColor());
    QCOMPARE(fixture.container.lineNumberView().backgroundColor, theme.gutterColor.toColor());
    QCOMPARE(fixture.container.lineNumberView().textColor, theme.lineNumberColor.toColor());
    QCOMPARE(view.colors().insertionPoint, theme.cursorColor.toColor());
}

void KelmEditorContainerTest::foldsAreToggledInTheGutter()
{
    Fixture fixture;
    fixture.container.setText(u"{\n  a\n  b\n}\n"_s);
    QTest::mouseClick(&fixture.container.lineNumberView(), Qt::LeftButton, {}, {60, 12});
    QCOMPARE(fixture.container.text(), u"{\n … }\n"_s);
    QTest::mouseClick(&fixture.container.lineNumberView(), Qt::LeftButton, {}, {60, 12});
    QCOMPARE(fixture.container.text(), u"{\n  a\n  b\n}\n"_s);
}

void KelmEditorContainerTest::theGutterFollowsTextAndCaret()
{
    Fixture fixture;
    KelmEditorContainer& container = fixture.container;
    container.setText(u"a\nb\nc"_s);
    container.textView().setSelectedRange({0, 0});
    const auto picture = [&container] { return container.lineNumberView().grab().toImage(); };
    const QImage before = picture();
    QCoreApplication::processEvents();
    test::Paints gutter(container.lineNumberView());
    container.textView().setSelectedRange({4, 0});
    QTRY_VERIFY(gutter.count > 0);
    // The caret's line has a colour of its own.
    QVERIFY(picture() != before);
    QCoreApplication::processEvents();
    gutter.count = 0;
    QTest::keyClick(&container.textView(), Qt::Key_Return);
    QTRY_VERIFY(gutter.count > 0);
}

void KelmEditorContainerTest::theTextBehindAFoldHasItsColoursAndRegions()
{
    Fixture fixture;
    KelmEditorContainer& container = fixture.container;
    container.setText(u"{\n  let a\n  b\n}\n{\n  c\n  d\n}\n"_s);
    const auto starts = [&container] {
        QList<qsizetype> lines;
        for (const FoldableRegion& region : container.codeFoldingManager().foldableRegions()) {
            lines << region.startLine;
        }
        return lines;
    };
    QCOMPARE(starts(), (QList<qsizetype>{1, 5}));
    const auto clickOnLine = [&container](int line) {
        QTest::mouseClick(&container.lineNumberView(), Qt::LeftButton, {}, {60, 8 + 17 * (line - 1) + 8});
    };
    clickOnLine(1);
    QCOMPARE(container.text(), u"{\n … }\n{\n  c\n  d\n}\n"_s);
    // The lines are numbered as they are shown.
    QCOMPARE(starts(), (QList<qsizetype>{3}));
    clickOnLine(3);
    QCOMPARE(container.text(), u"{\n … }\n{\n … }\n"_s);
    clickOnLine(1);
    QCOMPARE(container.text(), u"{\n  let a\n  b\n}\n{\n … }\n"_s);
    clickOnLine(5);
    QCOMPARE(container.text(), u"{\n  let a\n  b\n}\n{\n  c\n  d\n}\n"_s);
    QCOMPARE(starts(), (QList<qsizetype>{1, 5}));
    QCOMPARE(container.textView().storage().colorsIn({4, 1}).front().color,
             EditorTheme::monokai().keywordColor.toColor().rgba());
}

void KelmEditorContainerTest::theGroundOfSelectedTextFollowsTheAppearance()
{
    Fixture fixture;
    const auto selection = [&fixture] { return fixture.container.textView().colors().selection; };
    fixture.container.setPalette(style::palette(Appearance::dark));
    QCOMPARE(selection().name(), u"#0a84ff"_s);
    fixture.container.setPalette(style::palette(Appearance::light));
    QCOMPARE(selection().name(), u"#007aff"_s);
    QCOMPARE(selection().alpha(), 102);
}

void KelmEditorContainerTest::aDelegateThatIsGoneIsSkipped()
{
    Fixture fixture;
    auto delegate = std::make_unique<RecordingDelegate>();
    fixture.container.delegate = delegate.get();
    delegate.reset();
    QTest::keyClick(&fixture.container.textView(), Qt::Key_X);
    QCOMPARE(fixture.container.text(), u"x"_s);
    QVERIFY(fixture.delegate.told.isEmpty());
}

const kelm::test::Registered<KelmEditorContainerTest> registered(kelm::test::Toolkit::widgets);

} // namespace kelm_editor_container_test

#include "kelm_editor_container_test.moc"
