#include "git/diff/diff_parser.h"
#include "git/diff/diff_search.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

#include <random>

namespace diff_search_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Side = SideBySideHunkLines::Side;
using Direction = DiffSearch::Direction;
using State = DiffSearch::State;

struct Found
{
    DiffTextPlace place;
    Side side = Side::newSide;

    bool operator==(const Found&) const = default;
};

/// Every match, in the order of reading.
std::vector<Found> allMatches(const DiffLayout& layout, const QString& text)
{
    std::vector<Found> found;
    const auto take = [&](QStringView line, DiffTextPlace place, Side side) {
        for (qsizetype at = line.indexOf(text, 0, Qt::CaseInsensitive); at >= 0;
             at = line.indexOf(text, at + text.size(), Qt::CaseInsensitive)) {
            place.unit = at;
            found.push_back({place, side});
        }
    };
    for (qsizetype file = 0; file < layout.files().size(); ++file) {
        take(shownPath(layout.files()[file]), {file, -1, 0, 0}, Side::newSide);
        for (qsizetype hunk = 0; hunk < layout.files()[file].hunks.size(); ++hunk) {
            for (qsizetype entry = 0; entry < layout.entryCount(file, hunk); ++entry) {
                const DiffLine* oldLine = lineOn(Side::oldSide, layout, file, hunk, entry);
                const DiffLine* newLine = lineOn(Side::newSide, layout, file, hunk, entry);
                if (oldLine != nullptr && oldLine != newLine) {
                    take(oldLine->text, {file, hunk, entry, 0}, Side::oldSide);
                }
                if (newLine != nullptr) {
                    take(newLine->text, {file, hunk, entry, 0}, Side::newSide);
                }
            }
        }
    }
    return found;
}

QString randomDiff(std::mt19937& random)
{
    const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
    QString text;
    for (int file = below(4) + 1; file > 0; --file) {
        QList<QStringList> hunks;
        for (int hunk = below(4); hunk > 0; --hunk) {
            QStringList lines;
            for (int line = below(5); line > 0; --line) {
                const QStringList words{u"ab"_s, u"Abab"_s, QString(), u"c"_s, u"cab a"_s};
                lines.append(QString(u" +-"_s[below(3)]) + words[below(5)]);
            }
            hunks.append(lines);
        }
        QString piece = diffOf(below(2) == 0 ? u"ab.txt"_s : u"c"_s, hunks);
        if (below(3) == 0) {
            // As git writes a name beyond ASCII.
            piece.replace(u"a/c"_s, uR"("a/\303\244ab")"_s).replace(u"b/c"_s, uR"("b/\303\244ab")"_s);
        }
        text += piece;
    }
    return text;
}

} // namespace

class DiffSearchTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesFollowEachOther_data();
    void matchesFollowEachOther();
    void whatIsNotThereIsNotFound();
    void placeThatIsGoneIsAnEnd_data();
    void placeThatIsGoneIsAnEnd();
    void longDiffIsSearchedInPieces();
};

void DiffSearchTest::matchesFollowEachOther_data()
{
    QTest::addColumn<DiffViewMode>("mode");
    QTest::addColumn<Direction>("direction");
    for (const DiffViewMode mode : allDiffViewModes) {
        QTest::addRow("%s, forwards", qPrintable(rawValue(mode))) << mode << Direction::forwards;
        QTest::addRow("%s, backwards", qPrintable(rawValue(mode))) << mode << Direction::backwards;
    }
}

