// The card on which an overlay stands.
#pragma once

#include <QWidget>

namespace kelm {

/// A panel on the window's ground with round corners and a soft shadow, for which it keeps room around itself as its
/// contents margins.
class OverlayCard : public QWidget
{
    Q_OBJECT

public:
    /// `width` is that of the panel without its shadow, in points; `shadowRadius` how far the shadow reaches.
    OverlayCard(int width, int shadowRadius, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int shadowRadius_;
};

} // namespace kelm
