#include "platform/style/view/ink.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "search/view/go_to_line_view.h"
#include "search/view/project_search_view.h"
#include "search/view/quick_open_view.h"
#include "search/view/search_overlay.h"
#include "support/app_state_fixture.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QLineEdit>
#include <QListView>
#include <QtTest>

namespace search_overlay_looks_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : AppStateFixture
{
    SearchOverlay overlay{state};

    Fixture()
    {
        state.setSearchMode(SearchMode::replace);
        overlay.show();
        if (!QTest::qWaitForWindowExposed(&overlay)) {
            qFatal("no window");
        }
    }
    PlainButton& button(const QString& help)
    {
        for (auto* button : overlay.findChildren<PlainButton*>()) {
            if (button->accessibleName() == help) {
                return *button;
            }
        }
        qFatal("no button");
    }
    QLineEdit& field(const QString& prompt)
    {
        for (auto* field : overlay.findChildren<QLineEdit*>()) {
            if (field->placeholderText() == prompt) {
                return *field;
            }
        }
        qFatal("no field");
    }
    /// Whether the row of a field begins with a symbol.
    bool hasSymbolBefore(const QString& prompt, const QString& symbol)
    {
        auto* label = field(prompt).parentWidget()->findChild<SymbolLabel*>();
        SymbolLabel expected(symbol, 14, Tint::secondary());
        return icons::has(symbol) && label->x() < field(prompt).x() && looksLike(*label, expected);
    }
};

/// How much of the ground a shadow hides at a place, from 0 to 1.
double darkness(const QImage& image, QPoint place, const QColor& ground)
{
    return 1 - image.pixelColor(place).redF() / ground.redF();
}

/// A row of the results as it is to be painted.
QImage expectedRow(QSize size, const QColor& ground, const QString& name, const QString& line)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect inner = image.rect().adjusted(12, 4, -12, -4);
    painter.setFont(style::headlineFont());
    painter.setPen(style::ink(SystemColor::accent, Appearance::dark));
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignTop, name);
    painter.setFont(style::monospaced(11));
    painter.setPen(systemColor(SystemColor::primaryLabel, Appearance::dark));
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignBottom, line);
    return image;
}

} // namespace

class SearchOverlayLooksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theOverlaysRowsBearTheirSymbols();
    void cardsHaveRoundCorners();
    void shadowsFadeOutAroundCards_data();
    void shadowsFadeOutAroundCards();
    void aResultShowsItsFilesNameOverItsLine();
};

void SearchOverlayLooksTest::theOverlaysRowsBearTheirSymbols()
{
    Fixture fixture;
    QVERIFY(fixture.hasSymbolBefore(u"Find"_s, u"magnifyingglass"_s));
    QVERIFY(fixture.hasSymbolBefore(u"Replace"_s, u"arrow.triangle.swap"_s));
    PlainButton& caseSensitive = fixture.button(u"Case Sensitive"_s);
    PlainButton& useRegex = fixture.button(u"Use Regular Expression"_s);
    QCOMPARE(caseSensitive.look().symbol, u"textformat"_s);
    QCOMPARE(useRegex.look().symbol, u"number"_s);
    QCOMPARE(fixture.button(u"Close"_s).look().symbol, u"xmark.circle.fill"_s);
    for (PlainButton* toggle : {&caseSensitive, &useRegex}) {
        QVERIFY(icons::has(toggle->look().symbol));
        QVERIFY(toggle->isCheckable() && !toggle->isChecked());
        QVERIFY(toggle->x() > fixture.field(u"Find"_s).x());
        QVERIFY(toggle->parentWidget() == fixture.field(u"Find"_s).parentWidget());
        QTest::mouseClick(toggle, Qt::LeftButton);
        QVERIFY(toggle->isChecked());
    }
    QVERIFY(caseSensitive.x() < useRegex.x());
}

void SearchOverlayLooksTest::cardsHaveRoundCorners()
{
    Fixture fixture;
    const QImage image = fixture.overlay.grab().toImage();
    const QPoint corner = fixture.overlay.contentsRect().topLeft();
    const QColor panel = systemColor(SystemColor::windowBackground, Appearance::dark);
    // A circle of radius 12 with an outline inside it: where each row of pixels is the panel's alone.
    const auto firstOfPanel = [&](int row) {
        int x = 0;
        while (x < 40 && image.pixelColor(corner + QPoint(x, row)) != panel) {
            ++x;
        }
        return x;
    };
    QCOMPARE(firstOfPanel(3), 6);
    QCOMPARE(firstOfPanel(5), 4);
    QCOMPARE(firstOfPanel(20), 1);
}

