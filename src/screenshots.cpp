// Draws the window's chief states to PNG files: `kelmwright_screenshots FOLDER`. It lives in a home of its own, so that
// neither the user's settings nor those of the last run show in the pictures.
#include "app/app_state.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"
#include "platform/view/style.h"
#include "text/view/find_bar.h"
#include "workbench/editor_area.h"
#include "workbench/kelm_pane_app.h"
#include "workbench/main_window.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace {

using namespace kelm;

constexpr QSize windowSize(1200, 760);
constexpr QSize windowSizeAtTwice(900, 600);

/// One picture: its name, what is opened for it, and what is done with the window before it is drawn. The first file is
/// the one that is seen.
struct Shot
{
    const char* name;
    QString theme;
    QStringList files;
    std::function<void(EditorContainerView&)> prepare;
    /// Pixels to a point. The toolkit takes it once, at its start.
    int scale = 1;
};

void settle()
{
    // Updates are put off to the main queue, some of them by others.
    for (int turn = 0; turn < 4; ++turn) {
        QCoreApplication::processEvents();
    }
}

QString source(const char* path)
{
    return QDir(QStringLiteral(KELM_SOURCE_ROOT)).filePath(QString::fromLatin1(path));
}

void foldSecondRegion(EditorContainerView& editor)
{
    const std::vector<FoldableRegion>& regions = editor.codeFoldingManager().foldableRegions();
    if (regions.size() > 2) {
        editor.codeFoldingManager().fold(regions[2]);
    }
}

void findWord(EditorContainerView& editor, const QString& word)
{
    editor.textView().showReplaceBar();
    editor.textView().findBar().findChild<QLineEdit*>()->setText(word);
    settle();
    editor.textView().findNext();
}

std::vector<Shot> shots()
{
    const QString swift = source("tests/editor/data/swift.swift");
    const QString javascript = source("tests/editor/data/javascript.js");
    const QString python = source("tests/editor/data/python.py");
    const QString cpp = source("src/text/view/text_view.cpp");
    const QString korean = source("docs/samples/korean.swift");
    const auto nothing = [](EditorContainerView&) {};
    return {
        {"editor-dark", QStringLiteral("Monokai"), {swift, python, cpp}, nothing},
        {"editor-light", QStringLiteral("GitHub Light"), {swift, python, cpp}, nothing},
        {"folded-dark", QStringLiteral("One Dark"), {swift}, foldSecondRegion},
        {"find-dark",
         QStringLiteral("Dracula"),
         {javascript},
         [](auto& editor) { findWord(editor, QStringLiteral("return")); }},
        {"find-light",
         QStringLiteral("GitHub Light"),
         {javascript},
         [](auto& editor) { findWord(editor, QStringLiteral("return")); }},
        {"korean-dark", QStringLiteral("Neon Kelm"), {korean}, nothing},
        {"solarized-dark", QStringLiteral("Solarized Dark"), {python}, nothing},
        {"empty-dark", QStringLiteral("Monokai"), {}, nothing},
        {"korean-light-2x", QStringLiteral("GitHub Light"), {korean}, nothing, 2},
    };
}

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

bool draw(const Shot& shot, MainWindow& window, const QDir& folder)
{
    AppState& state = AppState::shared();
    state.setDocuments({});
    chooseTheme(shot.theme);
    for (const QString& file : shot.files) {
        state.openFile(QUrl::fromLocalFile(file));
    }
    state.setCurrentDocumentIndex(0);
    settle();
    if (EditorContainerView* editor = window.editorArea().currentEditor()) {
        editor->textView().setFocus();
        shot.prepare(*editor);
        settle();
    }
    return window.grab().save(folder.filePath(QString::fromLatin1(shot.name) + QStringLiteral(".png")), "PNG", 0);
}

bool drawAll(const QDir& folder, int scale)
{
    KelmPaneApp app;
    app.start({});
    app.window().resize(scale == 1 ? windowSize : windowSizeAtTwice);
    for (const Shot& shot : shots()) {
        if (shot.scale == scale && !draw(shot, app.window(), folder)) {
            std::fprintf(stderr, "could not draw %s\n", shot.name);
            return false;
        }
    }
    return true;
}

/// Draws the pictures of twice the scale in a process of their own.
bool drawAtTwice(const QString& folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    QProcess self;
    self.setProcessEnvironment(environment);
    self.setProcessChannelMode(QProcess::ForwardedChannels);
    self.start(QCoreApplication::applicationFilePath(), {folder});
    return self.waitForFinished(-1) && self.exitStatus() == QProcess::NormalExit && self.exitCode() == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    const QTemporaryDir home;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }
    QApplication application(argc, argv);
    if (argc != 2 || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
        std::fputs("usage: kelmwright_screenshots FOLDER\n", stderr);
        return 2;
    }
    QApplication::setCursorFlashTime(0);
    style::installOn(application);
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const int scale = qRound(application.devicePixelRatio());
    const bool isDone = drawAll(QDir(folder), scale) && (scale > 1 || drawAtTwice(folder));
    return isDone ? 0 : 1;
}
