// A search that stays with a text while the text changes.
#pragma once

#include "text/find/find_scan.h"
#include "text/find/search_engine.h"
#include "text/storage/text_storage.h"

#include <QObject>
#include <QTimer>

#include <optional>
#include <vector>

namespace kelm {

/// Looks for what a `SearchEngine` says in a text, a stretch with each turn of the event loop, and begins anew after
/// each edit. The match that is current is the first one at or behind the origin until one is stepped to.
///
/// The engine's `results` hold the first `describedMatches` matches with their lines; all of them count. Main thread
/// only.
class FindSession final : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype describedMatches = 1000;

    FindSession(TextStorage& storage, SearchEngine& engine, QObject* parent = nullptr);

    /// Begins a search for what the engine now says, from `origin` on.
    void start(qsizetype origin);
    /// Ends the search and forgets its matches.
    void stop();

    /// Why the pattern cannot be looked for; absent when it can.
    const std::optional<FindError>& error() const { return error_; }
    FindScan::State state() const { return scan_.state(); }
    qsizetype matchCount() const { return static_cast<qsizetype>(scan_.matches().size()); }
    std::optional<TextRange> currentMatch() const;
    /// The number of the current match, from 0.
    std::optional<qsizetype> currentIndex() const { return current_; }
    /// The matches that meet `range`.
    std::vector<TextRange> matchesIn(TextRange range) const;
    /// What to tell the person: "3 of 17", "No results", or why there are none; empty without anything to look for.
    QString statusText() const;

    /// Steps to the next match from an offset, or the one before it, round the ends of the text. Searches as far as it
    /// must at once.
    std::optional<TextRange> stepForward(qsizetype from);
    std::optional<TextRange> stepBackward(qsizetype from);

    /// What the current match is to be replaced by; absent without one.
    std::optional<QString> replacementForCurrent() const;
    /// All replacements as one.
    ReplaceAllResult replaceAll() const;

Q_SIGNALS:
    /// More matches are known, another one is current, or the search has ended.
    void changed();

private:
    /// The text in one piece, as what looks for patterns needs it; made anew after an edit.
    const QString& flatText() const;
    void restartScan();
    void step();
    void noteMatches();
    void setCurrent(std::optional<qsizetype> index);

    TextStorage& storage_;
    SearchEngine& engine_;
    FindScan scan_;
    std::optional<FindError> error_;
    std::optional<qsizetype> current_;
    qsizetype origin_ = 0;
    bool isRunning_ = false;
    QTimer stepTimer_;
    mutable QString flatText_;
    mutable std::optional<quint64> flatRevision_;
};

} // namespace kelm
