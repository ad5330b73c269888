// The rows of a long line are those of the line laid out as a whole: no piece's end is seen.
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/layout/text_layout.h"

#include <QSignalSpy>
#include <QtTest>

namespace text_layout_pieces_test {

using namespace kelm;

namespace {

struct Page
{
    TextStorage storage;
    TextLayout layout{storage};

    explicit Page(const QString& text, qreal columns)
    {
        storage.setText(text);
        layout.setWidth(std::ceil(columns * layout.advance()));
    }

    /// From the first row down, as one who walks from the page's start meets them.
    std::vector<TextRow> allRows() { return layout.rowsBetween(0, 1e9); }
};

QString wordsOf(qsizetype units)
{
    QString line;
    for (int word = 0; line.size() < units; ++word) {
        line += QString(1 + word * 7 % 13, QChar(u'a' + word % 26)) + u' ';
    }
    return line.left(units);
}

/// Where rows begin in a stretch of the only line of a page that is laid out in one go, and begins a row.
std::vector<qsizetype> rowStartsIn(Page& page, TextRange range)
{
    QTextLayout whole(page.storage.substring(range), page.layout.font());
    const auto& preedit = page.layout.preedit();
    if (preedit) {
        whole.setPreeditArea(static_cast<int>(preedit->offset), preedit->text);
    }
    QList<QTextLayout::FormatRange> formats;
    for (const ColorRun& run : page.storage.colorsIn(range)) {
        QTextLayout::FormatRange format;
        format.start = static_cast<int>(run.range.location - range.location);
        format.length = static_cast<int>(run.range.length);
        format.format.setForeground(QColor::fromRgba(run.color));
        formats.append(format);
    }
    whole.setFormats(formats);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTabStopDistance(page.layout.advance() * 4);
    option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
    whole.setTextOption(option);
    std::vector<qsizetype> starts;
    whole.beginLayout();
    for (QTextLine line = whole.createLine(); line.isValid(); line = whole.createLine()) {
        line.setLineWidth(page.layout.width());
        qsizetype start = line.textStart();
        if (preedit && start > preedit->offset) {
            start = std::max(preedit->offset, start - preedit->text.size());
        }
        starts.push_back(range.location + start);
    }
    whole.endLayout();
    return starts;
}

/// Where the rows of the only line of a page begin when the line is laid out in one go.
std::vector<qsizetype> wholeRowStarts(Page& page)
{
    return rowStartsIn(page, {0, page.storage.length()});
}

/// The same by walking from row to row, some at a time. The toolkit shapes 4096 units at most in one go: in a longer
/// layout a row that this divides may be wider by a hair, and break elsewhere.
std::vector<qsizetype> walkedRowStarts(Page& page)
{
    std::vector<qsizetype> starts;
    for (qsizetype from = 0; from < page.storage.length();) {
        const qsizetype end = std::min(from + 4000, page.storage.length());
        std::vector<qsizetype> some = rowStartsIn(page, {from, end - from});
        from = page.storage.length();
        if (end < page.storage.length()) {
            // What the last rows hold is not all there.
            some.resize(some.size() - std::min<std::size_t>(some.size() - 2, 3));
            from = some.back();
            some.pop_back();
        }
        starts.insert(starts.end(), some.begin(), some.end());
    }
    return starts;
}

std::vector<qsizetype> startsOf(const std::vector<TextRow>& rows)
{
    std::vector<qsizetype> starts;
    for (const TextRow& row : rows) {
        starts.push_back(row.range.location);
    }
    return starts;
}

/// What holds for the rows of one line, wherever they begin.
void checkRows(Page& page, const std::vector<TextRow>& rows)
{
    QCOMPARE(rows.front().range.location, qsizetype(0));
    QCOMPARE(page.layout.height(), static_cast<qreal>(rows.size()) * page.layout.rowHeight());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QCOMPARE(rows[i].top, static_cast<qreal>(i) * page.layout.rowHeight());
        QCOMPARE(rows[i].range.end(), i + 1 < rows.size() ? rows[i + 1].range.location : page.storage.length());
    }
}

void compareWithWholeLine(Page& page)
{
    page.allRows();
    const std::vector<TextRow> rows = page.allRows();
    checkRows(page, rows);
    QCOMPARE(startsOf(rows), wholeRowStarts(page));
}

/// Compares with the rows that a walk over the line meets. Where a row is as wide as the page to a hair, what stands
/// before it may decide how it ends: laid out alone from its start it must end as it does.
void compareWithWalk(Page& page)
{
    page.allRows();
    const std::vector<TextRow> rows = page.allRows();
    checkRows(page, rows);
    const std::vector<qsizetype> expected = walkedRowStarts(page);
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        const TextRange range = rows[i].range;
        const auto known = std::lower_bound(expected.begin(), expected.end(), range.location);
        if (known == expected.end() || *known != range.location || known + 1 == expected.end() ||
            known[1] != range.end()) {
            const qsizetype length = std::min<qsizetype>(1000, page.storage.length() - range.location);
            const std::vector<qsizetype> alone = rowStartsIn(page, {range.location, length});
            QVERIFY2(alone.size() > 1 && alone[1] == range.end(),
                     qPrintable(QStringLiteral("row %1 of %2 ends at %3").arg(i).arg(rows.size()).arg(range.end())));
        }
    }
}

