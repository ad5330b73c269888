#include "editor/highlighter/expected_rules.h"
#include "editor/highlighter/rule_lists.h"
#include "support/test_program.h"

#include <QtTest>

namespace rule_lists_test {

using namespace kelm;
using namespace kelm::test;

namespace {

struct NamedList
{
    const char* name;
    RuleList list;
};

const NamedList lists[] = {
    {"Swift", rules::swift}, {"Python", rules::python}, {"JavaScript", rules::javaScript}, {"JSON", rules::json},
    {"XML", rules::xml},     {"CSS", rules::css},       {"Markdown", rules::markdown},     {"Shell", rules::shell},
    {"Go", rules::go},       {"Rust", rules::rust},     {"Generic", rules::generic},
};

} // namespace

class RuleListsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rulesStandInTheirOrder_data()
    {
        QTest::addColumn<int>("index");
        for (int index = 0; index < static_cast<int>(std::size(lists)); ++index) {
            QTest::newRow(lists[index].name) << index;
        }
    }
    void rulesStandInTheirOrder()
    {
        QFETCH(int, index);
        const ExpectedFamily& expected = expectedFamily(QLatin1String(lists[index].name));
        const RuleList list = lists[index].list;
        QCOMPARE(list.size(), expected.rules.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            QCOMPARE(list[i].patternText(), expected.rules[i].pattern);
            QVERIFY(list[i].color == expected.rules[i].color);
            QCOMPARE(list[i].options, expected.rules[i].options);
        }
    }

    void listsHaveTheirLengths()
    {
        const std::size_t lengths[] = {9, 11, 9, 4, 6, 6, 10, 6, 8, 9, 3};
        for (std::size_t i = 0; i < std::size(lists); ++i) {
            QCOMPARE(lists[i].list.size(), lengths[i]);
        }
    }

    void wordListsHaveTheirLengths()
    {
        const auto words = [](RuleList list) {
            std::vector<qsizetype> counts;
            for (const RuleEntry& rule : list) {
                if (!rule.words.empty()) {
                    counts.push_back(static_cast<qsizetype>(rule.words.size()));
                }
            }
            return counts;
        };
        QCOMPARE(words(rules::swift), (std::vector<qsizetype>{77, 34}));
        QCOMPARE(words(rules::python), (std::vector<qsizetype>{35, 27}));
        QCOMPARE(words(rules::javaScript), (std::vector<qsizetype>{44}));
        QCOMPARE(words(rules::shell), (std::vector<qsizetype>{41}));
        QCOMPARE(words(rules::go), (std::vector<qsizetype>{29, 20}));
        QCOMPARE(words(rules::rust), (std::vector<qsizetype>{38, 24}));
    }

    void everyPatternCompiles()
    {
        for (const NamedList& named : lists) {
            for (const RuleEntry& rule : named.list) {
                QVERIFY2(RegularExpression::compile(rule.patternText(), rule.options), qPrintable(rule.patternText()));
            }
        }
    }

    void madeRulesHaveTheColoursOfTheTheme()
    {
        EditorTheme theme = EditorTheme::dracula();
        theme.stringColor = {2, -1, 0.5, 1};
        const std::vector<HighlightRule> made = makeRules(rules::json, theme);
        QCOMPARE(made.size(), std::size_t(4));
        QCOMPARE(made[0].pattern, rules::json[0].patternText());
        QCOMPARE(made[0].color, theme.keywordColor.toColor());
        QCOMPARE(made[1].color.rgba(), qRgba(255, 0, 128, 255));
        QCOMPARE(made[2].color, theme.numberColor.toColor());
        QCOMPARE(made[3].options, RegularExpression::Options(RegularExpression::none));
        QCOMPARE(makeRules(rules::markdown, theme)[0].options,
                 RegularExpression::Options(RegularExpression::anchorsMatchLines));
    }
};

const kelm::test::Registered<RuleListsTest> registered;

} // namespace rule_lists_test

#include "rule_lists_test.moc"
