// The processes of the machine, as far as the system shows them.
#pragma once

#include <QtGlobal>

#include <optional>
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

/// Whether a process ignores a signal; not so where nothing is known of it.
bool ignoresSignal(qint64 process, int signal);

} // namespace kelm
