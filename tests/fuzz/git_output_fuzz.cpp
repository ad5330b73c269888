// Any bytes as the output of git: every parser takes what fits and skips the rest.
#include "fuzz/require.h"
#include "git/service/ahead_behind_parser.h"
#include "git/service/blame_parser.h"
#include "git/service/branch_parser.h"
#include "git/service/git_names.h"
#include "git/service/log_parser.h"
#include "git/service/remote_parser.h"
#include "git/service/stash_parser.h"
#include "git/service/status_parser.h"
#include "git/service/tag_parser.h"

#include <QSet>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const qsizetype lines = text.split(u'\n', Qt::SkipEmptyParts).size();

    const auto status = parseStatus(text);
    require(status.size() <= lines);
    for (const GitFileStatus& file : status) {
        require(!file.path.isEmpty() && text.contains(file.path) && !file.path.contains(u'\n'));
        const GitFileNames names = namesOf(file);
        require(names.current.size() <= file.path.size() && shownNames(file).size() >= names.current.size());
        require(!names.previous || file.path.contains(QStringLiteral(" -> ")));
        require(file.staged != GitFileChange::untracked || file.unstaged != GitFileChange::untracked);
    }
    if (const auto counts = parseAheadBehind(text)) {
        require(text.contains(u'\t') || *counts == AheadBehind{});
    }
    for (const GitBranch& branch : parseLocalBranches(text)) {
        require(!branch.isRemote && branch.upstream != QString());
    }
    for (const GitBranch& branch : parseRemoteBranches(text)) {
        require(branch.isRemote && !branch.isCurrent && !branch.name.endsWith(QStringLiteral("/HEAD")));
    }
    QSet<QString> names;
    for (const GitRemote& remote : parseRemotes(text)) {
        require(!names.contains(remote.name));
        names.insert(remote.name);
    }
    qint64 place = -1;
    for (const GitStash& stash : parseStashes(text)) {
        require(stash.id > place && stash.id < lines);
        place = stash.id;
    }
    for (const GitTag& tag : parseTags(text)) {
        require(tag.sha != QString());
    }
    require(parseLog(text).size() <= lines);
    require(parseBlame(text).size() <= lines);
    return 0;
}
