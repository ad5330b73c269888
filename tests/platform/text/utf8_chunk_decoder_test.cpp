#include "platform/text/utf8_chunk_decoder.h"
#include "support/test_program.h"

#include <QtTest>

namespace utf8_chunk_decoder_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class Utf8ChunkDecoderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chunksGiveTheTextWhereverTheyAreCut();
    void chunkThatDoesNotDecodeIsDroppedAlone();
    void begunCharacterAtTheEndIsKept_data();
    void begunCharacterAtTheEndIsKept();
};

void Utf8ChunkDecoderTest::chunksGiveTheTextWhereverTheyAreCut()
{
    const QByteArray bytes("a또é😀\xEF\xBB\xBF"
                           "b\n는");
    for (qsizetype first = 0; first <= bytes.size(); ++first) {
        for (qsizetype second = first; second <= bytes.size(); ++second) {
            Utf8ChunkDecoder decoder;
            QString text;
            for (const QByteArray& chunk : {bytes.left(first), bytes.mid(first, second - first), bytes.mid(second)}) {
                text += decoder.decode(chunk).value_or(QString());
            }
            QCOMPARE(text, QString::fromUtf8(bytes));
        }
    }
}

void Utf8ChunkDecoderTest::chunkThatDoesNotDecodeIsDroppedAlone()
{
    Utf8ChunkDecoder decoder;
    QCOMPARE(decoder.decode("good"), u"good"_s);
    QCOMPARE(decoder.decode("bad\xFF"), std::nullopt);
    QCOMPARE(decoder.decode("fine\xED"), u"fine"_s);
    QCOMPARE(decoder.decode("no continuation"), u"no continuation"_s);
    QCOMPARE(decoder.decode("\xF0\x9F"), std::nullopt);
    QCOMPARE(decoder.decode("\x98"), std::nullopt);
    QCOMPARE(decoder.decode("x\xC3"), u"x"_s);
    QCOMPARE(decoder.decode("\xA9\xFF"), std::nullopt);
    QCOMPARE(decoder.decode("again"), u"again"_s);
    QCOMPARE(decoder.decode(""), std::nullopt);
}

void Utf8ChunkDecoderTest::begunCharacterAtTheEndIsKept_data()
{
    QTest::addColumn<QByteArray>("chunk");
    QTest::addColumn<QString>("text");
    QTest::newRow("two of three") << QByteArray("x\xED\x95") << u"x"_s;
    QTest::newRow("three of four") << QByteArray("x\xF0\x9F\x98") << u"x"_s;
    QTest::newRow("one of two") << QByteArray("x\xC3") << u"x"_s;
    QTest::newRow("whole character stays") << QByteArray("x\xED\x95\x9C") << u"x한"_s;
}

void Utf8ChunkDecoderTest::begunCharacterAtTheEndIsKept()
{
    QFETCH(QByteArray, chunk);
    QFETCH(QString, text);
    Utf8ChunkDecoder decoder;
    QCOMPARE(decoder.decode(chunk), text);
}

const kelm::test::Registered<Utf8ChunkDecoderTest> registered;

} // namespace utf8_chunk_decoder_test

#include "utf8_chunk_decoder_test.moc"
