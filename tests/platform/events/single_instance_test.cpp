#include "platform/events/open_request.h"
#include "platform/events/single_instance.h"
#include "support/test_program.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace single_instance_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Decoded
{
    openRequest::State state;
    QStringList texts;
};

Decoded decode(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    openRequest::Reader reader(buffer);
    const openRequest::State state = reader.read();
    return {state, reader.texts()};
}

struct Fixture
{
    QTemporaryDir folder;
    QString path = folder.filePath(u"socket"_s);
    SingleInstance first{path};
    QList<QStringList> received;

    Fixture()
    {
        QObject::connect(&first, &SingleInstance::received, &first,
                         [this](const QStringList& texts) { received.append(texts); });
    }

    /// Hands over from a thread of its own, as another program would.
    bool handOver(const QStringList& texts)
    {
        bool isDone = false;
        const std::unique_ptr<QThread> thread(QThread::create([&] { isDone = SingleInstance(path).handOver(texts); }));
        thread->start();
        while (!thread->wait(1)) {
            QCoreApplication::processEvents();
        }
        return isDone;
    }
    /// Says something else to the listening program and waits until it hangs up.
    bool isDropped(const QByteArray& bytes)
    {
        QLocalSocket socket;
        socket.connectToServer(path);
        socket.write(bytes);
        return QTest::qWaitFor([&socket] { return socket.state() == QLocalSocket::UnconnectedState; }, 8000);
    }
};

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messagesComeBack_data();
    void messagesComeBack();
    void eachBeginningIsIncomplete();
    void whatIsNoMessageIsInvalid_data();
    void whatIsNoMessageIsInvalid();
    void aTooLargeListIsNotSent();
    void withoutAFirstNobodyTakesTheList();
    void theFirstGetsTheList();
    void onlyTheUserCanOpenTheSocket();
    void aSecondDoesNotListen();
    void aFileLeftByACrashIsReplaced();
    void garbageIsDropped();
    void aMessageInPiecesArrivesWhole();
    void aThousandAtOnceAreServed();
};

void SingleInstanceTest::messagesComeBack_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("an empty text") << QStringList{QString()};
    QTest::newRow("several") << QStringList{u"file:///a b"_s, u"kelmpane://open?code=YQ=="_s,
                                            u"한글 👩‍👩‍👧\n\0"_s};
}

void SingleInstanceTest::messagesComeBack()
{
    QFETCH(QStringList, texts);
    const Decoded decoded = decode(openRequest::encode(texts));
    QCOMPARE(decoded.state, openRequest::State::complete);
    QCOMPARE(decoded.texts, texts);
}

void SingleInstanceTest::eachBeginningIsIncomplete()
{
    const QByteArray message = openRequest::encode({u"one"_s, u"두 번째"_s});
    for (qsizetype length = 0; length < message.size(); ++length) {
        QCOMPARE(decode(message.first(length)).state, openRequest::State::incomplete);
    }
}

void SingleInstanceTest::whatIsNoMessageIsInvalid_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray mark("kelm-open-1\n");
    QTest::newRow("something else") << QByteArray("GET / HTTP/1.1\r\n");
    QTest::newRow("an almost right mark") << QByteArray("kelm-open-2\n");
    QTest::newRow("too many texts") << mark + QByteArray("\xff\xff\xff\xff", 4);
    QTest::newRow("too long a text") << mark + QByteArray("\0\0\0\1\xff\xff\xff\xff", 8);
    QTest::newRow("no UTF-8") << mark + QByteArray("\0\0\0\1\0\0\0\1\xff", 9);
    QTest::newRow("too much in all")
        << openRequest::encode({QString(openRequest::largestMessage - 20, u'x')}).replace(15, 1, QByteArray(1, 2)) +
               QByteArray(4, 0);
    QTest::newRow("more behind the end") << mark + QByteArray("\0\0\0\0x", 5);
}

void SingleInstanceTest::whatIsNoMessageIsInvalid()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(decode(bytes).state, openRequest::State::invalid);
}

