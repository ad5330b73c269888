// The pretty-printed form of an XML text.
#pragma once

#include <QString>

namespace kelm {

struct XMLFormatter
{
    XMLFormatter() = delete;

    /// The blanks a level of a text that is formatted without being read as a document.
    static constexpr qsizetype basicIndent = 2;

    /// Puts each tag and each run of text on a line of its own, `indent` blanks a level (below 0 counts as 0), whether
    /// the text is well formed or not: a "<" begins a tag and the next ">" ends it, be it in a comment or an
    /// attribute's value. Line feeds and carriage returns are dropped, and so are blanks and tabs at both ends of a
    /// line. A text whose result would be longer than `BoundedText::longestResult` comes back as it is.
    static QString basicFormat(const QString& text, qsizetype indent);
};

/// Pretty-prints an XML document, four blanks a level, or gives `basicFormat` at indent 2 of a text that is not well
/// formed. A text with unpaired surrogates, and one that it would take too long to look at, comes back as it is.
///
/// Only white space changes: between elements, and within tags around names and attributes. Declaration, document type,
/// comments, CDATA sections, processing instructions, entities, values and the two forms of an empty element stay as
/// they are written. An element that holds text besides white space, or white space alone, or has
/// `xml:space="preserve"` is printed with its content untouched.
///
/// Whether the text is well formed is libxml2's word. Nothing is loaded from the disk or the network, and entities are
/// not expanded; a text that declares entities is held to the library's limits on depth, length and expansion.
///
/// The library's own printer, tried, writes half of the documents of the test otherwise: quotes, line ends, character
/// references, white space in tags, encodings and the form of empty elements do not stay as they are written. Expat,
/// tried since it tells where everything stands, refuses names with characters beyond the basic plane and takes
/// entities that are not well formed.
QString formatXml(const QString& text);

} // namespace kelm
