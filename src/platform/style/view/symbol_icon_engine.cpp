#include "platform/style/view/symbol_icon_engine.h"

#include "platform/style/view/icons.h"
#include "platform/style/view/ink.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace kelm {

namespace {

Appearance appearanceOf(const QPalette& palette)
{
    return palette.color(QPalette::WindowText).lightness() > 127 ? Appearance::dark : Appearance::light;
}

} // namespace

SymbolIconEngine::SymbolIconEngine(QString name, std::optional<SystemColor> hue) : name_(std::move(name)), hue_(hue) {}

void SymbolIconEngine::paint(QPainter* painter, const QRect& rectangle, QIcon::Mode mode, QIcon::State /*state*/)
{
    icons::paint(*painter, name_, rectangle, tintIn(mode));
}

QPixmap SymbolIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state)
{
    return scaledPixmap(size, mode, state, 1);
}

QPixmap SymbolIconEngine::scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/, qreal scale)
{
    return icons::pixmap(name_, std::min(size.width(), size.height()) / scale, tintIn(mode), scale);
}

QSize SymbolIconEngine::actualSize(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/)
{
    const int extent = isNull() ? 0 : std::min(size.width(), size.height());
    return {extent, extent};
}

QIconEngine* SymbolIconEngine::clone() const
{
    return new SymbolIconEngine(*this);
}

QString SymbolIconEngine::key() const
{
    return QStringLiteral("kelm-symbol");
}

QString SymbolIconEngine::iconName()
{
    return name_;
}

bool SymbolIconEngine::isNull()
{
    return !icons::has(name_);
}

QColor SymbolIconEngine::tintIn(QIcon::Mode mode) const
{
    constexpr float disabledOpacity = 0.5F;
    const QPalette palette = QGuiApplication::palette();
    if (hue_) {
        QColor tint = style::ink(*hue_, appearanceOf(palette));
        tint.setAlphaF(tint.alphaF() * (mode == QIcon::Disabled ? disabledOpacity : 1.0F));
        return tint;
    }
    switch (mode) {
    case QIcon::Disabled:
        return palette.color(QPalette::Disabled, QPalette::ButtonText);
    case QIcon::Selected:
        return palette.color(QPalette::Active, QPalette::HighlightedText);
    case QIcon::Normal:
    case QIcon::Active:
        break;
    }
    return palette.color(QPalette::Active, QPalette::ButtonText);
}

} // namespace kelm
