// The row above the output of a run.
#pragma once

#include "editor/themes/theme_manager.h"

#include <QTimer>
#include <QWidget>

namespace kelm {

class CodeRunner;
class PlainButton;
class TextLabel;

/// Tells that a run goes on and for how long, with a button that ends it; and, once it has ended, how and after what
/// time, until the next one begins or something else stands in the output's place. Hidden at other times.
///
/// The time goes on once a second, while the row is to be seen and the run goes on. Screen readers are told when a run
/// begins and how it ended. Main thread only.
class RunHeader final : public QWidget
{
    Q_OBJECT

public:
    /// Both outlive the header.
    RunHeader(CodeRunner& runner, ThemeManager& themeManager, QWidget* parent = nullptr);

    /// Such as "Running hello.py … 12 s".
    QString text() const;
    /// What it advises beside that; empty for nothing.
    QString advice() const;
    PlainButton& stopButton() { return *stop_; }
    /// Whether the time goes on.
    bool isTicking() const { return tick_.isActive(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();
    void refreshTime();
    void tell(const QString& text);

    CodeRunner& runner_;
    ThemeManager& themeManager_;
    TextLabel* label_;
    TextLabel* advice_;
    PlainButton* stop_;
    QTimer tick_;
};

} // namespace kelm
