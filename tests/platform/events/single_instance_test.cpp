#include "platform/events/local_socket.h"
#include "platform/events/single_instance.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <semaphore>
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

openRequest::Request requestOf(const QStringList& texts)
{
    openRequest::Request request{QUuid::createUuid()};
    for (const QString& text : texts) {
        request.items.append(text);
    }
    return request;
}

QStringList textsOf(const openRequest::Request& request)
{
    QStringList texts;
    for (const openRequest::Item& item : request.items) {
        texts.append(item.text);
    }
    return texts;
}

QList<QStringList> textsOf(const std::vector<SingleInstance::Received>& all)
{
    QList<QStringList> texts;
    for (const SingleInstance::Received& received : all) {
        texts.append(textsOf(received.request));
    }
    return texts;
}

struct Fixture
{
    QTemporaryDir folder;
    InstancePlace place = placeIn(folder.path());
    SingleInstance first{place};
    QList<QStringList> received;
    QList<std::shared_ptr<WaitingStart>> waiting;

    Fixture()
    {
        QObject::connect(&first, &SingleInstance::received, &first, [this](const SingleInstance::Received& each) {
            received.append(textsOf(each.request));
            waiting.append(each.waiting);
        });
    }

    /// Another start of the program. The main thread, which is the first's, does nothing meanwhile.
    Part start(const QStringList& texts, std::chrono::milliseconds patience = std::chrono::seconds(20)) const
    {
        SingleInstance other(place);
        other.setPatience(patience);
        return other.settle(requestOf(texts));
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
    QList<std::shared_ptr<WaitingStart>> waiting;
    QObject::connect(&instance, &SingleInstance::received, &instance, [&waiting](const SingleInstance::Received& each) {
        waiting.append(each.waiting);
        std::printf("%s\n", qPrintable(textsOf(each.request).join(u' ')));
        std::fflush(stdout);
    });
    if (instance.settle(requestOf({})) != Part::first) {
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
    void othersWaitUntilTheFirstListens();
    void whoWaitsIsToldTheWorst_data();
    void whoWaitsIsToldTheWorst();
    void whoWaitsHearsThatTheFirstHasDied();
    void whoAsksAgainWaitsForTheSame();
    void thePartIsLeftToAnother();
    void nobodyComesInThePlace();
};

void SingleInstanceTest::theFirstGetsTheLists()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle(requestOf({u"its own"_s})), Part::first);
    const QStringList texts{u"file:///a"_s, u"kelmpane://open?code="_s + QString(20'000'000, u'A')};
    QCOMPARE(fixture.start(texts), Part::handedOver);
    QCOMPARE(fixture.start({}), Part::handedOver);
    QTRY_COMPARE(fixture.received, (QList<QStringList>{texts, {}}));
}

void SingleInstanceTest::anAnswerNeedsNoMainThread()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    // No event is processed here before the answer is there.
    QCOMPARE(fixture.start({u"one"_s}), Part::handedOver);
    QCOMPARE(fixture.start({u"two"_s}), Part::handedOver);
    QVERIFY(fixture.received.isEmpty());
    QTRY_COMPARE(fixture.received, (QList<QStringList>{{u"one"_s}, {u"two"_s}}));
}

void SingleInstanceTest::aRequestThatComesAgainIsTakenOnce()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    const openRequest::Request request = requestOf({u"once"_s});
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
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    QCOMPARE(fixture.start({u"late"_s}), Part::handedOver);
    QCOMPARE(textsOf(fixture.first.stopListening()), (QList<QStringList>{{u"late"_s}}));
    QVERIFY(!QFile::exists(fixture.place.socketPath));
    // It is there until its process ends, and nobody opens beside it what it might have taken.
    QCOMPARE(fixture.start({u"later"_s}, std::chrono::milliseconds(50)), Part::unanswered);
    QCoreApplication::processEvents();
    QVERIFY(fixture.received.isEmpty());
}

void SingleInstanceTest::onlyTheUserCanOpenTheSocket()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
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
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
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
    std::counting_semaphore<> begun{0};
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
        QCOMPARE(first.settle(requestOf({})), Part::first);
        startRole(child, u"wait"_s, {});
        QVERIFY(child.waitForReadyRead());
    }
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
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
    QCOMPARE(one.settle(requestOf({})), Part::alone);
    QCOMPARE(other.settle(requestOf({})), Part::alone);
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
    QCOMPARE(first.settle(requestOf({})), Part::first);
    SingleInstance second(placeIn(deep));
    QCOMPARE(second.settle(requestOf({u"x"_s})), Part::handedOver);
    QCOMPARE(textsOf(first.stopListening()), QList<QStringList>{{u"x"_s}});
    QCOMPARE(QDir(deep).entryList(QDir::Files | QDir::System).size(), 1);
}

