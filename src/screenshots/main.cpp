// Draws the window's chief states to PNG files: `kelmwright_screenshots FOLDER [NAME …]`. It lives in a home of its
// own, so that neither the user's settings nor those of the last run show in the pictures.
#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "app/state/unsaved_texts.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"
#include "git/service/git_service.h"
#include "platform/style/view/motion.h"
#include "platform/style/view/style.h"
#include "screenshots/contact_sheet.h"
#include "screenshots/demo_project.h"
#include "screenshots/shots.h"
#include "screenshots/small_png.h"
#include "screenshots/symbol_sheet.h"
#include "text/view/text_view.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QLockFile>
#include <QPainter>
#include <QProcess>
#include <QScopeGuard>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <set>

namespace {

using namespace kelm;
using namespace kelm::screenshots;

constexpr QSize windowSize(1200, 760);
/// Where there are more pixels to a point.
constexpr QSize scaledWindowSize(900, 600);

/// Set for a process that draws for another.
constexpr const char* scaleMark = "KELMWRIGHT_PICTURES_SCALED";

void chooseTheme(const QString& name)
{
    ThemeManager& themes = ThemeManager::shared();
    for (const EditorTheme& theme : themes.availableThemes()) {
        if (theme.name == name) {
            themes.setCurrentTheme(theme);
            themes.applyAppearance();
        }
    }
}

/// The window and, at their places above it, the menus and dialogs that are open.
QPixmap picture(MainWindow& window)
{
    QPixmap picture = window.grab();
    QPainter painter(&picture);
    QWidgetList others = QApplication::topLevelWidgets();
    // In a fixed order, and a menu inside another, which begins right of it, above that.
    std::sort(others.begin(), others.end(),
              [](const QWidget* left, const QWidget* right) { return left->x() < right->x(); });
    for (QWidget* other : others) {
        if (other != &window && other->isVisible()) {
            const QPoint place = other->windowType() == Qt::Popup ? other->pos() - window.mapToGlobal(QPoint())
                                                                  : QPoint((window.width() - other->width()) / 2, 80);
            painter.drawPixmap(place, other->grab());
        }
    }
    return picture;
}

void closeWhatIsOpen(MainWindow& window, AppState& state)
{
    for (QWidget* other : QApplication::topLevelWidgets()) {
        if (other != &window && other->isVisible()) {
            other->close();
        }
    }
    while (state.notices().canStop()) {
        state.notices().stop();
    }
    state.setShowQuickOpen(false);
    state.setShowSearch(false);
    state.setShowGoToLine(false);
    state.setShowCloneDialog(false);
    state.setShowBottomPanel(false);
    state.setShowSidebar(false);
    state.setDocuments({});
    state.setRecentFiles({});
    while (state.notices().current() != nullptr && state.notices().current()->isNews) {
        state.notices().putAway();
    }
    // Of texts that were changed for a picture.
    RecoveryStore& store = state.unsavedTexts().store();
    store.refresh();
    store.finish(std::chrono::seconds(30));
    settle();
    while (!store.texts().isEmpty()) {
        store.remove(store.texts().constFirst().id);
    }
    settle();
}

bool draw(const Shot& shot, Stage stage, const QDir& folder)
{
    for (const auto& [theme, suffix] : shot.themes) {
        closeWhatIsOpen(stage.window, stage.state);
        chooseTheme(theme);
        stage.state.setCurrentProject(shot.showsProject ? std::optional(QUrl::fromLocalFile(stage.project))
                                                        : std::nullopt);
        stage.state.setShowSidebar(shot.showsProject);
        if (shot.showsProject) {
            GitService& git = stage.state.git();
            git.open(QUrl::fromLocalFile(stage.project));
            settleUntil([&git] { return !git.isBusy() && !git.status().isEmpty(); });
        }
        for (const QString& file : shot.files) {
            stage.state.openFile(QUrl::fromLocalFile(QDir(stage.project).absoluteFilePath(file)));
        }
        if (stage.state.documents().size() != shot.files.size()) {
            std::fprintf(stderr, "a file of %s cannot be opened\n", shot.name);
            return false;
        }
        stage.state.setCurrentDocumentIndex(0);
        settle();
        if (shot.prepare) {
            shot.prepare(stage);
            settle();
        }
        bool isDrawn = false;
        const auto takePicture = [&, ending = suffix] {
            // The tabs' colours come by and by.
            settleUntil([deadline = QDeadlineTimer(250)] { return deadline.hasExpired(); });
            const QString name = QString::fromLatin1(shot.name) + u'-' + ending + QStringLiteral(".png");
            isDrawn = saveSmall(picture(stage.window).toImage(), folder.filePath(name));
        };
        if (shot.prepareAround) {
            shot.prepareAround(stage, takePicture);
        } else {
            takePicture();
        }
        if (!isDrawn) {
            return false;
        }
    }
    return true;
}

QSize sizeOf(const Shot& shot)
{
    const QSize ordinary = shot.scale == 1 ? windowSize : scaledWindowSize;
    return shot.size.isEmpty() ? ordinary : shot.size;
}

/// The pictures that are asked for, by their names or all.
std::vector<Shot> wantedShots(const QStringList& names)
{
    std::vector<Shot> wanted = shots();
    std::erase_if(wanted,
                  [&names](const Shot& shot) { return !names.isEmpty() && !names.contains(QLatin1String(shot.name)); });
    return wanted;
}

/// Draws those of the scale that the program has been started with.
bool drawAll(const QDir& folder, const QString& project, const QStringList& names, double scale)
{
    KelmPaneApp app;
    app.start({});
    for (const Shot& shot : wantedShots(names)) {
        if (shot.scale != scale) {
            continue;
        }
        app.window().resize(sizeOf(shot));
        if (!draw(shot, {AppState::shared(), app.window(), project}, folder)) {
            std::fprintf(stderr, "could not draw %s\n", shot.name);
            return false;
        }
    }
    closeWhatIsOpen(app.window(), AppState::shared());
    return true;
}

/// Draws the pictures of another scale in a process of their own.
bool drawScaled(const QStringList& arguments, double scale)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(scale));
    environment.insert(QString::fromLatin1(scaleMark), QStringLiteral("1"));
    QProcess self;
    self.setProcessEnvironment(environment);
    self.setProcessChannelMode(QProcess::ForwardedChannels);
    self.start(QCoreApplication::applicationFilePath(), arguments);
    return self.waitForFinished(-1) && self.exitStatus() == QProcess::NormalExit && self.exitCode() == 0;
}

