// Whether a text is an XML document.
#pragma once

#include <QStringView>

namespace kelm {

enum class XmlVerdict {
    wellFormed,
    malformed,
    /// Nobody can tell in a time that a person would wait.
    tooMuch,
};

/// Whether libxml2 takes the text, which must be valid UTF-16, for a well-formed document. An encoding that its
/// declaration names is not looked at. Loads nothing and expands no entity. A tag with more than 50,000 attributes is
/// too much, since the library compares each of them with all before it; so is a text that is longer than it can
/// take.
XmlVerdict checkXml(QStringView text);

} // namespace kelm
