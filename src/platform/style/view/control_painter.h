// How the controls look that the style draws itself.
#pragma once

#include <QColor>
#include <QRect>
#include <QStyle>
#include <QStyleOptionTab>

class QPainter;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionFrame;
class QStyleOptionMenuItem;
class QStyleOptionSlider;

namespace kelm {

/// The shortest thumb of a scroll bar, in points.
inline constexpr int shortestThumb = 28;

/// The label's colour, thinned: for grounds and lines that have to show on dark and light alike.
QColor tint(const QStyleOption& option, float alpha);

/// The ring of a control that has the keyboard, along the inner edge of `box`.
void drawFocusRing(QPainter& painter, const QRectF& box, QColor color, qreal radius);

/// The thumb alone, and only where there is something to scroll.
void drawScrollBar(const QStyleOptionSlider& option, QPainter& painter, const QRect& thumb);

/// Where a part of a scroll bar lies: without arrows at the ends, the thumb runs along the whole bar.
QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part);

/// A rounded box, filled with the accent colour and ticked when it is checked.
void drawCheckBox(const QStyleOption& option, QPainter& painter);

/// A small cross, on a round ground while the mouse is over it.
void drawCloseCross(const QStyleOption& option, QPainter& painter);

/// The ground of a field with round corners, and the ring of one that is typed into; a field without a frame is its
/// text alone.
void drawField(const QStyleOptionFrame& option, QPainter& painter);

/// A hairline under the bar, which the selected tab interrupts with its ground.
void drawTab(const QStyleOptionTab& option, QPainter& painter);

/// The option that a tab's label is drawn with: the labels of tabs that are not selected stand back.
QStyleOptionTab tabLabelOption(const QStyleOptionTab& option);

void drawMenuBarItem(const QStyleOptionMenuItem& option, QPainter& painter);

/// The ground of a button: accent-coloured where it is the default, none where it is flat.
void drawPushButton(const QStyleOptionButton& option, QPainter& painter);

} // namespace kelm
