#include "platform/files/utf8_file.h"
#include "support/test_program.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

namespace utf8_file_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The definition of RFC 3629, byte by byte.
bool isValid(const QByteArray& bytes)
{
    for (qsizetype at = 0; at < bytes.size();) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        const int length = byte < 0x80 ? 1 : byte < 0xc0 ? 0 : byte < 0xe0 ? 2 : byte < 0xf0 ? 3 : byte < 0xf8 ? 4 : 0;
        if (length == 0 || at + length > bytes.size()) {
            return false;
        }
        char32_t value = length == 1 ? byte : byte & (0x7f >> length);
        for (int i = 1; i < length; ++i) {
            const auto next = static_cast<unsigned char>(bytes[at + i]);
            if ((next & 0xc0) != 0x80) {
                return false;
            }
            value = value << 6 | (next & 0x3f);
        }
        constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (value < least[length] || value > 0x10ffff || (value >= 0xd800 && value <= 0xdfff)) {
            return false;
        }
        at += length;
    }
    return true;
}

} // namespace

class Utf8FileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyCharacterComesBack();
    void oddTextsComeBack_data();
    void oddTextsComeBack();
    void whatIsNotValidIsRefused_data();
    void whatIsNotValidIsRefused();
    void shortSequencesAreTakenAsTheStandardSays();
    void charactersMayStandAcrossAnyChunk();
    void faultsAreFoundAcrossAnyChunk();
    void unpairedSurrogatesBecomeReplacementCharacters_data();
    void unpairedSurrogatesBecomeReplacementCharacters();
    void aFileOfNoSizeIsReadToItsEnd();
    void whatCannotBeReadIsAnError_data();
    void whatCannotBeReadIsAnError();

private:
    QString write(const QByteArray& bytes) const
    {
        QFile file(folder_.filePath(u"file"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot set up the file");
        }
        return file.fileName();
    }

    QTemporaryDir folder_;
};

void Utf8FileTest::initTestCase()
{
    QVERIFY(folder_.isValid());
}

void Utf8FileTest::everyCharacterComesBack()
{
    for (char32_t value = 0; value <= 0x10ffff; ++value) {
        if (value >= 0xd800 && value <= 0xdfff) {
            continue;
        }
        const QString text = QString::fromUcs4(&value, 1);
        const QByteArray bytes = encodeUtf8Text(text);
        if (!isValid(bytes) || decodeUtf8Text(bytes) != text) {
            QFAIL(qPrintable(u"U+%1"_s.arg(uint(value), 4, 16)));
        }
    }
}

void Utf8FileTest::oddTextsComeBack_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n") << u"a\r\nb\r\n"_s;
    QTest::newRow("lone CR") << QByteArray("a\rb\r") << u"a\rb\r"_s;
    QTest::newRow("mixed ends, none at the end") << QByteArray("a\nb\r\nc\rd") << u"a\nb\r\nc\rd"_s;
    QTest::newRow("byte-order mark") << QByteArray("\xef\xbb\xbf"
                                                   "a")
                                     << u"\ufeffa"_s;
    QTest::newRow("byte-order mark alone") << QByteArray("\xef\xbb\xbf") << u"\ufeff"_s;
    QTest::newRow("two byte-order marks") << QByteArray("\xef\xbb\xbf\xef\xbb\xbf") << u"\ufeff\ufeff"_s;
    QTest::newRow("byte-order mark within") << QByteArray("a\xef\xbb\xbf") << u"a\ufeff"_s;
    QTest::newRow("NUL") << QByteArray("a\0b\0", 4) << QString(u"a\0b\0"_s);
    QTest::newRow("no-break blank") << QByteArray("a\xc2\xa0") << u"a\u00a0"_s;
    QTest::newRow("next line") << QByteArray("\xc2\x85") << u"\u0085"_s;
    QTest::newRow("line and paragraph separator") << QByteArray("\xe2\x80\xa8\xe2\x80\xa9") << u"\u2028\u2029"_s;
    QTest::newRow("noncharacters") << QByteArray("\xef\xb7\x90\xef\xbf\xbe\xef\xbf\xbf\xf4\x8f\xbf\xbf")
                                   << u"\ufdd0\ufffe\uffff\U0010ffff"_s;
    QTest::newRow("replacement character") << QByteArray("\xef\xbf\xbd") << u"\ufffd"_s;
    QTest::newRow("astral") << QByteArray("\xf0\x9f\x98\x80") << u"\U0001f600"_s;
    QTest::newRow("combining") << QByteArray("e\xcc\x81\xc3\xa9") << u"e\u0301\u00e9"_s;
    QTest::newRow("korean, decomposed and not")
        << QByteArray("\xed\x95\x9c\xe1\x84\x92\xe1\x85\xa1") << u"\ud55c\u1112\u1161"_s;
}

