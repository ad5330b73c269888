#include "platform/files/start_of_file.h"

#include "platform/files/native_path.h"
#include "platform/files/open_file.h"

#include <algorithm>
#include <sys/stat.h>

namespace kelm {

std::optional<QByteArray> startOfFile(const QString& path, qsizetype limit)
{
    const OpenFile file = OpenFile::openForReading(nativePath(path));
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return std::nullopt;
    }
    QByteArray bytes(std::min(limit, qsizetype(status.st_size)), Qt::Uninitialized);
    qsizetype length = 0;
    while (length < bytes.size()) {
        const qsizetype count = file.read(bytes.data() + length, bytes.size() - length);
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        length += count;
    }
    bytes.truncate(length);
    return bytes;
}

} // namespace kelm
