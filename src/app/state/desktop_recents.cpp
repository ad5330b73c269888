#include "app/state/desktop_recents.h"

#include "app/state/app_state.h"
#include "platform/events/main_queue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kelm {

DesktopRecents::DesktopRecents(AppState& appState, QString listPath, Filter filter)
    : listPath_(std::move(listPath)), filter_(std::move(filter))
{
    connect(&appState, &AppState::fileUsed, this, &DesktopRecents::note);
}

void DesktopRecents::note(const QUrl& file)
{
    if (waiting_.isEmpty()) {
        onMainQueue(this, [this] { tell(); });
    }
    waiting_.removeAll(file);
    waiting_.append(file);
}

void DesktopRecents::tell()
{
    const QList<QUrl> files = std::exchange(waiting_, {});
    if (files.isEmpty()) {
        return;
    }
    worker_.add([path = listPath_, filter = filter_, files] {
        QList<QUrl> told;
        std::copy_if(files.begin(), files.end(), std::back_inserter(told), filter);
        if (!told.isEmpty()) {
            noteRecentlyUsed(path, told);
        }
    });
}

bool DesktopRecents::finish(std::chrono::milliseconds longest)
{
    tell();
    return worker_.waitUntilIdle(longest);
}

} // namespace kelm
