// The plain values that a document carries beside its text: caret, selection, and the labels of the status bar.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace kelm {

/// A place in a text as the editor last reported it. `line` and `column` are 1-based; `offset` counts UTF-16 units from
/// 0.
struct CursorPosition
{
    qsizetype line = 1;
    qsizetype column = 1;
    qsizetype offset = 0;

    friend bool operator==(const CursorPosition&, const CursorPosition&) = default;
};

/// A selection. `start` and `end` come in no fixed order: its length is the absolute difference of the two offsets.
struct TextSelection
{
    CursorPosition start;
    CursorPosition end;

    friend bool operator==(const TextSelection&, const TextSelection&) = default;
};

/// A line terminator, as a label: it converts nothing.
class LineEnding
{
public:
    enum Case : quint8 { lf, crlf, cr };

    constexpr LineEnding() = default;
    constexpr LineEnding(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    /// All cases in the order in which menus list them.
    static constexpr std::array<LineEnding, 3> allCases();
    static std::optional<LineEnding> fromRawValue(QStringView rawValue);

    /// The terminator itself, one or two characters.
    QString rawValue() const;
    /// The text of the menu, such as "LF (Unix)".
    QString label() const;

    friend constexpr bool operator==(LineEnding a, LineEnding b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(LineEnding a, Case b) { return a.value_ == b; }

private:
    Case value_ = lf;
};

constexpr std::array<LineEnding, 3> LineEnding::allCases()
{
    return {lf, crlf, cr};
}

/// A text encoding of the platform. `utf16` is UTF-16 with a byte-order mark.
enum class TextEncoding : quint8 {
    utf8,
    utf16,
    utf16BigEndian,
    utf16LittleEndian,
    utf32,
    ascii,
    isoLatin1,
};

/// The encodings that the status bar's menu knows: a view of `TextEncoding` with fewer values.
class FileEncoding
{
public:
    enum Case : quint8 { utf8, utf16, ascii };

    constexpr FileEncoding() = default;
    constexpr FileEncoding(Case value) : value_(value) {}
    constexpr operator Case() const { return value_; }

    /// The menu's view of `encoding`: the UTF-16 kinds are `utf16`, ASCII is `ascii`, and all others are `utf8`.
    static FileEncoding from(TextEncoding encoding);

    /// All cases in the order in which menus list them.
    static constexpr std::array<FileEncoding, 3> allCases();
    static std::optional<FileEncoding> fromRawValue(QStringView rawValue);

    /// The text of the menu, such as "UTF-8".
    QString rawValue() const;
    /// What choosing this case in the menu stores in the document.
    TextEncoding platformEncoding() const;

    friend constexpr bool operator==(FileEncoding a, FileEncoding b) { return a.value_ == b.value_; }
    friend constexpr bool operator==(FileEncoding a, Case b) { return a.value_ == b; }

private:
    Case value_ = utf8;
};

constexpr std::array<FileEncoding, 3> FileEncoding::allCases()
{
    return {utf8, utf16, ascii};
}

/// How a document is said to be indented; a label as well.
class IndentStyle
{
public:
    static constexpr IndentStyle spaces(qsizetype count) { return IndentStyle(count); }
    static constexpr IndentStyle tabs() { return IndentStyle(std::nullopt); }

    constexpr bool isTabs() const { return !spaceCount_; }
    /// The count of `spaces(count)`; absent for `tabs`.
    constexpr std::optional<qsizetype> spaceCount() const { return spaceCount_; }

    friend bool operator==(const IndentStyle&, const IndentStyle&) = default;

private:
    constexpr explicit IndentStyle(std::optional<qsizetype> spaceCount) : spaceCount_(spaceCount) {}

    std::optional<qsizetype> spaceCount_;
};

} // namespace kelm
