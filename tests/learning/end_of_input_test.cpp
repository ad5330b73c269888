#include "learning/end_of_input.h"
#include "platform/process/process.h"
#include "platform/text/regular_expression.h"
#include "support/test_program.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace end_of_input_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class EndOfInputTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPatternCompiles();
    void complaintsAreKnown_data();
    void complaintsAreKnown();
    void onlyTheEndIsLookedAt();
    void realInterpretersComplainSo_data();
    void realInterpretersComplainSo();
};

void EndOfInputTest::everyPatternCompiles()
{
    for (const EndOfInputPattern& each : endOfInputPatterns()) {
        QVERIFY2(RegularExpression::compile(u"(?m)"_s + each.pattern), qPrintable(each.pattern));
    }
}

void EndOfInputTest::complaintsAreKnown_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isKnown");
    QTest::newRow("nothing") << QString() << false;
    QTest::newRow("Python") << u"  File \"a.py\", line 1\nEOFError: EOF when reading a line\n"_s << true;
    QTest::newRow("Python, another matter") << u"EOFError: Ran out of input\n"_s << false;
    QTest::newRow("Python, within a line") << u"x = 'EOFError: EOF when reading'\n"_s << false;
    QTest::newRow("JavaScript") << u"Error [ERR_USE_AFTER_CLOSE]: readline was closed\n"_s << true;
    QTest::newRow("Ruby") << u"a.rb:1:in `readline': end of file reached (EOFError)\n"_s << true;
    QTest::newRow("Ruby, nothing to chomp")
        << u"a.rb:1:in `<main>': undefined method `chomp' for nil:NilClass (NoMethodError)\n\nname = gets.chomp\n"_s
        << true;
    QTest::newRow("Ruby, another nothing")
        << u"a.rb:1:in '<main>': undefined method 'size' for nil (NoMethodError)\n\nputs list.size\n"_s << false;
    QTest::newRow("Go, panic") << u"panic: EOF\n\ngoroutine 1 [running]:\n"_s << true;
    QTest::newRow("Go, log") << u"2026/01/02 03:04:05 EOF\nexit status 1\n"_s << true;
    QTest::newRow("Go, a bad file") << u"2026/01/02 03:04:05 unexpected EOF\nexit status 1\n"_s << false;
    QTest::newRow("Swift") << u"main.swift:1: Fatal error: Unexpectedly found nil while unwrapping an Optional value\n"
                              "1 | let name = readLine()!\n"_s
                           << true;
    QTest::newRow("Java") << u"Exception in thread \"main\" java.util.NoSuchElementException: No line found\n"
                             "\tat java.base/java.util.Scanner.nextLine(Scanner.java:1651)\n"_s
                          << true;
    QTest::newRow("Java, a collection") << u"Exception in thread \"main\" java.util.NoSuchElementException\n"
                                           "\tat java.base/java.util.ArrayList$Itr.next(ArrayList.java:970)\n"_s
                                        << false;
    QTest::newRow("Haskell") << u"main: <stdin>: hGetLine: end of file\n"_s << true;
}

void EndOfInputTest::complaintsAreKnown()
{
    QFETCH(QString, text);
    QFETCH(bool, isKnown);
    QCOMPARE(tellsOfEndOfInput(text), isKnown);
}

void EndOfInputTest::onlyTheEndIsLookedAt()
{
    const QString complaint = u"EOFError: EOF when reading a line\n"_s;
    const QString much = u"x\n"_s.repeated(longestEndOfInputLook);
    QVERIFY(tellsOfEndOfInput(much + complaint));
    QVERIFY(!tellsOfEndOfInput(complaint + much));
}

void EndOfInputTest::realInterpretersComplainSo_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QByteArray>("code");
    QTest::newRow("python") << u"python3"_s << QByteArray("name = input('Name? ')\n");
    QTest::newRow("node") << u"node"_s
                          << QByteArray("const r = require('readline').createInterface({input: process.stdin});\n"
                                        "r.on('close', () => r.question('Name? ', console.log));\n");
    QTest::newRow("ruby") << u"ruby"_s << QByteArray("name = gets.chomp\n");
}

void EndOfInputTest::realInterpretersComplainSo()
{
    QFETCH(QString, program);
    QFETCH(QByteArray, code);
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty()) {
        QSKIP("This interpreter is not installed.");
    }
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(code) == code.size());
    file.close();
    const ProcessResult result =
        ProcessRunner::system().run({.program = path, .arguments = {file.fileName()}, .standardInput = QByteArray()});
    QVERIFY(!result.exit.isSuccess());
    QVERIFY2(tellsOfEndOfInput(QString::fromUtf8(result.standardError)), result.standardError.constData());
}

const kelm::test::Registered<EndOfInputTest> registered(kelm::test::Toolkit::core);

} // namespace end_of_input_test

#include "end_of_input_test.moc"
