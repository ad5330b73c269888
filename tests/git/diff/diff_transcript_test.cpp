#include "git/diff/diff_transcript.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace diff_transcript_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Side = SideBySideHunkLines::Side;

DiffLayout layoutOf(DiffViewMode mode)
{
    QString text = diffOf(u"a.txt"_s, {{u" one"_s, u"-two"_s, u"-zwei"_s, u"+TWO"_s}, {u"+three"_s}});
    text.chop(1);
    return {DiffParser::parse(text), mode, {}, 80};
}

} // namespace

class DiffTranscriptTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindHasItsSign();
    void everythingIsToldInOrder();
    void sidesAreToldOneAfterTheOther();
    void collapsedLinesAreLeftOut();
    void offsetsAndPlacesGoBothWays_data();
    void offsetsAndPlacesGoBothWays();
    void everyLineHasItsPlace();
    void nothingHasNoPlace();
};

void DiffTranscriptTest::everyKindHasItsSign()
{
    QCOMPARE(diffSign(DiffLineKind::context), u" "_s);
    QCOMPARE(diffSign(DiffLineKind::added), u"+"_s);
    QCOMPARE(diffSign(DiffLineKind::removed), u"-"_s);
    QCOMPARE(diffSign(DiffLineKind::noNewline), u"\\"_s);
    QCOMPARE(spokenKind(DiffLineKind::context), QString());
    QCOMPARE(spokenKind(DiffLineKind::added), u"added: "_s);
    QCOMPARE(spokenKind(DiffLineKind::removed), u"removed: "_s);
}

void DiffTranscriptTest::everythingIsToldInOrder()
{
    QCOMPARE(DiffTranscript(layoutOf(DiffViewMode::unified)).text(),
             u"a.txt\n@@ -1,9 +1,9 @@ section 0\none\nremoved: two\nremoved: zwei\nadded: TWO\n@@ -101,9 +101,9 @@ "
             "section 1\nadded: three\n"_s);
}

void DiffTranscriptTest::sidesAreToldOneAfterTheOther()
{
    QCOMPARE(DiffTranscript(layoutOf(DiffViewMode::sideBySide)).text(),
             u"a.txt\n@@ -1,9 +1,9 @@ section 0\none\nremoved: two\nadded: TWO\nremoved: zwei\n@@ -101,9 +101,9 @@ "
             "section 1\nadded: three\n"_s);
}

void DiffTranscriptTest::collapsedLinesAreLeftOut()
{
    DiffLayout layout = layoutOf(DiffViewMode::unified);
    layout.setCollapsed(0, 0, true);
    const DiffTranscript transcript(layout);
    QCOMPARE(transcript.text(), u"a.txt\n@@ -1,9 +1,9 @@ section 0\n@@ -101,9 +101,9 @@ section 1\nadded: three\n"_s);
    QCOMPARE(transcript.offsetOf({0, 0, 1, 0}, Side::newSide), std::nullopt);
}

void DiffTranscriptTest::offsetsAndPlacesGoBothWays_data()
{
    QTest::addColumn<bool>("isUnified");
    QTest::newRow("unified") << true;
    QTest::newRow("side by side") << false;
}

void DiffTranscriptTest::offsetsAndPlacesGoBothWays()
{
    QFETCH(bool, isUnified);
    const DiffTranscript transcript(layoutOf(isUnified ? DiffViewMode::unified : DiffViewMode::sideBySide));
    for (qsizetype offset = 0; offset < transcript.text().size(); ++offset) {
        const DiffTranscript::Line* line = transcript.lineAt(offset);
        QVERIFY(line != nullptr && line->start <= offset);
        const DiffTextPlace place = transcript.placeOf(offset);
        QCOMPARE(transcript.offsetOf(place, line->side), std::optional(std::max(offset, line->start + line->prefix)));
    }
    const qsizetype word = transcript.text().indexOf(u"TWO");
    QCOMPARE(transcript.placeOf(word + 1).unit, 1);
    QCOMPARE(transcript.text().mid(*transcript.offsetOf({0, 1, 0, 2}, Side::newSide), 3), u"ree"_s);
}

void DiffTranscriptTest::everyLineHasItsPlace()
{
    for (const DiffViewMode mode : allDiffViewModes) {
        const DiffTranscript transcript(layoutOf(mode));
        const auto placeOf = [&](const QString& line) { return transcript.placeOf(transcript.text().indexOf(line)); };
        QCOMPARE(placeOf(u"a.txt"_s), (DiffTextPlace{0, -1, 0, 0}));
        QCOMPARE(placeOf(u"@@ -1,"_s), (DiffTextPlace{0, 0, -1, 0}));
        QCOMPARE(placeOf(u"one"_s), (DiffTextPlace{0, 0, 0, 0}));
        QCOMPARE(placeOf(u"zwei"_s), (DiffTextPlace{0, 0, 2, 0}));
        // In the other form it faces the first of the two that were removed.
        QCOMPARE(placeOf(u"TWO"_s), (DiffTextPlace{0, 0, mode == DiffViewMode::unified ? 3 : 1, 0}));
        QCOMPARE(placeOf(u"@@ -101,"_s), (DiffTextPlace{0, 1, -1, 0}));
        QCOMPARE(placeOf(u"three"_s), (DiffTextPlace{0, 1, 0, 0}));
        // What is spoken before a line belongs to its first unit, and its line feed to its last.
        QCOMPARE(placeOf(u"added: three"_s), (DiffTextPlace{0, 1, 0, 0}));
        QCOMPARE(transcript.placeOf(transcript.text().size() - 1), (DiffTextPlace{0, 1, 0, 5}));
        QCOMPARE(transcript.placeOf(transcript.text().size() + 9), (DiffTextPlace{0, 1, 0, 5}));
        QCOMPARE(transcript.offsetOf({0, -1, 0, 2}, Side::newSide), std::optional<qsizetype>(2));
        QCOMPARE(transcript.offsetOf({0, 1, 0, 5}, Side::oldSide), std::optional(transcript.text().size() - 1));
        QCOMPARE(transcript.offsetOf({0, 2, 0, 0}, Side::newSide), std::nullopt);
    }
}

void DiffTranscriptTest::nothingHasNoPlace()
{
    const DiffTranscript transcript;
    QVERIFY(transcript.lineAt(0) == nullptr);
    QCOMPARE(transcript.placeOf(3), DiffTextPlace{});
    QCOMPARE(transcript.offsetOf({}, Side::newSide), std::nullopt);
}

const kelm::test::Registered<DiffTranscriptTest> registered;

} // namespace diff_transcript_test

#include "diff_transcript_test.moc"
