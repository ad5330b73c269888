#include "git/service/git_names.h"

#include "platform/text/quoted_name.h"
#include "platform/text/shown_name.h"

#include <algorithm>

namespace kelm {

namespace {

constexpr QStringView arrow = u" -> ";

bool hasTwoNames(const std::optional<GitFileChange>& change)
{
    return change == GitFileChange::renamed || change == GitFileChange::copied;
}

QStringList allNames(const GitFileNames& names)
{
    return names.previous ? QStringList{*names.previous, names.current} : QStringList{names.current};
}

/// Both names of an entry whose change on the side is a rename; the name that it has now for every other.
QStringList namesForSide(const GitFileStatus& file, const std::optional<GitFileChange>& change)
{
    const GitFileNames names = namesOf(file);
    return change == GitFileChange::renamed ? allNames(names) : QStringList{names.current};
}

} // namespace

GitFileNames namesOf(const GitFileStatus& file)
{
    const QStringView path = file.path;
    if (hasTwoNames(file.staged) || hasTwoNames(file.unstaged)) {
        const qsizetype quoted = quotedNameLength(path);
        const qsizetype end = quoted > 0 ? quoted : path.indexOf(arrow);
        if (end > 0 && path.sliced(end).startsWith(arrow)) {
            return {unquotedName(path.sliced(end + arrow.size())), unquotedName(path.first(end))};
        }
    }
    return {unquotedName(path)};
}

QStringList namesToStage(const GitFileStatus& file)
{
    return namesForSide(file, file.unstaged);
}

QStringList namesToUnstage(const GitFileStatus& file)
{
    return namesForSide(file, file.staged);
}

QStringList namesToDiscard(const GitFileStatus& file)
{
    const GitFileNames names = namesOf(file);
    const bool isBroughtBack = file.unstaged == GitFileChange::renamed && names.previous;
    return {isBroughtBack ? *names.previous : names.current};
}

QStringList namesToDiff(const GitFileStatus& file, bool staged)
{
    return namesForSide(file, staged ? file.staged : file.unstaged);
}

QStringList namesToDiff(const QList<GitFileStatus>& status, const QString& name, bool staged)
{
    const auto file = std::find_if(status.begin(), status.end(), [&name](const GitFileStatus& candidate) {
        return namesOf(candidate).current == name;
    });
    return file == status.end() ? QStringList{name} : namesToDiff(*file, staged);
}

QString shownNames(const GitFileStatus& file)
{
    const GitFileNames names = namesOf(file);
    const QString current = shownName(names.current);
    return names.previous ? shownName(*names.previous) + arrow.toString() + current : current;
}

} // namespace kelm
