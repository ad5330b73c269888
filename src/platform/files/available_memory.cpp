#include "platform/files/available_memory.h"

#include "platform/files/open_file.h"

#include <QByteArray>

#include <unistd.h>

namespace kelm {

namespace {

/// What the system says in its own table, in which caches that it would give up count as free.
std::optional<qint64> statedMemory()
{
    const OpenFile file = OpenFile::openForReading("/proc/meminfo");
    const QByteArray table = file.isOpen() ? file.readAll().value_or(QByteArray()) : QByteArray();
    const QByteArray name = "MemAvailable:";
    const qsizetype start = table.indexOf(name);
    if (start < 0) {
        return std::nullopt;
    }
    const qsizetype behind = start + name.size();
    bool isNumber = false;
    const qint64 kibibytes = table.mid(behind, table.indexOf("kB", behind) - behind).trimmed().toLongLong(&isNumber);
    return isNumber ? std::optional(kibibytes * 1024) : std::nullopt;
}

} // namespace

std::optional<qint64> availableMemory()
{
    if (const std::optional<qint64> stated = statedMemory()) {
        return stated;
    }
#ifdef _SC_AVPHYS_PAGES
    const long pages = ::sysconf(_SC_AVPHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages > 0 && pageSize > 0) {
        return qint64(pages) * pageSize;
    }
#endif
    return std::nullopt;
}

} // namespace kelm
