#include "app/command_line/before_window.h"
#include "app/command_line/command_texts.h"
#include "platform/events/start_tokens.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <filesystem>
#include <optional>
#include <unistd.h>

namespace before_window_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using openRequest::Item;
using openRequest::Outcome;
using Received = SingleInstance::Received;

namespace {

/// The status of a start that goes on as the program itself.
constexpr int isTheProgram = 100;

const QString startRoleName = u"start-before-window"_s;
const QString programRoleName = u"program-behind-a-start"_s;
const QString lastMomentRoleName = u"program-in-its-last-moment"_s;

InstancePlace placeIn(const QString& folder)
{
    return instancePlace(folder, u"session"_s, u"machine"_s);
}

QStringList textsOf(const openRequest::Request& request)
{
    QStringList texts;
    for (const Item& item : request.items) {
        texts.append(item.text);
    }
    return texts;
}

QString url(const QString& path)
{
    return QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
}

QStringList linesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                          : QStringList();
}

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
    SingleInstance instance(placeIn(arguments[0]));
    instance.setPatience(std::chrono::milliseconds(arguments[1].toInt()));
    const auto status = handOver(instance, *request, {roleArgument, programRoleName, arguments[0], arguments[2]});
    return status ? static_cast<int>(*status) : isTheProgram;
}

/// The program that a waiting start has started: writes how it finds itself to "saw" in the folder of its place, and
/// what it gets behind that.
int playProgram(const QStringList& arguments)
{
    SingleInstance instance(placeIn(arguments[0]));
    const openRequest::Tokens tokens = takeStartTokens();
    QStringList saw{QFile::symLinkTarget(u"/proc/self/fd/0"_s), tokens.startupId + u' ' + tokens.activation,
                    u"GIT_DIR"_s + (qEnvironmentVariableIsSet("GIT_DIR") ? u" set"_s : u" unset"_s)};
    QObject::connect(&instance, &SingleInstance::received, &instance, [&](const Received& received) {
        saw << textsOf(received.request) << (received.request.tokens.isEmpty() ? u"no tokens"_s : u"tokens"_s);
        QFile file(arguments[0] + u"/saw"_s);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(saw.join(u'\n').toUtf8());
            file.close();
        }
        if (arguments[1] == u"die") {
            std::_Exit(1);
        }
        received.waiting->note(static_cast<Outcome>(arguments[1].front().toLatin1()));
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    });
    QTimer::singleShot(kelm::test::patience, qApp, &QCoreApplication::quit);
    return instance.settle({QUuid::createUuid()}) == SingleInstance::Part::first ? QCoreApplication::exec() : 1;
}

/// The end of a program whose own file has gone, for which what is found under its name starts.
int playLastMoment(const QStringList& arguments)
{
    QFile::remove(QCoreApplication::applicationFilePath());
    openRequest::Request request{QUuid::createUuid()};
    request.items = {Item(arguments[0], 7, 2), Item(u"copy"_s, 0, 0, Item::Kind::copy),
                     Item(u"kelmpane://open?code=eA"_s), Item({}, 0, 0, Item::Kind::newFile)};
    startAgainFor({{request, nullptr}});
    return 0;
}

} // namespace

class BeforeWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void whatIsAskedOfTheCommandLineIsAnsweredAtOnce();
    void whatCannotBePrintedIsAFailure();
    void readersThatHaveGoneAreAFailure();
    void aCommandLineBecomesARequest();
    void standardInputIsKeptForTheProgram();
    void theFirstIsTheProgram();
    void othersHandOver();
    void aProgramThatDoesNotAnswerIsToldOf();
    void waitingEndsWithWhatBecameOfTheTabs_data();
    void waitingEndsWithWhatBecameOfTheTabs();
    void whatWasNotTakenIsAskedForAnew();
    void aWaitingStartStartsTheProgram();
    void aProgramThatDiesIsToldOf();
    void whatDoesNotStartIsToldOf();
    void whatCameAtTheEndStartsAnew();
    void whoWaitsAtTheEndIsTold();