bool drawOtherScales(const QStringList& arguments)
{
    std::set<double> scales;
    for (const Shot& shot : wantedShots(arguments.mid(1))) {
        if (shot.scale != 1) {
            scales.insert(shot.scale);
        }
    }
    return std::all_of(scales.begin(), scales.end(),
                       [&arguments](double scale) { return drawScaled(arguments, scale); });
}

} // namespace

int main(int argc, char* argv[])
{
    // One place for all runs, since it is to be seen in some pictures; each waits for the one before it. A process for
    // another scale has the place of the one that started it.
    const QDir temporary(QDir::tempPath());
    QLockFile lock(temporary.filePath(QStringLiteral("sol.lock")));
    lock.setStaleLockTime(0);
    const QString home = temporary.filePath(QStringLiteral("sol"));
    const bool isStartedForScale = qEnvironmentVariableIsSet(scaleMark);
    if (!isStartedForScale && !lock.lock()) {
        std::fputs("could not lock the place where the pictures are made\n", stderr);
        return 1;
    }
    QDir(home).removeRecursively();
    QDir().mkpath(home);
    const auto removeHome = qScopeGuard([&home] { QDir(home).removeRecursively(); });
    qputenv("TZ", "UTC");
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
        qputenv(variable, home.toLocal8Bit());
    }
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.isEmpty() || !QDir().mkpath(arguments.first())) {
        std::fputs("usage: kelmwright_screenshots FOLDER [NAME …]\n", stderr);
        return 2;
    }
    QApplication::setCursorFlashTime(0);
    style::installOn(application);
    style::setAnimated(false);
    const QString project = home + QStringLiteral("/orchard");
    if (!makeDemoProject(project)) {
        std::fputs("could not make the project that the pictures show\n", stderr);
        return 1;
    }
    const QDir folder(arguments.first());
    const double scale = application.devicePixelRatio();
    if (scale != 1) {
        return drawAll(folder, project, arguments.mid(1), scale) ? 0 : 1;
    }
    const bool wantsSymbols = arguments.size() == 1 || arguments.contains(QStringLiteral("icons"));
    const bool isDone = (!wantsSymbols || drawSymbolSheets(folder)) &&
                        drawAll(folder, project, arguments.mid(1), scale) && drawOtherScales(arguments) &&
                        drawContactSheets(shots(), folder);
    return isDone ? 0 : 1;
}
