#include "platform/view/panel_controls.h"

namespace kelm {

PlainButton* makePanelButton(const QString& label, QWidget* parent, bool isProminent)
{
    ButtonLook look = isProminent ? prominentLook() : borderedLook();
    look.textSize = style::typeSize::subheadline;
    look.padding = {9, 4, 9, 4};
    auto* button = new PlainButton(look, parent);
    button->setText(label);
    return button;
}

PlainButton* makeSymbolButton(const QString& symbol, const QString& help, QWidget* parent, int symbolSize)
{
    auto* button = new PlainButton(
        {.symbol = symbol, .symbolSize = symbolSize, .hoveredTint = Tint::primary(), .padding = {4, 4, 4, 4}}, parent);
    button->setHelp(help);
    return button;
}

QLineEdit* makePanelField(const QString& prompt, QWidget* parent)
{
    auto* field = new QLineEdit(parent);
    field->setPlaceholderText(prompt);
    field->setAccessibleName(prompt);
    field->setFont(style::interfaceFont(12));
    field->setTextMargins(3, 1, 3, 1);
    field->setMinimumWidth(40);
    return field;
}

QCheckBox* makePanelCheckBox(const QString& label, QWidget* parent)
{
    auto* box = new QCheckBox(label, parent);
    box->setFont(style::interfaceFont(style::typeSize::subheadline));
    return box;
}

} // namespace kelm
