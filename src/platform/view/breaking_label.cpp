#include "platform/view/breaking_label.h"

#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace kelm {

namespace {

constexpr int usualWidth = 300;
/// What comes behind is in the copy only; no message for a person is longer.
constexpr qsizetype mostUnits = 20000;

/// Lays `text` out in `width` points; the height that it takes.
qreal layOut(QTextLayout& layout, qreal width)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    qreal height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max<qreal>(1, width));
        line.setPosition({0, height});
        height += line.height();
    }
    layout.endLayout();
    return height;
}

/// The text with the separators at which a layout breaks lines, and without those at its end.
QString laidOutText(QString text)
{
    while (text.endsWith(u'\n')) {
        text.chop(1);
    }
    return text.left(mostUnits).replace(u'\n', QChar::LineSeparator);
}

} // namespace

BreakingLabel::BreakingLabel(const QFont& font, const Tint& tint, QWidget* parent) : QWidget(parent), tint_(tint)
{
    setFont(font);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void BreakingLabel::setText(const QString& text)
{
    text_ = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

void BreakingLabel::setGround(const Tint& ground)
{
    ground_ = ground;
    update();
}

void BreakingLabel::setPadding(int padding)
{
    padding_ = padding;
    updateGeometry();
}

int BreakingLabel::heightForWidth(int width) const
{
    QTextLayout layout(laidOutText(text_), font());
    return static_cast<int>(layOut(layout, width - 2 * padding_) + 0.999) + 2 * padding_;
}

QSize BreakingLabel::sizeHint() const
{
    return {usualWidth, heightForWidth(usualWidth)};
}

QSize BreakingLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 4 + 2 * padding_, fontMetrics().height() + 2 * padding_};
}

void BreakingLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground_.on(*this));
    painter.drawRoundedRect(QRectF(rect()), style::radius::control, style::radius::control);
    painter.setPen(style::ink(tint_, *this));
    QTextLayout layout(laidOutText(text_), font());
    layOut(layout, width() - 2 * padding_);
    layout.draw(&painter, QPointF(padding_, padding_));
}

void BreakingLabel::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Copy"), this, [this] { QGuiApplication::clipboard()->setText(text_); });
    menu->popup(event->globalPos());
}

} // namespace kelm
