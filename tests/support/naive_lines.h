// The lines of a text, found by a walk over the whole of it, to compare with.
#pragma once

#include "text/storage/line_terminator.h"

#include <QList>
#include <QStringView>

#include <algorithm>

namespace kelm::test {

class NaiveLines
{
public:
    explicit NaiveLines(QStringView text) : length_(text.size()), lineFeeds_(text.count(u'\n'))
    {
        for (qsizetype at = 0; at < text.size();) {
            const qsizetype terminator = lineTerminatorLength(text, at);
            at += std::max(terminator, qsizetype(1));
            if (terminator > 0) {
                starts_.append(at);
            }
        }
    }

    const QList<qsizetype>& starts() const { return starts_; }
    qsizetype lineCount() const { return starts_.size(); }
    qsizetype lineFeeds() const { return lineFeeds_; }
    qsizetype start(qsizetype line) const { return starts_.at(line); }
    qsizetype end(qsizetype line) const { return line + 1 < lineCount() ? starts_.at(line + 1) : length_; }
    qsizetype lineAt(qsizetype offset) const
    {
        return std::max<qsizetype>(1, std::upper_bound(starts_.begin(), starts_.end(), offset) - starts_.begin()) - 1;
    }

private:
    QList<qsizetype> starts_{0};
    qsizetype length_;
    qsizetype lineFeeds_;
};

} // namespace kelm::test
