#include "editor/folding/code_folding_manager.h"

#include "editor/folding/fold_scans.h"
#include "text/storage/text_storage.h"

#include <algorithm>
#include <utility>

namespace kelm {

const QString CodeFoldingManager::foldPlaceholder = QStringLiteral(" \u2026 ");

CodeFoldingManager::CodeFoldingManager(NotificationCenter& center) : center_(center) {}

CodeFoldingManager::~CodeFoldingManager()
{
    QObject::disconnect(edits_);
}

void CodeFoldingManager::setStorage(TextStorage* storage)
{
    if (storage == storage_) {
        return;
    }
    QObject::disconnect(edits_);
    journal_.clear();
    ownRevision_ = 0;
    storage_ = storage;
    if (storage != nullptr) {
        edits_ = QObject::connect(storage, &TextStorage::edited, storage,
                                  [this](const TextEdit& edit) { textEdited(edit); });
    }
}

const FoldableRegion* CodeFoldingManager::firstRegionStartingAt(qsizetype line) const
{
    const auto region =
        std::lower_bound(foldableRegions_.begin(), foldableRegions_.end(), line,
                         [](const FoldableRegion& r, qsizetype wanted) { return r.startLine < wanted; });
    return region != foldableRegions_.end() && region->startLine == line ? &*region : nullptr;
}

void CodeFoldingManager::detectFoldableRegions(Language language)
{
    if (!storage_) {
        return;
    }
    switch (language.folding()) {
    case CodeFolding::tags:
        foldableRegions_ = scanTags(storage_->text());
        break;
    case CodeFolding::indents:
        foldableRegions_ = scanIndents(storage_->text());
        break;
    case CodeFolding::braces:
        foldableRegions_ = scanBraces(storage_->text());
        break;
    }
    std::stable_sort(foldableRegions_.begin(), foldableRegions_.end(),
                     [](const FoldableRegion& a, const FoldableRegion& b) { return a.startLine < b.startLine; });
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
    foldedContent_[region.startLine] = body;
    journal_.folded(region.startLine, {range->location, foldPlaceholder.size()}, body);
    replace(*range, TextTree(foldPlaceholder));
    foldedRegionStartLines_.insert(region.startLine);
    foldedLines_.insert(region.startLine + 1, region.endLine);
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
    foldedRegionStartLines_.erase(region.startLine);
    foldedContent_.erase(region.startLine);
    foldedLines_.remove(region.startLine + 1, region.endLine);
    postChange();
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
    const bool hadFolds = isTextFolded() || !foldedRegionStartLines_.empty();
    while (const auto last = journal_.takeLast()) {
        replace({last->location, last->length}, last->original);
    }
    foldedRegionStartLines_.clear();
    foldedContent_.clear();
    foldedLines_.clear();
    if (hadFolds) {
        postChange();
    }
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
        journal_.textEdited(edit);
    }
}

void CodeFoldingManager::postChange()
{
    center_.post(notifications::codeFoldingChanged);
}

} // namespace kelm
