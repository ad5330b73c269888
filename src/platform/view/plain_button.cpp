#include "platform/view/plain_button.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"
#include "platform/view/mnemonics.h"
#include "platform/view/plain_help.h"

#include <QAccessible>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QScreen>

namespace kelm {

namespace {

/// Of a button that cannot be pressed: whatever its colours are, it takes the label's, thinned.
constexpr double disabledInk = 0.5;
constexpr double disabledGround = 0.1;
/// Between a menu and the edge of the window.
constexpr int menuMargin = 4;

} // namespace

PlainButton::PlainButton(ButtonLook look, QWidget* parent) : QAbstractButton(parent), look_(std::move(look))
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PlainButton::setText(const QString& text)
{
    text_ = text;
    // The toolkit would make a key of what follows a single one.
    QAbstractButton::setText(withoutMnemonic(text));
}

void PlainButton::setLook(const ButtonLook& look)
{
    look_ = look;
    updateGeometry();
    update();
}

void PlainButton::setSymbol(const QString& symbol)
{
    if (symbol != look_.symbol) {
        look_.symbol = symbol;
        updateGeometry();
        update();
    }
}

void PlainButton::setHelp(const QString& help)
{
    setToolTip(plainHelp(help));
    if (text().isEmpty()) {
        setAccessibleName(help);
    } else {
        setAccessibleDescription(help);
    }
}

void PlainButton::setMenu(std::function<void(QMenu&)> fill)
{
    fillMenu_ = std::move(fill);
}

QFont PlainButton::textFont() const
{
    return style::interfaceFont(look_.textSize, look_.weight);
}

QSize PlainButton::sizeHint() const
{
    const QFontMetrics metrics(textFont());
    int width = look_.padding.left() + look_.padding.right();
    int height = 0;
    if (!look_.symbol.isEmpty()) {
        width += look_.symbolSize;
        height = look_.symbolSize;
    }
    if (!text().isEmpty()) {
        width += metrics.horizontalAdvance(text()) + (look_.symbol.isEmpty() ? 0 : look_.spacing);
        height = std::max(height, metrics.height());
    }
    if (!look_.trailingText.isEmpty()) {
        const QFontMetrics medium(style::interfaceFont(look_.textSize, QFont::Medium));
        width += medium.horizontalAdvance(look_.trailingText) + look_.spacing;
    }
    height += look_.padding.top() + look_.padding.bottom();
    return {look_.fixedSize.width() > 0 ? look_.fixedSize.width() : width,
            look_.fixedSize.height() > 0 ? look_.fixedSize.height() : height};
}

void PlainButton::paintGround(QPainter& painter) const
{
    const auto fill = [&](const Tint& tint) {
        painter.setBrush(tint.on(*this));
        painter.drawRoundedRect(QRectF(rect()), look_.cornerRadius, look_.cornerRadius);
    };
    painter.setPen(Qt::NoPen);
    const bool hasGround = look_.ground.on(*this).alpha() > 0;
    fill(isEnabled() || !hasGround ? look_.ground : Tint::primary().at(disabledGround));
    if (isChecked()) {
        fill(look_.checkedGround);
    }
    if (!isEnabled()) {
        return;
    }
    if (isDown() || isMenuOpen_) {
        fill(Tint::primary().at(style::pressedOpacity));
    } else if (underMouse()) {
        fill(Tint::primary().at(look_.hoverOpacity));
    }
}

void PlainButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter);

    Tint tint = isEnabled() ? look_.tint : Tint::primary().at(disabledInk);
    if (isEnabled() && isChecked() && look_.checkedTint) {
        tint = *look_.checkedTint;
    } else if (isEnabled() && underMouse() && look_.hoveredTint) {
        tint = *look_.hoveredTint;
    }
    const QColor color = style::ink(tint, *this);

    const QRect inner = rect().marginsRemoved(look_.padding);
    int x = inner.left();
    const bool isSymbolAlone = text().isEmpty() && look_.trailingText.isEmpty();
    if (!look_.symbol.isEmpty()) {
        const qreal left = isSymbolAlone ? (width() - look_.symbolSize) / 2.0 : x;
        icons::paint(painter, look_.symbol,
                     QRectF(left, (height() - look_.symbolSize) / 2.0, look_.symbolSize, look_.symbolSize), color);
        x += look_.symbolSize + look_.spacing;
    }
    painter.setPen(color);
    if (!look_.trailingText.isEmpty()) {
        painter.setFont(style::interfaceFont(look_.textSize, QFont::Medium));
        painter.drawText(inner, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, look_.trailingText);
    }
    painter.setFont(textFont());
    const QRect place(x, 0, inner.right() - x + 1, height());
    const QString shown = QFontMetrics(textFont()).elidedText(text(), Qt::ElideRight, place.width() + 1);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip, shown);
    if (focusSign_.isShown()) {
        style::drawFocusRing(painter, QRectF(rect()), look_.cornerRadius, *this);
    }
}