void Utf8FileTest::oddTextsComeBack()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QVERIFY(decodeUtf8Text(bytes) == text);
    QCOMPARE(encodeUtf8Text(text), bytes);
    const std::variant<QString, FileError> read = readUtf8File(write(bytes));
    QVERIFY(std::holds_alternative<QString>(read));
    QCOMPARE(std::get<QString>(read), text);
}

void Utf8FileTest::whatIsNotValidIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("stray continuation") << QByteArray("\x80");
    QTest::newRow("Latin-1") << QByteArray("caf\xe9 au lait");
    QTest::newRow("UTF-16 mark") << QByteArray("\xff\xfe"
                                               "a\0",
                                               4);
    QTest::newRow("overlong NUL") << QByteArray("\xc0\x80");
    QTest::newRow("overlong slash of two") << QByteArray("\xc1\xaf");
    QTest::newRow("overlong of three") << QByteArray("\xe0\x9f\xbf");
    QTest::newRow("overlong of four") << QByteArray("\xf0\x8f\xbf\xbf");
    QTest::newRow("first surrogate") << QByteArray("\xed\xa0\x80");
    QTest::newRow("last surrogate") << QByteArray("\xed\xbf\xbf");
    QTest::newRow("surrogate pair of three each") << QByteArray("\xed\xa0\xbd\xed\xb8\x80");
    QTest::newRow("beyond Unicode") << QByteArray("\xf4\x90\x80\x80");
    QTest::newRow("far beyond Unicode") << QByteArray("\xf7\xbf\xbf\xbf");
    QTest::newRow("five bytes") << QByteArray("\xf8\x88\x80\x80\x80");
    QTest::newRow("cut off after one of two") << QByteArray("ab\xc3");
    QTest::newRow("cut off after two of three") << QByteArray("ab\xe2\x80");
    QTest::newRow("cut off after three of four") << QByteArray("ab\xf0\x9f\x98");
    QTest::newRow("cut off within") << QByteArray("\xe2\x80"
                                                  "ab");
    QTest::newRow("far into a long text") << QByteArray(QByteArray(100000, 'a') + "\xff" + QByteArray(100000, 'b'));
}

void Utf8FileTest::whatIsNotValidIsRefused()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!decodeUtf8Text(bytes).has_value());
    const QString path = write(bytes);
    const std::variant<QString, FileError> read = readUtf8File(path);
    QVERIFY(std::holds_alternative<FileError>(read));
    QCOMPARE(std::get<FileError>(read).message, path + u": The file is not valid UTF-8 text."_s);
}

void Utf8FileTest::shortSequencesAreTakenAsTheStandardSays()
{
    // All of one and two bytes, and all of three and four whose first byte is not ASCII, over the edges of the ranges.
    const QByteArray edges = QByteArray("\x00\x41\x7f\x80\x8f\x90\x9f\xa0\xbf\xc0\xc1\xc2\xdf\xe0\xe1\xec\xed\xee\xef"
                                        "\xf0\xf1\xf3\xf4\xf5\xff",
                                        25);
    const auto check = [](const QByteArray& bytes) {
        if (decodeUtf8Text(bytes).has_value() != isValid(bytes)) {
            qWarning("%s", bytes.toHex().constData());
            return false;
        }
        return true;
    };
    for (int first = 0; first < 256; ++first) {
        QVERIFY(check(QByteArray(1, char(first))));
        for (int second = 0; second < 256; ++second) {
            const QByteArray two{char(first), char(second)};
            QVERIFY(check({two.constData(), 2}));
            for (const char third : edges) {
                const char three[] = {char(first), char(second), third};
                QVERIFY(check(QByteArray(three, 3)));
            }
        }
        for (const char second : edges) {
            for (const char third : edges) {
                for (const char fourth : edges) {
                    const char four[] = {char(first), second, third, fourth};
                    QVERIFY(check(QByteArray(four, 4)));
                }
            }
        }
    }
}

