// One scan that makes a dirty stretch of one rule good.
#pragma once

#include "editor/highlighter/pattern_scanner.h"
#include "editor/highlighter/rule_track.h"
#include "editor/highlighter/scan_watcher.h"
#include "editor/highlighter/scan_window.h"
#include "text/storage/text_tree.h"

namespace kelm {

/// Begins at the last safe place before the first dirty range of a track and goes on until it meets an old safe place
/// behind it, from where all is as it was. Dirty ranges that it comes upon before are made good as well. It goes from
/// window to window, and keeps nothing between them but what it will tell the track.
class RuleScan final : private ScanWatcher
{
public:
    /// The track is not settled, and neither it nor the text changes meanwhile.
    RuleScan(const RuleTrack& track, const PatternScanner& scanner, const ScanSizes& sizes, const TextTree& text);

    bool isDone() const { return isDone_; }
    /// The safe place from which it goes on. All before has been found.
    qsizetype place() const { return last_; }
    qsizetype dirtyEnd() const { return dirtyEnd_; }
    /// Goes on in a window that shows `place`, until a safe place at `until` or behind it, or as far as it can see.
    void advance(const ScanWindow& window, qsizetype until);

    /// What has been found, done or not.
    Rescan result();

private:
    bool foundGap(qsizetype first, qsizetype last) override;
    /// Keeps safe places from a gap.
    void keepPlaces(qsizetype first, qsizetype last);
    void endZone(qsizetype place);
    /// Goes on to the first old place at `from` or behind it that is as good as before.
    void findOldPlace(qsizetype from);

    const RuleTrack& track_;
    const PatternScanner& scanner_;
    const ScanSizes& sizes_;
    const TextTree& text_;
    const ScanWindow* window_ = nullptr;

    Rescan found_;
    qsizetype last_;
    qsizetype dirtyStart_;
    qsizetype dirtyEnd_;
    /// The next of the old places, behind the text when there is none.
    qsizetype oldPlace_ = 0;
    qsizetype until_ = 0;
    /// How far behind the last place the next is looked for. Grows where there is none to be found.
    qsizetype step_ = 0;
    bool isDone_ = false;
};

} // namespace kelm
