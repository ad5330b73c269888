#include "run/view/terminal_page.h"
#include "support/test_program.h"
#include "text/view/find_bar.h"

#include <QLineEdit>
#include <QScrollBar>

namespace terminal_view_long_output_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

/// Three million lines, and looking for one of them.
class TerminalViewLongOutputTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLineIsFound();
    void theReaderStaysWhereTheyAre();
};

void TerminalViewLongOutputTest::aLineIsFound()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"seq 1 3000000"_s);
    TextView& text = page.text();
    QVERIFY(text.text().endsWith(u"\n3000000\n"_s + page.prompt()));
    text.showFindBar();
    auto* field = text.findBar().findChild<QLineEdit*>();
    for (const QString& wanted : {u"1234567"_s, u"2999999"_s}) {
        field->setText(wanted);
        const auto isFound = [&] {
            text.findNext();
            return text.storage().substring(text.selectedRange()) == wanted;
        };
        QVERIFY(QTest::qWaitFor(isFound, 30'000));
        const QRectF caret = text.caretRect({text.selectedRange().location, false});
        QVERIFY(caret.top() >= 0 && caret.bottom() <= text.viewport()->height());
    }
    text.findBar().close();
    page.press(Qt::Key_End, Qt::ControlModifier);
    page.run(u"echo ok"_s);
    QVERIFY(text.text().endsWith(u"echo okok\n"_s + page.prompt()));
}

void TerminalViewLongOutputTest::theReaderStaysWhereTheyAre()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"seq 1 2000"_s);
    qsizetype place = 0;
    page.onceRunning([&] {
        page.press(Qt::Key_Home, Qt::ControlModifier);
        place = page.text().visibleRows().front().range.location;
        page.openGate();
    });
    page.run(page.waitingLine() + u"; seq 1 100000"_s);
    QVERIFY(page.text().text().endsWith(u"\n100000\n"_s + page.prompt()));
    QCOMPARE(page.text().visibleRows().front().range.location, place);
    QVERIFY(page.text().verticalScrollBar()->value() < page.text().verticalScrollBar()->maximum());
}

const kelm::test::Registered<TerminalViewLongOutputTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_view_long_output_test

#include "terminal_view_long_output_test.moc"