void SingleInstanceTest::garbageIsDropped()
{
    Fixture fixture;
    fixture.first.setListenersPatience(std::chrono::milliseconds(200));
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    QVERIFY(fixture.isDropped("GET / HTTP/1.1\r\n\r\n"));
    QVERIFY(fixture.isDropped(QByteArray(100'000, '\xff')));
    // The beginning of a message, and then nothing more.
    QVERIFY(fixture.isDropped(openRequest::encode(requestOf({u"x"_s})).chopped(1)));
    QVERIFY(fixture.first.stopListening().empty());
}

void SingleInstanceTest::aMessageInPiecesArrivesWhole()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    const OpenFile socket = localSocket::connectTo(fixture.place.socketPath);
    for (const char byte : openRequest::encode(requestOf({u"one"_s, u"두"_s}))) {
        QCOMPARE(localSocket::send(socket, QByteArrayView(&byte, 1)), 1);
    }
    QTRY_COMPARE(fixture.received, (QList<QStringList>{{u"one"_s, u"두"_s}}));
}

void SingleInstanceTest::idleConnectionsHoldNobody()
{
    Fixture fixture;
    fixture.first.setListenersPatience(std::chrono::hours(1));
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
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
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    const QByteArray message = openRequest::encode(requestOf({u"x"_s}));
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

void SingleInstanceTest::othersWaitUntilTheFirstListens()
{
    Fixture fixture;
    QCOMPARE(fixture.first.claim(requestOf({})), Part::first);
    QCOMPARE(fixture.start({u"x"_s}, std::chrono::milliseconds(50)), Part::unanswered);
    QVERIFY(fixture.first.listen());
    QCOMPARE(fixture.start({u"y"_s}), Part::handedOver);
    QTRY_COMPARE(fixture.received, QList<QStringList>{{u"y"_s}});
}

void SingleInstanceTest::whoWaitsIsToldTheWorst_data()
{
    using openRequest::Outcome;
    QTest::addColumn<QList<Outcome>>("noted");
    QTest::addColumn<Outcome>("told");
    QTest::newRow("nothing") << QList<Outcome>() << Outcome::saved;
    QTest::newRow("saved") << QList<Outcome>{Outcome::saved, Outcome::saved} << Outcome::saved;
    QTest::newRow("one unsaved") << QList<Outcome>{Outcome::unsaved, Outcome::saved} << Outcome::unsaved;
    QTest::newRow("one not opened") << QList<Outcome>{Outcome::failed, Outcome::unsaved} << Outcome::failed;
    QTest::newRow("not taken") << QList<Outcome>{Outcome::untaken, Outcome::failed} << Outcome::untaken;
}

void SingleInstanceTest::whoWaitsIsToldTheWorst()
{
    QFETCH(QList<openRequest::Outcome>, noted);
    QFETCH(openRequest::Outcome, told);
    Fixture fixture;
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    openRequest::Request request = requestOf({u"a"_s});
    request.waits = true;
    SingleInstance other(fixture.place);
    QCOMPARE(other.settle(request), Part::handedOver);
    QTRY_COMPARE(fixture.waiting.size(), 1);
    QVERIFY(fixture.waiting[0] != nullptr);
    for (const openRequest::Outcome each : noted) {
        fixture.waiting[0]->note(each);
    }
    fixture.waiting.clear();
    QVERIFY(other.awaitOutcome() == told);
}

void SingleInstanceTest::whoWaitsHearsThatTheFirstHasDied()
{
    const Fixture fixture;
    openRequest::Request request = requestOf({u"a"_s});
    request.waits = true;
    SingleInstance other(fixture.place);
    {
        FirstProcess process(fixture);
        QVERIFY(process.says("first"));
        QCOMPARE(other.settle(request), Part::handedOver);
        QVERIFY(process.says("a"));
    }
    QVERIFY(!other.awaitOutcome());
}

void SingleInstanceTest::whoAsksAgainWaitsForTheSame()
{
    Fixture fixture;
    QCOMPARE(fixture.first.settle(requestOf({})), Part::first);
    openRequest::Request request = requestOf({u"a"_s});
    request.waits = true;
    SingleInstance one(fixture.place);
    SingleInstance again(fixture.place);
    QCOMPARE(one.settle(request), Part::handedOver);
    QCOMPARE(again.settle(request), Part::handedOver);
    QCOMPARE(fixture.start({u"behind them"_s}), Part::handedOver);
    QTRY_COMPARE(fixture.received, (QList<QStringList>{{u"a"_s}, {u"behind them"_s}}));
    fixture.waiting[0]->note(openRequest::Outcome::unsaved);
    fixture.waiting.clear();
    QVERIFY(one.awaitOutcome() == openRequest::Outcome::unsaved);
    QVERIFY(again.awaitOutcome() == openRequest::Outcome::unsaved);
}

void SingleInstanceTest::thePartIsLeftToAnother()
{
    const Fixture fixture;
    SingleInstance leaves(fixture.place);
    QCOMPARE(leaves.claim(requestOf({})), Part::first);
    std::unique_ptr<FirstProcess> process;
    const auto isComing = [&] {
        if (!process) {
            process = std::make_unique<FirstProcess>(fixture);
        }
        return true;
    };
    leaves.setPatience(std::chrono::seconds(20));
    QCOMPARE(leaves.leaveTo(requestOf({u"for the other"_s}), isComing), Part::handedOver);
    QVERIFY(process->says("first"));
    QVERIFY(process->says("for the other"));
}

void SingleInstanceTest::nobodyComesInThePlace()
{
    const Fixture fixture;
    SingleInstance leaves(fixture.place);
    QCOMPARE(leaves.claim(requestOf({})), Part::first);
    QCOMPARE(leaves.leaveTo(requestOf({u"x"_s}), [] { return false; }), Part::alone);
}

namespace {

/// One of forty starts: hands its number over, or prints all numbers, and ends with status 7 then.
int playStart(const QStringList& arguments)
{
    SingleInstance instance(placeIn(arguments[0]));
    instance.setPatience(std::chrono::minutes(1));
    int told = 0;
    const auto say = [&told](const QStringList& texts) {
        std::printf("%s\n", qPrintable(texts.join(u' ')));
        if (++told == 40) {
            QCoreApplication::exit(7);
        }
    };
    QObject::connect(&instance, &SingleInstance::received, &instance,
                     [&say](const SingleInstance::Received& each) { say(textsOf(each.request)); });
    switch (instance.settle(requestOf({arguments[1]}))) {
    case Part::handedOver:
        return 0;
    case Part::first:
        say({arguments[1]});
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
