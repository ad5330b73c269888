#include "editor/transforms/xml_markup.h"

namespace kelm {
namespace {

/// The offset behind the next occurrence of `end` at or behind `at`, or the text's end.
qsizetype behind(QStringView text, qsizetype at, QStringView end)
{
    const qsizetype found = text.indexOf(end, at);
    return found < 0 ? text.size() : found + end.size();
}

bool isQuote(QChar unit)
{
    return unit == u'"' || unit == u'\'';
}

qsizetype endOfTag(QStringView text, qsizetype at, const std::function<void(qsizetype, qsizetype)>& onValue)
{
    while (at < text.size()) {
        if (text[at] == u'>') {
            return at + 1;
        }
        if (!isQuote(text[at])) {
            ++at;
            continue;
        }
        const qsizetype quote = at;
        at = behind(text, quote + 1, text.sliced(quote, 1));
        if (onValue) {
            onValue(quote, at);
        }
    }
    return at;
}

/// The internal subset holds declarations, comments and processing instructions.
qsizetype endOfDocumentType(QStringView text, qsizetype at)
{
    bool isInSubset = false;
    while (at < text.size()) {
        const QStringView rest = text.sliced(at);
        if (isQuote(rest.front())) {
            at = behind(text, at + 1, rest.first(1));
        } else if (rest.startsWith(u"<!--")) {
            at = behind(text, at + 4, u"-->");
        } else if (rest.startsWith(u"<?")) {
            at = behind(text, at, u"?>");
        } else {
            ++at;
            if (rest.front() == u'>' && !isInSubset) {
                return at;
            }
            isInSubset = rest.front() == u'[' || (isInSubset && rest.front() != u']');
        }
    }
    return at;
}

} // namespace

XmlMarkup xmlMarkupAt(QStringView text, qsizetype at)
{
    const char16_t next = at + 1 < text.size() ? text[at + 1].unicode() : u'\0';
    if (next == u'/') {
        return XmlMarkup::closingTag;
    }
    if (next == u'?') {
        return XmlMarkup::instruction;
    }
    if (next != u'!') {
        return XmlMarkup::openingTag;
    }
    const QStringView rest = text.sliced(at);
    if (rest.startsWith(u"<!--")) {
        return XmlMarkup::comment;
    }
    return rest.startsWith(u"<![CDATA[") ? XmlMarkup::characterData : XmlMarkup::declaration;
}

qsizetype endOfXmlMarkup(QStringView text, qsizetype at,
                         const std::function<void(qsizetype quote, qsizetype end)>& onValue)
{
    switch (xmlMarkupAt(text, at)) {
    case XmlMarkup::openingTag:
        return endOfTag(text, at, onValue);
    case XmlMarkup::closingTag:
        return behind(text, at, u">");
    case XmlMarkup::comment:
        return behind(text, at + 4, u"-->");
    case XmlMarkup::characterData:
        return behind(text, at, u"]]>");
    case XmlMarkup::instruction:
        return behind(text, at, u"?>");
    case XmlMarkup::declaration:
        return endOfDocumentType(text, at);
    }
    return text.size();
}

bool isXmlBlank(QChar unit)
{
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

qsizetype skipXmlBlanks(QStringView text, qsizetype at)
{
    while (at < text.size() && isXmlBlank(text[at])) {
        ++at;
    }
    return at;
}

} // namespace kelm
