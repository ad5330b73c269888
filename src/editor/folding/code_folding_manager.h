// Folds the bodies of regions away and brings them back.
#pragma once

#include "app/language/language.h"
#include "editor/folding/fold_journal.h"
#include "editor/folding/foldable_region.h"
#include "editor/folding/foldable_regions.h"
#include "editor/folding/line_set.h"
#include "platform/events/background_task.h"
#include "platform/events/notification_center.h"
#include "text/storage/text_range.h"
#include "text/storage/text_storage.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>
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
class CodeFoldingManager : public QObject
{
public:
    /// The centre outlives the manager.
    explicit CodeFoldingManager(NotificationCenter& center);
    ~CodeFoldingManager() override;

    /// The text that is folded, held weakly. Another one starts without anything to restore; the lists stay as they
    /// are.
    void setStorage(TextStorage* storage);
    TextStorage* storage() const { return storage_; }

    /// Sorted by the start line; of those on one line the one that closes first goes first.
    std::vector<FoldableRegion> foldableRegions() const { return regions_.all(); }
    /// The first region that starts at `line`, or none.
    std::optional<FoldableRegion> firstRegionStartingAt(qsizetype line) const
    {
        return regions_.firstRegionStartingAt(line);
    }
    /// The lines hidden by folds, as they were numbered when they were hidden.
    const LineSet& foldedLines() const { return foldedLines_; }
    const std::set<qsizetype>& foldedRegionStartLines() const { return foldedRegionStartLines_; }
    /// What was cut out, by start line.
    const std::map<qsizetype, TextTree>& foldedContent() const { return foldedContent_; }
    /// What stands for a body: a blank, a horizontal ellipsis and a blank.
    static const QString foldPlaceholder;

    /// Brings `foldableRegions` up to the text as it stands, placeholders included: by tags in XML and HTML, by indents
    /// in Python, by braces in all others. What is folded stays so. It costs what edits have changed since the last
    /// time; where that is more than a moment allows, a worker does it, and `onRegionsFound` is called once it is done.
    void detectFoldableRegions(Language language);
    std::function<void()> onRegionsFound;
    /// Whether the regions are those of the text as of the last detection.
    bool isSettled() const { return !task_.isRunning(); }

    /// What can be folded or unfolded at a line.
    struct Mark
    {
        FoldableRegion region;
        bool isFolded = false;
    };
    /// The fold whose placeholder stands right behind a line, whatever its line was when it was made, or else the first
    /// region that starts there.
    std::optional<Mark> markAt(qsizetype line) const;
    /// Folds what can be folded at a line, or puts the body of the fold there in the place of its placeholder.
    void toggle(qsizetype line);

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
    /// Where a range of what is shown stands in that text, and the other way round; see `FoldJournal`.
    TextRange wholeRange(TextRange shown) const { return journal_.wholeRange(shown); }
    TextRange shownRange(TextRange whole) const { return journal_.shownRange(whole); }
    /// Where the placeholders stand that are seen, in the order of the text: each right behind the line of its region.
    std::vector<TextRange> placeholders() const;
    /// Undoes the folds that hide anything of a range of the whole text. False when there are none.
    bool reveal(TextRange whole);
    /// Takes back all folds, and what was unfolded in a wrong place, and forgets all that was folded. Every body comes
    /// back with an edit of its own, so that carets and marks move along. Posts `codeFoldingChanged` if anything was
    /// folded.
    void unfoldAll();

    /// Called right before the first fold is made, right after the last one is undone, and when another has edited a
    /// text while it was folded.
    std::function<void()> onTextFolds;
    std::function<void()> onTextUnfolded;
    std::function<void()> onFoldedTextEdited;

private:
    void willReplace(TextRange range, qsizetype newLength);
    void settle();
    void unfold(const FoldJournal::OpenFold& fold);
    void forgetFold(const FoldableRegion& region);
    /// Folds whose placeholder stands right behind a line, by that line.
    const std::map<qsizetype, FoldJournal::OpenFold>& openFolds() const;
    std::optional<TextRange> rangeForRegion(const FoldableRegion& region) const;
    /// The offset behind a line, if the text has that line.
    std::optional<qsizetype> offsetBehindLine(qsizetype line) const;
    void replace(TextRange range, const TextTree& text);
    void tellIfUnfolded() const;
    void textEdited(const TextEdit& edit);
    void postChange();

    NotificationCenter& center_;
    QPointer<TextStorage> storage_;
    /// Told of every edit of the storage.
    FoldableRegions regions_{CodeFolding::braces};
    /// Whether the next detection finds another text than the one before.
    bool needsReset_ = false;
    LineSet foldedLines_;
    std::set<qsizetype> foldedRegionStartLines_;
    std::map<qsizetype, TextTree> foldedContent_;

    /// As they were when they were folded, by start line.
    std::map<qsizetype, FoldableRegion> foldedRegions_;
    mutable FoldJournal journal_;
    QMetaObject::Connection edits_;
    QMetaObject::Connection replacements_;
    QMetaObject::Connection resets_;
    BackgroundTask task_;
    /// What was edited since the worker began.
    std::vector<std::pair<TextRange, qsizetype>> since_;
    /// The revision of the storage after the last edit of our own.
    quint64 ownRevision_ = 0;
    mutable std::map<qsizetype, FoldJournal::OpenFold> openFolds_;
    mutable std::optional<quint64> openFoldsRevision_;
};

} // namespace kelm
