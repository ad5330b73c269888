#include "platform/process/process_table.h"

#include "platform/files/open_file.h"

#include <QByteArray>
#include <QList>

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>

namespace kelm {

namespace {

QByteArray contentOf(const QByteArray& path)
{
    const OpenFile file(::open(path.constData(), O_RDONLY | O_CLOEXEC));
    return file.isOpen() ? file.readAll().value_or(QByteArray()) : QByteArray();
}

std::optional<ProcessEntry> entryOf(qint64 id)
{
    // The second field is a name in parentheses, which may hold anything.
    const QByteArray line = contentOf("/proc/" + QByteArray::number(id) + "/stat");
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    constexpr qsizetype startField = 19;
    if (fields.size() <= startField) {
        return std::nullopt;
    }
    return ProcessEntry{.id = id,
                        .parent = fields[1].toLongLong(),
                        .group = fields[2].toLongLong(),
                        .session = fields[3].toLongLong(),
                        .start = fields[startField].toULongLong(),
                        .hasEnded = fields[0] == "Z" || fields[0] == "X"};
}

} // namespace

std::vector<ProcessEntry> processTable()
{
    std::vector<ProcessEntry> table;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc"), closedir);
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr) {
        const qint64 id = QByteArray(entry->d_name).toLongLong();
        if (const auto process = id > 0 ? entryOf(id) : std::nullopt) {
            table.push_back(*process);
        }
    }
    return table;
}

ProcessLook::ProcessLook()
{
    for (const ProcessEntry& process : all_) {
        byNumber_.emplace(process.id, &process);
    }
}

const ProcessEntry* ProcessLook::find(qint64 number) const
{
    const auto found = byNumber_.find(number);
    return found != byNumber_.end() ? found->second : nullptr;
}

bool ProcessLook::descends(const ProcessEntry& process, const std::function<bool(qint64)>& isMeant) const
{
    // Not for ever, should the table have changed into a circle while it was read.
    const ProcessEntry* next = &process;
    for (std::size_t steps = 0; next != nullptr && steps <= all_.size(); ++steps) {
        if (isMeant(next->id)) {
            return true;
        }
        next = find(next->parent);
    }
    return false;
}

bool ignoresSignal(qint64 process, int signal)
{
    constexpr QByteArrayView name = "\nSigIgn:\t";
    const QByteArray status = contentOf("/proc/" + QByteArray::number(process) + "/status");
    const qsizetype at = status.indexOf(name);
    if (at < 0) {
        return false;
    }
    const qsizetype start = at + name.size();
    const quint64 ignored = status.mid(start, status.indexOf('\n', start) - start).toULongLong(nullptr, 16);
    return (ignored >> unsigned(signal - 1) & 1U) != 0;
}

} // namespace kelm
