#include "soak/calm_points.h"

#include "app/state/notices.h"
#include "app/state/unsaved_texts.h"
#include "git/service/git_service.h"
#include "run/code_runner.h"
#include "run/terminal_session.h"
#include "run/view/terminal_text_view.h"
#include "run/view/terminal_view.h"
#include "settings/view/settings_view.h"
#include "soak/invariants.h"
#include "text/view/text_view.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QPixmapCache>

#include <algorithm>

#ifdef Q_OS_LINUX
#include <malloc.h>
#endif

#if defined(__SANITIZE_ADDRESS__)
/// As the sanitizer's library has it; not every compiler brings the header along.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace kelm::soak {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Fewer points than these cannot be cut into thirds that mean something.
constexpr std::size_t fewestSamples = 9;
constexpr qsizetype allowedBytes = 1024 * 1024;
constexpr double allowedShare = 0.02;
constexpr qsizetype allowedWidgets = 5;

qsizetype bytesInUse()
{
#if defined(__SANITIZE_ADDRESS__)
    return static_cast<qsizetype>(__sanitizer_get_current_allocated_bytes());
#elif defined(Q_OS_LINUX)
    const struct mallinfo2 info = ::mallinfo2();
    return static_cast<qsizetype>(info.uordblks + info.hblkhd);
#else
    // Widgets alone are counted there.
    return 0;
#endif
}

/// All panels as they were at the start; what the person has put away is made anew when it is shown.
void resetPanels(World& world)
{
    AppState& state = world.state;
    state.setShowQuickOpen(false);
    state.setShowSearch(false);
    state.setShowGoToLine(false);
    state.setShowSidebar(false);
    state.setShowBottomPanel(true);
    state.setBottomPanelTab(BottomPanelTab::terminal);
    world.settle();
    if (auto* terminal = world.window.findChild<TerminalView*>()) {
        terminal->textView().clear();
        terminal->textView().appendPrompt();
    }
    state.setShowBottomPanel(false);
    state.setShowSidebar(true);
    state.setRecentFiles({});
    state.saveRecentFiles();
    state.codeRunner().setOutput({});
    world.themes.setCurrentTheme(EditorTheme::monokai());
    world.window.openSettings();
    world.window.settings()->close();
    world.window.resize(1200, 800);
    world.bringToFront();
}

/// Nothing is offered any more of what was closed, and nothing is left of it.
void forgetClosed(World& world)
{
    while (world.state.notices().current() != nullptr && world.state.notices().current()->isNews) {
        world.state.notices().putAway();
    }
    RecoveryStore& store = world.state.unsavedTexts().store();
    for (const QString& name : QDir(world.unsavedFolder()).entryList({u"*.copy"_s}, QDir::Files)) {
        store.remove(name.chopped(QStringView(u".copy").size()));
    }
    world.tabs.forgetClosed();
    checkStore(world);
}

qsizetype median(std::vector<qsizetype> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

void CalmPoints::take(World& world)
{
    checkDisk(world);
    world.state.setDocuments({});
    world.state.setCurrentDocumentIndex(0);
    world.tabs.closeAll();
    world.settle();
    checkInvariants(world);
    checkStore(world);
    forgetClosed(world);
    resetPanels(world);
    world.restoreProject();
    world.clipboard.clear();
    QApplication::clipboard()->clear();
    world.settle();
    world.waitFor([&world] { return !world.state.git().isBusy() && !world.state.codeRunner().isRunning(); },
                  u"git and the runner rest"_s);
    world.window.grab();
    world.settle();
    QPixmapCache::clear();
    samples_.push_back({bytesInUse(), QApplication::allWidgets().size()});
}

std::optional<QString> CalmPoints::growth() const
{
    if (samples_.size() < fewestSamples) {
        return std::nullopt;
    }
    const std::size_t third = samples_.size() / 3;
    const auto medianFrom = [&](std::size_t from, qsizetype Sample::*value) {
        std::vector<qsizetype> values;
        for (std::size_t index = from; index < from + third; ++index) {
            values.push_back(samples_[index].*value);
        }
        return median(std::move(values));
    };
    const std::size_t last = samples_.size() - third;
    const qsizetype bytes = medianFrom(last - third, &Sample::bytes);
    const qsizetype growth = medianFrom(last, &Sample::bytes) - bytes;
    if (growth > allowedBytes && static_cast<double>(growth) > allowedShare * static_cast<double>(bytes)) {
        return u"memory grows: %1 bytes more at the end, beyond %2"_s.arg(growth).arg(bytes);
    }
    const qsizetype widgets = medianFrom(last - third, &Sample::widgets);
    const qsizetype more = medianFrom(last, &Sample::widgets) - widgets;
    if (more > allowedWidgets) {
        return u"widgets are left behind: %1 more at the end, beyond %2"_s.arg(more).arg(widgets);
    }
    return std::nullopt;
}

} // namespace kelm::soak
