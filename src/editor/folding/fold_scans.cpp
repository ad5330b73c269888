#include "editor/folding/fold_scans.h"

#include "text/storage/line_terminator.h"

#include <QHash>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <utility>

namespace kelm {
namespace {

void addRegion(std::vector<FoldableRegion>& regions, qsizetype startLine, qsizetype endLine, FoldType type)
{
    if (startLine + 1 < endLine) {
        regions.push_back({qsizetype(regions.size()), startLine, endLine, type});
    }
}

} // namespace

std::vector<FoldableRegion> scanBraces(QStringView text)
{
    std::vector<FoldableRegion> regions;
    std::vector<qsizetype> openLines;
    qsizetype line = 1;
    bool isInString = false;
    bool isInLineComment = false;
    char16_t previous = u'\0';
    for (const char16_t unit : std::u16string_view(text.utf16(), size_t(text.size()))) {
        switch (unit) {
        case u'"':
            if (previous != u'\\' && !isInLineComment) {
                isInString = !isInString;
            }
            break;
        case u'/':
            if (previous == u'/' && !isInString) {
                isInLineComment = true;
            }
            break;
        case u'\n':
            ++line;
            isInLineComment = false;
            break;
        case u'{':
            if (!isInString && !isInLineComment) {
                openLines.push_back(line);
            }
            break;
        case u'}':
            if (!isInString && !isInLineComment && !openLines.empty()) {
                addRegion(regions, openLines.back(), line, FoldType::braces);
                openLines.pop_back();
            }
            break;
        default:
            break;
        }
        previous = unit;
    }
    return regions;
}

namespace {

struct IndentedLine
{
    qsizetype line;
    qsizetype indent;
};

/// All lines that hold more than blanks and tabs.
std::vector<IndentedLine> indentedLines(QStringView text)
{
    std::vector<IndentedLine> lines;
    const char16_t* units = text.utf16();
    qsizetype line = 1;
    for (qsizetype at = 0; at < text.size(); ++line) {
        const qsizetype start = at;
        while (at < text.size() && (units[at] == u' ' || units[at] == u'\t')) {
            ++at;
        }
        const qsizetype indent = at - start;
        qsizetype terminator = 0;
        const qsizetype content = at;
        while (at < text.size() && (terminator = lineTerminatorLength(text, at)) == 0) {
            ++at;
        }
        if (at > content) {
            lines.push_back({line, indent});
        }
        at += terminator;
    }
    return lines;
}

} // namespace

std::vector<FoldableRegion> scanIndents(QStringView text)
{
    const std::vector<IndentedLine> lines = indentedLines(text);
    // The lines for which no line behind has been found yet that is as little indented; deeper ones come last.
    std::vector<size_t> open;
    std::vector<qsizetype> endLines(lines.size());
    const auto close = [&](qsizetype indent, size_t next) {
        while (!open.empty() && lines[open.back()].indent >= indent) {
            endLines[open.back()] = lines[next - 1].line;
            open.pop_back();
        }
    };
    for (size_t i = 0; i < lines.size(); ++i) {
        close(lines[i].indent, i);
        open.push_back(i);
    }
    close(0, lines.size());
    std::vector<FoldableRegion> regions;
    for (size_t i = 0; i < lines.size(); ++i) {
        addRegion(regions, lines[i].line, endLines[i], FoldType::indent);
    }
    return regions;
}

namespace {

bool isTagNameStart(char16_t unit)
{
    return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z';
}

bool isTagNameUnit(char16_t unit)
{
    return isTagNameStart(unit) || (unit >= u'0' && unit <= u'9');
}

/// Whether a word ends between an ASCII letter or digit and the character at `at`, as the pattern's \b sees it: not
/// before a character of a word and not before one that only modifies its neighbour.
bool isWordEnd(QStringView text, qsizetype at)
{
    const char16_t* units = text.utf16();
    if (units[at] < 0x80) {
        return !isTagNameUnit(units[at]) && units[at] != u'_';
    }
    UChar32 character = 0;
    U16_GET(units, 0, at, text.size(), character);
    constexpr uint32_t word = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
    return !u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND) && u_charType(character) != U_FORMAT_CHAR &&
           !u_isUAlphabetic(character) && (U_GET_GC_MASK(character) & word) == 0;
}

/// The tags of a text, from first to last.
class TagReader
{
public:
    struct Tag
    {
        QStringView name;
        qsizetype line = 0;
        bool isOpening = false;
    };

    explicit TagReader(QStringView text) : text_(text), units_(text.utf16()) {}

    /// Reads the next tag, if there is one.
    bool next(Tag& tag);

private:
    bool readOpening(Tag& tag);
    bool readClosing(Tag& tag);
    qsizetype nameEnd(qsizetype start) const;

    QStringView text_;
    const char16_t* units_;
    qsizetype at_ = 0;
    qsizetype line_ = 1;
    /// Where matching of opening tags goes on: behind the last one.
    qsizetype openingFrom_ = 0;
};

bool TagReader::next(Tag& tag)
{
    for (; at_ < text_.size(); ++at_) {
        if (units_[at_] == u'\n') {
            ++line_;
        } else if (units_[at_] == u'<' && (readOpening(tag) || readClosing(tag))) {
            tag.line = line_;
            ++at_;
            return true;
        }
    }
    return false;
}

bool TagReader::readOpening(Tag& tag)
{
    if (at_ < openingFrom_) {
        return false;
    }
    const qsizetype end = nameEnd(at_ + 1);
    if (end == at_ + 1 || end == text_.size() || !isWordEnd(text_, end)) {
        return false;
    }
    const qsizetype close = text_.indexOf(u'>', end);
    // Without one here there is none for any tag behind.
    openingFrom_ = close < 0 ? text_.size() : close + 1;
    tag = {text_.sliced(at_ + 1, end - at_ - 1), 0, true};
    return close >= 0;
}

bool TagReader::readClosing(Tag& tag)
{
    if (at_ + 1 >= text_.size() || units_[at_ + 1] != u'/') {
        return false;
    }
    const qsizetype end = nameEnd(at_ + 2);
    if (end == at_ + 2 || end == text_.size() || units_[end] != u'>') {
        return false;
    }
    tag = {text_.sliced(at_ + 2, end - at_ - 2), 0, false};
    return true;
}

/// The end of the tag name at `start`; `start` itself if none is there.
qsizetype TagReader::nameEnd(qsizetype start) const
{
    if (start >= text_.size() || !isTagNameStart(units_[start])) {
        return start;
    }
    qsizetype end = start + 1;
    while (end < text_.size() && isTagNameUnit(units_[end])) {
        ++end;
    }
    return end;
}

} // namespace

std::vector<FoldableRegion> scanTags(QStringView text)
{
    /// An opening tag, linked to the nearest one before it that has its name and is not closed.
    struct Opening
    {
        qsizetype line;
        qsizetype before;
    };
    constexpr qsizetype none = 0;
    std::vector<FoldableRegion> regions;
    std::vector<Opening> openings{{0, none}};
    // Of each name the last opening that is not closed.
    QHash<QStringView, qsizetype> nearest;
    TagReader reader(text);
    for (TagReader::Tag tag; reader.next(tag);) {
        if (tag.isOpening) {
            qsizetype& last = nearest[tag.name];
            openings.push_back({tag.line, std::exchange(last, qsizetype(openings.size()))});
        } else if (const auto last = nearest.find(tag.name); last != nearest.end() && *last != none) {
            const Opening& opening = openings[size_t(*last)];
            addRegion(regions, opening.line, tag.line, FoldType::tag);
            *last = opening.before;
        }
    }
    return regions;
}

} // namespace kelm
