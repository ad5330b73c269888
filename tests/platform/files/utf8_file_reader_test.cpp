#include "platform/files/utf8_file.h"
#include "platform/files/utf8_file_reader.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace utf8_file_reader_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// From this size on a file is read in sections.
constexpr qsizetype sectioned = qsizetype(8) << 20;

/// Keeps what comes, and does something when a certain reading is under way.
class Sink final : public Utf8Sink
{
public:
    void begin(int count, qint64 bytes) override
    {
        sections.assign(std::size_t(count), QString());
        statedBytes = bytes;
        ++readings;
        hasMeddled_ = false;
        if (onBegin) {
            onBegin(readings);
        }
    }
    void append(int section, QStringView units) override { sections[std::size_t(section)] += units; }
    bool goesOn(double share) override
    {
        inOrder = inOrder && share >= 0 && share <= 1;
        if (meddle && !hasMeddled_.exchange(true)) {
            meddle(readings);
        }
        return share < stopAt;
    }

    QString text() const
    {
        QString whole;
        for (const QString& section : sections) {
            whole += section;
        }
        return whole;
    }

    std::vector<QString> sections;
    qint64 statedBytes = -1;
    /// How often a text has begun.
    int readings = 0;
    /// Called as each reading begins, with its number from 1.
    std::function<void(int reading)> onBegin;
    /// Called once in each reading, when something is read.
    std::function<void(int reading)> meddle;
    /// The share from which on the reading is to end.
    double stopAt = 2;
    std::atomic<bool> inOrder = true;

private:
    std::atomic<bool> hasMeddled_ = false;
};

/// Gives a file a time of change far from that of now, a second later each time.
void touch(const QString& path)
{
    static time_t second = 1'000'000;
    const timespec times[] = {{++second, 0}, {second, 0}};
    if (::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) != 0) {
        qFatal("cannot set the time of the file");
    }
}

void append(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::Append) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write to the file");
    }
}

} // namespace

class Utf8FileReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sectionsAreOneText();
    void faultsAreFoundInEverySection_data();
    void faultsAreFoundInEverySection();
    void aFileThatGrowsIsReadOnceMore();
    void aFileThatShrinksIsReadOnceMore();
    void aFileThatIsReplacedIsReadOnceMore();
    void aFileOfAnotherTimeIsReadOnceMore();
    void aFaultOfAHalfWrittenFileIsNoneAfterwards();
    void aFileThatKeepsChangingIsRefused();
    void aFileThatGoesIsMissing();
    void theSinkEndsTheReading_data();
    void theSinkEndsTheReading();
    void tooLongATextIsRefused_data();
    void tooLongATextIsRefused();
    void aFileTooLongWhateverItHoldsIsNotRead();
    void aFileTooLargeForTheMemoryIsNotRead();
    void aFileOfNoSizeIsHeldToTheMemory();
    void filesOfTheSystemAreReadToTheirEnd();
    void pipesAndDevicesAreRefused_data();
    void pipesAndDevicesAreRefused();
    void whatMayNotBeReadIsRefused();
    void theMemoryIsTold();

private:
    QString write(const QByteArray& bytes, const QString& name = u"file"_s) const
    {
        QFile file(folder_.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot set up the file");
        }
        return file.fileName();
    }

    QTemporaryDir folder_;
};

void Utf8FileReaderTest::initTestCase()
{
    QVERIFY(folder_.isValid());
}

void Utf8FileReaderTest::sectionsAreOneText()
{
    // Each shift puts the border of the sections into another place of the characters.
    const QByteArray unit = encodeUtf8Text(u"a\u00e9\ud55c\U0001f600\r\n");
    const QByteArray many = unit.repeated(sectioned / unit.size() + 1);
    for (qsizetype shift = 0; shift < 2 * unit.size(); ++shift) {
        const QByteArray bytes = QByteArray(shift, 'x') + many;
        Sink sink;
        QVERIFY(!readUtf8File(write(bytes), sink));
        QCOMPARE(sink.sections.size(), std::size_t(2));
        QCOMPARE(sink.statedBytes, bytes.size());
        QVERIFY(std::none_of(sink.sections.begin(), sink.sections.end(), [](const QString& s) { return s.isEmpty(); }));
        QVERIFY(encodeUtf8Text(sink.text()) == bytes);
        QVERIFY(sink.inOrder);
    }
}

