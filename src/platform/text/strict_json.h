// JSON as RFC 8259 has it, and nothing more lenient.
#pragma once

#include <QByteArray>
#include <QJsonDocument>

#include <optional>

namespace kelm {

/// Parses an array or an object of UTF-8 JSON text (RFC 8259), white space around it and a byte-order mark before it
/// allowed. Absent when anything is wrong with it: the toolkit's parser alone would take numbers such as "1." and ".5",
/// unknown escapes, unpaired surrogates and control characters within strings. Of two members of one name the last
/// counts.
std::optional<QJsonDocument> parseStrictJson(const QByteArray& text);

} // namespace kelm
