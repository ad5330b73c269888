#include "editor/folding/fold_scans.h"
#include "support/naive_lines.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/line_terminator.h"

#include <QtTest>

#include <unicode/uregex.h>

namespace fold_scans_test {

using namespace kelm;

using Spans = QList<std::pair<int, int>>;

class FoldScansTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bracesFoldFromLineToLine_data();
    void bracesFoldFromLineToLine();
    void indentsFoldToTheLastDeeperLine_data();
    void indentsFoldToTheLastDeeperLine();
    void tagsFoldFromOpeningToClosing_data();
    void tagsFoldFromOpeningToClosing();
    void regionsAreNumberedAsFound();
    void unitsThatAreNoCharactersMatchNothing();
    void indentsAgreeWithTheNaiveWalk();
    void tagsAgreeWithTheirPatterns();
    void theWorstTextsStayLinear_data();
    void theWorstTextsStayLinear();
};

static Spans spans(const std::vector<FoldableRegion>& regions)
{
    Spans result;
    for (const FoldableRegion& region : regions) {
        result.append({int(region.startLine), int(region.endLine)});
    }
    return result;
}

static void addColumns()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Spans>("expected");
}

static void row(const char* name, const char* text, const Spans& expected)
{
    QTest::newRow(name) << QString::fromUtf8(text) << expected;
}

void FoldScansTest::bracesFoldFromLineToLine_data()
{
    addColumns();
    row("empty", "", {});
    row("no line between", "{\n}", {});
    row("one line between", "{\n x\n}", {{1, 3}});
    row("one line", "{ x }", {});
    row("inner is found first", "a {\n b {\n\n }\n}", {{2, 4}, {1, 5}});
    row("two open on one line", "{ {\n\n}\n\n}", {{1, 3}, {1, 5}});
    row("one after the other", "{\n\n}\n{\n\n}", {{1, 3}, {4, 6}});
    row("closing and opening on one line", "if {\n\n} else {\n\n}", {{1, 3}, {3, 5}});
    row("closing without opening", "}\n{\n\n}", {{2, 4}});
    row("opening without closing", "{\n{\n\n}", {{2, 4}});
    row("in a line comment", "// {\n\n}", {});
    row("behind a line comment's end", "// {\n{\n\n}", {{2, 4}});
    row("three slashes", "/// {\n{\n\n}", {{2, 4}});
    row("one slash", "/ {\n\n}", {{1, 3}});
    row("slashes apart", "/ / {\n\n}", {{1, 3}});
    row("slashes over a line end", "/\n/ {\n\n}", {{2, 4}});
    row("in a string", "\"{\"\n\n}", {});
    row("slashes in a string", "\"//\" {\n\n}", {{1, 3}});
    row("quote in a line comment", "// \"\n{\n\n}", {{2, 4}});
    row("escaped quote in a string", "\"\\\"{\"\n{\n\n}", {{2, 4}});
    row("an escaped backslash escapes the quote too", "\"\\\\\" {\n\n}", {});
    row("an escaped quote outside opens nothing", "\\\" {\n\n}", {{1, 3}});
    row("an unclosed string silences up to the next quote", "\" {\n\n}\n\"{\n\n}", {{4, 6}});
    row("in a block comment", "/* {\n\n} */", {{1, 3}});
    row("slash behind a block comment", "*// {\n\n}", {});
    row("in single quotes", "'{'\n\n}", {{1, 3}});
    row("line feeds alone end lines", "{\r\r\u2028\u0085\n}", {});
    row("pairs are one line end", "{\r\n\r\n}", {{1, 3}});
    row("other brackets", "([\n\n])", {});
    row("Korean and emoji", "한 { 😀\n글\n}", {{1, 3}});
}

void FoldScansTest::bracesFoldFromLineToLine()
{
    QFETCH(QString, text);
    QFETCH(Spans, expected);
    const auto regions = scanBraces(text);
    QCOMPARE(spans(regions), expected);
    QVERIFY(std::all_of(regions.begin(), regions.end(), [](auto& region) { return region.type == FoldType::braces; }));
}

