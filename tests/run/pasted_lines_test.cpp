#include "run/pasted_lines.h"
#include "support/test_program.h"

#include <QtTest>

namespace pasted_lines_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class PastedLinesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreCommands_data();
    void linesAreCommands();
    void whatIsToBeSeenFirstIsNotRun_data();
    void whatIsToBeSeenFirstIsNotRun();
    void signsAreFound_data();
    void signsAreFound();
};

void PastedLinesTest::linesAreCommands_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("rest");
    const auto row = [](const char* name, const QString& text, const QStringList& commands, const QString& rest = {}) {
        QTest::newRow(name) << text << commands << rest;
    };
    row("one line", u"pwd\n"_s, {u"pwd"_s});
    row("several", u"cd src\npwd\nls -l\n"_s, {u"cd src"_s, u"pwd"_s, u"ls -l"_s});
    row("the last has no end", u"pwd\nls -"_s, {u"pwd"_s}, u"ls -"_s);
    row("line ends of two characters", u"pwd\r\nls\r\n"_s, {u"pwd"_s, u"ls"_s});
    row("line ends of a carriage return", u"pwd\rls\r"_s, {u"pwd"_s, u"ls"_s});
    row("an empty line between", u"pwd\n\nls\n"_s, {u"pwd"_s, u""_s, u"ls"_s});
    row("a comment and a tab", u"# first\nls\t-l\n"_s, {u"# first"_s, u"ls\t-l"_s});
    row("indented alike", u"  cd src\n\n    ls\n"_s, {u"cd src"_s, u""_s, u"  ls"_s});
    row("indented alike and not further", u"  cd src\n\n  export A=1\n  ls -"_s, {u"cd src"_s, u""_s, u"export A=1"_s},
        u"ls -"_s);
    row("a comment with an apostrophe", u"# it's first\ncd src\nmake\n"_s, {u"# it's first"_s, u"cd src"_s, u"make"_s});
    row("other scripts", u"echo 한글 😀\necho b\n"_s, {u"echo 한글 😀"_s, u"echo b"_s});
    row("words that only begin so", u"format x\nifconfig\ndonegal\n"_s, {u"format x"_s, u"ifconfig"_s, u"donegal"_s});
    row("whole quotes", u"echo 'a' \"b\"\nls\n"_s, {u"echo 'a' \"b\""_s, u"ls"_s});

    const auto whole = [&row](const char* name, const QString& text) { row(name, text, {text.chopped(1)}); };
    whole("a loop", u"for i in 1 2; do\necho $i\ndone\n"_s);
    whole("a loop with its word in a line of its own", u"while read x\ndo\necho $x\ndone\n"_s);
    whole("a condition", u"if true; then\necho a\nelse\necho b\nfi\n"_s);
    whole("indented", u"greet() {\n  echo hello\n}\n"_s);
    whole("a line that goes on", u"ls \\\n-l\n"_s);
    whole("a pipe at the end", u"ls |\nwc -l\n"_s);
    whole("a text", u"cat <<END\nwords\nEND\n"_s);
    whole("a quote over lines", u"echo 'one\ntwo'\n"_s);
    row("what stands before a loop", u"cd src\npwd\nfor i in 1; do\necho $i\ndone\nls\n"_s,
        {u"cd src"_s, u"pwd"_s, u"for i in 1; do\necho $i\ndone\nls"_s});
}

void PastedLinesTest::linesAreCommands()
{
    QFETCH(QString, text);
    QFETCH(QStringList, commands);
    QFETCH(QString, rest);
    const auto pasted = pastedLines(text);
    QVERIFY(pasted.has_value());
    QCOMPARE(pasted->commands, commands);
    QCOMPARE(pasted->rest, rest);
}

void PastedLinesTest::whatIsToBeSeenFirstIsNotRun_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << u""_s;
    QTest::newRow("no line end") << u"rm -r x"_s;
    QTest::newRow("a loop whose last line has no end") << u"for i in 1; do\necho $i\ndone"_s;
    QTest::newRow("a control character") << u"echo a\x03\nls\n"_s;
    QTest::newRow("an escape sequence") << u"echo a\x1b[8m; rm -r x\n"_s;
    QTest::newRow("backspaces") << u"rm -r x\b\b\b\b\b\b\bls\n"_s;
    QTest::newRow("read from the other side") << u"echo \u202ex\nls\n"_s;
}

void PastedLinesTest::whatIsToBeSeenFirstIsNotRun()
{
    QFETCH(QString, text);
    QVERIFY(!pastedLines(text).has_value());
}

void PastedLinesTest::signsAreFound_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");
    QTest::newRow("plain") << u"echo 'a\tb'\r\n\u2028 한글 😀 \u05d0"_s << false;
    QTest::newRow("NUL") << u"\0"_s << true;
    QTest::newRow("escape") << u"\x1b"_s << true;
    QTest::newRow("delete") << u"\x7f"_s << true;
    QTest::newRow("control character of one unit") << u"\u009b"_s << true;
    QTest::newRow("next line is a line end") << u"\u0085"_s << false;
    QTest::newRow("override") << u"\u202e"_s << true;
    QTest::newRow("isolate") << u"\u2067"_s << true;
}

void PastedLinesTest::signsAreFound()
{
    QFETCH(QString, text);
    QFETCH(bool, expected);
    QCOMPARE(holdsSigns(text), expected);
}

const kelm::test::Registered<PastedLinesTest> registered(kelm::test::Toolkit::core);

} // namespace pasted_lines_test

#include "pasted_lines_test.moc"
