// Word diffs of the lines that are looked at.
#pragma once

#include "git/diff/diff.h"
#include "git/diff/word_diff.h"
#include "platform/events/background_task.h"

#include <QHash>

#include <functional>
#include <memory>
#include <vector>

namespace kelm {

/// A stretch of a line, in UTF-16 units.
struct LineStretch
{
    qsizetype start = 0;
    qsizetype length = 0;

    bool operator==(const LineStretch&) const = default;
};

/// What changed in two lines that are compared, in order and with neighbours in one piece.
struct ChangedWords
{
    std::vector<LineStretch> oldLine;
    std::vector<LineStretch> newLine;

    bool operator==(const ChangedWords&) const = default;

    static ChangedWords of(const WordDiff::Result& result);
};

/// Compares pairs of lines when they are asked for, and keeps what came out. A pair of long lines, which may take
/// seconds, is compared by a background worker, one at a time, and told later; it ends early when nobody wants it any
/// more. Main thread only.
class WordDiffCache
{
public:
    /// Two lines that together are longer than this, in UTF-16 units, are not compared at once.
    static constexpr qsizetype longestAtOnce = 2000;

    /// `onReady` is called on the main thread when pairs that were not compared at once have been.
    explicit WordDiffCache(std::function<void()> onReady);

    /// What changed between two lines of a hunk, by their indices; null while that is not known. Valid until the next
    /// call.
    const ChangedWords* words(const DiffHunk& hunk, qsizetype oldLine, qsizetype newLine);
    /// Forgets everything; what has not been compared by now never will.
    void clear();
    /// The number of pairs that have been asked for.
    qsizetype size() const { return words_.size(); }

private:
    struct Key
    {
        QUuid hunk;
        qsizetype oldLine = 0;
        qsizetype newLine = 0;

        bool operator==(const Key&) const = default;
        friend size_t qHash(const Key& key, size_t seed) noexcept
        {
            return qHashMulti(seed, key.hunk, key.oldLine, key.newLine);
        }
    };
    struct Pair
    {
        Key key;
        QString oldText;
        QString newText;
    };

    void compareNext();
    void take(const Key& key, const std::shared_ptr<const ChangedWords>& words);

    std::function<void()> onReady_;
    /// Null where the comparison is still to come.
    QHash<Key, std::shared_ptr<const ChangedWords>> words_;
    std::vector<Pair> waiting_;
    BackgroundTask comparing_;
};

} // namespace kelm
