// How much is kept of what programs write.
#pragma once

#include <QString>
#include <QStringView>

#include <deque>

namespace kelm {

/// The most that is kept of the output of a run and of the text of a terminal, in UTF-16 units: 64 MiB of plain output.
constexpr qsizetype mostKeptUnits = qsizetype(64) << 20;
/// How much more may stand before the front is cut off, so that the cut is made seldom.
constexpr qsizetype keptSlackUnits = qsizetype(1) << 20;

/// What stands at the front of a text, up to where `units` UTF-16 units were let go, without a line end.
QString letGoText(qsizetype units);

/// The end of a text that only grows: at least the last `most` units, and at most those and twice the slack. It is held
/// in pieces, so that adding and letting go take the same time whatever there is. One thread.
class KeptTail
{
public:
    explicit KeptTail(qsizetype most = mostKeptUnits, qsizetype slack = keptSlackUnits) : most_(most), slack_(slack) {}

    void append(const QString& text);
    void clear();
    bool isEmpty() const { return units_ == 0; }
    /// How much is kept.
    qsizetype units() const { return units_; }
    /// How many units were let go since the last `clear`.
    qsizetype letGo() const { return letGo_; }

    /// What is kept: linear in it, but shared where it came in one piece.
    QString text() const;
    /// The same behind the line that says how much was let go, if something was.
    QString textBehindLetGoLine() const { return letGo_ > 0 ? letGoText(letGo_) + u'\n' + text() : text(); }
    /// Its last units, `units` or all where there are fewer; linear in those.
    QString end(qsizetype units) const;

private:
    void dropFront(qsizetype units);

    qsizetype most_;
    qsizetype slack_;
    std::deque<QString> pieces_;
    qsizetype units_ = 0;
    qsizetype letGo_ = 0;
};

} // namespace kelm