/// Requires that each row is full: the first word of the next one would not have fitted.
void checkFull(Page& page, const std::vector<TextRow>& rows)
{
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        const TextRange range = TextRange::between(rows[i].range.location, rows[i + 1].range.end());
        Page both(page.storage.substring(range), 1);
        both.layout.setWidth(page.layout.width());
        QCOMPARE(both.allRows().front().range.length, rows[i].range.length);
    }
}

/// The pieces that a stretch of the page shows.
std::size_t piecesIn(Page& page, qreal top, qreal bottom)
{
    const std::vector<TextRow> rows = page.layout.rowsBetween(top, bottom);
    return rows.back().piece - rows.front().piece + 1;
}

} // namespace

class TextLayoutPiecesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noPieceEndIsSeen_data();
    void noPieceEndIsSeen();
    void rowsAreFullOnTheWayUp();
    void anotherWidthBreaksAnew();
    void anotherFontBreaksAnew();
    void editsBreakAnew_data();
    void editsBreakAnew();
    void lineEndsPartALongLine();
    void lineEndsLeaveTheCutsAlone();
    void aWordThatFitsAboveNowGoesUp();
    void aPlaceIsFoundInItsRowAtOnce();
    void compositionsAreCounted();
    void colorsBreakAnew();
    void aLineOfBlanksIsNoTrap();
    void charactersStayWhole();
    void placesStayWhereBordersMove();
    void aKeyLaysOutWhatIsShownFromItsPieceOn();
    void jumpsLayOutWhatIsShown();
    void piecesDoNotWander();
};

void TextLayoutPiecesTest::noPieceEndIsSeen_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");
    // The toolkit shapes at most 4096 units at a time, which must not end within a character of the whole line.
    const QString emoji = QStringLiteral("👩‍👩‍👧😀 e\u0301 ab");
    QCOMPARE(emoji.size(), qsizetype(16));
    for (const int columns : {17, 80, 200}) {
        const auto row = [columns](const char* name, const QString& text) {
            QTest::addRow("%s, %d columns", name, columns) << text << columns;
        };
        row("words", wordsOf(longestPiece * 9));
        row("one endless word", QString(longestPiece * 5 + 17, u'a'));
        row("Korean", QStringLiteral("다람쥐 헌 쳇바퀴에 타고파").repeated(800));
        row("Chinese", QStringLiteral("天地玄黃宇宙洪荒").repeated(1000));
        row("tabs", QStringLiteral("a\tbcd\t\tef gh").repeated(900));
        row("emoji", emoji.repeated(640));
        row("a data line", QStringLiteral("{\"name\":\"value\", \"count\":12345}, ").repeated(400));
    }
}

void TextLayoutPiecesTest::noPieceEndIsSeen()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    Page page(text, columns);
    compareWithWholeLine(page);
}