void FoldScansTest::indentsFoldToTheLastDeeperLine_data()
{
    addColumns();
    row("empty", "", {});
    row("flat", "a\nb\nc", {});
    row("one line of body", "def f():\n  x\ny", {});
    row("two lines of body", "def f():\n  x\n  y\nz", {{1, 3}});
    row("to the end of the text", "def f():\n  x\n  y", {{1, 3}});
    row("to the end with a line end", "def f():\n  x\n  y\n", {{1, 3}});
    row("nested", "a\n b\n  c\n  d\n e\nf", {{1, 5}, {2, 4}});
    row("blank lines count and do not end", "a\n\n  b\n \t\n\n  c\n\n\nd", {{1, 6}});
    row("blank lines make a body long", "a\n\n  b\nc", {{1, 3}});
    row("a tab counts one", "a\n\tb\n  c\nd",
        {
            {1, 3},
        });
    row("a tab and a blank", "a\n\tb\n\n \tc\n \td\ne", {{1, 5}, {2, 5}});
    row("deeper first", "  a\n b\nc", {});
    row("falling in steps", "a\n    b\n  c\n d\ne", {{1, 4}});
    row("all kinds of line ends", "a\r  b\u2028  c\r\n  d\u0085e\u2029  f\n  g", {{1, 4}, {5, 7}});
    row("a pair is one line end", "a\r\n b\r\n c", {{1, 3}});
    row("other spaces are text", "a\n\u00a0b\n\u3000c", {});
    row("Korean", "함수:\n  가\n  나", {{1, 3}});
}

void FoldScansTest::indentsFoldToTheLastDeeperLine()
{
    QFETCH(QString, text);
    QFETCH(Spans, expected);
    const auto regions = scanIndents(text);
    QCOMPARE(spans(regions), expected);
    QVERIFY(std::all_of(regions.begin(), regions.end(), [](auto& region) { return region.type == FoldType::indent; }));
}

void FoldScansTest::tagsFoldFromOpeningToClosing_data()
{
    addColumns();
    row("empty", "", {});
    row("no line between", "<a>\n</a>", {});
    row("one line between", "<a>\n\n</a>", {{1, 3}});
    row("a void element stays open", "<div>\n<br>\n</div>", {{1, 3}});
    row("an empty element is an opening", "<a>\n<b/>\n\n</b>\n</a>", {{2, 4}, {1, 5}});
    row("crossed", "<a>\n<b>\n</a>\n\n</b>", {{1, 3}, {2, 5}});
    row("nearest of a name", "<a>\n<a>\n\n</a>\n</a>", {{2, 4}, {1, 5}});
    row("closing without opening", "</a>\n<a>\n\n</a>", {{2, 4}});
    row("each opening is taken once", "<a>\n\n</a>\n</a>", {{1, 3}});
    row("case matters", "<A>\n\n</a>", {});
    row("attributes", "<a b='c' d>\n\n</a>", {{1, 3}});
    row("a tag over lines begins where it opens", "<a\nb\n>\n</a>", {{1, 4}});
    row("greater-than in a value", "<a b='>'>\n\n</a>", {{1, 3}});
    row("an opening inside an opening", "<a <b>\n\n</b>\n</a>", {{1, 4}});
    row("a closing inside an opening", "<b>\n\n<a </b>\n\n</a>", {{1, 3}, {3, 5}});
    row("an opening without an end", "<b>\n\n</b\n<a", {});
    row("in a comment", "<!-- <a> -->\n\n</a>", {{1, 3}});
    row("names begin with a letter", "<1>\n\n</1><_>\n\n</_>", {});
    row("digits in names", "<h1>\n\n</h1>", {{1, 3}});
    row("a name up to a hyphen", "<my-tag>\n\n</my>", {{1, 3}});
    row("a closing name has letters and digits alone", "<my>\n\n</my-tag>", {});
    row("a closing tag without blanks", "<a>\n\n</a >", {});
    row("a name up to a colon", "<x:a>\n\n</x>", {{1, 3}});
    row("an underscore is of the word", "<a_b>\n\n</a>", {});
    row("a letter beyond ASCII is of the word", "<aé>\n\n</a>", {});
    row("Korean is of the word", "<a한>\n\n</a>", {});
    row("a combining mark is no boundary", "<a\u0301>\n\n</a>", {});
    row("an invisible format character is no boundary", "<a\u200b>\n\n</a>", {});
    row("a no-break space is a boundary", "<a\u00a0>\n\n</a>", {{1, 3}});
    row("an emoji is a boundary", "<a😀>\n\n</a>", {{1, 3}});
    row("a mathematical letter is of the word", "<a𝐀>\n\n</a>", {});
    row("line feeds alone end lines", "<a>\r\r</a>", {});
}

