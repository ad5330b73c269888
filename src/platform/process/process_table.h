// The processes of the machine, as far as the system shows them.
#pragma once

#include <QtGlobal>

#include <functional>
#include <map>
#include <vector>

namespace kelm {

/// One process at the moment of a look.
struct ProcessEntry
{
    qint64 id = 0;
    qint64 parent = 0;
    qint64 group = 0;
    qint64 session = 0;
    /// When it was started, in ticks: with the number it stays one process's alone.
    quint64 start = 0;
    /// It has ended, and only its parent does not know yet.
    bool hasEnded = false;
};

/// All processes that are to be seen; none where the system has no `/proc`. Any thread.
std::vector<ProcessEntry> processTable();

/// The processes of one look, by their numbers.
class ProcessLook
{
public:
    ProcessLook();
    ProcessLook(const ProcessLook&) = delete;
    ProcessLook& operator=(const ProcessLook&) = delete;

    const std::vector<ProcessEntry>& all() const { return all_; }
    /// Null for one that is not to be seen.
    const ProcessEntry* find(qint64 number) const;
    /// Whether `isMeant` holds for the number of a process or of one that it descends from.
    bool descends(const ProcessEntry& process, const std::function<bool(qint64)>& isMeant) const;

private:
    std::vector<ProcessEntry> all_ = processTable();
    std::map<qint64, const ProcessEntry*> byNumber_;
};

/// Whether a process ignores a signal; not so where nothing is known of it.
bool ignoresSignal(qint64 process, int signal);

} // namespace kelm
