#include "editor/highlighter/pattern_scanner.h"
#include "editor/highlighter/rule_lists.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QHash>
#include <QtTest>

namespace pattern_scanner_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Match
{
    qsizetype start;
    qsizetype end;

    friend bool operator==(Match, Match) = default;
};

const RuleList allLists[] = {rules::swift,    rules::python, rules::javaScript, rules::json, rules::xml,    rules::css,
                             rules::markdown, rules::shell,  rules::go,         rules::rust, rules::generic};

std::vector<Match> scannerMatches(const QString& pattern, RegularExpression::Options options, QStringView text)
{
    std::vector<Match> matches;
    const std::optional<PatternScanner> scanner = scannerFor(pattern, options);
    scanMatches(*scanner, ScannedText(text), [&](qsizetype start, qsizetype end) { matches.push_back({start, end}); });
    return matches;
}

std::vector<Match> icuMatches(const RegularExpression& expression, QStringView text)
{
    std::vector<Match> matches;
    const auto ending = expression.enumerateMatches(text, 0, [&](const RegularExpressionMatch& match) {
        matches.push_back({match.location(), match.end()});
        return true;
    });
    return ending == RegularExpression::Ending::complete ? matches : std::vector<Match>{{-1, -1}};
}

QString shown(QStringView text)
{
    QString result;
    for (const QChar unit : text) {
        result += unit.unicode() >= 0x20 && unit.unicode() < 0x7f
                      ? QString(unit)
                      : QStringLiteral("\\u%1").arg(unit.unicode(), 4, 16, QLatin1Char('0'));
    }
    return result;
}

QString shown(const std::vector<Match>& matches)
{
    QString result;
    for (const Match match : matches) {
        result += QStringLiteral("[%1,%2) ").arg(match.start).arg(match.end);
    }
    return result;
}

void compare(const QString& pattern, RegularExpression::Options options, const RegularExpression& expression,
             QStringView text)
{
    const std::vector<Match> fast = scannerMatches(pattern, options, text);
    const std::vector<Match> slow = icuMatches(expression, text);
    if (fast != slow) {
        const QString message = QStringLiteral("%1 over \"%2\": %3instead of %4")
                                    .arg(pattern.left(60), shown(text), shown(fast), shown(slow));
        QFAIL(qPrintable(message));
    }
}

/// What makes trouble in any text: every kind of line end and of white space, what `\b` looks through, letters and
/// digits beyond ASCII and beyond the basic plane, surrogates that stand alone, NUL.
const QStringList& oddPieces()
{
    static const QStringList pieces{QStringLiteral("\n"),
                                    QStringLiteral("\r"),
                                    QStringLiteral("\r\n"),
                                    QStringLiteral("\v"),
                                    QStringLiteral("\f"),
                                    QStringLiteral("\u0085"),
                                    QStringLiteral("\u2028"),
                                    QStringLiteral("\u2029"),
                                    QStringLiteral(" "),
                                    QStringLiteral("\t"),
                                    QStringLiteral("\u00a0"),
                                    QStringLiteral("\u1680"),
                                    QStringLiteral("\u3000"),
                                    QStringLiteral("\u180e"),
                                    QStringLiteral("\u0301"),
                                    QStringLiteral("\u200d"),
                                    QStringLiteral("\u200c"),
                                    QStringLiteral("\u00ad"),
                                    QStringLiteral("\ufeff"),
                                    QStringLiteral("\u0903"),
                                    QStringLiteral("\u20dd"),
                                    QStringLiteral("\ufe0f"),
                                    QStringLiteral("\u203f"),
                                    QStringLiteral("\u00e9"),
                                    QStringLiteral("한글"),
                                    QStringLiteral("\u1112\u1161\u11ab"),
                                    QStringLiteral("\u0663"),
                                    QStringLiteral("\u0967"),
                                    QStringLiteral("\u00b2"),
                                    QStringLiteral("😀"),
                                    QStringLiteral("👩‍👩‍👧"),
                                    QStringLiteral("👍🏽"),
                                    QStringLiteral("𝟎"),
                                    QStringLiteral("𝒳"),
                                    QStringLiteral("\U000e0101"),
                                    QStringLiteral("\U0001d165"),
                                    QStringLiteral("\U000e0041"),
                                    QString(QChar(0)),
                                    QString(QChar(0xd83d)),
                                    QString(QChar(0xde00)),
                                    QString(QChar(0xdb40)),
                                    QString(QChar(0xdd01)),
                                    QString(QChar(0xfdd0)),
                                    QString(QChar(0x08)),
                                    QString(QChar(0x0e)),
                                    QString(QChar(0x1a)),
                                    QString(QChar(0x1c)),
                                    QString(QChar(0x7f)),
                                    QString(QChar(0x203d)),
                                    QString(QChar(0x2022))};
    return pieces;
}