void TextLayoutPiecesTest::rowsAreFullOnTheWayUp()
{
    Page page(wordsOf(longestPiece * 100), 90);
    const qreal screen = 40 * page.layout.rowHeight();
    PagePlace top = page.layout.pagePlaceAt(page.layout.height() / 2);
    const qsizetype middle = top.offset;
    // Twenty screens up, a row less than a screen at a time.
    for (int step = 0; step < 20; ++step) {
        page.layout.rowsBetween(page.layout.yOf(top), page.layout.yOf(top) + screen);
        const qreal y = page.layout.yOf(top);
        const std::vector<TextRow> rows = page.layout.rowsBetween(y, y + screen);
        QVERIFY2(rows.size() >= 40, qPrintable(QStringLiteral("%1 in step %2").arg(rows.size()).arg(step)));
        checkFull(page, rows);
        if (QTest::currentTestFailed()) {
            return;
        }
        top = page.layout.movedBy(top, page.layout.rowHeight() - screen);
    }
    QVERIFY(top.offset < middle - longestPiece * 4);
    // Carets that go up row by row meet no row that ends early either.
    std::optional<TextRow> row = page.layout.rowOf({middle, false});
    for (int step = 0; step < 200 && row; ++step) {
        const auto above = page.layout.neighbour(*row, -1);
        QVERIFY(above);
        const auto below = page.layout.neighbour(*above, 1);
        QVERIFY(below);
        checkFull(page, {*above, *below});
        row = above;
    }
}

void TextLayoutPiecesTest::anotherWidthBreaksAnew()
{
    Page page(wordsOf(longestPiece * 6), 60);
    for (const qreal columns : {80, 79, 33, 200, 12, 60}) {
        page.layout.setWidth(columns * page.layout.advance());
        compareWithWalk(page);
        if (QTest::currentTestFailed()) {
            return;
        }
    }
}

void TextLayoutPiecesTest::anotherFontBreaksAnew()
{
    Page page(wordsOf(longestPiece * 6), 60);
    page.allRows();
    QFont font = page.layout.font();
    font.setPixelSize(23);
    page.layout.setFont(font);
    compareWithWalk(page);
}

void TextLayoutPiecesTest::editsBreakAnew_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("added");
    QTest::addColumn<bool>("staysAtBorders");
    const QStringList all{QStringLiteral("x"),         QStringLiteral(" "),  QStringLiteral("word "),
                          QStringLiteral("한글"),      QStringLiteral("\t"), QStringLiteral("e\u0301"),
                          QStringLiteral("a b c d e"), QStringLiteral("😀"),  wordsOf(longestPiece)};
    // In a word that goes on for rows the toolkit breaks a letter from its mark now and then, and goes on otherwise
    // in a layout that begins there.
    const QStringList letters{QStringLiteral("x"), QStringLiteral(" "), QStringLiteral("W"), QStringLiteral("i j k l"),
                              QString(longestPiece, u'y')};
    QTest::newRow("words") << wordsOf(longestPiece * 6) << all << false;
    QTest::newRow("words, at the pieces' borders") << wordsOf(longestPiece * 6) << all << true;
    QTest::newRow("one endless word, at the pieces' borders") << QString(longestPiece * 6, u'a') << letters << true;
    QTest::newRow("Korean") << QStringLiteral("다람쥐 헌 쳇바퀴에").repeated(longestPiece / 2) << all << false;
}

void TextLayoutPiecesTest::editsBreakAnew()
{
    QFETCH(QString, text);
    QFETCH(QStringList, added);
    QFETCH(bool, staysAtBorders);
    test::RandomText random;
    Page page(text, 70);
    for (int round = 0; round < 150; ++round) {
        for (qsizetype edit = 1 + random.below(3); edit > 0; --edit) {
            TextRange range = random.range(page.storage.length());
            if (staysAtBorders) {
                const std::vector<TextRow> rows = page.allRows();
                for (const TextRow& row : rows) {
                    if (row.piece > 0 && row.rowInPiece == 0 && random.below(3) == 0) {
                        range.location = std::max<qsizetype>(0, row.range.location + 5 - random.below(10));
                        range.length = std::min(random.below(9), page.storage.length() - range.location);
                    }
                }
            } else if (range.length > longestPiece * 2) {
                range.length = random.below(longestPiece);
            }
            const qsizetype choices = page.storage.length() > longestPiece * 12 ? added.size() - 1 : added.size();
            page.storage.replace(range, random.below(3) == 0 ? QString() : added[random.below(choices)]);
            if (random.below(2) == 0) {
                // Only a part is looked at before the next change.
                const qreal top = page.layout.height() * static_cast<qreal>(random.below(10)) / 10;
                page.layout.rowsBetween(top, top + 300);
            }
        }
        if (random.below(10) == 0) {
            page.layout.setWidth(page.layout.advance() * static_cast<qreal>(20 + random.below(100)));
        }
        compareWithWalk(page);
        if (QTest::currentTestFailed()) {
            return;
        }
        if (page.storage.length() < longestPiece * 2) {
            page.storage.replace({0, 0}, wordsOf(longestPiece * 4));
        }
    }
}

