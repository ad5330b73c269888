// Texts in forms in which those that people take for the same are equal.
#pragma once

#include <QString>
#include <QStringView>

namespace kelm {

/// The canonical decomposition (NFD): equal for texts that are canonically equivalent. Linear in the text. Any thread.
QString decomposed(QStringView text);

/// Full case folding under canonical equivalence (Unicode, section 3.13, D145): "ß" becomes "ss". Linear in the text.
/// Any thread.
QString decomposedWithoutCase(QStringView text);

/// Whether more marks follow each other somewhere than any language has, so that what puts them into their order is
/// better given the decomposition. Any thread.
bool hasManyMarks(QStringView text);

} // namespace kelm
