// Texts in forms in which those that people take for the same are equal.
#pragma once

#include <QString>
#include <QStringView>

namespace kelm {

/// The canonical decomposition (NFD): equal for texts that are canonically equivalent. Any thread.
QString decomposed(QStringView text);

/// Full case folding under canonical equivalence (Unicode, section 3.13, D145): "ß" becomes "ss". Any thread.
QString decomposedWithoutCase(QStringView text);

} // namespace kelm
