// Texts that are made anew as a whole.
#pragma once

#include "app/document/document.h"
#include "app/state/notices.h"
#include "platform/events/background_task.h"

#include <QString>

#include <functional>
#include <memory>

namespace kelm {

/// Puts another text in the place of a document's. A short text is done with when the call returns. A long one is made
/// on a worker, and the window's input waits for it behind a notice that can be ended; then nothing has changed. What
/// comes back is dropped when the document has been closed meanwhile or has another text. Main thread only.
class DocumentRewriter
{
public:
    /// Makes the new text of the old one; on any thread.
    using Transform = std::function<QString(const QString&)>;

    /// The most units of a text that is made anew at once: some hundredths of a second of the slowest transform.
    static constexpr qsizetype longestAtOnce = qsizetype(1) << 18;

    /// `isOpen` tells whether a document is still there to be changed. The notices outlive the rewriter.
    DocumentRewriter(Notices& notices, std::function<bool(const std::shared_ptr<Document>&)> isOpen);
    ~DocumentRewriter() { stop(); }

    /// Does nothing without a document, and while another is made anew. `notice` is what is shown meanwhile, such as
    /// "Sorting lines…".
    void rewrite(const std::shared_ptr<Document>& document, const QString& notice, Transform transform);

private:
    void stop();
    void finish(const std::shared_ptr<Document>& document, const TextTree& before, const TextTree& after);

    Notices& notices_;
    const std::function<bool(const std::shared_ptr<Document>&)> isOpen_;
    Notices::Id notice_ = 0;
    BackgroundTask task_;
};

} // namespace kelm
