// File panels that answer what a test tells them.
#pragma once

#include "platform/desktop/file_panels.h"

#include <functional>

namespace kelm {

class FakeFilePanels final : public FilePanels
{
public:
    QList<ChosenURL> showOpenPanel(const OpenPanelOptions& options) override
    {
        ++openPanelsShown;
        openPanelOptions = options;
        return openAnswer;
    }

    std::optional<QUrl> showSavePanel(const SavePanelOptions& options) override
    {
        ++savePanelsShown;
        savePanelOptions = options;
        if (whileSavePanelIsUp) {
            whileSavePanelIsUp();
        }
        return saveAnswer;
    }

    QList<ChosenURL> openAnswer;
    std::optional<QUrl> saveAnswer;
    /// What happens behind the panel before it is answered.
    std::function<void()> whileSavePanelIsUp;

    int openPanelsShown = 0;
    int savePanelsShown = 0;
    OpenPanelOptions openPanelOptions;
    SavePanelOptions savePanelOptions;
};

} // namespace kelm
