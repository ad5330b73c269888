// The question whether a link may run its code.
#pragma once

#include "editor/themes/theme_manager.h"
#include "platform/events/scheduler.h"

#include <QWidget>

#include <array>

class QHBoxLayout;

namespace kelm {

class PlainButton;

/// A row that says that a link asks to run this code on this computer, with the answers. It takes no keyboard by
/// itself; F6 gives it that, since the Tab key is typed in the text below. Its words are the program's own. Its buttons
/// take no press for `LinkRuns::deafTime` after it came up, so that a click or a key that was meant for what stood
/// there before is no answer. One bar is one question.
class LinkRunBar final : public QWidget
{
    Q_OBJECT

public:
    /// Both services outlive the bar.
    LinkRunBar(bool isKo, ThemeManager& themeManager, Scheduler& scheduler, QWidget* parent = nullptr);

    PlainButton* runButton() const { return buttons_[0]; }
    PlainButton* alwaysButton() const { return buttons_[1]; }
    PlainButton* putAwayButton() const { return buttons_[2]; }

Q_SIGNALS:
    void run();
    void runAlways();
    void putAway();

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void addButtons(bool isKo, QHBoxLayout& row);
    void tellKey(bool isKo);
    void setHears(bool hears);

    ThemeManager& themeManager_;
    Debounce hearing_;
    std::array<PlainButton*, 3> buttons_{};
};

} // namespace kelm
