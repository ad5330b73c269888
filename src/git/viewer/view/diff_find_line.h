// The line that finds a text in a shown diff.
#pragma once

#include "git/diff/diff_search.h"

#include <QBasicTimer>
#include <QWidget>

#include <functional>
#include <optional>

class QLineEdit;

namespace kelm {

class DiffList;
class TextLabel;

/// A field and its buttons. What is typed is looked for at once, from what is selected or on screen onwards, and what
/// is found is selected and scrolled to; a hunk that hides it is opened. Long diffs are gone through in slices between
/// events.
class DiffFindLine final : public QWidget
{
    Q_OBJECT

public:
    /// `toggleHunk` opens a collapsed hunk.
    DiffFindLine(DiffList& list, std::function<void(const QUuid& hunk)> toggleHunk, QWidget* parent);
    ~DiffFindLine() override;

    QLineEdit& field() { return *field_; }
    /// What is said of the last search; empty when it found something on the way.
    QString told() const;
    /// Whether it is still being looked for.
    bool isLooking() const { return timer_.isActive(); }

    /// Gives the field the keyboard, with what is selected in a line of the diff as its text.
    void takeKeyboard();
    /// Goes to the next match, or the one before.
    void find(bool forwards);
    /// To be called before the diff is replaced.
    void stop();

Q_SIGNALS:
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    /// `again` when the text was edited: then what is selected still counts.
    void start(bool forwards, bool again);
    void look();
    void reveal(const DiffSelection& match);

    DiffList& list_;
    std::function<void(const QUuid& hunk)> toggleHunk_;
    std::optional<DiffSearch> search_;
    QBasicTimer timer_;
    QLineEdit* field_;
    TextLabel* told_;
};

} // namespace kelm
