// What stands in the status bar.
#pragma once

#include "platform/view/plain_button.h"

#include <QWidget>

namespace kelm {

/// A text, with a symbol or without; faintly lit under the mouse.
class StatusBarItem final : public QWidget
{
    Q_OBJECT

public:
    /// `highlight` gives the text the accent colour.
    StatusBarItem(QString icon, const QString& text, bool highlight, QWidget* parent = nullptr);

    const QString& text() const { return text_; }
    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString icon_;
    QString text_;
    bool highlight_;
};

/// A text that opens a menu.
class StatusBarMenu final : public PlainButton
{
    Q_OBJECT

public:
    /// `menuContent` fills the menu each time it opens.
    StatusBarMenu(const QString& icon, const QString& text, std::function<void(QMenu&)> menuContent,
                  QWidget* parent = nullptr);

    /// Shows a text, which describes the button to screen readers: its help text is its name.
    void setText(const QString& text);
};

/// A small upright line.
class StatusBarDivider final : public QWidget
{
    Q_OBJECT

public:
    explicit StatusBarDivider(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace kelm
