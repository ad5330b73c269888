#include "editor/highlighter/character_classes.h"
#include "editor/highlighter/word_boundaries.h"
#include "platform/text/regular_expression.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace word_boundaries_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Where ICU's `\b` matches. It is tried at the beginnings of code points only.
std::vector<qsizetype> engineBoundaries(const QString& text)
{
    std::vector<qsizetype> places;
    for (const RegularExpressionMatch& match : RegularExpression::compile(u"\\b")->matches(text)) {
        places.push_back(match.location());
    }
    return places;
}

std::vector<qsizetype> boundaries(const QString& text)
{
    std::vector<qsizetype> places;
    const WordBoundaries words(text);
    for (qsizetype from = 0; from <= text.size(); ++from) {
        from = words.next(from);
        if (from <= text.size()) {
            places.push_back(from);
        }
    }
    return places;
}

} // namespace

class WordBoundariesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boundariesAreThoseOfTheEngine_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("one letter") << u"a"_s;
        QTest::newRow("one blank") << u" "_s;
        QTest::newRow("words") << u"let x_1 = run(42);"_s;
        QTest::newRow("a mark at the start") << u"\u0301a"_s;
        QTest::newRow("a mark behind a letter") << u"a\u0301 b"_s;
        QTest::newRow("a mark between letters") << u"a\u0301b"_s;
        QTest::newRow("a mark behind a blank") << u"a \u0301b"_s;
        QTest::newRow("nothing but marks") << u"\u0301\u0301\u200d"_s;
        QTest::newRow("a soft hyphen") << u"soft\u00adhyphen \u00ad x"_s;
        QTest::newRow("a byte-order mark") << u"\ufeffx \ufeff"_s;
        QTest::newRow("a joiner at the end of a word") << u"a\u200d b\u200c"_s;
        QTest::newRow("a spacing mark is a word's letter") << u" \u0903 "_s;
        QTest::newRow("Korean, whole and in pieces") << u"한글 \u1112\u1161\u11ab."_s;
        QTest::newRow("emoji") << u"a😀b 👩‍👩‍👧 👍🏽x"_s;
        QTest::newRow("letters beyond the basic plane") << u"𝒳𝒴 𝟎a😀𝒳"_s;
        QTest::newRow("marks beyond the basic plane") << u"a\U000e0101b \U0001d165c"_s;
        QTest::newRow("lone surrogates") << QString(QChar(0xd83d)) + u"a"_s + QString(QChar(0xde00)) + u"b"_s;
        QTest::newRow("connectors") << u"a\u203fb _ \u2040"_s;
        for (int length : {62, 63, 64, 65, 127, 128, 129}) {
            QTest::addRow("%d letters", length) << QString(length, u'a');
            QTest::addRow("%d units with a mark at the end", length) << QString(length - 1, u'a') + u"\u0301 b"_s;
            QTest::addRow("%d units and a pair across the edge", length) << QString(length - 1, u' ') + u"𝒳😀a"_s;
        }
    }
    void boundariesAreThoseOfTheEngine()
    {
        QFETCH(QString, text);
        QCOMPARE(boundaries(text), engineBoundaries(text));
        const WordBoundaries words(text);
        const std::vector<qsizetype> expected = engineBoundaries(text);
        for (qsizetype place = 0; place <= text.size(); ++place) {
            QCOMPARE(words.at(place), std::find(expected.begin(), expected.end(), place) != expected.end());
        }
    }

    void randomTextsHaveTheEnginesBoundaries()
    {
        for (int round = 0; round < 3000; ++round) {
            const QString text = random_.text(round % 10 == 0 ? 120 : 20);
            QCOMPARE(boundaries(text), engineBoundaries(text));
        }
    }

    void wordsAreThePairsOfBoundaries()
    {
        const QString text = u"one é2\u0301, (three)😀𝒳 "_s + QString(200, u'x') + u'.';
        std::vector<qsizetype> places;
        WordBoundaries(text).forEachWord(0, [&](qsizetype start, qsizetype end) {
            places.push_back(start);
            places.push_back(end);
            return true;
        });
        QCOMPARE(places, engineBoundaries(text));
    }

    void classesAreThoseOfTheEngine_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<int>("one");
        QTest::newRow("word") << u"\\w"_s << int(CharacterClasses::word);
        QTest::newRow("digit") << u"\\d"_s << int(CharacterClasses::digit);
        QTest::newRow("space") << u"\\s"_s << int(CharacterClasses::space);
        QTest::newRow("transparent") << u"[\\p{Grapheme_Extend}\\p{Cf}]"_s << int(CharacterClasses::transparent);
    }
    void classesAreThoseOfTheEngine()
    {
        // Every code point, and every surrogate on its own.
        QFETCH(QString, pattern);
        QFETCH(int, one);
        std::vector<char32_t> codePoints;
        QString text;
        QList<qsizetype> places;
        for (char32_t c = 0; c <= 0x10ffff; ++c) {
            if (QChar::isSurrogate(c)) {
                continue;
            }
            places += text.size();
            codePoints.push_back(c);
            text += QChar::fromUcs4(c);
        }
        std::vector<bool> found(static_cast<std::size_t>(text.size()), false);
        RegularExpression::compile(pattern)->enumerateMatches(text, 0, [&](const RegularExpressionMatch& match) {
            found[static_cast<std::size_t>(match.location())] = true;
            return true;
        });
        for (std::size_t i = 0; i < codePoints.size(); ++i) {
            const char32_t c = codePoints[i];
            const bool expected = found[static_cast<std::size_t>(places[static_cast<qsizetype>(i)])];
            const quint8 classes = c < 0x10000 ? CharacterClasses::ofUnicode().ofUnit(static_cast<char16_t>(c))
                                               : CharacterClasses::ofCodePoint(c);
            if (bool(classes & one) != expected) {
                QFAIL(qPrintable(QString::number(c, 16)));
            }
        }
        for (char32_t c = 0xd800; c < 0xe000; ++c) {
            QCOMPARE(int(CharacterClasses::ofUnicode().ofUnit(static_cast<char16_t>(c))), 0);
        }
    }

    void lineEndsAreThoseOfTheEngine()
    {
        const auto any = RegularExpression::compile(u".");
        for (char32_t c = 0; c < 0x10000; ++c) {
            const QString text{QChar(static_cast<char16_t>(c))};
            QCOMPARE(isLineEnd(static_cast<char16_t>(c)), !any->matchesIn(text));
        }
    }

private:
    test::RandomText random_;
};

const kelm::test::Registered<WordBoundariesTest> registered;

} // namespace word_boundaries_test

#include "word_boundaries_test.moc"
