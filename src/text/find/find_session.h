// A search that stays with a text while the text changes.
#pragma once

#include "platform/events/background_task.h"
#include "text/find/find_scan.h"
#include "text/find/search_engine.h"
#include "text/storage/text_storage.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// Looks for what a `SearchEngine` says in a text and carries what it found over the text's edits. What takes more than
/// some milliseconds is done by a worker in a snapshot of the text. The match that is current is the first one at or
/// behind the origin until one is stepped to.
///
/// The engine's `results` are all matches that are known, with their lines, described when somebody asks: that costs
/// what the matches and the lines that hold them are long. Main thread only.
class FindSession final : public QObject
{
    Q_OBJECT

public:
    FindSession(TextStorage& storage, SearchEngine& engine, QObject* parent = nullptr);

    /// The text stands in another storage from now on, the same unit for unit; what was found stays.
    void searchIn(TextStorage& storage);
    /// Begins a search for what the engine now says, from `origin` on.
    void start(qsizetype origin);
    /// Ends the search and forgets its matches.
    void stop();
    bool isRunning() const { return isRunning_; }

    /// Says which part of the text is on screen: what a pattern matches there is looked for first.
    void setShown(TextRange shown);

    /// Why the pattern cannot be looked for; absent when it can.
    const std::optional<FindError>& error() const { return error_; }
    FindScan::State state() const { return scan_.state(); }
    qsizetype matchCount() const { return scan_.matches().size(); }
    std::optional<TextRange> currentMatch() const { return current_; }
    /// The number of the current match, from 0; absent as well while those before it are still being counted.
    std::optional<qsizetype> currentIndex() const;
    /// The matches that meet `range`. While a pattern is being looked for they are those that are known or presumed.
    std::vector<TextRange> matchesIn(TextRange range) const;
    /// What to tell the person: "3 of 17", "No results", or why there are none; empty without anything to look for.
    QString statusText() const;

    /// Steps to the next match from an offset, or the one before it, round the ends of the text. Absent where there is
    /// none and where it takes long to find: then `isStepping`, and `stepEnded` tells it unless the search begins anew
    /// or ends before.
    std::optional<TextRange> stepForward(qsizetype from);
    std::optional<TextRange> stepBackward(qsizetype from);
    bool isStepping() const { return pendingStep_.has_value(); }

    /// What the current match is to be replaced by; absent without one.
    std::optional<QString> replacementForCurrent() const;
    /// All replacements as one. Absent where that takes long: then `replacedAll` tells them, unless the text changes or
    /// the search begins anew or ends before.
    std::optional<ReplaceAllResult> replaceAll();

Q_SIGNALS:
    /// More matches are known, another one is current, or the search has ended.
    void changed();
    /// A step that took long has come to a match; none where there is none or an edit came between.
    void stepEnded(std::optional<kelm::TextRange> match);
    /// All replacements that took long to work out.
    void replacedAll(const kelm::ReplaceAllResult& result);

private:
    struct Step
    {
        bool isForward = true;
        qsizetype from = 0;
    };

    void textEdited(const TextEdit& edit);
    /// Looks for what is found at once, and leaves the rest to the worker.
    void search();
    void startRun();
    void continueRun(const std::shared_ptr<FindRun>& run);
    void searchShown();
    void stopTasks();
    /// Goes on with what waits for matches.
    void matchesCame();
    std::optional<TextRange> take(Step step);
    /// The match that the step comes to, as far as it is known; the inner one is absent where there is none.
    std::optional<std::optional<TextRange>> known(Step step);
    void chooseCurrent();
    void publish();
    QList<SearchMatch> describe() const;

    TextStorage* storage_ = nullptr;
    QMetaObject::Connection edits_;
    SearchEngine& engine_;
    FindScan scan_;
    std::optional<FindError> error_;
    std::optional<TextRange> current_;
    /// Whether the current match stays whatever else is found.
    bool isChosen_ = false;
    qsizetype origin_ = 0;
    bool isRunning_ = false;
    std::optional<Step> pendingStep_;
    TextRange shown_;
    /// The part on screen that was searched since the last edit.
    std::optional<TextRange> searchedShown_;
    BackgroundTask runTask_;
    BackgroundTask shownTask_;
    BackgroundTask replaceTask_;
    /// Until somebody who types rests.
    QTimer restTimer_;
};

} // namespace kelm
