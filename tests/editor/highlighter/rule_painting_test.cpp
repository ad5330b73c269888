#include "editor/highlighter/painted_text.h"
#include "editor/highlighter/rule_painting.h"
#include "editor/highlighter/unit_search.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace rule_painting_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QRgb plain = 0xff101010;
constexpr QRgb red = 0xffff0000;
constexpr QRgb green = 0xff00ff00;

HighlightRule rule(const QString& pattern, QRgb color, RegularExpression::Options options = RegularExpression::none)
{
    return {pattern, QColor::fromRgba(color), options};
}

} // namespace

class RulePaintingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutARuleAllIsPlain()
    {
        QCOMPARE(paintRules(u"abc", plain, {}), (std::vector<ColorRun>{{{0, 3}, plain}}));
        QCOMPARE(paintRules(u"", plain, {}), std::vector<ColorRun>());
    }

    void aLaterRulePaintsOver()
    {
        const HighlightRule rules[] = {rule(u"b+"_s, red), rule(u"bc"_s, green)};
        QCOMPARE(paintRules(u"abbcd", plain, rules),
                 (std::vector<ColorRun>{{{0, 1}, plain}, {{1, 1}, red}, {{2, 2}, green}, {{4, 1}, plain}}));
    }

    void aPatternThatDoesNotCompileIsLeftOut()
    {
        const HighlightRule rules[] = {rule(u"a"_s, red), rule(u"(b"_s, green), rule(u"[b"_s, green),
                                       rule(u"c"_s, green)};
        QCOMPARE(paintRules(u"abc", plain, rules),
                 (std::vector<ColorRun>{{{0, 1}, red}, {{1, 1}, plain}, {{2, 1}, green}}));
    }

    void anyPatternWorksWithItsOptions()
    {
        const HighlightRule once[] = {rule(u"//.*$"_s, red)};
        QCOMPARE(paintRules(u"//a\n//b", plain, once), (std::vector<ColorRun>{{{0, 4}, plain}, {{4, 3}, red}}));
        const HighlightRule everyLine[] = {rule(u"//.*$"_s, red, RegularExpression::anchorsMatchLines)};
        QCOMPARE(paintRules(u"//a\n//b", plain, everyLine),
                 (std::vector<ColorRun>{{{0, 3}, red}, {{3, 1}, plain}, {{4, 3}, red}}));
    }

    void theWholeMatchIsPaintedAndNoGroup()
    {
        const HighlightRule rules[] = {rule(u"x(y)z"_s, red)};
        QCOMPARE(paintRules(u"xyz", plain, rules), (std::vector<ColorRun>{{{0, 3}, red}}));
    }

    void neighboursOfOneColourAreOneRun()
    {
        const HighlightRule rules[] = {rule(u"a"_s, red), rule(u"b"_s, red), rule(u"c"_s, plain)};
        QCOMPARE(paintRules(u"abc", plain, rules), (std::vector<ColorRun>{{{0, 2}, red}, {{2, 1}, plain}}));
    }

    void emptyMatchesPaintNothing()
    {
        const HighlightRule rules[] = {rule(u"x*"_s, red)};
        QCOMPARE(paintRules(u"ab", plain, rules), (std::vector<ColorRun>{{{0, 2}, plain}}));
    }

    void coatsComeOutAsRuns()
    {
        std::vector<QRgb> colors;
        for (QRgb i = 0; i < 256; ++i) {
            colors.push_back(0xff000000 | (i / 2));
        }
        for (int round = 0; round < 500; ++round) {
            const qsizetype length = random_.below(200);
            std::vector<quint8> model(static_cast<std::size_t>(length), 0);
            PaintedText painted(length);
            for (qsizetype strokes = random_.below(20); strokes > 0; --strokes) {
                const TextRange range = random_.range(length);
                const auto coat = static_cast<quint8>(random_.below(256));
                painted.paint(range.location, range.end(), coat);
                std::fill_n(model.begin() + range.location, range.length, coat);
            }
            qsizetype at = 0;
            QRgb before = 0;
            for (const ColorRun& run : painted.runs(colors)) {
                QCOMPARE(run.range.location, at);
                QVERIFY(!run.range.isEmpty());
                QVERIFY(run.color != before);
                before = run.color;
                for (; at < run.range.end(); ++at) {
                    QCOMPARE(run.color, colors[model[static_cast<std::size_t>(at)]]);
                }
            }
            QCOMPARE(at, length);
        }
    }

    void theNextUnitIsFoundWhereverItStands()
    {
        for (qsizetype length = 0; length < 70; ++length) {
            for (qsizetype from = 0; from <= length; ++from) {
                for (qsizetype at = 0; at <= length; ++at) {
                    std::u16string text(static_cast<std::size_t>(length), u'\u0178');
                    if (at < length) {
                        text[static_cast<std::size_t>(at)] = u'x';
                    }
                    const qsizetype found = findUnit(text.data(), from, length, [](char16_t c) { return c == u'x'; });
                    QCOMPARE(found, at >= from ? at : length);
                }
            }
        }
    }

private:
    test::RandomText random_;
};

const kelm::test::Registered<RulePaintingTest> registered;

} // namespace rule_painting_test

#include "rule_painting_test.moc"
