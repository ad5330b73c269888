#include "workbench/status/git_branch.h"

#include "platform/files/file_url.h"
#include "platform/files/utf8_file.h"
#include "platform/text/character_sets.h"

namespace kelm {

std::optional<QString> gitBranch(const QUrl& project)
{
    constexpr QStringView prefix = u"ref: refs/heads/";
    const auto file = readUtf8File(folderPrefix(project) + QStringLiteral(".git/HEAD"));
    const auto* const head = std::get_if<QString>(&file);
    if (head == nullptr || !head->startsWith(prefix)) {
        return std::nullopt;
    }
    return trimmed(QStringView(*head).sliced(prefix.size()), isWhitespaceOrNewline).toString();
}

} // namespace kelm
