// A refresh of the whole snapshot beside its eight commands run bare, on a repository of 2000 files, 200 branches and
// 200 tags. The two take turns, so that both see the same machine; what is told is the sum of each and their ratio.
#include "git/service/git_service.h"
#include "platform/process/patient_runner.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace {

using namespace kelm;

void runGit(const QString& folder, const QStringList& arguments)
{
    const ProcessResult result = ProcessRunner::system().run(GitService::makeProcess(arguments, folder));
    if (result.launchError || !result.exit.isSuccess()) {
        qFatal("git %s: %s", qPrintable(arguments.join(u' ')), result.standardError.constData());
    }
}

/// A repository in a folder of its own, with an upstream, so that no command fails.
const QString& repository()
{
    static const QTemporaryDir folder;
    static const QString path = [] {
        qputenv("GIT_CONFIG_GLOBAL", "/dev/null");
        qputenv("GIT_CONFIG_NOSYSTEM", "1");
        const QString root = folder.path();
        runGit(root, {QStringLiteral("init"), QStringLiteral("-q"), QStringLiteral("-b"), QStringLiteral("main")});
        runGit(root, {QStringLiteral("config"), QStringLiteral("user.name"), QStringLiteral("Bench")});
        runGit(root, {QStringLiteral("config"), QStringLiteral("user.email"), QStringLiteral("bench@example.org")});
        for (int index = 0; index < 2000; ++index) {
            QDir(root).mkpath(QStringLiteral("d%1").arg(index % 40));
            QFile file(root + QStringLiteral("/d%1/f%2").arg(index % 40).arg(index));
            if (!file.open(QIODevice::WriteOnly)) {
                qFatal("cannot write");
            }
            file.write(QByteArray::number(index));
        }
        runGit(root, {QStringLiteral("add"), QStringLiteral("-A")});
        runGit(root, {QStringLiteral("commit"), QStringLiteral("-q"), QStringLiteral("-m"), QStringLiteral("first")});
        for (int index = 0; index < 200; ++index) {
            runGit(root, {QStringLiteral("branch"), QStringLiteral("b%1").arg(index)});
            runGit(root, {QStringLiteral("tag"), QStringLiteral("t%1").arg(index)});
        }
        runGit(root, {QStringLiteral("pack-refs"), QStringLiteral("--all")});
        runGit(root, {QStringLiteral("branch"), QStringLiteral("-q"), QStringLiteral("-u"), QStringLiteral("b0")});
        for (int index = 0; index < 100; ++index) {
            QFile file(root + QStringLiteral("/new%1").arg(index));
            if (!file.open(QIODevice::WriteOnly)) {
                qFatal("cannot write");
            }
        }
        return root;
    }();
    return path;
}

/// The same git in the same folder with nothing around it: its output goes to a file that nobody reads.
void runBare(const std::vector<std::string>& arguments)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const QByteArray folder = QFile::encodeName(repository());
    posix_spawn_file_actions_addchdir_np(&actions, folder.constData());
    std::vector<char*> list;
    std::string program = "/usr/bin/git";
    list.push_back(program.data());
    for (const std::string& argument : arguments) {
        list.push_back(const_cast<char*>(argument.c_str()));
    }
    list.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawn(&pid, list[0], &actions, nullptr, list.data(), environ) != 0) {
        qFatal("git cannot be started");
    }
    posix_spawn_file_actions_destroy(&actions);
    waitpid(pid, nullptr, 0);
}

const std::vector<std::vector<std::string>> commands{
    {"rev-parse", "--abbrev-ref", "HEAD"},
    {"status", "--porcelain=v1"},
    {"rev-list", "--left-right", "--count", "@{u}...HEAD"},
    {"for-each-ref", "--format=%(refname:short)%00%(HEAD)%00%(upstream:short)", "refs/heads"},
    {"for-each-ref", "--format=%(refname:short)", "refs/remotes"},
    {"remote", "-v"},
    {"stash", "list", "--pretty=format:%gd%x1f%s"},
    {"for-each-ref", "--format=%(refname:short)%00%(objecttype)%00%(*objectname)%00%(objectname)%00%(contents:subject)",
     "refs/tags"}};

/// With a runner that only waits, or with the program's own, which paints.
void refreshAllBesideBareCommands(benchmark::State& state, const std::shared_ptr<ProcessRunner>& runner)
{
    GitService service(runner);
    if (!service.open(QUrl::fromLocalFile(repository()))) {
        qFatal("no repository");
    }
    using Clock = std::chrono::steady_clock;
    Clock::duration serviceTime{};
    Clock::duration bareTime{};
    for (auto _ : state) {
        const auto start = Clock::now();
        service.refreshAll();
        const auto middle = Clock::now();
        for (const auto& command : commands) {
            runBare(command);
        }
        serviceTime += middle - start;
        bareTime += Clock::now() - middle;
    }
    const auto milliseconds = [&state](Clock::duration time) {
        return std::chrono::duration<double, std::milli>(time).count() / double(state.iterations());
    };
    state.counters["refreshAll_ms"] = milliseconds(serviceTime);
    state.counters["bare_ms"] = milliseconds(bareTime);
    state.counters["ratio"] = milliseconds(serviceTime) / milliseconds(bareTime);
}
BENCHMARK_CAPTURE(refreshAllBesideBareCommands, waiting, ProcessRunner::sharedSystem())
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(5);
BENCHMARK_CAPTURE(refreshAllBesideBareCommands, painting,
                  std::make_shared<PatientRunner>(ProcessRunner::sharedSystem(), PatientRunner::Signs()))
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(5);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
