// The code that links ask to run.
#pragma once

#include "app/document/document.h"
#include "platform/events/scheduler.h"
#include "platform/files/user_defaults.h"

#include <QList>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

namespace kelm {

/// Any web page can hold a link that asks to run what it brings, so its code waits for a person's word: a question
/// stands with the document until it is answered, the document is closed or run, or what would run is another text than
/// the link's. Once a person has said "always", which is stored, links run without a question, 0.15 seconds after they
/// were opened, whatever document is current by then. Main thread only.
class LinkRuns final : public QObject
{
    Q_OBJECT

public:
    using DocumentPointer = std::shared_ptr<Document>;

    /// How long nothing answers a question that has come up: who clicks or presses a key by then meant something else.
    static constexpr std::chrono::milliseconds deafTime{500};

    /// `current` gives the current document and `runCurrent` runs it. Defaults and scheduler outlive the object.
    LinkRuns(UserDefaults& userDefaults, Scheduler& scheduler, std::function<DocumentPointer()> current,
             std::function<void()> runCurrent);

    /// A link has opened `document` and asks to run it.
    void request(const DocumentPointer& document);
    /// Whether the question stands with `document`, which may be null.
    bool asksAbout(const DocumentPointer& document) const;
    /// Whether it has come so lately that what is done now was meant for what stood there before.
    bool hasJustAskedAbout(const DocumentPointer& document) const;

    /// The answers. Each does nothing unless the question stands with `document` and that is the current one, so that
    /// no other code runs than what the question was about.
    void run(const DocumentPointer& document);
    void runAlways(const DocumentPointer& document);
    /// Puts the question away unanswered; the code stays.
    void putAway(const DocumentPointer& document);

    /// Puts the questions about all other documents away.
    void keepOnly(const QList<DocumentPointer>& documents);

Q_SIGNALS:
    /// The question stands with another document than before, or with one less.
    void questionsChanged();

private:
    bool isAnswerable(const DocumentPointer& document) const;

    UserDefaults& userDefaults_;
    Scheduler& scheduler_;
    const std::function<DocumentPointer()> current_;
    const std::function<void()> runCurrent_;
    QList<DocumentPointer> asked_;
    QList<DocumentPointer> new_;
};

} // namespace kelm
