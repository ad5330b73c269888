// The way of the keyboard round the parts of the window.
#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <vector>

class QWidget;

namespace kelm {

/// Takes the keyboard from one part of the window to the next, and round. A part that is not shown, or in which nothing
/// takes the keyboard, is passed over; in the others it goes to what had it there last. A part that asks something
/// comes first, once, wherever the keyboard is. Main thread only.
class PaneWalk final : public QObject
{
public:
    struct Pane
    {
        /// The part as it stands; null or hidden while it is not shown.
        std::function<QWidget*()> part;
        /// What takes the keyboard where nothing had it yet; its first stop where this is absent or gives none.
        std::function<QWidget*()> entrance = {};
        bool asks = false;
    };

    PaneWalk(QWidget& window, std::vector<Pane> panes);

    void go(bool forward);

private:
    void follow(QWidget* now);
    bool enter(std::size_t index);
    /// The pane that holds a widget, or their count.
    std::size_t paneOf(const QWidget* widget) const;
    /// The pane that asks and was not gone to yet, or their count.
    std::size_t asking() const;

    QWidget& window_;
    const std::vector<Pane> panes_;
    /// What had the keyboard last in each.
    std::vector<QPointer<QWidget>> last_;
    /// Which part asked when the keyboard was there last.
    QPointer<QWidget> asked_;
};

} // namespace kelm