void FoldScansTest::tagsFoldFromOpeningToClosing()
{
    QFETCH(QString, text);
    QFETCH(Spans, expected);
    const auto regions = scanTags(text);
    QCOMPARE(spans(regions), expected);
    QVERIFY(std::all_of(regions.begin(), regions.end(), [](auto& region) { return region.type == FoldType::tag; }));
}

void FoldScansTest::regionsAreNumberedAsFound()
{
    const auto check = [](const std::vector<FoldableRegion>& regions, size_t count) {
        QCOMPARE(regions.size(), count);
        for (size_t i = 0; i < count; ++i) {
            QCOMPARE(regions[i].id, qsizetype(i));
        }
    };
    check(scanBraces(u"{ {\n\n}\n\n}\n{\n\n}"), 3);
    check(scanIndents(u"a\n b\n  c\n  d"), 2);
    check(scanTags(u"<a>\n<b>\n\n</b>\n</a>"), 2);
}

void FoldScansTest::unitsThatAreNoCharactersMatchNothing()
{
    for (const char16_t unit : {u'\xd83d', u'\xde00', u'\0', u'\xffff'}) {
        const auto with = [unit](const QString& text) { return QString(text).replace(u'?', QChar(unit)); };
        QCOMPARE(spans(scanBraces(with(QStringLiteral("?{?\n?\n?}?")))), (Spans{{1, 3}}));
        QCOMPARE(spans(scanIndents(with(QStringLiteral("?\n ?\n ?")))), (Spans{{1, 3}}));
        QCOMPARE(spans(scanTags(with(QStringLiteral("?<a?>\n?\n</a>?")))), (Spans{{1, 3}}));
    }
}

/// The walk forward from each line, as it is told.
static Spans naiveIndents(const QString& text)
{
    const test::NaiveLines index(text);
    QList<std::pair<int, int>> record;
    for (qsizetype line = 0; line < index.lineCount(); ++line) {
        int indent = 0;
        qsizetype at = index.start(line);
        for (; at < index.end(line) && (text[at] == u' ' || text[at] == u'\t'); ++at) {
            ++indent;
        }
        if (at < index.end(line) - lineTerminatorLength(text, at)) {
            record.append({int(line) + 1, indent});
        }
    }
    Spans result;
    for (qsizetype i = 0; i < record.size(); ++i) {
        qsizetype end = i;
        while (end + 1 < record.size() && record[end + 1].second > record[i].second) {
            ++end;
        }
        if (record[i].first + 1 < record[end].first) {
            result.append({record[i].first, record[end].first});
        }
    }
    return result;
}

void FoldScansTest::indentsAgreeWithTheNaiveWalk()
{
    test::RandomText random;
    for (int i = 0; i < 2000; ++i) {
        const QString text = random.text(60);
        QCOMPARE(spans(scanIndents(text)), naiveIndents(text));
    }
}

namespace {

struct Match
{
    qsizetype location;
    bool isOpening;
    QString tag;
};

} // namespace

static void collect(const char16_t* pattern, bool isOpening, const QString& text, std::vector<Match>& matches)
{
    UErrorCode status = U_ZERO_ERROR;
    URegularExpression* regex = uregex_open(pattern, -1, 0, nullptr, &status);
    uregex_setText(regex, reinterpret_cast<const UChar*>(text.utf16()), int(text.size()), &status);
    while (uregex_findNext(regex, &status)) {
        const int start = uregex_start(regex, 1, &status);
        matches.push_back(
            {uregex_start(regex, 0, &status), isOpening, text.mid(start, uregex_end(regex, 1, &status) - start)});
    }
    uregex_close(regex);
    QVERIFY(U_SUCCESS(status));
}