void DiffSearchTest::matchesFollowEachOther()
{
    QFETCH(DiffViewMode, mode);
    QFETCH(Direction, direction);
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        const DiffLayout layout(DiffParser::parse(randomDiff(random)), mode, {}, 80);
        const QString text = u"aB"_s;
        std::vector<Found> expected = allMatches(layout, text);
        if (direction == Direction::backwards) {
            std::reverse(expected.begin(), expected.end());
        }
        // From the one end through to the other and round to the first again.
        DiffTextPlace from =
            direction == Direction::forwards ? DiffTextPlace{} : DiffTextPlace{layout.files().size(), -1, 0, 0};
        auto side = Side::oldSide;
        for (std::size_t match = 0; match <= expected.size() && !expected.empty(); ++match) {
            DiffSearch search(layout, text, from, side, direction);
            State state = State::looking;
            while (state == State::looking) {
                state = search.look(40);
            }
            QVERIFY2(state == State::found, qPrintable(u"seed %1"_s.arg(seed)));
            const DiffSelection& found = *search.match();
            QVERIFY2((Found{found.anchor, found.side} == expected[match % expected.size()]),
                     qPrintable(u"seed %1, match %2"_s.arg(seed).arg(match)));
            QCOMPARE(found.caret.unit, found.anchor.unit + text.size());
            QCOMPARE(search.hasWrapped(), match == expected.size());
            from = direction == Direction::forwards ? found.caret : found.anchor;
            side = found.side;
        }
    }
}

void DiffSearchTest::whatIsNotThereIsNotFound()
{
    const DiffLayout layout(DiffParser::parse(diffOf(u"a"_s, {{u"-x"_s, u"+y"_s}})), DiffViewMode::unified, {}, 80);
    for (const QString& text : {u"z"_s, u"-x"_s, QString(), u"xy"_s}) {
        for (const Direction direction : {Direction::forwards, Direction::backwards}) {
            DiffSearch search(layout, text, {0, 0, 1, 0}, Side::newSide, direction);
            QCOMPARE(search.look(1000), State::nothing);
            QVERIFY(!search.match());
        }
    }
    const DiffLayout empty;
    QCOMPARE(DiffSearch(empty, u"a"_s, {}, Side::newSide, Direction::forwards).look(10), State::nothing);
}

void DiffSearchTest::placeThatIsGoneIsAnEnd_data()
{
    QTest::addColumn<DiffTextPlace>("from");
    QTest::newRow("a file behind the last") << DiffTextPlace{2, -1, 0, 0};
    QTest::newRow("a line there") << DiffTextPlace{2, 0, 0, 3};
    QTest::newRow("a hunk behind a file's last") << DiffTextPlace{0, 2, 0, 3};
    QTest::newRow("a hunk of a file without any") << DiffTextPlace{1, 0, 0, 3};
    QTest::newRow("a line behind a hunk's last") << DiffTextPlace{0, 0, 1, 3};
    QTest::newRow("a line far behind it") << DiffTextPlace{0, 1, 99, 3};
}

void DiffSearchTest::placeThatIsGoneIsAnEnd()
{
    QFETCH(DiffTextPlace, from);
    const QList<DiffFile> files = DiffParser::parse(diffOf(u"a"_s, {{u" a"_s}, {u" a"_s}}) + diffOf(u"image a"_s, {}));
    const DiffLayout layout(files, DiffViewMode::unified, {}, 80);
    const auto found = [&](Direction direction) {
        DiffSearch search(layout, u"a"_s, from, Side::newSide, direction);
        return search.look(1'000'000) == State::found && !search.hasWrapped() ? search.match()->anchor
                                                                              : DiffTextPlace{};
    };
    QCOMPARE(found(Direction::forwards), (DiffTextPlace{0, -1, 0, 0}));
    QCOMPARE(found(Direction::backwards), (DiffTextPlace{1, -1, 0, 6}));
}

void DiffSearchTest::longDiffIsSearchedInPieces()
{
    QStringList lines(1000, u" nothing here"_s);
    lines.append(u"+there"_s);
    const DiffLayout layout(DiffParser::parse(diffOf(u"a"_s, {lines})), DiffViewMode::unified, {}, 80);
    DiffSearch search(layout, u"there"_s, {}, Side::oldSide, Direction::forwards);
    int pieces = 0;
    while (search.look(1000) == State::looking) {
        ++pieces;
    }
    QVERIFY(pieces > 30);
    QCOMPARE(search.match()->anchor, (DiffTextPlace{0, 0, 1000, 0}));
}

const kelm::test::Registered<DiffSearchTest> registered;

} // namespace diff_search_test

#include "diff_search_test.moc"