/// Texts that a pattern matches, and some that it just does not.
QStringList examplesOf(const QString& pattern)
{
    static const QHash<QString, QStringList> examples{
        {uR"(//.*$)"_s, {u"// a \"b\""_s, u"//"_s}},
        {uR"(#.*$)"_s, {u"# a 'b'"_s, u"#"_s}},
        {uR"(/\*[\s\S]*?\*/)"_s, {u"/* a */"_s, u"/**/"_s, u"/*/*/"_s}},
        {uR"(<!--[\s\S]*?-->)"_s, {u"<!-- a -->"_s, u"<!---->"_s, u"<!-->-->"_s}},
        {uR"("""[\s\S]*?""")"_s, {u"\"\"\"a\"\"\""_s, u"\"\"\"\"\"\"\""_s}},
        {uR"('''[\s\S]*?''')"_s, {u"'''a'''"_s, u"'''''''"_s}},
        {uR"(```[\s\S]*?```)"_s, {u"```a```"_s, u"`````````"_s}},
        {uR"(r#"[\s\S]*?"#)"_s, {u"r#\"a\"#"_s, u"r#\"\"#"_s, u"r#\"#\"#"_s}},
        {uR"__("(?:[^"\\]|\\.)*")__"_s, {u"\"a\""_s, u"\"\\\"\""_s, u"\"\\\\\""_s, u"\"\\"_s}},
        {uR"('(?:[^'\\]|\\.)*')"_s, {u"'a'"_s, u"'\\''"_s, u"'\\\\'"_s, u"'\\"_s}},
        {uR"("[^"]*")"_s, {u"\"a\""_s, u"\"\""_s}},
        {uR"('[^']*')"_s, {u"'a'"_s, u"''"_s}},
        {uR"(`[^`]*`)"_s, {u"`a`"_s, u"``"_s}},
        {uR"(`[^`]+`)"_s, {u"`a`"_s, u"``a``"_s}},
        {uR"(\b\d+\.?\d*\b)"_s, {u"12"_s, u"1.5"_s, u"3."_s, u"7.x"_s, u"0x"_s}},
        {uR"(\b([a-zA-Z_][a-zA-Z0-9_]*)\s*(?=\())"_s, {u"run("_s, u"_a1 ("_s, u"a\n\t("_s, u"1a("_s}},
        {uR"(\b([a-zA-Z_$][a-zA-Z0-9_$]*)\s*(?=\())"_s, {u"run("_s, u"$a ("_s, u"a$("_s, u"1$a("_s, u"$("_s}},
        {uR"(\bdef\s+([a-zA-Z_][a-zA-Z0-9_]*))"_s, {u"def run"_s, u"def\n_1"_s, u"def def"_s, u"xdef a"_s}},
        {uR"(\bclass\s+([a-zA-Z_][a-zA-Z0-9_]*))"_s, {u"class A"_s, u"class\n_1"_s, u"class class"_s, u"xclass a"_s}},
        {uR"(\bfunc\s+([a-zA-Z_][a-zA-Z0-9_]*))"_s, {u"func run"_s, u"func\t_1"_s, u"func func"_s, u"afunc a"_s}},
        {uR"(@[a-zA-Z_][a-zA-Z0-9_]*)"_s, {u"@main"_s, u"@_1"_s, u"@@a"_s, u"@1"_s}},
        {uR"('[a-zA-Z_][a-zA-Z0-9_]*)"_s, {u"'a"_s, u"'_1"_s, u"''a"_s, u"'1"_s}},
        {uR"(\$[a-zA-Z_][a-zA-Z0-9_]*)"_s, {u"$a"_s, u"$_1"_s, u"$$a"_s, u"$1"_s}},
        {uR"(\$\{[^}]+\})"_s, {u"${a}"_s, u"${a:-${b}}"_s, u"${}"_s, u"${\n}"_s}},
        {uR"([a-zA-Z_][a-zA-Z0-9_]*!)"_s, {u"vec!"_s, u"1a!"_s, u"_!"_s, u"1!"_s, u"a!!"_s}},
        {uR"(=>)"_s, {u"=>"_s, u"==>"_s, u"=>>"_s}},
        {uR"("[^"]*"\s*(?=:))"_s, {u"\"a\":"_s, u"\"\" :"_s, u"\"a\"\n:"_s, u"\"a\","_s}},
        {uR"(:\s*"[^"]*")"_s, {u":\"a\""_s, u": \"\""_s, u":\n\"a\""_s, u"::\"a\""_s}},
        {uR"(:\s*-?\d+\.?\d*)"_s, {u":1"_s, u": -1.5"_s, u":\n2."_s, u":--1"_s, u": -"_s}},
        {uR"(:\s*(true|false|null)\b)"_s, {u":true"_s, u": false,"_s, u":\nnull "_s, u":nullx"_s, u":tru"_s}},
        {uR"(</?[a-zA-Z][a-zA-Z0-9-]*)"_s, {u"<a"_s, u"</a-1"_s, u"<<b"_s, u"</ a"_s}},
        {uR"(/?>)"_s, {u">"_s, u"/>"_s, u"//>>"_s}},
        {uR"(\b[a-zA-Z-]+(?==))"_s, {u"a="_s, u"a-b="_s, u"1-a="_s, u"-a="_s, u"1a="_s, u"a-="_s}},
        {uR"([.#]?[a-zA-Z_-][a-zA-Z0-9_-]*\s*(?=\{))"_s, {u".a {"_s, u"#a-1{"_s, u"1a{"_s, u".1a {"_s, u".#a\n{"_s}},
        {uR"([a-zA-Z-]+(?=\s*:))"_s, {u"a:"_s, u"a-b :"_s, u"-a\n:"_s, u"1a::"_s}},
        {uR"(:\s*[^;{]+)"_s, {u":a;"_s, u":  ;"_s, u": a: b{"_s, u":;"_s}},
        {uR"(\d+\.?\d*(px|em|rem|%|vh|vw)?)"_s,
         {u"1px"_s, u"1.5rem"_s, u"2.em"_s, u"3%"_s, u"4vh"_s, u"5vw"_s, u"6p"_s, u"7re"_s}},
        {uR"(#[0-9a-fA-F]{3,8})"_s, {u"#fff"_s, u"#12345678"_s, u"#123456789"_s, u"#ab"_s, u"#abg"_s, u"##ABC"_s}},
        {uR"(^#{1,6}\s.*$)"_s, {u"# a\n"_s, u"###### a\r"_s, u"#\na"_s, u"#\r\na"_s, u"####### a\n"_s, u"\n#\n#"_s}},
        {uR"(\*\*[^*]+\*\*)"_s, {u"**a**"_s, u"***a***"_s, u"**a*"_s, u"****"_s}},
        {uR"(__[^_]+__)"_s, {u"__a__"_s, u"___a___"_s, u"__a_"_s, u"____"_s}},
        {uR"(\*[^*]+\*)"_s, {u"*a*"_s, u"**a**"_s, u"**"_s}},
        {uR"(_[^_]+_)"_s, {u"_a_"_s, u"__a__"_s, u"__"_s}},
        {uR"(\[[^\]]+\]\([^)]+\))"_s, {u"[a](b)"_s, u"[[a](b)"_s, u"[](b)"_s, u"[a]()"_s, u"[a](b"_s, u"[a] (b)"_s}},
        {uR"(^\s*[-*+]\s)"_s, {u"- a\n"_s, u"\n * a"_s, u"\r\n+\r\n"_s, u"\n\n-\n"_s, u"a - "_s}},
        {uR"(^\s*\d+\.\s)"_s, {u"1. a\n"_s, u"\n 20. a"_s, u"\r\n3.\r\n"_s, u"\n\n4.\n"_s, u"a 5. "_s}},
    };
    if (!pattern.startsWith(u"\\b(") || !pattern.endsWith(u")\\b")) {
        return examples.value(pattern);
    }
    QStringList words = pattern.chopped(3).sliced(3).split(u'|');
    words += words.first() + u'@' + words.last();
    words += u"x@"_s + words.first();
    return words;
}

/// The units of a pattern, what it matches, and pieces of that.
QStringList ownPieces(const QString& pattern, test::RandomText& random)
{
    QStringList pieces{u"a"_s, u"Z"_s, u"_"_s, u"0"_s, u"9"_s, u" "_s};
    for (const QChar unit : pattern) {
        if (!pieces.contains(QString(unit)) && !isAsciiLetter(unit.unicode())) {
            pieces += QString(unit);
        }
    }
    for (const QString& example : examplesOf(pattern)) {
        const qsizetype cut = random.below(example.size());
        pieces << example << example << example.left(cut) << example.mid(cut);
    }
    pieces.removeAll(QString());
    return pieces;
}

QString randomText(test::RandomText& random, const QStringList& own)
{
    // Few different pieces in one text make the pattern's own shapes likely.
    QStringList pieces;
    for (qsizetype i = 2 + random.below(5); i > 0; --i) {
        pieces += own[random.below(own.size())];
    }
    const QStringList& odd = oddPieces();
    for (qsizetype i = random.below(4); i > 0; --i) {
        pieces += odd[random.below(odd.size())];
    }
    QString text;
    for (qsizetype i = random.below(random.below(10) == 0 ? 200 : 24); i > 0; --i) {
        text += pieces[random.below(pieces.size())];
    }
    return text;
}

// The sanitizers slow every access down and look for other defects.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr qsizetype longText = 50'000;
constexpr int usualRounds = 500;
#else
constexpr qsizetype longText = 1'000'000;
constexpr int usualRounds = 2000;
#endif

/// How many random texts each pattern is tried on; KELM_TEST_ROUNDS asks for more.
int rounds()
{
    bool given = false;
    const int count = qEnvironmentVariable("KELM_TEST_ROUNDS").toInt(&given);
    return given ? count : usualRounds;
}

using Pattern = std::pair<QString, RegularExpression::Options>;

/// The patterns of all lists, each once.
const std::vector<Pattern>& patternsInUse()
{
    static const std::vector<Pattern> patterns = [] {
        std::vector<Pattern> found;
        for (const RuleList list : allLists) {
            for (const RuleEntry& rule : list) {
                const Pattern pattern{rule.patternText(), rule.options};
                if (std::find(found.begin(), found.end(), pattern) == found.end()) {
                    found.push_back(pattern);
                }
            }
        }
        return found;
    }();
    return patterns;
}

void addRowForEachPattern()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<RegularExpression::Options>("options");
    for (const auto& [pattern, options] : patternsInUse()) {
        QTest::newRow(qPrintable(pattern.left(60))) << pattern << options;
    }
}

} // namespace

} // namespace pattern_scanner_test

// moc loses sight of the namespace over the raw strings above.
namespace pattern_scanner_test {

class PatternScannerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPatternInUseHasAScanner_data() { addRowForEachPattern(); }
    void everyPatternInUseHasAScanner()
    {
        QFETCH(QString, pattern);
        QFETCH(RegularExpression::Options, options);
        QVERIFY(scannerFor(pattern, options).has_value());
    }

    void otherPatternsAreLeftToTheEngine_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<RegularExpression::Options>("options");
        const RegularExpression::Options none = RegularExpression::none;
        const RegularExpression::Options everyLine = RegularExpression::anchorsMatchLines;
        QTest::newRow("a comment whose line end is the last one only") << QStringLiteral("//.*$") << none;
        QTest::newRow("a number under other options") << QStringLiteral("\\b\\d+\\.?\\d*\\b") << everyLine;
        QTest::newRow("a list of words under other options") << QStringLiteral("\\b(a|b)\\b") << everyLine;
        QTest::newRow("a list of words with a class") << QStringLiteral("\\b(a|\\w)\\b") << none;
        QTest::newRow("a list with an empty word") << QStringLiteral("\\b(a|)\\b") << none;
        QTest::newRow("a list with a lone sign") << QStringLiteral("\\b(a|@)\\b") << none;
        QTest::newRow("a list with a very long word") << QStringLiteral("\\b(a|%1)\\b").arg(QString(32, u'b')) << none;
        QTest::newRow("a list of very many words")
            << QStringLiteral("\\b(%1a)\\b").arg(QStringLiteral("a|").repeated(250)) << none;
        QTest::newRow("a short text with both ends") << QStringLiteral("\\b()\\b") << none;
        QTest::newRow("a shorter one") << QStringLiteral("\\b(\\b") << none;
        QTest::newRow("another pattern") << QStringLiteral("[0-9]+") << none;
        QTest::newRow("nothing") << QString() << none;
    }
    void otherPatternsAreLeftToTheEngine()
    {
        QFETCH(QString, pattern);
        QFETCH(RegularExpression::Options, options);
        QVERIFY(!scannerFor(pattern, options));
    }

    void scannerAndEngineFindTheSameInRandomTexts_data() { addRowForEachPattern(); }
    void scannerAndEngineFindTheSameInRandomTexts()
    {
        QFETCH(QString, pattern);
        QFETCH(RegularExpression::Options, options);
        const auto expression = RegularExpression::compile(pattern, options);
        QVERIFY(expression);
        QVERIFY(!examplesOf(pattern).isEmpty());
        int hits = 0;
        for (int round = rounds(); round > 0; --round) {
            const QString text = randomText(random_, ownPieces(pattern, random_));
            compare(pattern, options, *expression, text);
            if (QTest::currentTestFailed()) {
                return;
            }
            hits += scannerMatches(pattern, options, text).empty() ? 0 : 1;
        }
        // Texts without a match prove little.
        QVERIFY2(hits * 6 > rounds(), qPrintable(QString::number(hits)));
    }

    void scannerAndEngineFindTheSameInEveryShortText_data() { addRowForEachPattern(); }
    void scannerAndEngineFindTheSameInEveryShortText()
    {
        // All texts of up to four pieces of the pattern's own, with one odd piece at a time among them.
        QFETCH(QString, pattern);
        QFETCH(RegularExpression::Options, options);
        const auto expression = RegularExpression::compile(pattern, options);
        QVERIFY(expression);
        for (const QString& odd : oddPieces()) {
            const QStringList own = ownPieces(pattern, random_);
            QStringList pieces{odd};
            for (int i = 0; i < 4; ++i) {
                pieces += own[random_.below(own.size())];
            }
            const qsizetype count = pieces.size();
            for (qsizetype number = 0; number < count * count * count * count; ++number) {
                QString text;
                for (qsizetype rest = number, i = 0; i < 4; ++i, rest /= count) {
                    text += pieces[rest % count];
                }
                compare(pattern, options, *expression, text);
                if (QTest::currentTestFailed()) {
                    return;
                }
            }
        }
    }

    void endsOfWordsAreThoseOfTheEngine_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        const QString number = QStringLiteral("\\b\\d+\\.?\\d*\\b");
        const QString words = QStringLiteral("\\b(if|in|@main|main2)\\b");
        QTest::newRow("a combining mark behind a digit hides the end") << number << QStringLiteral("12\u0301 7");
        QTest::newRow("a mark behind a fraction gives the whole part back") << number << QStringLiteral("12.5\u0301");
        QTest::newRow("a point before a letter belongs to the number") << number << QStringLiteral("12.a 3.b");
        QTest::newRow("a point before a blank does not") << number << QStringLiteral("12. 3");
        QTest::newRow("a fraction that runs into a letter") << number << QStringLiteral("12.34abc");
        QTest::newRow("two points") << number << QStringLiteral("1.2.3.4 5..6");
        QTest::newRow("a letter before a digit") << number << QStringLiteral("a1 b2.5 _3");
        QTest::newRow("digits of several scripts") << number << QStringLiteral("1\u0663.\u0967𝟎 ");
        QTest::newRow("a mark at the start of the text") << words << QStringLiteral("\u0301if in");
        QTest::newRow("a format character is looked through") << words << QStringLiteral("a\u00adif \u00adif in\u200d");
        QTest::newRow("a signed word needs a word before it") << words << QStringLiteral("@main if@main x@main @main2");
        QTest::newRow("a mark between sign and word") << words << QStringLiteral("x@\u0301main x\u0301@main");
        QTest::newRow("a word beyond the basic plane") << words << QStringLiteral("𝒳if if𝒳 😀if😀in");
    }
    void endsOfWordsAreThoseOfTheEngine()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        compare(pattern, RegularExpression::none, *RegularExpression::compile(pattern), text);
    }

    void noTextIsATrap_data()
    {
        QTest::addColumn<QString>("piece");
        for (const char16_t* piece : {u"\"",      u"'",
                                      u"`",       u"\\",
                                      u"\\\"",    u"\\'",
                                      u"\"\\",    u"/*",
                                      u"/",       u"*",
                                      u"**",      u"*a",
                                      u"**a",     u"_",
                                      u"__a",     u"<!--",
                                      u"<",       u"[",
                                      u"[a](",    u"[a",
                                      u"]",       u"(",
                                      u"${",      u"$",
                                      u"a$",      u"1$",
                                      u"#",       u"# ",
                                      u"r#\"",    u"7",
                                      u"7.",      u"7a",
                                      u":",       u": ",
                                      u":\"",     u":-",
                                      u"\n",      u"\r\n",
                                      u"\r",      u"- ",
                                      u"\n ",     u"1.",
                                      u"1\n",     u"a ",
                                      u"a",       u"a-",
                                      u"def ",    u"def",
                                      u"class\n", u"@",
                                      u"!",       u"=",
                                      u"{",       u"{}",
                                      u"%",       u"\u0301",
                                      u"a\u0301", u"\u200d",
                                      u"한",      u"\xd83d",
                                      u"\xde00",  u"\xd83d\xde00",
                                      u"\u0663",  u"\u00a0",
                                      u"\u2028",  u"",
                                      u" (",      u"\n("}) {
            QTest::newRow(qPrintable(shown(QStringView(piece)))) << QString::fromUtf16(piece);
        }
        QTest::newRow("NUL") << QString(QChar(0));
    }
    void noTextIsATrap()
    {
        // A quadratic scan of a million units takes minutes, and a test program has two.
        QFETCH(QString, piece);
        const QString repeated = piece.isEmpty() ? piece : piece.repeated(longText / piece.size());
        bool isInside = true;
        for (const QString& text : {repeated, QString(u'"' + repeated + u'\n')}) {
            for (const auto& [pattern, options] : patternsInUse()) {
                scanMatches(*scannerFor(pattern, options), ScannedText(text), [&](qsizetype start, qsizetype end) {
                    isInside = isInside && start < end && end <= text.size();
                });
            }
        }
        QVERIFY(isInside);
    }

private:
    test::RandomText random_;
};

const kelm::test::Registered<PatternScannerTest> registered;

} // namespace pattern_scanner_test

#include "pattern_scanner_test.moc"