void Utf8FileReaderTest::faultsAreFoundInEverySection_data()
{
    QTest::addColumn<qsizetype>("place");
    QTest::addColumn<QByteArray>("fault");
    const qsizetype end = sectioned + 1000;
    const std::vector<qsizetype> places{0, end / 2 - 4, end / 2 - 1, end / 2, end / 2 + 1, end - 4};
    for (const qsizetype place : places) {
        for (const QByteArray& fault :
             {QByteArray("\xff\xff\xff\xff"), QByteArray("\x80\x80\x80\x80"), QByteArray("\xf0\x9f\x98q")}) {
            QTest::addRow("%lld %s", qlonglong(place), fault.toHex().constData()) << place << fault;
        }
    }
    QTest::addRow("cut off at the end") << end - 3 << QByteArray("\xf0\x9f\x98");
}

void Utf8FileReaderTest::faultsAreFoundInEverySection()
{
    QFETCH(qsizetype, place);
    QFETCH(QByteArray, fault);
    QByteArray bytes(sectioned + 1000, 'a');
    bytes.replace(place, fault.size(), fault);
    const QString path = write(bytes);
    Sink sink;
    const std::optional<FileError> error = readUtf8File(path, sink);
    QVERIFY(error);
    QCOMPARE(error->message, path + u": The file is not valid UTF-8 text."_s);
    QCOMPARE(sink.readings, 1);
}

void Utf8FileReaderTest::aFileThatGrowsIsReadOnceMore()
{
    for (const qsizetype size : {qsizetype(1000), sectioned}) {
        const QString path = write(QByteArray(size, 'a'));
        Sink sink;
        sink.meddle = [&](int reading) {
            if (reading == 1) {
                append(path, "more");
            }
        };
        QVERIFY(!readUtf8File(path, sink));
        QCOMPARE(sink.readings, 2);
        QVERIFY(sink.text() == QString(size, u'a') + u"more"_s);
    }
}

void Utf8FileReaderTest::aFileThatShrinksIsReadOnceMore()
{
    for (const qsizetype size : {qsizetype(1000), sectioned}) {
        const QString path = write(QByteArray(size, 'a'));
        Sink sink;
        sink.meddle = [&](int reading) { QVERIFY(reading > 1 || QFile(path).resize(10)); };
        QVERIFY(!readUtf8File(path, sink));
        QCOMPARE(sink.readings, 2);
        QCOMPARE(sink.text(), QString(10, u'a'));
    }
}

void Utf8FileReaderTest::aFileThatIsReplacedIsReadOnceMore()
{
    const QString path = write("before");
    const QString other = write("now!!!", u"other"_s);
    touch(other);
    Sink sink;
    sink.meddle = [&](int reading) {
        QVERIFY(reading > 1 ||
                ::rename(QFile::encodeName(other).constData(), QFile::encodeName(path).constData()) == 0);
    };
    QVERIFY(!readUtf8File(path, sink));
    QCOMPARE(sink.readings, 2);
    QCOMPARE(sink.text(), u"now!!!"_s);
}

void Utf8FileReaderTest::aFileOfAnotherTimeIsReadOnceMore()
{
    const QString path = write("text");
    Sink sink;
    sink.meddle = [&](int reading) {
        if (reading == 1) {
            touch(path);
        }
    };
    QVERIFY(!readUtf8File(path, sink));
    QCOMPARE(sink.readings, 2);
    QCOMPARE(sink.text(), u"text"_s);
}

