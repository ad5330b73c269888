#include "editor/transforms/json_formatter.h"

#include "editor/transforms/bounded_text.h"
#include "editor/transforms/json_outline.h"

#include <utility>

namespace kelm {
namespace {

constexpr int jsonBlanksALevel = 2;

/// The offset of the first unit at or behind `at` that is not JSON's white space.
qsizetype skipJsonBlanks(QStringView text, qsizetype at)
{
    const char16_t* units = text.utf16();
    while (at < text.size() && (units[at] == u' ' || units[at] == u'\n' || units[at] == u'\r' || units[at] == u'\t')) {
        ++at;
    }
    return at;
}

/// Decodes the valid escape at `at` and steps behind it. A pair of surrogates is two escapes.
char16_t decodeJsonEscape(QStringView text, qsizetype& at)
{
    const QChar letter = text[at + 1];
    at += 2;
    if (letter == u'u') {
        at += 4;
        return text.sliced(at - 4, 4).toUShort(nullptr, 16);
    }
    static constexpr QStringView letters = u"bfnrt";
    const qsizetype index = letters.indexOf(letter);
    return index < 0 ? letter.unicode() : u"\b\f\n\r\t"[index];
}

/// Prints a valid text by walking over it once, from member to member where an object's members are in another order.
class JsonPrinter
{
public:
    JsonPrinter(QStringView text, const JsonOutline& outline)
        : text_(text), outline_(outline), at_(outline.start), result_(text.size() * 2)
    {}

    std::optional<QString> print();

private:
    struct Level
    {
        bool isArray = true;
        quint32 object = 0;
        /// How many of its elements or members have been printed.
        quint32 printed = 0;
    };

    void printValue();
    void open();
    void proceed();
    void proceedInArray();
    void proceedInObject();
    void printMember(const JsonOutline::Member& member);
    void printScalar();
    void printString();
    void printEscape();
    void beginLine();
    void close(char16_t bracket);
    char16_t unit() const { return text_.utf16()[at_]; }

    QStringView text_;
    const JsonOutline& outline_;
    qsizetype at_;
    quint32 nextObject_ = 0;
    std::vector<Level> levels_;
    BoundedText result_;
};

std::optional<QString> JsonPrinter::print()
{
    printValue();
    while (!levels_.empty() && !result_.overflowed()) {
        proceed();
    }
    return result_.take();
}

void JsonPrinter::printValue()
{
    switch (unit()) {
    case u'[':
    case u'{':
        open();
        break;
    case u'"':
        printString();
        break;
    default:
        printScalar();
    }
}

/// Prints the opening bracket of an array or object, or the whole of it if it is empty.
void JsonPrinter::open()
{
    const bool isArray = unit() == u'[';
    result_.append(unit());
    levels_.push_back({isArray, isArray ? 0 : nextObject_++, 0});
    at_ = skipJsonBlanks(text_, at_ + 1);
    if (unit() == (isArray ? u']' : u'}')) {
        result_.append(u'\n');
        ++at_;
        close(isArray ? u']' : u'}');
    }
}

/// Prints the next element or member of the innermost array or object, or its closing bracket.
void JsonPrinter::proceed()
{
    if (levels_.back().isArray) {
        proceedInArray();
    } else {
        proceedInObject();
    }
}

void JsonPrinter::proceedInArray()
{
    if (levels_.back().printed++ > 0) {
        at_ = skipJsonBlanks(text_, at_);
        const bool isLast = unit() == u']';
        ++at_;
        if (isLast) {
            close(u']');
            return;
        }
        at_ = skipJsonBlanks(text_, at_);
        result_.append(u',');
    }
    beginLine();
    printValue();
}

void JsonPrinter::proceedInObject()
{
    Level& level = levels_.back();
    const JsonOutline::Object& object = outline_.objects[level.object];
    if (level.printed == object.memberCount) {
        at_ = object.end;
        nextObject_ = object.nextObject;
        close(u'}');
        return;
    }
    if (level.printed > 0) {
        result_.append(u',');
    }
    printMember(outline_.members[object.firstMember + level.printed++]);
}

void JsonPrinter::printMember(const JsonOutline::Member& member)
{
    beginLine();
    at_ = member.key;
    printString();
    result_.append(u" : ");
    // Over the colon.
    at_ = skipJsonBlanks(text_, skipJsonBlanks(text_, at_) + 1);
    nextObject_ = member.firstObject;
    printValue();
}

/// Prints a number, `true`, `false` or `null` as it is written.
void JsonPrinter::printScalar()
{
    const auto belongs = [](char16_t c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || c == u'E' || c == u'.' || c == u'-' || c == u'+';
    };
    const qsizetype start = at_;
    while (at_ < text_.size() && belongs(unit())) {
        ++at_;
    }
    result_.append(text_.sliced(start, at_ - start));
}

/// Prints a string. Only what it has escaped can be written in more than one way.
void JsonPrinter::printString()
{
    qsizetype start = at_++;
    while (unit() != u'"') {
        if (unit() != u'\\') {
            ++at_;
            continue;
        }
        result_.append(text_.sliced(start, at_ - start));
        printEscape();
        start = at_;
    }
    ++at_;
    result_.append(text_.sliced(start, at_ - start));
}

void JsonPrinter::printEscape()
{
    const char16_t decoded = decodeJsonEscape(text_, at_);
    static constexpr QStringView withShortForm = u"\"\\\b\f\n\r\t";
    static constexpr QStringView shortForms = u"\"\\bfnrt";
    if (const qsizetype index = withShortForm.indexOf(QChar(decoded)); index >= 0) {
        result_.append(u'\\');
        result_.append(shortForms[index].unicode());
    } else if (decoded < u' ') {
        result_.append(decoded < 0x10 ? u"\\u000" : u"\\u001");
        result_.append(u"0123456789abcdef"[decoded % 16]);
    } else {
        result_.append(decoded);
    }
}

void JsonPrinter::beginLine()
{
    result_.append(u'\n');
    result_.appendBlanks(qsizetype(levels_.size()) * jsonBlanksALevel);
}

void JsonPrinter::close(char16_t bracket)
{
    levels_.pop_back();
    beginLine();
    result_.append(bracket);
}

/// Replaces each two blanks, from left to right, by `indent` blanks.
std::optional<QString> reindented(QStringView text, qsizetype indent)
{
    BoundedText result(text.size());
    qsizetype start = 0;
    for (qsizetype pair = text.indexOf(u"  "); pair >= 0 && !result.overflowed(); pair = text.indexOf(u"  ", start)) {
        result.append(text.sliced(start, pair - start));
        result.appendBlanks(indent);
        start = pair + 2;
    }
    result.append(text.sliced(start));
    return result.take();
}

} // namespace

QString JSONFormatter::format(const QString& text, qsizetype indent)
{
    const auto outline = JsonOutline::read(text);
    if (!outline) {
        return text;
    }
    auto printed = JsonPrinter(text, *outline).print();
    if (printed && indent != jsonBlanksALevel) {
        printed = reindented(*printed, indent);
    }
    return printed.value_or(text);
}

} // namespace kelm
