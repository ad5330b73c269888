// The buttons in the headers of the hunks that are on screen.
#pragma once

#include "git/viewer/view/diff_blocks.h"

#include <QRect>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class QWidget;

namespace kelm {

class PlainButton;

/// One button of a diff.
struct HunkControl
{
    enum class Role { toggle, action };

    qsizetype file = 0;
    qsizetype hunk = 0;
    Role role = Role::toggle;

    bool operator==(const HunkControl&) const = default;
};

/// A hunk header that is on screen.
struct PlacedHunk
{
    qsizetype file = 0;
    qsizetype hunk = 0;
    /// In the viewport.
    QRect header;
};

/// Real buttons, so that mouse, keyboard and screen readers find them, but only for the headers that are on screen:
/// they wander from hunk to hunk while the diff is scrolled.
class HunkControls
{
public:
    /// The buttons are children of `viewport`, which is that of a scroll area.
    explicit HunkControls(QWidget& viewport) : viewport_(viewport) {}

    /// Shows the buttons of exactly these hunks; `block` tells what is in one. Buttons that stay where they were keep
    /// the keyboard.
    template <typename BlockOf>
    void place(const std::vector<PlacedHunk>& hunks, BlockOf block)
    {
        release(hunks);
        for (const PlacedHunk& hunk : hunks) {
            Row& row = rowOf(hunk);
            if (!row.isAssigned) {
                assign(row, hunk, block(hunk));
            }
            move(row, hunk.header);
        }
    }
    /// Forgets what each button stands for.
    void reset();
    /// Null when the hunk is not on screen or has no such button.
    PlainButton* button(const HunkControl& control) const;
    /// The button that has the keyboard.
    std::optional<HunkControl> focused() const;
    /// How much room the action's button takes at the right of a header, in pixels.
    int actionWidth(const QString& label) const;

private:
    struct Row
    {
        qsizetype file = -1;
        qsizetype hunk = -1;
        bool isAssigned = false;
        PlainButton* toggle = nullptr;
        PlainButton* action = nullptr;
        std::function<void()> onToggle;
        std::function<void()> onAction;
    };

    void release(const std::vector<PlacedHunk>& hunks);
    Row& rowOf(const PlacedHunk& hunk);
    std::unique_ptr<Row> makeRow();
    void assign(Row& row, const PlacedHunk& hunk, const std::pair<HunkBlock, QString>& blockAndPath);
    static void move(const Row& row, const QRect& header);

    QWidget& viewport_;
    std::vector<std::unique_ptr<Row>> rows_;
};

} // namespace kelm