/// The tags as the patterns match them and as the stack is searched for each of them.
static Spans naiveTags(const QString& text)
{
    std::vector<Match> matches;
    collect(u"<([a-zA-Z][a-zA-Z0-9]*)\\b[^>]*>", true, text, matches);
    collect(u"</([a-zA-Z][a-zA-Z0-9]*)>", false, text, matches);
    std::sort(matches.begin(), matches.end(), [](auto& a, auto& b) { return a.location < b.location; });
    std::vector<std::pair<QString, int>> stack;
    Spans result;
    for (const Match& match : matches) {
        const int line = 1 + int(QStringView(text).first(match.location).count(u'\n'));
        if (match.isOpening) {
            stack.push_back({match.tag, line});
            continue;
        }
        const auto found =
            std::find_if(stack.rbegin(), stack.rend(), [&](auto& open) { return open.first == match.tag; });
        if (found != stack.rend()) {
            if (found->second + 1 < line) {
                result.append({found->second, line});
            }
            stack.erase(std::next(found).base());
        }
    }
    return result;
}

void FoldScansTest::tagsAgreeWithTheirPatterns()
{
    test::RandomText random;
    const QStringList pieces{QStringLiteral("<a>"),  QStringLiteral("</a>"), QStringLiteral("<b "),
                             QStringLiteral("</b"),  QStringLiteral(">"),    QStringLiteral("<"),
                             QStringLiteral("</"),   QStringLiteral("a"),    QStringLiteral("\n"),
                             QStringLiteral("\n\n"), QStringLiteral("<a/>"), QStringLiteral("1"),
                             QStringLiteral("_"),    QStringLiteral("-")};
    for (int i = 0; i < 5000; ++i) {
        QString text;
        for (qsizetype j = random.below(30); j > 0; --j) {
            text += random.below(5) == 0 ? random.text(2) : pieces[random.below(pieces.size())];
        }
        QVERIFY2(spans(scanTags(text)) == naiveTags(text), qPrintable(text));
    }
    // Every character behind a name, for the word boundary.
    for (char32_t character = 0; character < 0x30000; ++character) {
        QString text = QStringLiteral("<a");
        if (character > 0xffff) {
            text += QChar(QChar::highSurrogate(character));
            text += QChar(QChar::lowSurrogate(character));
        } else {
            text += QChar(char16_t(character));
        }
        text += QStringLiteral(">\n\n</a>");
        if (spans(scanTags(text)) != naiveTags(text)) {
            QFAIL(qPrintable(QString::number(character, 16)));
        }
    }
}

void FoldScansTest::theWorstTextsStayLinear_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");
    constexpr int n = 1'000'000;
    QString names;
    for (int i = 0; i < n / 4; ++i) {
        names += QStringLiteral("<a%1>\n").arg(i);
    }
    QString stairs;
    for (int i = 0; i < 2000; ++i) {
        stairs += QString(i, u' ') + QStringLiteral("x\n");
    }
    QTest::newRow("unclosed tags of one name") << QStringLiteral("<a>").repeated(n) << 0;
    QTest::newRow("unclosed tags of many names, closings of another")
        << names + QStringLiteral("</b>").repeated(n) << 0;
    QTest::newRow("openings without an end") << QStringLiteral("<a ").repeated(n) << 0;
    QTest::newRow("one name opened often, all closed at the end")
        << QStringLiteral("<a>").repeated(n) + QStringLiteral("\n\n") + QStringLiteral("</a>").repeated(n) << n;
    QTest::newRow("closings beneath many open ones")
        << QStringLiteral("<b>").repeated(n) + QStringLiteral("<a>").repeated(n) + QStringLiteral("\n\n") +
               QStringLiteral("</b>").repeated(n)
        << n;
    QTest::newRow("open braces") << QStringLiteral("{\n").repeated(n) + QStringLiteral("}").repeated(n) << n - 1;
    QTest::newRow("stairs of indents") << stairs << 2000 - 2;
    QTest::newRow("deeper lines without end") << QStringLiteral("x\n") + QStringLiteral(" y\n").repeated(n) << 1;
}

void FoldScansTest::theWorstTextsStayLinear()
{
    QFETCH(QString, text);
    QFETCH(int, count);
    const size_t found = std::max({scanBraces(text).size(), scanIndents(text).size(), scanTags(text).size()});
    QCOMPARE(found, size_t(count));
}

const kelm::test::Registered<FoldScansTest> registered;

} // namespace fold_scans_test

#include "fold_scans_test.moc"
