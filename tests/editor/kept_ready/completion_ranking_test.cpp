#include "editor/kept_ready/completion_ranking.h"
#include "editor/kept_ready/completion_tables.h"
#include "support/test_program.h"

#include <QtTest>

namespace completion_ranking_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The texts of a list, a snippet's with "()" behind it.
QStringList textsOf(const QList<CompletionItem>& items)
{
    QStringList texts;
    for (const CompletionItem& item : items) {
        texts << item.text + (item.type == CompletionType::snippet ? u"()"_s : QString());
    }
    return texts;
}

} // namespace

class CompletionRankingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTablesAreWhole_data();
    void theTablesAreWhole();
    void onlyFiveLanguagesHaveKeywords();
    void theSnippetsAreTheSame_data();
    void theSnippetsAreTheSame();
    void theSnippetsStandInTheirOrder();
    void suggestions_data();
    void suggestions();
    void atMostFifteenAreOffered();
    void itemsTellWhatTheyAre();
    void scores_data();
    void scores();
    void snippetsExpandToTheirDefaults_data();
    void snippetsExpandToTheirDefaults();
    void everyBadgeIsItsOwn();
};

void CompletionRankingTest::theTablesAreWhole_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("words");
    const auto row = [](const char* name, Language language, const char* words) {
        QTest::newRow(name) << language << QString::fromLatin1(words);
    };
    row("swift", Language::swift,
        "import class struct enum protocol extension func var let if else guard switch case default "
        "for while repeat return throw try catch do break continue fallthrough public private "
        "internal fileprivate open static override final lazy weak unowned self super nil true false "
        "@State @Binding @Published @ObservedObject @StateObject @Environment");
    row("python", Language::python,
        "import from class def if elif else for while try except finally with as return yield raise "
        "break continue pass lambda and or not in is True False None global nonlocal assert async "
        "await print len range str int float list dict set tuple");
    row("javascript", Language::javascript,
        "import export from const let var function class if else switch case default for while do "
        "return throw try catch finally break continue new this super extends static async await true "
        "false null undefined typeof instanceof console.log document window fetch Promise");
    row("go", Language::go,
        "package import func var const type struct interface if else switch case default for range "
        "break continue return defer go select chan map make new append true false nil iota "
        "fmt.Println fmt.Printf");
    row("rust", Language::rust,
        "use mod pub fn let mut const static struct enum trait impl if else match loop while for in "
        "return break continue move ref self Self super true false Some None Ok Err Box Vec String "
        "println! format! vec! panic!");
}

void CompletionRankingTest::theTablesAreWhole()
{
    QFETCH(Language, language);
    QStringList words;
    for (const QLatin1String word : completionKeywords(language)) {
        words << QString(word);
    }
    QTEST(words.join(u' '), "words");
}

void CompletionRankingTest::onlyFiveLanguagesHaveKeywords()
{
    QStringList languages;
    for (const Language language : Language::allCases()) {
        if (!completionKeywords(language).empty()) {
            languages << language.rawValue();
        }
    }
    languages.sort();
    QStringList five{Language(Language::swift).rawValue(), Language(Language::python).rawValue(),
                     Language(Language::javascript).rawValue(), Language(Language::go).rawValue(),
                     Language(Language::rust).rawValue()};
    five.sort();
    QCOMPARE(languages, five);
}

void CompletionRankingTest::theSnippetsAreTheSame_data()
{
    QTest::addColumn<QString>("body");
    const auto row = [](const char* trigger, const char* body) { QTest::newRow(trigger) << QString::fromLatin1(body); };
    row("func", "func ${1:name}(${2:params}) ${3:-> ReturnType} {\n    ${0}\n}");
    row("if", "if ${1:condition} {\n    ${0}\n}");
    row("guard", "guard ${1:condition} else {\n    ${0:return}\n}");
    row("for", "for ${1:item} in ${2:collection} {\n    ${0}\n}");
    row("while", "while ${1:condition} {\n    ${0}\n}");
    row("switch", "switch ${1:value} {\ncase ${2:pattern}:\n    ${0}\ndefault:\n    break\n}");
    row("class", "class ${1:Name} {\n    ${0}\n}");
    row("struct", "struct ${1:Name} {\n    ${0}\n}");
    row("enum", "enum ${1:Name} {\n    case ${0}\n}");
    row("init", "init(${1:params}) {\n    ${0}\n}");
    row("closure", "{ ${1:params} in\n    ${0}\n}");
    row("try", "do {\n    try ${1:expression}\n} catch {\n    ${0}\n}");
    row("print", "print(\"${0}\")");
    row("mark", "// MARK: - ${0}");
    row("todo", "// TODO: ${0}");
    row("fixme", "// FIXME: ${0}");
}

void CompletionRankingTest::theSnippetsAreTheSame()
{
    const QString trigger = QString::fromLatin1(QTest::currentDataTag());
    const auto snippets = completionSnippets();
    const auto found = std::find_if(snippets.begin(), snippets.end(),
                                    [&](const Snippet& snippet) { return snippet.trigger == trigger; });
    QVERIFY(found != snippets.end());
    QTEST(QString(found->body), "body");
}

void CompletionRankingTest::theSnippetsStandInTheirOrder()
{
    QStringList triggers;
    for (const Snippet& snippet : completionSnippets()) {
        triggers << QString(snippet.trigger);
    }
    QCOMPARE(triggers.join(u' '),
             u"func if guard for while switch class struct enum init closure try print mark todo fixme"_s);
}

