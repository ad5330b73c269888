#include "platform/text/grapheme_boundaries.h"
#include "support/script_texts.h"
#include "support/test_program.h"

#include <QThread>
#include <QtTest>

#include <unicode/uchar.h>

#include <algorithm>
#include <map>
#include <memory>
#include <tuple>

namespace grapheme_boundaries_test {

using namespace kelm;

/// A text in stretches of a few units, which end anywhere.
class Shreds final : public UnitSource
{
public:
    Shreds(const QString& text, qsizetype size) : text_(text), size_(size) {}

    qsizetype length() const override { return text_.size(); }
    Stretch stretchAt(qsizetype offset) const override
    {
        const qsizetype start = offset - offset % size_;
        return {start, QStringView(text_).mid(start, size_)};
    }

private:
    const QString& text_;
    qsizetype size_;
};

QString stringOf(char32_t point)
{
    return QString::fromUcs4(&point, 1);
}

/// What is said of all places of a text against ICU's passage through it, one sentence for the first that differs.
template <typename Text>
QString differenceFrom(const QList<qsizetype>& boundaries, const Text& text)
{
    const qsizetype length = boundaries.last();
    for (qsizetype offset = 0; offset <= length; ++offset) {
        const auto behind = std::upper_bound(boundaries.begin(), boundaries.end(), offset);
        const auto from = std::lower_bound(boundaries.begin(), boundaries.end(), offset);
        const std::tuple told{nextGraphemeBoundary(text, offset), previousGraphemeBoundary(text, offset),
                              graphemeBoundaryAtOrBefore(text, offset)};
        const std::tuple right{behind == boundaries.end() ? length : *behind,
                               from == boundaries.begin() ? 0 : *std::prev(from), *std::prev(behind)};
        if (told != right) {
            return QStringLiteral("at %1: next %2 (%3), previous %4 (%5), at or before %6 (%7)")
                .arg(offset)
                .arg(std::get<0>(told))
                .arg(std::get<0>(right))
                .arg(std::get<1>(told))
                .arg(std::get<1>(right))
                .arg(std::get<2>(told))
                .arg(std::get<2>(right));
        }
    }
    return {};
}

QList<qsizetype> walked(QStringView text)
{
    QList<qsizetype> places{0};
    for (GraphemeWalk walk(text); !walk.isAtEnd();) {
        const QStringView character = walk.next();
        places.append(walk.place());
        if (character.isEmpty() || character.constData() != text.constData() + places[places.size() - 2]) {
            return {};
        }
    }
    return places;
}

/// One sentence when anything that is told of a text is not what ICU says of the whole.
QString problemIn(const QString& text)
{
    const QList<qsizetype> boundaries = text.isEmpty() ? QList<qsizetype>{0} : test::characterBoundaries(text);
    QString problem = differenceFrom(boundaries, QStringView(text));
    if (problem.isEmpty() && walked(text) != boundaries) {
        problem = QStringLiteral("the walk goes elsewhere");
    }
    if (problem.isEmpty() && graphemeCount(text) != boundaries.size() - 1) {
        problem = QStringLiteral("counts %1").arg(graphemeCount(text));
    }
    return problem.isEmpty() ? problem : QString::fromLatin1(text.toUtf8().toPercentEncoding()) + u' ' + problem;
}

/// Code points of each kind that the rules tell apart, the first and the last of each.
QList<char32_t> representatives()
{
    using Kind = std::tuple<int, bool, int, bool, bool>;
    std::map<Kind, std::pair<char32_t, char32_t>> kinds;
    for (char32_t point = 0; point <= 0x10ffff; ++point) {
        const auto c = static_cast<UChar32>(point);
        const int indic = u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY);
        const Kind kind{u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK),
                        u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC) != 0,
                        indic == U_INSC_VIRAMA || indic == U_INSC_CONSONANT ? indic : 0, u_getCombiningClass(c) != 0,
                        QChar::isSurrogate(point)};
        kinds.emplace(kind, std::pair(point, point)).first->second.second = point;
    }
    QList<char32_t> found{U'\u0915', U'\u094d', U'\u093c', U'\u200c', U'\U0001f3fd'};
    for (const auto& [kind, points] : kinds) {
        found.append(points.first);
        found.append(points.second);
    }
    return found;
}

