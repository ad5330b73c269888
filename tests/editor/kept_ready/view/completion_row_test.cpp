#include "editor/kept_ready/view/completion_row.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "support/ink_recorder.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace completion_row_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QColor ground(30, 30, 30);

/// A row of the list's size on a plain ground.
struct Fixture
{
    QWidget list;
    CompletionRow row;

    explicit Fixture(CompletionType type) : row({QUuid::createUuid(), u"guard"_s, type, u"Keyword"_s, {}}, &list)
    {
        QPalette palette = style::palette(Appearance::dark);
        palette.setColor(QPalette::Window, ground);
        list.setPalette(palette);
        list.resize(300, 28);
        row.resize(300, 28);
    }

    QImage picture() { return list.grab().toImage(); }
};

} // namespace

class CompletionRowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badgeTextAndDetailStandFromLeftToRight();
    void theBadgeIsEighteenWideInItsColour_data();
    void theBadgeIsEighteenWideInItsColour();
    void theLetterIsBoldAndWhite();
    void aSelectedRowHasAGround();
    void aClickIsToldWhenItEndsWithinTheRow();
};

void CompletionRowTest::badgeTextAndDetailStandFromLeftToRight()
{
    Fixture fixture(CompletionType::keyword);
    const std::vector<Ink> inks = inksOf(fixture.list);
    QStringList texts;
    std::vector<Ink> sorted = inks;
    std::sort(sorted.begin(), sorted.end(), [](const Ink& a, const Ink& b) { return a.place.x() < b.place.x(); });
    for (const Ink& ink : sorted) {
        texts << ink.text;
    }
    QCOMPARE(texts, (QStringList{u"k"_s, u"guard"_s, u"Keyword"_s}));
    QCOMPARE(sorted[0].color, QColor(Qt::white));
    QVERIFY(isNear(sorted[1].color, over(ground, Tint::primary().on(fixture.row))));
    QVERIFY(isNear(sorted[2].color, over(ground, Tint::secondary().on(fixture.row))));
    for (const Ink& ink : sorted) {
        QVERIFY(ink.place.top() >= 4);
        QVERIFY(ink.place.bottom() < 28 - 4);
    }
}

void CompletionRowTest::theBadgeIsEighteenWideInItsColour_data()
{
    QTest::addColumn<CompletionType>("type");
    for (const CompletionType type :
         {CompletionType::keyword, CompletionType::function, CompletionType::variable, CompletionType::type,
          CompletionType::snippet, CompletionType::property, CompletionType::method}) {
        QTest::addRow("%s", qPrintable(badgeOf(type).letter)) << type;
    }
}

void CompletionRowTest::theBadgeIsEighteenWideInItsColour()
{
    QFETCH(CompletionType, type);
    Fixture fixture(type);
    const QImage image = fixture.picture();
    const QColor color = systemColor(badgeOf(type).color, Appearance::dark);
    // The middle of its edges: the corners are round and the letter is in the midst.
    int left = 0;
    while (left < 100 && isNear(image.pixelColor(left, 14), ground)) {
        ++left;
    }
    const QRect badge(left, 5, 18, 18);
    for (const QPoint inside : {QPoint(badge.left(), 14), QPoint(badge.right(), 14),
                                QPoint(badge.center().x(), badge.top()), QPoint(badge.center().x(), badge.bottom())}) {
        QVERIFY2(isNear(image.pixelColor(inside), color), qPrintable(image.pixelColor(inside).name()));
    }
    for (const QPoint outside :
         {QPoint(badge.left() - 1, 14), QPoint(badge.right() + 1, 14), QPoint(badge.center().x(), badge.top() - 1),
          QPoint(badge.center().x(), badge.bottom() + 1)}) {
        QVERIFY(isNear(image.pixelColor(outside), ground));
    }
}

void CompletionRowTest::theLetterIsBoldAndWhite()
{
    Fixture fixture(CompletionType::snippet);
    QImage expected(300, 28, QImage::Format_RGB32);
    QPainter painter(&expected);
    painter.fillRect(expected.rect(), systemColor(SystemColor::green, Appearance::dark));
    painter.setPen(Qt::white);
    painter.setFont(style::interfaceFont(style::typeSize::subheadline, QFont::Bold));
    const QRect badge(8, 5, 18, 18);
    painter.drawText(badge, Qt::AlignCenter, u"S"_s);
    painter.end();
    // Without the round corners.
    const QRect inner = badge.adjusted(4, 1, -4, -1);
    QVERIFY(isSame(fixture.picture().copy(inner), expected.copy(inner)));
}

void CompletionRowTest::aSelectedRowHasAGround()
{
    Fixture fixture(CompletionType::keyword);
    QVERIFY(isNear(fixture.picture().pixelColor(2, 2), ground));
    fixture.row.setIsSelected(true);
    const QColor selected = over(ground, Tint::accent().at(0.3).on(fixture.row));
    for (const QPoint corner : {QPoint(0, 0), QPoint(299, 0), QPoint(0, 27), QPoint(299, 27)}) {
        QVERIFY(isNear(fixture.picture().pixelColor(corner), selected));
    }
    fixture.row.setIsSelected(false);
    QVERIFY(isNear(fixture.picture().pixelColor(2, 2), ground));
}

void CompletionRowTest::aClickIsToldWhenItEndsWithinTheRow()
{
    Fixture fixture(CompletionType::keyword);
    const QSignalSpy clicked(&fixture.row, &CompletionRow::clicked);
    QTest::mousePress(&fixture.row, Qt::LeftButton, {}, {100, 10});
    QCOMPARE(clicked.size(), 0);
    QTest::mouseRelease(&fixture.row, Qt::LeftButton, {}, {100, 10});
    QCOMPARE(clicked.size(), 1);
    QTest::mousePress(&fixture.row, Qt::LeftButton, {}, {100, 10});
    QTest::mouseRelease(&fixture.row, Qt::LeftButton, {}, {100, 40});
    QTest::mouseClick(&fixture.row, Qt::RightButton, {}, {100, 10});
    QCOMPARE(clicked.size(), 1);
}

const kelm::test::Registered<CompletionRowTest> registered(kelm::test::Toolkit::widgets);

} // namespace completion_row_test

#include "completion_row_test.moc"
