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
const QByteArray head = "kelm-open-3\n" + number.toRfc4122();
/// Nobody waits, and there are no tokens.
const QByteArray plain(9, '\0');
/// A URL without a place.
const QByteArray url(9, '\0');

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
    using openRequest::Item;
    using openRequest::Request;
    QTest::addColumn<Request>("request");
    QTest::newRow("nothing") << Request{number};
    QTest::newRow("an empty text") << Request{number, {QString()}};
    QTest::newRow("several") << Request{
        number, {u"file:///a b"_s, u"kelmpane://open?code=YQ=="_s, u"한글 👩‍👩‍👧\n\0"_s}};
    QTest::newRow("places") << Request{number, {Item(u"file:///a"_s, 12, 5), Item(u"file:///b"_s, 0xffffffff, 0)}};
    QTest::newRow("a copy") << Request{number, {Item(u"name"_s, 3, 0, Item::Kind::copy)}};
    QTest::newRow("what has no text") << Request{
        number, {Item({}, 0, 0, Item::Kind::newFile), Item({}, 0, 0, Item::Kind::folderPanel)}};
    QTest::newRow("tokens") << Request{number, {u"file:///a"_s}, {u"host-1_TIME42"_s, u"한글"_s}};
    QTest::newRow("one that waits") << Request{number, {u"file:///a"_s}, {}, true};
}

void OpenRequestTest::requestsComeBack()
{
    QFETCH(openRequest::Request, request);
    const Decoded decoded = decode(openRequest::encode(request));
    QCOMPARE(decoded.state, State::complete);
    QVERIFY(decoded.request == request);
}

void OpenRequestTest::eachBeginningIsIncomplete()
{
    const QByteArray message =
        openRequest::encode({number, {u"one"_s, openRequest::Item(u"두 번째"_s, 2, 3)}, {u"id"_s, u"token"_s}, true});
    for (qsizetype length = 0; length < message.size(); ++length) {
        QCOMPARE(decode(message.first(length)).state, State::incomplete);
    }
}

void OpenRequestTest::piecesOfAnySizeMakeTheSame()
{
    test::RandomText random;
    for (int round = 0; round < 200; ++round) {
        openRequest::Request request{QUuid::createUuid(), {}, {QString(random.below(50), u'x'), {}}};
        for (qsizetype left = random.below(20); left > 0; --left) {
            request.items.append(QString(random.below(200), u'한'));
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
    QTest::newRow("too many texts") << head + plain + QByteArray("\xff\xff\xff\xff", 4);
    QTest::newRow("too long a text") << head + plain + QByteArray("\0\0\0\1", 4) + url +
                                            QByteArray("\xff\xff\xff\xff", 4);
    QTest::newRow("no UTF-8") << head + plain + QByteArray("\0\0\0\1", 4) + url + QByteArray("\0\0\0\1\xff", 5);
    QTest::newRow("too much in all") << openRequest::encode({number, {QString(openRequest::largestMessage - 60, u'x')}})
                                                .replace(head.size() + plain.size() + 3, 1, QByteArray(1, 2)) +
                                            url + QByteArray("\0\0\0\xff", 4);
    QTest::newRow("more behind the end") << head + plain + QByteArray("\0\0\0\0x", 5);
    QTest::newRow("neither waits nor not") << head + QByteArray(1, 2) + plain.sliced(1);
    QTest::newRow("too long a token") << head + QByteArray("\0\xff\xff\xff\xff", 5);
    QTest::newRow("a kind that is none") << head + plain + QByteArray("\0\0\0\1\4", 5);
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
    QVERIFY(reader.request().items.isEmpty());
}

void OpenRequestTest::aTooLargeListIsNoMessage()
{
    QVERIFY(openRequest::encode({number, {QString(openRequest::largestMessage, u'x')}}).isEmpty());
    QVERIFY(openRequest::encode({number, QList<openRequest::Item>(openRequest::mostItems + 1, u"x"_s)}).isEmpty());
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
