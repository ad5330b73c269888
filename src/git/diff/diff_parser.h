// Parsing the text that `git diff` and `git show` print.
#pragma once

#include "git/diff/diff.h"

#include <utility>

namespace kelm {

/// One pass over the lines, linear in the input, from any thread. There is no error: what does not fit is ignored
/// outside a hunk and counts as context inside one.
///
/// A line counts by its first characters only; the counts of a hunk's header do not say where it ends. So a removed
/// line whose content begins with "-- " ends its hunk like a file header, and the empty line after the output's last
/// newline counts as one more context line of the last hunk. Quoted paths stay quoted and are not found.
class DiffParser
{
public:
    DiffParser() = delete;

    /// The files share `text`, into which their lines look; nothing of it is copied.
    static QList<DiffFile> parse(const QString& text);

private:
    struct Ranges
    {
        qint64 oldStart = 0;
        qint64 oldCount = 0;
        qint64 newStart = 0;
        qint64 newCount = 0;
    };
    class Pass;

    static Ranges parseHunkHeader(QStringView line);
    /// Start and count of a range such as "12,3".
    static std::pair<qint64, qint64> parseRange(QStringView range);
};

} // namespace kelm
