// The tabs that were closed last.
#pragma once

#include "app/state/app_state.h"

#include <QList>
#include <QObject>
#include <QUrl>
#include <QUuid>

#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// Remembers what was closed, so that it can be opened again: a file is read anew; a text that was not saved, or that
/// has no file, comes back as it was, beside the tabs that it stood beside. Nothing of that is stored; unsaved texts
/// are in the recovery store all the same. Main thread only.
class ClosedTabs final : public QObject
{
    Q_OBJECT

public:
    /// How many tabs are remembered, and how many of them with their texts.
    static constexpr std::size_t mostTabs = 50;
    static constexpr std::ptrdiff_t mostTexts = 10;

    ClosedTabs(AppState& appState, QObject* parent);

    bool isEmpty() const { return closed_.empty(); }
    /// Opens what was closed last and is not open again by now; one tab, also where several were closed in one go.
    void reopen();

Q_SIGNALS:
    void changed();

private:
    struct Closed
    {
        /// Its text as it was; null for one that its file holds.
        std::shared_ptr<Document> document;
        std::optional<QUrl> file;
        /// All tabs as they stood.
        QList<QUuid> order;
    };

    void followDocuments();
    void remember(const std::shared_ptr<Document>& document, const QList<QUuid>& order);
    void forgetOldest();
    bool isOpen(const Closed& closed) const;

    AppState& appState_;
    AppState::Documents before_;
    std::shared_ptr<Document> currentBefore_;
    /// The last one closed is the last.
    std::vector<Closed> closed_;
};

} // namespace kelm
