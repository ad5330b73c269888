#include "editor/highlighter/expected_rules.h"
#include "editor/highlighter/rule_painting.h"
#include "editor/highlighter/syntax_highlighter.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

namespace syntax_highlighter_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Every slot of another colour, so that a wrong slot is seen.
EditorTheme distinctTheme()
{
    EditorTheme theme;
    theme.name = u"Distinct"_s;
    double step = 1;
    for (const EditorTheme::ColorField& field : EditorTheme::colorFields()) {
        theme.*field.member = {step / 20, 1 - step / 20, 0.5, 1};
        step += 1;
    }
    return theme;
}

struct Corpus
{
    const char* family;
    const char* file;
};

constexpr Corpus corpora[] = {
    {"Swift", "swift.swift"}, {"Python", "python.py"}, {"JavaScript", "javascript.js"}, {"JSON", "json.json"},
    {"XML", "xml.xml"},       {"CSS", "css.css"},      {"Markdown", "markdown.md"},     {"Shell", "shell.sh"},
    {"Go", "go.go"},          {"Rust", "rust.rs"},     {"Generic", "generic.c"},
};

QString readCorpus(const char* name)
{
    QFile file(QStringLiteral(KELM_TEST_DATA "/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The family of each language, in the order of the languages.
constexpr const char* familyOfLanguage[] = {
    "Generic", "Swift", "Python", "JavaScript", "JavaScript", "JSON",    "XML",   "XML",     "CSS",     "Markdown",
    "Generic", "Go",    "Rust",   "Generic",    "Generic",    "Generic", "Shell", "Generic", "Generic", "Generic",
};

Language languageOf(const char* family)
{
    for (const Language language : Language::allCases()) {
        if (QLatin1String(familyOfLanguage[language]) == QLatin1String(family)) {
            return language;
        }
    }
    return {};
}

using UnitColors = std::vector<QRgb>;

/// The rules one by one with the regular expression engine, unit by unit.
UnitColors expectedColors(const QString& text, const ExpectedFamily& family, const EditorTheme& theme)
{
    UnitColors colors(static_cast<std::size_t>(text.size()), theme.textColor.toColor().rgba());
    for (const ExpectedRule& rule : family.rules) {
        const auto expression = RegularExpression::compile(rule.pattern, rule.options);
        for (const RegularExpressionMatch& match : expression->matches(text)) {
            for (qsizetype i = match.location(); i < match.end(); ++i) {
                colors[static_cast<std::size_t>(i)] = (theme.*rule.color).toColor().rgba();
            }
        }
    }
    return colors;
}

UnitColors foregroundOf(TextStorage& storage)
{
    UnitColors colors(static_cast<std::size_t>(storage.length()), 0);
    for (const ColorRun& run : storage.colorsIn({0, storage.length()})) {
        for (qsizetype i = run.range.location; i < run.range.end(); ++i) {
            colors[static_cast<std::size_t>(i)] = run.color;
        }
    }
    return colors;
}

UnitColors highlighted(const QString& text, Language language, const EditorTheme& theme = distinctTheme())
{
    TextStorage storage;
    storage.setText(text);
    SyntaxHighlighter highlighter(theme);
    highlighter.highlight(&storage, language);
    return foregroundOf(storage);
}

void compareColors(const QString& text, Language language, const EditorTheme& theme = distinctTheme())
{
    const ExpectedFamily& family = expectedFamily(QLatin1String(familyOfLanguage[language]));
    const UnitColors actual = highlighted(text, language, theme);
    const UnitColors expected = expectedColors(text, family, theme);
    const auto different = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (different.first != actual.end()) {
        const qsizetype at = different.first - actual.begin();
        const QString message = QStringLiteral("%1: unit %2 has another colour, behind \"%3\" and before \"%4\"")
                                    .arg(language.rawValue())
                                    .arg(at)
                                    .arg(text.mid(std::max<qsizetype>(0, at - 30), std::min<qsizetype>(at, 30)))
                                    .arg(text.mid(at, 30));
        QFAIL(qPrintable(message));
    }
}

/// The name of a slot for the one letter of it in a picture of colours.
const EditorTheme::ColorField& slotOf(char letter)
{
    constexpr std::pair<char, const char*> letters[] = {
        {'.', "textColor"},     {'k', "keywordColor"},   {'s', "stringColor"},   {'c', "commentColor"},
        {'n', "numberColor"},   {'t', "typeColor"},      {'f', "functionColor"}, {'v', "variableColor"},
        {'o', "operatorColor"}, {'a', "attributeColor"},
    };
    for (const auto& [known, key] : letters) {
        for (const EditorTheme::ColorField& field : EditorTheme::colorFields()) {
            if (known == letter && field.key == QLatin1String(key)) {
                return field;
            }
        }
    }
    qFatal("no slot '%c'", letter);
}

/// Compares with a picture: one letter for each unit of the text.
void compareWithPicture(const QString& text, Language language, const QByteArray& picture)
{
    QCOMPARE(picture.size(), text.size());
    const EditorTheme theme = distinctTheme();
    const UnitColors colors = highlighted(text, language, theme);
    QByteArray actual;
    for (const QRgb color : colors) {
        for (const char letter : QByteArray(".kscntfvoa")) {
            if ((theme.*slotOf(letter).member).toColor().rgba() == color) {
                actual += letter;
            }
        }
    }
    QCOMPARE(actual, picture);
}

} // namespace

class SyntaxHighlighterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachLanguageIsColouredByTheRulesOfItsFamily_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("file");
        for (const Language language : Language::allCases()) {
            for (const Corpus& corpus : corpora) {
                QTest::addRow("%s over %s", qPrintable(language.rawValue()), corpus.file)
                    << language.rawValue() << QString::fromLatin1(corpus.file);
            }
        }
    }
    void eachLanguageIsColouredByTheRulesOfItsFamily()
    {
        QFETCH(QString, language);
        QFETCH(QString, file);
        const QString text = readCorpus(qPrintable(file));
        QVERIFY(text.size() > 500);
        compareColors(text, *Language::fromRawValue(language));
    }

    void everyRuleIsSeenInTheSourceOfItsFamily_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("rule");
        for (const Corpus& corpus : corpora) {
            const auto count = static_cast<int>(expectedFamily(QLatin1String(corpus.family)).rules.size());
            for (int rule = 0; rule < count; ++rule) {
                QTest::addRow("%s, rule %d", corpus.family, rule + 1)
                    << QString::fromLatin1(corpus.file) << QString::fromLatin1(corpus.family) << rule;
            }
        }
    }
    void everyRuleIsSeenInTheSourceOfItsFamily()
    {
        // The rule matches, and some unit that it painted still shows it at the end.
        QFETCH(QString, file);
        QFETCH(QString, family);
        QFETCH(int, rule);
        const QString text = readCorpus(qPrintable(file));
        const QByteArray familyName = family.toLatin1();
        ExpectedFamily without = expectedFamily(QLatin1String(familyName));
        const ExpectedRule tested = without.rules[static_cast<std::size_t>(rule)];
        QVERIFY(RegularExpression::compile(tested.pattern, tested.options)->matchesIn(text));
        without.rules.erase(without.rules.begin() + rule);
        QVERIFY(highlighted(text, languageOf(familyName)) != expectedColors(text, without, distinctTheme()));
    }

    void randomMixturesOfSourcesHaveTheRightColours_data()
    {
        QTest::addColumn<QString>("family");
        for (const Corpus& corpus : corpora) {
            QTest::newRow(corpus.family) << QString::fromLatin1(corpus.family);
        }
    }
    void randomMixturesOfSourcesHaveTheRightColours()
    {
        QFETCH(QString, family);
        const Language language = languageOf(family.toLatin1());
        for (int round = 0; round < 60; ++round) {
            QString text;
            for (qsizetype piece = random_.below(40); piece >= 0; --piece) {
                const QString& source = sources_[static_cast<std::size_t>(random_.below(std::size(corpora)))];
                const TextRange range = random_.range(source.size());
                text += random_.below(3) == 0 ? random_.text(6)
                                              : source.mid(range.location, std::min<qsizetype>(range.length, 200));
            }
            compareColors(text, language);
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }

    void coloursHaveTheirPictures_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("picture");
        const auto row = [](const char* name, const char* language, const QString& text, const char* picture) {
            QTest::newRow(name) << QString::fromLatin1(language) << text << QByteArray(picture);
        };
        row("a Swift line comment with a quoted word and a keyword", "Swift", u"// a \"b if\" let x\nx"_s,
            "cccccssskksckkkcc..");
        row("a block comment that is never closed", "Swift", u"/* a b\nc"_s, "........");
        row("a block comment that is closed", "Swift", u"/* a */ c"_s, "ccccccc..");
        row("a line comment ends with its line", "Swift", u"a // b\nc"_s, "..cccc..");
        row("a line comment ends with a line of any kind", "Go", u"//a\rb//c\u2028d//e\u0085f//g\r\nh"_s,
            "ccc..ccc..ccc..ccc...");
        row("the words of a def line up to the name", "Python", u"def run(x):"_s, "fffffff....");
        row("the words of a class line up to the name", "Python", u"class Run(x):"_s, "ttttttttt....");
        row("a def line keeps the builtin's neighbours", "Python", u"def print_all(): print"_s,
            "fffffffffffff....fffff");
        row("a TypeScript file gets the JavaScript rules", "TypeScript", u"const f = () => 1"_s, "kkkkk........oo.n");
        row("only keys of JSON take the keyword colour", "JSON", u"{\"a\": [\"b\", \"c\"]}"_s, ".kkk.............");
        row("a C file gets only strings and numbers", "C", u"int a = 12; // \"s\" return 'c'"_s,
            "........nn.....sss........sss");
        row("a bold span is left with its outermost asterisks", "Markdown", u"**x**"_s, "ftttf");
        row("an HTML file gets the XML rules", "HTML", u"<a b=\"c\">"_s, "kk.a.sssk");
    }
    void coloursHaveTheirPictures()
    {
        QFETCH(QString, language);
        QFETCH(QString, text);
        QFETCH(QByteArray, picture);
        compareWithPicture(text, *Language::fromRawValue(language), picture);
    }

    void languagesOfTheGenericRulesHaveNoKeywords_data()
    {
        QTest::addColumn<QString>("language");
        for (const Language language :
             {Language(Language::plainText), Language(Language::yaml), Language(Language::c), Language(Language::cpp),
              Language(Language::java), Language(Language::ruby), Language(Language::php), Language(Language::sql)}) {
            QTest::newRow(qPrintable(language.rawValue())) << language.rawValue();
        }
    }
    void languagesOfTheGenericRulesHaveNoKeywords()
    {
        QFETCH(QString, language);
        QString words;
        for (const ExpectedFamily& family : expectedFamilies()) {
            for (const ExpectedRule& rule : family.rules) {
                if (rule.pattern.contains(u'|') && rule.pattern.startsWith(u"\\b(")) {
                    words += rule.pattern.chopped(3).sliced(3).replace(u'|', u' ') + u'\n';
                }
            }
        }
        QVERIFY(words.size() > 2000);
        const EditorTheme theme = distinctTheme();
        const QRgb plain = theme.textColor.toColor().rgba();
        const UnitColors colors = highlighted(words, *Language::fromRawValue(language), theme);
        QVERIFY(std::all_of(colors.begin(), colors.end(), [plain](QRgb color) { return color == plain; }));
    }

    void anEmptyTextHasNoColour()
    {
        for (const Language language : Language::allCases()) {
            TextStorage storage;
            const QSignalSpy changed(&storage, &TextStorage::attributesChanged);
            const QSignalSpy edited(&storage, &TextStorage::edited);
            SyntaxHighlighter(distinctTheme()).highlight(&storage, language);
            QVERIFY(storage.foreground().runsIn({0, 0}).empty());
            QCOMPARE(edited.count(), 0);
            // One bracket around it is closed again.
            storage.replace({0, 0}, u"a");
            QCOMPARE(edited.count(), 1);
        }
    }

    void withoutAStorageNothingHappens()
    {
        for (const Language language : Language::allCases()) {
            SyntaxHighlighter(distinctTheme()).highlight(nullptr, language);
        }
    }

    void onlyTheForegroundIsTouched()
    {
        const QString text = readCorpus("swift.swift");
        TextStorage storage;
        storage.setText(text);
        storage.setBackground({10, 20}, qRgb(1, 2, 3));
        const auto background = storage.background().runsIn({0, text.size()});
        const quint64 revision = storage.revision();
        const QSignalSpy edited(&storage, &TextStorage::edited);
        const QSignalSpy changed(&storage, &TextStorage::attributesChanged);
        SyntaxHighlighter highlighter(distinctTheme());
        highlighter.highlight(&storage, Language::swift);
        QCOMPARE(storage.text(), text);
        QCOMPARE(storage.revision(), revision);
        QCOMPARE(storage.background().runsIn({0, text.size()}), background);
        QCOMPARE(edited.count(), 0);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().value<TextRange>(), (TextRange{0, text.size()}));
    }

    void whatWasColouredBeforeIsReset()
    {
        TextStorage storage;
        storage.setText(u"let a = 1"_s);
        storage.setForeground({0, 9}, qRgb(9, 9, 9));
        SyntaxHighlighter highlighter(distinctTheme());
        highlighter.highlight(&storage, Language::swift);
        const UnitColors once = foregroundOf(storage);
        QCOMPARE(once, highlighted(storage.text(), Language::swift));
        // And nothing survives a run but the colours: another language knows nothing of the run before.
        highlighter.highlight(&storage, Language::json);
        QCOMPARE(foregroundOf(storage), highlighted(storage.text(), Language::json));
        highlighter.highlight(&storage, Language::swift);
        QCOMPARE(foregroundOf(storage), once);
    }

    void aThemeCountsFromTheNextRunOn()
    {
        const QString text = readCorpus("python.py");
        TextStorage storage;
        storage.setText(text);
        SyntaxHighlighter highlighter(EditorTheme::monokai());
        highlighter.highlight(&storage, Language::python);
        const UnitColors before = foregroundOf(storage);
        QCOMPARE(before, expectedColors(text, expectedFamily("Python"_L1), EditorTheme::monokai()));
        highlighter.theme = EditorTheme::githubLight();
        QCOMPARE(foregroundOf(storage), before);
        highlighter.highlight(&storage, Language::python);
        QCOMPARE(foregroundOf(storage), expectedColors(text, expectedFamily("Python"_L1), EditorTheme::githubLight()));
    }

    void coloursBeyondTheirBoundsAreClamped()
    {
        EditorTheme theme = distinctTheme();
        theme.textColor = {-3, 1.5, 0.25, 7};
        theme.numberColor = {1, 0, 2, -1};
        const UnitColors colors = highlighted(u"a 1"_s, Language::plainText, theme);
        QCOMPARE(colors[0], qRgba(0, 255, 64, 255));
        QCOMPARE(colors[2], qRgba(255, 0, 255, 0));
    }

    void typedTextIsColouredByTheNextRun()
    {
        TextStorage storage;
        storage.setText(u"x = 1"_s);
        SyntaxHighlighter highlighter(distinctTheme());
        for (const char16_t* piece : {u"\"", u" /*", u"*/ ", u"\\", u"\n", u"if(", u"\xd83d", u"\xde00", u"\u0301"}) {
            const qsizetype at = random_.below(storage.length() + 1);
            storage.replace({at, 0}, QStringView(piece));
            highlighter.highlight(&storage, Language::swift);
            QCOMPARE(foregroundOf(storage), highlighted(storage.text(), Language::swift));
        }
    }

    void coloursSeenOfAQuoteThatCameAndWentAreForgotten()
    {
        const QString text = u"let a = `b`\n"_s.repeated(250);
        TextStorage storage;
        storage.setText(text);
        SyntaxHighlighter highlighter(distinctTheme());
        highlighter.highlight(&storage, Language::javascript);
        storage.replace({4, 0}, u"`");
        storage.colorsIn({2000, 100});
        storage.replace({4, 1}, QString());
        highlighter.highlight(&storage, Language::javascript);
        QTRY_VERIFY(highlighter.isSettled());
        QCOMPARE(foregroundOf(storage), highlighted(text, Language::javascript));
    }

    void clearColoursAreColours_data()
    {
        QTest::addColumn<double>("blue");
        // Both come out as one of the two that stand for something else.
        QTest::newRow("clear black") << 0.0;
        QTest::newRow("clear and all but black") << 0.004;
    }

    void clearColoursAreColours()
    {
        QFETCH(double, blue);
        EditorTheme theme = distinctTheme();
        theme.commentColor = {0, 0, blue, 0};
        theme.textColor = theme.commentColor;
        for (const QRgb color : highlighted(u"a /* b */"_s, Language::javascript, theme)) {
            QVERIFY(color != ColorRuns::pending && color != ColorRuns::unshown);
            QCOMPARE(qAlpha(color), 0);
        }
    }

    void coloursThatWereTakenBackAreAskedForAgain()
    {
        // More than is kept, with the end of a comment some way down that begins nowhere yet.
        const QString line = u"let number = 1234567890; if (true) { return number; } // a line\n"_s;
        TextStorage storage;
        storage.setText(line.repeated(100) + u"*/\n"_s + line.repeated(40'000));
        SyntaxHighlighter highlighter(distinctTheme());
        highlighter.highlight(&storage, Language::javascript);
        QTRY_VERIFY(highlighter.isSettled());
        // What is seen there is not asked for again as long as nobody says that it has changed.
        const TextRange seen{1000, 2000};
        storage.colorsIn(seen);
        for (qsizetype at = 10'000; at + 2000 < storage.length(); at += 2000) {
            storage.colorsIn({at, 2000});
        }
        QCOMPARE(storage.foreground().colorAt(seen.location), ColorRuns::Color(ColorRuns::pending));
        QSignalSpy changed(&storage, &TextStorage::attributesChanged);
        storage.replace({0, 0}, u"/*");
        highlighter.highlight(&storage, Language::javascript);
        QVERIFY(highlighter.isSettled());
        const bool isTold = std::any_of(changed.begin(), changed.end(), [seen](const QList<QVariant>& arguments) {
            const auto range = arguments.first().value<TextRange>();
            return range.location <= seen.location && range.end() >= seen.end();
        });
        QVERIFY(isTold);
    }

    void whatIsOnScreenIsMadeRightFirst()
    {
        // A quote at the start makes a string of all of it.
        TextStorage storage;
        storage.setText(u"let a = 1\n"_s.repeated(20'000) + u'`');
        SyntaxHighlighter highlighter(distinctTheme());
        const TextRange shown{100'000, 1000};
        highlighter.setShownRange([shown] { return shown; });
        highlighter.highlight(&storage, Language::javascript);
        QTRY_VERIFY(highlighter.isSettled());
        storage.colorsIn({0, storage.length()});
        storage.replace({0, 0}, u"`");
        highlighter.highlight(&storage, Language::javascript);
        QTRY_VERIFY(highlighter.isSettled());
        const auto isPending = [](const ColorRun& run) { return run.color == ColorRuns::pending; };
        const std::vector<ColorRun> seen = storage.foreground().runsIn(shown);
        QVERIFY(std::none_of(seen.begin(), seen.end(), isPending));
        const std::vector<ColorRun> unseen = storage.foreground().runsIn({150'000, 1000});
        QVERIFY(std::all_of(unseen.begin(), unseen.end(), isPending));
        QCOMPARE(foregroundOf(storage), highlighted(storage.text(), Language::javascript));
    }

    void coloursFollowEditsAsAWholePassWouldGiveThem_data()
    {
        QTest::addColumn<int>("corpus");
        QTest::addColumn<int>("copies");
        for (int corpus = 0; corpus < int(std::size(corpora)); ++corpus) {
            QTest::addRow("%s", corpora[corpus].family) << corpus << 1;
            QTest::addRow("%s, so long that a worker helps", corpora[corpus].family)
                << corpus << int(1 + 400'000 / sources_[std::size_t(corpus)].size());
        }
    }
    void coloursFollowEditsAsAWholePassWouldGiveThem()
    {
        QFETCH(int, corpus);
        QFETCH(int, copies);
        const Language language = languageOf(corpora[corpus].family);
        const EditorTheme theme = distinctTheme();
        QString text = sources_[std::size_t(corpus)].repeated(copies);
        TextStorage storage;
        storage.setText(text);
        SyntaxHighlighter highlighter(theme);
        TextRange shown;
        highlighter.setShownRange([&shown] { return shown; });
        highlighter.highlight(&storage, language);
        static const QStringList typed{u"\""_s, u"'"_s,  u"/*"_s,   u"*/"_s, u"\"\"\""_s, u"<!--"_s, u"-->"_s, u"`"_s,
                                       u"("_s,  u"\n"_s, u"def "_s, u"1"_s,  u"x"_s,      u"\\"_s,   QString()};
        for (int round = 0; round < (copies > 1 ? 15 : 150); ++round) {
            for (qsizetype edits = random_.below(4); edits >= 0; --edits) {
                const TextRange range{random_.below(text.size() + 1), random_.below(3) == 0 ? random_.below(40) : 0};
                const QString& with = typed[random_.below(typed.size())];
                storage.replace(range, with);
                text.replace(range.clampedTo(text.size()).location, range.clampedTo(text.size()).length, with);
                if (random_.below(3) == 0) {
                    // Seen before the pause, and so coloured by what was known then.
                    shown = {random_.below(text.size()), 3000};
                    storage.colorsIn(shown);
                }
            }
            highlighter.highlight(&storage, language);
            if (copies > 1 && random_.below(2) == 0) {
                // The next edits come while the worker still looks at the text before them.
                continue;
            }
            QTRY_VERIFY(highlighter.isSettled());
            const std::vector<ColorRun> expected =
                paintRules(text, theme.textColor.toColor().rgba(), makeRules(rules::of(language), theme));
            QVERIFY(storage.colorsIn({0, text.size()}) == expected);
        }
    }

    void initTestCase()
    {
        for (const Corpus& corpus : corpora) {
            sources_.push_back(readCorpus(corpus.file));
        }
    }

private:
    RandomText random_;
    std::vector<QString> sources_;
};

const kelm::test::Registered<SyntaxHighlighterTest> registered;

} // namespace syntax_highlighter_test

#include "syntax_highlighter_test.moc"