void TextLayoutPiecesTest::lineEndsPartALongLine()
{
    test::RandomText random;
    Page page(wordsOf(longestPiece * 8), 70);
    for (int round = 0; round < 150; ++round) {
        const qsizetype at = random.below(4) == 0 ? page.storage.length() : random.below(page.storage.length() + 1);
        const QStringList breaks{QStringLiteral("\n"), QStringLiteral("\n\n"), QStringLiteral("one\r\ntwo "),
                                 QStringLiteral(" \r")};
        const qsizetype gone = std::min(random.below(3) * random.below(longestPiece), page.storage.length() - at);
        page.storage.replace({at, gone}, breaks[random.below(breaks.size())]);
        if (random.below(2) == 0) {
            const qreal top = page.layout.height() * static_cast<qreal>(random.below(10)) / 10;
            page.layout.rowsBetween(top, top + 300);
        }
        // The first line or the last is left.
        const LineIndex& lines = page.storage.lines();
        const TextRange kept = lines.content(random.below(2) == 0 ? 0 : lines.lineCount() - 1);
        if (kept.location > 0) {
            page.storage.replace({0, kept.location}, QStringView());
        } else {
            page.storage.replace({kept.end(), page.storage.length() - kept.end()}, QStringView());
        }
        compareWithWalk(page);
        if (QTest::currentTestFailed()) {
            return;
        }
        if (page.storage.length() < longestPiece * 2) {
            page.storage.replace({0, 0}, wordsOf(longestPiece * 8));
        }
    }
}

void TextLayoutPiecesTest::lineEndsLeaveTheCutsAlone()
{
    Page page(QString(longestPiece * 6, u'a'), 64);
    // Pieces that were typed into are longer than those of a line that is cut anew.
    for (const int piece : {0, 3}) {
        page.storage.replace({piece * longestPiece + 10, 0}, QString(256, u'b'));
    }
    const auto pieceOf = [&](qsizetype offset) { return page.layout.rowOf({offset, false}).piece; };
    const qsizetype inFirst = longestPiece + 128;
    const qsizetype inFourth = longestPiece * 4 + 256 + 128;
    QCOMPARE(pieceOf(inFirst), std::size_t(0));
    QCOMPARE(pieceOf(inFourth), std::size_t(3));
    page.storage.replace({page.storage.length(), 0}, QStringLiteral("\nend"));
    QCOMPARE(pieceOf(inFirst), std::size_t(0));
    QCOMPARE(pieceOf(inFourth), std::size_t(3));
    // In the third piece: what stands behind begins with another number, and is cut where it was.
    page.storage.replace({longestPiece * 2 + 1000, 0}, QStringLiteral("\n"));
    QCOMPARE(pieceOf(inFirst), std::size_t(0));
    QCOMPARE(pieceOf(inFourth + 1), std::size_t(1));
    QCOMPARE(pieceOf(longestPiece * 4 + 256 + 257), std::size_t(2));
}

void TextLayoutPiecesTest::aWordThatFitsAboveNowGoesUp()
{
    // Words that fill a row each: where one below the border is made short, it goes up to the row above.
    Page page((QString(35, u'a') + u' ').repeated(longestPiece / 9), 50);
    const std::vector<TextRow> rows = page.allRows();
    const auto border = std::find_if(rows.begin(), rows.end(), [](const TextRow& row) { return row.piece == 1; });
    QVERIFY(border != rows.end());
    const qsizetype start = border->range.location;
    page.storage.replace({start + 1, 33}, u"");
    QCOMPARE(page.layout.rowsBetween(border[-1].top, border->top).front().range.length, border[-1].range.length + 3);
    compareWithWalk(page);
}

void TextLayoutPiecesTest::aPlaceIsFoundInItsRowAtOnce()
{
    // Also where laying out its piece shows that it belongs to the next one.
    const QString text = wordsOf(longestPiece * 4);
    for (qsizetype offset = longestPiece - 80; offset <= longestPiece; ++offset) {
        Page page(text, 60);
        const TextRow row = page.layout.rowOf({offset, false});
        QVERIFY(row.range.location <= offset && offset < row.range.end());
        QCOMPARE(page.layout.caretRect({offset, false}).top(), row.top);
    }
}

