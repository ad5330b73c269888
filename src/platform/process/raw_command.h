// Starting a program by names that are not UTF-8.
#pragma once

#include "platform/process/process.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace kelm {

/// A command in the system's own bytes. The toolkit's process makes question marks of those that are not UTF-8, so that
/// the child starts such a command itself, in the last moment that the toolkit gives it. All is made ready in the
/// parent: the child has its parent's memory and a stack of a few thousand bytes.
class RawCommand
{
public:
    /// Absent for a command that the toolkit can start.
    static std::optional<RawCommand> of(const ProcessCommand& command);

    /// In the child: goes to the folder and becomes the program. Comes back only when that is not possible.
    void execute() const;

private:
    /// Texts as the system takes them, with a null behind the last.
    class Texts
    {
    public:
        Texts() = default;
        explicit Texts(std::vector<QByteArray> texts);
        char* const* pointers() const { return pointers_.data(); }

    private:
        std::vector<QByteArray> texts_;
        std::vector<char*> pointers_;
    };

    explicit RawCommand(const ProcessCommand& command);

    QByteArray folder_;
    QByteArray program_;
    Texts arguments_;
    std::optional<Texts> environment_;
};

} // namespace kelm
