#include "platform/events/local_socket.h"
#include "platform/events/single_instance.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QScopeGuard>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace single_instance_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using Part = SingleInstance::Part;

namespace {

InstancePlace placeIn(const QString& folder)
{
    return instancePlace(folder, u"session"_s, u"machine"_s);
}

struct Fixture
{
    QTemporaryDir folder;
    InstancePlace place = placeIn(folder.path());
    SingleInstance first{place};
    QList<QStringList> received;

    Fixture()
    {
        QObject::connect(&first, &SingleInstance::received, &first,
                         [this](const QStringList& texts) { received.append(texts); });
    }

    /// Another start of the program. The main thread, which is the first's, does nothing meanwhile.
    Part start(const QStringList& texts, std::chrono::milliseconds patience = std::chrono::seconds(20)) const
    {
        SingleInstance other(place);
        other.setPatience(patience);
        return other.settle(texts);
    }

    OpenFile say(const QByteArray& bytes) const
    {
        OpenFile socket = localSocket::connectTo(place.socketPath);
        return socket.isOpen() && socket.writeAll(bytes.constData(), bytes.size()) ? std::move(socket) : OpenFile();
    }

    /// Says something else to the listening program and waits until it hangs up.
    bool isDropped(const QByteArray& bytes) const
    {
        const OpenFile socket = localSocket::connectTo(place.socketPath);
        localSocket::send(socket, bytes);
        pollfd watched{socket.get(), POLLIN, 0};
        char answer = 0;
        return ::poll(&watched, 1, 20'000) == 1 && socket.read(&answer, 1) <= 0;
    }
};

/// The first start as a process of its own: says "first" when it listens, and then what it receives, a line each.
int playFirst(const QStringList& arguments)
{
    if (arguments.size() > 1) {
        const rlimit files{rlim_t(arguments[1].toUInt()), rlim_t(arguments[1].toUInt())};
        ::setrlimit(RLIMIT_NOFILE, &files);
    }
    SingleInstance instance(placeIn(arguments[0]));
    QObject::connect(&instance, &SingleInstance::received, &instance, [](const QStringList& texts) {
        std::printf("%s\n", qPrintable(texts.join(u' ')));
        std::fflush(stdout);
    });
    if (instance.settle({}) != Part::first) {
        return 1;
    }
    std::puts("first");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

struct FirstProcess
{
    QProcess process;

    explicit FirstProcess(const Fixture& fixture, const QString& files = u"1024"_s)
    {
        startRole(process, u"playFirst"_s, {fixture.folder.path(), files});
    }
    ~FirstProcess()
    {
        process.kill();
        process.waitForFinished();
    }
    bool says(const QByteArray& line)
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead()) {
                return false;
            }
        }
        return process.readLine() == line + '\n';
    }

    /// Comes back when all of it stands still.
    void stop()
    {
        const auto number = static_cast<id_t>(process.processId());
        siginfo_t info{};
        QCOMPARE(::kill(pid_t(number), SIGSTOP), 0);
        QCOMPARE(::waitid(P_PID, number, &info, WSTOPPED | WNOWAIT), 0);
    }
};

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstGetsTheLists();
    void anAnswerNeedsNoMainThread();
    void aRequestThatComesAgainIsTakenOnce();
    void whatCameLastIsNotLost();
    void onlyTheUserCanOpenTheSocket();
    void afterACrashTheNextIsTheFirst();
    void aStoppedFirstIsNotReplaced();
    void whoWaitsForAFirstThatEndsTakesItsPlace();
    void noChildKeepsTheLock();
    void withoutAPlaceEachIsAlone_data();
    void withoutAPlaceEachIsAlone();
    void aLongPathIsReached();
    void garbageIsDropped();
    void aMessageInPiecesArrivesWhole();
    void idleConnectionsHoldNobody();
    void idleConnectionsTakeNoDescriptorForGood();
    void withoutADescriptorTheReserveServes();
    void manyAtOnceMakeOneFirst();
};

