// The pretty-printed form of a JSON text.
#pragma once

#include <QString>

namespace kelm {

/// Pretty-prints JSON (RFC 8259) without a detour over numbers and objects in memory: numbers keep their digits, and
/// the depth of a text is bounded by memory, not by the stack.
struct JSONFormatter
{
    JSONFormatter() = delete;

    /// The text printed with one key or element a line, `indent` blanks a level, keys sorted (see `JsonKey`) and a
    /// blank on both sides of each colon; an empty array or object is its two brackets with an empty line between them.
    /// Of equal keys in one object the last one counts. Strings escape what must be escaped and nothing else; a
    /// byte-order mark in front is read over and not printed.
    ///
    /// An `indent` other than 2 replaces every two blanks in the result, within strings too; below 0 it counts as 0.
    ///
    /// A text that is not JSON with an array or object at the top comes back as it is: trailing commas, comments, other
    /// quotes, leading zeros, control characters in strings and unpaired surrogates, written out or as escapes, are
    /// errors. So does one whose result would be longer than `BoundedText::longestResult`.
    static QString format(const QString& text, qsizetype indent);
};

} // namespace kelm
