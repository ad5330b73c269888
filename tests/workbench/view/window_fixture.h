// A window over a state of its own, with fakes of what lies outside.
#pragma once

#include "app/commands/command.h"
#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"
#include "maintenance/auto_update_service.h"
#include "support/captured_log.h"
#include "support/fake_file_panels.h"
#include "support/fake_workspace.h"
#include "support/patience.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/main_window.h"
#include "workbench/view/menu_bar.h"

#include <QFile>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QtTest>

namespace kelm::test {

struct WindowFixture
{
    QTemporaryDir home;
    UserDefaults defaults{home.filePath(QStringLiteral("defaults.conf"))};
    CapturedLog log;
    FakeFilePanels panels;
    NotificationCenter notifications;
    AppState state{{panels, defaults, Scheduler::system(), notifications, log, ProcessRunner::sharedSystem(),
                    ExecutableSearch(ProcessRunner::system())}};
    QList<Appearance> appearances;
    ThemeManager themes{{defaults, log, home.path(), [this](Appearance appearance) { appearances << appearance; }}};
    FakeWorkspace workspace;
    AutoUpdateService updates{UpdaterController::makeForPlatform()};
    int uninstalls = 0;
    MainWindow window{{state, themes, workspace, defaults, updates, [this] { ++uninstalls; }}};

    WindowFixture()
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    QUrl write(const QString& name, const QByteArray& bytes)
    {
        QFile file(home.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot write %s", qPrintable(file.fileName()));
        }
        return QUrl::fromLocalFile(file.fileName());
    }
    static QByteArray read(const QUrl& url)
    {
        QFile file(url.toLocalFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot read");
    }

    /// Opens a snippet, and waits for what comes a moment after that: the editor has the keyboard then, and its caret
    /// goes to the start.
    void openSnippet(const QString& code, Language language, const std::optional<LessonInfo>& lesson = std::nullopt)
    {
        QObject context;
        bool isAsked = false;
        notifications.addObserver(&context, notifications::focusEditor,
                                  [&isAsked](const Notification&) { isAsked = true; });
        state.openSnippet(code, language, lesson);
        QTRY_VERIFY(isAsked);
        turnQueue();
    }

    TextView& text() { return window.editorArea().currentEditor()->textView(); }
    void turnQueue() { QCoreApplication::processEvents(); }

    /// A command of the built menu bar.
    QAction* command(Command command) { return menuAction(*window.menuBar(), command); }
};

} // namespace kelm::test
