#include "git/service/git_head.h"

#include "git/service/repository_places.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

GitHead readHead(const QString& folder)
{
    constexpr QByteArrayView branchSign = "ref: refs/heads/";
    // Where the references are kept in tables, this stands in the place of a name.
    constexpr QByteArrayView noBranch = "ref: refs/heads/.invalid";
    constexpr qsizetype shortestHash = 40;
    const QByteArray text = smallFileIn(repositoryPlaces(folder).gitFolder, "HEAD");
    if (text.startsWith(branchSign) && text != noBranch) {
        return {.branch = QString::fromUtf8(text.sliced(branchSign.size()))};
    }
    const bool isHash = text.size() >= shortestHash && std::all_of(text.begin(), text.end(), [](char digit) {
                            return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
                        });
    return {.commit = isHash ? QString::fromLatin1(text) : QString()};
}

} // namespace kelm
