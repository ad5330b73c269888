#include "run/ansi_parser.h"
#include "support/ansi_reference.h"
#include "support/test_program.h"

#include <QRandomGenerator>
#include <QtTest>

namespace ansi_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

const TextColor green = plainColors::green.rgba();
const TextColor white = QRgb(0xffffffff);

/// A text by its pieces.
struct Piece
{
    QString text;
    TextColor color;

    bool operator==(const Piece&) const = default;
};

QList<Piece> pieces(const AttributedText& text)
{
    QList<Piece> result;
    for (const AttributedRun& run : text.runs) {
        result.append({text.text.sliced(run.start, run.length), run.color});
    }
    return result;
}

} // namespace

class AnsiParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void codesSetTheForeground_data();
    void codesSetTheForeground();
    void everyCodeOfTheTableSetsItsColor_data();
    void everyCodeOfTheTableSetsItsColor();
    void allOtherCodesLeaveTheColor();
    void nothingIsKeptBetweenCalls();
    void textWithoutSequenceIsShared();
    void namedColorsFollowTheAppearance();
    void parserAgreesWithTheRegularExpression();
};

void AnsiParserTest::codesSetTheForeground_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QList<Piece>>("expected");
    const auto row = [](const char* name, const QString& output, const QList<Piece>& expected) {
        QTest::newRow(name) << output << expected;
    };
    const TextColor red = SystemColor::red;
    row("no sequence: one run in green", u"plain\ntext"_s, {{u"plain\ntext"_s, green}});
    row("empty input", u""_s, {});
    row("red, then plain", u"\x1b[31mred \x1b[0mplain"_s, {{u"red "_s, red}, {u"plain"_s, green}});
    row("text before the first sequence", u"a\x1b[31mb"_s, {{u"a"_s, green}, {u"b"_s, red}});
    row("bold changes nothing", u"a\x1b[1mb"_s, {{u"ab"_s, green}});
    row("bold red is red", u"\x1b[1;31mx"_s, {{u"x"_s, red}});
    row("no palette of 256", u"\x1b[31ma\x1b[38;5;196mb"_s, {{u"ab"_s, red}});
    // Each number stands for itself, so the 34 of this one counts.
    row("no colour of 24 bits", u"\x1b[38;2;34;200;1mx"_s, {{u"x"_s, SystemColor::blue}});
    row("0 and then 32", u"\x1b[0;32mx"_s, {{u"x"_s, SystemColor::green}});
    row("the last known code wins", u"\x1b[31;0;33mx"_s, {{u"x"_s, SystemColor::yellow}});
    row("side by side: no empty run", u"\x1b[31m\x1b[32mx"_s, {{u"x"_s, SystemColor::green}});
    row("only sequences", u"\x1b[31m\x1b[0m"_s, {});
    row("sequence at the end", u"x\x1b[31m"_s, {{u"x"_s, green}});
    row("background is passed over", u"\x1b[41;100mx"_s, {{u"x"_s, green}});
    row("39 does not reset", u"\x1b[31ma\x1b[39mb"_s, {{u"ab"_s, red}});
    row("leading zeros", u"\x1b[0031mx"_s, {{u"x"_s, red}});
    row("00 is 0", u"\x1b[31ma\x1b[00mb"_s, {{u"a"_s, red}, {u"b"_s, green}});
    row("number beyond 64 bits is left out", u"\x1b[99999999999999999999;31mx"_s, {{u"x"_s, red}});
    row("number that would wrap to 31", u"\x1b[18446744073709551647mx"_s, {{u"x"_s, green}});
    row("zeros beyond 64 bits still count", u"\x1b[0000000000000000000000031mx"_s, {{u"x"_s, red}});
    row("digits of another script match and mean nothing", u"\x1b[\u0663\u0661mx"_s, {{u"x"_s, green}});
    row("digits of two units", u"\x1b[\U0001D7D1\U0001D7CF;31mx"_s, {{u"x"_s, red}});
    row("no number is text", u"a\x1b[mb"_s, {{u"a\x1b[mb"_s, green}});
    row("empty number is text", u"\x1b[31;;32mb"_s, {{u"\x1b[31;;32mb"_s, green}});
    row("semicolon before m is text", u"\x1b[31;mb"_s, {{u"\x1b[31;mb"_s, green}});
    row("semicolon first is text", u"\x1b[;31mb"_s, {{u"\x1b[;31mb"_s, green}});
    row("sign is text", u"\x1b[+31mb"_s, {{u"\x1b[+31mb"_s, green}});
    row("blank is text", u"\x1b[31 mb"_s, {{u"\x1b[31 mb"_s, green}});
    row("cursor movement is text", u"\x1b[2Kx"_s, {{u"\x1b[2Kx"_s, green}});
    row("capital M is text", u"\x1b[31Mx"_s, {{u"\x1b[31Mx"_s, green}});
    row("cut off", u"x\x1b[3"_s, {{u"x\x1b[3"_s, green}});
    row("escape at the end", u"x\x1b"_s, {{u"x\x1b"_s, green}});
    row("escape, then a sequence", u"\x1b\x1b[31mx"_s, {{u"\x1b"_s, green}, {u"x"_s, red}});
    row("sequence begun, then a whole one", u"\x1b[3\x1b[31mx"_s, {{u"\x1b[3"_s, green}, {u"x"_s, red}});
    row("text of several units before", u"한😀\x1b[31m글😀"_s, {{u"한😀"_s, green}, {u"글😀"_s, red}});
    row("line ends and NUL stay", u"a\r\n\x1b[31m\0b\r"_s, {{u"a\r\n"_s, green}, {u"\0b\r"_s, red}});
    row("37 and 97 look the same", u"\x1b[37ma\x1b[97mb"_s, {{u"ab"_s, white}});
}

