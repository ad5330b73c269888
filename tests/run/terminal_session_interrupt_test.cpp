#include "support/terminal_fixture.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace terminal_session_interrupt_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// What becomes of a command that is to stop, and of what waits behind it.
class TerminalSessionInterruptTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWaitsIsThrownAwayAndToldOnce();
    void whatIsGivenLaterIsNotThrownAway();
    void withoutAnythingWaitingNothingIsThrownAway();
    void aCommandThatIgnoresItIsToldAndCanBeEnded();
    void anObedientCommandIsNotTold();
    void thereMayBeNothingToEnd();
};

void TerminalSessionInterruptTest::whatWaitsIsThrownAwayAndToldOnce()
{
    TerminalFixture fixture;
    const QSignalSpy thrownAway(fixture.session.get(), &TerminalSession::waitingThrownAway);
    qsizetype work = 0;
    onFirstOutput(fixture, [&] {
        fixture.session->executeCommand(u"echo second"_s);
        fixture.session->executeCommand(u"pwd"_s);
        fixture.session->whenIdle([&] { ++work; });
        fixture.session->sendInterrupt();
    });
    fixture.session->executeCommand(u"echo first; exec sleep 30"_s);
    QTRY_COMPARE(thrownAway.count(), 1);
    // The lines were not run, and are there to be called back. What has nothing else to do is done all the same.
    QCOMPARE(fixture.session->commandHistory().mid(1), (QStringList{u"echo second"_s, u"pwd"_s}));
    QVERIFY(!fixture.screen.text.contains(u"second"_s));
    QVERIFY(!fixture.screen.writes.contains(u"white: \n"_s + fixture.home()));
    QCOMPARE(work, qsizetype(1));
}

void TerminalSessionInterruptTest::whatIsGivenLaterIsNotThrownAway()
{
    TerminalFixture fixture;
    onFirstOutput(fixture, [&] {
        fixture.session->executeCommand(u"echo second"_s);
        fixture.session->sendInterrupt();
        fixture.session->executeCommand(u"echo third"_s);
    });
    fixture.session->executeCommand(u"echo first; exec sleep 30"_s);
    QTRY_VERIFY(fixture.screen.writes.contains(u"output: green=third\n"_s));
    QVERIFY(!fixture.screen.text.contains(u"second"_s));
}

void TerminalSessionInterruptTest::withoutAnythingWaitingNothingIsThrownAway()
{
    TerminalFixture fixture;
    const QSignalSpy thrownAway(fixture.session.get(), &TerminalSession::waitingThrownAway);
    onFirstOutput(fixture, [&] { fixture.session->sendInterrupt(); });
    fixture.session->executeCommand(u"echo first; exec sleep 30"_s);
    bool isNext = false;
    fixture.session->whenIdle([&] { isNext = true; });
    QTRY_VERIFY(isNext);
    onFirstOutput(fixture, [&] { fixture.session->executeCommand(u"pwd"_s); });
    fixture.session->executeCommand(u"echo again; sleep 0.01"_s);
    QTRY_COMPARE(fixture.session->commandHistory().size(), 3);
    QVERIFY(thrownAway.isEmpty());
}

void TerminalSessionInterruptTest::aCommandThatIgnoresItIsToldAndCanBeEnded()
{
    TerminalFixture fixture;
    const QSignalSpy outlasted(fixture.session.get(), &TerminalSession::isInterruptOutlastedChanged);
    QList<bool> states;
    onFirstOutput(fixture, [&] {
        fixture.session->sendInterrupt();
        fixture.scheduler.advance(std::chrono::milliseconds(1999));
        states.append(fixture.session->isInterruptOutlasted());
        // Another one begins no other two seconds.
        fixture.session->sendInterrupt();
        fixture.scheduler.advance(std::chrono::milliseconds(1));
        states.append(fixture.session->isInterruptOutlasted());
        states.append(outlasted.count() == 1);
        fixture.session->endCommand();
    });
    fixture.session->executeCommand(u"trap '' INT; echo ready; while :; do sleep 0.05; done"_s);
    QCOMPARE(states, (QList<bool>{false, true, true}));
    QVERIFY(!fixture.session->isInterruptOutlasted());
    QCOMPARE(outlasted.count(), 2);
}

void TerminalSessionInterruptTest::anObedientCommandIsNotTold()
{
    TerminalFixture fixture;
    const QSignalSpy outlasted(fixture.session.get(), &TerminalSession::isInterruptOutlastedChanged);
    onFirstOutput(fixture, [&] { fixture.session->sendInterrupt(); });
    fixture.session->executeCommand(u"echo ready; exec sleep 30"_s);
    fixture.scheduler.advance(std::chrono::seconds(10));
    QVERIFY(!fixture.session->isInterruptOutlasted());
    QVERIFY(outlasted.isEmpty());
}

void TerminalSessionInterruptTest::thereMayBeNothingToEnd()
{
    TerminalFixture fixture;
    fixture.session->endCommand();
    QCOMPARE(fixture.run(u"echo hello"_s), QStringList{u"output: green=hello\n"_s});
    fixture.session->endCommand();
    QCOMPARE(fixture.run(u"echo again"_s), QStringList{u"output: green=again\n"_s});
}

const kelm::test::Registered<TerminalSessionInterruptTest> registered;

} // namespace terminal_session_interrupt_test

#include "terminal_session_interrupt_test.moc"