void SingleInstanceTest::theFirstGetsTheLists()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle({u"its own"_s}), Part::first);
    const QStringList texts{u"file:///a"_s, u"kelmpane://open?code="_s + QString(20'000'000, u'A')};
    QCOMPARE(fixture.start(texts), Part::handedOver);
    QCOMPARE(fixture.start({}), Part::handedOver);
    QTRY_COMPARE(fixture.received, (QList<QStringList>{texts, {}}));
}

void SingleInstanceTest::anAnswerNeedsNoMainThread()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle({}), Part::first);
    // No event is processed here before the answer is there.
    QCOMPARE(fixture.start({u"one"_s}), Part::handedOver);
    QCOMPARE(fixture.start({u"two"_s}), Part::handedOver);
    QVERIFY(fixture.received.isEmpty());
    QTRY_COMPARE(fixture.received, (QList<QStringList>{{u"one"_s}, {u"two"_s}}));
}

void SingleInstanceTest::aRequestThatComesAgainIsTakenOnce()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle({}), Part::first);
    const openRequest::Request request{QUuid::createUuid(), {u"once"_s}};
    const QByteArray answer = openRequest::answerTo(request.id);
    for (int turn = 0; turn < 3; ++turn) {
        const OpenFile socket = fixture.say(openRequest::encode(request));
        QByteArray heard(answer.size(), '\0');
        pollfd watched{socket.get(), POLLIN, 0};
        QCOMPARE(::poll(&watched, 1, 20'000), 1);
        QCOMPARE(socket.read(heard.data(), heard.size()), answer.size());
        QCOMPARE(heard, answer);
    }
    QCOMPARE(fixture.start({u"another"_s}), Part::handedOver);
    QTRY_COMPARE(fixture.received, (QList<QStringList>{{u"once"_s}, {u"another"_s}}));
}

void SingleInstanceTest::whatCameLastIsNotLost()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle({}), Part::first);
    QCOMPARE(fixture.start({u"late"_s}), Part::handedOver);
    QCOMPARE(fixture.first.stopListening(), (QList<QStringList>{{u"late"_s}}));
    QVERIFY(!QFile::exists(fixture.place.socketPath));
    // It is there until its process ends, and nobody opens beside it what it might have taken.
    QCOMPARE(fixture.start({u"later"_s}, std::chrono::milliseconds(50)), Part::unanswered);
    QCoreApplication::processEvents();
    QVERIFY(fixture.received.isEmpty());
}

