// How long the window is busy at a time when the lesson panel takes another lesson.
#include "learning/view/learning_mode_side_panel.h"
#include "platform/events/main_queue.h"
#include "platform/events/notification_center.h"
#include "run/code_runner.h"
#include "workbench/main_slices.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

struct Panel
{
    QTemporaryDir folder;
    NotificationCenter notifications;
    CodeRunner runner{notifications, ExecutableSearch(ProcessRunner::system())};
    UserDefaults userDefaults{folder.filePath(u"defaults.conf"_s)};
    LearningModeSidePanel panel{{runner, Workspace::system(), Scheduler::system(), userDefaults}};

    Panel()
    {
        panel.resize(280, 800);
        panel.show();
        fill({.slug = u"first"_s});
    }
    /// Shows a lesson to the last pixel.
    void fill(const LessonInfo& lesson)
    {
        onMainQueue(&panel, [this, lesson] { panel.setLesson(lesson); });
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents();
        }
    }
};

void fill(benchmark::State& state, const LessonInfo& lesson)
{
    auto& application = *static_cast<bench::TimedApplication*>(qApp);
    Panel panel;
    double longest = 0;
    for (auto _ : state) {
        panel.fill({.slug = u"another"_s});
        application.takeLongest();
        panel.fill(lesson);
        longest = std::max(longest, application.takeLongest().cpu);
    }
    state.counters["longest_slice_ms"] = longest;
}

QStringList manyKeys()
{
    QStringList keys;
    for (int number = 0; number < 10'000; ++number) {
        keys << u"KEY_%1"_s.arg(number);
    }
    return keys;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    bench::TimedApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    const auto add = [](const char* name, const LessonInfo& lesson) {
        benchmark::RegisterBenchmark(name, fill, lesson)->Unit(benchmark::kMillisecond)->Iterations(20);
    };
    add("plain", {.slug = u"s"_s, .title = u"A first loop"_s});
    add("title of 3,000 letters", {.slug = u"s"_s, .title = u"abc de "_s.repeated(430)});
    add("title of 1 MB", {.slug = u"s"_s, .title = u"abc de "_s.repeated(150'000)});
    add("title of 1 MB, one word", {.slug = u"s"_s, .title = u"a"_s.repeated(1'000'000)});
    add("10,000 keys", {.slug = u"s"_s, .requires_ = manyKeys()});
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
