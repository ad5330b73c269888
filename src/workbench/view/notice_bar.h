// The line that tells what goes on and takes its time.
#pragma once

#include "editor/themes/theme_manager.h"

#include <QWidget>

#include <optional>

namespace kelm {

class ActivityLine;
class TextLabel;

/// A quiet row of one text, with a line along its upper edge that grows with the progress, or runs where nobody knows
/// it. It takes no keyboard. Screen readers are told when a text appears, and then of each tenth of its progress.
class NoticeBar final : public QWidget
{
    Q_OBJECT

public:
    explicit NoticeBar(ThemeManager& themeManager, QWidget* parent = nullptr);

    /// Shows a text such as "Opening notes.txt…", and beside it how to end what it tells of, if that can be.
    void show(const QString& text, bool canStop);
    /// From 0 to 1; absent where nobody knows.
    void setProgress(std::optional<double> progress);

    /// The text as it stands there, with its percents.
    QString text() const;
    bool offersStop() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();

    ThemeManager& themeManager_;
    QString notice_;
    std::optional<double> progress_;
    ActivityLine* activity_;
    TextLabel* label_;
    TextLabel* stopHint_;
};

} // namespace kelm