private:
    /// How another start ended, and what it said.
    struct End
    {
        int status = -1;
        QByteArray said;
        QByteArray complaint;
    };

    QString path(const QString& name) const { return folder_->filePath(name); }
    /// Begins another start of the program, with a patience in milliseconds.
    void begin(const QStringList& commandLine, int patience = kelm::test::patience, const QString& outcome = u"s"_s)
    {
        process_.setProcessEnvironment(environment_);
        startRole(process_, startRoleName,
                  QStringList{folder_->path(), QString::number(patience), outcome} + commandLine);
    }
    End end()
    {
        // It may talk to this process meanwhile.
        [this] { QTRY_COMPARE(process_.state(), QProcess::NotRunning); }();
        return {process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1,
                process_.readAllStandardOutput(), process_.readAllStandardError()};
    }
    End start(const QStringList& commandLine, int patience = kelm::test::patience, const QString& outcome = u"s"_s)
    {
        begin(commandLine, patience, outcome);
        return end();
    }
    /// This test program under another name, which can be removed while it runs.
    QString otherProgram() const
    {
        const std::filesystem::path program = QCoreApplication::applicationFilePath().toStdString();
        const std::filesystem::path other = path(u"program"_s).toStdString();
        std::error_code error;
        std::filesystem::create_hard_link(program, other, error);
        if (error) {
            std::filesystem::copy_file(program, other);
        }
        return path(u"program"_s);
    }

    std::optional<QTemporaryDir> folder_;
    QProcess process_;
    QProcessEnvironment environment_;
};

void BeforeWindowTest::init()
{
    folder_.emplace();
    QVERIFY(folder_->isValid());
    environment_ = QProcessEnvironment::systemEnvironment();
    environment_.insert(u"XDG_STATE_HOME"_s, path(u"state"_s));
    process_.setStandardOutputFile({});
    process_.setStandardInputFile({});
}

void BeforeWindowTest::whatIsAskedOfTheCommandLineIsAnsweredAtOnce()
{
    const End help = start({u"--help"_s});
    QCOMPARE(help.status, 0);
    QCOMPARE(help.said, helpText());
    QCOMPARE(help.complaint, QByteArray());

    const End version = start({u"--version"_s});
    QCOMPARE(version.status, 0);
    QCOMPARE(version.said, QByteArray("KelmWright 1.2\n"));

    const End wrong = start({u"--wait=1"_s});
    QCOMPARE(wrong.status, 2);
    QCOMPARE(wrong.said, QByteArray());
    QCOMPARE(wrong.complaint, QByteArray("kelmwright: --wait takes no value; see kelmwright --help\n"));
}

void BeforeWindowTest::whatCannotBePrintedIsAFailure()
{
    process_.setStandardOutputFile(u"/dev/full"_s);
    const End help = start({u"--help"_s});
    QCOMPARE(help.status, 1);
    QCOMPARE(help.complaint, QByteArray("kelmwright: standard output could not be written\n"));
}

