// The lock that decides which start of the program is the first.
#pragma once

#include "platform/files/open_file.h"

#include <QString>

namespace kelm {

/// A lock that the system drops when the process that holds it ends, however it ends. No child of that process keeps
/// it. Any thread, one at a time.
class InstanceLock
{
public:
    explicit InstanceLock(QString path) : path_(std::move(path)) {}

    enum class Result {
        taken,
        /// Another holds it.
        held,
        /// The file can be neither made nor locked, or belongs to somebody else.
        impossible,
    };

    /// Takes the lock without waiting. Its file is made when it is not there, and is never removed.
    Result tryLock();
    void unlock() { file_.close(); }
    bool isTaken() const { return file_.isOpen(); }

private:
    QString path_;
    OpenFile file_;
};

} // namespace kelm
