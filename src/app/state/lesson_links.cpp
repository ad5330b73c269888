#include "app/state/lesson_links.h"

#include "app/state/app_state.h"
#include "app/state/link_runs.h"
#include "app/state/notices.h"
#include "platform/events/main_queue.h"

#include <QLocale>

#include <chrono>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// Nobody clicks on links faster.
constexpr std::chrono::seconds pause(1);
/// Up to this many units a link is decoded in a fraction of a millisecond.
constexpr qsizetype mostDecodedAtOnce = 32'768;

std::variant<LessonLink, LessonLinkFailure> decodeBounded(const QString& urlText)
{
    auto decoded = decodeLessonLink(urlText);
    const auto* link = std::get_if<LessonLink>(&decoded);
    if (link != nullptr && link->lessonInfo && link->lessonInfo->requires_.size() > LessonLinks::mostKeys) {
        return LessonLinkFailure::tooManyKeys;
    }
    return decoded;
}

} // namespace

LessonLinks::LessonLinks(AppState& appState, std::function<void()> activate, QObject* parent)
    : QObject(parent), appState_(appState), activate_(std::move(activate))
{}

LessonLinks::~LessonLinks() = default;

void LessonLinks::handleKelmPaneURL(const QString& urlText)
{
    if (!takeOneMore()) {
        return;
    }
    if (urlText.size() > longestLink) {
        refuse(LessonLinkFailure::tooLong, urlText);
        return;
    }
    waiting_.append(urlText);
    if (!std::exchange(isOpening_, true)) {
        onMainQueue(this, [this] { openNext(); });
    }
}

bool LessonLinks::takeOneMore()
{
    cameSinceLook_ = true;
    if (taken_ == 0) {
        watchForPause();
    }
    if (taken_ == mostAtOnce) {
        ++leftOut_;
        return false;
    }
    ++taken_;
    return true;
}

void LessonLinks::watchForPause()
{
    cameSinceLook_ = false;
    appState_.scheduler().after(pause, this, [this] {
        if (leftOut_ > 0) {
            const QLocale locale(QLocale::English);
            appState_.notices().report(u"Lesson links left out: %1. No more than %2 are opened at a time."_s.arg(
                locale.toString(std::exchange(leftOut_, 0)), locale.toString(mostAtOnce)));
        }
        if (cameSinceLook_) {
            watchForPause();
        } else {
            taken_ = 0;
        }
    });
}

void LessonLinks::refuse(LessonLinkFailure failure, const QString& urlText)
{
    appState_.log().write(logLineFor(failure, urlText));
    appState_.notices().report(wordsFor(failure) + u'.');
}

void LessonLinks::openNext()
{
    const QString urlText = waiting_.takeFirst();
    if (urlText.size() > mostDecodedAtOnce) {
        decodeAside(urlText);
    } else {
        open(urlText, decodeBounded(urlText));
    }
}

void LessonLinks::decodeAside(const QString& urlText)
{
    notice_ = appState_.notices().add({.text = u"Opening a lesson link…"_s});
    decoding_.start([this, urlText](const BackgroundTask::StopFlag&) -> BackgroundTask::Delivery {
        return [this, urlText, decoded = decodeBounded(urlText)] {
            appState_.notices().remove(notice_);
            open(urlText, decoded);
        };
    });
}

void LessonLinks::open(const QString& urlText, const Decoded& decoded)
{
    if (const auto* failure = std::get_if<LessonLinkFailure>(&decoded)) {
        refuse(*failure, urlText);
    } else {
        const auto& link = std::get<LessonLink>(decoded);
        activate_();
        appState_.openSnippet(link.code, link.language, link.lessonInfo);
        if (link.run) {
            appState_.linkRuns().request(appState_.currentDocument());
        }
    }
    isOpening_ = !waiting_.isEmpty();
    if (isOpening_) {
        onMainQueue(this, [this] { openNext(); });
    }
}

} // namespace kelm
