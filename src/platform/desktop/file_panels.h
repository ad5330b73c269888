// Choosing files, behind an interface so that its users need no window.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <optional>

namespace kelm {

/// What a panel is there for. Each kind remembers for itself where it ended.
enum class PanelKind { open, project, clone, save };

/// What an open panel lets a person choose.
struct OpenPanelOptions
{
    bool canChooseFiles = true;
    bool canChooseDirectories = false;
    bool allowsMultipleSelection = false;
    /// The words on the button that chooses; empty for "Open".
    QString prompt = {};
    PanelKind kind = PanelKind::open;
    /// Where it begins: in the first of these that is a folder, else where the last panel of its kind ended.
    QStringList startFolders = {};
};

/// One choice of an open panel.
struct ChosenURL
{
    QUrl url;
    bool isDirectory = false;

    friend bool operator==(const ChosenURL&, const ChosenURL&) = default;
};

/// Kinds of content that a save panel offers.
enum class ContentType { plainText, sourceCode, json, xml };

/// What a save panel begins with.
struct SavePanelOptions
{
    /// The kinds that are offered, in their order.
    QList<ContentType> allowedTypes = {};
    /// The name of the file, as far as the person does not want another.
    QString suggestedName = {};
    /// As those of an open panel.
    QStringList startFolders = {};
};

/// Panels in which a person chooses files; each call waits for the answer. Main thread only.
class FilePanels
{
public:
    virtual ~FilePanels() = default;

    /// The chosen URLs in the order in which the panel gives them; empty when the person cancels.
    virtual QList<ChosenURL> showOpenPanel(const OpenPanelOptions& options) = 0;

    /// The URL to save to, or nothing when the person cancels. What is there already is replaced only after a question.
    virtual std::optional<QUrl> showSavePanel(const SavePanelOptions& options) = 0;

    /// The panels of the program: what was installed, or before that panels in which nothing is ever chosen.
    static FilePanels& shared();

    /// Says which panels `shared` stands for; once, before its first use.
    static void install(std::unique_ptr<FilePanels> panels);
};

} // namespace kelm
