#include "editor/transforms/xml_outline.h"

#include <QByteArray>

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace kelm {
namespace {

/// Steps over the markup of a text that is known to be well formed.
class OutlineReader
{
public:
    explicit OutlineReader(QStringView text) : text_(text) {}

    XmlOutline read();

private:
    struct Element
    {
        size_t piece = 0;
        /// Content that must not be touched: text, or what the element itself says about its white space.
        bool isUntouchable = false;
    };

    void readText();
    void readMarkup();
    void readOpeningTag();
    void readClosingTag();
    void skipDocumentType();
    bool startsWith(QStringView markup) const { return text_.sliced(at_).startsWith(markup); }
    /// Steps behind the next occurrence of `end`, or to the end of the text.
    void skipBehind(QStringView end);
    void addOther(qsizetype start);
    static bool isSpacePreserved(QStringView tag, qsizetype quote);

    QStringView text_;
    qsizetype at_ = 0;
    std::vector<Element> open_;
    XmlOutline outline_;
};

XmlOutline OutlineReader::read()
{
    if (text_.startsWith(u'\ufeff')) {
        at_ = 1;
        outline_.pieces.push_back({XmlOutline::Kind::byteOrderMark, 0, 1, 0, 0, false});
    }
    while (at_ < text_.size()) {
        if (text_[at_] == u'<') {
            readMarkup();
        } else {
            readText();
        }
    }
    return std::move(outline_);
}

void OutlineReader::readText()
{
    const qsizetype start = at_;
    const qsizetype next = text_.indexOf(u'<', at_);
    at_ = next < 0 ? text_.size() : next;
    if (!open_.empty() && skipXmlBlanks(text_, start) < at_) {
        open_.back().isUntouchable = true;
    }
}

void OutlineReader::readMarkup()
{
    const qsizetype start = at_;
    if (startsWith(u"</")) {
        readClosingTag();
    } else if (startsWith(u"<!--")) {
        at_ += 4;
        skipBehind(u"-->");
        addOther(start);
    } else if (startsWith(u"<![CDATA[")) {
        skipBehind(u"]]>");
        if (!open_.empty()) {
            open_.back().isUntouchable = true;
        }
    } else if (startsWith(u"<?")) {
        skipBehind(u"?>");
        addOther(start);
    } else if (startsWith(u"<!")) {
        skipDocumentType();
        addOther(start);
    } else {
        readOpeningTag();
    }
}

void OutlineReader::readOpeningTag()
{
    const qsizetype start = at_;
    bool preservesSpace = false;
    while (at_ < text_.size() && text_[at_] != u'>') {
        if (text_[at_] != u'"' && text_[at_] != u'\'') {
            ++at_;
            continue;
        }
        const qsizetype quote = at_++;
        skipBehind(text_.sliced(quote, 1));
        preservesSpace = preservesSpace || isSpacePreserved(text_.sliced(start, at_ - start), quote - start);
    }
    const bool isEmpty = text_[at_ - 1] == u'/';
    at_ = std::min(at_ + 1, text_.size());
    if (isEmpty) {
        outline_.pieces.push_back({XmlOutline::Kind::wholeElement, start, at_, at_, at_, false});
        return;
    }
    open_.push_back({outline_.pieces.size(), preservesSpace});
    outline_.pieces.push_back({XmlOutline::Kind::openingTag, start, at_, at_, at_, false});
}

/// Whether the tag's last attribute, whose value begins with the given quote, is `xml:space="preserve"`.
bool OutlineReader::isSpacePreserved(QStringView tag, qsizetype quote)
{
    if (tag.sliced(quote + 1).chopped(1) != u"preserve") {
        return false;
    }
    const QStringView name = tag.first(tag.first(quote).lastIndexOf(u'=')).trimmed();
    return name.endsWith(u"xml:space") && isXmlBlank(name.chopped(9).back());
}

void OutlineReader::readClosingTag()
{
    const qsizetype start = at_;
    skipBehind(u">");
    if (open_.empty()) {
        return;
    }
    const Element element = open_.back();
    open_.pop_back();
    const bool hasPieces = outline_.pieces.size() > element.piece + 1;
    if (hasPieces && !element.isUntouchable) {
        outline_.pieces.push_back({XmlOutline::Kind::closingTag, start, at_, at_, at_, false});
        return;
    }
    outline_.pieces.resize(element.piece + 1);
    XmlOutline::Piece& whole = outline_.pieces.back();
    whole.kind = XmlOutline::Kind::wholeElement;
    whole.end = at_;
    whole.closingTag = start;
    // White space alone is content, unless it breaks the line: then it is layout.
    const QStringView content = text_.sliced(whole.tagEnd, start - whole.tagEnd);
    whole.dropsContent = !element.isUntouchable && (content.contains(u'\n') || content.contains(u'\r'));
}

/// Steps behind a document type, whose internal subset holds declarations, comments and processing instructions.
void OutlineReader::skipDocumentType()
{
    bool isInSubset = false;
    while (at_ < text_.size()) {
        const QChar unit = text_[at_];
        if (unit == u'"' || unit == u'\'') {
            ++at_;
            skipBehind(text_.sliced(at_ - 1, 1));
        } else if (startsWith(u"<!--")) {
            at_ += 4;
            skipBehind(u"-->");
        } else if (startsWith(u"<?")) {
            skipBehind(u"?>");
        } else {
            ++at_;
            if (unit == u'>' && !isInSubset) {
                return;
            }
            isInSubset = unit == u'[' || (isInSubset && unit != u']');
        }
    }
}

void OutlineReader::skipBehind(QStringView end)
{
    const qsizetype found = text_.indexOf(end, at_);
    at_ = found < 0 ? text_.size() : found + end.size();
}

void OutlineReader::addOther(qsizetype start)
{
    outline_.pieces.push_back({XmlOutline::Kind::other, start, at_, at_, at_, false});
}

/// More attributes in one tag than documents have: the parser compares each with all before it.
bool hasTooManyAttributes(QStringView text)
{
    constexpr int most = 50'000;
    int count = -1;
    for (const QChar unit : text) {
        if (unit == u'<') {
            count = 0;
        } else if (unit == u'>') {
            count = -1;
        } else if (unit == u'=' && count >= 0 && ++count > most) {
            return true;
        }
    }
    return false;
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

} // namespace

XmlOutline XmlOutline::read(QStringView text)
{
    return OutlineReader(text).read();
}

bool isWellFormedXml(QStringView text)
{
    // The parser takes a NUL for the end of the text.
    if (text.contains(QChar(0)) || hasTooManyAttributes(text)) {
        return false;
    }
    const QByteArray bytes = text.toUtf8();
    if (bytes.size() > std::numeric_limits<int>::max()) {
        return false;
    }
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> parser(xmlNewParserCtxt(), xmlFreeParserCtxt);
    if (!parser) {
        return false;
    }
    int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_IGNORE_ENC;
    if (!text.contains(u"<!ENTITY")) {
        // Nothing can expand, so the limits on depth and length, meant against expansion, may go. With entities, the
        // tree is built since only then the parser reads each of them once.
        options |= XML_PARSE_HUGE;
        buildNothing(*parser->sax);
    }
    xmlDoc* document = xmlCtxtReadMemory(parser.get(), bytes.constData(), int(bytes.size()), nullptr, "UTF-8", options);
    const bool isWellFormed = document != nullptr && parser->wellFormed != 0;
    xmlFreeDoc(document);
    return isWellFormed;
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
