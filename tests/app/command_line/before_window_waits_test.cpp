#include "app/command_line/before_window.h"
#include "platform/events/start_tokens.h"
#include "support/start_process.h"
#include "support/test_program.h"

#include <QTimer>
#include <QtTest>

#include <cstdlib>
#include <filesystem>

namespace before_window_waits_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using openRequest::Item;
using openRequest::Outcome;
using End = test::Start::End;
using Received = SingleInstance::Received;

namespace {

const QString lastMomentRoleName = u"program-in-its-last-moment"_s;

QStringList linesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                          : QStringList();
}

/// This test program under another name, which can be removed while it runs.
QString otherProgram(const test::Start& start)
{
    const std::filesystem::path program = QCoreApplication::applicationFilePath().toStdString();
    const std::filesystem::path other = start.path(u"program"_s).toStdString();
    std::error_code error;
    std::filesystem::create_hard_link(program, other, error);
    if (error) {
        std::filesystem::copy_file(program, other);
    }
    return start.path(u"program"_s);
}

/// The program that a waiting start has started: writes how it finds itself to "saw" in the folder of its place, and
/// what it gets behind that.
int playProgram(const QStringList& arguments)
{
    SingleInstance instance(test::placeIn(arguments[0]));
    const openRequest::Tokens tokens = takeStartTokens();
    QStringList saw{QFile::symLinkTarget(u"/proc/self/fd/0"_s), tokens.startupId + u' ' + tokens.activation,
                    u"GIT_DIR"_s + (qEnvironmentVariableIsSet("GIT_DIR") ? u" set"_s : u" unset"_s)};
    QObject::connect(&instance, &SingleInstance::received, &instance, [&](const Received& received) {
        saw << test::textsOf(received.request) << (received.request.tokens.isEmpty() ? u"no tokens"_s : u"tokens"_s);
        QFile file(arguments[0] + u"/saw"_s);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(saw.join(u'\n').toUtf8());
            file.close();
        }
        if (arguments[1] == u"die") {
            std::_Exit(1);
        }
        received.waiting->note(static_cast<Outcome>(arguments[1].front().toLatin1()));
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    });
    QTimer::singleShot(kelm::test::patience, QCoreApplication::instance(), &QCoreApplication::quit);
    return instance.settle({QUuid::createUuid()}) == SingleInstance::Part::first ? QCoreApplication::exec() : 1;
}

/// The end of a program whose own file has gone, for which what is found under its name starts.
int playLastMoment(const QStringList& arguments)
{
    QFile::remove(QCoreApplication::applicationFilePath());
    openRequest::Request request{QUuid::createUuid()};
    request.items = {Item(arguments[0], 7, 2), Item(u"file:///caf%E9.txt"_s, 7, 2),
                     Item(u"copy"_s, 0, 0, Item::Kind::copy), Item(u"kelmpane://open?code=eA"_s),
                     Item({}, 0, 0, Item::Kind::newFile)};
    startAgainFor({{request, nullptr}});
    return 0;
}

} // namespace

/// What a start waits for, the programs that are started in its place, and what comes in their last moment.
class BeforeWindowWaitsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitingEndsWithWhatBecameOfTheTabs_data();
    void waitingEndsWithWhatBecameOfTheTabs();
    void whatWasNotTakenIsAskedForAnew();
    void aWaitingStartStartsTheProgram();
    void aProgramThatDiesIsToldOf();
    void whatDoesNotStartIsToldOf();
    void whatCameAtTheEndStartsAnew();
    void whoWaitsAtTheEndIsTold();
};

void BeforeWindowWaitsTest::waitingEndsWithWhatBecameOfTheTabs_data()
{
    QTest::addColumn<char>("outcome");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("complaint");
    QTest::newRow("saved") << char(Outcome::saved) << 0 << QByteArray();
    QTest::newRow("unsaved") << char(Outcome::unsaved) << 3
                             << QByteArray("kelmwright: a text was closed with unsaved changes\n");
    QTest::newRow("not opened") << char(Outcome::failed) << 4 << QByteArray("kelmwright: a file could not be opened\n");
}

void BeforeWindowWaitsTest::waitingEndsWithWhatBecameOfTheTabs()
{
    QFETCH(const char, outcome);
    test::Start start;
    SingleInstance first(start.place());
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QList<std::shared_ptr<WaitingStart>> waiting;
    connect(&first, &SingleInstance::received, &first,
            [&waiting](const Received& each) { waiting.append(each.waiting); });
    start.begin({u"--wait"_s, start.path(u"a.txt"_s)});
    QTRY_COMPARE(waiting.size(), 1);
    QVERIFY(waiting[0]);
    QCOMPARE(start.process.state(), QProcess::Running);
    waiting[0]->note(static_cast<Outcome>(outcome));
    waiting.clear();
    const End told = start.end();
    QTEST(told.status, "status");
    QTEST(told.complaint, "complaint");
}

