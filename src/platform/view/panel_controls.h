// The controls of the source control panel, in the sizes of a narrow panel.
#pragma once

#include "platform/view/plain_button.h"

#include <QCheckBox>
#include <QLineEdit>

namespace kelm {

/// A button with words, an outline or the accent colour behind it.
PlainButton* makePanelButton(const QString& label, QWidget* parent, bool isProminent = false);

/// A button that is a symbol, named by its help text.
PlainButton* makeSymbolButton(const QString& symbol, const QString& help, QWidget* parent, int symbolSize = 13);

/// A field for one line, named by its prompt.
QLineEdit* makePanelField(const QString& prompt, QWidget* parent);

QCheckBox* makePanelCheckBox(const QString& label, QWidget* parent);

} // namespace kelm
