#include "run/kept_ready/terminal_manager.h"
#include "support/test_program.h"

#include <QSignalSpy>
#include <QtTest>

namespace terminal_manager_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

std::unique_ptr<TerminalSession> makeSession()
{
    static ManualScheduler scheduler;
    static NotificationCenter notifications;
    return std::make_unique<TerminalSession>(TerminalSession::Services{scheduler, notifications});
}

QStringList titles(const TerminalManager& manager)
{
    QStringList result;
    for (const auto& session : manager.sessions()) {
        result.append(session->title());
    }
    return result;
}

} // namespace

class TerminalManagerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newManagerHasNoSession();
    void newSessionBecomesActive();
    void closingTheActiveSessionActivatesTheFirst();
    void closingAnotherSessionKeepsTheActiveOne();
    void closingTheOnlySessionLeavesANewOne();
    void sessionOfAnotherManagerIsPassedOver();
    void titlesCanRepeat();
    void closedSessionIsTold();
    void sessionsComeFromTheMakerGiven();
};

void TerminalManagerTest::newManagerHasNoSession()
{
    const TerminalManager manager{makeSession};
    QVERIFY(manager.sessions().empty());
    QVERIFY(manager.activeSession() == nullptr);
}

void TerminalManagerTest::newSessionBecomesActive()
{
    TerminalManager manager{makeSession};
    manager.createNewSession();
    QCOMPARE(manager.activeSession(), manager.sessions()[0].get());
    manager.createNewSession();
    QCOMPARE(manager.activeSession(), manager.sessions()[1].get());
    QCOMPARE(titles(manager), (QStringList{u"Terminal 1"_s, u"Terminal 2"_s}));
}

void TerminalManagerTest::closingTheActiveSessionActivatesTheFirst()
{
    TerminalManager manager{makeSession};
    for (int count = 0; count < 3; ++count) {
        manager.createNewSession();
    }
    manager.closeSession(*manager.sessions()[2]);
    QCOMPARE(titles(manager), (QStringList{u"Terminal 1"_s, u"Terminal 2"_s}));
    QCOMPARE(manager.activeSession(), manager.sessions()[0].get());
}

void TerminalManagerTest::closingAnotherSessionKeepsTheActiveOne()
{
    TerminalManager manager{makeSession};
    for (int count = 0; count < 3; ++count) {
        manager.createNewSession();
    }
    TerminalSession* active = manager.activeSession();
    manager.closeSession(*manager.sessions()[0]);
    QCOMPARE(titles(manager), (QStringList{u"Terminal 2"_s, u"Terminal 3"_s}));
    QCOMPARE(manager.activeSession(), active);
}

void TerminalManagerTest::closingTheOnlySessionLeavesANewOne()
{
    TerminalManager manager{makeSession};
    manager.createNewSession();
    const QUuid id = manager.activeSession()->id();
    manager.closeSession(*manager.activeSession());
    QCOMPARE(titles(manager), QStringList{u"Terminal 1"_s});
    QCOMPARE(manager.activeSession(), manager.sessions()[0].get());
    QVERIFY(manager.activeSession()->id() != id);
}

void TerminalManagerTest::sessionOfAnotherManagerIsPassedOver()
{
    TerminalManager manager{makeSession};
    manager.createNewSession();
    TerminalManager other{makeSession};
    QSignalSpy changes(&manager, &TerminalManager::sessionsChanged);
    other.createNewSession();
    manager.closeSession(*other.activeSession());
    QCOMPARE(manager.sessions().size(), std::size_t(1));
    QCOMPARE(other.sessions().size(), std::size_t(1));
    QCOMPARE(changes.size(), 0);
}

void TerminalManagerTest::titlesCanRepeat()
{
    TerminalManager manager{makeSession};
    manager.createNewSession();
    manager.createNewSession();
    manager.closeSession(*manager.sessions()[0]);
    manager.createNewSession();
    QCOMPARE(titles(manager), (QStringList{u"Terminal 2"_s, u"Terminal 2"_s}));
}

void TerminalManagerTest::closedSessionIsTold()
{
    TerminalManager manager{makeSession};
    manager.createNewSession();
    QPointer<TerminalSession> closed = manager.activeSession();
    QStringList steps;
    connect(&manager, &TerminalManager::sessionsChanged, this,
            [&] { steps.append(u"sessions %1"_s.arg(manager.sessions().size())); });
    connect(&manager, &TerminalManager::activeSessionChanged, this,
            [&] { steps.append(manager.activeSession() != nullptr ? u"active"_s : u"none"_s); });
    manager.closeSession(*closed);
    QVERIFY(closed.isNull());
    QCOMPARE(steps, (QStringList{u"sessions 0"_s, u"none"_s, u"sessions 1"_s, u"active"_s}));
}

void TerminalManagerTest::sessionsComeFromTheMakerGiven()
{
    int made = 0;
    TerminalManager manager([&made] {
        ++made;
        return makeSession();
    });
    manager.createNewSession();
    manager.closeSession(*manager.activeSession());
    QCOMPARE(made, 2);
}

const kelm::test::Registered<TerminalManagerTest> registered;

} // namespace terminal_manager_test

#include "terminal_manager_test.moc"