void BeforeWindowTest::readersThatHaveGoneAreAFailure()
{
    // Nobody reads its output, nor what it complains of, and no signal ends it.
    process_.setChildProcessModifier([] {
        int ends[2] = {-1, -1};
        if (::pipe(ends) == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::dup2(ends[1], STDERR_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
        }
    });
    const auto restore = qScopeGuard([this] { process_.setChildProcessModifier({}); });
    QCOMPARE(start({u"--help"_s}).status, 1);
    QCOMPARE(start({u"--nonsense"_s}).status, 2);
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
    SingleInstance first(placeIn(folder_->path()));
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QList<Item> items;
    connect(&first, &SingleInstance::received, &first, [&items](const Received& each) { items += each.request.items; });
    QFile input(path(u"input"_s));
    QVERIFY(input.open(QIODevice::WriteOnly) && input.write("text") == 4);
    input.close();
    process_.setStandardInputFile(input.fileName());
    QCOMPARE(start({u"--line"_s, u"2"_s, u"-"_s}).status, 0);
    QTRY_COMPARE(items.size(), 1);
    QCOMPARE(items[0].kind, Item::Kind::copy);
    QCOMPARE(items[0].line, 2U);
    const QStringList copies = QDir(path(u"state/com.kelm.KelmPane.savedState/unsaved"_s)).entryList({u"*.copy"_s});
    QCOMPARE(copies, QStringList(items[0].text + u".copy"_s));

    QVERIFY(input.open(QIODevice::WriteOnly) && input.write("\xff\xfe") == 2);
    input.close();
    const End refused = start({u"-"_s});
    QCOMPARE(refused.status, 1);
    QVERIFY(refused.complaint.startsWith("kelmwright: standard input could not be opened: "));
    QVERIFY(refused.complaint.contains("UTF-8"));
}

void BeforeWindowTest::theFirstIsTheProgram()
{
    const End first = start({u"a.txt"_s});
    QCOMPARE(first.status, isTheProgram);
    QCOMPARE(first.complaint, QByteArray());
}

void BeforeWindowTest::othersHandOver()
{
    SingleInstance first(placeIn(folder_->path()));
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QStringList texts;
    connect(&first, &SingleInstance::received, &first, [&texts](const Received& each) {
        QVERIFY(!each.waiting);
        texts += textsOf(each.request);
    });
    QCOMPARE(start({path(u"a.txt"_s), path(u"b.txt"_s)}).status, 0);
    QTRY_COMPARE(texts, (QStringList{url(path(u"a.txt"_s)), url(path(u"b.txt"_s))}));
}

void BeforeWindowTest::aProgramThatDoesNotAnswerIsToldOf()
{
    SingleInstance first(placeIn(folder_->path()));
    QCOMPARE(first.claim({}), SingleInstance::Part::first);
    const End other = start({u"a.txt"_s}, 1);
    QCOMPARE(other.status, 1);
    QCOMPARE(other.complaint, QByteArray("kelmwright: the editor runs already and does not answer\n"));
}

void BeforeWindowTest::waitingEndsWithWhatBecameOfTheTabs_data()
{
    QTest::addColumn<char>("outcome");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("complaint");
    QTest::newRow("saved") << char(Outcome::saved) << 0 << QByteArray();
    QTest::newRow("unsaved") << char(Outcome::unsaved) << 3
                             << QByteArray("kelmwright: a text was closed with unsaved changes\n");
    QTest::newRow("not opened") << char(Outcome::failed) << 4 << QByteArray("kelmwright: a file could not be opened\n");
}

void BeforeWindowTest::waitingEndsWithWhatBecameOfTheTabs()
{
    QFETCH(const char, outcome);
    SingleInstance first(placeIn(folder_->path()));
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QList<std::shared_ptr<WaitingStart>> waiting;
    connect(&first, &SingleInstance::received, &first,
            [&waiting](const Received& each) { waiting.append(each.waiting); });
    begin({u"--wait"_s, path(u"a.txt"_s)});
    QTRY_COMPARE(waiting.size(), 1);
    QVERIFY(waiting[0]);
    QCOMPARE(process_.state(), QProcess::Running);
    waiting[0]->note(static_cast<Outcome>(outcome));
    waiting.clear();
    const End told = end();
    QTEST(told.status, "status");
    QTEST(told.complaint, "complaint");
}

void BeforeWindowTest::whatWasNotTakenIsAskedForAnew()
{
    SingleInstance first(placeIn(folder_->path()));
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QList<QUuid> ids;
    connect(&first, &SingleInstance::received, &first, [&ids](const Received& each) {
        ids.append(each.request.id);
        each.waiting->note(ids.size() == 1 ? Outcome::untaken : Outcome::unsaved);
    });
    QCOMPARE(start({u"--wait"_s, path(u"a.txt"_s)}).status, 3);
    QCOMPARE(ids.size(), 2);
    QVERIFY(ids[0] != ids[1]);
}

void BeforeWindowTest::aWaitingStartStartsTheProgram()
{
    environment_.insert(u"GIT_DIR"_s, u"/the/repository/of/this/commit"_s);
    environment_.insert(u"DESKTOP_STARTUP_ID"_s, u"startup"_s);
    environment_.insert(u"XDG_ACTIVATION_TOKEN"_s, u"activation"_s);
    // The patience is for a program that runs: one that starts is given more.
    QCOMPARE(start({u"--wait"_s, path(u"a.txt"_s)}, 1, u"u"_s).status, 3);
    QCOMPARE(linesOf(path(u"saw"_s)), (QStringList{u"/dev/null"_s, u"startup activation"_s, u"GIT_DIR unset"_s,
                                                   url(path(u"a.txt"_s)), u"no tokens"_s}));
}

void BeforeWindowTest::aProgramThatDiesIsToldOf()
{
    const End other = start({u"--wait"_s, path(u"a.txt"_s)}, kelm::test::patience, u"die"_s);
    QCOMPARE(other.status, 5);
    QCOMPARE(other.complaint, QByteArray("kelmwright: the editor has died\n"));
}

void BeforeWindowTest::whatDoesNotStartIsToldOf()
{
    const QString program = otherProgram();
    environment_.insert(u"PATH"_s, path(u"no programs"_s));
    process_.setProcessEnvironment(environment_);
    process_.start(
        program, {roleArgument, startRoleName, folder_->path(), u"30000"_s, u"none"_s, u"--wait"_s, path(u"a.txt"_s)});
    const End other = end();
    QCOMPARE(other.status, 5);
    QCOMPARE(other.complaint, QByteArray("kelmwright: the editor did not start\n"));
}

void BeforeWindowTest::whatCameAtTheEndStartsAnew()
{
    const QString program = otherProgram();
    QVERIFY(QDir(folder_->path()).mkdir(u"bin"_s));
    QFile script(path(u"bin/kelmwright"_s));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" >\"$0.part\" && /bin/mv \"$0.part\" \"$0.told\"\n");
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    environment_.insert(u"PATH"_s, path(u"bin"_s));
    process_.setProcessEnvironment(environment_);
    process_.start(program, {roleArgument, lastMomentRoleName, url(path(u"a b.txt"_s))});
    QCOMPARE(end().status, 0);
    // Copies wait where they are kept, and are offered there.
    const QStringList expected{u"--"_s, path(u"a b.txt:7:2"_s), u"kelmpane://open?code=eA"_s};
    QTRY_COMPARE(linesOf(path(u"bin/kelmwright.told"_s)), expected);
}

void BeforeWindowTest::whoWaitsAtTheEndIsTold()
{
    SingleInstance first(placeIn(folder_->path()));
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    std::vector<Received> came;
    connect(&first, &SingleInstance::received, &first, [&came](const Received& each) { came.push_back(each); });
    begin({u"--wait"_s, path(u"a.txt"_s)});
    QTRY_COMPARE(came.size(), std::size_t(1));
    startAgainFor(came);
    came.clear();
    // It asks again by itself.
    QTRY_COMPARE(came.size(), std::size_t(1));
    came[0].waiting->note(Outcome::saved);
    came.clear();
    QCOMPARE(end().status, 0);
}

const kelm::test::Registered<BeforeWindowTest>
    registered(kelm::test::Toolkit::core,
               {{startRoleName, playStart}, {programRoleName, playProgram}, {lastMomentRoleName, playLastMoment}});

} // namespace before_window_test

#include "before_window_test.moc"
