#include "editor/transforms/text_transformer.h"
#include "platform/text/character_sets.h"
#include "platform/text/string_comparison.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <future>
#include <iterator>
#include <vector>

namespace kelm {

namespace {

/// From here on a second thread saves more time than its start costs.
constexpr std::size_t leastLinesOfTwoThreads = 10'000;

/// A line with the bytes that it sorts by, which are made once and not anew in each comparison. Most comparisons are
/// settled by the first eight of them, which are at hand as a number.
struct KeyedLine
{
    static constexpr qsizetype headLength = sizeof(quint64);

    quint64 head = 0;
    /// What stands behind them.
    const char* rest = nullptr;
    qsizetype keyLength = 0;
    QStringView line;

    static int compare(const KeyedLine& a, const KeyedLine& b)
    {
        if (a.head != b.head) {
            return a.head < b.head ? -1 : 1;
        }
        const qsizetype common = std::min(a.keyLength, b.keyLength) - headLength;
        const int order = common > 0 ? std::memcmp(a.rest, b.rest, std::size_t(common)) : 0;
        return order != 0 ? order : int(a.keyLength > b.keyLength) - int(a.keyLength < b.keyLength);
    }
};

using Lines = std::vector<KeyedLine>;

/// Makes the keys of lines and sorts them. The keys stand one behind the other in the memory that is returned, which
/// has to live as long as the lines are compared.
QByteArray sortPart(Lines::iterator first, Lines::iterator last, bool ascending)
{
    const StringComparison& comparison = StringComparison::current();
    QByteArray keys;
    std::vector<qsizetype> starts;
    starts.reserve(std::size_t(last - first));
    for (auto line = first; line != last; ++line) {
        starts.push_back(keys.size());
        comparison.appendSortKey(keys, line->line);
        line->keyLength = keys.size() - starts.back();
        // Of two keys that are equal with these behind them the shorter one goes first.
        keys.append(std::max(KeyedLine::headLength - line->keyLength, qsizetype(0)), '\0');
    }
    auto start = starts.cbegin();
    for (auto line = first; line != last; ++line, ++start) {
        line->head = qFromBigEndian<quint64>(keys.constData() + *start);
        line->rest = keys.constData() + *start + KeyedLine::headLength;
    }
    std::stable_sort(first, last, [ascending](const KeyedLine& a, const KeyedLine& b) {
        return ascending ? KeyedLine::compare(a, b) < 0 : KeyedLine::compare(a, b) > 0;
    });
    return keys;
}

} // namespace

QString TextTransformer::sortLines(const QString& text, bool ascending)
{
    Lines lines;
    for (const QStringView line : split(text, isNewline)) {
        lines.push_back({.line = line});
    }
    const auto middle = lines.begin() + std::ptrdiff_t(lines.size() / 2);
    std::future<QByteArray> second =
        std::async(lines.size() >= leastLinesOfTwoThreads ? std::launch::async : std::launch::deferred, sortPart,
                   middle, lines.end(), ascending);
    const QByteArray firstKeys = sortPart(lines.begin(), middle, ascending);
    const QByteArray secondKeys = second.get();
    Lines merged;
    merged.reserve(lines.size());
    std::merge(lines.begin(), middle, middle, lines.end(), std::back_inserter(merged),
               [ascending](const KeyedLine& a, const KeyedLine& b) {
                   return ascending ? KeyedLine::compare(a, b) < 0 : KeyedLine::compare(a, b) > 0;
               });
    QString sorted;
    sorted.reserve(text.size());
    for (const KeyedLine& each : merged) {
        sorted += each.line;
        sorted += u'\n';
    }
    sorted.chop(1);
    return sorted;
}

} // namespace kelm
