#include "app/state/notices.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace notices_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct Fixture
{
    ManualScheduler scheduler;
    Notices notices{scheduler};
};

} // namespace

class NoticesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsNoneAtFirst();
    void theOldestIsShown();
    void theOneThatHoldsTheInputGoesBeforeOthers();
    void progressIsToldOfTheOneThatIsShown();
    void lateProgressIsDropped();
    void stoppingEndsWhatIsShown();
    void whatCannotBeStoppedGoesOn();
    void newsLeaveAfterTheirTime();
    void newsWaitForTheirTurnAndThenHaveTheirTime();
    void newsThatSayTheSameAreSaidOnce();
    void newsThatOfferSomethingStay();
    void theOrderOfAllKinds();
    void anOfferIsTakenOnce();
    void whatGoesOnCannotBePutAway();
};

void NoticesTest::thereIsNoneAtFirst()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    QVERIFY(notices.current() == nullptr);
    QVERIFY(!notices.holdsInput());
    QVERIFY(!notices.canStop());
    notices.stop();
    notices.remove(1);
    QVERIFY(notices.current() == nullptr);
}

void NoticesTest::theOldestIsShown()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    QSignalSpy changed(&notices, &Notices::currentChanged);
    const Notices::Id first = notices.add({u"first"_s});
    QCOMPARE(changed.size(), 1);
    const Notices::Id second = notices.add({u"second"_s});
    QCOMPARE(changed.size(), 1);
    QCOMPARE(notices.current()->text, u"first"_s);
    notices.remove(first);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(notices.current()->text, u"second"_s);
    notices.remove(second);
    QCOMPARE(changed.size(), 3);
    QVERIFY(notices.current() == nullptr);
}

void NoticesTest::theOneThatHoldsTheInputGoesBeforeOthers()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    QSignalSpy held(&notices, &Notices::holdsInputChanged);
    notices.add({u"opening"_s});
    QVERIFY(held.isEmpty());
    const Notices::Id sorting = notices.add({.text = u"sorting"_s, .holdsInput = true});
    QCOMPARE(notices.current()->text, u"sorting"_s);
    QVERIFY(notices.holdsInput());
    QCOMPARE(held.size(), 1);
    notices.remove(sorting);
    QCOMPARE(notices.current()->text, u"opening"_s);
    QVERIFY(!notices.holdsInput());
    QCOMPARE(held.size(), 2);
}

void NoticesTest::progressIsToldOfTheOneThatIsShown()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    QSignalSpy progress(&notices, &Notices::progressChanged);
    const Notices::Id first = notices.add({u"first"_s, 0.0});
    const Notices::Id second = notices.add({u"second"_s, 0.0});
    notices.setProgress(first, 0.5);
    QCOMPARE(progress.size(), 1);
    QCOMPARE(notices.current()->progress, 0.5);
    notices.setProgress(first, 0.5);
    notices.setProgress(second, 0.7);
    QCOMPARE(progress.size(), 1);
    notices.remove(first);
    QCOMPARE(notices.current()->progress, 0.7);
}

void NoticesTest::lateProgressIsDropped()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    const Notices::Id gone = notices.add({u"gone"_s, 0.0});
    notices.remove(gone);
    notices.add({u"new"_s, 0.0});
    notices.setProgress(gone, 0.5);
    QCOMPARE(notices.current()->progress, 0.0);
}

void NoticesTest::stoppingEndsWhatIsShown()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    QStringList stopped;
    Notices::Id first = 0;
    Notices::Id second = 0;
    first = notices.add({.text = u"first"_s, .stop = [&] {
                             stopped << u"first"_s;
                             notices.remove(first);
                         }});
    second = notices.add({.text = u"second"_s, .stop = [&] {
                              stopped << u"second"_s;
                              notices.remove(second);
                          }});
    QVERIFY(notices.canStop());
    notices.stop();
    QCOMPARE(stopped, QStringList{u"first"_s});
    notices.stop();
    notices.stop();
    QCOMPARE(stopped, (QStringList{u"first"_s, u"second"_s}));
}

