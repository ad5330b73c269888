#include "text/find/find_session.h"

#include "text/storage/text_position.h"

#include <algorithm>
#include <variant>

namespace kelm {

namespace {

/// How much of a text is searched in one turn of the event loop, in UTF-16 units.
constexpr qsizetype unitsPerStep = 1 << 20;
/// How much of a line is kept with a described match, on each side of it.
constexpr qsizetype describedContext = 200;

} // namespace

FindSession::FindSession(TextStorage& storage, SearchEngine& engine, QObject* parent)
    : QObject(parent), storage_(storage), engine_(engine)
{
    stepTimer_.setInterval(0);
    connect(&stepTimer_, &QTimer::timeout, this, &FindSession::step);
    connect(&storage_, &TextStorage::edited, this, [this](const TextEdit& edit) {
        if (isRunning_) {
            origin_ = edit.moved(currentMatch() ? currentMatch()->location : origin_, false);
            restartScan();
        }
    });
}

void FindSession::start(qsizetype origin)
{
    isRunning_ = true;
    origin_ = origin;
    error_.reset();
    FindQuery query;
    auto compiled =
        FindQuery::compile(engine_.searchText(), {engine_.caseSensitive(), engine_.wholeWord(), engine_.useRegex()});
    if (auto* error = std::get_if<FindError>(&compiled)) {
        error_ = *error;
    } else {
        query = std::get<FindQuery>(compiled);
    }
    scan_ = FindScan(query);
    restartScan();
}

void FindSession::stop()
{
    isRunning_ = false;
    stepTimer_.stop();
    scan_ = FindScan();
    flatText_ = QString();
    flatRevision_.reset();
    error_.reset();
    current_.reset();
    engine_.setResults({});
    engine_.setCurrentMatchIndex(0);
    Q_EMIT changed();
}

std::optional<TextRange> FindSession::currentMatch() const
{
    if (!current_ || *current_ >= matchCount()) {
        return {};
    }
    return scan_.matches()[static_cast<std::size_t>(*current_)];
}

std::vector<TextRange> FindSession::matchesIn(TextRange range) const
{
    const std::vector<TextRange>& all = scan_.matches();
    const auto first =
        std::partition_point(all.begin(), all.end(), [range](TextRange match) { return match.end() < range.location; });
    const auto last =
        std::partition_point(first, all.end(), [range](TextRange match) { return match.location <= range.end(); });
    return {first, last};
}

QString FindSession::statusText() const
{
    if (error_) {
        return error_->message;
    }
    if (scan_.query().isEmpty()) {
        return {};
    }
    const bool isDone = scan_.state() == FindScan::State::complete;
    if (scan_.state() == FindScan::State::gaveUp) {
        return tr("Stopped: this pattern takes too long here");
    }
    if (matchCount() == 0) {
        return isDone ? tr("No results") : tr("Searching…");
    }
    QString total = QString::number(matchCount());
    if (scan_.state() == FindScan::State::tooMany) {
        total += u'+';
    } else if (!isDone) {
        total += u'…';
    }
    return current_ ? tr("%1 of %2").arg(QString::number(*current_ + 1), total) : total;
}

std::optional<TextRange> FindSession::stepForward(qsizetype from)
{
    setCurrent(scan_.nextFrom(flatText(), from));
    noteMatches();
    return currentMatch();
}

std::optional<TextRange> FindSession::stepBackward(qsizetype from)
{
    setCurrent(scan_.previousFrom(flatText(), from));
    noteMatches();
    return currentMatch();
}

std::optional<QString> FindSession::replacementForCurrent() const
{
    const std::optional<TextRange> match = currentMatch();
    return match ? scan_.query().replacementFor(flatText(), *match, engine_.replaceText()) : std::nullopt;
}

ReplaceAllResult FindSession::replaceAll() const
{
    return scan_.query().replaceAll(flatText(), engine_.replaceText());
}

const QString& FindSession::flatText() const
{
    if (flatRevision_ != storage_.revision()) {
        flatText_ = storage_.text();
        flatRevision_ = storage_.revision();
    }
    return flatText_;
}

void FindSession::restartScan()
{
    scan_ = FindScan(scan_.query());
    current_.reset();
    engine_.setResults({});
    if (scan_.query().isEmpty()) {
        stepTimer_.stop();
        Q_EMIT changed();
        return;
    }
    stepTimer_.start();
    step();
}

void FindSession::step()
{
    if (storage_.length() - scan_.searchedTo() <= unitsPerStep) {
        scan_.finish(flatText());
    } else {
        scan_.advance(flatText(), unitsPerStep);
    }
    const bool isSearching = scan_.state() == FindScan::State::searching;
    if (!isSearching) {
        stepTimer_.stop();
    }
    if (!current_ && matchCount() > 0 && (!isSearching || scan_.searchedTo() > origin_)) {
        setCurrent(scan_.nextFrom(flatText(), origin_));
    }
    noteMatches();
}

void FindSession::noteMatches()
{
    QList<SearchMatch> results = engine_.results();
    const qsizetype described = std::min(matchCount(), describedMatches);
    if (results.size() < described) {
        for (qsizetype index = results.size(); index < described; ++index) {
            const TextRange match = scan_.matches()[static_cast<std::size_t>(index)];
            const LineAndColumn place = lineAndColumnAt(storage_.tree(), match.location);
            const TextRange line = storage_.lineRange({match.location, 0});
            const TextRange near =
                line.intersected({match.location - describedContext, match.length + 2 * describedContext});
            results.append({QUuid::createUuid(), match, place.line, place.column, storage_.substring(near),
                            storage_.substring(match)});
        }
        engine_.setResults(results);
    }
    Q_EMIT changed();
}

void FindSession::setCurrent(std::optional<qsizetype> index)
{
    current_ = index;
    engine_.setCurrentMatchIndex(index.value_or(0));
}

} // namespace kelm
