#include "text/find/find_session.h"

#include "text/find/near_matches.h"
#include "text/storage/text_position.h"

#include <QPointer>

#include <algorithm>
#include <utility>
#include <variant>

namespace kelm {

namespace {

/// How much of a text is searched at once, in UTF-16 units: a millisecond or two, however many matches there are.
constexpr qsizetype unitsAtOnce = 1 << 18;
/// The same for a pattern, in places at which it is tried for.
constexpr qsizetype placesAtOnce = 10'000;
/// How long a text all whose matches are replaced at once may be.
constexpr qsizetype unitsReplacedAtOnce = 1 << 20;
/// How many matches of a pattern on screen are looked for.
constexpr std::size_t mostShown = 10'000;
/// For how long nothing is typed before a long text is searched for a pattern again, in milliseconds.
constexpr int rest = 100;

/// A line of the text, from 1, without its end.
QString textOfLine(const TextTree& text, qsizetype line)
{
    const qsizetype start = text.behindLineFeeds(line - 1);
    if (line > text.lineFeeds()) {
        return text.substring({start, text.length() - start});
    }
    const qsizetype lineFeed = text.behindLineFeeds(line) - 1;
    const bool hasReturn = lineFeed > start && text.at(lineFeed - 1) == u'\r';
    return text.substring(TextRange::between(start, lineFeed - (hasReturn ? 1 : 0)));
}

} // namespace

FindSession::FindSession(TextStorage& storage, SearchEngine& engine, QObject* parent) : QObject(parent), engine_(engine)
{
    restTimer_.setSingleShot(true);
    restTimer_.setInterval(rest);
    connect(&restTimer_, &QTimer::timeout, this, &FindSession::startRun);
    searchIn(storage);
}

void FindSession::searchIn(TextStorage& storage)
{
    disconnect(edits_);
    storage_ = &storage;
    edits_ = connect(storage_, &TextStorage::edited, this, &FindSession::textEdited);
}

void FindSession::start(qsizetype origin)
{
    stopTasks();
    isRunning_ = true;
    origin_ = origin;
    error_.reset();
    current_.reset();
    isChosen_ = false;
    pendingStep_.reset();
    FindQuery query;
    auto compiled =
        FindQuery::compile(engine_.searchText(), {engine_.caseSensitive(), engine_.wholeWord(), engine_.useRegex()});
    if (auto* error = std::get_if<FindError>(&compiled)) {
        error_ = *error;
    } else {
        query = std::get<FindQuery>(compiled);
    }
    scan_ = FindScan(query);
    search();
    if (scan_.state() == FindScan::State::searching) {
        startRun();
    }
}

void FindSession::stop()
{
    stopTasks();
    isRunning_ = false;
    scan_ = FindScan();
    error_.reset();
    current_.reset();
    isChosen_ = false;
    pendingStep_.reset();
    engine_.setResults({});
    engine_.setCurrentMatchIndex(0);
    Q_EMIT changed();
}

void FindSession::stopTasks()
{
    restTimer_.stop();
    runTask_.stop();
    shownTask_.stop();
    replaceTask_.stop();
    searchedShown_.reset();
}

void FindSession::textEdited(const TextEdit& edit)
{
    if (!isRunning_) {
        return;
    }
    stopTasks();
    origin_ = edit.moved(current_ ? current_->location : origin_, false);
    current_.reset();
    isChosen_ = false;
    scan_.edited(storage_->tree(), edit);
    const bool wasStepping = std::exchange(pendingStep_, {}).has_value();
    search();
    if (scan_.state() == FindScan::State::searching) {
        // A plain text goes on where it stood; a pattern begins anew, which is not for each key.
        scan_.query().isPattern() ? restTimer_.start() : startRun();
    }
    if (wasStepping) {
        Q_EMIT stepEnded({});
    }
}

void FindSession::search()
{
    if (!scan_.query().isPattern()) {
        scan_.advance(storage_->tree(), unitsAtOnce);
    } else if (storage_->length() <= unitsAtOnce) {
        scan_.tryPattern(storage_->tree(), placesAtOnce);
    }
    chooseCurrent();
    publish();
    searchShown();
}

void FindSession::startRun()
{
    continueRun(std::make_shared<FindRun>(scan_.query(), storage_->snapshot(), scan_.searchedTo()));
}

void FindSession::continueRun(const std::shared_ptr<FindRun>& run)
{
    runTask_.start([this, run](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        return [this, run, portion = run->next(stop)] {
            scan_.take(portion);
            if (scan_.state() == FindScan::State::searching) {
                continueRun(run);
            }
            matchesCame();
        };
    });
}

void FindSession::setShown(TextRange shown)
{
    shown_ = shown;
    searchShown();
}

void FindSession::searchShown()
{
    const bool isKnown = scan_.state() != FindScan::State::searching || shown_.end() < scan_.searchedTo();
    if (!isRunning_ || isKnown || !scan_.query().isPattern() || searchedShown_ == shown_) {
        return;
    }
    searchedShown_ = shown_;
    const TextRange range = TextRange::between(storage_->lineRange({shown_.location, 0}).location, shown_.end() + 1);
    shownTask_.start([this, range, query = scan_.query(),
                      text = storage_->snapshot()](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        const auto search = query.patternSearch(text, range.location);
        search->setInterruption([&](int, qsizetype reached) { return stop || reached > range.end(); });
        std::vector<TextRange> matches;
        while (const RegularExpressionMatch* match = search->next()) {
            if (match->location() >= range.end() || matches.size() >= mostShown) {
                break;
            }
            matches.push_back({match->location(), match->length()});
        }
        return [this, range, matches = std::move(matches)] {
            scan_.presume(range, matches);
            matchesCame();
        };
    });
}

void FindSession::matchesCame()
{
    if (const auto ended = pendingStep_ ? known(*pendingStep_) : std::nullopt) {
        pendingStep_.reset();
        current_ = *ended;
        isChosen_ = true;
        publish();
        Q_EMIT stepEnded(current_);
        return;
    }
    chooseCurrent();
    publish();
}

void FindSession::chooseCurrent()
{
    if (isChosen_) {
        return;
    }
    if (const auto match = known({true, origin_})) {
        current_ = *match;
        isChosen_ = true;
        return;
    }
    // What is presumed may be another one once all is known.
    const qsizetype presumed = scan_.matches().firstFrom(origin_);
    current_ = presumed < matchCount() ? std::optional(scan_.matches().at(presumed)) : std::nullopt;
}

std::optional<std::optional<TextRange>> FindSession::known(Step step)
{
    const TextTree& text = storage_->tree();
    if (step.isForward ? scan_.knowsNextFrom(step.from) : scan_.knowsPreviousFrom(step.from)) {
        const auto index = step.isForward ? scan_.nextFrom(text, step.from) : scan_.previousFrom(text, step.from);
        return index ? std::optional(scan_.matches().at(*index)) : std::nullopt;
    }
    if (const LiteralSearch* const wanted = scan_.query().literal()) {
        const auto near = step.isForward ? nextNear(*wanted, text, step.from) : previousNear(*wanted, text, step.from);
        if (near) {
            return near;
        }
    }
    return {};
}

std::optional<TextRange> FindSession::take(Step step)
{
    const auto match = known(step);
    if (match) {
        pendingStep_.reset();
        current_ = *match;
        isChosen_ = true;
    } else {
        pendingStep_ = step;
        if (!runTask_.isRunning()) {
            restTimer_.stop();
            startRun();
        }
    }
    publish();
    return match.value_or(std::nullopt);
}

std::optional<TextRange> FindSession::stepForward(qsizetype from)
{
    return take({true, from});
}

std::optional<TextRange> FindSession::stepBackward(qsizetype from)
{
    return take({false, from});
}

std::optional<qsizetype> FindSession::currentIndex() const
{
    return current_ ? scan_.indexOf(*current_) : std::nullopt;
}

std::vector<TextRange> FindSession::matchesIn(TextRange range) const
{
    return scan_.matchesIn(storage_->tree(), range);
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
    const std::optional<qsizetype> index = currentIndex();
    return index ? tr("%1 of %2").arg(QString::number(*index + 1), total) : total;
}

std::optional<QString> FindSession::replacementForCurrent() const
{
    return current_ ? scan_.query().replacementFor(storage_->tree(), *current_, engine_.replaceText()) : std::nullopt;
}

std::optional<ReplaceAllResult> FindSession::replaceAll()
{
    if (storage_->length() <= unitsReplacedAtOnce) {
        return scan_.query().replaceAll(storage_->tree(), engine_.replaceText());
    }
    replaceTask_.start([this, query = scan_.query(), text = storage_->snapshot(), replacement = engine_.replaceText()](
                           const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        return [this, result = query.replaceAll(text, replacement, FindQuery::longestReplacement, &stop)] {
            Q_EMIT replacedAll(result);
        };
    });
    return {};
}

void FindSession::publish()
{
    engine_.offerResults(
        [session = QPointer<const FindSession>(this)] { return session ? session->describe() : QList<SearchMatch>(); });
    engine_.setCurrentMatchIndex(currentIndex().value_or(0));
    Q_EMIT changed();
}

QList<SearchMatch> FindSession::describe() const
{
    const TextTree& text = storage_->tree();
    QList<SearchMatch> described;
    described.reserve(matchCount());
    // The matches of a line share its text.
    qsizetype line = 0;
    QString lineText;
    for (const TextRange match : scan_.matches().between(0, matchCount())) {
        const LineAndColumn place = lineAndColumnAt(text, match.location);
        if (std::exchange(line, place.line) != place.line) {
            lineText = textOfLine(text, line);
        }
        described.append({QUuid::createUuid(), match, place.line, place.column, lineText, text.substring(match)});
    }
    return described;
}

} // namespace kelm
