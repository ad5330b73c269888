#include "git/service/git_service.h"
#include "git/service/git_stop.h"
#include "git/service/git_transfers.h"
#include "platform/process/patient_runner.h"
#include "platform/process/process_stop.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <functional>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace git_stop_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

const auto now = std::chrono::system_clock::now();

/// A repository whose commits wait in a hook, and a service that stops each wait that it is told of.
struct Hooked
{
    TemporaryRepository repository;
    QStringList waits;
    QStringList errors;
    GitService git{std::make_shared<PatientRunner>(
        ProcessRunner::sharedSystem(),
        PatientRunner::Signs{.began =
                                 [this](const ProcessCommand& command, const std::function<void()>& stop) {
                                     waits += gitCommandName(command);
                                     stop();
                                 },
                             .lasted = {},
                             .ended = {}})};

    explicit Hooked(const QByteArray& hook)
    {
        repository.write(u"a"_s, "1\n");
        repository.commitAll(u"first"_s);
        repository.write(u"a"_s, "2\n");
        repository.git({u"add"_s, u"-A"_s});
        const QString name = u".git/hooks/pre-commit"_s;
        repository.write(name, "#!/bin/sh\n" + hook);
        QFile::setPermissions(repository.filePath(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(git.open(repository.url()));
        QObject::connect(&git, &GitService::lastErrorChanged, &git,
                         [this] { errors += git.lastError().value_or(QString()); });
    }

    int commits() const { return repository.git({u"rev-list"_s, u"--count"_s, u"HEAD"_s}).toInt(); }
    bool isHookThere() const
    {
        const qint64 hook = repository.read(u"hook"_s).trimmed().toLongLong();
        return hook > 0 && (::kill(static_cast<pid_t>(hook), 0) == 0 || errno != ESRCH);
    }
};

/// A port whose calls nobody takes up.
class SilentServer
{
public:
    SilentServer()
    {
        sockaddr_in place{};
        place.sin_family = AF_INET;
        place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof place;
        auto* const address = reinterpret_cast<sockaddr*>(&place);
        if (::bind(socket_, address, size) != 0 || ::listen(socket_, 4) != 0 ||
            ::getsockname(socket_, address, &size) != 0) {
            qFatal("no port");
        }
        port_ = ntohs(place.sin_port);
    }
    ~SilentServer() { ::close(socket_); }

    QString url() const { return u"git://127.0.0.1:%1/repository"_s.arg(port_); }
    bool isCalled() const
    {
        pollfd watched{socket_, POLLIN, 0};
        return ::poll(&watched, 1, 0) > 0;
    }

private:
    const int socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int port_ = 0;
};

} // namespace

class GitStopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void aCommitIsStoppedInItsHook_data();
    void aCommitIsStoppedInItsHook();
    void aStoppedOperationSaysSo();
    void theNextCommitIsMade();
    void aLockThatIsLeftIsNamed_data();
    void aLockThatIsLeftIsNamed();
    void whatEndedByItselfKeepsItsWords();
    void aSilentServerIsLeft_data();
    void aSilentServerIsLeft();
    void aStoppedCloneLeavesNothing();
    void aStoppedCloneLeavesNoEmptyFolder();
    void transfersAreToldOf();
};

void GitStopTest::aCommitIsStoppedInItsHook_data()
{
    QTest::addColumn<QByteArray>("hook");
    QTest::newRow("it obeys") << QByteArray("echo $$ > hook; sleep 60\n");
    QTest::newRow("it does not") << QByteArray("trap '' TERM; echo $$ > hook; sleep 60; sleep 60\n");
    QTest::newRow("it has said something") << QByteArray("echo $$ > hook; echo out; echo err >&2; sleep 60\n");
}

