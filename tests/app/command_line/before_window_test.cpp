#include "app/command_line/before_window.h"
#include "app/command_line/command_texts.h"
#include "platform/events/start_tokens.h"
#include "support/start_process.h"
#include "support/test_program.h"

#include <QtTest>

#include <optional>
#include <unistd.h>

namespace before_window_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using openRequest::Item;
using End = test::Start::End;
using Received = SingleInstance::Received;

namespace {

/// A start of the program up to its window: the folder of its place, its patience in milliseconds, what the program
/// that it starts is to make of the request ("none" when its file is to be gone by then), and the command line.
int playStart(const QStringList& arguments)
{
    if (arguments[2] == u"none") {
        QFile::remove(QCoreApplication::applicationFilePath());
    }
    const auto parsed = parseCommandLine(arguments.sliced(3));
    if (const std::optional<ExitStatus> status = answerAtOnce(parsed, "1.2")) {
        return static_cast<int>(*status);
    }
    std::optional<openRequest::Request> request = requestOf(std::get<CommandLine>(parsed));
    if (!request) {
        return static_cast<int>(ExitStatus::failed);
    }
    request->tokens = takeStartTokens();
    SingleInstance instance(test::placeIn(arguments[0]));
    instance.setPatience(std::chrono::milliseconds(arguments[1].toInt()));
    const auto status = handOver(instance, *request, {roleArgument, test::programRoleName, arguments[0], arguments[2]});
    return status ? static_cast<int>(*status) : test::isTheProgram;
}

} // namespace

/// What a start answers at once, what it asks for, and to whom it hands that over.
class BeforeWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsAskedOfTheCommandLineIsAnsweredAtOnce();
    void whatCannotBePrintedIsAFailure();
    void readersThatHaveGoneAreAFailure();
    void aCommandLineBecomesARequest();
    void standardInputIsKeptForTheProgram();
    void theFirstIsTheProgram();
    void othersHandOver();
    void aProgramThatDoesNotAnswerIsToldOf();
};

void BeforeWindowTest::whatIsAskedOfTheCommandLineIsAnsweredAtOnce()
{
    test::Start start;
    const End help = start.run({u"--help"_s});
    QCOMPARE(help.status, 0);
    QCOMPARE(help.said, helpText());
    QCOMPARE(help.complaint, QByteArray());

    const End version = start.run({u"--version"_s});
    QCOMPARE(version.status, 0);
    QCOMPARE(version.said, QByteArray("KelmWright 1.2\n"));

    const End wrong = start.run({u"--wait=1"_s});
    QCOMPARE(wrong.status, 2);
    QCOMPARE(wrong.said, QByteArray());
    QCOMPARE(wrong.complaint, QByteArray("kelmwright: --wait takes no value; see kelmwright --help\n"));
}

void BeforeWindowTest::whatCannotBePrintedIsAFailure()
{
    test::Start start;
    start.process.setStandardOutputFile(u"/dev/full"_s);
    const End help = start.run({u"--help"_s});
    QCOMPARE(help.status, 1);
    QCOMPARE(help.complaint, QByteArray("kelmwright: standard output could not be written\n"));
}

void BeforeWindowTest::readersThatHaveGoneAreAFailure()
{
    test::Start start;
    // Nobody reads its output, nor what it complains of, and no signal ends it.
    start.process.setChildProcessModifier([] {
        int ends[2] = {-1, -1};
        if (::pipe(ends) == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::dup2(ends[1], STDERR_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
        }
    });
    QCOMPARE(start.run({u"--help"_s}).status, 1);
    QCOMPARE(start.run({u"--nonsense"_s}).status, 2);
}

void BeforeWindowTest::aCommandLineBecomesARequest()
{
    CommandLine commandLine;
    commandLine.operands = {{u"/a.txt"_s}, {u"/b.txt:3:4"_s}, {u"kelmpane://open?code=eA"_s}};
    commandLine.line = 9;
    commandLine.makesNewFile = true;
    commandLine.choosesFolder = true;
    const auto request = requestOf(commandLine);
    QVERIFY(request);
    QVERIFY(!request->id.isNull());
    QVERIFY(!request->waits);
    const QList<Item> expected{Item(u"file:///a.txt"_s, 9), Item(u"file:///b.txt"_s, 3, 4),
                               Item(u"kelmpane://open?code=eA"_s, 9), Item({}, 0, 0, Item::Kind::newFile),
                               Item({}, 0, 0, Item::Kind::folderPanel)};
    QCOMPARE(request->items, expected);

    CommandLine waiting;
    waiting.waits = true;
    QVERIFY(requestOf(waiting)->waits);
    QVERIFY(requestOf(waiting)->items.isEmpty());
    QVERIFY(requestOf(waiting)->id != requestOf(waiting)->id);
}

void BeforeWindowTest::standardInputIsKeptForTheProgram()
{
    test::Start start;
    SingleInstance first(start.place());
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QList<Item> items;
    connect(&first, &SingleInstance::received, &first, [&items](const Received& each) { items += each.request.items; });
    QFile input(start.path(u"input"_s));
    QVERIFY(input.open(QIODevice::WriteOnly) && input.write("text") == 4);
    input.close();
    start.process.setStandardInputFile(input.fileName());
    QCOMPARE(start.run({u"--line"_s, u"2"_s, u"-"_s}).status, 0);
    QTRY_COMPARE(items.size(), 1);
    QCOMPARE(items[0].kind, Item::Kind::copy);
    QCOMPARE(items[0].line, 2U);
    const QStringList copies =
        QDir(start.path(u"state/com.kelm.KelmPane.savedState/unsaved"_s)).entryList({u"*.copy"_s});
    QCOMPARE(copies, QStringList(items[0].text + u".copy"_s));

    QVERIFY(input.open(QIODevice::WriteOnly) && input.write("\xff\xfe") == 2);
    input.close();
    const End refused = start.run({u"-"_s});
    QCOMPARE(refused.status, 1);
    QVERIFY(refused.complaint.startsWith("kelmwright: standard input could not be opened: "));
    QVERIFY(refused.complaint.contains("UTF-8"));
}

void BeforeWindowTest::theFirstIsTheProgram()
{
    test::Start start;
    const End first = start.run({u"a.txt"_s});
    QCOMPARE(first.status, test::isTheProgram);
    QCOMPARE(first.complaint, QByteArray());
}

void BeforeWindowTest::othersHandOver()
{
    test::Start start;
    SingleInstance first(start.place());
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QStringList texts;
    connect(&first, &SingleInstance::received, &first, [&texts](const Received& each) {
        QVERIFY(!each.waiting);
        texts += test::textsOf(each.request);
    });
    QCOMPARE(start.run({start.path(u"a.txt"_s), start.path(u"b.txt"_s)}).status, 0);
    QTRY_COMPARE(texts, (QStringList{test::urlOf(start.path(u"a.txt"_s)), test::urlOf(start.path(u"b.txt"_s))}));
}

void BeforeWindowTest::aProgramThatDoesNotAnswerIsToldOf()
{
    test::Start start;
    SingleInstance first(start.place());
    QCOMPARE(first.claim({}), SingleInstance::Part::first);
    const End other = start.run({u"a.txt"_s}, 1);
    QCOMPARE(other.status, 1);
    QCOMPARE(other.complaint, QByteArray("kelmwright: the editor runs already and does not answer\n"));
}

const kelm::test::Registered<BeforeWindowTest> registered(kelm::test::Toolkit::core,
                                                          {{test::startRoleName, playStart}});

} // namespace before_window_test

#include "before_window_test.moc"
