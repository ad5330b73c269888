// Control characters as something to be seen.
#pragma once

#include <QString>
#include <QStringView>
#include <QTextLayout>

namespace kelm {

/// Whether a unit is a control character that has no look of its own, a tab having one, or one that turns the direction
/// of what stands behind it.
bool needsSign(QChar unit);

/// The text with a letter in the place of each control character, unit for unit: U+0000 to U+001F are "@" to "_", as
/// keyboards have them, U+007F is "?", U+0080 to U+009F are small letters, and what turns a direction is an arrow's
/// head that way.
QString withControlSigns(QString text);

/// The ground on which these letters are drawn, so that they are not taken for the text's own: one range for each run
/// of control characters in `text`.
QList<QTextLayout::FormatRange> controlSignFormats(QStringView text);

} // namespace kelm
