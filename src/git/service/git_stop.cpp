#include "git/service/git_stop.h"

#include "git/service/repository_files.h"
#include "platform/files/native_path.h"

#include <optional>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

std::optional<QString> lockSince(const QString& folder, std::chrono::system_clock::time_point begin)
{
    const auto files = RepositoryFiles::of(folder);
    if (!files) {
        return std::nullopt;
    }
    QString lock = files->index() + u".lock"_s;
    struct stat seen = {};
    // Files are dated by the second on some disks.
    if (::stat(nativePath(lock).constData(), &seen) != 0 ||
        seen.st_mtime < std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(begin))) {
        return std::nullopt;
    }
    return lock;
}

} // namespace

QString gitCommandName(const ProcessCommand& command)
{
    return u"git "_s + command.arguments.value(0);
}

ProcessResult wordedStop(ProcessResult result, const ProcessCommand& command,
                         std::chrono::system_clock::time_point begin)
{
    if (!result.isStopped) {
        return result;
    }
    QString words = gitCommandName(command) + u" was stopped."_s;
    if (const auto lock = lockSince(command.workingDirectory, begin)) {
        words +=
            u" git left its lock %1, which is to be removed once no other git works there."_s.arg(shownPath(*lock));
    }
    result.inputError.reset();
    result.standardOutput.clear();
    result.standardError = words.toUtf8();
    return result;
}

} // namespace kelm