void BeforeWindowWaitsTest::whatWasNotTakenIsAskedForAnew()
{
    test::Start start;
    SingleInstance first(start.place());
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    QList<QUuid> ids;
    connect(&first, &SingleInstance::received, &first, [&ids](const Received& each) {
        ids.append(each.request.id);
        each.waiting->note(ids.size() == 1 ? Outcome::untaken : Outcome::unsaved);
    });
    QCOMPARE(start.run({u"--wait"_s, start.path(u"a.txt"_s)}).status, 3);
    QCOMPARE(ids.size(), 2);
    QVERIFY(ids[0] != ids[1]);
}

void BeforeWindowWaitsTest::aWaitingStartStartsTheProgram()
{
    test::Start start;
    start.environment.insert(u"GIT_DIR"_s, u"/the/repository/of/this/commit"_s);
    start.environment.insert(u"DESKTOP_STARTUP_ID"_s, u"startup"_s);
    start.environment.insert(u"XDG_ACTIVATION_TOKEN"_s, u"activation"_s);
    // The patience is for a program that runs: one that starts is given more.
    QCOMPARE(start.run({u"--wait"_s, start.path(u"a.txt"_s)}, 1, u"u"_s).status, 3);
    QCOMPARE(linesOf(start.path(u"saw"_s)), (QStringList{u"/dev/null"_s, u"startup activation"_s, u"GIT_DIR unset"_s,
                                                         test::urlOf(start.path(u"a.txt"_s)), u"no tokens"_s}));
}

void BeforeWindowWaitsTest::aProgramThatDiesIsToldOf()
{
    test::Start start;
    const End other = start.run({u"--wait"_s, start.path(u"a.txt"_s)}, kelm::test::patience, u"die"_s);
    QCOMPARE(other.status, 5);
    QCOMPARE(other.complaint, QByteArray("kelmwright: the editor has died\n"));
}

void BeforeWindowWaitsTest::whatDoesNotStartIsToldOf()
{
    test::Start start;
    const QString program = otherProgram(start);
    start.environment.insert(u"PATH"_s, start.path(u"no programs"_s));
    start.process.setProcessEnvironment(start.environment);
    start.process.start(program, {roleArgument, test::startRoleName, start.folder.path(), u"30000"_s, u"none"_s,
                                  u"--wait"_s, start.path(u"a.txt"_s)});
    const End other = start.end();
    QCOMPARE(other.status, 5);
    QCOMPARE(other.complaint, QByteArray("kelmwright: the editor did not start\n"));
}

void BeforeWindowWaitsTest::whatCameAtTheEndStartsAnew()
{
    test::Start start;
    const QString program = otherProgram(start);
    QVERIFY(QDir(start.folder.path()).mkdir(u"bin"_s));
    QFile script(start.path(u"bin/kelmwright"_s));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" >\"$0.part\" && /bin/mv \"$0.part\" \"$0.told\"\n");
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    start.environment.insert(u"PATH"_s, start.path(u"bin"_s));
    start.process.setProcessEnvironment(start.environment);
    start.process.start(program, {roleArgument, lastMomentRoleName, test::urlOf(start.path(u"a b.txt"_s))});
    QCOMPARE(start.end().status, 0);
    // Copies wait where they are kept, and are offered there.
    const QStringList expected{u"--"_s, start.path(u"a b.txt:7:2"_s), u"file:///caf%E9.txt"_s,
                               u"kelmpane://open?code=eA"_s};
    QTRY_COMPARE(linesOf(start.path(u"bin/kelmwright.told"_s)), expected);
}

void BeforeWindowWaitsTest::whoWaitsAtTheEndIsTold()
{
    test::Start start;
    SingleInstance first(start.place());
    QCOMPARE(first.settle({}), SingleInstance::Part::first);
    std::vector<Received> came;
    connect(&first, &SingleInstance::received, &first, [&came](const Received& each) { came.push_back(each); });
    start.begin({u"--wait"_s, start.path(u"a.txt"_s)});
    QTRY_COMPARE(came.size(), std::size_t(1));
    startAgainFor(came);
    came.clear();
    // It asks again by itself.
    QTRY_COMPARE(came.size(), std::size_t(1));
    came[0].waiting->note(Outcome::saved);
    came.clear();
    QCOMPARE(start.end().status, 0);
}

const kelm::test::Registered<BeforeWindowWaitsTest>
    registered(kelm::test::Toolkit::core, {{test::programRoleName, playProgram}, {lastMomentRoleName, playLastMoment}});

} // namespace before_window_waits_test

#include "before_window_waits_test.moc"