void NoticesTest::whatCannotBeStoppedGoesOn()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    notices.add({u"on and on"_s});
    QVERIFY(!notices.canStop());
    notices.stop();
    QCOMPARE(notices.current()->text, u"on and on"_s);
}

void NoticesTest::newsLeaveAfterTheirTime()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    notices.report(u"saved elsewhere"_s);
    QVERIFY(notices.current()->isNews);
    fixture.scheduler.advance(Notices::newsTime - 1ms);
    QCOMPARE(notices.current()->text, u"saved elsewhere"_s);
    fixture.scheduler.advance(1ms);
    QVERIFY(notices.current() == nullptr);
}

void NoticesTest::newsWaitForTheirTurnAndThenHaveTheirTime()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    notices.report(u"first"_s);
    fixture.scheduler.advance(4s);
    notices.report(u"second"_s);
    QCOMPARE(notices.current()->text, u"first"_s);
    // What holds the input comes between, and the news begin anew behind it.
    const Notices::Id sorting = notices.add({.text = u"sorting"_s, .holdsInput = true});
    fixture.scheduler.advance(60s);
    notices.remove(sorting);
    QCOMPARE(notices.current()->text, u"first"_s);
    fixture.scheduler.advance(Notices::newsTime);
    QCOMPARE(notices.current()->text, u"second"_s);
    fixture.scheduler.advance(Notices::newsTime);
    QVERIFY(notices.current() == nullptr);
}

void NoticesTest::newsThatSayTheSameAreSaidOnce()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    const Notices::Id first = notices.report(u"not there"_s);
    QCOMPARE(notices.report(u"not there"_s), first);
    QVERIFY(notices.report(u"not there"_s, {{u"Look"_s, [] {}}}) != first);
    fixture.scheduler.advance(Notices::newsTime);
    QCOMPARE(notices.current()->offers.size(), 1U);
}

void NoticesTest::newsThatOfferSomethingStay()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    const Notices::Id first = notices.report(u"first"_s, {{u"Reopen"_s, [] {}}});
    notices.report(u"second"_s, {{u"Reopen"_s, [] {}}});
    fixture.scheduler.advance(1h);
    QCOMPARE(notices.current()->text, u"second"_s);
    notices.putAway();
    QCOMPARE(notices.current()->text, u"first"_s);
    notices.remove(first);
    QVERIFY(notices.current() == nullptr);
}

void NoticesTest::theOrderOfAllKinds()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    notices.report(u"closed"_s, {{u"Reopen"_s, [] {}}});
    const Notices::Id opening = notices.add({u"opening"_s});
    notices.add({u"opening more"_s});
    notices.report(u"not there"_s);
    const Notices::Id sorting = notices.add({.text = u"sorting"_s, .holdsInput = true});
    QCOMPARE(notices.current()->text, u"sorting"_s);
    notices.remove(sorting);
    QCOMPARE(notices.current()->text, u"not there"_s);
    notices.putAway();
    QCOMPARE(notices.current()->text, u"opening"_s);
    notices.remove(opening);
    QCOMPARE(notices.current()->text, u"opening more"_s);
}

void NoticesTest::anOfferIsTakenOnce()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    QStringList taken;
    notices.report(u"changed"_s, {{u"Reload"_s, [&] { taken << u"reload"_s; }},
                                  {u"Keep mine"_s, [&] {
                                       // It has gone by then, and another may come.
                                       taken << u"keep"_s << QString::number(notices.current() == nullptr);
                                       notices.report(u"kept"_s);
                                   }}});
    notices.accept(2);
    notices.accept(-1);
    QVERIFY(taken.isEmpty());
    notices.accept(1);
    QCOMPARE(taken, (QStringList{u"keep"_s, u"1"_s}));
    notices.accept(1);
    QCOMPARE(taken.size(), 2);
    QCOMPARE(notices.current()->text, u"kept"_s);
}

void NoticesTest::whatGoesOnCannotBePutAway()
{
    Fixture fixture;
    Notices& notices = fixture.notices;
    notices.putAway();
    notices.add({u"opening"_s});
    notices.putAway();
    QCOMPARE(notices.current()->text, u"opening"_s);
}

const kelm::test::Registered<NoticesTest> registered;

} // namespace notices_test

#include "notices_test.moc"
