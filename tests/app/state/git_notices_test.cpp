#include "app/state/git_notices.h"
#include "git/service/git_service.h"
#include "git/service/git_transfers.h"
#include "platform/process/process_stop.h"
#include "support/app_state_fixture.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QTimer>
#include <QtTest>

namespace git_notices_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;
using namespace std::chrono_literals;

namespace {

struct Fixture : AppStateFixture
{
    Notices& notices = state.notices();
    GitTransfers& transfers = state.git().transfers();
    std::shared_ptr<ProcessStop> stop = std::make_shared<ProcessStop>();
};

} // namespace

class GitNoticesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTransferIsToldOfAndHoldsNothing();
    void aTransferIsStoppedByItsOffer();
    void nothingIsLookedAtWhenNoTransferRuns();
    void aWaitHoldsEverythingAndIsStopped();
    void aRealWaitIsToldOfAndStopped();
};

void GitNoticesTest::aTransferIsToldOfAndHoldsNothing()
{
    Fixture fixture;
    const quint64 fetch = fixture.transfers.add(u"git fetch"_s, fixture.stop);
    const Notice* notice = fixture.notices.current();
    QVERIFY(notice != nullptr);
    QCOMPARE(notice->text, u"git fetch"_s);
    QCOMPARE(notice->time, std::optional(0s));
    QVERIFY(!notice->isNews);
    QVERIFY(!fixture.notices.holdsInput());
    // Escape has other meanings in a window that goes on.
    QVERIFY(!fixture.notices.canStop());
    fixture.transfers.remove(fetch);
    QVERIFY(fixture.notices.current() == nullptr);
}

void GitNoticesTest::aTransferIsStoppedByItsOffer()
{
    Fixture fixture;
    const auto other = std::make_shared<ProcessStop>();
    fixture.transfers.add(u"git fetch"_s, fixture.stop);
    const quint64 clone = fixture.transfers.add(u"git clone"_s, other);
    QCOMPARE(fixture.notices.current()->offers.front().label, u"Stop"_s);
    fixture.notices.accept(0);
    QVERIFY(fixture.stop->isAsked());
    QVERIFY(!other->isAsked());
    QCOMPARE(fixture.notices.current()->text, u"git clone"_s);
    fixture.transfers.remove(clone);
    QVERIFY(fixture.notices.current() == nullptr);
}

void GitNoticesTest::nothingIsLookedAtWhenNoTransferRuns()
{
    Fixture fixture;
    const std::size_t before = fixture.scheduler.pending();
    const quint64 fetch = fixture.transfers.add(u"git fetch"_s, fixture.stop);
    const quint64 push = fixture.transfers.add(u"git push"_s, fixture.stop);
    QCOMPARE(fixture.scheduler.pending(), before + 1);
    fixture.scheduler.advance(3s);
    QCOMPARE(fixture.scheduler.pending(), before + 1);
    fixture.transfers.remove(fetch);
    fixture.transfers.remove(push);
    fixture.scheduler.advance(1s);
    QCOMPARE(fixture.scheduler.pending(), before);
}

void GitNoticesTest::aWaitHoldsEverythingAndIsStopped()
{
    ManualScheduler scheduler;
    Notices notices(scheduler);
    GitNotices gitNotices(notices, scheduler);
    const PatientRunner::Signs signs = gitNotices.signs();
    int stops = 0;
    signs.began({.program = u"/usr/bin/git"_s, .arguments = {u"commit"_s, u"-m"_s}}, [&stops] { ++stops; });
    QVERIFY(notices.holdsInput());
    QVERIFY(notices.stopsAll());
    QCOMPARE(notices.current()->text, u"git commit"_s);
    signs.lasted(3s);
    QCOMPARE(notices.current()->time, std::optional(3s));
    notices.stop();
    QCOMPARE(stops, 1);
    // It takes its time to end.
    QVERIFY(notices.stopsAll());
    signs.ended();
    QVERIFY(notices.current() == nullptr);
}

void GitNoticesTest::aRealWaitIsToldOfAndStopped()
{
    useFixedGitEnvironment();
    Fixture fixture;
    TemporaryRepository repository;
    repository.git({u"config"_s, u"alias.nap"_s, u"!sleep 60"_s});
    QVERIFY(fixture.state.git().open(repository.url()));
    QString told;
    QObject::connect(&fixture.notices, &Notices::currentChanged, this, [&] {
        if (fixture.notices.stopsAll()) {
            told = fixture.notices.current()->text;
            fixture.notices.stop();
        }
    });
    QCOMPARE(fixture.state.git().runOp({u"nap"_s}), GitOpResult::failure(u"git nap was stopped."_s));
    QCOMPARE(told, u"git nap"_s);
    QVERIFY(!fixture.notices.holdsInput());
}

const kelm::test::Registered<GitNoticesTest> registered;

} // namespace git_notices_test

#include "git_notices_test.moc"
