#include "git/diff/diff_layout.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace diff_layout_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Part = DiffPlace::Part;

/// Round numbers, so that a sum tells what it is made of.
constexpr DiffMetrics metrics{.fileHeader = 1000, .hunkHeader = 100, .row = 10, .padding = 3, .spacing = 5};

QList<DiffFile> twoFiles()
{
    return DiffParser::parse(diffOf(u"a"_s, {{u" 12345678"_s, u"-x"_s, u"-y"_s, u"+z"_s}, {u" b"_s}}) +
                             u"diff --git a/i b/i\nBinary files a/i and b/i differ\n"_s);
}

} // namespace

class DiffLayoutTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsPaddingAlone();
    void heightsAddUp();
    void collapsedHunkKeepsItsHeader();
    void sideBySideFacesLines();
    void onlyLinesOfTheFileAreEntries_data();
    void onlyLinesOfTheFileAreEntries();
    void longLinesTakeSeveralRows();
    void everyPlaceIsFoundAgain_data();
    void everyPlaceIsFoundAgain();
    void widthsComeAndGo();
};

void DiffLayoutTest::nothingIsPaddingAlone()
{
    const DiffLayout layout({}, DiffViewMode::unified, metrics, 80);
    QCOMPARE(layout.height(), 6);
    QCOMPARE(layout.placeAt(0), DiffPlace{});
    QCOMPARE(layout.placeAt(4), DiffPlace{});
}

void DiffLayoutTest::heightsAddUp()
{
    const DiffLayout layout(twoFiles(), DiffViewMode::unified, metrics, 80);
    QCOMPARE(layout.fileTop(0), 3);
    QCOMPARE(layout.hunkTop(0, 0), 1003);
    QCOMPARE(layout.entryCount(0, 0), 4);
    QCOMPARE(layout.entryTop(0, 0, 3), 1133);
    QCOMPARE(layout.hunkTop(0, 1), 1143);
    QCOMPARE(layout.fileHeight(0), 1250);
    QCOMPARE(layout.fileTop(1), 1258);
    QCOMPARE(layout.fileHeight(1), 1000);
    QCOMPARE(layout.height(), 2261);
    QCOMPARE(layout.lines(0, 0, 1), (SideBySideHunkLines::Pairing{2, 2}));
}

void DiffLayoutTest::collapsedHunkKeepsItsHeader()
{
    DiffLayout layout(twoFiles(), DiffViewMode::unified, metrics, 80);
    layout.setCollapsed(0, 0, true);
    QVERIFY(layout.isCollapsed(0, 0));
    QCOMPARE(layout.hunkTop(0, 1), 1103);
    QCOMPARE(layout.fileTop(1), 1218);
    QCOMPARE(layout.placeAt(1102), (DiffPlace{Part::hunkHeader, 0, 0, 0}));
    QCOMPARE(layout.placeAt(1103), (DiffPlace{Part::hunkHeader, 0, 1, 0}));
    layout.setCollapsed(0, 0, false);
    QCOMPARE(layout.fileTop(1), 1258);
}

void DiffLayoutTest::sideBySideFacesLines()
{
    const DiffLayout layout(twoFiles(), DiffViewMode::sideBySide, metrics, 80);
    QCOMPARE(layout.entryCount(0, 0), 3);
    QCOMPARE(layout.lines(0, 0, 0), (SideBySideHunkLines::Pairing{1, 1}));
    QCOMPARE(layout.lines(0, 0, 1), (SideBySideHunkLines::Pairing{2, 4}));
    QCOMPARE(layout.lines(0, 0, 2), (SideBySideHunkLines::Pairing{3, -1}));
}

void DiffLayoutTest::onlyLinesOfTheFileAreEntries_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<qsizetype>("unified");
    QTest::addColumn<qsizetype>("sideBySide");
    QTest::newRow("none") << QString() << qsizetype(0) << qsizetype(0);
    QTest::newRow("none, with the text's end") << u"\n"_s << qsizetype(0) << qsizetype(0);
    QTest::newRow("two") << u"\n-a\n+b"_s << qsizetype(2) << qsizetype(1);
    QTest::newRow("two, with the text's end") << u"\n-a\n+b\n"_s << qsizetype(2) << qsizetype(1);
    QTest::newRow("an empty one within") << u"\n\n b\n"_s << qsizetype(2) << qsizetype(2);
    QTest::newRow("an empty one at the end") << u"\n b\n \n"_s << qsizetype(2) << qsizetype(2);
}

void DiffLayoutTest::onlyLinesOfTheFileAreEntries()
{
    QFETCH(QString, body);
    const QList<DiffFile> files = DiffParser::parse(u"@@ -1,9 +1,9 @@"_s + body);
    QTEST(DiffLayout(files, DiffViewMode::unified, metrics, 80).entryCount(0, 0), "unified");
    QTEST(DiffLayout(files, DiffViewMode::sideBySide, metrics, 80).entryCount(0, 0), "sideBySide");
}