void Utf8FileReaderTest::aFaultOfAHalfWrittenFileIsNoneAfterwards()
{
    // A character of which the rest comes behind the first chunk's reading.
    const QByteArray head = QByteArray(300'000, 'a') + "\xed\x95";
    const QString path = write(head);
    Sink sink;
    sink.meddle = [&](int reading) {
        if (reading == 1) {
            append(path, "\x9c");
        }
    };
    QVERIFY(!readUtf8File(path, sink));
    QCOMPARE(sink.readings, 2);
    QCOMPARE(sink.text().back(), QChar(0xd55c));
}

void Utf8FileReaderTest::aFileThatKeepsChangingIsRefused()
{
    for (const qsizetype size : {qsizetype(1000), sectioned}) {
        const QString path = write(QByteArray(size, 'a'));
        Sink sink;
        sink.meddle = [&](int) { append(path, "x"); };
        const std::optional<FileError> error = readUtf8File(path, sink);
        QVERIFY(error);
        QCOMPARE(error->message, path + u": The file keeps changing while it is read."_s);
        QCOMPARE(sink.readings, 2);
    }
}

void Utf8FileReaderTest::aFileThatGoesIsMissing()
{
    const QString path = write("text");
    Sink sink;
    sink.meddle = [&](int) { QFile::remove(path); };
    const std::optional<FileError> error = readUtf8File(path, sink);
    QVERIFY(error);
    QCOMPARE(error->message, path + u": No such file or directory"_s);
}

void Utf8FileReaderTest::theSinkEndsTheReading_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<double>("stopAt");
    QTest::newRow("small, at once") << qsizetype(1000) << 0.0;
    QTest::newRow("small, at its end") << qsizetype(1000) << 1.0;
    QTest::newRow("in sections, at once") << sectioned << 0.0;
    QTest::newRow("in sections, in the middle") << sectioned << 0.5;
}

void Utf8FileReaderTest::theSinkEndsTheReading()
{
    QFETCH(qsizetype, size);
    QFETCH(double, stopAt);
    const QString path = write(QByteArray(size, 'a'));
    Sink sink;
    sink.stopAt = stopAt;
    const std::optional<FileError> error = readUtf8File(path, sink);
    QVERIFY(error);
    QCOMPARE(error->message, path + u": The reading was stopped."_s);
    QCOMPARE(sink.readings, 1);
    QVERIFY(stopAt > 0 || sink.text().size() < size || size < sectioned);
}

void Utf8FileReaderTest::tooLongATextIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qsizetype>("longest");
    QTest::addColumn<bool>("isRead");
    QTest::newRow("just short enough") << QByteArray("abcd") << qsizetype(4) << true;
    QTest::newRow("one too many") << QByteArray("abcde") << qsizetype(4) << false;
    QTest::newRow("units count, not bytes") << QByteArray("\xed\x95\x9c").repeated(4) << qsizetype(4) << true;
    QTest::newRow("pairs count twice") << QByteArray("\xf0\x9f\x98\x80").repeated(3) << qsizetype(5) << false;
    QTest::newRow("in sections, enough") << QByteArray(sectioned, 'a') << sectioned << true;
    QTest::newRow("in sections, too many") << QByteArray(sectioned, 'a') << sectioned - 1 << false;
}

void Utf8FileReaderTest::tooLongATextIsRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(qsizetype, longest);
    QFETCH(bool, isRead);
    const QString path = write(bytes);
    Sink sink;
    Utf8Limits limits;
    limits.longestText = longest;
    const std::optional<FileError> error = readUtf8File(path, sink, limits);
    QCOMPARE(!error, isRead);
    if (error) {
        QCOMPARE(error->message,
                 u"%1: The text is longer than the %2 units that one can have."_s.arg(path).arg(longest));
    }
}

void Utf8FileReaderTest::aFileTooLongWhateverItHoldsIsNotRead()
{
    const QString path = write({});
    QFile file(path);
    if (!file.resize(3 * (qint64(1) << 31))) {
        QSKIP("this file system has no files of holes");
    }
    Sink sink;
    Utf8Limits limits;
    limits.freeMemory = [] { return std::nullopt; };
    const std::optional<FileError> error = readUtf8File(path, sink, limits);
    file.resize(0);
    QVERIFY(error);
    QCOMPARE(error->message, path + u": The text is longer than the 2147483647 units that one can have."_s);
    QCOMPARE(sink.readings, 0);
}

