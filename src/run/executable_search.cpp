#include "run/executable_search.h"

#include "platform/files/utf8_file.h"
#include "platform/text/character_sets.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

ExecutableSearch::ExecutableSearch(ProcessRunner& runner)
    : ExecutableSearch(usualFolders(), u"/usr/bin/which"_s, runner)
{}

ExecutableSearch::ExecutableSearch(QStringList folders, QString which, ProcessRunner& runner)
    : folders_(std::move(folders)), which_(std::move(which)), runner_(&runner)
{}

QStringList ExecutableSearch::usualFolders()
{
    return {u"/usr/local/bin"_s, u"/usr/bin"_s, u"/opt/homebrew/bin"_s, u"/opt/local/bin"_s,
            QDir::homePath() + u"/.local/bin"_s};
}

std::optional<QString> ExecutableSearch::find(const QString& name) const
{
    for (const QString& folder : folders_) {
        const QString candidate = folder + u'/' + name;
        const QFileInfo file(candidate);
        if (file.isFile() && file.isExecutable()) {
            return candidate;
        }
    }
    return askWhich(name);
}

std::optional<QString> ExecutableSearch::askWhich(const QString& name) const
{
    const ProcessResult result = runner_->run({.program = which_, .arguments = {name}});
    if (result.launchError || !result.exit.isSuccess()) {
        return std::nullopt;
    }
    const auto answer = decodeUtf8Text(result.standardOutput);
    if (!answer) {
        return std::nullopt;
    }
    return trimmed(*answer, isWhitespaceOrNewline).toString();
}

} // namespace kelm
