// Where the members of the objects of a JSON text stand.
#pragma once

#include <QStringView>

#include <optional>
#include <vector>

namespace kelm {

/// What a printer must know beforehand of a valid JSON text to print it in one walk with the keys of its objects
/// sorted. Objects are numbered in the order in which they open. Offsets are UTF-16 units of the text.
struct JsonOutline
{
    struct Member
    {
        /// Offset of the key's opening quote.
        quint32 key = 0;
        /// The number of the first object in the value, if there is one.
        quint32 firstObject = 0;
    };
    struct Object
    {
        /// Its members in the order of printing, each key once.
        quint32 firstMember = 0;
        quint32 memberCount = 0;
        /// Offset behind the closing brace.
        quint32 end = 0;
        /// The number of the first object that opens behind it.
        quint32 nextObject = 0;
    };

    /// Offset of the bracket of the top-level array or object.
    qsizetype start = 0;
    std::vector<Member> members;
    std::vector<Object> objects;

    /// Reads the whole text; nothing if it is not valid (see `JSONFormatter::format`) or longer than 2^32 - 2 units.
    static std::optional<JsonOutline> read(QStringView text);
};

} // namespace kelm
