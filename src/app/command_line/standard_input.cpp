#include "app/command_line/standard_input.h"

#include "app/recovery/recovery_folder.h"
#include "app/state/text_file.h"
#include "platform/files/file_url.h"
#include "platform/files/open_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QScopeGuard>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t pieceSize = 65536;

/// What is wrong; nothing when all of it was copied.
std::optional<FileError> copyAll(int from, const OpenFile& to, const QString& path)
{
    std::array<char, pieceSize> piece;
    for (;;) {
        const ssize_t count = ::read(from, piece.data(), piece.size());
        if (count == 0) {
            return std::nullopt;
        }
        if (count < 0 && errno != EINTR) {
            return systemError(u"-"_s, errno);
        }
        if (count > 0 && !to.writeAll(piece.data(), count)) {
            return systemError(path, errno);
        }
    }
}

} // namespace

std::variant<QString, FileError> keepStandardInput(int descriptor, const QString& recoveryFolder)
{
    QByteArray name = QFile::encodeName(QDir::tempPath() + u"/kelmwright-XXXXXX"_s);
    const OpenFile file(::mkstemp(name.data()));
    const QString path = QFile::decodeName(name);
    if (!file.isOpen()) {
        return systemError(path, errno);
    }
    const auto remove = qScopeGuard([&name] { ::unlink(name.constData()); });
    if (std::optional<FileError> error = copyAll(descriptor, file, path)) {
        return *std::move(error);
    }
    const std::variant<TextTree, FileError> text = readTextFile(urlOfFile(path));
    if (const auto* error = std::get_if<FileError>(&text)) {
        return *error;
    }
    // The folder lets go of the copy at its end, so that the program that is to open it can take it.
    RecoveryFolder folder(recoveryFolder);
    QString id = folder.newId();
    CopyHeader header;
    header.time = QDateTime::currentMSecsSinceEpoch();
    if (std::optional<FileError> error = folder.write(id, header, std::get<TextTree>(text))) {
        return *std::move(error);
    }
    return id;
}

} // namespace kelm