/// More text than ICU counts: letters, and around the middle one with many marks. Only what is looked at is there.
class LongText final : public UnitSource
{
public:
    static constexpr qsizetype middle = qsizetype(1) << 30;

    qsizetype length() const override { return middle + 1000; }

    Stretch stretchAt(qsizetype offset) const override
    {
        constexpr qsizetype half = 500;
        if (offset >= middle - half && offset < middle + half) {
            return {middle - half, marked_};
        }
        const qsizetype start = offset < middle ? std::max<qsizetype>(0, offset - half) : middle + half;
        const qsizetype end = offset < middle ? std::min(start + 2 * half, middle - half) : length();
        return {start, QStringView(letters_).first(end - start)};
    }

private:
    const QString letters_ = QString(1000, u'a');
    const QString marked_ = QString(489, u'a') + u'e' + QString(64, QChar(0x301)) + QString(446, u'a');
};

class GraphemeBoundariesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void charactersAreThoseAPersonSees_data();
    void charactersAreThoseAPersonSees();
    void offsetsOutsideTheTextAreItsEnds();
    void anOffsetIsBroughtToABoundary();
    void everyPairOfKindsIsPartedAsIcuPartsIt();
    void triplesOfKindsArePartedAsIcuPartsThem();
    void everyCodePointIsPartedFromItsNeighbours();
    void mixturesOfScriptsArePartedFromAnyOffset();
    void stretchesMayEndAnywhere();
    void flagsPairUpFromTheStartOfTheirRun();
    void aCharacterMayBeLong_data();
    void aCharacterMayBeLong();
    void placesFarIntoATextAreRight();
    void aTextIsCutForItsRoom_data();
    void aTextIsCutForItsRoom();
    void walksMayStandBesideEachOther();
    void threadsAskAtTheSameTime();
};

void GraphemeBoundariesTest::charactersAreThoseAPersonSees_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<qsizetype>>("boundaries");
    using Boundaries = QList<qsizetype>;
    QTest::newRow("nothing") << QString() << Boundaries{0};
    QTest::newRow("CR LF") << QStringLiteral("a\r\nb\n\r") << Boundaries{0, 1, 3, 4, 5, 6};
    QTest::newRow("a mark behind a line end") << QStringLiteral("\n\u0301") << Boundaries{0, 1, 2};
    QTest::newRow("Hindi") << QStringLiteral("क्षत्रिय") << Boundaries{0, 3, 7, 8};
    QTest::newRow("Thai") << QStringLiteral("กำลัง") << Boundaries{0, 2, 4, 5};
    QTest::newRow("Khmer") << QStringLiteral("ខ្មែរ") << Boundaries{0, 2, 4, 5};
    QTest::newRow("Tamil") << QStringLiteral("தமிழ்") << Boundaries{0, 1, 3, 5};
    QTest::newRow("a flag behind a pictograph") << QStringLiteral("😀🇰🇷") << Boundaries{0, 2, 6};
    QTest::newRow("three letters of flags") << QStringLiteral("🇰🇷🇺") << Boundaries{0, 4, 6};
    QTest::newRow("a keycap") << QStringLiteral("1️⃣2") << Boundaries{0, 3, 4};
    QTest::newRow("a heart in colour") << QStringLiteral("❤️x") << Boundaries{0, 2, 3};
    QTest::newRow("a flag of tags") << QStringLiteral("🏴󠁧󠁢󠁥󠁮󠁧󠁿!") << Boundaries{0, 14, 15};
    QTest::newRow("what stands before a digit") << QStringLiteral("\u06001x") << Boundaries{0, 2, 3};
    QTest::newRow("half a pair") << QString(QChar(0xd83d)) + u'a' + QChar(0xde00) << Boundaries{0, 1, 2, 3};
    QTest::newRow("half a pair and a mark") << QString(QChar(0xd83d)) + QChar(0x301) << Boundaries{0, 2};
}

