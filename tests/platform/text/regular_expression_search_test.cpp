#include "platform/text/regular_expression_search.h"
#include "support/test_program.h"

#include <QtTest>

#include <random>
#include <thread>

namespace regular_expression_search_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

using Ending = RegularExpression::Ending;

namespace {

RegularExpression compiled(QStringView pattern, RegularExpression::Options options = RegularExpression::none)
{
    return RegularExpression::compile(pattern, options).value();
}

PiecedText pieced(const QString& text)
{
    return {text.size(), [text](qsizetype from, qsizetype count) {
                // Nothing outside the text is asked for.
                return from >= 0 && count >= 0 && from + count <= text.size() ? text.sliced(from, count) : QString();
            }};
}

class Random
{
public:
    explicit Random(uint seed) : random_(seed) { qInfo("seed %u", seed); }

    qsizetype below(qsizetype bound) { return std::uniform_int_distribution<qsizetype>(0, bound - 1)(random_); }

    /// Letters, line ends, marks, Korean, pairs and halves of pairs.
    QString text(qsizetype length)
    {
        static const QStringList pieces{u"a"_s,
                                        u"b"_s,
                                        u" "_s,
                                        u"word"_s,
                                        u"\n"_s,
                                        u"\r\n"_s,
                                        u"\t"_s,
                                        u"한"_s,
                                        u"e\u0301"_s,
                                        u"😀"_s,
                                        u"👩‍👩‍👧"_s,
                                        u"W"_s,
                                        u"ß"_s,
                                        QString(QChar(0)),
                                        u"foo_bar("_s,
                                        QString(QChar(0xd83d)),
                                        QString(QChar(0xde00))};
        QString made;
        while (made.size() < length) {
            made += pieces[below(pieces.size())];
        }
        return made;
    }

private:
    std::mt19937 random_;
};

QStringList all(RegularExpressionSearch& search)
{
    QStringList found;
    while (const RegularExpressionMatch* match = search.next()) {
        QString groups;
        for (qsizetype group = 0; group <= match->groupCount(); ++group) {
            const auto range = match->group(group);
            groups += range ? QStringLiteral("%1+%2 ").arg(range->location).arg(range->length) : u"- "_s;
        }
        found += groups;
    }
    return found;
}

} // namespace

class RegularExpressionSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void piecesMatchAsTheWholeDoes()
    {
        bool given = false;
        const uint seed = qEnvironmentVariable("KELM_TEST_SEED").toUInt(&given);
        Random random(given ? seed : std::random_device()());
        const QStringList patterns{u"a"_s,        u"word"_s,    u"\\w+"_s,         u"^.*$"_s,      u"(\\s)\\1"_s,
                                   u"\\b\\w"_s,   u"x*"_s,      u"(?<=한)."_s,     u"😀|👩"_s,       u".\\n?."_s,
                                   u"[^\\n]+$"_s, u"\\X"_s,     u"(?<!a)b(?=.)"_s, u"e\\u0301"_s,  u"\\p{So}+"_s,
                                   u"(a)|(b)"_s,  u"ZEBRA|W"_s, u"foo_bar\\("_s,   u"[\\ud83d]"_s, u"(?s)a.{3000}b"_s};
        for (int round = 0; round < 60; ++round) {
            const QString text = random.text(random.below(120'000));
            RegularExpression::Options options = RegularExpression::anchorsMatchLines;
            options.setFlag(RegularExpression::caseInsensitive, random.below(2) == 0);
            const RegularExpression expression = compiled(patterns[round % patterns.size()], options);
            const qsizetype from = random.below(2) == 0 ? 0 : random.below(text.size() + 1);
            if (from > 0 && from < text.size() && text[from].isLowSurrogate() && text[from - 1].isHighSurrogate()) {
                continue;
            }
            RegularExpressionSearch whole(expression, text, from);
            RegularExpressionSearch pieces(expression, pieced(text), from);
            const QStringList expected = all(whole);
            QCOMPARE(all(pieces), expected);
            QCOMPARE(whole.ending(), Ending::complete);
            QCOMPARE(pieces.ending(), Ending::complete);
        }
    }

    void theEmptyTextHasItsMatch()
    {
        RegularExpressionSearch search(compiled(u"x*"), pieced(QString()));
        QCOMPARE(all(search), QStringList{u"0+0 "_s});
        QVERIFY(search.next() == nullptr);
    }

    void itEndsWhenOneHasHadEnough()
    {
        const QString text(100'000, u'b');
        for (const bool isPieced : {false, true}) {
            const RegularExpression expression = compiled(u"[ab]c");
            const auto made = isPieced ? std::make_unique<RegularExpressionSearch>(expression, pieced(text))
                                       : std::make_unique<RegularExpressionSearch>(expression, text);
            RegularExpressionSearch& search = *made;
            int places = 0;
            search.setInterruption([&places](int work, qsizetype) { return (places += work) >= 500; });
            QVERIFY(search.next() == nullptr);
            QCOMPARE(search.ending(), Ending::stopped);
            QCOMPARE(places, 500);
            QVERIFY(search.reached() >= 200 && search.reached() <= 500);
        }
        // Also at a place where the pattern goes back for ever.
        RegularExpressionSearch slow(compiled(u"(b|bb)+x"), text);
        slow.setInterruption([](int, qsizetype) { return true; });
        QVERIFY(slow.next() == nullptr);
        QCOMPARE(slow.ending(), Ending::stopped);
    }

    void theEffortIsForEachStretch()
    {
        // Each line costs some steps and none of them many; all together they are more than one search may take.
        const QString text = (QString(12, u'a') + u"!\n"_s).repeated(300);
        RegularExpression expression = compiled(u"(a|a)+b");
        expression.setEffort({40, 64'000'000});
        RegularExpressionSearch once(expression, text);
        QVERIFY(once.next() == nullptr);
        QCOMPARE(once.ending(), Ending::gaveUp);
        RegularExpressionSearch renewed(expression, text);
        renewed.renewEffortEach(14);
        QVERIFY(renewed.next() == nullptr);
        QCOMPARE(renewed.ending(), Ending::complete);
        const QString longLine = QString(40, u'a') + u'!';
        RegularExpressionSearch tooLong(expression, longLine);
        tooLong.renewEffortEach(14);
        QVERIFY(tooLong.next() == nullptr);
        QCOMPARE(tooLong.ending(), Ending::gaveUp);
    }

    void itGoesFromThreadToThread()
    {
        const QString text = u"ab "_s.repeated(1000);
        RegularExpressionSearch search(compiled(u"ab"), pieced(text));
        for (int count = 0; count < 1000; ++count) {
            const RegularExpressionMatch* match = nullptr;
            std::thread([&] { match = search.next(); }).join();
            QVERIFY(match != nullptr);
            QCOMPARE(match->location(), 3 * count);
        }
        QVERIFY(search.next() == nullptr);
    }
};

const kelm::test::Registered<RegularExpressionSearchTest> registered;

} // namespace regular_expression_search_test

#include "regular_expression_search_test.moc"
