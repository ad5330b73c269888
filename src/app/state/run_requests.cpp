#include "app/state/run_requests.h"

#include "platform/events/main_queue.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/text/shown_name.h"
#include "run/code_runner.h"

#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Without the sign of unsaved edits.
QString nameOf(const Document& document)
{
    return document.fileURL() ? shownName(lastPathComponent(*document.fileURL())) : u"Untitled"_s;
}

/// Whether the runner is what answers a request for it.
bool isForRunner(const Document& document)
{
    return document.fileURL() || document.language().runsWithoutFile();
}

} // namespace

RunRequests::RunRequests(CodeRunner& runner, Notices& notices, NotificationCenter& notifications,
                         std::function<void()> showPage)
    : runner_(runner), notices_(notices), notifications_(notifications), showPage_(std::move(showPage))
{
    connect(&runner_, &CodeRunner::isRunningChanged, this, &RunRequests::runningChanged);
    connect(&runner_, &CodeRunner::failed, this, &RunRequests::tellOf);
}

RunRequests::~RunRequests() = default;

void RunRequests::request(const std::shared_ptr<Document>& document)
{
    notifications_.post(notifications::clearOutput);
    if (!runner_.isRunning() || !isForRunner(*document)) {
        next_.reset();
        begin(*document);
    } else if (next_) {
        // What is in the way has been told to end.
        next_ = document;
    } else {
        refuse(document);
    }
}

void RunRequests::requestInstead(const std::shared_ptr<Document>& document)
{
    if (!runner_.isRunning()) {
        showPage_();
        request(document);
        return;
    }
    next_ = document;
    runner_.stop();
}

void RunRequests::begin(const Document& document)
{
    if (document.fileURL()) {
        runner_.run(*document.fileURL());
        return;
    }
    const Language language = document.language();
    if (language.runsWithoutFile()) {
        runner_.runCode(document.content(), language, {}, nameOf(document));
        return;
    }
    const QString message = u"Error: language '"_s + language.rawValue() + u"' is not runnable."_s;
    runner_.setOutput(message);
    notifications_.post(notifications::codeOutput, message);
}

void RunRequests::refuse(const std::shared_ptr<Document>& document)
{
    if (refusal_) {
        notices_.remove(*refusal_);
    }
    const QString inTheWay = runner_.record() ? runner_.record()->name : QString();
    const QString asked = nameOf(*document);
    const QString text = asked == inTheWay ? inTheWay + u" is still running, so it was not started again."_s
                                           : inTheWay + u" is still running, so "_s + asked + u" was not started."_s;
    refusal_ = notices_.report(text, {{u"Stop and run"_s, [this, document] { requestInstead(document); }}});
}

void RunRequests::tellOf(const RunFailure& failure)
{
    notices_.report(failureText(failure));
}

void RunRequests::runningChanged()
{
    if (runner_.isRunning()) {
        return;
    }
    if (refusal_) {
        notices_.remove(*std::exchange(refusal_, std::nullopt));
    }
    // All who hear of the end come first, and what they begin.
    onMainQueue(this, [this] {
        if (next_ && !runner_.isRunning()) {
            requestInstead(std::exchange(next_, nullptr));
        }
    });
}

} // namespace kelm
