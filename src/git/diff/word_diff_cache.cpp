#include "git/diff/word_diff_cache.h"

#include <utility>

namespace kelm {

namespace {

/// Far more than is ever on screen, and few enough to be let go of when somebody has scrolled through a long diff.
constexpr qsizetype mostPairsKept = 20'000;

std::vector<LineStretch> changedStretches(const QList<WordDiff::Segment>& segments)
{
    std::vector<LineStretch> stretches;
    qsizetype at = 0;
    bool isOpen = false;
    for (const WordDiff::Segment& segment : segments) {
        const bool isChanged = segment.kind != WordDiff::SegmentKind::same;
        if (isChanged && isOpen) {
            stretches.back().length += segment.text.size();
        } else if (isChanged) {
            stretches.push_back({at, segment.text.size()});
        }
        isOpen = isChanged;
        at += segment.text.size();
    }
    return stretches;
}

} // namespace

ChangedWords ChangedWords::of(const WordDiff::Result& result)
{
    return {changedStretches(result.oldSegments), changedStretches(result.newSegments)};
}

WordDiffCache::WordDiffCache(std::function<void()> onReady) : onReady_(std::move(onReady)) {}

const ChangedWords* WordDiffCache::words(const DiffHunk& hunk, qsizetype oldLine, qsizetype newLine)
{
    const Key key{hunk.id, oldLine, newLine};
    if (const auto known = words_.constFind(key); known != words_.cend()) {
        return known->get();
    }
    if (words_.size() >= mostPairsKept) {
        clear();
    }
    const QString oldText = hunk.lines[oldLine].text.toString();
    const QString newText = hunk.lines[newLine].text.toString();
    std::shared_ptr<const ChangedWords>& words = words_[key];
    if (oldText.size() + newText.size() <= longestAtOnce) {
        words = std::make_shared<const ChangedWords>(ChangedWords::of(WordDiff::diff(oldText, newText)));
    } else {
        waiting_.push_back({key, oldText, newText});
        compareNext();
    }
    return words.get();
}

void WordDiffCache::clear()
{
    words_.clear();
    waiting_.clear();
    comparing_.stop();
}

void WordDiffCache::compareNext()
{
    if (comparing_.isRunning() || waiting_.empty()) {
        return;
    }
    // What was asked for last is what is looked at now.
    Pair pair = std::move(waiting_.back());
    waiting_.pop_back();
    comparing_.start([this, pair = std::move(pair)](const BackgroundTask::StopFlag& stop) -> BackgroundTask::Delivery {
        const auto words =
            std::make_shared<const ChangedWords>(ChangedWords::of(WordDiff::diff(pair.oldText, pair.newText, stop)));
        return [this, key = pair.key, words] { take(key, words); };
    });
}

void WordDiffCache::take(const Key& key, const std::shared_ptr<const ChangedWords>& words)
{
    if (const auto asked = words_.find(key); asked != words_.end()) {
        *asked = words;
        onReady_();
    }
    compareNext();
}

} // namespace kelm
