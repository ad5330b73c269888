#include "support/random_text.h"
#include "support/test_program.h"
#include "text/boundaries/text_boundaries.h"
#include "text/layout/line_pieces.h"

#include <QtTest>

namespace line_pieces_test {

using namespace kelm;

namespace {

std::vector<qsizetype> cut(const QString& line)
{
    return cutIntoPieces(TextTree(line), {0, line.size()});
}

/// The lengths of the pieces of a line.
std::vector<qsizetype> lengthsOf(const QString& line)
{
    std::vector<qsizetype> starts = cut(line);
    starts.push_back(line.size());
    std::vector<qsizetype> lengths;
    for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
        lengths.push_back(starts[i + 1] - starts[i]);
    }
    return lengths;
}

} // namespace

class LinePiecesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aShortLineIsOnePiece_data();
    void aShortLineIsOnePiece();
    void aLineIsCutBehindABlank();
    void aBlankFarBeforeTheLimitDoesNotCut();
    void aLineWithoutBlanksIsCutBetweenCharacters_data();
    void aLineWithoutBlanksIsCutBetweenCharacters();
    void anEndlessCharacterIsCutAtTheLimit();
    void noPieceIsTooLongOrEmpty();
    void piecesAreFoundByOffset();
    void piecesLookAheadOfTheirCuts();
    void replacedPiecesKeepTheCutsBehind();
    void longLinesMoveWithTheLinesBeforeThem();
    void replacedLongLinesAreForgotten();
};

void LinePiecesTest::aShortLineIsOnePiece_data()
{
    QTest::addColumn<qsizetype>("length");
    QTest::newRow("empty") << qsizetype(0);
    QTest::newRow("one unit") << qsizetype(1);
    QTest::newRow("as long as a piece may be") << longestPiece;
}

void LinePiecesTest::aShortLineIsOnePiece()
{
    QFETCH(qsizetype, length);
    QCOMPARE(cut(QString(length, u'a')), std::vector<qsizetype>{0});
}

void LinePiecesTest::aLineIsCutBehindABlank()
{
    QString line(longestPiece * 3, u'a');
    line[longestPiece - 10] = u' ';
    const std::vector<qsizetype> starts = cut(line);
    QCOMPARE(starts[1], longestPiece - 9);

    line[longestPiece - 10] = u'\t';
    QCOMPARE(cut(line)[1], longestPiece - 9);
}

void LinePiecesTest::aBlankFarBeforeTheLimitDoesNotCut()
{
    QString line(longestPiece * 3, u'a');
    line[longestPiece / 2] = u' ';
    QCOMPARE(cut(line)[1], longestPiece);
}

void LinePiecesTest::aLineWithoutBlanksIsCutBetweenCharacters_data()
{
    QTest::addColumn<QString>("character");
    QTest::newRow("a surrogate pair") << QStringLiteral("😀");
    QTest::newRow("a letter with a mark") << QStringLiteral("e\u0301");
    QTest::newRow("a family") << QStringLiteral("👩‍👩‍👧");
    QTest::newRow("conjoining Hangul") << QStringLiteral("\u1112\u1161\u11ab");
}

void LinePiecesTest::aLineWithoutBlanksIsCutBetweenCharacters()
{
    QFETCH(QString, character);
    // One letter at the top puts the limit into each place of a character in turn.
    for (qsizetype lead = 0; lead < character.size(); ++lead) {
        const QString line = QString(lead, u'a') + character.repeated(longestPiece);
        for (const qsizetype start : cut(line)) {
            QCOMPARE(graphemeBoundaryAtOrBefore(line, start), start);
            QCOMPARE((start - lead) % character.size() == 0 || start == 0, true);
        }
    }
}

void LinePiecesTest::anEndlessCharacterIsCutAtTheLimit()
{
    // A letter with ten thousand marks: no boundary anywhere, and yet the pieces stay short.
    const QString line = u'e' + QString(10000, QChar(0x0301));
    for (const qsizetype length : lengthsOf(line)) {
        QVERIFY(length > 0 && length <= longestPiece);
    }
}