void GraphemeBoundariesTest::charactersAreThoseAPersonSees()
{
    QFETCH(QString, text);
    QFETCH(QList<qsizetype>, boundaries);
    QCOMPARE(walked(text), boundaries);
    QCOMPARE(differenceFrom(boundaries, QStringView(text)), QString());
    QCOMPARE(graphemeCount(text), boundaries.size() - 1);
}

void GraphemeBoundariesTest::offsetsOutsideTheTextAreItsEnds()
{
    const QStringView text = u"e\u0301x";
    QCOMPARE(nextGraphemeBoundary(text, -5), 2);
    QCOMPARE(nextGraphemeBoundary(text, 9), 3);
    QCOMPARE(previousGraphemeBoundary(text, -5), 0);
    QCOMPARE(previousGraphemeBoundary(text, 9), 2);
    QCOMPARE(graphemeBoundaryAtOrBefore(text, -5), 0);
    QCOMPARE(graphemeBoundaryAtOrBefore(text, 9), 3);
    QCOMPARE(nextGraphemeBoundary(QStringView(), 0), 0);
}

void GraphemeBoundariesTest::anOffsetIsBroughtToABoundary()
{
    const QStringView text = u"ae\u0301\u0323x";
    const QList<std::pair<qsizetype, qsizetype>> expected{{0, 0}, {1, 1}, {1, 4}, {1, 4}, {4, 4}, {5, 5}};
    for (qsizetype offset = 0; offset <= text.size(); ++offset) {
        QCOMPARE(graphemeBoundaryAtOrBefore(text, offset), expected[offset].first);
        QCOMPARE(graphemeBoundaryAtOrBehind(text, offset), expected[offset].second);
    }
    QCOMPARE(graphemeBoundaryAtOrBehind(text, 9), 5);
}

void GraphemeBoundariesTest::everyPairOfKindsIsPartedAsIcuPartsIt()
{
    const QList<char32_t> points = representatives();
    QVERIFY(points.size() > 40);
    for (const char32_t first : points) {
        for (const char32_t second : points) {
            const QString pair = stringOf(first) + stringOf(second);
            QCOMPARE(problemIn(pair), QString());
            QCOMPARE(problemIn(u'x' + pair + u'x'), QString());
        }
    }
}

void GraphemeBoundariesTest::triplesOfKindsArePartedAsIcuPartsThem()
{
    QList<char32_t> points = representatives();
    test::Random random;
    for (int round = 0; round < 40'000; ++round) {
        QString text;
        for (qsizetype left = 3 + random.below(2); left > 0; --left) {
            text += stringOf(points[random.below(points.size())]);
        }
        QCOMPARE(problemIn(text), QString());
    }
}

void GraphemeBoundariesTest::everyCodePointIsPartedFromItsNeighbours()
{
    // What surely parts, what surely joins, and what joins only some.
    for (const QStringView neighbour :
         {QStringView(u"a"), QStringView(u"\u0301"), QStringView(u"\u200d"), QStringView(u"क\u094d"),
          QStringView(u"\u1100"), QStringView(u"\u1161"), QStringView(u"\u0600"), QStringView(u"\r"), QStringView(u"🇰"),
          QStringView(u"😀")}) {
        QString text;
        for (char32_t point = 0; point <= 0x1ffff; ++point) {
            text += neighbour;
            text += stringOf(point);
        }
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        QCOMPARE(graphemeCount(text), boundaries.size() - 1);
        QVERIFY(walked(text) == boundaries);
        const QStringView all = text;
        for (qsizetype at = 0, index = 0; at < text.size(); ++index) {
            QCOMPARE(at, boundaries[index]);
            at = nextGraphemeBoundary(all, at);
        }
    }
}

