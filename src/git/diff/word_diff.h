// Which words of a line changed.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>

namespace word_diff_test { // NOLINT(readability-identifier-naming): as tests name theirs
class WordDiffTest;
}

namespace kelm {

/// Compares one removed line with one added line. Pure functions, from any thread.
///
/// A line is cut into runs of word characters (letters, numbers, the underscore) and runs of all others. The runs that
/// stay are those of a longest common subsequence; equal means equal under Unicode canonical equivalence.
class WordDiff
{
public:
    WordDiff() = delete;

    enum class SegmentKind { same, removed, added };

    /// One run of a line. Neighbours of one kind stay apart.
    struct Segment
    {
        SegmentKind kind = SegmentKind::same;
        QString text;

        bool operator==(const Segment&) const = default;
    };

    /// The old line as `same` and `removed` segments, the new one as `same` and `added` ones; joined, each gives its
    /// line back exactly.
    struct Result
    {
        QList<Segment> oldSegments;
        QList<Segment> newSegments;

        bool operator==(const Result&) const = default;
    };

    /// Time grows with the product of the two numbers of tokens, divided by the width of a machine word; memory with
    /// their sum, and beside it with that times the root of one of them over that width, up to about 256 MiB.
    static Result diff(const QString& oldLine, const QString& newLine);
    /// The same; soon after `stop` is set it ends early, with nothing that means anything.
    static Result diff(const QString& oldLine, const QString& newLine, const std::atomic<bool>& stop);

private:
    friend class word_diff_test::WordDiffTest;

    static QStringList tokenize(const QString& text);
    /// Of several longest ones the one that the walk back through the full table finds, which steps back in `a` on a
    /// tie.
    static QStringList longestCommonSubsequence(const QStringList& a, const QStringList& b);
};

} // namespace kelm
