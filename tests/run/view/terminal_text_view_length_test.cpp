#include "run/ansi_parser.h"
#include "run/view/terminal_page.h"
#include "support/random_text.h"
#include "support/test_program.h"

namespace terminal_text_view_length_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class TerminalTextViewLengthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCommandIsTheSameBehindAnyOutput();
    void aCommandIsTheSameBehindMoreThanIsKept();
    void whoScrolledBackStaysWhenTheFrontGoes();
    void clearBeginsAnew();
};

void TerminalTextViewLengthTest::aCommandIsTheSameBehindAnyOutput()
{
    TerminalPage page;
    page.showBanner();
    RandomText random;
    for (int round = 0; round < 20; ++round) {
        for (qsizetype pieces = random.below(6); pieces >= 0; --pieces) {
            switch (random.below(4)) {
            case 0:
                page.text().appendText(random.text(20), plainColors::red);
                break;
            case 1:
                page.text().appendOutput(ANSIParser::parse(u"\u001b[3%1m"_s.arg(random.below(8)) + random.text(20)));
                break;
            case 2:
                // A person may type into what was written.
                page.text().setSelectedRange({random.below(page.text().commandStartLocation()), 0});
                page.type(u"x"_s);
                page.text().setSelectedRange({page.text().storage().length(), 0});
                break;
            default:
                page.text().appendOutput(ANSIParser::parse(random.text(300)));
            }
        }
        page.text().appendPrompt();
        page.type(u"echo no"_s);
        page.text().replaceCurrentCommand(u"echo "_s);
        page.run(u"ok"_s);
        QVERIFY2(page.text().text().endsWith(u" $ echo okok\n"_s + page.prompt()),
                 qPrintable(page.written().right(99)));
    }
    QCOMPARE(page.session().commandHistory(), u"echo ok,"_s.repeated(20).chopped(1).split(u','));
}

void TerminalTextViewLengthTest::aCommandIsTheSameBehindMoreThanIsKept()
{
    TerminalPage page;
    page.showBanner();
    const QString mebibyte = u"열다섯 글자로 된 줄 하나.\n"_s.repeated(1 << 16);
    qsizetype written = page.start;
    for (; written < mostKeptUnits + 3 * keptSlackUnits; written += mebibyte.size()) {
        page.text().appendText(mebibyte, plainColors::white);
    }
    QVERIFY(page.text().storage().length() <= mostKeptUnits + 2 * keptSlackUnits);
    QVERIFY(page.text().storage().length() >= mostKeptUnits);
    const QString first = page.text().storage().substring(page.text().storage().lineRange({0, 0}));
    QVERIFY2(first.startsWith(u"[The first "_s) && first.endsWith(u" MiB were let go.]\n"_s), qPrintable(first));
    QCOMPARE(QColor::fromRgba(*page.text().storage().foreground().colorAt(0)), plainColors::gray);
    QCOMPARE(page.text().storage().substring({first.size(), 15}), mebibyte.first(15));
    page.text().appendPrompt();
    QCOMPARE(page.text().commandStartLocation(), page.text().storage().length());
    page.run(u"echo ok"_s);
    const QString end = u"echo okok\n"_s + page.prompt();
    QCOMPARE(page.text().storage().substring({page.text().storage().length() - end.size(), end.size()}), end);
}

void TerminalTextViewLengthTest::whoScrolledBackStaysWhenTheFrontGoes()
{
    TerminalPage page;
    page.showBanner();
    const QString mebibyte = u"0123456789abcde\n"_s.repeated(1 << 16);
    for (int piece = 0; piece < 64; ++piece) {
        page.text().appendText(mebibyte, plainColors::white);
    }
    page.text().appendText(u"the line that is read\n"_s.repeated(30), plainColors::white);
    QCoreApplication::processEvents();
    page.press(Qt::Key_PageUp);
    const auto shown = [&] {
        const TextRow row = page.text().visibleRows().front();
        return page.text().storage().substring(row.range);
    };
    QCOMPARE(shown(), u"the line that is read"_s);
    page.text().setSelectedRange({page.text().storage().length() - 22, 8});
    QCOMPARE(page.text().storage().substring(page.text().selectedRange()), u"the line"_s);
    for (int piece = 0; piece < 3; ++piece) {
        page.text().appendText(mebibyte, plainColors::white);
    }
    QVERIFY(page.text().text().startsWith(u"[The first "_s));
    QCOMPARE(shown(), u"the line that is read"_s);
    QCOMPARE(page.text().storage().substring(page.text().selectedRange()), u"the line"_s);
}

void TerminalTextViewLengthTest::clearBeginsAnew()
{
    TerminalPage page;
    page.showBanner();
    page.text().appendText(u"0123456789abcde\n"_s.repeated((mostKeptUnits + 2 * keptSlackUnits) / 16),
                           plainColors::white);
    QVERIFY(page.text().text().startsWith(u"[The first "_s));
    page.text().appendPrompt();
    page.run(u"clear"_s);
    QCOMPARE(page.text().text(), page.prompt() + page.prompt());
    page.run(u"echo ok"_s);
    QCOMPARE(page.text().text(), page.prompt() + page.prompt() + u"echo okok\n"_s + page.prompt());
}

const kelm::test::Registered<TerminalTextViewLengthTest> registered(kelm::test::Toolkit::widgets);

} // namespace terminal_text_view_length_test

#include "terminal_text_view_length_test.moc"