void DiffLayoutTest::longLinesTakeSeveralRows()
{
    const DiffLayout unified(twoFiles(), DiffViewMode::unified, metrics, 3);
    QCOMPARE(unified.entryRows(0, 0, 0), 3);
    QCOMPARE(unified.entryRows(0, 0, 1), 1);
    QCOMPARE(unified.entryTop(0, 0, 1), 1133);
    QCOMPARE(unified.placeAt(1132), (DiffPlace{Part::entry, 0, 0, 0}));
    QCOMPARE(unified.placeAt(1133), (DiffPlace{Part::entry, 0, 0, 1}));

    // The longer of two lines that face each other gives the height.
    const QList<DiffFile> files = DiffParser::parse(diffOf(u"a"_s, {{u"-x"_s, u"+12345"_s, u"+y"_s}}));
    const DiffLayout sides(files, DiffViewMode::sideBySide, metrics, 2);
    QCOMPARE(sides.entryRows(0, 0, 0), 3);
    QCOMPARE(sides.entryRows(0, 0, 1), 1);
}

void DiffLayoutTest::everyPlaceIsFoundAgain_data()
{
    QTest::addColumn<bool>("isUnified");
    QTest::addColumn<int>("columns");
    QTest::addColumn<bool>("isCollapsed");
    for (const bool isUnified : {true, false}) {
        for (const int columns : {1, 3, 80}) {
            for (const bool isCollapsed : {false, true}) {
                QTest::addRow("%s, %d columns%s", isUnified ? "unified" : "side by side", columns,
                              isCollapsed ? ", one collapsed" : "")
                    << isUnified << columns << isCollapsed;
            }
        }
    }
}

void DiffLayoutTest::everyPlaceIsFoundAgain()
{
    QFETCH(bool, isUnified);
    QFETCH(int, columns);
    QFETCH(bool, isCollapsed);
    DiffLayout layout(twoFiles(), isUnified ? DiffViewMode::unified : DiffViewMode::sideBySide, metrics, columns);
    layout.setCollapsed(0, 0, isCollapsed);
    for (qint64 y = -5; y < layout.height() + 5; ++y) {
        const DiffPlace place = layout.placeAt(y);
        switch (place.part) {
        case Part::gap:
            QVERIFY(place.file == layout.files().size() || y < layout.fileTop(place.file));
            QVERIFY(place.file == 0 || y >= layout.fileTop(place.file - 1) + layout.fileHeight(place.file - 1));
            break;
        case Part::fileHeader:
            QVERIFY(y >= layout.fileTop(place.file) && y < layout.fileTop(place.file) + metrics.fileHeader);
            break;
        case Part::hunkHeader: {
            QVERIFY(place.hunk < layout.files()[place.file].hunks.size());
            const qint64 top = layout.hunkTop(place.file, place.hunk);
            QVERIFY(y >= top && y < top + metrics.hunkHeader);
            break;
        }
        case Part::entry: {
            QVERIFY(place.hunk < layout.files()[place.file].hunks.size());
            QVERIFY(!layout.isCollapsed(place.file, place.hunk));
            QVERIFY(place.entry < layout.entryCount(place.file, place.hunk));
            const qint64 top = layout.entryTop(place.file, place.hunk, place.entry);
            QVERIFY(y >= top);
            QVERIFY(y < top + layout.entryRows(place.file, place.hunk, place.entry) * metrics.row);
            break;
        }
        }
    }
}

void DiffLayoutTest::widthsComeAndGo()
{
    QString text;
    for (const QString& name : {u"a"_s, u"b"_s, u"c"_s}) {
        text += diffOf(name, {{u" 12345678"_s, u"-x"_s, u"-y"_s, u"+z"_s}, {u" b"_s}, {u"-123456"_s, u"+1234"_s}});
    }
    for (const DiffViewMode mode : allDiffViewModes) {
        const QList<DiffFile> files = DiffParser::parse(text);
        DiffLayout changed(files, mode, metrics, 80);
        for (const qsizetype columns : {3, 2, 2, 7, 80, 1, 4, 100}) {
            changed.setColumns(columns);
            const DiffLayout fresh(files, mode, metrics, columns);
            QCOMPARE(changed.columns(), columns);
            QCOMPARE(changed.height(), fresh.height());
            for (qsizetype file = 0; file < files.size(); ++file) {
                QCOMPARE(changed.fileTop(file), fresh.fileTop(file));
                QCOMPARE(changed.fileHeight(file), fresh.fileHeight(file));
                for (qsizetype hunk = 0; hunk < files[file].hunks.size(); ++hunk) {
                    QCOMPARE(changed.hunkTop(file, hunk), fresh.hunkTop(file, hunk));
                    for (qsizetype entry = 0; entry < fresh.entryCount(file, hunk); ++entry) {
                        QCOMPARE(changed.entryRows(file, hunk, entry), fresh.entryRows(file, hunk, entry));
                    }
                }
            }
        }
    }
}

const kelm::test::Registered<DiffLayoutTest> registered;

} // namespace diff_layout_test

#include "diff_layout_test.moc"
