// Folds the bodies of regions away and brings them back.
#pragma once

#include "app/language/language.h"
#include "editor/folding/fold_journal.h"
#include "editor/folding/foldable_region.h"
#include "editor/folding/line_set.h"
#include "platform/events/notification_center.h"
#include "text/storage/text_range.h"
#include "text/storage/text_storage.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace kelm {

/// Finds the foldable regions of a text and hides or restores their bodies: the body is cut out of the storage and a
/// short placeholder put in its place, and unfolding puts it back.
///
/// A fold is known by the line its region starts at, as the lines were numbered then, and only looks for its
/// placeholder right behind that line. When folds above have changed the numbers it may find none, and then stays as it
/// is, or that of another fold. `unfoldAll` knows better and gives the text exactly as it was before the first fold
/// that still stands; call it before anything edits the text or takes it for the document's.
///
/// Failures are silent: a storage that is gone, a region without a body, a placeholder that is no longer there change
/// nothing. Lines count from 1. Main thread only. Folds must not be made or undone within a bracket of other edits of
/// the storage.
class CodeFoldingManager
{
public:
    /// The centre outlives the manager.
    explicit CodeFoldingManager(NotificationCenter& center);
    ~CodeFoldingManager();
    CodeFoldingManager(const CodeFoldingManager&) = delete;
    CodeFoldingManager& operator=(const CodeFoldingManager&) = delete;

    /// The text that is folded, held weakly. Another one starts without anything to restore; the lists stay as they
    /// are.
    void setStorage(TextStorage* storage);
    TextStorage* storage() const { return storage_; }

    /// Sorted by the start line; of those on one line the one that closes first goes first.
    const std::vector<FoldableRegion>& foldableRegions() const { return foldableRegions_; }
    /// The first region that starts at `line`, or none. Valid until the next detection.
    const FoldableRegion* firstRegionStartingAt(qsizetype line) const;
    /// The lines hidden by folds, as they were numbered when they were hidden.
    const LineSet& foldedLines() const { return foldedLines_; }
    const std::set<qsizetype>& foldedRegionStartLines() const { return foldedRegionStartLines_; }
    /// What was cut out, by start line.
    const std::map<qsizetype, TextTree>& foldedContent() const { return foldedContent_; }
    /// What stands for a body: a blank, a horizontal ellipsis and a blank.
    static const QString foldPlaceholder;

    /// Rebuilds `foldableRegions` from the text as it stands, placeholders included: by tags in XML and HTML, by
    /// indents in Python, by braces in all others. What is folded stays so.
    void detectFoldableRegions(Language language);

    /// Cuts out the lines strictly between the region's two and posts `codeFoldingChanged`.
    void fold(FoldableRegion region);
    /// Puts the body of the fold at the region's start line in the place of the first placeholder right behind that
    /// line, and posts `codeFoldingChanged`.
    void unfold(FoldableRegion region);
    bool isFolded(const FoldableRegion& region) const { return foldedRegionStartLines_.contains(region.startLine); }

    /// Whether the text differs from what it was before the first fold that still stands.
    bool isTextFolded() const { return !journal_.isEmpty(); }
    /// The text with the body of every fold in its place, as it was before the first fold that still stands.
    TextTree unfoldedText() const;
    /// Takes back all folds, and what was unfolded in a wrong place, and forgets all that was folded. Every body comes
    /// back with an edit of its own, so that carets and marks move along. Posts `codeFoldingChanged` if anything was
    /// folded.
    void unfoldAll();

private:
    std::optional<TextRange> rangeForRegion(const FoldableRegion& region) const;
    /// The offset behind a line, if the text has that line.
    std::optional<qsizetype> offsetBehindLine(qsizetype line) const;
    void replace(TextRange range, const TextTree& text);
    void textEdited(const TextEdit& edit);
    void postChange();

    NotificationCenter& center_;
    QPointer<TextStorage> storage_;
    std::vector<FoldableRegion> foldableRegions_;
    LineSet foldedLines_;
    std::set<qsizetype> foldedRegionStartLines_;
    std::map<qsizetype, TextTree> foldedContent_;

    FoldJournal journal_;
    QMetaObject::Connection edits_;
    /// The revision of the storage after the last edit of our own.
    quint64 ownRevision_ = 0;
};

} // namespace kelm