void SingleInstanceTest::onlyTheUserCanOpenTheSocket()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle({}), Part::first);
    for (const QString& path : {fixture.place.socketPath, fixture.place.lockPath}) {
        struct stat status = {};
        QCOMPARE(stat(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(status.st_mode & 077, 0U);
    }
}

void SingleInstanceTest::afterACrashTheNextIsTheFirst()
{
    Fixture fixture;
    {
        FirstProcess process(fixture);
        QVERIFY(process.says("first"));
    }
    QVERIFY(QFile::exists(fixture.place.socketPath));
    QCOMPARE(fixture.first.settle({}), Part::first);
    QCOMPARE(fixture.start({u"x"_s}), Part::handedOver);
    QTRY_COMPARE(fixture.received, QList<QStringList>{{u"x"_s}});
}

void SingleInstanceTest::aStoppedFirstIsNotReplaced()
{
    Fixture fixture;
    FirstProcess process(fixture);
    QVERIFY(process.says("first"));
    process.stop();
    QCOMPARE(fixture.start({u"asked of the stopped one"_s}, std::chrono::milliseconds(100)), Part::unanswered);
    ::kill(pid_t(process.process.processId()), SIGCONT);
    QCOMPARE(fixture.start({u"asked of the running one"_s}), Part::handedOver);
}

void SingleInstanceTest::whoWaitsForAFirstThatEndsTakesItsPlace()
{
    Fixture fixture;
    FirstProcess process(fixture);
    QVERIFY(process.says("first"));
    process.stop();
    QSemaphore begun;
    Part part = Part::alone;
    const std::unique_ptr<QThread> other(QThread::create([&] {
        begun.release();
        part = fixture.start({u"x"_s});
    }));
    other->start();
    begun.acquire();
    ::kill(pid_t(process.process.processId()), SIGKILL);
    other->wait();
    QCOMPARE(part, Part::first);
}

void SingleInstanceTest::noChildKeepsTheLock()
{
    Fixture fixture;
    QProcess child;
    const auto end = qScopeGuard([&child] {
        child.kill();
        child.waitForFinished();
    });
    {
        SingleInstance first(fixture.place);
        QCOMPARE(first.settle({}), Part::first);
        startRole(child, u"wait"_s, {});
        QVERIFY(child.waitForReadyRead());
    }
    QCOMPARE(fixture.first.settle({}), Part::first);
}

void SingleInstanceTest::withoutAPlaceEachIsAlone_data()
{
    QTest::addColumn<QString>("inTheWay");
    QTest::newRow("no folder") << QString();
    QTest::newRow("a folder in the place of the lock") << u"lock"_s;
    QTest::newRow("a folder in the place of the socket") << u"socket"_s;
}

void SingleInstanceTest::withoutAPlaceEachIsAlone()
{
    QFETCH(QString, inTheWay);
    const QTemporaryDir folder;
    const InstancePlace place = placeIn(inTheWay.isNull() ? folder.filePath(u"none"_s) : folder.path());
    if (!inTheWay.isNull()) {
        QVERIFY(QDir().mkdir(inTheWay == u"lock" ? place.lockPath : place.socketPath));
    }
    SingleInstance one(place);
    SingleInstance other(place);
    QCOMPARE(one.settle({}), Part::alone);
    QCOMPARE(other.settle({}), Part::alone);
}

void SingleInstanceTest::aLongPathIsReached()
{
#ifndef Q_OS_LINUX
    QSKIP("addresses have no room for it");
#endif
    const QTemporaryDir folder;
    const QString deep = folder.filePath(QString(100, u'x') + u'/' + QString(100, u'y'));
    QVERIFY(QDir().mkpath(deep));
    SingleInstance first(placeIn(deep));
    QCOMPARE(first.settle({}), Part::first);
    SingleInstance second(placeIn(deep));
    QCOMPARE(second.settle({u"x"_s}), Part::handedOver);
    QCOMPARE(first.stopListening(), QList<QStringList>{{u"x"_s}});
    QCOMPARE(QDir(deep).entryList(QDir::Files | QDir::System).size(), 1);
}

void SingleInstanceTest::garbageIsDropped()
{
    Fixture fixture;
    fixture.first.setListenersPatience(std::chrono::milliseconds(200));
    QCOMPARE(fixture.first.settle({}), Part::first);
    QVERIFY(fixture.isDropped("GET / HTTP/1.1\r\n\r\n"));
    QVERIFY(fixture.isDropped(QByteArray(100'000, '\xff')));
    // The beginning of a message, and then nothing more.
    QVERIFY(fixture.isDropped(openRequest::encode({QUuid::createUuid(), {u"x"_s}}).chopped(1)));
    QVERIFY(fixture.first.stopListening().isEmpty());
}

void SingleInstanceTest::aMessageInPiecesArrivesWhole()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle({}), Part::first);
    const OpenFile socket = localSocket::connectTo(fixture.place.socketPath);
    for (const char byte : openRequest::encode({QUuid::createUuid(), {u"one"_s, u"두"_s}})) {
        QCOMPARE(localSocket::send(socket, QByteArrayView(&byte, 1)), 1);
    }
    QTRY_COMPARE(fixture.received, (QList<QStringList>{{u"one"_s, u"두"_s}}));
}

void SingleInstanceTest::idleConnectionsHoldNobody()
{
    Fixture fixture;
    fixture.first.setListenersPatience(std::chrono::hours(1));
    QCOMPARE(fixture.first.settle({}), Part::first);
    std::vector<OpenFile> idle;
    for (int client = 0; client < 100; ++client) {
        idle.push_back(localSocket::connectTo(fixture.place.socketPath));
        QVERIFY(idle.back().isOpen());
    }
    QCOMPARE(fixture.start({u"x"_s}), Part::handedOver);
}

void SingleInstanceTest::idleConnectionsTakeNoDescriptorForGood()
{
    Fixture fixture;
    FirstProcess process(fixture, u"20"_s);
    QVERIFY(process.says("first"));
    std::vector<OpenFile> idle;
    for (int client = 0; client < 100; ++client) {
        idle.push_back(localSocket::connectTo(fixture.place.socketPath));
        QVERIFY(idle.back().isOpen());
    }
    QCOMPARE(fixture.start({u"while"_s, u"they"_s, u"wait"_s}), Part::handedOver);
    QVERIFY(process.says("while they wait"));
    idle.clear();
    QCOMPARE(fixture.start({u"behind"_s, u"them"_s}), Part::handedOver);
    QVERIFY(process.says("behind them"));
}

void SingleInstanceTest::withoutADescriptorTheReserveServes()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle({}), Part::first);
    const QByteArray message = openRequest::encode({QUuid::createUuid(), {u"x"_s}});
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const auto restore = qScopeGuard([&before] { setrlimit(RLIMIT_NOFILE, &before); });
    const rlimit few{64, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<OpenFile> others;
    while (others.empty() || others.back().isOpen()) {
        others.emplace_back(::dup(STDERR_FILENO));
    }
    // One for this end, none for the other.
    others.pop_back();
    others.pop_back();
    const OpenFile socket = localSocket::connectTo(fixture.place.socketPath);
    QVERIFY(socket.isOpen());
    QCOMPARE(localSocket::send(socket, message), message.size());
    pollfd watched{socket.get(), POLLIN, 0};
    QCOMPARE(::poll(&watched, 1, 20'000), 1);
    others.clear();
    QTRY_COMPARE(fixture.received, QList<QStringList>{{u"x"_s}});
}

void SingleInstanceTest::manyAtOnceMakeOneFirst()
{
    const Fixture fixture;
    constexpr int count = 40;
    std::vector<std::unique_ptr<QProcess>> starts;
    for (int start = 0; start < count; ++start) {
        starts.push_back(std::make_unique<QProcess>());
        startRole(*starts.back(), u"playStart"_s, {fixture.folder.path(), QString::number(start)});
    }
    QSet<QByteArray> told;
    int firsts = 0;
    for (const auto& start : starts) {
        QVERIFY(start->waitForFinished(60'000));
        const QList<QByteArray> lines = start->readAllStandardOutput().trimmed().split('\n');
        if (start->exitCode() == 7) {
            ++firsts;
            told.unite(QSet<QByteArray>(lines.begin(), lines.end()));
            QCOMPARE(lines.size(), count);
        }
    }
    QCOMPARE(firsts, 1);
    QCOMPARE(told.size(), count);
}

namespace {

/// One of forty starts: hands its number over, or prints all numbers, and ends with status 7 then.
int playStart(const QStringList& arguments)
{
    SingleInstance instance(placeIn(arguments[0]));
    instance.setPatience(std::chrono::minutes(1));
    int told = 0;
    const auto tell = [&told](const QStringList& texts) {
        std::printf("%s\n", qPrintable(texts.join(u' ')));
        if (++told == 40) {
            QCoreApplication::exit(7);
        }
    };
    QObject::connect(&instance, &SingleInstance::received, &instance, tell);
    switch (instance.settle({arguments[1]})) {
    case Part::handedOver:
        return 0;
    case Part::first:
        tell({arguments[1]});
        return QCoreApplication::exec();
    default:
        return 1;
    }
}

const kelm::test::Registered<SingleInstanceTest> registered(kelm::test::Toolkit::core,
                                                            {{u"playFirst"_s, playFirst}, {u"playStart"_s, playStart}});

} // namespace

} // namespace single_instance_test

#include "single_instance_test.moc"
