#include "git/service/git_stop.h"

#include "platform/files/native_path.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// A worktree's ".git" is a file of this size at most that says where the folder is.
constexpr qint64 longestPointer = 4096;
constexpr QByteArrayView pointerMark = "gitdir: ";

/// The folder in which git keeps the index of the working tree at `folder`.
QString gitFolder(const QString& folder)
{
    const QString inside = folder + u"/.git"_s;
    if (!QFileInfo(inside).isFile()) {
        return inside;
    }
    QFile file(inside);
    if (!file.open(QIODevice::ReadOnly)) {
        return inside;
    }
    const QByteArray pointer = file.read(longestPointer).trimmed();
    if (!pointer.startsWith(pointerMark)) {
        return inside;
    }
    return QFileInfo(QDir(folder), QFile::decodeName(pointer.mid(pointerMark.size()))).absoluteFilePath();
}

std::optional<QString> lockSince(const QString& folder, std::chrono::system_clock::time_point begin)
{
    const QString lock = gitFolder(folder) + u"/index.lock"_s;
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