void Utf8FileTest::charactersMayStandAcrossAnyChunk()
{
    // Each shift puts the ends of the chunks into other places of the characters.
    const QByteArray unit = encodeUtf8Text(u"a\u00e9\ud55c\U0001f600\r\n");
    const QByteArray many = unit.repeated((qsizetype(1) << 20) / unit.size());
    for (qsizetype shift = 0; shift < unit.size(); ++shift) {
        const QByteArray bytes = QByteArray(shift, 'x') + many;
        const std::variant<QString, FileError> read = readUtf8File(write(bytes));
        QVERIFY(std::holds_alternative<QString>(read));
        QVERIFY(encodeUtf8Text(std::get<QString>(read)) == bytes);
    }
}

void Utf8FileTest::faultsAreFoundAcrossAnyChunk()
{
    const qsizetype chunk = qsizetype(1) << 18;
    for (const char* fault :
         {"\xff", "\xed\xa0\x80", "\xe2\x80", "\xf0\x9f\x98", "\xf4\x90\x80\x80", "\x80", "\xc0\x80"}) {
        for (qsizetype before = chunk - 5; before <= chunk + 1; ++before) {
            QByteArray bytes = QByteArray(before, 'a') + fault;
            QVERIFY(std::holds_alternative<FileError>(readUtf8File(write(bytes))));
            bytes += 'b';
            QVERIFY(std::holds_alternative<FileError>(readUtf8File(write(bytes))));
            bytes += QByteArray(chunk, 'b');
            QVERIFY(std::holds_alternative<FileError>(readUtf8File(write(bytes))));
        }
    }
}

void Utf8FileTest::unpairedSurrogatesBecomeReplacementCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("saved");
    const QString high(QChar(0xd83d));
    const QString low(QChar(0xde00));
    QTest::newRow("pair") << high + low << u"\U0001f600"_s;
    QTest::newRow("high alone") << high << u"\ufffd"_s;
    QTest::newRow("low alone") << low << u"\ufffd"_s;
    QTest::newRow("high within") << QString(u"a"_s + high + u"b"_s) << u"a\ufffdb"_s;
    QTest::newRow("swapped") << low + high << u"\ufffd\ufffd"_s;
    QTest::newRow("high before a pair") << high + high + low << u"\ufffd\U0001f600"_s;
}

void Utf8FileTest::unpairedSurrogatesBecomeReplacementCharacters()
{
    QFETCH(QString, text);
    QFETCH(QString, saved);
    const QByteArray bytes = encodeUtf8Text(text);
    QVERIFY(isValid(bytes));
    QVERIFY(decodeUtf8Text(bytes) == saved);
}

void Utf8FileTest::aFileOfNoSizeIsReadToItsEnd()
{
    const QString path = u"/proc/self/status"_s;
    if (!QFile::exists(path)) {
        QSKIP("this system makes no such files up");
    }
    const std::variant<QString, FileError> read = readUtf8File(path);
    QVERIFY(std::holds_alternative<QString>(read));
    QVERIFY(std::get<QString>(read).contains(u"Pid:\t%1\n"_s.arg(::getpid())));
}

void Utf8FileTest::whatCannotBeReadIsAnError_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << folder_.filePath(u"none"_s) << u"No such file or directory"_s;
    QTest::newRow("folder") << folder_.path() << u"Is a directory"_s;
    QTest::newRow("pipe") << folder_.filePath(u"pipe"_s) << u"Invalid argument"_s;
    QTest::newRow("endless device") << u"/dev/zero"_s << u"Invalid argument"_s;
    QTest::newRow("empty path") << QString() << u"No such file or directory"_s;
}

void Utf8FileTest::whatCannotBeReadIsAnError()
{
    QFETCH(QString, path);
    QFETCH(QString, reason);
    ::mkfifo(QFile::encodeName(folder_.filePath(u"pipe"_s)).constData(), 0600);
    const std::variant<QString, FileError> read = readUtf8File(path);
    QVERIFY(std::holds_alternative<FileError>(read));
    QCOMPARE(std::get<FileError>(read).message, path + u": "_s + reason);
}

const kelm::test::Registered<Utf8FileTest> registered;

} // namespace utf8_file_test

#include "utf8_file_test.moc"
