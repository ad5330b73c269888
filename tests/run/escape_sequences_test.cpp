#include "run/ansi_parser.h"
#include "run/escape_sequences.h"
#include "run/terminal_output.h"
#include "support/test_program.h"

#include <QRandomGenerator>
#include <QtTest>

namespace escape_sequences_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

QString shown(const AttributedText& text)
{
    QString result;
    qsizetype from = 0;
    for (const Stretch& stretch : text.unshown) {
        result += QStringView(text.text).sliced(from, stretch.start - from);
        from = stretch.start + stretch.length;
    }
    return result + text.text.sliced(from);
}

/// What is shown of pieces that are written one after the other.
QString shown(const QStringList& pieces)
{
    TerminalOutput output;
    QString result;
    for (const QString& piece : pieces) {
        result += shown(output.output(piece));
    }
    return result;
}

/// What is shown of them on the standard error, without the line feeds before each.
QString shownErrors(const QStringList& pieces)
{
    TerminalOutput output;
    QString result;
    for (const QString& piece : pieces) {
        result += shown(output.error(piece)).sliced(1);
    }
    return result;
}

/// Pieces of sequences and of text, whole and broken ones, one behind the other.
QString randomOutput(QRandomGenerator& random)
{
    static const QStringList parts{u"\x1b"_s, u"["_s,        u"]"_s,      u"31"_s,   u"m"_s,    u";"_s,
                                   u"2K"_s,   u"\x1b[31m"_s, u"\x1b[H"_s, u"\x07"_s, u"\\"_s,   u"("_s,
                                   u"B"_s,    u"\x9b"_s,     u"?"_s,      u"\n"_s,   u"\r\n"_s, u"\t"_s,
                                   u"text"_s, u"한"_s,       u"😀"_s,      u"P"_s,    u"\x18"_s, u"\0"_s,
                                   u" "_s,    u"\x1b]0;"_s,  u"\x1b\\"_s, u"\x08"_s};
    QString output;
    for (int count = random.bounded(1, 14); count > 0; --count) {
        output += parts[random.bounded(int(parts.size()))];
    }
    return output;
}

} // namespace

class EscapeSequencesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsNoTextIsFound_data();
    void whatIsNoTextIsFound();
    void whereItIsCutIsTheSame();
    void theTextStaysWhole();
    void eachStreamIsFollowedByItself();
};

void EscapeSequencesTest::whatIsNoTextIsFound_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QString& output, const QString& expected) {
        QTest::newRow(name) << output << expected;
    };
    row("plain", u"plain\ttext\r\n한글 😀\n"_s, u"plain\ttext\r\n한글 😀\n"_s);
    row("line cleared", u"a\x1b[2Kb"_s, u"ab"_s);
    row("colour without a number", u"a\x1b[mb"_s, u"ab"_s);
    row("cursor put somewhere", u"\x1b[12;40Hx"_s, u"x"_s);
    row("private mode", u"\x1b[?25l\x1b[?1049hx\x1b[?25h"_s, u"x"_s);
    row("with a blank in it", u"\x1b[2 qx"_s, u"x"_s);
    row("with other signs in it", u"\x1b[>4;2mx\x1b[!px"_s, u"xx"_s);
    row("colour by colons", u"\x1b[38:2:1:2:3mx"_s, u"x"_s);
    row("colour with no number in the middle", u"\x1b[31;;32mx"_s, u"x"_s);
    row("known colours", u"a\x1b[31mb\x1b[0mc"_s, u"abc"_s);
    row("two letters",
        u"\x1b=\x1b>\x1b"
        u"7\x1b"
        u"8\x1b"
        u"cx"_s,
        u"x"_s);
    row("three letters", u"\x1b(Bx\x1b#8y"_s, u"xy"_s);
    row("three letters, the last one that begins others", u"\x1b([x\x1b#]y\x1b(Pz"_s, u"xyz"_s);
    row("title, ended by a bell", u"\x1b]0;a title\x07x"_s, u"x"_s);
    row("title, ended by a sequence", u"\x1b]0;a title\x1b\\x"_s, u"x"_s);
    row("link", u"\x1b]8;;https://a.b/\x1b\\word\x1b]8;;\x1b\\."_s, u"word."_s);
    row("device control", u"\x1bP1$r0m\x1b\\x"_s, u"x"_s);
    row("string that nobody ends", u"\x1b]0;a title\nx"_s, u"\nx"_s);
    row("sequence that nobody ends", u"\x1b[12\nx"_s, u"\nx"_s);
    row("cancelled", u"\x1b[12\x18x"_s, u"x"_s);
    row("begun anew", u"\x1b[12\x1b[2Kx"_s, u"x"_s);
    row("begun, then a known colour", u"\x1b[12\x1b[31mKx"_s, u"Kx"_s);
    row("not of the sequence", u"\x1b[12한Kx"_s, u"한Kx"_s);
    row("escape at the end", u"x\x1b"_s, u"x"_s);
    row("bell, backspace, NUL", u"a\x07\x08\0b\x7f"_s, u"ab"_s);
    row("control characters of one unit", u"\u009b2Kx\u009d0;t\u009cy\u0085z"_s, u"xy\u0085z"_s);
    row("each that begins a string", u"\u0090a\u009cv\u0098b\u009cw\u009dc\u009cx\u009ed\u009cy\u009fe\u009cz"_s,
        u"vwxyz"_s);
    row("those that begin none", u"\u008fa\u0091b\u0097c\u0099d\u009ae"_s, u"abcde"_s);
}