void LinePiecesTest::noPieceIsTooLongOrEmpty()
{
    test::RandomText random;
    for (int round = 0; round < 20; ++round) {
        QString line;
        while (line.size() < longestPiece * (1 + random.below(4))) {
            QString more = random.text(200);
            line += more.remove(u'\n').remove(u'\r');
        }
        qsizetype sum = 0;
        for (const qsizetype length : lengthsOf(line)) {
            QVERIFY2(length > 0 && length <= longestPiece, qPrintable(QString::number(length)));
            sum += length;
        }
        QCOMPARE(sum, line.size());
    }
}

void LinePiecesTest::piecesAreFoundByOffset()
{
    const LinePieces pieces{{0, 10, 20}, {2, 3, 4}};
    QCOMPARE(pieces.pieceAt(0), std::size_t(0));
    QCOMPARE(pieces.pieceAt(9), std::size_t(0));
    QCOMPARE(pieces.pieceAt(10), std::size_t(1));
    QCOMPARE(pieces.pieceAt(1000), std::size_t(2));
    QCOMPARE(pieces.rowCount(), qsizetype(9));
    QCOMPARE(pieces.rowsBefore(0), qsizetype(0));
    QCOMPARE(pieces.rowsBefore(2), qsizetype(5));
}

void LinePiecesTest::piecesLookAheadOfTheirCuts()
{
    LinePieces pieces = LinePieces::cutAt({0, 2000, 4000, 4100});
    QCOMPARE(pieces.starts, pieces.cuts);
    pieces.starts = {0, 1950, 3980, 4090};
    QCOMPARE(pieces.firstThatSees(0), std::size_t(0));
    QCOMPARE(pieces.firstThatSees(1960), std::size_t(0));
    QCOMPARE(pieces.firstThatSees(2000 + lookAhead), std::size_t(0));
    QCOMPARE(pieces.firstThatSees(2001 + lookAhead), std::size_t(1));
    // A short piece may be seen through.
    QCOMPARE(pieces.firstThatSees(4200), std::size_t(1));
    QCOMPARE(pieces.firstThatSees(4300), std::size_t(2));
    pieces.resetStarts();
    QCOMPARE(pieces.starts, pieces.cuts);
}

void LinePiecesTest::replacedPiecesKeepTheCutsBehind()
{
    LinePieces pieces = LinePieces::cutAt({0, 100, 200, 300});
    pieces.rows = {1, 2, 3, 4};
    pieces.starts = {0, 90, 190, 290};
    LinePieces two = LinePieces::cutAt({0, 60});
    two.rows = {7, 8};
    // The first of them keeps the cut that it had, ten units behind its start.
    two.cuts[0] = 10;
    pieces.replace(1, 1, two, 5);
    QCOMPARE(pieces.starts, (std::vector<qsizetype>{0, 90, 150, 195, 295}));
    QCOMPARE(pieces.cuts, (std::vector<qsizetype>{0, 100, 150, 205, 305}));
    QCOMPARE(pieces.rows, (std::vector<int>{1, 7, 8, 3, 4}));
}

void LinePiecesTest::longLinesMoveWithTheLinesBeforeThem()
{
    LongLines lines;
    lines.insert(3, {{0}, {1}});
    lines.insert(7, {{0}, {2}});
    TextEdit edit;
    edit.firstLine = 1;
    edit.linesRemoved = 1;
    edit.linesAdded = 4;
    lines.linesReplaced(edit);
    QVERIFY(lines.find(3) == nullptr);
    QVERIFY(lines.find(6) != nullptr);
    QVERIFY(lines.find(10) != nullptr);
    QCOMPARE(lines.find(10)->rowCount(), qsizetype(2));

    edit.linesRemoved = 3;
    edit.linesAdded = 1;
    lines.linesReplaced(edit);
    QVERIFY(lines.find(4) != nullptr);
    QVERIFY(lines.find(8) != nullptr);
    QVERIFY(lines.find(6) == nullptr);
    QVERIFY(lines.find(10) == nullptr);
}

void LinePiecesTest::replacedLongLinesAreForgotten()
{
    LongLines lines;
    lines.insert(3, {{0}, {1}});
    lines.insert(4, {{0}, {2}});
    TextEdit edit;
    edit.firstLine = 3;
    edit.linesRemoved = 1;
    edit.linesAdded = 1;
    lines.linesReplaced(edit);
    QVERIFY(lines.find(3) == nullptr);
    QVERIFY(lines.find(4) != nullptr);
}

const kelm::test::Registered<LinePiecesTest> registered;

} // namespace line_pieces_test

#include "line_pieces_test.moc"
