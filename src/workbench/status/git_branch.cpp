#include "workbench/status/git_branch.h"

#include "platform/files/file_url.h"
#include "platform/files/start_of_file.h"
#include "platform/files/utf8_file.h"
#include "platform/text/character_sets.h"

namespace kelm {

std::optional<QString> gitBranch(const QUrl& project)
{
    constexpr QStringView prefix = u"ref: refs/heads/";
    // No name of a branch is as long: it is one of a file as well.
    constexpr qsizetype longest = 4096;
    const auto start = startOfFile(folderPrefix(project) + QStringLiteral(".git/HEAD"), longest + 1);
    const auto head = start && start->size() <= longest ? decodeUtf8Text(*start) : std::nullopt;
    if (!head || !head->startsWith(prefix)) {
        return std::nullopt;
    }
    return trimmed(QStringView(*head).sliced(prefix.size()), isWhitespaceOrNewline).toString();
}

} // namespace kelm
