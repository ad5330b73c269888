#include "support/test_program.h"
#include "text/layout/shown_units.h"
#include "text/layout/text_layout.h"

#include <QPainter>
#include <QtTest>

namespace shown_units_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QRgb green = 0xff00ff00;

/// A text of which what stands between braces is not drawn, in rows of `columns` letters.
struct Page
{
    explicit Page(QString text, qreal columns = 40)
    {
        QFont font(u"DejaVu Sans Mono"_s);
        font.setPixelSize(13);
        layout.setFont(font);
        layout.setWidth(columns * layout.advance());
        storage.setText(text);
        storage.setForeground({0, storage.length()}, green);
        for (qsizetype open = text.indexOf(u'{'); open >= 0; open = text.indexOf(u'{', open + 1)) {
            storage.setForeground(TextRange::between(open, text.indexOf(u'}', open) + 1), ColorRuns::unshown);
        }
    }

    QImage picture()
    {
        QImage image(600, 200, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        for (const TextRow& row : layout.rowsBetween(0, 200)) {
            layout.paintRow(painter, row, {});
        }
        return image;
    }
    std::vector<TextRow> rows() { return layout.rowsBetween(0, 1e9); }
    qreal xOf(qsizetype offset) { return layout.xInRow(rows().front(), offset); }

    TextStorage storage;
    TextLayout layout{storage};
};

} // namespace

class ShownUnitsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theyLookAsIfTheyWereNotThere_data();
    void theyLookAsIfTheyWereNotThere();
    void theyTakeNoWidth();
    void rowsBreakAsWithoutThem();
    void whatIsNotDrawnCanChange();
    void rangesOutsideTheTextAreHarmless();
};

void ShownUnitsTest::theyLookAsIfTheyWereNotThere_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("seen");
    QTest::newRow("in a word") << u"wo{\x1b[2K}rd"_s << u"word"_s;
    QTest::newRow("first") << u"{\x1b[2K}word"_s << u"word"_s;
    QTest::newRow("last") << u"word{\x1b[2K}"_s << u"word"_s;
    QTest::newRow("a whole line") << u"one\n{\x1b[2K}\ntwo"_s << u"one\n\ntwo"_s;
    QTest::newRow("control characters") << u"a{\a\b\x01\x7f}b"_s << u"ab"_s;
    QTest::newRow("other scripts") << u"한{한글 😀}글 {\u202e}end"_s << u"한글 end"_s;
}

void ShownUnitsTest::theyLookAsIfTheyWereNotThere()
{
    QFETCH(QString, text);
    QFETCH(QString, seen);
    Page page(text);
    Page other(seen);
    QCOMPARE(page.picture(), other.picture());
    QCOMPARE(page.storage.text(), text);
}

void ShownUnitsTest::theyTakeNoWidth()
{
    Page page(u"wo{\x1b[2K}rd"_s);
    Page other(u"word"_s);
    for (qsizetype unit = 2; unit <= 8; ++unit) {
        QCOMPARE(page.xOf(unit), other.xOf(2));
    }
    QCOMPARE(page.xOf(9), other.xOf(3));
}

void ShownUnitsTest::rowsBreakAsWithoutThem()
{
    Page page(u"{aaaaaaaaaaaaaaaa}one {bbbbbb}two th{ccccccc}ree four"_s, 10);
    QStringList rows;
    for (const TextRow& row : page.rows()) {
        rows.append(page.storage.substring(row.range));
    }
    QCOMPARE(rows, (QStringList{u"{aaaaaaaaaaaaaaaa}one {bbbbbb}two "_s, u"th{ccccccc}ree four"_s}));
}

void ShownUnitsTest::whatIsNotDrawnCanChange()
{
    Page page(u"some words"_s);
    Page other(u"words"_s);
    (void)page.picture();
    page.storage.setForeground({0, 5}, ColorRuns::unshown);
    QCOMPARE(page.picture(), other.picture());
    page.storage.setForeground({0, 5}, green);
    QCOMPARE(page.picture(), Page(u"some words"_s).picture());
}

void ShownUnitsTest::rangesOutsideTheTextAreHarmless()
{
    QCOMPARE(shownUnits(u"abc"_s, {{{2, 9}, ColorRuns::unshown}, {{20, 3}, ColorRuns::unshown}}), u"ab\u2061"_s);
    QVERIFY(!hasUnshown({{{0, 3}, green}}));
}

const kelm::test::Registered<ShownUnitsTest> registered(kelm::test::Toolkit::gui);

} // namespace shown_units_test

#include "shown_units_test.moc"
