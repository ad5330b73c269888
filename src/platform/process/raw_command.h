// Starting a program by names that are not UTF-8.
#pragma once

#include "platform/process/process.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace kelm {

/// A command in the system's own bytes. The toolkit's process makes question marks of those that are not UTF-8, so that
/// the child starts such a command itself, in the last moment that the toolkit gives it. Made in the parent; a child
/// must not take memory.
class RawCommand
{
public:
    /// Absent for a command that the toolkit can start.
    static std::optional<RawCommand> of(const ProcessCommand& command);

    /// In the child: goes to the folder and becomes the program. Comes back only when that is not possible.
    void execute() const;

private:
    explicit RawCommand(const ProcessCommand& command);

    QByteArray folder_;
    QByteArray program_;
    std::vector<QByteArray> arguments_;
    std::optional<std::vector<QByteArray>> environment_;
};

} // namespace kelm
