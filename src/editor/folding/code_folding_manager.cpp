#include "editor/folding/code_folding_manager.h"

#include "text/storage/text_storage.h"

#include <algorithm>
#include <utility>

namespace kelm {

namespace {

/// How much of a text is read in one go on the main thread; some two milliseconds.
constexpr qsizetype mostUnitsAtOnce = 1 << 20;
/// A line is read whole, so that a very long one takes too long there.
constexpr qsizetype longestChunkAtOnce = mostUnitsAtOnce / 4;

} // namespace

const QString CodeFoldingManager::foldPlaceholder = QStringLiteral(" \u2026 ");

CodeFoldingManager::CodeFoldingManager(NotificationCenter& center) : center_(center) {}

CodeFoldingManager::~CodeFoldingManager()
{
    setStorage(nullptr);
}

void CodeFoldingManager::setStorage(TextStorage* storage)
{
    if (storage == storage_) {
        return;
    }
    for (const QMetaObject::Connection& connection : {edits_, replacements_, resets_}) {
        QObject::disconnect(connection);
    }
    task_.stop();
    journal_.clear();
    openFoldsRevision_.reset();
    ownRevision_ = 0;
    storage_ = storage;
    if (storage == nullptr) {
        return;
    }
    // The list of the text before stays until the next detection, which reads all of this one.
    needsReset_ = true;
    edits_ =
        QObject::connect(storage, &TextStorage::edited, storage, [this](const TextEdit& edit) { textEdited(edit); });
    replacements_ = QObject::connect(
        storage, &TextStorage::willReplace, storage,
        [this](TextRange range, const TextTree& replacement) { willReplace(range, replacement.length()); });
    resets_ = QObject::connect(storage, &TextStorage::willReset, storage, [this] {
        task_.stop();
        needsReset_ = true;
    });
}

void CodeFoldingManager::willReplace(TextRange range, qsizetype newLength)
{
    regions_.textReplaced(range, newLength);
    if (task_.isRunning()) {
        since_.emplace_back(range, newLength);
    }
}

void CodeFoldingManager::detectFoldableRegions(Language language)
{
    if (!storage_) {
        return;
    }
    if (std::exchange(needsReset_, false) || language.folding() != regions_.kind()) {
        task_.stop();
        regions_ = FoldableRegions(language.folding());
        regions_.reset(storage_->length());
    }
    settle();
}

void CodeFoldingManager::settle()
{
    if (task_.isRunning()) {
        // It goes on with what is new when it is done.
        return;
    }
    regions_.settle(storage_->tree(), mostUnitsAtOnce, nullptr, longestChunkAtOnce);
    if (regions_.isSettled()) {
        return;
    }
    since_.clear();
    task_.start([this, regions = regions_, text = storage_->snapshot()](const BackgroundTask::StopFlag& stop) mutable {
        regions.settle(text, FoldableRegions::unlimited, &stop);
        return [this, regions = std::move(regions)]() mutable {
            if (!storage_) {
                return;
            }
            for (const auto& [range, newLength] : since_) {
                regions.textReplaced(range, newLength);
            }
            regions_ = std::move(regions);
            settle();
            if (onRegionsFound) {
                onRegionsFound();
            }
        };
    });
}

const std::map<qsizetype, FoldJournal::OpenFold>& CodeFoldingManager::openFolds() const
{
    if (openFoldsRevision_ != storage_->revision()) {
        openFoldsRevision_ = storage_->revision();
        openFolds_.clear();
        for (FoldJournal::OpenFold& fold : journal_.openFolds()) {
            openFolds_[storage_->lines().lineAt(fold.placeholder.location)] = std::move(fold);
        }
    }
    return openFolds_;
}

std::optional<CodeFoldingManager::Mark> CodeFoldingManager::markAt(qsizetype line) const
{
    if (storage_ && isTextFolded()) {
        if (const auto fold = openFolds().find(line); fold != openFolds().end()) {
            return Mark{foldedRegions_.at(fold->second.startLine), true};
        }
    }
    const auto region = firstRegionStartingAt(line);
    return region ? std::optional(Mark{*region, false}) : std::nullopt;
}

void CodeFoldingManager::toggle(qsizetype line)
{
    const auto mark = markAt(line);
    if (!mark) {
        return;
    }
    if (mark->isFolded) {
        unfold(FoldJournal::OpenFold(openFolds().at(line)));
    } else {
        fold(mark->region);
    }
}

void CodeFoldingManager::unfold(const FoldJournal::OpenFold& fold)
{
    const FoldableRegion region = foldedRegions_.at(fold.startLine);
    journal_.takenBack(fold.startLine);
    replace(fold.placeholder, fold.body);
    forgetFold(region);
    tellIfUnfolded();
    postChange();
}

void CodeFoldingManager::fold(FoldableRegion region)
{
    if (!storage_ || isFolded(region)) {
        return;
    }
    const auto range = rangeForRegion(region);
    if (!range) {
        return;
    }
    const TextTree body = storage_->tree().part(*range);
    if (!isTextFolded() && onTextFolds) {
        onTextFolds();
    }
    foldedContent_[region.startLine] = body;
    journal_.folded(region.startLine, {range->location, foldPlaceholder.size()}, body);
    replace(*range, TextTree(foldPlaceholder));
    foldedRegionStartLines_.insert(region.startLine);
    foldedLines_.insert(region.startLine + 1, region.endLine);
    foldedRegions_[region.startLine] = region;
    postChange();
}

void CodeFoldingManager::unfold(FoldableRegion region)
{
    const auto content = foldedContent_.find(region.startLine);
    if (!storage_ || !isFolded(region) || content == foldedContent_.end()) {
        return;
    }
    // How far behind the line the placeholder may begin.
    constexpr qsizetype reach = 10;
    const auto start = offsetBehindLine(region.startLine);
    if (!start) {
        return;
    }
    const QString searched = storage_->substring({*start, foldPlaceholder.size() + reach});
    const qsizetype found = searched.indexOf(foldPlaceholder);
    if (found < 0) {
        return;
    }
    const TextRange placeholder{*start + found, foldPlaceholder.size()};
    const TextTree body = content->second;
    journal_.unfolded(region.startLine, placeholder, TextTree(foldPlaceholder), body.length());
    replace(placeholder, body);
    forgetFold(region);
    tellIfUnfolded();
    postChange();
}

void CodeFoldingManager::forgetFold(const FoldableRegion& region)
{
    foldedRegionStartLines_.erase(region.startLine);
    foldedContent_.erase(region.startLine);
    foldedRegions_.erase(region.startLine);
    foldedLines_.remove(region.startLine + 1, region.endLine);
}

TextTree CodeFoldingManager::unfoldedText() const
{
    return storage_ ? journal_.takenBackIn(storage_->snapshot()) : TextTree();
}

void CodeFoldingManager::unfoldAll()
{
    if (!storage_) {
        return;
    }
    const bool wasFolded = isTextFolded();
    const bool hadFolds = wasFolded || !foldedRegionStartLines_.empty();
    while (const auto last = journal_.takeLast()) {
        replace({last->location, last->length}, last->original);
    }
    foldedRegionStartLines_.clear();
    foldedContent_.clear();
    foldedRegions_.clear();
    foldedLines_.clear();
    if (wasFolded) {
        tellIfUnfolded();
    }
    if (hadFolds) {
        postChange();
    }
}

std::vector<TextRange> CodeFoldingManager::placeholders() const
{
    std::vector<TextRange> places;
    if (storage_ && isTextFolded()) {
        for (const auto& [line, fold] : openFolds()) {
            places.push_back(fold.placeholder);
        }
    }
    return places;
}

bool CodeFoldingManager::reveal(TextRange whole)
{
    const auto hides = [&](const auto& entry) {
        const TextRange hidden = journal_.wholeRange(entry.second.placeholder);
        return whole.location < hidden.end() && whole.end() > hidden.location;
    };
    bool hasRevealed = false;
    while (storage_ && isTextFolded()) {
        const auto fold = std::find_if(openFolds().begin(), openFolds().end(), hides);
        if (fold == openFolds().end()) {
            break;
        }
        // What it hid may lie in a fold in turn.
        unfold(FoldJournal::OpenFold(fold->second));
        hasRevealed = true;
    }
    return hasRevealed;
}

std::optional<TextRange> CodeFoldingManager::rangeForRegion(const FoldableRegion& region) const
{
    if (region.startLine < 1 || region.endLine <= region.startLine || region.endLine - region.startLine < 2) {
        return {};
    }
    const auto start = offsetBehindLine(region.startLine);
    if (!start) {
        return {};
    }
    const qsizetype end = offsetBehindLine(region.endLine - 1).value_or(storage_->length());
    return end > *start ? std::optional(TextRange::between(*start, end)) : std::nullopt;
}

std::optional<qsizetype> CodeFoldingManager::offsetBehindLine(qsizetype line) const
{
    const LineIndex& lines = storage_->lines();
    return line >= 1 && line <= lines.lineCount() ? std::optional(lines.end(line - 1)) : std::nullopt;
}

void CodeFoldingManager::replace(TextRange range, const TextTree& text)
{
    // Known before the storage tells of the edit: each edit is one revision.
    ownRevision_ = storage_->revision() + 1;
    storage_->replace(range, text);
}

void CodeFoldingManager::textEdited(const TextEdit& edit)
{
    if (storage_->revision() != ownRevision_) {
        const bool wasFolded = isTextFolded();
        journal_.textEdited(edit);
        if (wasFolded && onFoldedTextEdited) {
            onFoldedTextEdited();
        }
    }
}

void CodeFoldingManager::tellIfUnfolded() const
{
    if (!isTextFolded() && onTextUnfolded) {
        onTextUnfolded();
    }
}

void CodeFoldingManager::postChange()
{
    center_.post(notifications::codeFoldingChanged);
}

} // namespace kelm
