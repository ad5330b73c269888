#include "git/service/git_head.h"

#include "git/service/repository_files.h"
#include "platform/files/start_of_file.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

GitHead readHead(const QString& folder)
{
    constexpr QByteArrayView branchSign = "ref: refs/heads/";
    // Where the references are kept in tables, this stands in the place of a name.
    constexpr QByteArrayView noBranch = "ref: refs/heads/.invalid";
    constexpr qsizetype shortestHash = 40;
    constexpr qsizetype longestHead = 4096;
    const auto files = RepositoryFiles::of(folder);
    const auto start = files ? startOfFile(files->head(), longestHead) : std::nullopt;
    // What is cut off is no name.
    const QByteArray text = start && start->size() < longestHead ? start->trimmed() : QByteArray();
    if (text.startsWith(branchSign) && text != noBranch) {
        return {.branch = QString::fromUtf8(text.sliced(branchSign.size()))};
    }
    const bool isHash = text.size() >= shortestHash && std::all_of(text.begin(), text.end(), [](char digit) {
                            return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
                        });
    return {.commit = isHash ? QString::fromLatin1(text) : QString()};
}

} // namespace kelm
