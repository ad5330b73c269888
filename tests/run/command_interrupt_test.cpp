#include "platform/process/child_process.h"
#include "run/command_interrupt.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

#include <csignal>

namespace command_interrupt_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

/// A shell that has begun what it is told.
struct Command
{
    ChildProcess process;
    std::optional<ProcessExit> exit;

    explicit Command(const QString& line)
    {
        QString read;
        QObject::connect(&process, &ChildProcess::finished, &process, [this](const ProcessExit& told) { exit = told; });
        const auto connection = QObject::connect(&process, &ChildProcess::outputRead, &process,
                                                 [&read](const QString& text) { read += text; });
        if (process.start({.program = u"/bin/sh"_s, .arguments = {u"-c"_s, line}, .ownGroup = true})) {
            qFatal("no shell");
        }
        if (!QTest::qWaitFor([&read] { return read.contains(u"ready"_s); }, 20'000)) {
            qFatal("the shell does not begin");
        }
        QObject::disconnect(connection);
    }
};

} // namespace

class CommandInterruptTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCommandHasTwoSeconds();
    void aCommandThatHasEndedIsNotAsked();
    void endingReachesWhatIgnoresInterrupts();
};

void CommandInterruptTest::aCommandHasTwoSeconds()
{
    Command command(u"trap '' INT; echo ready; exec sleep 30"_s);
    ManualScheduler scheduler;
    CommandInterrupt interrupt(scheduler);
    const QSignalSpy changes(&interrupt, &CommandInterrupt::isOutlastedChanged);
    QVERIFY(!interrupt.isAsked() && !interrupt.isOutlasted());
    interrupt.reset();
    QVERIFY(changes.isEmpty());

    interrupt.interrupt(command.process);
    QVERIFY(interrupt.isAsked() && !interrupt.isOutlasted());
    scheduler.advance(std::chrono::seconds(2));
    QVERIFY(interrupt.isAsked() && interrupt.isOutlasted());
    QCOMPARE(changes.count(), 1);
    interrupt.reset();
    QVERIFY(!interrupt.isAsked() && !interrupt.isOutlasted());
    QCOMPARE(changes.count(), 2);

    // What is left of the time goes with it.
    interrupt.interrupt(command.process);
    scheduler.advance(std::chrono::seconds(1));
    interrupt.reset();
    scheduler.advance(std::chrono::seconds(10));
    QVERIFY(!interrupt.isOutlasted());
    QCOMPARE(changes.count(), 2);
    command.process.kill();
    QTRY_VERIFY(command.exit);
}

void CommandInterruptTest::aCommandThatHasEndedIsNotAsked()
{
    Command command(u"echo ready; exec sleep 30"_s);
    ManualScheduler scheduler;
    CommandInterrupt interrupt(scheduler);
    interrupt.interrupt(command.process);
    QTRY_VERIFY(command.exit);
    QCOMPARE(*command.exit, (ProcessExit{SIGINT, true}));
    interrupt.reset();
    interrupt.interrupt(command.process);
    QVERIFY(!interrupt.isAsked());
    scheduler.advance(std::chrono::seconds(10));
    QVERIFY(!interrupt.isOutlasted());
    interrupt.end(command.process);
}

void CommandInterruptTest::endingReachesWhatIgnoresInterrupts()
{
    Command command(u"trap '' INT; echo ready; exec sleep 30"_s);
    ManualScheduler scheduler;
    CommandInterrupt interrupt(scheduler);
    interrupt.interrupt(command.process);
    interrupt.end(command.process);
    QTRY_VERIFY(command.exit);
    QCOMPARE(*command.exit, (ProcessExit{SIGTERM, true}));
}

const kelm::test::Registered<CommandInterruptTest> registered;

} // namespace command_interrupt_test

#include "command_interrupt_test.moc"
