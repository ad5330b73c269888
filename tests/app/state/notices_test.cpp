#include "app/state/notices.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace notices_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

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
};

void NoticesTest::thereIsNoneAtFirst()
{
    Notices notices;
    QVERIFY(notices.current() == nullptr);
    QVERIFY(!notices.holdsInput());
    QVERIFY(!notices.canStop());
    notices.stop();
    notices.remove(1);
    QVERIFY(notices.current() == nullptr);
}

void NoticesTest::theOldestIsShown()
{
    Notices notices;
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
    Notices notices;
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
    Notices notices;
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
    Notices notices;
    const Notices::Id gone = notices.add({u"gone"_s, 0.0});
    notices.remove(gone);
    notices.add({u"new"_s, 0.0});
    notices.setProgress(gone, 0.5);
    QCOMPARE(notices.current()->progress, 0.0);
}

void NoticesTest::stoppingEndsWhatIsShown()
{
    Notices notices;
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
    Notices notices;
    notices.add({u"on and on"_s});
    QVERIFY(!notices.canStop());
    notices.stop();
    QCOMPARE(notices.current()->text, u"on and on"_s);
}

const kelm::test::Registered<NoticesTest> registered;

} // namespace notices_test

#include "notices_test.moc"
