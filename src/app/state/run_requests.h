// Asking for a run.
#pragma once

#include "app/document/document.h"
#include "app/state/notices.h"
#include "platform/events/notification_center.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace kelm {

class CodeRunner;
struct RunFailure;

/// Has the runner run documents, and tells by notices why a run does not begin. While another run is on, the notice
/// says which, and offers to end it for the one that was asked for. Main thread only.
class RunRequests final : public QObject
{
    Q_OBJECT

public:
    /// `showPage` brings the output page up. All that is given outlives the object.
    RunRequests(CodeRunner& runner, Notices& notices, NotificationCenter& notifications,
                std::function<void()> showPage);
    ~RunRequests() override;

    /// Clears the output page and runs a document: its file as it stands on disk, without unsaved edits, or, when it
    /// has none, its text. A text in a language that cannot be run so is told in the runner's output and on the page.
    void request(const std::shared_ptr<Document>& document);
    /// Ends what runs, and then runs the document as it is by then.
    void requestInstead(const std::shared_ptr<Document>& document);

private:
    void begin(const Document& document);
    void refuse(const std::shared_ptr<Document>& document);
    void tellOf(const RunFailure& failure);
    void runningChanged();

    CodeRunner& runner_;
    Notices& notices_;
    NotificationCenter& notifications_;
    std::function<void()> showPage_;
    /// What says that a run was refused, while the one in its way goes on.
    std::optional<Notices::Id> refusal_;
    /// To be run when what runs has ended.
    std::shared_ptr<Document> next_;
};

} // namespace kelm
