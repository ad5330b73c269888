// The line that tells what goes on and what has happened.
#pragma once

#include "app/state/notices.h"
#include "editor/themes/theme_manager.h"

#include <QWidget>

#include <chrono>
#include <optional>
#include <vector>

class QHBoxLayout;

namespace kelm {

class ActivityLine;
class PlainButton;
class TextLabel;

/// A quiet row of one text, with a line along its upper edge that grows with the progress, or runs where nobody knows
/// it. There is a button for each offer, and news have one that puts them away. It never takes the keyboard by itself.
/// Screen readers are told when a text appears, and then of each tenth of its progress.
class NoticeBar final : public QWidget
{
    Q_OBJECT

public:
    explicit NoticeBar(ThemeManager& themeManager, QWidget* parent = nullptr);

    /// Shows a text such as "Opening notes.txt…", and beside it how to end what it tells of, if that can be, or what
    /// can be done about it.
    void show(const Notice& notice);
    /// From 0 to 1, and how long it has lasted; absent where nobody knows, or wants to.
    void setProgress(std::optional<double> progress, std::optional<std::chrono::seconds> time = std::nullopt);

    /// The text as it stands there, with its percents and its time.
    QString text() const;
    bool offersStop() const;
    /// The buttons of its offers, and the one that puts it away; the latter is hidden for what goes on.
    const std::vector<PlainButton*>& offers() const { return offers_; }
    PlainButton* putAwayButton() const { return putAway_; }

Q_SIGNALS:
    /// One of the offers is taken.
    void accepted(qsizetype offer);
    void putAway();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void showOffers(const std::vector<NoticeOffer>& offers);
    void refresh();

    ThemeManager& themeManager_;
    QString notice_;
    bool isNews_ = false;
    std::optional<double> progress_;
    std::optional<std::chrono::seconds> time_;
    ActivityLine* activity_;
    TextLabel* label_;
    TextLabel* stopHint_;
    QHBoxLayout* row_;
    std::vector<PlainButton*> offers_;
    PlainButton* putAway_;
};

} // namespace kelm
