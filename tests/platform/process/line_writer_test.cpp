#include "platform/files/open_file.h"
#include "platform/process/line_writer.h"
#include "support/test_program.h"

#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace line_writer_test {

using namespace kelm;

namespace {

constexpr std::chrono::seconds patience(20);
constexpr std::chrono::milliseconds noPatience(1);

/// A pipe of a page, whose reader reads when it is told to.
struct Pipe
{
    OpenFile reader;
    OpenFile writer;

    Pipe()
    {
        int ends[2] = {-1, -1};
        if (::pipe(ends) == 0) {
            reader = OpenFile(ends[0]);
            writer = OpenFile(ends[1]);
        }
#ifdef F_SETPIPE_SZ
        ::fcntl(writer.get(), F_SETPIPE_SZ, 4096);
#endif
    }

    /// Reads until the text holds `end`.
    QByteArray readUntil(const QByteArray& end) const
    {
        QByteArray text;
        QByteArray piece(4096, '\0');
        while (!text.contains(end)) {
            const qsizetype count = reader.read(piece.data(), piece.size());
            if (count <= 0) {
                break;
            }
            text += piece.first(count);
        }
        return text;
    }
};

} // namespace

class LineWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesComeInTheirOrder();
    void aFullPipeHoldsNobody();
    void whatFoundNoRoomIsCounted();
    void aPipeThatDoesNotWaitIsWaitedFor();
    void aReaderThatHasGoneDoesNoHarm();
    void theEndDoesNotWaitForGood();
};

void LineWriterTest::linesComeInTheirOrder()
{
    const Pipe pipe;
    LineWriter writer(pipe.writer.get());
    QByteArray expected;
    for (int line = 0; line < 100; ++line) {
        expected += QByteArray::number(line) + '\n';
        writer.write(QByteArray::number(line) + '\n');
    }
    QVERIFY(writer.finish(patience));
    QCOMPARE(pipe.readUntil("99\n"), expected);
}

void LineWriterTest::aFullPipeHoldsNobody()
{
    const Pipe pipe;
    LineWriter writer(pipe.writer.get());
    const QByteArray line = QByteArray(9999, 'x') + '\n';
    for (int left = 20; left > 0; --left) {
        writer.write(line);
    }
    writer.write("last\n");
    QVERIFY(!writer.finish(noPatience));
    QCOMPARE(pipe.readUntil("last\n"), line.repeated(20) + "last\n");
    QVERIFY(writer.finish(patience));
}

void LineWriterTest::whatFoundNoRoomIsCounted()
{
    const Pipe pipe;
    LineWriter writer(pipe.writer.get());
    const QByteArray line = QByteArray(LineWriter::mostWaiting / 4 - 1, 'x') + '\n';
    for (int left = 7; left > 0; --left) {
        writer.write(line);
    }
    QCOMPARE(pipe.readUntil(line.repeated(4)), line.repeated(4));
    QVERIFY(writer.finish(patience));
    writer.write("last\n");
    QCOMPARE(pipe.readUntil("last\n"), QByteArray("(3 lines were left out here)\nlast\n"));
}

void LineWriterTest::aPipeThatDoesNotWaitIsWaitedFor()
{
    const Pipe pipe;
    QCOMPARE(::fcntl(pipe.writer.get(), F_SETFL, O_NONBLOCK), 0);
    LineWriter writer(pipe.writer.get());
    const QByteArray line = QByteArray(99'999, 'x') + '\n';
    writer.write(line);
    QVERIFY(!writer.finish(noPatience));
    QCOMPARE(pipe.readUntil("\n"), line);
}

void LineWriterTest::aReaderThatHasGoneDoesNoHarm()
{
    ::signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    LineWriter writer(pipe.writer.get());
    pipe.reader.close();
    writer.write("nobody reads this\n");
    QVERIFY(writer.finish(patience));
    LineWriter closed(-1);
    closed.write("nor this\n");
    QVERIFY(closed.finish(patience));
}

void LineWriterTest::theEndDoesNotWaitForGood()
{
    const Pipe pipe;
    const QByteArray line = QByteArray(99'999, 'x') + '\n';
    {
        LineWriter writer(pipe.writer.get());
        writer.write(line);
    }
    // What was being written goes on for as long as the process does.
    QCOMPARE(pipe.readUntil("\n"), line);
}

const kelm::test::Registered<LineWriterTest> registered;

} // namespace line_writer_test

#include "line_writer_test.moc"
