// Draws the window's chief states to PNG files: `kelmwright_screenshots FOLDER [NAME …]`. It lives in a home of its
// own, so that neither the user's settings nor those of the last run show in the pictures.
#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "app/state/unsaved_texts.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"
#include "platform/style/view/style.h"
#include "screenshots/contact_sheet.h"
#include "screenshots/demo_project.h"
#include "screenshots/shots.h"
#include "text/view/text_view.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>

namespace {

using namespace kelm;
using namespace kelm::screenshots;

constexpr QSize windowSize(1200, 760);
constexpr QSize windowSizeAtTwice(900, 600);

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
    for (QWidget* other : QApplication::topLevelWidgets()) {
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
        for (const QString& file : shot.files) {
            stage.state.openFile(QUrl::fromLocalFile(QDir(stage.project).absoluteFilePath(file)));
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
            isDrawn = picture(stage.window).save(folder.filePath(name), "PNG", 0);
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

bool drawAll(const QDir& folder, const QString& project, const QStringList& names, int scale)
{
    KelmPaneApp app;
    app.start({});
    app.window().resize(scale == 1 ? windowSize : windowSizeAtTwice);
    for (const Shot& shot : shots()) {
        const bool isWanted = names.isEmpty() || names.contains(QLatin1String(shot.name));
        if (isWanted && shot.scale == scale && !draw(shot, {AppState::shared(), app.window(), project}, folder)) {
            std::fprintf(stderr, "could not draw %s\n", shot.name);
            return false;
        }
    }
    closeWhatIsOpen(app.window(), AppState::shared());
    return true;
}

/// Draws the pictures of twice the scale in a process of their own.
bool drawAtTwice(const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    QProcess self;
    self.setProcessEnvironment(environment);
    self.setProcessChannelMode(QProcess::ForwardedChannels);
    self.start(QCoreApplication::applicationFilePath(), arguments);
    return self.waitForFinished(-1) && self.exitStatus() == QProcess::NormalExit && self.exitCode() == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    const QTemporaryDir home(QDir::tempPath() + QStringLiteral("/sol-XXXXXX"));
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.isEmpty() || !QDir().mkpath(arguments.first())) {
        std::fputs("usage: kelmwright_screenshots FOLDER [NAME …]\n", stderr);
        return 2;
    }
    QApplication::setCursorFlashTime(0);
    style::installOn(application);
    const QString project = home.filePath(QStringLiteral("orchard"));
    if (!makeDemoProject(project)) {
        std::fputs("could not make the project that the pictures show\n", stderr);
        return 1;
    }
    const int scale = qRound(application.devicePixelRatio());
    const bool wantsSheets = scale == 1 && (arguments.size() == 1 || arguments.contains(QStringLiteral("icons")));
    if (wantsSheets && !drawContactSheets(QDir(arguments.first()))) {
        return 1;
    }
    const bool isDone =
        drawAll(QDir(arguments.first()), project, arguments.mid(1), scale) && (scale > 1 || drawAtTwice(arguments));
    return isDone ? 0 : 1;
}