void SearchOverlayLooksTest::shadowsFadeOutAroundCards_data()
{
    QTest::addColumn<QString>("card");
    QTest::addColumn<int>("radius");
    QTest::newRow("search") << u"search"_s << 10;
    QTest::newRow("go to line") << u"line"_s << 10;
    QTest::newRow("quick open") << u"open"_s << 20;
}

void SearchOverlayLooksTest::shadowsFadeOutAroundCards()
{
    QFETCH(QString, card);
    QFETCH(int, radius);
    AppStateFixture app;
    std::unique_ptr<QWidget> view;
    if (card == u"search") {
        view = std::make_unique<SearchOverlay>(app.state);
    } else if (card == u"line") {
        view = std::make_unique<GoToLineView>(app.state, app.log);
    } else {
        view = std::make_unique<QuickOpenView>(app.state);
    }
    // On white it shows how dark it is.
    QPalette onWhite = view->palette();
    onWhite.setColor(QPalette::Window, Qt::white);
    view->setPalette(onWhite);
    view->show();
    const QImage image = view->grab().toImage();
    const int middle = image.height() / 2;
    const QRect panel = view->contentsRect();
    QCOMPARE(panel, image.rect().adjusted(radius, radius, -radius, -radius));
    QList<double> left;
    for (int step = 1; step <= radius; ++step) {
        left.append(darkness(image, {panel.left() - step, middle}, Qt::white));
        const double right = darkness(image, {panel.right() + step, middle}, Qt::white);
        QVERIFY(std::abs(right - left.last()) < 0.01);
    }
    // The rings, one over the other, hide a little less than the sum of them, which is 0.33.
    double nearest = 1;
    for (int ring = 1; ring <= radius; ++ring) {
        nearest *= 1 - 0.33 * 2 * (1 - double(ring) / (radius + 1)) / radius;
    }
    QVERIFY2(std::abs(left.first() - (1 - nearest)) < 0.02, qPrintable(QString::number(left.first())));
    QVERIFY(std::is_sorted(left.rbegin(), left.rend()));
    QVERIFY(left.at(radius / 2) > 0.03);
    QVERIFY(left.last() < 0.02);
    // No offset: it is as dark above as it is beside.
    QVERIFY(std::abs(darkness(image, {image.width() / 2, panel.top() - 1}, Qt::white) - left.first()) < 0.01);
    QVERIFY(std::abs(darkness(image, {image.width() / 2, panel.bottom() + 1}, Qt::white) - left.first()) < 0.01);
}

void SearchOverlayLooksTest::aResultShowsItsFilesNameOverItsLine()
{
    AppStateFixture app;
    app.write(u"name.txt"_s, "one\ntwo\n  let found = iiiiWWWW\n");
    app.state.setCurrentProject(QUrl::fromLocalFile(app.folder.path()));
    ProjectSearchView view(app.state);
    view.resize(300, 400);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    auto& field = *view.findChild<QLineEdit*>();
    field.setText(u"found"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    QTRY_COMPARE(view.results().size(), 1);
    QTRY_VERIFY(!view.isSearching());
    QCOMPARE(view.results().first().lineNumber, qsizetype(3));
    auto& list = *view.findChild<QListView*>();
    const QRect place = list.visualRect(list.model()->index(0, 0));
    const QImage image = list.viewport()->grab().toImage();
    const QColor ground = image.pixelColor(5, place.bottom() + 20);
    // The line as it stands, in letters of one width, and no number beside it.
    QVERIFY(isSame(image.copy(place), expectedRow(place.size(), ground, u"name.txt"_s, u"  let found = iiiiWWWW"_s)));
    const QFontMetricsF metrics(style::monospaced(11));
    QCOMPARE(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'W'));
    QCOMPARE(list.model()->index(0, 0).data(Qt::AccessibleTextRole).toString(), u"name.txt,   let found = iiiiWWWW"_s);
}

const kelm::test::Registered<SearchOverlayLooksTest> registered(kelm::test::Toolkit::widgets);

} // namespace search_overlay_looks_test

#include "search_overlay_looks_test.moc"
