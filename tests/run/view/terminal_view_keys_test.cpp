#include "run/view/terminal_page.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QFontInfo>
#include <QScrollBar>

namespace terminal_view_keys_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

/// The terminal goes by the key alone, whatever is held with it; and how it looks.
class TerminalViewKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnRunsTheLineWithAnyModifier_data() { addModifiers(); }
    void returnRunsTheLineWithAnyModifier();
    void tabCompletesWithAnyModifier_data() { addModifiers(); }
    void tabCompletesWithAnyModifier();
    void upAndDownAreHistoryWithAnyModifier_data() { addModifiers(); }
    void upAndDownAreHistoryWithAnyModifier();
    void escapeInterruptsWithAnyModifier_data() { addModifiers(); }
    void escapeInterruptsWithAnyModifier();
    void backspaceStopsAtThePromptWithAnyModifier_data() { addModifiers(); }
    void backspaceStopsAtThePromptWithAnyModifier();
    void theFontIsMonospacedAndRegular();
    void aShortTextShowsNoScroller();

private:
    static void addModifiers();
};

void TerminalViewKeysTest::addModifiers()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("none") << Qt::KeyboardModifiers();
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("Control") << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier);
    QTest::newRow("Meta") << Qt::KeyboardModifiers(Qt::MetaModifier);
    QTest::newRow("Control and Shift") << (Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Control and Alt") << (Qt::ControlModifier | Qt::AltModifier);
}

void TerminalViewKeysTest::returnRunsTheLineWithAnyModifier()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    TerminalPage page;
    page.showBanner();
    page.type(u"echo hi"_s);
    page.press(Qt::Key_Return, modifiers);
    QCOMPARE(page.written(), u"echo hihi\n"_s + page.prompt());
    QCOMPARE(page.session().commandHistory(), QStringList{u"echo hi"_s});
}

void TerminalViewKeysTest::tabCompletesWithAnyModifier()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    TerminalPage page;
    page.makeFile(u"only name.txt"_s);
    page.showBanner();
    page.type(u"cat onl"_s);
    // Shift makes it a key of its own.
    page.press(modifiers.testFlag(Qt::ShiftModifier) ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
    QVERIFY(page.text().currentCommand().startsWith(u"cat only"_s));
    QVERIFY(page.text().hasFocus());
}

void TerminalViewKeysTest::upAndDownAreHistoryWithAnyModifier()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    TerminalPage page;
    page.showBanner();
    page.run(u"pwd"_s);
    page.run(u"echo b"_s);
    page.press(Qt::Key_Up, modifiers);
    QCOMPARE(page.text().currentCommand(), u"echo b"_s);
    page.press(Qt::Key_Up, modifiers);
    QCOMPARE(page.text().currentCommand(), u"pwd"_s);
    page.press(Qt::Key_Down, modifiers);
    QCOMPARE(page.text().currentCommand(), u"echo b"_s);
    page.press(Qt::Key_Down, modifiers);
    QCOMPARE(page.text().currentCommand(), QString());
    QVERIFY(page.text().editor().selections().isSingle());
    QCOMPARE(page.text().selectedRange(), (TextRange{page.text().text().size(), 0}));
}

void TerminalViewKeysTest::escapeInterruptsWithAnyModifier()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    TerminalPage page;
    page.showBanner();
    page.type(u"half"_s);
    page.press(Qt::Key_Escape, modifiers);
    QCOMPARE(page.written(), u"half^C"_s + page.prompt());
}

void TerminalViewKeysTest::backspaceStopsAtThePromptWithAnyModifier()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    TerminalPage page;
    page.showBanner();
    const QString before = page.text().text();
    page.press(Qt::Key_Backspace, modifiers);
    QCOMPARE(page.text().text(), before);
}

void TerminalViewKeysTest::theFontIsMonospacedAndRegular()
{
    TerminalPage page;
    page.showBanner();
    const QFont& font = page.text().textLayout().font();
    QCOMPARE(font.pixelSize(), 13);
    QCOMPARE(font.weight(), int(QFont::Normal));
    QVERIFY(!font.italic());
    const QFontMetricsF metrics(font);
    QCOMPARE(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'W'));
    QVERIFY(QFontInfo(font).fixedPitch());
}

void TerminalViewKeysTest::aShortTextShowsNoScroller()
{
    TerminalPage page;
    page.showBanner();
    constexpr int edge = 20;
    const auto rightEdge = [&page] {
        const QImage image = page.view->grab().toImage();
        return image.copy(image.width() - edge, 0, edge, image.height());
    };
    QCOMPARE(page.text().verticalScrollBar()->maximum(), 0);
    QVERIFY(isPlain(rightEdge(), Qt::black));
    page.text().appendText(u"line\n"_s.repeated(200), plainColors::white);
    QTRY_VERIFY(page.text().verticalScrollBar()->maximum() > 0);
    QVERIFY(!isPlain(rightEdge(), Qt::black));
}

const kelm::test::Registered<TerminalViewKeysTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_view_keys_test

#include "terminal_view_keys_test.moc"
