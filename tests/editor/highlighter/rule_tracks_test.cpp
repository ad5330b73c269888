#include "editor/highlighter/rule_painting.h"
#include "editor/highlighter/rule_texts.h"
#include "editor/highlighter/rule_tracks.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QtTest>

namespace rule_tracks_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QRgb plain = 0xff000001;

/// The rules of a list, each with a colour of its own.
std::vector<HighlightRule> rulesOf(RuleList list)
{
    std::vector<HighlightRule> rules;
    for (const RuleEntry& entry : list) {
        rules.push_back({entry.patternText(), QColor::fromRgba(plain + 1 + QRgb(rules.size())), entry.options});
    }
    return rules;
}

std::vector<QRgb> colorsOf(RuleList list)
{
    std::vector<QRgb> colors;
    for (QRgb i = 0; i <= list.size(); ++i) {
        colors.push_back(plain + i);
    }
    return colors;
}

/// One colour a unit.
std::vector<QRgb> unitColors(const std::vector<ColorRun>& runs)
{
    std::vector<QRgb> colors;
    for (const ColorRun& run : runs) {
        colors.insert(colors.end(), static_cast<std::size_t>(run.range.length), run.color);
    }
    return colors;
}

std::vector<ColorRun> cut(const std::vector<ColorRun>& runs, TextRange range)
{
    std::vector<ColorRun> result;
    for (const ColorRun& run : runs) {
        if (const TextRange part = run.range.intersected(range); !part.isEmpty()) {
            result.push_back({part, run.color});
        }
    }
    return result;
}

QString shown(QStringView text)
{
    QString result;
    for (const QChar unit : text) {
        result += unit.unicode() >= 0x20 && unit.unicode() < 0x7f
                      ? QString(unit)
                      : QStringLiteral("\\x%1").arg(unit.unicode(), 4, 16, QLatin1Char('0'));
    }
    return result;
}

/// A text, its tracks, and what is on the screen of it: the colours of the last settled text, where edits have not
/// replaced it.
class Tracked
{
public:
    Tracked(RuleList list, const QString& initial, ScanSizes sizes)
        : text(initial), tree(initial), tracks(list, sizes), rules_(rulesOf(list)), colors_(colorsOf(list))
    {
        tracks.reset(text.size());
        shown_.assign(static_cast<std::size_t>(text.size()), 0);
    }

    void replace(TextRange range, const QString& replacement)
    {
        text.replace(range.location, range.length, replacement);
        tree.replace(range, replacement);
        tracks.textReplaced(range, replacement.size());
        const auto first = shown_.begin() + range.location;
        shown_.insert(shown_.erase(first, first + range.length), static_cast<std::size_t>(replacement.size()), 0);
    }

    void settle(qsizetype mostUnits = RuleTracks::unlimited)
    {
        qsizetype behind = -1;
        for (const TextRange range : tracks.settle(tree, mostUnits)) {
            areRangesInOrder = areRangesInOrder && range.location > behind && range.end() <= text.size();
            behind = range.end();
            std::fill_n(shown_.begin() + range.location, range.length, 0);
        }
    }

    std::vector<ColorRun> colorsIn(TextRange range) const { return tracks.colorsIn(tree, range, colors_); }
    std::vector<ColorRun> expected() const { return paintRules(text, plain, rules_); }

    /// What is wrong of the settled tracks, or nothing.
    QString fault(test::RandomText& random)
    {
        const std::vector<ColorRun> wanted = expected();
        if (!tracks.isSettled() || !areRangesInOrder) {
            return u"not settled, or ranges out of order"_s;
        }
        for (int i = 0; i < 3; ++i) {
            const TextRange range = i == 0 ? TextRange{0, text.size()} : random.range(text.size());
            if (colorsIn(range) != cut(wanted, range)) {
                return u"colours of %1 to %2 of %3 in: %4"_s.arg(range.location)
                    .arg(range.end())
                    .arg(text.size())
                    .arg(shown(QStringView(text).left(3000)));
            }
        }
        const std::vector<QRgb> colors = unitColors(wanted);
        for (std::size_t i = 0; i < colors.size(); ++i) {
            if (shown_[i] != 0 && shown_[i] != colors[i]) {
                return u"%1 has changed and was not told, in: %2"_s.arg(i).arg(shown(QStringView(text).left(3000)));
            }
        }
        shown_ = colors;
        return {};
    }

