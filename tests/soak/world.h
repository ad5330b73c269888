// The window, all that surrounds it, and the models beside it.
#pragma once

#include "app/state/app_state.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"
#include "maintenance/auto_update_service.h"
#include "soak/chance.h"
#include "soak/disk_model.h"
#include "soak/recent_log.h"
#include "soak/tabs_model.h"
#include "support/fake_file_panels.h"
#include "support/fake_workspace.h"
#include "support/temporary_repository.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/main_window.h"

#include <QTemporaryDir>

#include <functional>

namespace kelm::soak {

/// A real window over a real repository in a temporary folder; only panels and desktop are fakes. Beside it stand the
/// models that know what must be seen and what must be on disk.
struct World
{
    explicit World(quint32 seed);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    // ---- What surrounds the window.

    Chance chance;
    /// The project: a repository, written by `restoreProject`.
    test::TemporaryRepository repository;
    /// Where "Save As" goes.
    QTemporaryDir elsewhere;
    /// The folder of temporary files, which must be empty again when all is quiet.
    QTemporaryDir temporary;
    QTemporaryDir store;
    UserDefaults defaults{store.filePath(QStringLiteral("defaults.conf"))};
    RecentLog log;
    FakeFilePanels& panels;
    AppState state;
    ThemeManager themes;
    FakeWorkspace workspace;
    AutoUpdateService updates{UpdaterController::makeForPlatform()};
    MainWindow window;

    // ---- What must be.

    DiskModel disk;
    TabsModel tabs;
    /// What paste puts in, one text a selection that was copied.
    QStringList clipboard;

    /// Writes the project anew, in one commit, and takes it as what must be on disk.
    void restoreProject();
    QString path(const QString& name) const { return repository.filePath(name); }
    /// The copies of what is not saved.
    QString unsavedFolder() const { return store.filePath(QStringLiteral("unsaved")); }
    QUrl url(const QString& name) const { return QUrl::fromLocalFile(path(name)); }

    // ---- Seeing and waiting.

    /// The editor that is seen, or null.
    EditorContainerView* editor() { return window.editorArea().currentEditor(); }
    /// The text that is seen, with the keyboard on it.
    TextView& text();
    std::shared_ptr<Document> document() const { return state.currentDocument(); }
    bool isFolded() { return editor() != nullptr && editor()->codeFoldingManager().isTextFolded(); }

    /// Sees to it that keys reach the window.
    void bringToFront();
    /// Lets everything happen that is queued, deletions included.
    void settle();
    /// Lets events happen until `condition` holds; a failure when it does not within half a minute.
    bool waitFor(const std::function<bool()>& condition, const QString& what);

    // ---- Telling.

    /// Says more of the step in hand for the list of the last actions.
    void note(const QString& text) { noted = text; }
    /// The run ends with the first failure.
    void fail(const QString& what);
    bool expect(bool holds, const QString& what)
    {
        if (!holds) {
            fail(what);
        }
        return holds;
    }

    QString noted;
    std::optional<QString> failure;
};

/// Two texts that should be the same, told by the place where they differ.
QString howTheyDiffer(const QString& expected, const QString& found);

} // namespace kelm::soak
