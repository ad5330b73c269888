#include "app/state/lesson_links.h"

#include "app/state/app_state.h"
#include "learning/lesson_link.h"
#include "platform/events/main_queue.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// From the opening of the tab to the run, so that the editor stands by then.
constexpr std::chrono::milliseconds runDelay(150);

} // namespace

void handleKelmPaneURL(const QString& urlText, AppState& appState, Scheduler& scheduler, Log& log,
                       std::function<void()> activate)
{
    const auto decoded = decodeLessonLink(urlText);
    if (const auto* failure = std::get_if<LessonLinkFailure>(&decoded)) {
        log.write(*failure == LessonLinkFailure::invalidURL ? u"kelmpane:// invalid URL: "_s + urlText
                                                            : u"kelmpane:// failed to decode code"_s);
        return;
    }
    onMainQueue(&appState,
                [link = std::get<LessonLink>(decoded), &appState, &scheduler, activate = std::move(activate)] {
                    activate();
                    appState.openSnippet(link.code, link.language, link.lessonInfo);
                    if (link.run) {
                        scheduler.after(runDelay, &appState, [&appState] { appState.runCurrentFile(); });
                    }
                });
}

} // namespace kelm
