#include "editor/folding/indent_reading.h"

#include "text/storage/line_terminator.h"

namespace kelm {
namespace {

/// Most units fall out of the first comparison or the second.
inline qsizetype findLineEnd(QStringView text, qsizetype at)
{
    const char16_t* const units = text.utf16();
    const qsizetype size = text.size();
    while (at < size && units[at] != u'\n' &&
           ((units[at] > u'\r' && units[at] < u'\u0085') || units[at] > u'\u2029' ||
            lineTerminatorLength(text, at) == 0)) {
        ++at;
    }
    return at;
}

} // namespace

qsizetype nextLineEnd(QStringView text, qsizetype at)
{
    return findLineEnd(text, at);
}

void IndentReader::addLine(IndentReading& reading, quint32 indent, qsizetype line)
{
    const quint16 before = spans_.empty() ? quint16(0) : spans_.back().startLine;
    while (!open_.empty() && open_.back().indent >= indent) {
        spans_[open_.back().span].endLine = before;
        open_.pop_back();
    }
    if (reading.minima.empty() || indent < reading.minima.back().indent) {
        reading.minima.push_back({indent, before});
    }
    if (reading.firstLines.size() < 2) {
        reading.firstLines.push_back({indent, quint16(line)});
    }
    open_.push_back({indent, quint32(spans_.size())});
    spans_.push_back({quint16(line), quint16(line)});
}

IndentReading IndentReader::read(QStringView text, qsizetype& lines)
{
    IndentReading reading;
    spans_.clear();
    open_.clear();
    lines = 0;
    const char16_t* const units = text.utf16();
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype start = at;
        while (at < text.size() && (units[at] == u' ' || units[at] == u'\t')) {
            ++at;
        }
        const qsizetype content = at;
        at = findLineEnd(text, at);
        if (at > content) {
            addLine(reading, quint32(content - start), lines);
        }
        if (at < text.size()) {
            ++lines;
            at += units[at] == u'\n' ? 1 : lineTerminatorLength(text, at);
        }
    }

    size_t regions = 0;
    for (const IndentReading::Region& span : spans_) {
        regions += span.endLine > span.startLine + 1 ? 1 : 0;
    }
    reading.regions.reserve(regions);
    for (const IndentReading::Region& span : spans_) {
        if (span.endLine > span.startLine + 1) {
            reading.regions.push_back(span);
        }
    }
    reading.open.reserve(open_.size());
    for (const Open& open : open_) {
        reading.open.push_back({open.indent, spans_[open.span].startLine});
    }
    return reading;
}

} // namespace kelm
