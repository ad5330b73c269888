#include "git/service/file_status_mark.h"

namespace kelm {

FileStatusMark fileStatusMark(const GitFileStatus& file, bool staged)
{
    const std::optional<GitFileChange>& own = staged ? file.staged : file.unstaged;
    const std::optional<GitFileChange>& other = staged ? file.unstaged : file.staged;
    const std::optional<GitFileChange>& change = own ? own : other;
    if (!change) {
        return {QStringLiteral("·"), SystemColor::yellow};
    }
    switch (*change) {
    case GitFileChange::modified:
        return {QStringLiteral("M"), SystemColor::yellow};
    case GitFileChange::added:
        return {QStringLiteral("A"), SystemColor::green};
    case GitFileChange::deleted:
        return {QStringLiteral("D"), SystemColor::red};
    case GitFileChange::renamed:
        return {QStringLiteral("R"), SystemColor::blue};
    case GitFileChange::copied:
        return {QStringLiteral("C"), SystemColor::blue};
    case GitFileChange::untracked:
        return {QStringLiteral("U"), SystemColor::green};
    case GitFileChange::conflicted:
        return {QStringLiteral("!"), SystemColor::orange};
    }
    return {QStringLiteral("·"), SystemColor::yellow};
}

} // namespace kelm
