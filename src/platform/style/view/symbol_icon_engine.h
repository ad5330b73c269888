// A symbol as an icon of the toolkit.
#pragma once

#include "platform/desktop/named_colors.h"

#include <QColor>
#include <QIconEngine>

#include <optional>

namespace kelm {

/// Draws a symbol anew in each size, mode and scale that it is asked for, in the application palette's colours or in
/// a hue.
class SymbolIconEngine final : public QIconEngine
{
public:
    SymbolIconEngine(QString name, std::optional<SystemColor> hue);

    void paint(QPainter* painter, const QRect& rectangle, QIcon::Mode mode, QIcon::State state) override;
    /// Sizes are in device pixels.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override;
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;
    QString key() const override;
    QString iconName() override;
    bool isNull() override;

private:
    QColor tintIn(QIcon::Mode mode) const;

    QString name_;
    std::optional<SystemColor> hue_;
};

} // namespace kelm