void TextLayoutPiecesTest::compositionsAreCounted()
{
    Page page(wordsOf(longestPiece * 4), 60);
    std::vector<qsizetype> offsets{0, 100, longestPiece, page.storage.length()};
    for (const TextRow& row : page.allRows()) {
        if (row.piece > 0 && row.rowInPiece == 0) {
            offsets.insert(offsets.end(), {row.range.location - 1, row.range.location, row.range.location + 2});
        }
    }
    for (const qsizetype offset : offsets) {
        for (const QString& text : {QStringLiteral("한글"), QStringLiteral("zwölf Boxkämpfer ").repeated(9)}) {
            Preedit preedit;
            preedit.offset = offset;
            preedit.text = text;
            preedit.cursor = static_cast<int>(text.size());
            page.layout.setPreedit(preedit);
            const std::vector<TextRow> rows = page.allRows();
            std::vector<qsizetype> starts = startsOf(rows);
            QVERIFY2(starts == wholeRowStarts(page), qPrintable(QString::number(offset)));
            const qreal caret = page.layout.preeditCaretRect()->top();
            QVERIFY(caret >= page.layout.caretRect({offset, true}).top());
            QVERIFY(offset == page.storage.length() || caret <= page.layout.caretRect({offset + 1, false}).top());
        }
        page.layout.setPreedit({});
    }
    compareWithWalk(page);
}

