#include "run/view/terminal_page.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QGuiApplication>

namespace terminal_text_view_paste_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

void paste(TerminalPage& page, const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
    page.press(Qt::Key_V, Qt::ControlModifier);
}

} // namespace

class TerminalTextViewPasteTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesRunInTheirOrder();
    void whatIsTypedBeforeBelongsToTheFirst();
    void linesThatBelongTogetherAreOneCommand();
    void signsWaitForReturn_data();
    void signsWaitForReturn();
    void escapeKeepsTheRestFromRunning();
    void keysTypedMeanwhileComeBehind();
    void aPasteThatWaitsKeepsItsPlace();
    void theTextAboveIsNoCommandLine();
    void linesRunWhereverTheCaretIsPutMeanwhile_data();
    void linesRunWhereverTheCaretIsPutMeanwhile();
};

void TerminalTextViewPasteTest::linesRunInTheirOrder()
{
    TerminalPage page;
    page.showBanner();
    QDir(page.home()).mkdir(u"inner"_s);
    QString text;
    QStringList lines;
    QString expected;
    for (int line = 0; line < 9; ++line) {
        lines.append(u"echo %1"_s.arg(line));
        expected += u"echo %1%1\n"_s.arg(line) + page.prompt();
    }
    // A line for the terminal itself, among those for shells.
    lines.append(u"cd inner"_s);
    paste(page, lines.join(u'\n') + u"\necho ha"_s);
    QCOMPARE(page.written(),
             expected + u"cd inner"_s + TerminalSession::promptText(page.path(u"inner"_s)) + u"echo ha"_s);
    QCOMPARE(page.session().commandHistory(), lines);
    QCOMPARE(page.text().currentCommand(), u"echo ha"_s);
}

void TerminalTextViewPasteTest::whatIsTypedBeforeBelongsToTheFirst()
{
    TerminalPage page;
    page.showBanner();
    page.type(u"echo !"_s);
    page.press(Qt::Key_Left);
    paste(page, u"one\npwd\n"_s);
    QCOMPARE(page.session().commandHistory(), (QStringList{u"echo one!"_s, u"pwd"_s}));
}

void TerminalTextViewPasteTest::linesThatBelongTogetherAreOneCommand()
{
    TerminalPage page;
    page.showBanner();
    const QString loop = u"for i in 1 2; do\n  echo number $i\ndone"_s;
    paste(page, loop + u'\n');
    QCOMPARE(page.written(), loop + u"number 1\nnumber 2\n"_s + page.prompt());
    QCOMPARE(page.session().commandHistory(), QStringList{loop});
}

void TerminalTextViewPasteTest::signsWaitForReturn_data()
{
    QTest::addColumn<QString>("sign");
    QTest::newRow("a control character") << u"\x01"_s;
    QTest::newRow("one that turns the direction") << u"\u202e"_s;
}

void TerminalTextViewPasteTest::signsWaitForReturn()
{
    QFETCH(QString, sign);
    TerminalPage page;
    page.showBanner();
    const QString line = u"echo a"_s + sign + u"z; touch ran"_s;
    paste(page, line + u'\n');
    QCOMPARE(page.written(), line + u'\n');
    QVERIFY(page.session().commandHistory().isEmpty());
    QVERIFY(!QFileInfo::exists(page.path(u"ran"_s)));
    // The sign is seen.
    const qsizetype at = page.text().text().indexOf(sign);
    QVERIFY(page.text().caretRect({at + 1, false}).x() > page.text().caretRect({at, false}).x());
    page.press(Qt::Key_Return);
    QCOMPARE(page.session().commandHistory(), QStringList{line});
    QVERIFY(QFileInfo::exists(page.path(u"ran"_s)));
}

void TerminalTextViewPasteTest::escapeKeepsTheRestFromRunning()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] { page.press(Qt::Key_Escape); }, u"started\n"_s);
    const QStringList lines{u"echo started; while :; do sleep 0.01; done"_s, u"touch second"_s, u"touch third"_s};
    QGuiApplication::clipboard()->setText(lines.join(u'\n') + u"\nrest"_s);
    page.press(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(page.session().commandHistory(), lines);
    QVERIFY(!QFileInfo::exists(page.path(u"second"_s)) && !QFileInfo::exists(page.path(u"third"_s)));
    QCOMPARE(page.text().currentCommand(), QString());
    page.run(u"echo ok"_s);
    QVERIFY(page.written().endsWith(u"echo okok\n"_s + page.prompt()));
}

void TerminalTextViewPasteTest::keysTypedMeanwhileComeBehind()
{
    TerminalPage page;
    page.showBanner();
    page.onceRunning([&] {
        page.type(u"echo four"_s);
        page.press(Qt::Key_Return);
        page.openGate();
    });
    paste(page, page.waitingLine() + u"\necho two\necho three\n"_s);
    QTRY_COMPARE(page.session().commandHistory(),
                 (QStringList{page.waitingLine(), u"echo two"_s, u"echo three"_s, u"echo four"_s}));
    QTRY_VERIFY(page.written().endsWith(u"echo fourfour\n"_s + page.prompt()));
}

void TerminalTextViewPasteTest::aPasteThatWaitsKeepsItsPlace()
{
    TerminalPage page;
    page.showBanner();
    QGuiApplication::clipboard()->setText(u"echo two\necho three\n"_s);
    page.onceRunning([&] {
        page.press(Qt::Key_V, Qt::ControlModifier);
        page.type(u"echo four"_s);
        page.press(Qt::Key_Return);
        page.openGate();
    });
    page.run(page.waitingLine());
    QTRY_COMPARE(page.session().commandHistory(),
                 (QStringList{page.waitingLine(), u"echo two"_s, u"echo three"_s, u"echo four"_s}));
    QTRY_VERIFY(page.written().endsWith(u"echo fourfour\n"_s + page.prompt()));
}

void TerminalTextViewPasteTest::theTextAboveIsNoCommandLine()
{
    TerminalPage page;
    page.showBanner();
    page.text().setSelectedRange({3, 0});
    paste(page, u"touch ran\n"_s);
    QVERIFY(page.text().text().sliced(3).startsWith(u"touch ran\n"_s));
    QVERIFY(page.session().commandHistory().isEmpty());
}

void TerminalTextViewPasteTest::linesRunWhereverTheCaretIsPutMeanwhile_data()
{
    QTest::addColumn<qsizetype>("length");
    QTest::newRow("a caret") << qsizetype(0);
    QTest::newRow("a selection") << qsizetype(10);
    QTest::newRow("a selection up to the end") << qsizetype(1000);
}

void TerminalTextViewPasteTest::linesRunWhereverTheCaretIsPutMeanwhile()
{
    QFETCH(qsizetype, length);
    TerminalPage page;
    page.showBanner();
    const QString banner = page.text().text();
    page.onceRunning([&] {
        page.text().setSelectedRange({3, length});
        page.openGate();
    });
    paste(page, page.waitingLine() + u"\necho two\nrest"_s);
    QCOMPARE(page.session().commandHistory(), (QStringList{page.waitingLine(), u"echo two"_s}));
    QVERIFY(page.text().text().startsWith(banner));
    QVERIFY(page.written().endsWith(u"echo twotwo\n"_s + page.prompt() + u"rest"_s));
    QCOMPARE(page.text().currentCommand(), u"rest"_s);
}

const kelm::test::Registered<TerminalTextViewPasteTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_text_view_paste_test

#include "terminal_text_view_paste_test.moc"