void SingleInstanceTest::aTooLargeListIsNotSent()
{
    QVERIFY(openRequest::encode({QString(openRequest::largestMessage, u'x')}).isEmpty());
    QVERIFY(openRequest::encode(QStringList(openRequest::mostTexts + 1, u"x"_s)).isEmpty());
}

void SingleInstanceTest::withoutAFirstNobodyTakesTheList()
{
    Fixture fixture;
    QVERIFY(!fixture.handOver({u"x"_s}));
}

void SingleInstanceTest::theFirstGetsTheList()
{
    Fixture fixture;
    QVERIFY(fixture.first.listen());
    const QStringList texts{u"file:///a"_s, u"kelmpane://open?code="_s + QString(20'000'000, u'A')};
    QVERIFY(fixture.handOver(texts));
    QVERIFY(fixture.handOver({}));
    QCOMPARE(fixture.received, (QList<QStringList>{texts, {}}));
}

void SingleInstanceTest::onlyTheUserCanOpenTheSocket()
{
    Fixture fixture;
    QVERIFY(fixture.first.listen());
    struct stat status
    {};
    QCOMPARE(stat(QFile::encodeName(fixture.path).constData(), &status), 0);
    QCOMPARE(status.st_mode & 077, 0U);
}

void SingleInstanceTest::aSecondDoesNotListen()
{
    Fixture fixture;
    QVERIFY(fixture.first.listen());
    SingleInstance second(fixture.path);
    QVERIFY(!second.listen());
    QVERIFY(fixture.handOver({u"x"_s}));
}

void SingleInstanceTest::aFileLeftByACrashIsReplaced()
{
    Fixture fixture;
    // A socket that nobody listens on any more.
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(fixture.path);
    std::copy(path.begin(), path.end(), address.sun_path);
    QCOMPARE(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(descriptor);
    QVERIFY(QFile::exists(fixture.path));
    QVERIFY(!fixture.handOver({u"x"_s}));
    QVERIFY(fixture.first.listen());
    QVERIFY(fixture.handOver({u"x"_s}));
}

void SingleInstanceTest::garbageIsDropped()
{
    Fixture fixture;
    QVERIFY(fixture.first.listen());
    fixture.first.setPatience(std::chrono::milliseconds(200));
    QVERIFY(fixture.isDropped("GET / HTTP/1.1\r\n\r\n"));
    QVERIFY(fixture.isDropped(QByteArray(100'000, '\xff')));
    // The beginning of a message, and then nothing more.
    QVERIFY(fixture.isDropped(openRequest::encode({u"x"_s}).chopped(1)));
    QVERIFY(fixture.received.isEmpty());
    QVERIFY(fixture.handOver({u"x"_s}));
}

void SingleInstanceTest::aMessageInPiecesArrivesWhole()
{
    Fixture fixture;
    QVERIFY(fixture.first.listen());
    QLocalSocket socket;
    socket.connectToServer(fixture.path);
    for (const char byte : openRequest::encode({u"one"_s, u"두"_s})) {
        socket.write(&byte, 1);
        socket.flush();
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(fixture.received, (QList<QStringList>{{u"one"_s, u"두"_s}}));
}

void SingleInstanceTest::aThousandAtOnceAreServed()
{
    Fixture fixture;
    QVERIFY(fixture.first.listen());
    // Both ends of each are this process's.
    rlimit files{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &files), 0);
    if (files.rlim_max < 4096) {
        QSKIP("too few files may be open at once");
    }
    files.rlim_cur = std::max<rlim_t>(files.rlim_cur, 4096);
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &files), 0);
    std::vector<std::unique_ptr<QLocalSocket>> sockets;
    for (int client = 0; client < 1000; ++client) {
        sockets.push_back(std::make_unique<QLocalSocket>());
        sockets.back()->connectToServer(fixture.path);
        sockets.back()->write(openRequest::encode({QString::number(client)}));
    }
    QTRY_COMPARE_WITH_TIMEOUT(fixture.received.size(), 1000, 20'000);
}

const kelm::test::Registered<SingleInstanceTest> registered;

} // namespace single_instance_test

#include "single_instance_test.moc"
