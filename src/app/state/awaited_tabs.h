// Tabs for whose end somebody waits.
#pragma once

#include "app/document/document.h"
#include "platform/events/open_request.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>
#include <vector>

namespace kelm {

class AppState;
class WaitingStart;

/// Holds what waits for a tab until that is closed, and notes whether its text was saved by then. A tab that is opened
/// again later is not waited for once more. When this ends, so that no tab is left, each is taken as closed. Main
/// thread only.
class AwaitedTabs final : public QObject
{
    Q_OBJECT

public:
    /// The state outlives it, and has none beside it.
    explicit AwaitedTabs(AppState& appState);
    ~AwaitedTabs() override;

    /// Waits for the tab of a file that was opened just now; a very large one is perhaps still read.
    void add(const QUrl& file, const std::shared_ptr<WaitingStart>& waiting);
    /// Waits for the tab of a document; for null it could not be opened.
    void add(const std::shared_ptr<Document>& document, const std::shared_ptr<WaitingStart>& waiting);

private:
    struct Tab
    {
        std::shared_ptr<Document> document;
        std::shared_ptr<WaitingStart> waiting;
    };
    struct Reading
    {
        QUrl file;
        std::shared_ptr<WaitingStart> waiting;
    };

    std::shared_ptr<Document> documentOf(const QUrl& file) const;
    void noteRead(const QUrl& file);
    void noteTabs();

    AppState& appState_;
    std::vector<Tab> tabs_;
    std::vector<Reading> readings_;
};

} // namespace kelm
