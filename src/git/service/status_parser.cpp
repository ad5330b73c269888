#include "git/service/status_parser.h"

#include "platform/text/grapheme_boundaries.h"

#include <array>

namespace kelm {

namespace {

/// Where the second, third and fourth character of a line begin; absent when it has fewer than four.
std::optional<std::array<qsizetype, 3>> columnStarts(QStringView line)
{
    GraphemeWalk walk(line);
    std::array<qsizetype, 3> starts{};
    for (qsizetype& start : starts) {
        walk.next();
        start = walk.place();
        if (walk.isAtEnd()) {
            return std::nullopt;
        }
    }
    return starts;
}

} // namespace

QList<GitFileStatus> parseStatus(QStringView output)
{
    QList<GitFileStatus> entries;
    for (const QStringView line : output.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const auto starts = columnStarts(line);
        if (!starts) {
            continue;
        }
        const auto [second, third, fourth] = *starts;
        const auto x = changeFrom(line.first(second));
        const auto y = changeFrom(line.sliced(second, third - second));
        const bool isUntracked = x == GitFileChange::untracked && y == GitFileChange::untracked;
        entries.append({QUuid::createUuid(), line.sliced(fourth).toString(), isUntracked ? std::nullopt : x, y});
    }
    return entries;
}

} // namespace kelm
