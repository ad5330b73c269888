#include "editor/transforms/xml_outline.h"

#include "editor/transforms/xml_markup.h"

namespace kelm {
namespace {

/// Steps over the markup of a text that is known to be well formed.
class XmlOutlineReader
{
public:
    explicit XmlOutlineReader(QStringView text) : text_(text) {}

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
    void addOther(qsizetype start);
    static bool isSpacePreserved(QStringView tag, qsizetype quote);

    QStringView text_;
    qsizetype at_ = 0;
    std::vector<Element> open_;
    XmlOutline outline_;
};

XmlOutline XmlOutlineReader::read()
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

void XmlOutlineReader::readText()
{
    const qsizetype start = at_;
    const qsizetype next = text_.indexOf(u'<', at_);
    at_ = next < 0 ? text_.size() : next;
    if (!open_.empty() && skipXmlBlanks(text_, start) < at_) {
        open_.back().isUntouchable = true;
    }
}

void XmlOutlineReader::readMarkup()
{
    const qsizetype start = at_;
    switch (xmlMarkupAt(text_, at_)) {
    case XmlMarkup::closingTag:
        readClosingTag();
        return;
    case XmlMarkup::openingTag:
        readOpeningTag();
        return;
    case XmlMarkup::characterData:
        at_ = endOfXmlMarkup(text_, at_);
        if (!open_.empty()) {
            open_.back().isUntouchable = true;
        }
        return;
    case XmlMarkup::comment:
    case XmlMarkup::instruction:
    case XmlMarkup::declaration:
        at_ = endOfXmlMarkup(text_, at_);
        addOther(start);
        return;
    }
}

void XmlOutlineReader::readOpeningTag()
{
    const qsizetype start = at_;
    bool preservesSpace = false;
    at_ = endOfXmlMarkup(text_, start, [&](qsizetype quote, qsizetype end) {
        preservesSpace = preservesSpace || isSpacePreserved(text_.sliced(start, end - start), quote - start);
    });
    const bool isEmpty = text_[at_ - 2] == u'/';
    if (isEmpty) {
        outline_.pieces.push_back({XmlOutline::Kind::wholeElement, start, at_, at_, at_, false});
        return;
    }
    open_.push_back({outline_.pieces.size(), preservesSpace});
    outline_.pieces.push_back({XmlOutline::Kind::openingTag, start, at_, at_, at_, false});
}

/// Whether the tag's last attribute, whose value begins with the given quote, is `xml:space="preserve"`.
bool XmlOutlineReader::isSpacePreserved(QStringView tag, qsizetype quote)
{
    if (tag.sliced(quote + 1).chopped(1) != u"preserve") {
        return false;
    }
    const QStringView name = tag.first(tag.first(quote).lastIndexOf(u'=')).trimmed();
    return name.endsWith(u"xml:space") && isXmlBlank(name.chopped(9).back());
}

void XmlOutlineReader::readClosingTag()
{
    const qsizetype start = at_;
    at_ = endOfXmlMarkup(text_, at_);
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

void XmlOutlineReader::addOther(qsizetype start)
{
    outline_.pieces.push_back({XmlOutline::Kind::other, start, at_, at_, at_, false});
}

} // namespace

XmlOutline XmlOutline::read(QStringView text)
{
    return XmlOutlineReader(text).read();
}

} // namespace kelm
