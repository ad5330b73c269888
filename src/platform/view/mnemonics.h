// The keys that a label makes of its letters.
#pragma once

#include <QString>

namespace kelm {

/// A text for what takes a letter behind an ampersand for a key: menus, buttons, tabs. The ampersands of the text are
/// shown as they are, and make no key.
QString withoutMnemonic(QString text);

/// What such a label shows.
QString withoutMnemonicMarks(QStringView label);

} // namespace kelm
