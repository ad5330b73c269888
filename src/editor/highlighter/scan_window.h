// A part of a text, gathered for scanning.
#pragma once

#include "editor/highlighter/pattern_scanner.h"
#include "editor/highlighter/scan_watcher.h"
#include "editor/highlighter/scanned_text.h"
#include "editor/highlighter/watched_text.h"
#include "text/storage/text_tree.h"

#include <QString>

namespace kelm {

/// A part of a text in one piece, with what a scan that begins in it may see of the text before. The boundaries of
/// words in it are found once for all rules. All places are those of the text. One thread at a time.
class ScanWindow
{
public:
    /// For scans that begin at `from` or behind it and see the text up to `to`.
    ScanWindow(const TextTree& text, qsizetype from, qsizetype to);
    Q_DISABLE_COPY_MOVE(ScanWindow)

    qsizetype end() const { return start_ + units_.size(); }
    bool endsText() const { return endsText_; }

    /// Scans from a safe place on and tells `watcher`.
    WatchedText::Ending scan(const PatternScanner& scanner, qsizetype from, ScanWatcher& watcher) const;
    /// How far an attempt that begins at `place` or behind it may look back, whatever stands there.
    qsizetype lookBack(const PatternScanner& scanner, qsizetype place) const;
    /// Where the first line begins behind `from` and before `to`, or `to`.
    qsizetype lineStart(qsizetype from, qsizetype to) const;

private:
    qsizetype start_;
    QString units_;
    bool endsText_;
    ScannedText part_;
};

/// Where the characters end that boundaries of words look through, from a place on: an edit right before it may change
/// the sides of all of them.
qsizetype endOfTransparent(const TextTree& text, qsizetype place);

} // namespace kelm
