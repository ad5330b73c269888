#include "platform/desktop/file_panels.h"

#include <utility>

namespace kelm {

namespace {

/// The panels of a program without a window.
class NoPanels final : public FilePanels
{
public:
    QList<ChosenURL> showOpenPanel(const OpenPanelOptions&) override { return {}; }
    std::optional<QUrl> showSavePanel(const SavePanelOptions&) override { return std::nullopt; }
};

std::unique_ptr<FilePanels>& installedPanels()
{
    static std::unique_ptr<FilePanels> panels = std::make_unique<NoPanels>();
    return panels;
}

} // namespace

FilePanels& FilePanels::shared()
{
    return *installedPanels();
}

void FilePanels::install(std::unique_ptr<FilePanels> panels)
{
    installedPanels() = std::move(panels);
}

} // namespace kelm
