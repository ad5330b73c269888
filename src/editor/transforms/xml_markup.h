// The markup of an XML text, as XML 1.0 delimits it. Tags have to be found before libxml2 reads the text: one of
// 100,000 attributes takes it half a minute, and it has no limit for them.
#pragma once

#include <QStringView>

#include <functional>

namespace kelm {

enum class XmlMarkup {
    openingTag,
    closingTag,
    comment,
    characterData,
    instruction,
    /// The document type with its internal subset.
    declaration,
};

/// What begins with the "<" at `at`.
XmlMarkup xmlMarkupAt(QStringView text, qsizetype at);

/// The offset behind the markup whose "<" stands at `at`; the text's end where it does not end. A ">" in a quoted value
/// ends nothing. `onValue` is told of each quoted value in a tag: the offset of its first quote and the one behind its
/// last.
qsizetype endOfXmlMarkup(QStringView text, qsizetype at,
                         const std::function<void(qsizetype quote, qsizetype end)>& onValue = {});

/// One of XML's four white space characters.
bool isXmlBlank(QChar unit);

/// The offset of the first unit at or behind `at` that is not XML's white space.
qsizetype skipXmlBlanks(QStringView text, qsizetype at);

} // namespace kelm
