#include "git/panel/view/panel_fixture.h"
#include "git/panel/view/shown_widgets.h"
#include "support/painted_text.h"
#include "support/test_program.h"

namespace source_control_view_rows_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A row of a list as it is drawn, away from the mouse.
struct ShownRow
{
    ShownRow(RowList& list, int item)
        : place(list.visualRect(list.model()->index(item, 0))),
          picture(list.viewport()->grab().toImage()),
          ground(picture.pixelColor(place.left() + 2, place.center().y()))
    {}

    /// What stands in a stretch of it, without the room around that.
    QImage drawn(int left, int width) const
    {
        return ink(picture, {place.left() + left, place.top() + 1, width, place.height() - 2}, ground);
    }
    QRectF symbolPlace() const { return {place.left() + 8.0, place.top() + (place.height() - 13) / 2.0, 13, 13}; }
    QImage symbol() const { return picture.copy(symbolPlace().toAlignedRect()); }

    QRect place;
    QImage picture;
    QColor ground;
};

} // namespace

/// How the panel's rows are drawn, and what stands in them.
class SourceControlViewRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void titlesOfSectionsAreBoldCapitals();
    void rowsUnderTheMouseStandOut_data();
    void rowsUnderTheMouseStandOut();
    void rowsAreDrawnInTheirTypeAndColours();
    void rowsAreDrawnWithTheirSymbols();
    void actionsOfRowsHaveTheirSymbols();
};

void SourceControlViewRowsTest::initTestCase()
{
    useFixedGitEnvironment();
    style::installOn(*qApp);
}

void SourceControlViewRowsTest::titlesOfSectionsAreBoldCapitals()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    RowList& list = f.list();
    QCOMPARE(f.lines().first(), u"# Changes"_s);
    const QRect place = list.visualRect(list.model()->index(0, 0)).adjusted(1, 1, -1, -1);
    const QImage picture = list.viewport()->grab().toImage();
    const QColor ground = picture.pixelColor(place.topRight());
    const QFont font = style::interfaceFont(10, QFont::Bold);
    QVERIFY(isSame(ink(picture, place, ground), inkOf(u"CHANGES"_s, font, Tint::secondary(), ground)));
}

void SourceControlViewRowsTest::rowsUnderTheMouseStandOut_data()
{
    QTest::addColumn<SourceControlTab>("tab");
    QTest::newRow("files") << SourceControlTab::changes;
    QTest::newRow("commits") << SourceControlTab::history;
}

void SourceControlViewRowsTest::rowsUnderTheMouseStandOut()
{
    QFETCH(SourceControlTab, tab);
    PanelFixture f;
    f.repo.commitAll(u"second"_s);
    f.repo.write(u"a.txt"_s, "two\n");
    f.repo.write(u"b.txt"_s, "b\n");
    f.show(tab);
    RowList& list = f.list();
    const int count = list.rows().rowCount();
    QVERIFY(count >= 2);
    const auto groundOf = [&](int item) {
        const QRect place = list.visualRect(list.model()->index(item, 0));
        return list.viewport()->grab().toImage().pixelColor(place.left() + 6, place.center().y());
    };
    const auto hoverOver = [&](int item) {
        hover(list, item);
        QCoreApplication::processEvents();
    };
    const QColor base = groundOf(count - 1);
    for (const int item : {count - 1, count - 2}) {
        hoverOver(item);
        QVERIFY(isNear(groundOf(item), over(base, Tint::primary().at(0.05))));
        QVERIFY(isNear(groundOf(item == count - 1 ? count - 2 : count - 1), base));
    }
}

void SourceControlViewRowsTest::rowsAreDrawnInTheirTypeAndColours()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    const ShownRow row(f.list(), itemOf(f.list(), u"M a.txt"_s));
    QVERIFY(isText(row.drawn(8, 12), u"M"_s, style::interfaceFont(10, QFont::Bold), SystemColor::yellow, row.ground));
    QVERIFY(isText(row.drawn(21, 150), u"a.txt"_s, style::monospaced(12), Tint::primary(), row.ground));
}

void SourceControlViewRowsTest::rowsAreDrawnWithTheirSymbols()
{
    PanelFixture f;
    f.repo.git({u"branch"_s, u"side"_s});
    f.repo.git({u"update-ref"_s, u"refs/remotes/origin/far"_s, u"HEAD"_s});
    f.repo.git({u"tag"_s, u"v1"_s});
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, u"/x"_s});
    f.show(SourceControlTab::branches);
    const auto symbolOf = [&f](int item) { return ShownRow(f.list(), item).symbol(); };
    const auto expected = [&f](int item, const QString& symbol, const Tint& tint) {
        const ShownRow row(f.list(), item);
        QImage picture(row.picture.size(), QImage::Format_RGB32);
        picture.fill(row.ground);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        icons::paint(painter, symbol, row.symbolPlace(), style::ink(tint, Appearance::dark));
        painter.end();
        return picture.copy(row.symbolPlace().toAlignedRect());
    };
    const int current = itemOf(f.list(), u"main"_s);
    QVERIFY(isSame(symbolOf(current), expected(current, u"checkmark.circle.fill"_s, Tint::accent())));
    const int other = itemOf(f.list(), u"side"_s);
    QVERIFY(isSame(symbolOf(other), expected(other, u"circle"_s, Tint::secondary())));
    const int remote = itemOf(f.list(), u"origin/far"_s);
    QVERIFY(isSame(symbolOf(remote), expected(remote, u"cloud"_s, Tint::secondary())));
    f.view.setTab(SourceControlTab::tags);
    QVERIFY(isSame(symbolOf(0), expected(0, u"tag.fill"_s, Tint::secondary())));
    f.view.setTab(SourceControlTab::remotes);
    QVERIFY(isSame(symbolOf(0), expected(0, u"network"_s, Tint::secondary())));
}

void SourceControlViewRowsTest::actionsOfRowsHaveTheirSymbols()
{
    PanelFixture f;
    f.repo.write(u"b.txt"_s, "b\n");
    f.repo.git({u"add"_s, u"-A"_s});
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    const auto& viewport = *f.list().viewport();
    hover(f.list(), itemOf(f.list(), u"A b.txt"_s));
    QCOMPARE(buttonsIn(viewport), QStringList{u"minus.circle|Unstage"_s});
    hover(f.list(), itemOf(f.list(), u"M a.txt"_s));
    QCOMPARE(buttonsIn(viewport), (QStringList{u"plus.circle|Stage"_s, u"arrow.uturn.backward.circle|Discard"_s}));
    for (const PlainButton* button : shownIn<PlainButton>(viewport)) {
        QVERIFY(button->look().ground == Tint::clear());
    }
}

const kelm::test::Registered<SourceControlViewRowsTest> registered(kelm::test::Toolkit::widgets);

} // namespace source_control_view_rows_test

#include "source_control_view_rows_test.moc"
