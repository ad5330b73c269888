#include "git/service/status_parser.h"

#include <QTextBoundaryFinder>

#include <array>

namespace kelm {

namespace {

/// Where the second, third and fourth character of a line begin; absent when it has fewer than four.
std::optional<std::array<qsizetype, 3>> columnStarts(QStringView line)
{
    const auto isPlain = [](QChar unit) { return unit >= u' ' && unit < QChar(0x7F); };
    if (line.size() >= 4 && std::all_of(line.begin(), line.begin() + 4, isPlain)) {
        return std::array<qsizetype, 3>{1, 2, 3};
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, line.data(), line.size());
    std::array<qsizetype, 3> starts{};
    for (qsizetype& start : starts) {
        start = finder.toNextBoundary();
        if (start < 0 || start >= line.size()) {
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