void GitStopTest::aCommitIsStoppedInItsHook()
{
    QFETCH(QByteArray, hook);
    Hooked hooked(hook);
    QVERIFY(!hooked.git.commit(u"second"_s));
    QCOMPARE(hooked.waits, QStringList{u"git commit"_s});
    QCOMPARE(hooked.commits(), 1);
    QTRY_VERIFY(!hooked.isHookThere());
    QTRY_VERIFY2(hooked.errors.contains(u"git commit was stopped."_s), qPrintable(hooked.errors.join(u'|')));
}

void GitStopTest::aStoppedOperationSaysSo()
{
    Hooked hooked("sleep 60\n");
    QCOMPARE(hooked.git.runOp({u"commit"_s, u"-m"_s, u"second"_s}), GitOpResult::failure(u"git commit was stopped."_s));
}

void GitStopTest::theNextCommitIsMade()
{
    Hooked hooked("test -e hook || { echo $$ > hook; sleep 60; }\n");
    QVERIFY(!hooked.git.commit(u"second"_s));
    QVERIFY(hooked.git.commit(u"second"_s));
    QCOMPARE(hooked.commits(), 2);
}

void GitStopTest::aLockThatIsLeftIsNamed_data()
{
    QTest::addColumn<bool>("isWorktree");
    QTest::addColumn<int>("age");
    QTest::addColumn<bool>("isNamed");
    QTest::newRow("in the repository") << false << 0 << true;
    QTest::newRow("in a working tree beside it") << true << 0 << true;
    QTest::newRow("one that was there before") << false << 60 << false;
    QTest::newRow("none") << false << -1 << false;
}

void GitStopTest::aLockThatIsLeftIsNamed()
{
    QFETCH(bool, isWorktree);
    QFETCH(int, age);
    QFETCH(bool, isNamed);
    TemporaryRepository repository;
    repository.commitAll(u"first"_s);
    QString folder = repository.path();
    QString lock = u".git/index.lock"_s;
    if (isWorktree) {
        repository.git({u"worktree"_s, u"add"_s, u"-q"_s, u"beside"_s});
        folder += u"/beside"_s;
        lock = u".git/worktrees/beside/index.lock"_s;
    }
    if (age >= 0) {
        repository.write(lock, {});
        const timeval time{std::chrono::system_clock::to_time_t(now) - age, 0};
        const timeval times[2] = {time, time};
        QVERIFY(::utimes(qPrintable(repository.filePath(lock)), times) == 0);
    }
    const ProcessResult stopped{
        .exit = {SIGTERM, true}, .isStopped = true, .standardOutput = "out", .standardError = "err"};
    const ProcessResult worded =
        wordedStop(stopped, {.arguments = {u"add"_s, u"-A"_s}, .workingDirectory = folder}, now);
    QString words = u"git add was stopped."_s;
    if (isNamed) {
        words += u" git left its lock "_s + repository.filePath(lock) +
                 u", which is to be removed once no other git works there."_s;
    }
    QCOMPARE(QString::fromUtf8(worded.standardError), words);
    QCOMPARE(worded.standardOutput, QByteArray());
    QVERIFY(!worded.exit.isSuccess());
}

void GitStopTest::whatEndedByItselfKeepsItsWords()
{
    const ProcessResult failed{.exit = {1, false}, .standardOutput = "out", .standardError = "err"};
    QCOMPARE(wordedStop(failed, {.arguments = {u"add"_s}}, now), failed);
}

void GitStopTest::aSilentServerIsLeft_data()
{
    QTest::addColumn<QString>("operation");
    for (const char* operation : {"fetch", "pull", "push"}) {
        QTest::newRow(operation) << QString::fromLatin1(operation);
    }
}

