#include "run/kept_tail.h"

#include "platform/events/worker_pool.h"
#include "platform/text/grapheme_boundaries.h"

#include <algorithm>
#include <utility>

namespace kelm {

QString letGoText(qsizetype units)
{
    constexpr double unitsOfMebibyte = 1 << 20;
    return QStringLiteral("[The first %1 MiB were let go.]").arg(double(units) / unitsOfMebibyte, 0, 'f', 1);
}

void KeptTail::append(const QString& text)
{
    if (text.isEmpty()) {
        return;
    }
    if (pieces_.empty() || pieces_.back().size() + text.size() > slack_) {
        pieces_.push_back(text);
    } else {
        // Growing by itself, each piece would have room for as much again.
        if (pieces_.size() > 1 && pieces_.back().capacity() < slack_) {
            pieces_.back().reserve(slack_);
        }
        pieces_.back() += text;
    }
    units_ += text.size();
    while (units_ > most_ + slack_) {
        dropFront(units_ - most_);
    }
}

void KeptTail::clear()
{
    if (units_ > slack_) {
        // A worker gives the memory back: that can take longer than a frame.
        backgroundWorkers().start([last = std::exchange(pieces_, {})] { Q_UNUSED(last) });
    }
    pieces_.clear();
    units_ = 0;
    letGo_ = 0;
}

QString KeptTail::text() const
{
    if (pieces_.size() == 1) {
        return pieces_.front();
    }
    QString all;
    all.reserve(units_);
    for (const QString& piece : pieces_) {
        all += piece;
    }
    return all;
}

QString KeptTail::end(qsizetype units) const
{
    QString last;
    for (auto piece = pieces_.rbegin(); piece != pieces_.rend() && last.size() < units; ++piece) {
        last.prepend(QStringView(*piece).last(std::min(piece->size(), units - last.size())));
    }
    return last;
}

/// Lets at most so many units go, from one piece: all of it, or up to a line's start where there is one.
void KeptTail::dropFront(qsizetype units)
{
    QString& piece = pieces_.front();
    qsizetype gone = std::min(units, piece.size());
    if (gone < piece.size()) {
        if (const qsizetype lineFeed = piece.lastIndexOf(u'\n', gone - 1); lineFeed >= gone - slack_ && lineFeed >= 0) {
            gone = lineFeed + 1;
        } else if (const qsizetype whole = graphemeBoundaryAtOrBefore(piece, gone);
                   whole > std::max(gone - slack_, qsizetype(0))) {
            // No part of a character, unless that is longer than the slack.
            gone = whole;
        } else if (gone > 1 && piece[gone].isLowSurrogate() && piece[gone - 1].isHighSurrogate()) {
            --gone;
        }
    }
    units_ -= gone;
    letGo_ += gone;
    if (gone == piece.size()) {
        pieces_.pop_front();
    } else {
        piece.remove(0, gone);
    }
}

} // namespace kelm