void PlainButton::mousePressEvent(QMouseEvent* event)
{
    if (fillMenu_ && event->button() == Qt::LeftButton) {
        openMenu();
        return;
    }
    QAbstractButton::mousePressEvent(event);
}

void PlainButton::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool opens = isReturn || event->key() == Qt::Key_Space || event->key() == Qt::Key_Down;
    if (fillMenu_ && opens) {
        openMenu();
    } else if (isReturn) {
        if (!event->isAutoRepeat()) {
            setDown(true);
        }
    } else {
        QAbstractButton::keyPressEvent(event);
    }
}

void PlainButton::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QAbstractButton::keyReleaseEvent(event);
    } else if (!event->isAutoRepeat() && isDown()) {
        // As with the space bar: what has the keyboard afterwards is not to have the rest of a key that is held down.
        setDown(false);
        click();
    }
}

void PlainButton::focusInEvent(QFocusEvent* event)
{
    focusSign_.follow(*event);
    QAbstractButton::focusInEvent(event);
    update();
}

void PlainButton::focusOutEvent(QFocusEvent* event)
{
    focusSign_.follow(*event);
    QAbstractButton::focusOutEvent(event);
    update();
}

void PlainButton::openMenu()
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillMenu_(*menu);
    QPoint place = mapToGlobal(QPoint(0, height() + 2));
    const int menuHeight = menu->sizeHint().height();
    if (screen() != nullptr && place.y() + menuHeight > screen()->availableGeometry().bottom()) {
        place = mapToGlobal(QPoint(0, -menuHeight - 2));
    }
    // Upwards, too, at the lower edge of a window that does not reach the lower edge of the screen.
    const QWidget* const top = window();
    if (mapTo(top, QPoint(0, height())).y() > top->height() - 2 * height() && place.y() - menuHeight > 0 &&
        place.y() > mapToGlobal(QPoint()).y()) {
        place = mapToGlobal(QPoint(0, -menuHeight - 2));
    }
    // Not beyond the window's right edge, where there is room inside.
    const int rightmost = top->mapToGlobal(QPoint(top->width(), 0)).x() - menu->sizeHint().width() - menuMargin;
    place.setX(std::max(std::min(place.x(), rightmost), top->mapToGlobal(QPoint()).x()));
    isMenuOpen_ = true;
    connect(menu, &QMenu::aboutToHide, this, [this] {
        isMenuOpen_ = false;
        update();
    });
    update();
    menu->popup(place);
}

ButtonLook prominentLook(const QString& symbol)
{
    return {.symbol = symbol,
            .symbolSize = 14,
            .textSize = style::typeSize::body,
            .weight = QFont::Medium,
            .tint = Tint(QColor(Qt::white)),
            .ground = Tint(style::accentGround),
            .padding = {12, 6, 14, 6},
            .spacing = 6};
}

ButtonLook borderedLook(const QString& symbol)
{
    return {.symbol = symbol,
            .symbolSize = 13,
            .textSize = style::typeSize::body,
            .tint = Tint::primary(),
            .ground = Tint::primary().at(0.1),
            .padding = {10, 4, 10, 4},
            .spacing = 6};
}

} // namespace kelm
