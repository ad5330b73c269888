#include "editor/transforms/text_transformer.h"
#include "platform/text/character_sets.h"
#include "platform/text/string_comparison.h"

#include <algorithm>
#include <vector>

namespace kelm {

namespace {

/// A line with the bytes that it sorts by, which are made once and not anew in each comparison.
struct KeyedLine
{
    QByteArray key;
    QStringView line;
};

} // namespace

QString TextTransformer::sortLines(const QString& text, bool ascending)
{
    const StringComparison& comparison = StringComparison::current();
    std::vector<KeyedLine> lines;
    for (const QStringView line : split(text, isNewline)) {
        lines.push_back({comparison.sortKey(line), line});
    }
    std::stable_sort(lines.begin(), lines.end(), [ascending](const KeyedLine& a, const KeyedLine& b) {
        return ascending ? a.key < b.key : b.key < a.key;
    });
    QString sorted;
    sorted.reserve(text.size());
    for (const KeyedLine& each : lines) {
        sorted += each.line;
        sorted += u'\n';
    }
    sorted.chop(1);
    return sorted;
}

} // namespace kelm
