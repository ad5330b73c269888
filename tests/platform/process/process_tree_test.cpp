#include "platform/process/process_tree.h"
#include "platform/process/told_shell.h"
#include "support/test_program.h"

#include <QProcess>
#include <QtTest>

#include <csignal>
#include <unistd.h>

namespace process_tree_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// One that says a number too.
struct Shell : ToldShell
{
    Shell(const QString& line, bool ownGroup) : ToldShell(u"/bin/bash"_s, line, ownGroup, 1) {}

    qint64 number() const { return told().value(0); }
};

/// The processes of the table, a line each, to be said where one is there that should not be.
QString thoseThere()
{
    QString lines;
    for (const ProcessEntry& entry : processTable()) {
        lines += u"\n%1 of %2, group %3, session %4%5"_s.arg(entry.id)
                     .arg(entry.parent)
                     .arg(entry.group)
                     .arg(entry.session)
                     .arg(entry.hasEnded ? u", ended"_s : QString());
    }
    return lines;
}

} // namespace

class ProcessTreeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allOfItEnds_data();
    void allOfItEnds();
    void aSessionOfItsOwnGoesOn();
    void whatIsNoChildIsLeftAlone();
    void whoHasLostItsParentIsStillKnown();
    void theLeaderOfTheSessionMayBeOutOfSight();
};

void ProcessTreeTest::allOfItEnds_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("signal");
    const QString waits = u"echo ready; wait"_s;
    QTest::newRow("a child") << u"sleep 60 & echo $!; "_s + waits << SIGTERM;
    QTest::newRow("one that ignores it") << u"trap '' TERM; sleep 60 & echo $!; "_s + waits << SIGKILL;
    QTest::newRow("only its child ignores it")
        << u"bash -c \"trap '' TERM; echo ready; exec sleep 60\" & echo $!; wait"_s << SIGTERM;
    QTest::newRow("stopped") << u"sleep 60 & echo $!; echo ready; kill -STOP $$; wait"_s << SIGTERM;
    QTest::newRow("a group within") << u"set -m; sleep 60 & echo $!; "_s + waits << SIGTERM;
    QTest::newRow("detached from hang-ups") << u"nohup sleep 60 >/dev/null & echo $!; "_s + waits << SIGTERM;
}

void ProcessTreeTest::allOfItEnds()
{
    QFETCH(QString, line);
    QFETCH(int, signal);
    for (const bool ownGroup : {true, false}) {
        Shell shell(line, ownGroup);
        QVERIFY(shell.isReady);
        const qint64 inner = shell.number();
        QVERIFY(inner > 0 && lives(inner));
        endTree(shell.child.processId(), 300ms);
        QTRY_VERIFY(shell.exit.has_value());
        QCOMPARE(*shell.exit, (ProcessExit{signal, true}));
        QTRY_VERIFY(!lives(inner));
    }
}

void ProcessTreeTest::aSessionOfItsOwnGoesOn()
{
    Shell shell(u"setsid bash -c 'echo ready; exec sleep 60' & echo $!; wait"_s, true);
    QVERIFY(shell.isReady);
    endTree(shell.child.processId(), 100ms);
    QTRY_VERIFY(shell.exit.has_value());
    QVERIFY(lives(shell.number()));
    ::kill(static_cast<pid_t>(shell.number()), SIGKILL);
}

void ProcessTreeTest::whatIsNoChildIsLeftAlone()
{
    Shell shell(u"sleep 60 & echo $!; echo ready; wait"_s, true);
    QVERIFY(shell.isReady);
    // The shell's child is no child of this program, and this program is none of its own.
    QVERIFY(ProcessTree(shell.number()).isGone());
    QVERIFY(ProcessTree(::getpid()).isGone());
    QVERIFY(ProcessTree(0).isGone());
    shell.child.kill();
    QTRY_VERIFY(shell.exit.has_value());
}

void ProcessTreeTest::whoHasLostItsParentIsStillKnown()
{
    for (const bool ownGroup : {true, false}) {
        Shell shell(u"sleep 60 & echo $!; echo ready; wait"_s, ownGroup);
        QVERIFY(shell.isReady);
        ProcessTree tree(shell.child.processId());
        ::kill(static_cast<pid_t>(shell.child.processId()), SIGKILL);
        QTRY_VERIFY(shell.exit.has_value());
        tree.look();
        QVERIFY(!tree.isGone());
        tree.signal(SIGTERM);
        QTRY_VERIFY(!lives(shell.number()));
        const auto isGone = [&tree] {
            tree.look();
            return tree.isGone();
        };
        QVERIFY2(QTest::qWaitFor(isGone, kelm::test::patience), qPrintable(thoseThere()));
    }
}

void ProcessTreeTest::theLeaderOfTheSessionMayBeOutOfSight()
{
    // Where a program has numbers of processes of its own, as in a container, its session may have none.
    const QStringList apart{u"--user"_s, u"--map-root-user"_s, u"--pid"_s, u"--fork"_s, u"--mount-proc"_s};
    if (QProcess::execute(u"unshare"_s, apart + QStringList{u"true"_s}) != 0) {
        QSKIP("this system lets nobody have numbers of processes of its own");
    }
    QCOMPARE(QProcess::execute(u"unshare"_s,
                               apart + QStringList{QCoreApplication::applicationFilePath(), u"process_tree_test"_s,
                                                   u"whoHasLostItsParentIsStillKnown"_s}),
             0);
}

const kelm::test::Registered<ProcessTreeTest> registered(kelm::test::Toolkit::core);

} // namespace process_tree_test

#include "process_tree_test.moc"
