#include "editor/transforms/xml_formatter.h"

#include "editor/transforms/bounded_text.h"
#include "editor/transforms/xml_markup.h"
#include "editor/transforms/xml_outline.h"
#include "editor/transforms/xml_well_formed.h"
#include "platform/text/character_sets.h"

namespace kelm {
namespace {

constexpr int xmlBlanksALevel = 4;

bool isBlankOrTab(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
}

class BasicFormatter
{
public:
    BasicFormatter(QStringView text, qsizetype indent)
        : text_(text), indent_(std::clamp<qsizetype>(indent, 0, BoundedText::longestResult)), result_(text.size() * 2)
    {}

    std::optional<QString> format();

private:
    void endRun();
    void endTag();
    void appendLine(QStringView line);

    QStringView text_;
    qsizetype indent_;
    qsizetype level_ = 0;
    QString current_;
    BoundedText result_;
};

std::optional<QString> BasicFormatter::format()
{
    for (const QChar unit : text_) {
        if (unit == u'<') {
            endRun();
            current_ = unit;
        } else if (unit == u'>') {
            current_ += unit;
            endTag();
            current_.clear();
        } else if (unit != u'\n' && unit != u'\r') {
            current_ += unit;
        }
        if (result_.overflowed()) {
            return {};
        }
    }
    endRun();
    auto result = result_.take();
    if (result) {
        result = trimmed(*result, isWhitespaceOrNewline).toString();
    }
    return result;
}

/// Prints what was read since the last tag, if it is more than blanks.
void BasicFormatter::endRun()
{
    if (const QStringView run = trimmed(current_, isBlankOrTab); !run.isEmpty()) {
        appendLine(run);
    }
}

void BasicFormatter::endTag()
{
    const QStringView tag = trimmed(current_, isBlankOrTab);
    const bool isClosing = tag.startsWith(u"</");
    if (isClosing && level_ >= 1) {
        --level_;
    }
    appendLine(tag);
    if (!isClosing && !tag.endsWith(u"/>") && !tag.startsWith(u"<?") && !tag.startsWith(u"<!")) {
        ++level_;
    }
}

void BasicFormatter::appendLine(QStringView line)
{
    // A product past the bound overflows the result, not the number.
    result_.appendBlanks(indent_ == 0 ? 0 : std::min(level_, BoundedText::longestResult / indent_ + 1) * indent_);
    result_.append(line);
    result_.append(u'\n');
}

/// Prints a well-formed document from its outline.
class XmlPrinter
{
public:
    XmlPrinter(QStringView text, XmlOutline outline)
        : text_(text), outline_(std::move(outline)), result_(text.size() * 2)
    {}

    std::optional<QString> print();

private:
    void printPiece(const XmlOutline::Piece& piece);
    void beginLine();
    void printTag(QStringView tag);

    QStringView text_;
    XmlOutline outline_;
    qsizetype level_ = 0;
    bool isFirstLine_ = true;
    BoundedText result_;
};

std::optional<QString> XmlPrinter::print()
{
    for (const XmlOutline::Piece& piece : outline_.pieces) {
        printPiece(piece);
        if (result_.overflowed()) {
            return {};
        }
    }
    return result_.take();
}

void XmlPrinter::printPiece(const XmlOutline::Piece& piece)
{
    const QStringView source = text_.sliced(piece.start, piece.end - piece.start);
    switch (piece.kind) {
    case XmlOutline::Kind::byteOrderMark:
        result_.append(source);
        return;
    case XmlOutline::Kind::openingTag:
        beginLine();
        printTag(source);
        ++level_;
        return;
    case XmlOutline::Kind::closingTag:
        --level_;
        beginLine();
        printTag(source);
        return;
    case XmlOutline::Kind::wholeElement:
        beginLine();
        printTag(text_.sliced(piece.start, piece.tagEnd - piece.start));
        if (!piece.dropsContent) {
            result_.append(text_.sliced(piece.tagEnd, piece.closingTag - piece.tagEnd));
        }
        printTag(text_.sliced(piece.closingTag, piece.end - piece.closingTag));
        return;
    case XmlOutline::Kind::other:
        beginLine();
        result_.append(source);
        return;
    }
}

void XmlPrinter::beginLine()
{
    if (!isFirstLine_) {
        result_.append(u'\n');
    }
    isFirstLine_ = false;
    result_.appendBlanks(level_ * xmlBlanksALevel);
}

/// Prints a tag with one blank before each attribute and no other white space outside of values.
void XmlPrinter::printTag(QStringView tag)
{
    qsizetype at = 0;
    bool blankIsDue = false;
    while (at < tag.size()) {
        const QChar unit = tag[at];
        if (isXmlBlank(unit)) {
            blankIsDue = true;
            ++at;
            continue;
        }
        if (unit == u'=') {
            result_.append(u'=');
            at = skipXmlBlanks(tag, at + 1);
            const qsizetype end = tag.indexOf(tag[at], at + 1) + 1;
            result_.append(tag.sliced(at, end - at));
            at = end;
            blankIsDue = false;
            continue;
        }
        if (blankIsDue && unit != u'/' && unit != u'>') {
            result_.append(u' ');
        }
        blankIsDue = false;
        result_.append(unit.unicode());
        ++at;
    }
}

} // namespace

QString XMLFormatter::basicFormat(const QString& text, qsizetype indent)
{
    return BasicFormatter(text, indent).format().value_or(text);
}

QString formatXml(const QString& text)
{
    if (!QStringView(text).isValidUtf16()) {
        return text;
    }
    switch (checkXml(text)) {
    case XmlVerdict::wellFormed:
        return XmlPrinter(text, XmlOutline::read(text)).print().value_or(text);
    case XmlVerdict::malformed:
        return XMLFormatter::basicFormat(text, XMLFormatter::basicIndent);
    case XmlVerdict::tooMuch:
        break;
    }
    return text;
}

} // namespace kelm
