#include "app/command_line/operands.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

namespace operands_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class OperandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void operandsNameItems_data();
    void operandsNameItems();
    void addressesBeginWithAScheme();
    void placesAreNumbers_data();
    void placesAreNumbers();
    void rawBytesStayRaw();
    void itemsBecomeOperandsAgain_data();
    void itemsBecomeOperandsAgain();

private:
    QTemporaryDir folder_;
};

void OperandsTest::initTestCase()
{
    QVERIFY(QDir(folder_.path()).mkdir(u"sub"_s));
    QVERIFY(QDir(folder_.path()).mkpath(u"real/deep"_s));
    QVERIFY(QFile::link(folder_.filePath(u"real/deep"_s), folder_.filePath(u"link"_s)));
    QVERIFY(QFile::link(folder_.filePath(u"none"_s), folder_.filePath(u"dangling"_s)));
    for (const QString& name :
         {u"a.txt"_s, u"real/a.txt"_s, u"colons:3"_s, u"both"_s, u"both:4"_s, u"7"_s, u"kelmpane:a.txt"_s}) {
        QFile file(folder_.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
}

void OperandsTest::operandsNameItems_data()
{
    QTest::addColumn<QString>("operand");
    QTest::addColumn<QString>("url");
    QTest::addColumn<quint32>("line");
    QTest::addColumn<quint32>("column");
    const auto row = [](const char* name, const QString& operand, const QString& url, quint32 line = 0,
                        quint32 column = 0) { QTest::newRow(name) << operand << url << line << column; };
    row("relative", u"a.txt"_s, u"file://%1/a.txt"_s);
    row("relative through folders", u"./sub/../a.txt"_s, u"file://%1/a.txt"_s);
    row("up from behind a symbolic link", u"link/../a.txt"_s, u"file://%1/real/a.txt"_s);
    row("up twice from there", u"link/../../a.txt"_s, u"file://%1/a.txt"_s);
    row("its line", u"link/../a.txt:7"_s, u"file://%1/real/a.txt"_s, 7);
    row("through a symbolic link", u"./link//a.txt"_s, u"file://%1/link/a.txt"_s);
    row("up from a symbolic link to nothing", u"dangling/../a.txt"_s, u"file://%1/a.txt"_s);
    row("up from a folder that is not there", u"none/../a.txt"_s, u"file://%1/a.txt"_s);
    row("up beyond the root", u"/../../none/a.txt"_s, u"file:///none/a.txt"_s);
    row("absolute", u"/none/a.txt"_s, u"file:///none/a.txt"_s);
    row("current folder", u"."_s, u"file://%1/"_s);
    row("folder", u"sub"_s, u"file://%1/sub/"_s);
    row("folder with a slash", u"sub/"_s, u"file://%1/sub/"_s);
    row("root", u"/"_s, u"file:///"_s);
    row("folder that is not there", u"none/"_s, u"file://%1/none"_s);
    row("blank, percent, hash", u"a b%20#c?.txt"_s, u"file://%1/a%20b%2520%23c%3F.txt"_s);
    row("korean", u"한.txt"_s, u"file://%1/%ED%95%9C.txt"_s);
    row("leading dash", u"-a.txt"_s, u"file://%1/-a.txt"_s);
    row("colon in a name", u"a:b.txt"_s, u"file://%1/a:b.txt"_s);
    row("colon and slashes behind a blank", u"a b://c"_s, u"file://%1/a%20b:/c"_s);
    row("file URL", u"file:///a%20b.txt:3"_s, u"file:///a%20b.txt:3"_s);
    row("link", u"kelmpane://open?code=Y+Q=&run=1"_s, u"kelmpane://open?code=Y+Q=&run=1"_s);
    row("link in capitals stays so", u"KELMPANE://open"_s, u"KELMPANE://open"_s);
    row("link without slashes", u"kelmpane:open?code=Y+Q="_s, u"kelmpane:open?code=Y+Q="_s);
    row("a file that is named like one", u"kelmpane:a.txt"_s, u"file://%1/kelmpane:a.txt"_s);
    row("another URL", u"https://host/a"_s, u"https://host/a"_s);

    row("line", u"a.txt:12"_s, u"file://%1/a.txt"_s, 12);
    row("line and column", u"a.txt:12:5"_s, u"file://%1/a.txt"_s, 12, 5);
    row("as compilers print it", u"a.txt:12:5:"_s, u"file://%1/a.txt"_s, 12, 5);
    row("line and one more colon", u"a.txt:12:"_s, u"file://%1/a.txt"_s, 12);
    row("line 0", u"a.txt:0"_s, u"file://%1/a.txt"_s, 1);
    row("a line beyond all", u"a.txt:99999999999999999999"_s, u"file://%1/a.txt"_s, 2147483647);
    row("a name with a colon that is there", u"colons:3"_s, u"file://%1/colons:3"_s);
    row("its line", u"colons:3:8"_s, u"file://%1/colons:3"_s, 8);
    row("its line and column", u"colons:3:8:2"_s, u"file://%1/colons:3"_s, 8, 2);
    row("the longest name that is there", u"both:4:2"_s, u"file://%1/both:4"_s, 2);
    row("the shorter one", u"both:5:2"_s, u"file://%1/both"_s, 5, 2);
    row("none is there", u"none:5:2"_s, u"file://%1/none"_s, 5, 2);
    row("a number is a name", u"7"_s, u"file://%1/7"_s);
    row("nothing before the colon", u":12"_s, u"file://%1/:12"_s);
    row("nothing but a folder before the colon", u"none/:12"_s, u"file://%1/none/:12"_s);
    row("no number", u"a.txt:b"_s, u"file://%1/a.txt:b"_s);
    row("a sign", u"a.txt:-3"_s, u"file://%1/a.txt:-3"_s);
    row("other digits", u"a.txt:１２"_s, u"file://%1/a.txt:%EF%BC%91%EF%BC%92"_s);
    row("absolute with a line", u"/none/a.txt:3"_s, u"file:///none/a.txt"_s, 3);
    row("a folder with a line", u"sub:3"_s, u"file://%1/sub/"_s, 3);
}

void OperandsTest::operandsNameItems()
{
    QFETCH(QString, operand);
    QFETCH(QString, url);
    const openRequest::Item item = itemOfOperand(operand, folder_.path());
    QCOMPARE(item.text, QString(url).replace(u"%1"_s, folder_.path()));
    QTEST(item.line, "line");
    QTEST(item.column, "column");
    QVERIFY(item.kind == openRequest::Item::Kind::url);
}

void OperandsTest::addressesBeginWithAScheme()
{
    const QString letters = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"_s;
    const QString more = u"0123456789+-."_s;
    const auto isAddress = [this](const QString& operand) {
        return itemOfOperand(operand, folder_.path()).text == operand;
    };
    for (char16_t unit = u'!'; unit < 0x180; ++unit) {
        if (unit == u':' || unit == u'/') {
            continue;
        }
        const QString one(QChar{unit});
        const QByteArray name = QByteArray::number(unit);
        QVERIFY2(isAddress(one + u"://x"_s) == letters.contains(one), name.constData());
        QVERIFY2(isAddress(u"s"_s + one + u"://x"_s) == (letters + more).contains(one), name.constData());
    }
    QVERIFY(!isAddress(u"://x"_s));
    QVERIFY(!isAddress(u"s:/x"_s));
    QVERIFY(!isAddress(u"s:"_s));
}

void OperandsTest::placesAreNumbers_data()
{
    QTest::addColumn<QString>("digits");
    QTest::addColumn<quint32>("number");
    const auto row = [](const QString& digits, quint32 number) {
        QTest::newRow(qPrintable(digits)) << digits << number;
    };
    row(u"0"_s, 1);
    row(u"000"_s, 1);
    row(u"1"_s, 1);
    row(u"2"_s, 2);
    row(u"0010"_s, 10);
    row(u"9876543"_s, 9876543);
    row(u"2147483646"_s, 2147483646);
    row(u"2147483647"_s, 2147483647);
    row(u"2147483648"_s, 2147483647);
    row(u"99999999999999999999999999"_s, 2147483647);
    // None at all.
    for (const QString& text :
         {u""_s, u"/"_s, u":"_s, u"1/"_s, u"1:"_s, u" 1"_s, u"1 "_s, u"+1"_s, u"-1"_s, u"1a"_s, u"１"_s}) {
        row(text, 0);
    }
}

void OperandsTest::placesAreNumbers()
{
    QFETCH(const QString, digits);
    QFETCH(const quint32, number);
    QCOMPARE(placeNumber(digits).value_or(0), number);
}

void OperandsTest::rawBytesStayRaw()
{
    const QByteArray name = folder_.path().toUtf8() + "/raw\xff";
    FILE* made = std::fopen(name.constData(), "w");
    QVERIFY(made != nullptr);
    std::fclose(made);
    const openRequest::Item item = itemOfOperand(pathOfNative("raw\xff:9"), folder_.path());
    QCOMPARE(nativePath(filePath(QUrl(item.text))), name);
    QCOMPARE(item.line, 9U);
    // The toolkit's folder does not know such a name.
    QCOMPARE(std::remove(name.constData()), 0);
}

void OperandsTest::itemsBecomeOperandsAgain_data()
{
    QTest::addColumn<openRequest::Item>("item");
    QTest::addColumn<QString>("operand");
    using openRequest::Item;
    QTest::newRow("a file") << Item(u"file:///a%20b"_s) << u"file:///a%20b"_s;
    QTest::newRow("a line") << Item(u"file:///a%20b"_s, 3) << u"/a b:3:1"_s;
    QTest::newRow("a column") << Item(u"file:///a%20b"_s, 3, 4) << u"/a b:3:4"_s;
    QTest::newRow("a name like a place in a text") << Item(u"file:///a%252%251"_s, 3, 4) << u"/a%2%1:3:4"_s;
    QTest::newRow("a folder") << Item(u"file:///a/"_s, 3) << u"file:///a/"_s;
    QTest::newRow("a link") << Item(u"kelmpane://open"_s, 3) << u"kelmpane://open"_s;
}

void OperandsTest::itemsBecomeOperandsAgain()
{
    QFETCH(openRequest::Item, item);
    QTEST(operandOf(item), "operand");
}

const kelm::test::Registered<OperandsTest> registered;

} // namespace operands_test

#include "operands_test.moc"
