#include "editor/folding/fold_scans.h"

#include "editor/folding/tag_reader.h"
#include "text/storage/line_terminator.h"

#include <QHash>

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
            openings.push_back({tag.line + 1, std::exchange(last, qsizetype(openings.size()))});
        } else if (const auto last = nearest.find(tag.name); last != nearest.end() && *last != none) {
            const Opening& opening = openings[size_t(*last)];
            addRegion(regions, opening.line, tag.line + 1, FoldType::tag);
            *last = opening.before;
        }
    }
    return regions;
}

} // namespace kelm