void Utf8FileReaderTest::aFileTooLargeForTheMemoryIsNotRead()
{
    const QString path = write({});
    QFile file(path);
    if (!file.resize(100'000'000)) {
        QSKIP("this file system has no files of holes");
    }
    Sink sink;
    Utf8Limits limits;
    limits.freeMemory = [] { return 200'000'000; };
    const std::optional<FileError> error = readUtf8File(path, sink, limits);
    file.resize(0);
    QVERIFY(error);
    QCOMPARE(error->message, path + u": The file is too large for the memory: it takes 213 MB, and 200 MB are free."_s);
    QCOMPARE(sink.readings, 0);
}

void Utf8FileReaderTest::aFileOfNoSizeIsHeldToTheMemory()
{
    // It says that it is empty, and then there is more in it than there is room for.
    const QString path = write({});
    Sink sink;
    sink.onBegin = [&](int) { append(path, QByteArray(40'000'000, 'a')); };
    Utf8Limits limits;
    limits.freeMemory = [] { return 1000; };
    const std::optional<FileError> error = readUtf8File(path, sink, limits);
    QFile::resize(path, 0);
    QVERIFY(error);
    QVERIFY(error->message.startsWith(path + u": The file is too large for the memory"_s));
    QCOMPARE(sink.readings, 1);
    QVERIFY(sink.text().size() < 20'000'000);
}

void Utf8FileReaderTest::filesOfTheSystemAreReadToTheirEnd()
{
    for (const QString& path : {u"/proc/self/status"_s, u"/proc/self/maps"_s, u"/proc/cpuinfo"_s}) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            QSKIP("this system makes no such files up");
        }
        Sink sink;
        const std::optional<FileError> error = readUtf8File(path, sink);
        QVERIFY2(!error, error ? qPrintable(error->message) : "");
        QCOMPARE(sink.statedBytes, 0);
        QVERIFY(sink.text().size() > 100);
        QVERIFY(sink.text().endsWith(u'\n'));
    }
}

void Utf8FileReaderTest::pipesAndDevicesAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("pipe that nobody writes to") << folder_.filePath(u"pipe"_s) << u"Invalid argument"_s;
    QTest::newRow("endless device") << u"/dev/zero"_s << u"Invalid argument"_s;
    QTest::newRow("terminal") << u"/dev/tty"_s << QString();
    QTest::newRow("folder") << folder_.path() << u"Is a directory"_s;
    QTest::newRow("missing") << folder_.filePath(u"none"_s) << u"No such file or directory"_s;
}

void Utf8FileReaderTest::pipesAndDevicesAreRefused()
{
    QFETCH(QString, path);
    QFETCH(QString, reason);
    ::mkfifo(QFile::encodeName(folder_.filePath(u"pipe"_s)).constData(), 0600);
    Sink sink;
    const std::optional<FileError> error = readUtf8File(path, sink);
    QVERIFY(error);
    QVERIFY(error->message.startsWith(path + u": "_s));
    QVERIFY2(error->message.endsWith(reason), qPrintable(error->message));
    QCOMPARE(sink.readings, 0);
}

void Utf8FileReaderTest::whatMayNotBeReadIsRefused()
{
    const QString path = write("secret");
    QVERIFY(::chmod(QFile::encodeName(path).constData(), 0) == 0);
    ::chmod(QFile::encodeName(folder_.path()).constData(), 0755);
    Sink sink;
    std::optional<FileError> error;
    {
        const test::Unprivileged ordinary;
        error = readUtf8File(path, sink);
    }
    QFile::remove(path);
    QVERIFY(error);
    QCOMPARE(error->message, path + u": Permission denied"_s);
}

void Utf8FileReaderTest::theMemoryIsTold()
{
    const std::optional<qint64> free = availableMemory();
    QVERIFY(free);
    QVERIFY(*free > qint64(1) << 20);
}

const kelm::test::Registered<Utf8FileReaderTest> registered;

} // namespace utf8_file_reader_test

#include "utf8_file_reader_test.moc"
