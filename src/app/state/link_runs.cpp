#include "app/state/link_runs.h"

#include "learning/link_permission.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace kelm {

namespace {

/// From the opening of the tab to the run, so that the editor stands by then.
constexpr std::chrono::milliseconds runDelay(150);

} // namespace

LinkRuns::LinkRuns(UserDefaults& userDefaults, Scheduler& scheduler, std::function<DocumentPointer()> current,
                   std::function<void()> runCurrent)
    : userDefaults_(userDefaults),
      scheduler_(scheduler),
      current_(std::move(current)),
      runCurrent_(std::move(runCurrent))
{}

void LinkRuns::request(const DocumentPointer& document)
{
    if (linkPermission::isGiven(userDefaults_)) {
        scheduler_.after(runDelay, this, [this] {
            // It may have been taken back since.
            if (linkPermission::isGiven(userDefaults_)) {
                runCurrent_();
            }
        });
        return;
    }
    asked_.append(document);
    new_.append(document);
    scheduler_.after(deafTime, this, [this, weak = std::weak_ptr(document)] { new_.removeOne(weak.lock()); });
    // What would run is what the question was about, or there is no question.
    const auto putItAway = [this, weak = std::weak_ptr(document)] { putAway(weak.lock()); };
    connect(document.get(), &Document::contentChanged, this, putItAway);
    connect(document.get(), &Document::fileURLChanged, this, putItAway);
    connect(document.get(), &Document::languageChanged, this, putItAway);
    Q_EMIT questionsChanged();
}

bool LinkRuns::asksAbout(const DocumentPointer& document) const
{
    return document && asked_.contains(document);
}

bool LinkRuns::hasJustAskedAbout(const DocumentPointer& document) const
{
    return asksAbout(document) && new_.contains(document);
}

bool LinkRuns::isAnswerable(const DocumentPointer& document) const
{
    return asksAbout(document) && document == current_();
}

void LinkRuns::run(const DocumentPointer& document)
{
    if (isAnswerable(document)) {
        putAway(document);
        runCurrent_();
    }
}

void LinkRuns::runAlways(const DocumentPointer& document)
{
    if (isAnswerable(document)) {
        linkPermission::give(userDefaults_);
        // The others are answered by this, and were opened long ago.
        keepOnly({});
        runCurrent_();
    }
}

void LinkRuns::putAway(const DocumentPointer& document)
{
    if (asksAbout(document)) {
        disconnect(document.get(), nullptr, this, nullptr);
        asked_.removeAll(document);
        Q_EMIT questionsChanged();
    }
}

void LinkRuns::keepOnly(const QList<DocumentPointer>& documents)
{
    const QList<DocumentPointer> asked = asked_;
    for (const DocumentPointer& document : asked) {
        if (!documents.contains(document)) {
            putAway(document);
        }
    }
}

} // namespace kelm
