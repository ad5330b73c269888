#include "platform/process/child_groups.h"
#include "platform/process/told_shell.h"
#include "support/test_program.h"

#include <QtTest>

#include <csignal>
#include <unistd.h>

namespace child_groups_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Shell : ToldShell
{
    Shell(const QString& line, bool ownGroup) : ToldShell(u"/bin/sh"_s, line, ownGroup, 0) {}
};

} // namespace

class ChildGroupsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTableShowsThisProcess();
    void nothingToEndIsNothing();
    void childrenAreHungUp_data();
    void childrenAreHungUp();
    void whatTheyHaveStartedGoesToo_data();
    void whatTheyHaveStartedGoesToo();
    void whoeverHoldsOutIsKilled();
    void aChildThatWasStoppedEnds();
    void whatIsDetachedGoesOn_data();
    void whatIsDetachedGoesOn();
    void ignoredHangUpsAreNotHandedDown();
};

void ChildGroupsTest::theTableShowsThisProcess()
{
    const std::vector<ProcessEntry> table = processTable();
    const auto self =
        std::find_if(table.begin(), table.end(), [](const ProcessEntry& entry) { return entry.id == ::getpid(); });
    QVERIFY(self != table.end());
    QCOMPARE(self->parent, qint64(::getppid()));
    QCOMPARE(self->group, qint64(::getpgrp()));
    QCOMPARE(self->session, qint64(::getsid(0)));
    QVERIFY(self->start > 0 && !self->hasEnded);
    const auto before = std::signal(SIGUSR1, SIG_IGN);
    QVERIFY(ignoresSignal(::getpid(), SIGUSR1));
    std::signal(SIGUSR1, before);
    QVERIFY(!ignoresSignal(::getpid(), SIGUSR1));
}

void ChildGroupsTest::nothingToEndIsNothing()
{
    endChildren();
    QVERIFY(lives(::getpid()));
}

void ChildGroupsTest::childrenAreHungUp_data()
{
    QTest::addColumn<bool>("ownGroup");
    QTest::newRow("in a group of its own") << true;
    QTest::newRow("in this group") << false;
}

void ChildGroupsTest::childrenAreHungUp()
{
    QFETCH(bool, ownGroup);
    Shell shell(u"echo ready; exec sleep 1000"_s, ownGroup);
    QVERIFY(shell.isReady);
    endChildren();
    QVERIFY(!lives(shell.child.processId()));
    QTRY_VERIFY(shell.exit);
    QCOMPARE(*shell.exit, (ProcessExit{SIGHUP, true}));
}

void ChildGroupsTest::whatTheyHaveStartedGoesToo_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("ownGroup");
    const QString children = u"sleep 1000 & echo $!; sleep 1000 & echo $!; echo ready; wait"_s;
    QTest::newRow("children of a group") << children << true;
    QTest::newRow("children in this group") << children << false;
    QTest::newRow("left behind") << u"sleep 1000 & echo $!; echo ready"_s << true;
    QTest::newRow("in a group that they made") << u"timeout 1000 sleep 1000 & echo $!; echo ready; wait"_s << true;
}

void ChildGroupsTest::whatTheyHaveStartedGoesToo()
{
    QFETCH(QString, line);
    QFETCH(bool, ownGroup);
    Shell shell(line, ownGroup);
    QVERIFY(shell.isReady);
    const QList<qint64> started = shell.told();
    QVERIFY(!started.isEmpty());
    for (const qint64 process : started) {
        QVERIFY(lives(process));
    }
    endChildren();
    for (const qint64 process : started) {
        QVERIFY(!lives(process));
    }
    QTRY_VERIFY(shell.exit);
}

void ChildGroupsTest::whoeverHoldsOutIsKilled()
{
    Shell shell(u"trap : HUP; echo ready; while :; do sleep 0.01; done"_s, true);
    QVERIFY(shell.isReady);
    endChildren(std::chrono::milliseconds(50));
    QVERIFY(!lives(shell.child.processId()));
    QTRY_VERIFY(shell.exit);
    QCOMPARE(*shell.exit, (ProcessExit{SIGKILL, true}));
}

void ChildGroupsTest::aChildThatWasStoppedEnds()
{
    Shell shell(u"echo ready; kill -STOP $$"_s, true);
    QVERIFY(shell.isReady);
    endChildren();
    QVERIFY(!lives(shell.child.processId()));
    QTRY_VERIFY(shell.exit);
    QCOMPARE(*shell.exit, (ProcessExit{SIGHUP, true}));
}

void ChildGroupsTest::whatIsDetachedGoesOn_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("nohup") << u"nohup sleep 1000 & echo $!; echo ready; wait"_s;
    QTest::newRow("a session of its own") << u"setsid sh -c 'echo $$; echo ready; exec sleep 1000' & wait"_s;
}

void ChildGroupsTest::whatIsDetachedGoesOn()
{
    QFETCH(QString, line);
    Shell shell(line, true);
    QVERIFY(shell.isReady);
    const qint64 detached = shell.told().value(0);
    QTRY_VERIFY(ignoresSignal(detached, SIGHUP) || line.startsWith(u"setsid"_s));
    endChildren(std::chrono::milliseconds(50));
    QVERIFY(!lives(shell.child.processId()));
    QVERIFY(lives(detached));
    ::kill(static_cast<pid_t>(detached), SIGKILL);
    QTRY_VERIFY(shell.exit);
}

void ChildGroupsTest::ignoredHangUpsAreNotHandedDown()
{
    // As of a program that was itself started by nohup.
    const auto before = std::signal(SIGHUP, SIG_IGN);
    Shell shell(u"echo ready; exec sleep 1000"_s, true);
    QVERIFY(shell.isReady);
    endChildren();
    std::signal(SIGHUP, before);
    QVERIFY(!lives(shell.child.processId()));
    QTRY_VERIFY(shell.exit);
    QCOMPARE(*shell.exit, (ProcessExit{SIGHUP, true}));
}

const kelm::test::Registered<ChildGroupsTest> registered;

} // namespace child_groups_test

#include "child_groups_test.moc"
