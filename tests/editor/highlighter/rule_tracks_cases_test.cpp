#include "editor/highlighter/rule_texts.h"
#include "editor/highlighter/tracked_text.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QDir>
#include <QtTest>

#include <atomic>
#include <thread>

namespace rule_tracks_cases_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using kelm::test::TrackedText;

namespace {

// The sanitizers slow every access down and look for other defects.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr qsizetype longComment = 100'000;
constexpr qsizetype trap = 5'000;
#else
constexpr qsizetype longComment = 1'000'000;
constexpr qsizetype trap = 20'000;
#endif

/// KELM_TEST_TRAP asks for longer traps.
qsizetype trapLength()
{
    bool given = false;
    const int length = qEnvironmentVariable("KELM_TEST_TRAP").toInt(&given);
    return given ? length : trap;
}

} // namespace

class RuleTracksCasesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOpenerThatIsTypedAndTakenBackChangesWhatFollows_data()
    {
        QTest::addColumn<QString>("opener");
        for (const QString& opener : {u"\""_s, u"\"\"\""_s, u"'"_s, u"'''"_s, u"#"_s, u"\\"_s}) {
            QTest::newRow(qPrintable(opener)) << opener;
        }
    }
    void anOpenerThatIsTypedAndTakenBackChangesWhatFollows()
    {
        QFETCH(QString, opener);
        TrackedText tracked(rules::python, test::longSource(QStringLiteral(KELM_TEST_DATA), 100'000));
        tracked.settle();
        for (const qsizetype place : {qsizetype(0), tracked.text.size() / 2, tracked.text.size()}) {
            const std::vector<ColorRun> before = tracked.expected();
            tracked.replace({place, 0}, opener);
            tracked.settle();
            QCOMPARE(tracked.fault(random_), QString());
            tracked.replace({place, opener.size()}, {});
            tracked.settle();
            QCOMPARE(tracked.fault(random_), QString());
            QCOMPARE(tracked.expected(), before);
        }
    }

    void anEditReachesAsFarAsItsEffect_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("replaced");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<QString>("behind");
        const QString marks(100, QChar(0x301));
        const QString blanks(100, u' ');
        QTest::newRow("a letter joins a word over marks") << 1 << u"."_s << u" "_s << u"a"_s << marks + u"if x"_s;
        QTest::newRow("a letter goes from before marks") << 1 << u"."_s << u"a"_s << u""_s << marks + u"if x"_s;
        QTest::newRow("half a character goes") << 1 << u"a"_s << u"\xdb40"_s << u""_s << u"\xdd01"_s + marks + u"if"_s;
        QTest::newRow("a name behind marks") << 4 << u"."_s << u" "_s << u"a"_s << marks + u"abc="_s;
        QTest::newRow("a name behind marks and a letter beyond the basic plane")
            << 4 << u"."_s << u" "_s << u"\U0001d4b3"_s << marks + u"abc="_s;
        QTest::newRow("a call behind marks") << 0 << u"."_s << u"a"_s << u""_s << marks + u"abc("_s;
        QTest::newRow("a colon makes a key") << 3 << u"\"b\", \"a\""_s + blanks << u","_s << u":"_s << u" \"c\""_s;
        QTest::newRow("a bracket makes a call")
            << 0 << u"x = "_s + QString(100, u'f') + blanks << u"."_s << u"("_s << u"1"_s;
        QTest::newRow("a brace makes a selector") << 5 << u"; .a"_s + blanks << u"."_s << u"{"_s << u"b"_s;
        QTest::newRow("a point makes an item") << 6 << u"a\n"_s + blanks + u"1"_s << u"a"_s << u"."_s << u" b"_s;
    }
    void anEditReachesAsFarAsItsEffect()
    {
        // Farther than the margin that safe places allow for.
        QFETCH(int, index);
        QFETCH(QString, before);
        QFETCH(QString, replaced);
        QFETCH(QString, replacement);
        QFETCH(QString, behind);
        for (const ScanSizes sizes : {ScanSizes{1, 2, 40}, ScanSizes{8, 24, 64}, ScanSizes{}}) {
            TrackedText tracked(test::allRuleLists()[static_cast<std::size_t>(index)].rules, before + replaced + behind,
                                sizes);
            tracked.settle();
            QCOMPARE(tracked.fault(random_), QString());
            const std::vector<ColorRun> colors = tracked.expected();
            tracked.replace({before.size(), replaced.size()}, replacement);
            tracked.settle();
            QCOMPARE(tracked.fault(random_), QString());
            QVERIFY(tracked.expected() != colors);
            tracked.replace({before.size(), replacement.size()}, replaced);
            tracked.settle();
            QCOMPARE(tracked.fault(random_), QString());
        }
    }

    void aCommentOfAMillionUnitsIsOneStretch()
    {
        const QString code = test::longSource(QStringLiteral(KELM_TEST_DATA), 20'000).remove(u"/*"_s).remove(u"*/"_s);
        const QString line = u"a \"comment\" of one line\n"_s;
        const QString inside = line.repeated(longComment / line.size());
        TrackedText tracked(rules::javaScript, code + u"/*"_s + inside + u"*/"_s + code);
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
        QVERIFY(tracked.tracks.keptBytes() < tracked.text.size() / 8);
        const qsizetype middle = code.size() + inside.size() / 2;
        tracked.replace({middle, 0}, u"x"_s);
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
        // Its end in its middle, and taken away again.
        tracked.replace({middle, 0}, u"*/"_s);
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
        tracked.replace({middle, 2}, {});
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
        // Without an end, it begins nothing.
        tracked.replace({tracked.text.lastIndexOf(u"*/"), 2}, {});
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
    }

    void aLongStretchIsMadeGoodInPortions()
    {
        TrackedText tracked(rules::javaScript, u"/*"_s + QString(longComment, u'x') + u"*/ let a = 1"_s);
        int calls = 0;
        for (; !tracked.tracks.isSettled() && calls < 1000; ++calls) {
            tracked.settle(1000);
        }
        // Portions of one attempt grow twofold; all else of this text is found in one window or two for each rule.
        QVERIFY2(calls < 300, qPrintable(QString::number(calls)));
        QCOMPARE(tracked.fault(random_), QString());
    }

    void oneKeyIsLittleWork_data()
    {
        QTest::addColumn<int>("index");
        const std::vector<test::NamedRules>& lists = test::allRuleLists();
        for (std::size_t i = 0; i < lists.size(); ++i) {
            QTest::newRow(lists[i].name) << static_cast<int>(i);
        }
    }
    void oneKeyIsLittleWork()
    {
        // Lines in which nothing stays open for long, whatever the language.
        QFETCH(int, index);
        const QString line = u"let name: {call(12.5, \"text\")}; // words [a](b) **c** _d_ <e f='g'/>\n"_s;
        TrackedText tracked(test::allRuleLists()[static_cast<std::size_t>(index)].rules,
                            line.repeated(500'000 / line.size()));
        tracked.settle();
        QVERIFY(tracked.tracks.keptBytes() > 0);
        QVERIFY(tracked.tracks.keptBytes() < tracked.text.size() / 10);
        for (const qsizetype place : {qsizetype(3), tracked.text.size() / 2, tracked.text.size()}) {
            tracked.replace({place, 0}, u"x"_s);
            QVERIFY(!tracked.tracks.isSettled());
            qsizetype told = 0;
            for (const TextRange range : tracked.tracks.settle(tracked.tree, 200'000)) {
                told += range.length;
            }
            QVERIFY(tracked.tracks.isSettled());
            QVERIFY2(told < 20'000, qPrintable(QString::number(told)));
        }
        QVERIFY(tracked.colorsIn({0, tracked.text.size()}) == tracked.expected());
    }

    void whatHasBeenSettledIsKept()
    {
        TrackedText tracked(rules::python, test::longSource(QStringLiteral(KELM_TEST_DATA), 300'000));
        const std::atomic<bool> stop = true;
        QVERIFY(tracked.tracks.settle(tracked.tree, RuleTracks::unlimited, &stop).empty());
        QVERIFY(!tracked.tracks.isSettled());
        int calls = 0;
        for (; !tracked.tracks.isSettled() && calls < 1000; ++calls) {
            tracked.settle(500'000);
            // An edit in what has been settled, and one in what has not.
            if (calls < 3) {
                tracked.replace({10, 0}, u"\"\"\""_s);
                tracked.replace({tracked.text.size() - 10, 3}, u"# "_s);
            }
        }
        // All rules together look at some three million units, and at some of them again after the edits.
        QVERIFY2(calls > 4 && calls < 20, qPrintable(QString::number(calls)));
        QCOMPARE(tracked.fault(random_), QString());
    }

    void aCopySettlesOnItsOwn()
    {
        TrackedText tracked(rules::swift, test::longSource(QStringLiteral(KELM_TEST_DATA), 50'000));
        RuleTracks copy = tracked.tracks;
        const TextTree snapshot = tracked.tree;
        std::thread worker([&copy, &snapshot] { copy.settle(snapshot); });
        tracked.replace({0, 0}, u"/*"_s);
        worker.join();
        QVERIFY(copy.isSettled());
        QVERIFY(!tracked.tracks.isSettled());
        copy.textReplaced({0, 0}, 2);
        tracked.tracks = copy;
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
    }

    void aGuessCoversItsRange()
    {
        TrackedText tracked(rules::python, test::longSource(QStringLiteral(KELM_TEST_DATA), 200'000));
        for (int round = 0; round < 50; ++round) {
            const TextRange range{random_.below(tracked.text.size()), 1 + random_.below(9000)};
            qsizetype at = range.location;
            QRgb before = 0;
            for (const ColorRun& run : tracked.colorsIn(range)) {
                QCOMPARE(run.range.location, at);
                QVERIFY(!run.range.isEmpty() && run.color != before);
                before = run.color;
                at = run.range.end();
            }
            QCOMPARE(at, std::min(range.end(), tracked.text.size()));
        }
        // At the start there is nothing to guess.
        QVERIFY(tracked.colorsIn({0, 3000}) == test::cut(tracked.expected(), {0, 3000}));
    }

    void aPatternWithoutAScannerIsMatchedOverAll()
    {
        const RuleEntry entries[] = {{uR"(b.*?d)", &EditorTheme::stringColor},
                                     {uR"((broken)", &EditorTheme::stringColor},
                                     {uR"(\b\d+\.?\d*\b)", &EditorTheme::numberColor}};
        TrackedText tracked(entries, u"a b c d 12 b\nb 3 d"_s);
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
        QVERIFY(tracked.expected().size() > 4);
        for (int edits = 0; edits < 100; ++edits) {
            const QString pieces[] = {u"b"_s, u"d"_s, u"1"_s, u"\n"_s, u" "_s, {}};
            for (qsizetype places = 1 + random_.below(3); places > 0; --places) {
                tracked.replace(random_.range(tracked.text.size()), pieces[random_.below(std::size(pieces))]);
            }
            tracked.settle();
            QCOMPARE(tracked.fault(random_), QString());
        }
    }

    void anEmptyTextHasNoColours()
    {
        TrackedText tracked(rules::swift, QString());
        QVERIFY(tracked.tracks.isSettled());
        QVERIFY(tracked.colorsIn({0, 10}).empty());
        tracked.replace({0, 0}, u"let a = 1"_s);
        QVERIFY(!tracked.tracks.isSettled());
        tracked.settle();
        QCOMPARE(tracked.fault(random_), QString());
        tracked.replace({0, 9}, {});
        tracked.settle();
        QVERIFY(tracked.tracks.isSettled());
        QVERIFY(tracked.colorsIn({0, 10}).empty());
    }

    void noTextIsATrap_data()
    {
        QTest::addColumn<QString>("piece");
        for (const char16_t* piece :
             {u"\"",     u"'",       u"`",    u"\\",     u"\"\\",   u"/*",     u"/",    u"*",   u"**", u"*a",
              u"**a",    u"_",       u"__a",  u"<!--",   u"<",      u"[",      u"[a](", u"[a",  u"(",  u"${",
              u"1$",     u"# ",      u"r#\"", u"7",      u"7.",     u":",      u": ",   u":\"", u"\n", u"\r\n",
              u"- ",     u"\n ",     u"1.",   u"a ",     u"a",      u"a-",     u"def ", u"@",   u"=",  u"{",
              u"\u0301", u"a\u0301", u"한",   u"\xd83d", u"\xde00", u"\u0663", u" ",    u"!"}) {
            QTest::newRow(qPrintable(test::shown(QStringView(piece)))) << QString::fromUtf16(piece);
        }
        QTest::newRow("quotes far from each other") << u"\"                    "_s;
        QTest::newRow("names far from each other") << u"a                    "_s;
    }
    void noTextIsATrap()
    {
        // A quadratic scan of a long trap takes minutes, and a test program has two.
        QFETCH(QString, piece);
        for (const test::NamedRules& list : test::allRuleLists()) {
            TrackedText tracked(list.rules, piece.repeated(trapLength() / piece.size()));
            tracked.settle();
            tracked.replace({tracked.text.size() / 2, 0}, u"x"_s);
            tracked.settle();
            QVERIFY2(tracked.colorsIn({0, tracked.text.size()}) == tracked.expected(), list.name);
        }
    }

private:
    test::RandomText random_;
};

const kelm::test::Registered<RuleTracksCasesTest> registered;

} // namespace rule_tracks_cases_test

#include "rule_tracks_cases_test.moc"
