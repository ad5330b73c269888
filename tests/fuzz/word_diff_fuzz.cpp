// Two lines of any text: the segments give both lines back, and as many tokens stay on one side as on the other.
#include "fuzz/require.h"
#include "git/diff/word_diff.h"

#include <cstdint>

namespace {

/// Checks one side and gives what stays the same of it.
QStringList sameTexts(const QList<kelm::WordDiff::Segment>& segments, const QString& line,
                      kelm::WordDiff::SegmentKind changed)
{
    QString joined;
    QStringList same;
    for (const kelm::WordDiff::Segment& segment : segments) {
        require(!segment.text.isEmpty());
        require(segment.kind == kelm::WordDiff::SegmentKind::same || segment.kind == changed);
        joined += segment.text;
        if (segment.kind == kelm::WordDiff::SegmentKind::same) {
            same.append(segment.text.normalized(QString::NormalizationForm_C));
        }
    }
    require(joined == line);
    return same;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using kelm::WordDiff;

    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString oldLine = text.section(u'\n', 0, 0);
    const QString newLine = text.section(u'\n', 1);
    const WordDiff::Result result = WordDiff::diff(oldLine, newLine);
    require(sameTexts(result.oldSegments, oldLine, WordDiff::SegmentKind::removed) ==
            sameTexts(result.newSegments, newLine, WordDiff::SegmentKind::added));
    if (oldLine == newLine) {
        require(result.oldSegments == result.newSegments);
    }
    return 0;
}
