#include "git/panel/view/credential_status_row.h"
#include "platform/style/view/icons.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "support/painted_text.h"
#include "support/test_program.h"

#include <QApplication>
#include <QtTest>

namespace credential_status_row_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

/// A symbol as it has to be drawn on a ground, at a place in a chip.
QImage symbolPicture(const QString& symbol, const QRectF& place, const Tint& tint, const QColor& ground,
                     const QSize& chip)
{
    QImage picture(chip, QImage::Format_RGB32);
    picture.fill(ground);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    icons::paint(painter, symbol, place, style::ink(tint, Appearance::dark));
    return picture;
}

} // namespace

class CredentialStatusRowTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qobject_cast<QApplication*>(QCoreApplication::instance())); }

    void aChipTellsByItsColours_data();
    void aChipTellsByItsColours();
    void eachChipTellsOfItsOwnSource_data();
    void eachChipTellsOfItsOwnSource();
};

void CredentialStatusRowTest::aChipTellsByItsColours_data()
{
    QTest::addColumn<bool>("isPresent");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<Tint>("symbolTint");
    QTest::addColumn<Tint>("groundTint");
    QTest::newRow("found") << true << u"checkmark.circle.fill"_s << Tint(SystemColor::green)
                           << Tint(SystemColor::green).at(0.1);
    QTest::newRow("not found") << false << u"circle"_s << Tint::secondary() << Tint::secondary().at(0.08);
}

void CredentialStatusRowTest::aChipTellsByItsColours()
{
    QFETCH(bool, isPresent);
    QFETCH(QString, symbol);
    QFETCH(Tint, symbolTint);
    QFETCH(Tint, groundTint);
    QWidget window;
    auto* chip = new CredentialChip(u"SSH key"_s, &window);
    chip->resize(chip->sizeHint());
    window.resize(chip->size());
    // What it showed before is gone.
    chip->setPresent(!isPresent);
    chip->setPresent(isPresent);
    const QImage picture = window.grab().toImage();

    const QColor below = window.palette().color(QPalette::Window);
    const QColor ground = over(below, groundTint);
    QVERIFY(isNear(picture.pixelColor(picture.width() / 2, 1), ground));
    QVERIFY(isNear(picture.pixelColor(picture.width() / 2, picture.height() - 2), ground));
    QVERIFY(isNear(picture.pixelColor(0, 0), below));
    QVERIFY(isNear(picture.pixelColor(picture.width() - 1, picture.height() - 1), below));
    // The symbol stands before the label, in a square of 11 in the middle.
    const QRectF square(8, (picture.height() - 11) / 2.0, 11, 11);
    const QImage wanted = symbolPicture(symbol, square, symbolTint, ground, picture.size());
    QVERIFY(isSame(ink(picture, square.toAlignedRect(), ground), ink(wanted, square.toAlignedRect(), ground)));
}

void CredentialStatusRowTest::eachChipTellsOfItsOwnSource_data()
{
    QTest::addColumn<CredentialStatus>("status");
    QTest::addColumn<QString>("chip");
    QTest::newRow("key") << CredentialStatus{.hasSSHKey = true} << u"SSH key"_s;
    QTest::newRow("command line") << CredentialStatus{.hasGitHubCLI = true} << u"gh CLI"_s;
    QTest::newRow("helper") << CredentialStatus{.hasGitCredentialHelper = true} << u"git helper"_s;
    QTest::newRow("none") << CredentialStatus() << QString();
}

void CredentialStatusRowTest::eachChipTellsOfItsOwnSource()
{
    QFETCH(CredentialStatus, status);
    QFETCH(QString, chip);
    CredentialStatusRow row;
    row.setStatus(status);
    QStringList labels;
    for (const auto* each : row.findChildren<CredentialChip*>()) {
        labels.append(each->accessibleName());
        QCOMPARE(each->isPresent(), each->accessibleName() == chip);
    }
    QCOMPARE(labels, (QStringList{u"SSH key"_s, u"gh CLI"_s, u"git helper"_s}));
    QCOMPARE(row.findChild<WrappedLabel*>()->text(), status.hint());
}

const kelm::test::Registered<CredentialStatusRowTest> registered(kelm::test::Toolkit::widgets);

} // namespace credential_status_row_test

#include "credential_status_row_test.moc"