    QString text;
    TextTree tree;
    RuleTracks tracks;
    bool areRangesInOrder = true;

private:
    std::vector<HighlightRule> rules_;
    std::vector<QRgb> colors_;
    /// 0 where anything may be.
    std::vector<QRgb> shown_;
};

ScanSizes randomSizes(test::RandomText& random)
{
    const ScanSizes sizes[] = {{8, 24, 64}, {1, 2, 40}, {16, 32, 100}, {32, 64, 1000}, {200, 400, 3000}};
    return sizes[random.below(std::size(sizes))];
}

void editAtRandom(Tracked& tracked, test::RandomText& random)
{
    const TextRange range = random.range(tracked.text.size());
    switch (random.below(4)) {
    case 0:
        tracked.replace(range, {});
        break;
    case 1:
        tracked.replace({range.location, 0}, test::rulePiece(random));
        break;
    case 2:
        tracked.replace(range, test::ruleText(random, random.below(20)));
        break;
    default:
        tracked.replace({range.location, std::min<qsizetype>(range.length, 1)}, test::rulePiece(random));
    }
}

/// Edits, whole and partial settling in any order, and what must be right after each settling.
QString faultAfterEdits(Tracked& tracked, test::RandomText& random, int edits)
{
    tracked.settle();
    QString fault = tracked.fault(random);
    while (fault.isEmpty() && edits > 0) {
        for (qsizetype i = random.below(3) == 0 ? 1 + random.below(5) : 1; i > 0; --i, --edits) {
            editAtRandom(tracked, random);
            if (random.below(4) == 0) {
                tracked.settle(1 + random.below(300));
                tracked.colorsIn(random.range(tracked.text.size()));
            }
        }
        if (random.below(3) == 0) {
            for (int calls = 0; !tracked.tracks.isSettled(); ++calls) {
                if (calls > 100'000) {
                    return u"does not get to an end"_s;
                }
                tracked.settle(1 + random.below(200));
            }
        }
        tracked.settle();
        fault = tracked.fault(random);
    }
    return fault;
}

/// How many edits each list of rules is tried with; KELM_TEST_ROUNDS asks for more.
int editCount()
{
    bool given = false;
    const int count = qEnvironmentVariable("KELM_TEST_ROUNDS").toInt(&given);
#if defined(__SANITIZE_ADDRESS__)
    return given ? count : 100;
#else
    return given ? count : 600;
#endif
}

} // namespace

class RuleTracksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editedRandomTextsHaveTheColoursOfAWholePass_data() { addRowForEachList(); }
    void editedRandomTextsHaveTheColoursOfAWholePass()
    {
        QFETCH(int, index);
        for (int edits = editCount(); edits > 0; edits -= 20) {
            const QString text = test::ruleText(random_, random_.below(random_.below(6) == 0 ? 1500 : 200));
            Tracked tracked(test::allRuleLists()[static_cast<std::size_t>(index)].rules, text, randomSizes(random_));
            const QString fault = faultAfterEdits(tracked, random_, 20);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }

private:
    static void addRowForEachList()
    {
        QTest::addColumn<int>("index");
        const std::vector<test::NamedRules>& lists = test::allRuleLists();
        for (std::size_t i = 0; i < lists.size(); ++i) {
            QTest::newRow(lists[i].name) << static_cast<int>(i);
        }
    }

    test::RandomText random_;
};

const kelm::test::Registered<RuleTracksTest> registered;

} // namespace rule_tracks_test

#include "rule_tracks_test.moc"
