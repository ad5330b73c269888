#include "git/panel/view/transfer_sign.h"
#include "platform/process/process_stop.h"
#include "platform/style/view/style.h"
#include "platform/view/activity_line.h"
#include "platform/view/plain_button.h"
#include "support/test_program.h"

#include <QtTest>

namespace transfer_sign_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    GitTransfers transfers;
    QWidget window;
    TransferSign& sign = *new TransferSign(transfers, TransferSign::Kind::others, &window);
    TransferSign& cloneSign = *new TransferSign(transfers, TransferSign::Kind::clones, &window);
    std::shared_ptr<ProcessStop> first = std::make_shared<ProcessStop>();
    std::shared_ptr<ProcessStop> second = std::make_shared<ProcessStop>();

    Fixture() { window.show(); }
};

} // namespace

class TransferSignTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void itIsThereWhileSomethingRuns();
    void clonesHaveTheirOwn();
    void theOldestIsToldOfAndStopped();
    void itCountsTheSeconds();
};

void TransferSignTest::itIsThereWhileSomethingRuns()
{
    Fixture fixture;
    const auto* activity = fixture.sign.findChild<ActivityLine*>();
    QVERIFY(fixture.sign.isHidden());
    const quint64 fetch = fixture.transfers.add(u"git fetch"_s, fixture.first);
    QVERIFY(fixture.sign.isVisible());
    QVERIFY(activity->isActive());
    QCOMPARE(fixture.sign.text(), u"git fetch, 0 s"_s);
    QCOMPARE(fixture.sign.accessibleName(), u"git fetch"_s);
    fixture.transfers.remove(fetch);
    QVERIFY(fixture.sign.isHidden());
    QVERIFY(!activity->isActive());
}

void TransferSignTest::clonesHaveTheirOwn()
{
    Fixture fixture;
    fixture.transfers.add(u"git clone"_s, fixture.first);
    QVERIFY(fixture.sign.isHidden());
    QVERIFY(fixture.cloneSign.isVisible());
    fixture.transfers.add(u"git push"_s, fixture.second);
    QCOMPARE(fixture.sign.text(), u"git push, 0 s"_s);
    fixture.cloneSign.stopButton()->click();
    QVERIFY(fixture.first->isAsked());
    QVERIFY(!fixture.second->isAsked());
}

void TransferSignTest::theOldestIsToldOfAndStopped()
{
    Fixture fixture;
    const quint64 fetch = fixture.transfers.add(u"git fetch"_s, fixture.first);
    fixture.transfers.add(u"git pull"_s, fixture.second);
    QCOMPARE(fixture.sign.text(), u"git fetch, 0 s"_s);
    fixture.sign.stopButton()->click();
    QVERIFY(fixture.first->isAsked());
    QVERIFY(!fixture.second->isAsked());
    fixture.transfers.remove(fetch);
    QCOMPARE(fixture.sign.text(), u"git pull, 0 s"_s);
}

void TransferSignTest::itCountsTheSeconds()
{
    Fixture fixture;
    fixture.transfers.add(u"git fetch"_s, fixture.first);
    QTRY_VERIFY(fixture.sign.text() != u"git fetch, 0 s");
}

const kelm::test::Registered<TransferSignTest> registered(kelm::test::Toolkit::widgets);

} // namespace transfer_sign_test

#include "transfer_sign_test.moc"
