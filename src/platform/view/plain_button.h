// The one button of strips, bars and rows.
#pragma once

#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/view/focus_ring.h"

#include <QAbstractButton>
#include <QMargins>

#include <functional>
#include <optional>

class QMenu;

namespace kelm {

/// How a plain button looks. Sizes are in points.
struct ButtonLook
{
    /// The symbol before the text, or none.
    QString symbol = {};
    int symbolSize = 12;
    int textSize = style::typeSize::subheadline;
    QFont::Weight weight = QFont::Normal;
    Tint tint = Tint::secondary();
    /// While the mouse is over it.
    std::optional<Tint> hoveredTint = std::nullopt;
    /// While it is checked.
    std::optional<Tint> checkedTint = std::nullopt;
    Tint ground = Tint::clear();
    Tint checkedGround = Tint::accent().at(0.2);
    double hoverOpacity = style::hoverOpacity;
    QMargins padding = {6, 3, 6, 3};
    int spacing = 5;
    qreal cornerRadius = style::radius::control;
    /// Text in medium weight at the far side of the first, such as a key.
    QString trailingText = {};
    /// The extents that do not follow from what it holds; 0 where they do.
    QSize fixedSize = {};
};

/// A button that is its symbol and text alone until the mouse is over it, it is checked, or it has the keyboard.
///
/// A click leaves the keyboard where it is, in the text; Tab reaches the button. The help text is its name for screen
/// readers when it shows no text.
class PlainButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit PlainButton(ButtonLook look, QWidget* parent = nullptr);

    /// What it shows, as it stands there: an ampersand, which a name may have, is one, and makes no key.
    QString text() const { return text_; }
    void setText(const QString& text);

    const ButtonLook& look() const { return look_; }
    void setLook(const ButtonLook& look);
    void setSymbol(const QString& symbol);
    void setHelp(const QString& help);

    /// Makes it open a menu, which `fill` fills anew each time, below the button or above it where there is no room.
    void setMenu(std::function<void(QMenu&)> fill);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QFont textFont() const;
    void paintGround(QPainter& painter) const;
    void openMenu();

    ButtonLook look_;
    QString text_;
    std::function<void(QMenu&)> fillMenu_;
    FocusSign focusSign_;
    bool isMenuOpen_ = false;
};

/// The look of a button that stands out by a ground in the accent colour.
ButtonLook prominentLook(const QString& symbol = {});
/// The look of a button with an outline.
ButtonLook borderedLook(const QString& symbol = {});

} // namespace kelm