void TextLayoutPiecesTest::colorsBreakAnew()
{
    // Letters of two colours do not move together as those of one do.
    Page page(QStringLiteral("AVAVAVAV ToTo ").repeated(longestPiece / 3), 60);
    page.allRows();
    test::RandomText random;
    for (int round = 0; round < 20; ++round) {
        const qsizetype from = random.below(page.storage.length());
        const qsizetype end = std::min(page.storage.length(), from + random.below(longestPiece));
        for (qsizetype letter = from; letter < end; letter += 2) {
            page.storage.setForeground({letter, 1}, 0xff000000 | QRgb(random.below(0xffffff)));
        }
        compareWithWalk(page);
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    const quint64 before = page.layout.layoutsMade();
    page.storage.setBackground({0, page.storage.length()}, 0xff00ff00);
    page.allRows();
    QCOMPARE(page.layout.layoutsMade(), before);
}

void TextLayoutPiecesTest::aLineOfBlanksIsNoTrap()
{
    // Blanks hang over a row's end, however many: one row may take more than a piece.
    for (const QString& text :
         {QString(longestPiece * 5, u' '), wordsOf(longestPiece * 2) + QString(longestPiece * 3, u' ') + u'x',
          QString(longestPiece * 3, QChar(0x0301))}) {
        Page page(text, 60);
        for (int round = 0; round < 3; ++round) {
            qsizetype end = 0;
            for (const TextRow& row : page.allRows()) {
                QCOMPARE(row.range.location, end);
                QVERIFY(!row.range.isEmpty());
                end = row.range.end();
            }
            QCOMPARE(end, page.storage.length());
            page.storage.replace({longestPiece * (round + 1), 3}, u" ");
        }
    }
}

void TextLayoutPiecesTest::charactersStayWhole()
{
    for (const QString& character : {QStringLiteral("😀"), QStringLiteral("👩‍👩‍👧")}) {
        Page page(character.repeated(longestPiece * 2), 33);
        for (const TextRow& row : page.allRows()) {
            QCOMPARE(row.range.location % character.size(), qsizetype(0));
        }
    }
}

void TextLayoutPiecesTest::placesStayWhereBordersMove()
{
    Page page(wordsOf(longestPiece * 20), 90);
    const qreal rowHeight = page.layout.rowHeight();
    for (int round = 0; round < 8; ++round) {
        const PagePlace place = page.layout.pagePlaceAt(page.layout.height() * (2 + round % 5) / 8 + 3);
        const qreal y = page.layout.yOf(place);
        const TextRow shown = page.layout.rowsBetween(y, y + 1).front();
        QSignalSpy corrected(&page.layout, &TextLayout::rowsCorrected);
        // The rows above come to stand where they belong, and so does where this piece begins.
        page.layout.caretRect({place.offset - 1, false});
        page.layout.caretRect({place.offset - longestPiece, false});
        page.layout.caretRect({place.offset - 1, false});
        QVERIFY(corrected.count() > 0);
        const qreal now = page.layout.yOf(place);
        const qreal text = page.layout.caretRect({shown.range.location, false}).top();
        QVERIFY2(qAbs(text - now - (shown.top - y)) <= rowHeight, qPrintable(QString::number(text - now)));
        page.layout.setWidth(page.layout.width() - 10);
    }
    // A composition moves the borders behind it to and fro.
    for (const bool isComposing : {true, false, true, false}) {
        page.allRows();
        const qreal middle = page.layout.height() / 2;
        const PagePlace place = page.layout.pagePlaceAt(middle);
        const TextRow shown = page.layout.rowsBetween(middle, middle + 1).front();
        std::optional<Preedit> preedit;
        if (isComposing) {
            preedit.emplace();
            preedit->offset = place.offset - longestPiece / 2;
            preedit->text = QStringLiteral("zwölf Boxkämpfer");
        }
        page.layout.setPreedit(preedit);
        page.allRows();
        const qreal text = page.layout.caretRect({shown.range.location, false}).top();
        const qreal moved = text - page.layout.yOf(place) - (shown.top - middle);
        QVERIFY2(qAbs(moved) <= rowHeight, qPrintable(QString::number(moved)));
    }
}

void TextLayoutPiecesTest::aKeyLaysOutWhatIsShownFromItsPieceOn()
{
    Page page(wordsOf(5'000'000), 100);
    const qreal top = page.layout.height() / 2;
    const qreal bottom = top + 800;
    page.layout.rowsBetween(top, bottom);
    const qsizetype caret = page.layout.placeAt({50, top + 400}).offset;
    quint64 most = 0;
    quint64 all = 0;
    for (int key = 0; key < 100; ++key) {
        const quint64 before = page.layout.layoutsMade();
        page.storage.replace({caret + key, 0}, key % 7 == 0 ? u" " : u"x");
        const std::size_t piece = page.layout.rowOf({caret + key + 1, false}).piece;
        page.layout.rowsBetween(top, bottom);
        const quint64 made = page.layout.layoutsMade() - before;
        // One more where the key stands so near the piece's start that the piece above looked at it.
        const std::size_t behind = page.layout.rowsBetween(top, bottom).back().piece - piece + 1;
        QVERIFY2(made <= behind + 2, qPrintable(QString::number(made)));
        most = std::max(most, made);
        all += made;
    }
    QVERIFY(most >= 1 && all <= 300);
}

void TextLayoutPiecesTest::jumpsLayOutWhatIsShown()
{
    Page page(wordsOf(5'000'000), 100);
    for (const qreal at : {0.5, 1.0, 0.25, 0.0}) {
        const quint64 before = page.layout.layoutsMade();
        const qreal top = std::max<qreal>(0, page.layout.height() * at - 800);
        const std::size_t shown = piecesIn(page, top, top + 800);
        // The piece at the top may turn out to have fewer rows, and then the next one is there.
        QVERIFY2(page.layout.layoutsMade() - before <= shown + 1, qPrintable(QString::number(shown)));
    }
    const quint64 before = page.layout.layoutsMade();
    page.layout.caretRect({page.storage.length() / 3, false});
    QVERIFY(page.layout.layoutsMade() - before <= 2);
}

void TextLayoutPiecesTest::piecesDoNotWander()
{
    // However often the width changes, each piece is about as long as it was.
    Page page(wordsOf(longestPiece * 8), 90);
    const auto lengths = [&page] {
        std::map<std::size_t, qsizetype> result;
        for (const TextRow& row : page.allRows()) {
            result[row.piece] += row.range.length;
        }
        return result;
    };
    const auto before = lengths();
    for (int step = 0; step < 100; ++step) {
        page.layout.setWidth(page.layout.width() + (step % 2 == 0 ? -7 : 6));
        page.layout.rowsBetween(0, 800);
        page.layout.rowsBetween(page.layout.height() / 2, page.layout.height() / 2 + 800);
        page.storage.replace({longestPiece + longestPiece / 2, 1}, step % 2 == 0 ? u"x" : u"y");
        page.storage.replace({page.storage.length() / 2 + longestPiece, 1}, step % 2 == 0 ? u"x" : u"y");
    }
    const auto after = lengths();
    QCOMPARE(after.size(), before.size());
    for (const auto& [piece, length] : after) {
        QVERIFY2(qAbs(length - before.at(piece)) < 250, qPrintable(QString::number(length)));
        QVERIFY(length <= longestPiece + 250);
    }
}

const kelm::test::Registered<TextLayoutPiecesTest> registered(kelm::test::Toolkit::gui);

} // namespace text_layout_pieces_test

#include "text_layout_pieces_test.moc"