void GraphemeBoundariesTest::mixturesOfScriptsArePartedFromAnyOffset()
{
    test::RandomScripts random;
    for (int round = 0; round < 1500; ++round) {
        QCOMPARE(problemIn(random.text(40)), QString());
    }
}

void GraphemeBoundariesTest::stretchesMayEndAnywhere()
{
    test::RandomScripts random;
    for (int round = 0; round < 400; ++round) {
        const QString text = random.text(30) + u'.';
        const Shreds shreds(text, 1 + random.below(9));
        QCOMPARE(differenceFrom(test::characterBoundaries(text), static_cast<const UnitSource&>(shreds)), QString());
    }
}

void GraphemeBoundariesTest::flagsPairUpFromTheStartOfTheirRun()
{
    for (const QString& before : {QString(), QStringLiteral("x"), QStringLiteral("\u0600"), QStringLiteral("😀\u200d"),
                                  QStringLiteral("\r\n"), QString(QChar(0xd83c))}) {
        for (const qsizetype letters : {31, 32, 33, 63, 64, 65, 66, 67, 127, 130, 131, 1001}) {
            for (const QStringView behind : {u"", u"x", u"\u0301", u"\u200dx"}) {
                QCOMPARE(problemIn(before + QStringLiteral("🇰").repeated(letters) + behind.toString()), QString());
            }
        }
    }
    // From any place of a very long run.
    const QString flags = QStringLiteral("🇰🇷").repeated(100'000);
    for (qsizetype offset = 199'990; offset < 200'010; ++offset) {
        QCOMPARE(nextGraphemeBoundary(flags, offset), offset - offset % 4 + 4);
        QCOMPARE(graphemeBoundaryAtOrBefore(flags, offset), offset - offset % 4);
        QCOMPARE(previousGraphemeBoundary(flags, offset), (offset - 1) - (offset - 1) % 4);
    }
    QCOMPARE(graphemeCount(flags), 100'000);
}

void GraphemeBoundariesTest::aCharacterMayBeLong_data()
{
    QTest::addColumn<QString>("repeated");
    QTest::addColumn<QString>("first");
    QTest::newRow("marks") << QStringLiteral("\u0301") << QStringLiteral("e");
    QTest::newRow("a family") << QStringLiteral("\u200d👩") << QStringLiteral("👩");
    QTest::newRow("consonants without vowels") << QStringLiteral("\u094dक") << QStringLiteral("क");
    QTest::newRow("first letters of a syllable") << QStringLiteral("\u1100") << QStringLiteral("\u1100");
    QTest::newRow("what stands before") << QStringLiteral("\u0600") << QStringLiteral("\u0600");
}

void GraphemeBoundariesTest::aCharacterMayBeLong()
{
    QFETCH(QString, repeated);
    QFETCH(QString, first);
    const QString character = first + repeated.repeated(5'000);
    const QString text = QStringLiteral("ab\n") + character + QStringLiteral("\ncd");
    const qsizetype start = 3;
    const qsizetype end = start + character.size();
    for (const qsizetype offset : {start, start + 1, (start + end) / 2, end - 1}) {
        QCOMPARE(nextGraphemeBoundary(text, offset), end);
        QCOMPARE(graphemeBoundaryAtOrBefore(text, offset), start);
    }
    QCOMPARE(previousGraphemeBoundary(text, end), start);
    QCOMPARE(previousGraphemeBoundary(text, start + 1), start);
    QCOMPARE(graphemeCount(text), 7);
}

void GraphemeBoundariesTest::placesFarIntoATextAreRight()
{
    const LongText text;
    constexpr qsizetype first = LongText::middle - 11;
    constexpr qsizetype last = LongText::middle + 54;
    for (const qsizetype offset : {first, first + 1, LongText::middle - 1, LongText::middle, LongText::middle + 1}) {
        QCOMPARE(nextGraphemeBoundary(text, offset), last);
        QCOMPARE(graphemeBoundaryAtOrBefore(text, offset), first);
        QCOMPARE(previousGraphemeBoundary(text, offset), offset == first ? first - 1 : first);
    }
    QCOMPARE(nextGraphemeBoundary(text, last), last + 1);
    QCOMPARE(previousGraphemeBoundary(text, last), first);
}

void GraphemeBoundariesTest::aTextIsCutForItsRoom_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("most");
    QTest::addColumn<qsizetype>("cut");
    const QString marks = QStringLiteral("\u0301").repeated(9);
    QTest::newRow("nothing") << QString() << qsizetype(3) << qsizetype(0);
    QTest::newRow("no room") << QStringLiteral("abc") << qsizetype(0) << qsizetype(0);
    QTest::newRow("all of it") << QStringLiteral("abc") << qsizetype(3) << qsizetype(3);
    QTest::newRow("between characters") << QStringLiteral("abc") << qsizetype(2) << qsizetype(2);
    QTest::newRow("within the second character")
        << QString(u'a' + QStringLiteral("e") + marks) << qsizetype(5) << qsizetype(1);
    QTest::newRow("within the first character") << QString(u'e' + marks) << qsizetype(5) << qsizetype(5);
    QTest::newRow("within a pair of the first") << QStringLiteral("😀") << qsizetype(1) << qsizetype(0);
    QTest::newRow("within a pair of its marks")
        << QString(u'e' + QString::fromUcs4(U"\U000E0100\U000E0100")) << qsizetype(4) << qsizetype(3);
}

void GraphemeBoundariesTest::aTextIsCutForItsRoom()
{
    QFETCH(const QString, text);
    QFETCH(const qsizetype, most);
    QTEST(graphemeCut(text, most), "cut");
}

void GraphemeBoundariesTest::walksMayStandBesideEachOther()
{
    const QString one = QStringLiteral("👩‍👩‍👧क्षत्रि🇰🇷👍🏽");
    const QString other = QStringLiteral("🇺🇸x👩‍👧ब्द\u1112\u1161");
    GraphemeWalk first(one);
    GraphemeWalk second(other);
    QList<qsizetype> ofOne{0};
    QList<qsizetype> ofOther{0};
    while (!first.isAtEnd() || !second.isAtEnd()) {
        if (!first.isAtEnd()) {
            first.next();
            ofOne.append(first.place());
        }
        // A step asked for in between takes nothing away from either.
        QCOMPARE(nextGraphemeBoundary(u"👩‍👧!", 0), 5);
        if (!second.isAtEnd()) {
            second.next();
            ofOther.append(second.place());
        }
    }
    QCOMPARE(ofOne, test::characterBoundaries(one));
    QCOMPARE(ofOther, test::characterBoundaries(other));
    QVERIFY(first.next().isEmpty());
}

void GraphemeBoundariesTest::threadsAskAtTheSameTime()
{
    test::RandomScripts random;
    const QString text = random.text(200) + QStringLiteral("👩‍👧");
    const QList<qsizetype> boundaries = test::characterBoundaries(text);
    std::vector<std::unique_ptr<QThread>> threads;
    std::vector<QString> problems(4);
    for (QString& problem : problems) {
        threads.emplace_back(QThread::create([&] { problem = differenceFrom(boundaries, QStringView(text)); }));
        threads.back()->start();
    }
    for (const std::unique_ptr<QThread>& thread : threads) {
        thread->wait();
    }
    for (const QString& problem : problems) {
        QCOMPARE(problem, QString());
    }
}

const kelm::test::Registered<GraphemeBoundariesTest> registered;

} // namespace grapheme_boundaries_test

#include "grapheme_boundaries_test.moc"
