#include "platform/events/open_request.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace open_request_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using openRequest::State;

namespace {

const QUuid number(u"{00112233-4455-6677-8899-aabbccddeeff}"_s);
const QByteArray head = "kelm-open-2\n" + number.toRfc4122();

struct Decoded
{
    State state = State::incomplete;
    openRequest::Request request;
};

Decoded decode(QByteArrayView bytes)
{
    openRequest::Reader reader;
    const State state = reader.add(bytes);
    return {state, reader.request()};
}

} // namespace

class OpenRequestTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestsComeBack_data();
    void requestsComeBack();
    void eachBeginningIsIncomplete();
    void piecesOfAnySizeMakeTheSame();
    void whatIsNoMessageIsInvalid_data();
    void whatIsNoMessageIsInvalid();
    void whatIsInvalidStaysSo();
    void aTooLargeListIsNoMessage();
    void answersTellTheirRequest();
};

void OpenRequestTest::requestsComeBack_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("an empty text") << QStringList{QString()};
    QTest::newRow("several") << QStringList{u"file:///a b"_s, u"kelmpane://open?code=YQ=="_s,
                                            u"한글 👩‍👩‍👧\n\0"_s};
}

void OpenRequestTest::requestsComeBack()
{
    QFETCH(QStringList, texts);
    const openRequest::Request request{number, texts};
    const Decoded decoded = decode(openRequest::encode(request));
    QCOMPARE(decoded.state, State::complete);
    QVERIFY(decoded.request == request);
}

void OpenRequestTest::eachBeginningIsIncomplete()
{
    const QByteArray message = openRequest::encode({number, {u"one"_s, u"두 번째"_s}});
    for (qsizetype length = 0; length < message.size(); ++length) {
        QCOMPARE(decode(message.first(length)).state, State::incomplete);
    }
}

void OpenRequestTest::piecesOfAnySizeMakeTheSame()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        openRequest::Request request{QUuid::createUuid(), {}};
        for (qsizetype left = random.below(20); left > 0; --left) {
            request.urlTexts.append(QString(random.below(200), u'한'));
        }
        const QByteArray message = openRequest::encode(request);
        openRequest::Reader reader;
        State state = State::incomplete;
        for (qsizetype at = 0; at < message.size();) {
            QCOMPARE(state, State::incomplete);
            const qsizetype length = std::min<qsizetype>(1 + random.below(300), message.size() - at);
            state = reader.add(QByteArrayView(message).sliced(at, length));
            at += length;
        }
        QCOMPARE(state, State::complete);
        QVERIFY(reader.request() == request);
    }
}

void OpenRequestTest::whatIsNoMessageIsInvalid_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("something else") << QByteArray("GET / HTTP/1.1\r\n");
    QTest::newRow("an almost right mark") << QByteArray("kelm-open-1\n");
    QTest::newRow("too many texts") << head + QByteArray("\xff\xff\xff\xff", 4);
    QTest::newRow("too long a text") << head + QByteArray("\0\0\0\1\xff\xff\xff\xff", 8);
    QTest::newRow("no UTF-8") << head + QByteArray("\0\0\0\1\0\0\0\1\xff", 9);
    QTest::newRow("too much in all") << openRequest::encode({number, {QString(openRequest::largestMessage - 40, u'x')}})
                                                .replace(head.size() + 3, 1, QByteArray(1, 2)) +
                                            QByteArray("\0\0\0\xff", 4);
    QTest::newRow("more behind the end") << head + QByteArray("\0\0\0\0x", 5);
}

void OpenRequestTest::whatIsNoMessageIsInvalid()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(decode(bytes).state, State::invalid);
}

void OpenRequestTest::whatIsInvalidStaysSo()
{
    openRequest::Reader reader;
    QCOMPARE(reader.add("nothing"), State::invalid);
    QCOMPARE(reader.add(openRequest::encode({number, {u"x"_s}})), State::invalid);
    QVERIFY(reader.request().urlTexts.isEmpty());
}

void OpenRequestTest::aTooLargeListIsNoMessage()
{
    QVERIFY(openRequest::encode({number, {QString(openRequest::largestMessage, u'x')}}).isEmpty());
    QVERIFY(openRequest::encode({number, QStringList(openRequest::mostTexts + 1, u"x"_s)}).isEmpty());
}

void OpenRequestTest::answersTellTheirRequest()
{
    const QUuid other = QUuid::createUuid();
    QVERIFY(openRequest::answerTo(number) != openRequest::answerTo(other));
    QCOMPARE(openRequest::answerTo(number).size(), openRequest::answerTo(other).size());
}

const kelm::test::Registered<OpenRequestTest> registered;

} // namespace open_request_test

#include "open_request_test.moc"
