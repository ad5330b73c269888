// RapidJSON's reader, held to RFC 8259 and nothing else.
#pragma once

#include <QStringView>

// The library counts on from the null of a stack that is still empty, which one sanitizer of Clang ends the program
// for.
#ifdef __clang__
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/reader.h>
#ifdef __clang__
#pragma clang attribute pop
#endif

namespace kelm {

// The names are those that the library calls.
// NOLINTBEGIN(readability-identifier-naming)

/// UTF-16 that lets the library write an escaped surrogate without its other half, which it takes for impossible;
/// `JsonHandler` refuses it.
struct JsonUtf16 : rapidjson::UTF16<char16_t>
{
    template <typename Output>
    static void Encode(Output& output, unsigned codePoint)
    {
        if (QChar::isSurrogate(codePoint)) {
            output.Put(char16_t(codePoint));
        } else {
            UTF16::Encode(output, codePoint);
        }
    }
};

/// A text as the library reads it, in the encoding `Source`. It refuses numbers that no double can hold, which the
/// grammar allows, and so it is shown the first two digits alone of each run in a number: more of them say nothing
/// about the grammar.
template <typename Source>
class JsonStream : public rapidjson::GenericStringStream<Source>
{
public:
    using Ch = typename Source::Ch;
    using Base = rapidjson::GenericStringStream<Source>;

    JsonStream(const Ch* begin, const Ch* end) : Base(begin), end_(end) {}

    Ch Peek() const { return this->src_ == end_ ? Ch() : *this->src_; }
    Ch Take()
    {
        const Ch unit = *this->src_++;
        if (isInString_) {
            isInString_ = unit != '"' || isEscaped_;
            isEscaped_ = unit == '\\' && !isEscaped_;
        } else if (unit == '"') {
            isInString_ = true;
        } else if (isDigit(unit)) {
            skipDigits();
        }
        return unit;
    }
    bool isAtEnd() const { return this->src_ == end_; }

private:
    static bool isDigit(Ch unit) { return unit >= '0' && unit <= '9'; }
    void skipDigits()
    {
        const Ch* first = this->src_ - 1;
        if (first > this->head_ && isDigit(first[-1])) {
            while (isDigit(Peek())) {
                ++this->src_;
            }
        }
    }

    const Ch* end_;
    bool isInString_ = false;
    bool isEscaped_ = false;
};

/// Takes all events. A handler derived from it hides those it wants.
template <typename Handler>
struct JsonHandler : rapidjson::BaseReaderHandler<JsonUtf16, Handler>
{
    bool String(const char16_t* text, rapidjson::SizeType length, bool /*copy*/)
    {
        return QStringView(text, length).isValidUtf16();
    }
};

/// Reads the whole stream, however deep it is nested. False when it is not one JSON value or the handler refuses it. At
/// each event the stream stands at the first unit of what is told, and at the end of an array or object at its bracket.
template <typename Source, typename Handler>
bool readJson(JsonStream<Source>& stream, Handler& handler)
{
    rapidjson::GenericReader<Source, JsonUtf16> reader;
    return !reader.template Parse<rapidjson::kParseIterativeFlag>(stream, handler).IsError() && stream.isAtEnd();
}

} // namespace kelm

/// Has the library move the stream on when it has told of a value, not before.
template <typename Source>
struct rapidjson::StreamTraits<kelm::JsonStream<Source>>
{
    enum { copyOptimization = 1 };
};
// NOLINTEND(readability-identifier-naming)
