// The tokens of a JSON text, as RFC 8259 writes them.
#pragma once

#include <QStringView>

namespace kelm {

/// The offset of the first unit at or behind `at` that is not JSON's white space.
qsizetype skipJsonBlanks(QStringView text, qsizetype at);

/// The offset behind the valid string whose opening quote stands at `at`.
qsizetype endOfJsonString(QStringView text, qsizetype at);

/// Decodes the escape at `at`, which is a valid one, and steps behind it. A pair of surrogates is two escapes.
char16_t decodeJsonEscape(QStringView text, qsizetype& at);

/// Reads the string whose opening quote stands at `at` and steps behind it. False where it is not valid: no end, a
/// control character, an unknown escape, or half a pair of surrogates, written out or escaped.
bool readJsonString(QStringView text, qsizetype& at);

/// Reads a number and steps behind its last digit; false where none stands.
bool readJsonNumber(QStringView text, qsizetype& at);

/// Steps behind `word` if it stands at `at`.
bool readJsonWord(QStringView text, qsizetype& at, QStringView word);

} // namespace kelm
