#include "git/service/git_names.h"

#include "platform/files/native_path.h"
#include "platform/text/shown_name.h"

#include <QByteArray>

#include <algorithm>
#include <string_view>

namespace kelm {

namespace {

constexpr QStringView arrow = u" -> ";

std::optional<char> escapedLetter(char letter)
{
    constexpr std::string_view letters = "abfnrtv\\\"";
    constexpr std::string_view bytes = "\a\b\f\n\r\t\v\\\"";
    const std::size_t at = letters.find(letter);
    return at == std::string_view::npos ? std::nullopt : std::optional(bytes[at]);
}

bool isOctal(char digit)
{
    return digit >= '0' && digit <= '7';
}

/// The bytes that stand between quotes; absent where an escape is none of git's.
std::optional<QByteArray> unescaped(const QByteArray& quoted)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < quoted.size(); ++at) {
        if (quoted[at] != '\\') {
            bytes += quoted[at];
            continue;
        }
        if (at + 3 < quoted.size() && quoted[at + 1] >= '0' && quoted[at + 1] <= '3' && isOctal(quoted[at + 2]) &&
            isOctal(quoted[at + 3])) {
            bytes += char((quoted[at + 1] - '0') * 64 + (quoted[at + 2] - '0') * 8 + (quoted[at + 3] - '0'));
            at += 3;
            continue;
        }
        const auto letter = at + 1 < quoted.size() ? escapedLetter(quoted[at + 1]) : std::nullopt;
        if (!letter) {
            return std::nullopt;
        }
        bytes += *letter;
        ++at;
    }
    return bytes;
}

/// How far the quoted name at the start of `path` goes, behind its last quote; 0 where none stands there.
qsizetype quotedLength(QStringView path)
{
    if (!path.startsWith(u'"')) {
        return 0;
    }
    for (qsizetype at = 1; at < path.size(); ++at) {
        if (path[at] == u'\\') {
            ++at;
        } else if (path[at] == u'"') {
            return at + 1;
        }
    }
    return 0;
}

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

QString unquotedName(QStringView name)
{
    const qsizetype length = quotedLength(name);
    if (length == 0 || length != name.size()) {
        return name.toString();
    }
    const auto bytes = unescaped(nativePath(name.sliced(1, length - 2).toString()));
    return bytes ? pathOfNative(*bytes) : name.toString();
}

GitFileNames namesOf(const GitFileStatus& file)
{
    const QStringView path = file.path;
    if (hasTwoNames(file.staged) || hasTwoNames(file.unstaged)) {
        const qsizetype quoted = quotedLength(path);
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
