#include "app/state/document_rewriter.h"

#include <utility>

namespace kelm {

DocumentRewriter::DocumentRewriter(Notices& notices, std::function<bool(const std::shared_ptr<Document>&)> isOpen)
    : notices_(notices), isOpen_(std::move(isOpen))
{}

void DocumentRewriter::rewrite(const std::shared_ptr<Document>& document, const QString& notice, Transform transform)
{
    if (!document || task_.isRunning()) {
        return;
    }
    const TextTree before = document->text();
    if (before.length() <= longestAtOnce) {
        document->setContent(transform(before.toString()));
        return;
    }
    notice_ = notices_.add({.text = notice, .stop = [this] { stop(); }, .holdsInput = true});
    // A document ends on the main thread: the worker does not hold it.
    task_.start([this, weak = std::weak_ptr(document), before,
                 transform = std::move(transform)](const BackgroundTask::StopFlag&) -> BackgroundTask::Delivery {
        const TextTree after(transform(before.toString()));
        return [this, weak, before, after] { finish(weak.lock(), before, after); };
    });
}

void DocumentRewriter::stop()
{
    task_.stop();
    notices_.remove(std::exchange(notice_, 0));
}

void DocumentRewriter::finish(const std::shared_ptr<Document>& document, const TextTree& before, const TextTree& after)
{
    // The text comes before the keys that have waited for it.
    if (document && isOpen_(document) && document->text() == before) {
        document->setText(after);
    }
    notices_.remove(std::exchange(notice_, 0));
}

} // namespace kelm
