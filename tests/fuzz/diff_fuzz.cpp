// Diffs of any text: the parse keeps every line that it takes, numbers run on, and each hunk makes a patch.
#include "git/diff/diff_parser.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// What a line of a hunk was in the input.
bool isLineOf(const QStringList& input, const kelm::DiffLine& line)
{
    switch (line.kind) {
    case kelm::DiffLineKind::added:
        return input.contains(u'+' + line.text);
    case kelm::DiffLineKind::removed:
        return input.contains(u'-' + line.text);
    case kelm::DiffLineKind::context:
        return input.contains(u' ' + line.text) || input.contains(line.text);
    default:
        return input.contains(line.text);
    }
}

void checkHunk(const kelm::DiffHunk& hunk, const QStringList& input)
{
    require(!hunk.lines.isEmpty() && hunk.lines[0].kind == kelm::DiffLineKind::hunkHeader);
    require(hunk.lines[0].text == hunk.header);
    qint64 lastOld = hunk.oldStart;
    qint64 lastNew = hunk.newStart;
    for (const kelm::DiffLine& line : hunk.lines) {
        require(isLineOf(input, line));
        require(!line.text.contains(u'\n'));
        require(line.oldLineNumber.value_or(lastOld) >= lastOld && line.newLineNumber.value_or(lastNew) >= lastNew);
        lastOld = line.oldLineNumber.value_or(lastOld);
        lastNew = line.newLineNumber.value_or(lastNew);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QStringList input = text.split(u'\n');
    qsizetype taken = 0;
    for (const kelm::DiffFile& file : kelm::DiffParser::parse(text)) {
        require(!file.preamble.isEmpty() || !file.hunks.isEmpty());
        taken += file.preamble.size();
        for (const kelm::DiffLine& line : file.preamble) {
            require(line.kind == kelm::DiffLineKind::fileHeader && input.contains(line.text));
        }
        for (qsizetype index = 0; index < file.hunks.size(); ++index) {
            // The checks search the input for each line: short inputs are enough for them.
            if (input.size() < 200) {
                checkHunk(file.hunks[index], input);
            }
            taken += file.hunks[index].lines.size();
            require(file.patch(index).has_value() && file.patch(index)->endsWith(u'\n'));
            kelm::DiffParser::parse(*file.patch(index));
        }
        require(!file.patch(-1) && !file.patch(file.hunks.size()));
    }
    require(taken <= input.size());
    return 0;
}
