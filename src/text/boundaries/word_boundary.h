// What counts as a word for a search.
#pragma once

#include <QStringView>

namespace kelm {

/// Whether a word goes on over `offset`: the characters on both sides of it belong to words. Letters, marks, decimal
/// digits, connectors such as "_" and the two joiners do, as with "\w" in a pattern.
bool isInsideWord(QStringView text, qsizetype offset);

} // namespace kelm
