// Diffs of any text: the parse keeps every line that it takes, numbers run on, and each hunk makes a patch.
#include "fuzz/require.h"
#include "git/diff/combined_hunk.h"
#include "git/diff/commit_text.h"
#include "git/diff/diff_content.h"
#include "git/diff/diff_parser.h"
#include "git/diff/file_facts.h"
#include "git/diff/hunk_hindrance.h"

#include <cstdint>

namespace {

/// What a line of a hunk was in the input.
bool isLineOf(const QStringList& input, const kelm::DiffLine& line)
{
    const QString text = line.text.toString();
    switch (line.kind) {
    case kelm::DiffLineKind::added:
        return input.contains(u'+' + text);
    case kelm::DiffLineKind::removed:
        return input.contains(u'-' + text);
    case kelm::DiffLineKind::context:
        return input.contains(u' ' + text) || input.contains(text);
    default:
        return input.contains(text);
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
        require((!line.oldLineNumber || *line.oldLineNumber >= lastOld) &&
                (!line.newLineNumber || *line.newLineNumber >= lastNew));
        lastOld = line.oldLineNumber ? *line.oldLineNumber : lastOld;
        lastNew = line.newLineNumber ? *line.newLineNumber : lastNew;
    }
}

/// What is shown of the text: every line of it is in the text, and the pieces are the whole.
void checkContent(const QString& text)
{
    QString joined;
    for (const QStringView piece : kelm::piecesOfCombinedDiff(text)) {
        joined += piece;
    }
    require(joined == text);
    for (const kelm::DiffFile& file : kelm::DiffContent::of(text).files) {
        require(!kelm::fileLabel(file).isEmpty());
        for (qsizetype index = 0; index < file.hunks.size(); ++index) {
            kelm::HunkHindrance::of(file, index, index % 2 == 0);
            for (const kelm::DiffLine& line : file.hunks[index].lines) {
                const QChar* const end = line.text.data() + line.text.size();
                require(line.text.data() >= text.constData() && end <= text.constData() + text.size());
            }
        }
    }
    require(kelm::CommitText::of(text).message.size() <= text.size());
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
            require(line.kind == kelm::DiffLineKind::fileHeader && input.contains(line.text.toString()));
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
    checkContent(text);
    return 0;
}
