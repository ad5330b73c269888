// The pieces of a well-formed XML document that get a line of their own.
#pragma once

#include <QStringView>

#include <vector>

namespace kelm {

/// What a printer puts on lines of their own, in the order of the text. Offsets are UTF-16 units of the text; white
/// space between the pieces belongs to none.
struct XmlOutline
{
    enum class Kind {
        byteOrderMark,
        /// A tag of an element whose content is pieces.
        openingTag,
        closingTag,
        /// An element whose content is printed as it is, from its opening to its closing tag, or an empty-element tag.
        wholeElement,
        /// A comment, a processing instruction, the declaration or the document type.
        other,
    };
    struct Piece
    {
        Kind kind = Kind::other;
        qsizetype start = 0;
        qsizetype end = 0;
        /// The end of the opening tag; `end` for a piece that is no element.
        qsizetype tagEnd = 0;
        /// The start of a whole element's closing tag, else `end`.
        qsizetype closingTag = 0;
        /// Whether what lies between the two is layout, to be left out.
        bool dropsContent = false;
    };

    std::vector<Piece> pieces;

    /// The text must be well formed. libxml2's events, tried, tell the places in bytes of UTF-8, those of what stands
    /// in entities among them: to put them into the text takes as much code as to step over its markup.
    static XmlOutline read(QStringView text);
};

} // namespace kelm
