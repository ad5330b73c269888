// The file panels as dialogs.
#pragma once

#include "platform/desktop/panel_places.h"

namespace kelm {

/// Dialogs over whichever window is active. They are the desktop's own where it has some, but for files and folders at
/// once (see `FileAndFolderDialog`).
class FileDialogs final : public FilePanels
{
public:
    /// Where the dialogs ended is kept in `userDefaults`, which outlives the object.
    explicit FileDialogs(UserDefaults& userDefaults) : places_(userDefaults) {}

    QList<ChosenURL> showOpenPanel(const OpenPanelOptions& options) override;
    std::optional<QUrl> showSavePanel(const SavePanelOptions& options) override;

private:
    void noteEnd(PanelKind kind, const QUrl& chosen, bool isFolder);

    PanelPlaces places_;
};

} // namespace kelm