void EscapeSequencesTest::whatIsNoTextIsFound()
{
    QFETCH(QString, output);
    QFETCH(QString, expected);
    QCOMPARE(shown(QStringList{output}), expected);
    QCOMPARE(shown(output.split(QString())), expected);
}

void EscapeSequencesTest::whereItIsCutIsTheSame()
{
    constexpr int seeds = 3000;
    for (quint32 seed = 0; seed < seeds; ++seed) {
        QRandomGenerator random(seed);
        const QString output = randomOutput(random);
        const QString whole = shown(QStringList{output});
        for (qsizetype cut = 0; cut <= output.size(); ++cut) {
            const QStringList pieces{output.first(cut), output.sliced(cut)};
            QVERIFY2(shown(pieces) == whole, qPrintable(u"seed %1, cut at %2"_s.arg(seed).arg(cut)));
            QVERIFY2(shownErrors(pieces) == whole, qPrintable(u"seed %1, error cut at %2"_s.arg(seed).arg(cut)));
        }
        QVERIFY2(shown(output.split(QString())) == whole, qPrintable(u"seed %1, in units"_s.arg(seed)));
        QVERIFY2(!whole.contains(u'\x1b'), qPrintable(u"seed %1"_s.arg(seed)));
    }
}

void EscapeSequencesTest::theTextStaysWhole()
{
    TerminalOutput output;
    const AttributedText text = output.output(u"a\x1b[2Kb\x1b[31mc"_s);
    QCOMPARE(text.text, u"a\x1b[2Kbc"_s);
    QCOMPARE(text.runs, ANSIParser::parse(u"a\x1b[2Kb\x1b[31mc"_s).runs);
    QCOMPARE(text.unshown, (std::vector<Stretch>{{1, 4}}));
    const AttributedText error = output.error(u"a\x1b[31mb"_s);
    QCOMPARE(error.text, u"\na\x1b[31mb"_s);
    QCOMPARE(error.runs, (std::vector<AttributedRun>{{0, 8, plainColors::red.rgba()}}));
    QCOMPARE(error.unshown, (std::vector<Stretch>{{2, 5}}));
}

void EscapeSequencesTest::eachStreamIsFollowedByItself()
{
    TerminalOutput output;
    QCOMPARE(shown(output.output(u"a\x1b[3"_s)), u"a"_s);
    QCOMPARE(shown(output.error(u"1K"_s)), u"\n1K"_s);
    QCOMPARE(shown(output.output(u"1Kb"_s)), u"b"_s);
}

const kelm::test::Registered<EscapeSequencesTest> registered(kelm::test::Toolkit::core);

} // namespace escape_sequences_test

#include "escape_sequences_test.moc"