void CompletionRankingTest::suggestions_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("offered");
    QTest::newRow("a keyword goes before the snippet of its name")
        << u"fo"_s << Language(Language::python) << u"for for()"_s;
    QTest::newRow("no keywords for TypeScript") << u"fo"_s << Language(Language::typescript) << u"for()"_s;
    QTest::newRow("the at sign is part of a word") << u"@St"_s << Language(Language::swift) << u"@State @StateObject"_s;
    QTest::newRow("an equal word is offered") << u"guard"_s << Language(Language::swift) << u"guard guard()"_s;
    QTest::newRow("the case as typed goes first") << u"Se"_s << Language(Language::rust) << u"Self self"_s;
    QTest::newRow("the shorter the better") << u"im"_s << Language(Language::rust) << u"impl"_s;
    QTest::newRow("nothing") << u"zz"_s << Language(Language::swift) << QString();
    QTest::newRow("another script") << u"가"_s << Language(Language::swift) << QString();
}

void CompletionRankingTest::suggestions()
{
    QFETCH(QString, word);
    QFETCH(Language, language);
    QFETCH(QString, offered);
    QCOMPARE(textsOf(getSuggestions(word, language)).join(u' '), offered);
}

void CompletionRankingTest::atMostFifteenAreOffered()
{
    // An empty word fits everything: 48 keywords and 16 snippets.
    QCOMPARE(textsOf(getSuggestions(QString(), Language::swift)).join(u' '),
             u"if do if() var let for try nil for() try() enum func else case open"_s);
    QCOMPARE(getSuggestions(QString(), Language::plainText).size(), 15);
    // Each list that is not cut is offered whole.
    const QList<CompletionItem> all = getSuggestions(u"f"_s, Language::javascript);
    QCOMPARE(all.size(), 9);
}

void CompletionRankingTest::itemsTellWhatTheyAre()
{
    const QList<CompletionItem> items = getSuggestions(u"fo"_s, Language::python);
    QCOMPARE(items[0].detail, u"Keyword"_s);
    QVERIFY(!items[0].insertText);
    QCOMPARE(items[1].detail, u"Snippet"_s);
    QCOMPARE(items[1].insertText, u"for ${1:item} in ${2:collection} {\n    ${0}\n}"_s);
    QVERIFY(!items[0].id.isNull());
    QVERIFY(items[0].id != items[1].id);
    QVERIFY(getSuggestions(u"fo"_s, Language::python)[0].id != items[0].id);
}

void CompletionRankingTest::scores_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("score");
    QTest::newRow("same case") << u"for"_s << u"fo"_s << 119;
    QTest::newRow("another case") << u"For"_s << u"fo"_s << 69;
    QTest::newRow("equal") << u"for"_s << u"for"_s << 120;
    QTest::newRow("no prefix") << u"while"_s << u"fo"_s << 17;
    QTest::newRow("far longer") << QString(40, u'a') << u"a"_s << 100;
    QTest::newRow("far longer and no prefix") << QString(40, u'a') << u"b"_s << 0;
    QTest::newRow("shorter than the prefix") << u"a"_s << u"ab"_s << 19;
    QTest::newRow("characters of several letters") << u"क्षत्र"_s << u"क्ष"_s << 119;
    QTest::newRow("flags behind a pictograph") << u"😀🇰🇷"_s << u"😀"_s << 119;
    QTest::newRow("characters are counted, not units") << u"e\u0301a"_s << u"e\u0301"_s << 119;
}

void CompletionRankingTest::scores()
{
    QFETCH(QString, text);
    QFETCH(QString, prefix);
    QTEST(relevanceScore(text, prefix), "score");
}

void CompletionRankingTest::snippetsExpandToTheirDefaults_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("expanded");
    QTest::newRow("no placeholder") << u"break"_s << u"break"_s;
    QTest::newRow("the caret's place") << u"print(\"${0}\")"_s << u"print(\"\")"_s;
    QTest::newRow("defaults") << u"for ${1:item} in ${2:collection} {\n    ${0}\n}"_s
                              << u"for item in collection {\n    \n}"_s;
    QTest::newRow("a default at the caret's place") << u"${0:return}"_s << u"return"_s;
    QTest::newRow("an empty default") << u"a${12:}b"_s << u"ab"_s;
    QTest::newRow("no number") << u"${name}"_s << u"${name}"_s;
}

void CompletionRankingTest::snippetsExpandToTheirDefaults()
{
    QFETCH(QString, body);
    QTEST(expandedSnippet(body), "expanded");
}

void CompletionRankingTest::everyBadgeIsItsOwn()
{
    using Type = CompletionType;
    QCOMPARE(badgeOf(Type::keyword), (CompletionBadge{u"k"_s, SystemColor::purple}));
    QCOMPARE(badgeOf(Type::function), (CompletionBadge{u"f"_s, SystemColor::blue}));
    QCOMPARE(badgeOf(Type::variable), (CompletionBadge{u"v"_s, SystemColor::orange}));
    QCOMPARE(badgeOf(Type::type), (CompletionBadge{u"T"_s, SystemColor::cyan}));
    QCOMPARE(badgeOf(Type::snippet), (CompletionBadge{u"S"_s, SystemColor::green}));
    QCOMPARE(badgeOf(Type::property), (CompletionBadge{u"p"_s, SystemColor::yellow}));
    QCOMPARE(badgeOf(Type::method), (CompletionBadge{u"m"_s, SystemColor::blue}));
}

const kelm::test::Registered<CompletionRankingTest> registered;

} // namespace completion_ranking_test

#include "completion_ranking_test.moc"
