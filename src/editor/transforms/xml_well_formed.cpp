#include "editor/transforms/xml_well_formed.h"

#include "editor/transforms/xml_markup.h"

#include <QByteArray>

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <limits>
#include <memory>

namespace kelm {
namespace {

constexpr QStringView entityDeclaration = u"<!ENTITY";

/// What decides how the parser may be used. Of a text that is not well formed, what stands before the fault is read as
/// the parser reads it.
struct Survey
{
    bool hasTooManyAttributes = false;
    bool declaresEntities = false;
};

bool hasTooManyAttributes(QStringView text, qsizetype start, qsizetype end)
{
    constexpr int most = 50'000;
    constexpr int shortest = 5;
    const QStringView markup = text.sliced(start, end - start);
    if (markup.size() < shortest * qsizetype(most)) {
        return false;
    }
    if (xmlMarkupAt(text, start) == XmlMarkup::declaration) {
        // An entity may hold a tag.
        return markup.count(u'=') > most && markup.contains(entityDeclaration);
    }
    int values = 0;
    endOfXmlMarkup(text, start, [&values](qsizetype, qsizetype) { ++values; });
    return values > most;
}

Survey survey(QStringView text)
{
    Survey found;
    for (qsizetype at = text.indexOf(u'<'); at >= 0 && at < text.size(); at = text.indexOf(u'<', at)) {
        const qsizetype start = at;
        at = endOfXmlMarkup(text, start);
        found.declaresEntities = found.declaresEntities || (xmlMarkupAt(text, start) == XmlMarkup::declaration &&
                                                            text.sliced(start, at - start).contains(entityDeclaration));
        if (hasTooManyAttributes(text, start, at)) {
            found.hasTooManyAttributes = true;
            return found;
        }
    }
    return found;
}

/// Makes the parser check a text without building a tree from it.
void buildNothing(xmlSAXHandler& handler)
{
    handler.startElementNs = nullptr;
    handler.endElementNs = nullptr;
    handler.characters = nullptr;
    handler.ignorableWhitespace = nullptr;
    handler.cdataBlock = nullptr;
    handler.comment = nullptr;
    handler.processingInstruction = nullptr;
    handler.reference = nullptr;
}

/// The parser would read on behind a fault, where the survey may have seen other tags than it does. Not for texts that
/// declare entities: each is read by a parser of its own, and one that is stopped leaves the others without an end.
void stopAtFault(void* parser, xmlError* error)
{
    if (error->level == XML_ERR_FATAL) {
        xmlStopParser(static_cast<xmlParserCtxt*>(parser));
    }
}

} // namespace

XmlVerdict checkXml(QStringView text)
{
    // The parser takes a NUL for the end of the text.
    if (text.contains(QChar(0))) {
        return XmlVerdict::malformed;
    }
    const Survey found = survey(text);
    const QByteArray bytes = found.hasTooManyAttributes ? QByteArray() : text.toUtf8();
    if (found.hasTooManyAttributes || bytes.size() > std::numeric_limits<int>::max()) {
        return XmlVerdict::tooMuch;
    }
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> parser(xmlNewParserCtxt(), xmlFreeParserCtxt);
    if (!parser) {
        return XmlVerdict::tooMuch;
    }
    int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_IGNORE_ENC;
    if (!found.declaresEntities) {
        // Nothing can expand, so the limits on depth and length, meant against expansion, may go. With entities, the
        // tree is built since only then the parser reads each of them once.
        options |= XML_PARSE_HUGE;
        buildNothing(*parser->sax);
        parser->sax->serror = stopAtFault;
    }
    xmlDoc* document = xmlCtxtReadMemory(parser.get(), bytes.constData(), int(bytes.size()), nullptr, "UTF-8", options);
    const bool isWellFormed = document != nullptr && parser->wellFormed != 0;
    xmlFreeDoc(document);
    return isWellFormed ? XmlVerdict::wellFormed : XmlVerdict::malformed;
}

} // namespace kelm
