#include "platform/events/worker_pool.h"
#include "platform/files/user_defaults.h"
#include "platform/process/application_exit.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <semaphore>
#include <unistd.h>

namespace application_exit_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Work that does not end, on the global pool, with or without a claim to a thread, or as a background task.
void startEndlessWork(const QString& kind)
{
    static std::counting_semaphore<> started{0};
    const bool onlyWaits = kind == u"waits"_s;
    WorkerPool& pool = kind == u"task"_s ? backgroundWorkers() : commonWorkers();
    pool.start([onlyWaits, &pool] {
        if (onlyWaits) {
            pool.releaseThread();
        }
        started.release();
        std::counting_semaphore<>(0).acquire();
    });
    started.acquire();
}

int leaveBusy(const QStringList& arguments)
{
    startEndlessWork(arguments[0]);
    UserDefaults::shared().setString(u"key"_s, u"written"_s);
    std::printf("said before");
    return leaveWithoutWaiting(7, UserDefaults::shared());
}

int leaveIdle(const QStringList& /*arguments*/)
{
    commonWorkers().start([] {});
    commonWorkers().waitForDone();
    const int status = leaveWithoutWaiting(5, UserDefaults::shared());
    std::printf("came back");
    return status;
}

/// Starts without standard streams, and tells the number of the first file that it opens.
int startWithoutStreams(const QStringList& /*arguments*/)
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::close(stream);
    }
    outliveReaders();
    const int opened = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const bool isWritable = ::write(STDOUT_FILENO, "x", 1) == 1 && ::write(STDERR_FILENO, "x", 1) == 1;
    return isWritable && ::fcntl(STDOUT_FILENO, F_GETFD) == 0 ? opened : 1;
}

} // namespace

class ApplicationExitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endlessWorkDoesNotHoldTheProcess_data();
    void endlessWorkDoesNotHoldTheProcess();
    void withoutWorkItComesBack();
    void noFileTakesThePlaceOfAClosedStream();
};

void ApplicationExitTest::endlessWorkDoesNotHoldTheProcess_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("computing") << u"computes"_s;
    QTest::newRow("waiting for a child") << u"waits"_s;
    QTest::newRow("a background task") << u"task"_s;
}

void ApplicationExitTest::endlessWorkDoesNotHoldTheProcess()
{
    QFETCH(QString, kind);
    UserDefaults::shared().setString(u"key"_s, u"old"_s);
    QVERIFY(UserDefaults::shared().synchronize());
    QByteArray said;
    QCOMPARE(runRole(u"busy"_s, {kind}, &said), 7);
    QCOMPARE(said, QByteArray("said before"));
    QVERIFY(UserDefaults::shared().synchronize());
    QCOMPARE(UserDefaults::shared().string(u"key"_s), std::optional(u"written"_s));
}

void ApplicationExitTest::withoutWorkItComesBack()
{
    QByteArray said;
    QCOMPARE(runRole(u"idle"_s, {}, &said), 5);
    QCOMPARE(said, QByteArray("came back"));
}

void ApplicationExitTest::noFileTakesThePlaceOfAClosedStream()
{
    QVERIFY(runRole(u"noStreams"_s, {}) > STDERR_FILENO);
}

const kelm::test::Registered<ApplicationExitTest>
    registered(kelm::test::Toolkit::core,
               {{u"busy"_s, leaveBusy}, {u"idle"_s, leaveIdle}, {u"noStreams"_s, startWithoutStreams}});

} // namespace application_exit_test

#include "application_exit_test.moc"