void GitStopTest::aSilentServerIsLeft()
{
    QFETCH(QString, operation);
    SilentServer server;
    TemporaryRepository repository;
    repository.commitAll(u"first"_s);
    repository.git({u"remote"_s, u"add"_s, u"origin"_s, server.url()});
    repository.git({u"config"_s, u"branch.main.remote"_s, u"origin"_s});
    repository.git({u"config"_s, u"branch.main.merge"_s, u"refs/heads/main"_s});
    GitService git(ProcessRunner::sharedSystem());
    QVERIFY(git.open(repository.url()));
    std::optional<GitOpResult> result;
    const auto done = [&result](const GitOpResult& given) { result = given; };
    if (operation == u"fetch") {
        git.fetch(std::nullopt, false, done);
    } else if (operation == u"pull") {
        git.pull(true, done);
    } else {
        git.push(std::nullopt, done);
    }
    QTRY_VERIFY(server.isCalled());
    QCOMPARE(git.transfers().all().front().name, u"git "_s + operation);
    QVERIFY(git.isBusy());
    git.transfers().stop(git.transfers().all().front().id);
    QTRY_VERIFY(result);
    QCOMPARE(*result, GitOpResult::failure(u"git %1 was stopped."_s.arg(operation)));
    QVERIFY(!git.isBusy());
    QVERIFY(git.transfers().all().empty());
}

void GitStopTest::aStoppedCloneLeavesNothing()
{
    SilentServer server;
    const QTemporaryDir folder;
    const QString target = folder.filePath(u"clone"_s);
    GitService git(ProcessRunner::sharedSystem());
    std::optional<GitOpResult> result;
    git.cloneRepo(server.url(), QUrl::fromLocalFile(target), [&result](const GitOpResult& given) { result = given; });
    QTRY_VERIFY(server.isCalled());
    QVERIFY(QDir(target).exists());
    git.transfers().stop(git.transfers().all().front().id);
    QTRY_VERIFY(result);
    QCOMPARE(*result, GitOpResult::failure(u"git clone was stopped."_s));
    QVERIFY(!QDir(target).exists());
    QVERIFY(!git.repoURL());
}

void GitStopTest::aStoppedCloneLeavesNoEmptyFolder()
{
    // As git does when it is stopped right behind the making of the folder.
    class EmptyClone final : public ProcessRunner
    {
    public:
        ProcessResult run(const ProcessCommand& command) override
        {
            QDir(command.workingDirectory).mkdir(command.arguments.last());
            return {.exit = {SIGTERM, true}, .isStopped = true};
        }
    };
    for (const bool wasThere : {false, true}) {
        const QTemporaryDir folder;
        const QString target = folder.filePath(u"clone"_s);
        QVERIFY(!wasThere || QDir().mkdir(target));
        GitService git(std::make_shared<EmptyClone>());
        std::optional<GitOpResult> result;
        git.cloneRepo(u"https://host/x"_s, QUrl::fromLocalFile(target),
                      [&result](const GitOpResult& given) { result = given; });
        QTRY_VERIFY(result);
        QCOMPARE(QDir(target).exists(), wasThere);
    }
}

void GitStopTest::transfersAreToldOf()
{
    GitTransfers transfers;
    const QSignalSpy began(&transfers, &GitTransfers::began);
    const QSignalSpy ended(&transfers, &GitTransfers::ended);
    const auto stop = std::make_shared<ProcessStop>();
    const auto other = std::make_shared<ProcessStop>();
    const quint64 first = transfers.add(u"git fetch"_s, stop);
    const quint64 second = transfers.add(u"git push"_s, other);
    QVERIFY(first != second);
    QCOMPARE(began.size(), 2);
    transfers.stop(second);
    QVERIFY(other->isAsked());
    QVERIFY(!stop->isAsked());
    transfers.remove(second);
    transfers.remove(second);
    transfers.stop(second);
    QCOMPARE(ended.size(), 1);
    QCOMPARE(transfers.all().size(), std::size_t(1));
    transfers.stop(first);
    QVERIFY(stop->isAsked());
}

const kelm::test::Registered<GitStopTest> registered;

} // namespace git_stop_test

#include "git_stop_test.moc"
