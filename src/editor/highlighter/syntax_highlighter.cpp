#include "editor/highlighter/syntax_highlighter.h"

#include <algorithm>

namespace kelm {

namespace {

/// How many units all rules together may look at in one go on the main thread; some two milliseconds.
constexpr qsizetype mostUnitsAtOnce = 1 << 20;
/// How much around what is asked for is coloured with it: the next line will be asked for too.
constexpr qsizetype givenAround = 2048;
/// Ranges up to this length are compared with their colours before, so that nothing is painted that did not change.
constexpr qsizetype mostCompared = 1 << 16;
/// How many coloured units are kept. More come together only when a long text is scrolled through.
constexpr qsizetype mostGiven = 1 << 21;

/// A colour of a theme as text is drawn in it. A theme may have one that is clear, and two of these stand for something
/// else.
QRgb drawnColor(const CodableColor& color)
{
    const QRgb drawn = color.toColor().rgba();
    return drawn == ColorRuns::pending || drawn == ColorRuns::unshown ? qRgba(255, 255, 255, 0) : drawn;
}

std::vector<QRgb> colorsOf(Language language, const EditorTheme& theme)
{
    std::vector<QRgb> colors{drawnColor(theme.textColor)};
    for (const RuleEntry& rule : rules::of(language)) {
        colors.push_back(drawnColor(theme.*rule.color));
    }
    return colors;
}

TextRange extended(TextRange range, qsizetype by, qsizetype length)
{
    return TextRange{range.location - by, range.length + 2 * by}.clampedTo(length);
}

/// The runs as far as they lie in a range.
std::vector<ColorRun> cutTo(TextRange range, const std::vector<ColorRun>& runs)
{
    std::vector<ColorRun> cut;
    for (const ColorRun& run : runs) {
        if (const TextRange part = run.range.intersected(range); !part.isEmpty()) {
            cut.push_back({part, run.color});
        }
    }
    return cut;
}

/// From the first unit at which two lists of runs over the same range differ to the last one.
TextRange difference(TextRange range, const std::vector<ColorRun>& before, const std::vector<ColorRun>& after)
{
    const auto [oldHead, newHead] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    if (oldHead == before.end() && newHead == after.end()) {
        return {range.location, 0};
    }
    const auto [oldTail, newTail] =
        std::mismatch(before.rbegin(), std::reverse_iterator(oldHead), after.rbegin(), std::reverse_iterator(newHead));
    const qsizetype start = std::min(oldHead == before.end() ? range.end() : oldHead->range.location,
                                     newHead == after.end() ? range.end() : newHead->range.location);
    const qsizetype end = std::max(oldTail == before.rend() ? range.location : oldTail->range.end(),
                                   newTail == after.rend() ? range.location : newTail->range.end());
    return TextRange::between(start, std::max(start, end));
}

} // namespace

SyntaxHighlighter::~SyntaxHighlighter()
{
    detach();
}

void SyntaxHighlighter::highlight(TextStorage* textStorage, Language language)
{
    if (!textStorage) {
        return;
    }
    const EditingBracket bracket(*textStorage);
    if (textStorage != storage_) {
        attach(*textStorage);
    }
    const bool isOtherLanguage = language_ != language || !tracks_;
    if (isOtherLanguage) {
        task_.stop();
        since_.clear();
        language_ = language;
        guessed_.clear();
        tracks_.emplace(rules::of(language));
        tracks_->reset(storage_->length());
    }
    std::vector<QRgb> colors = colorsOf(language, theme);
    if (isOtherLanguage || colors != colors_) {
        colors_ = std::move(colors);
        givenUnits_ = 0;
        hasTakenBack_ = false;
        storage_->forgetForeground({0, storage_->length()});
    }
    settle();
}

void SyntaxHighlighter::attach(TextStorage& storage)
{
    detach();
    storage_ = &storage;
    tracks_.reset();
    storage.setColorSource(this);
    replacements_ = QObject::connect(
        &storage, &TextStorage::willReplace, &storage,
        [this](TextRange range, const TextTree& replacement) { textReplaced(range, replacement.length()); });
    resets_ = QObject::connect(&storage, &TextStorage::willReset, &storage, [this] {
        // The new text is told of when it is coloured.
        task_.stop();
        guessed_.clear();
        tracks_.reset();
    });
}

void SyntaxHighlighter::detach()
{
    QObject::disconnect(replacements_);
    QObject::disconnect(resets_);
    if (storage_) {
        storage_->setColorSource(nullptr);
    }
}

void SyntaxHighlighter::textReplaced(TextRange range, qsizetype newLength)
{
    if (tracks_) {
        tracks_->textReplaced(range, newLength);
    }
    if (!guessed_.isEmpty()) {
        guessed_.textReplaced(range, newLength);
    }
    if (task_.isRunning()) {
        since_.push_back({range, newLength});
    }
}

void SyntaxHighlighter::settle()
{
    if (task_.isRunning()) {
        // It goes on with what is new when it is done.
        return;
    }
    refreshColors(tracks_->settle(storage_->tree(), mostUnitsAtOnce));
    if (tracks_->isSettled()) {
        refreshGuessed();
        return;
    }
    since_.clear();
    task_.start([this, tracks = *tracks_, text = storage_->snapshot()](const BackgroundTask::StopFlag& stop) mutable {
        std::vector<TextRange> changed = tracks.settle(text, RuleTracks::unlimited, &stop);
        return [this, tracks = std::move(tracks), changed = std::move(changed)]() mutable {
            if (storage_) {
                takeSettled(std::move(tracks), std::move(changed));
            }
        };
    });
}

void SyntaxHighlighter::takeSettled(RuleTracks tracks, std::vector<TextRange> changed)
{
    for (const Told& told : since_) {
        TextEdit edit;
        edit.range = told.range;
        edit.newLength = told.newLength;
        tracks.textReplaced(told.range, told.newLength);
        for (TextRange& range : changed) {
            const qsizetype start = edit.moved(range.location, false);
            range = TextRange::between(start, std::max(start, edit.moved(range.end())));
        }
    }
    since_.clear();
    tracks_ = std::move(tracks);
    const EditingBracket bracket(*storage_);
    refreshColors(changed);
    settle();
}

void SyntaxHighlighter::refreshColors(const std::vector<TextRange>& changed)
{
    const qsizetype length = storage_->length();
    const TextRange shown = shownRange_ ? extended(shownRange_(), givenAround, length) : TextRange();
    for (const TextRange& told : changed) {
        const TextRange range = told.clampedTo(length);
        if (range.length <= mostCompared) {
            refreshKnown(range);
            continue;
        }
        // Of a long range only what is on screen is worth a look; the rest is found when it comes into sight.
        const TextRange seen = range.intersected(shown);
        refreshKnown(seen);
        if (seen.isEmpty()) {
            storage_->forgetForeground(range);
        } else {
            storage_->forgetForeground(TextRange::between(range.location, seen.location));
            storage_->forgetForeground(TextRange::between(seen.end(), range.end()));
        }
    }
}

void SyntaxHighlighter::refreshGuessed()
{
    std::vector<TextRange> guessed;
    for (qsizetype i = 0; i < guessed_.size(); ++i) {
        guessed.push_back(guessed_.at(i));
    }
    guessed_.clear();
    refreshColors(guessed);
}

std::vector<ColorRun> SyntaxHighlighter::foundColors(TextRange range)
{
    if (!tracks_->isSettled()) {
        guessed_.add(range);
    }
    return tracks_->colorsIn(storage_->tree(), range, colors_);
}

void SyntaxHighlighter::refreshKnown(TextRange range)
{
    const std::vector<ColorRun> before = storage_->foreground().runsIn(range);
    const auto isKnown = [](const ColorRun& run) { return run.color != ColorRuns::pending; };
    if (hasTakenBack_) {
        // They may be on screen all the same, and whoever shows them asks again.
        for (const ColorRun& run : before) {
            if (!isKnown(run)) {
                storage_->forgetForeground(run.range);
            }
        }
    }
    if (std::none_of(before.begin(), before.end(), isKnown)) {
        return;
    }
    const std::vector<ColorRun> found = foundColors(range);
    // Stretches of which nothing is known stay so.
    for (auto run = before.begin(); run != before.end();) {
        const auto end = std::find_if_not(run, before.end(), isKnown);
        if (run != end) {
            const TextRange stretch = TextRange::between(run->range.location, std::prev(end)->range.end());
            const std::vector<ColorRun> after = cutTo(stretch, found);
            storage_->setForeground(cutTo(difference(stretch, {run, end}, after), after));
        }
        run = std::find_if(end, before.end(), isKnown);
    }
}

void SyntaxHighlighter::findColors(TextRange range)
{
    const qsizetype length = storage_->length();
    const TextRange wanted = extended(range, givenAround, length);
    if (!tracks_) {
        // A new text that nobody has had coloured yet is plain.
        storage_->giveForeground({{wanted, colors_.empty() ? drawnColor(theme.textColor) : colors_.front()}});
        return;
    }
    givenUnits_ += wanted.length;
    if (givenUnits_ > mostGiven) {
        givenUnits_ = wanted.length;
        hasTakenBack_ = true;
        const TextRange near = extended(wanted, mostGiven / 8, length);
        storage_->giveForeground({{{0, near.location}, ColorRuns::pending}});
        storage_->giveForeground({{TextRange::between(near.end(), length), ColorRuns::pending}});
    }
    const std::vector<ColorRun> found = foundColors(wanted);
    for (const ColorRun& run : storage_->foreground().runsIn(wanted)) {
        if (run.color == ColorRuns::pending) {
            storage_->giveForeground(cutTo(run.range, found));
        }
    }
}

} // namespace kelm
