// A part of a text while a scan of it is watched.
#pragma once

#include "editor/highlighter/scan_watcher.h"
#include "editor/highlighter/scanned_text.h"

#include <algorithm>
#include <limits>

namespace kelm {

/// Answers the questions of a scanner from a part of a text, and notes for each attempt between which units it looked.
/// An attempt that looked at the end of the part while the text goes on behind it is not believed: the scan ends there,
/// and has to be taken up again from a safe place with more of the text.
///
/// Scanners count from the beginning of the part, a watcher from that of the text.
class WatchedText
{
public:
    enum class Ending {
        /// No attempt begins any more before the end of the part.
        complete,
        /// The watcher had enough.
        stopped,
        /// The last attempt wants to see what stands behind the part.
        ranOut,
    };

    /// A scan of `part` from the place `begin` in it on, which is safe. The part begins at `offset` in its text.
    WatchedText(const ScannedText& part, qsizetype offset, bool endsText, qsizetype begin, ScanWatcher& watcher)
        : part_(part),
          watcher_(watcher),
          offset_(offset),
          begin_(begin),
          // The last unit may be half a character.
          believed_(endsText ? std::numeric_limits<qsizetype>::max() : part.size() - 1),
          lastSafe_(endsText ? part.size() : part.size() - ScanWatcher::margin),
          reach_(begin),
          gapStart_(begin)
    {}

    qsizetype begin() const { return begin_; }
    qsizetype size() const { return part_.size(); }

    template <class Search>
    qsizetype next(qsizetype from, Search search)
    {
        if (!closeAttempt(from)) {
            return size();
        }
        const qsizetype start = search(from);
        if (start < size()) {
            openAttempt(start);
        }
        return start;
    }
    template <class Word>
    void forEachWord(Word word)
    {
        qsizetype taken = begin_;
        part_.words().forEachWord(begin_, [&](qsizetype start, qsizetype end) {
            if (start < taken) {
                return true;
            }
            if (!closeAttempt(taken)) {
                return false;
            }
            openAttempt(start);
            note(end + 2);
            taken = word(start, end);
            return true;
        });
        closeAttempt(taken);
    }
    void found(qsizetype start, qsizetype end)
    {
        match_ = {start, end};
        low_ = std::min(low_, start);
    }
    /// To be called when the scan has returned.
    Ending finish()
    {
        if (isOpen_) {
            closeAttempt(size());
        }
        if (!ranOut_ && !isStopped_) {
            tellGap(lastSafe_);
        }
        return ranOut_ ? Ending::ranOut : isStopped_ ? Ending::stopped : Ending::complete;
    }

    char16_t at(qsizetype place)
    {
        note(place + 1);
        return part_.at(place);
    }
    bool startsWith(qsizetype place, QStringView needle)
    {
        note(place + needle.size());
        return part_.startsWith(place, needle);
    }
    bool isSpace(qsizetype place)
    {
        note(place + 1);
        return part_.isSpace(place);
    }
    qsizetype digitAt(qsizetype place)
    {
        note(place + 2);
        return part_.digitAt(place);
    }
    bool endsWordAt(qsizetype place)
    {
        note(place + 2);
        return part_.endsWordAt(place);
    }
    bool isBoundary(qsizetype place)
    {
        note(place + 2);
        return part_.isBoundary(place);
    }
    qsizetype nextBoundary(qsizetype from, qsizetype end)
    {
        const qsizetype boundary = part_.nextBoundary(from, end);
        note(boundary + 2);
        return boundary;
    }
    QStringView sliced(qsizetype start, qsizetype end)
    {
        note(end);
        return part_.sliced(start, end);
    }

    // What goes on over units looks at the one at which it halts as well, and at the other half of that.
    template <class... What>
    qsizetype find(qsizetype from, What... what)
    {
        return notedTo(part_.find(from, what...));
    }
    qsizetype lineEnd(qsizetype from) { return notedTo(part_.lineEnd(from)); }
    qsizetype lineStart(qsizetype from) { return notedTo(part_.lineStart(from)); }
    qsizetype skipSpace(qsizetype from) { return notedTo(part_.skipSpace(from)); }
    template <class Test>
    qsizetype skip(qsizetype from, Test test)
    {
        return notedTo(part_.skip(from, test));
    }
    qsizetype findDigit(qsizetype from) { return notedTo(part_.findDigit(from)); }
    qsizetype skipDigits(qsizetype from) { return notedTo(part_.skipDigits(from)); }
    qsizetype skipSpaceBack(qsizetype end) { return notedBackTo(part_.skipSpaceBack(end)); }
    template <class Test>
    qsizetype skipBack(qsizetype end, Test test)
    {
        return notedBackTo(part_.skipBack(end, test));
    }

private:
    /// That the attempt looked at what stands before `end`. Single units before its start are within the margin.
    void note(qsizetype end) { high_ = std::max(high_, end); }
    qsizetype notedTo(qsizetype halt)
    {
        note(halt + 1);
        return halt;
    }
    qsizetype notedBackTo(qsizetype halt)
    {
        low_ = std::min(low_, halt);
        return halt;
    }

    void openAttempt(qsizetype start)
    {
        low_ = high_ = start;
        isOpen_ = true;
    }
    void tellGap(qsizetype end)
    {
        if (end + offset_ >= watcher_.awaited && gapStart_ <= end) {
            isStopped_ = !watcher_.foundGap(gapStart_ + offset_, end + offset_);
        }
    }
    /// Tells what the attempt came to; the scan looks on from `from`. False when it has ended.
    bool closeAttempt(qsizetype from)
    {
        if (isStopped_ || ranOut_) {
            return false;
        }
        if (isOpen_) {
            isOpen_ = false;
            tellGap(std::min(low_, lastSafe_));
            if (isStopped_) {
                return false;
            }
            if (high_ > believed_) {
                ranOut_ = true;
                return false;
            }
            if (match_.end > 0) {
                Q_ASSERT(match_.end <= from);
                watcher_.matches.push_back({match_.start + offset_, match_.end + offset_});
                match_ = {};
            }
            reach_ = std::max(reach_, high_);
        }
        gapStart_ = std::max(from, reach_ - ScanWatcher::margin);
        return true;
    }

    const ScannedText& part_;
    ScanWatcher& watcher_;
    qsizetype offset_;
    qsizetype begin_;
    /// An attempt that looked at this unit or behind it is not believed.
    qsizetype believed_;
    /// Behind it, an opener may have begun whose end stands behind the part.
    qsizetype lastSafe_;

    // The attempt at hand: the lowest unit that it looked at, one behind the highest, what it found.
    qsizetype low_ = 0;
    qsizetype high_ = 0;
    RuleMatch match_;
    bool isOpen_ = false;
    /// One behind the highest unit that any attempt looked at.
    qsizetype reach_;
    qsizetype gapStart_;
    bool isStopped_ = false;
    bool ranOut_ = false;
};

} // namespace kelm
