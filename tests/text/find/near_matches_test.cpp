#include "support/random_text.h"
#include "support/test_program.h"
#include "text/find/near_matches.h"

#include <QtTest>

namespace near_matches_test {

using namespace kelm;

using Case = LiteralSearch::Case;
using Words = LiteralSearch::Words;

class NearMatchesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theyAreThoseOfASearchFromTheStart();
    void piecesOfTheTextMakeNoDifference();
    void whatIsFarIsNotLookedFor();
    void placesWithoutAGapHaveNoRestart();
};

namespace {

QString overlapping(test::RandomText& random, qsizetype longest)
{
    static const QStringList pieces{QStringLiteral("a"), QStringLiteral("aa"), QStringLiteral("ab"),
                                    QStringLiteral("b"), QStringLiteral(" "),  QStringLiteral("\U00010400")};
    QString text;
    for (qsizetype count = random.below(longest + 1); count > 0; --count) {
        text += pieces[random.below(pieces.size())];
    }
    return text;
}

LiteralSearch randomSearch(test::RandomText& random)
{
    static const QStringList wanted{QStringLiteral("a"),   QStringLiteral("aa"), QStringLiteral("aba"),
                                    QStringLiteral("bab"), QStringLiteral("ab"), QStringLiteral("\U00010400")};
    return {wanted[random.below(wanted.size())], random.below(2) == 0 ? Case::matters : Case::isIgnored,
            random.below(2) == 0 ? Words::partsToo : Words::wholeOnly};
}

/// The matches one after the other, in a text in one piece.
std::vector<TextRange> chain(const LiteralSearch& wanted, QStringView text, TextRange within)
{
    std::vector<TextRange> all;
    qsizetype from = within.location;
    while (const auto match = wanted.find(text, TextRange::between(from, within.end()))) {
        all.push_back(*match);
        from = match->end();
    }
    return all;
}

} // namespace

void NearMatchesTest::theyAreThoseOfASearchFromTheStart()
{
    test::RandomText random;
    for (int round = 0; round < 3000; ++round) {
        const LiteralSearch wanted = randomSearch(random);
        const QString flat = overlapping(random, 60);
        const TextTree text(flat);
        const std::vector<TextRange> all = chain(wanted, flat, {0, flat.size()});
        const qsizetype offset = random.below(flat.size() + 1);
        const auto restart = wanted.restartBefore(text, offset, 1000);
        QVERIFY(restart && *restart <= offset);
        std::optional<TextRange> next;
        std::optional<TextRange> previous;
        for (const TextRange match : all) {
            QVERIFY(match.location >= *restart || match.end() <= *restart);
            if (match.location >= offset && !next) {
                next = match;
            }
            if (match.end() <= offset) {
                previous = match;
            }
        }
        QCOMPARE(nextNear(wanted, text, offset), next);
        QCOMPARE(previousNear(wanted, text, offset), previous);
    }
}

void NearMatchesTest::piecesOfTheTextMakeNoDifference()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        const LiteralSearch wanted = randomSearch(random);
        // Many edits, so that pieces end everywhere, also within matches and between surrogates.
        TextTree text(overlapping(random, 20'000));
        for (int edit = 0; edit < 20; ++edit) {
            const TextTree part = text.part(random.range(text.length()));
            text.replace({random.below(text.length()), 0}, TextTree(overlapping(random, 5000)));
            text.replace({random.below(text.length()), 0}, part);
        }
        const QString flat = text.toString();
        const qsizetype start = random.below(flat.size() / 10);
        const TextRange within = TextRange::between(start, flat.size() - random.below(flat.size() / 10));
        std::vector<TextRange> found;
        QVERIFY(wanted.enumerate(text, within, [&found](TextRange match) {
            found.push_back(match);
            return true;
        }));
        QCOMPARE(found, chain(wanted, flat, within));
    }
}

void NearMatchesTest::whatIsFarIsNotLookedFor()
{
    const QString far(2'000'000, u'x');
    const TextTree text(QStringLiteral("ab") + far + QStringLiteral("ab") + far + QStringLiteral("ab"));
    const LiteralSearch wanted(u"ab", Case::matters, Words::partsToo);
    QCOMPARE(nextNear(wanted, text, 1'990'000), (TextRange{2'000'002, 2}));
    QCOMPARE(nextNear(wanted, text, 1000), std::nullopt);
    QCOMPARE(previousNear(wanted, text, 2'010'000), (TextRange{2'000'002, 2}));
    QCOMPARE(previousNear(wanted, text, 3'000'000), std::nullopt);
    QCOMPARE(previousNear(wanted, text, 1000), (TextRange{0, 2}));
    QCOMPARE(matchesNear(wanted, text, {2'000'000, 100}), (std::vector<TextRange>{{2'000'002, 2}}));
    // Of a range as long as the text its start.
    QCOMPARE(matchesNear(wanted, text, {0, text.length()}), (std::vector<TextRange>{{0, 2}}));
}

void NearMatchesTest::placesWithoutAGapHaveNoRestart()
{
    const TextTree text(QString(1'000'000, u'a') + u' ' + QString(100, u'a'));
    const LiteralSearch wanted(u"aa", Case::matters, Words::partsToo);
    QCOMPARE(wanted.restartBefore(text, 900'000, 10'000), std::nullopt);
    QCOMPARE(wanted.restartBefore(text, 5000, 10'000), 0);
    QCOMPARE(wanted.restartBefore(text, 1'000'050, 10'000), 1'000'001);
    QCOMPARE(wanted.restartBefore(text, 1'000'000, 10'000'000), 1'000'000);
}

const kelm::test::Registered<NearMatchesTest> registered;

} // namespace near_matches_test

#include "near_matches_test.moc"