void AnsiParserTest::codesSetTheForeground()
{
    QFETCH(QString, output);
    QFETCH(QList<Piece>, expected);
    const AttributedText text = ANSIParser::parse(output);
    QVERIFY(runsCoverText(text));
    QCOMPARE(pieces(text), expected);
}

void AnsiParserTest::everyCodeOfTheTableSetsItsColor_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QRgb>("dark");
    QTest::addColumn<QRgb>("light");
    const auto row = [](int code, QRgb dark, QRgb light) { QTest::addRow("%d", code) << code << dark << light; };
    row(30, qRgb(0, 0, 0), qRgb(0, 0, 0));
    row(31, qRgb(255, 69, 58), qRgb(255, 59, 48));
    row(32, qRgb(50, 215, 75), qRgb(40, 205, 65));
    row(33, qRgb(255, 214, 10), qRgb(255, 204, 0));
    row(34, qRgb(10, 132, 255), qRgb(0, 122, 255));
    row(35, qRgb(191, 90, 242), qRgb(175, 82, 222));
    row(36, qRgb(90, 200, 245), qRgb(85, 190, 240));
    row(37, qRgb(255, 255, 255), qRgb(255, 255, 255));
    row(90, qRgb(128, 128, 128), qRgb(128, 128, 128));
    row(91, qRgb(255, 128, 128), qRgb(255, 128, 128));
    row(92, qRgb(128, 255, 128), qRgb(128, 255, 128));
    row(93, qRgb(255, 255, 128), qRgb(255, 255, 128));
    row(94, qRgb(128, 128, 255), qRgb(128, 128, 255));
    row(95, qRgb(255, 128, 255), qRgb(255, 128, 255));
    row(96, qRgb(128, 255, 255), qRgb(128, 255, 255));
    row(97, qRgb(255, 255, 255), qRgb(255, 255, 255));
}

void AnsiParserTest::everyCodeOfTheTableSetsItsColor()
{
    QFETCH(int, code);
    QFETCH(QRgb, dark);
    QFETCH(QRgb, light);
    const AttributedText text = ANSIParser::parse(u"\x1b[%1mx"_s.arg(code));
    QCOMPARE(text.text, u"x"_s);
    QCOMPARE(text.runs.size(), std::size_t(1));
    QCOMPARE(resolved(text.runs[0].color, Appearance::dark), dark);
    QCOMPARE(resolved(text.runs[0].color, Appearance::light), light);
}

void AnsiParserTest::allOtherCodesLeaveTheColor()
{
    for (int code = 1; code <= 300; ++code) {
        if ((code >= 30 && code <= 37) || (code >= 90 && code <= 97)) {
            continue;
        }
        const AttributedText text = ANSIParser::parse(u"\x1b[35ma\x1b[%1mb"_s.arg(code));
        QCOMPARE(pieces(text), (QList<Piece>{{u"ab"_s, SystemColor::purple}}));
    }
}

void AnsiParserTest::nothingIsKeptBetweenCalls()
{
    QCOMPARE(pieces(ANSIParser::parse(u"\x1b[31mred"_s)), (QList<Piece>{{u"red"_s, SystemColor::red}}));
    QCOMPARE(pieces(ANSIParser::parse(u"plain\x1b[3"_s)), (QList<Piece>{{u"plain\x1b[3"_s, green}}));
    QCOMPARE(pieces(ANSIParser::parse(u"1mtext"_s)), (QList<Piece>{{u"1mtext"_s, green}}));
}

void AnsiParserTest::textWithoutSequenceIsShared()
{
    const QString output = u"nothing to see, but for \x1b[K"_s.repeated(100);
    QCOMPARE(ANSIParser::parse(output).text.constData(), output.constData());
}

void AnsiParserTest::namedColorsFollowTheAppearance()
{
    QVERIFY(resolved(SystemColor::red, Appearance::dark) != resolved(SystemColor::red, Appearance::light));
    QCOMPARE(resolved(ANSIParser::defaultColor(), Appearance::dark), qRgb(0, 255, 0));
    QCOMPARE(resolved(ANSIParser::defaultColor(), Appearance::light), qRgb(0, 255, 0));
}

void AnsiParserTest::parserAgreesWithTheRegularExpression()
{
    const QStringList parts{u"\x1b"_s,   u"["_s,  u"\x1b["_s,    u"m"_s,          u";"_s,
                            u"0"_s,      u"31"_s, u"97"_s,       u"9"_s,          u"x"_s,
                            u"한"_s,     u"😀"_s,  u"\u0663"_s,   u"\U0001D7CF"_s, u"\xD835"_s,
                            u"\xDFCF"_s, u"\n"_s, u"\x1b[32m"_s, u"\x1b[1;31m"_s, u"\x1b[0m"_s};
    QRandomGenerator random(20261120);
    for (int turn = 0; turn < 20000; ++turn) {
        QString output;
        for (int count = random.bounded(24); count > 0; --count) {
            output += parts[random.bounded(parts.size())];
        }
        const AttributedText text = ANSIParser::parse(output);
        QVERIFY2(runsCoverText(text), output.toUtf8().toHex().constData());
        QVERIFY2(text == parseByRegularExpression(output), output.toUtf8().toHex().constData());
    }
}

const kelm::test::Registered<AnsiParserTest> registered;

} // namespace ansi_parser_test

#include "ansi_parser_test.moc"
