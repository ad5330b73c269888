#include "git/service/git_records.h"

#include <array>

namespace kelm {

namespace {

struct ChangeRow
{
    GitFileChange change;
    const char* rawValue;
    char16_t letter;
};

constexpr std::array changes{
    ChangeRow{GitFileChange::modified, "modified", u'M'},     ChangeRow{GitFileChange::added, "added", u'A'},
    ChangeRow{GitFileChange::deleted, "deleted", u'D'},       ChangeRow{GitFileChange::renamed, "renamed", u'R'},
    ChangeRow{GitFileChange::copied, "copied", u'C'},         ChangeRow{GitFileChange::untracked, "untracked", u'?'},
    ChangeRow{GitFileChange::conflicted, "conflicted", u'U'},
};

} // namespace

QString rawValue(GitFileChange change)
{
    return QLatin1String(changes.at(static_cast<std::size_t>(change)).rawValue);
}

std::optional<GitFileChange> changeFrom(QStringView letter)
{
    if (letter.size() == 1) {
        for (const ChangeRow& row : changes) {
            if (row.letter == letter.front()) {
                return row.change;
            }
        }
    }
    return std::nullopt;
}

bool isUnmerged(const GitFileStatus& file)
{
    const bool isOfBoth =
        file.staged == file.unstaged && (file.staged == GitFileChange::added || file.staged == GitFileChange::deleted);
    return isOfBoth || file.staged == GitFileChange::conflicted || file.unstaged == GitFileChange::conflicted;
}

} // namespace kelm
