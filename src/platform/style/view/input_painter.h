// How the controls look that take a choice or a measure.
#pragma once

#include <QRect>
#include <QSize>
#include <QStyle>
#include <QStyleOptionButton>

class QPainter;
class QStyleOption;
class QStyleOptionComboBox;
class QStyleOptionSlider;

namespace kelm {

/// The ground of a button that opens a list, and the chevron at its right.
void drawComboBox(const QStyleOptionComboBox& option, QPainter& painter);

/// The text of the choice that is made, and its icon where it has one.
void drawComboBoxLabel(const QStyleOptionComboBox& option, QPainter& painter);

/// Where the choice stands in such a button, and where the chevron; the list covers the button.
QRect comboBoxPart(const QStyleOptionComboBox& option, QStyle::SubControl part);

/// The extent of such a button around the extent of its text, in points.
QSize comboBoxSize(const QSize& contents);

/// A thin line, in the accent colour up to a round knob.
void drawSlider(const QStyleOptionSlider& option, QPainter& painter);

/// Where the knob of a slider lies, and where its line.
QRect sliderPart(const QStyleOptionSlider& option, QStyle::SubControl part);

/// The frame of a field of several lines, in the accent colour while it is typed into.
void drawTextFieldFrame(const QStyleOption& option, QPainter& painter);

/// The ground of a small button in a bar: under the mouse, held down, and in the accent colour while it is on.
void drawToolButtonGround(const QStyleOption& option, QPainter& painter);

/// A ring, filled with the accent colour around a dot where it is chosen.
void drawRadioButton(const QStyleOption& option, QPainter& painter);

/// The option that a button's label is drawn with: white where the button is the default one.
QStyleOptionButton pushButtonLabelOption(const QStyleOptionButton& option);

} // namespace kelm
