// What a command line asks for.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <variant>

namespace kelm {

struct CommandLine
{
    enum class Task { open, help, version };

    /// The files, folders, links and "-" of the command line, in their order.
    struct Operand
    {
        QString text;
        /// "-", and no file of that name.
        bool isStandardInput = false;

        friend bool operator==(const Operand&, const Operand&) = default;
    };

    Task task = Task::open;
    QList<Operand> operands = {};
    /// The line for files that name none, counted from 1; 0 where none was given.
    quint32 line = 0;
    bool waits = false;
    bool makesNewFile = false;
    bool choosesFolder = false;
    /// What the toolkit takes for itself, as it was written.
    QStringList toolkitArguments = {};

    friend bool operator==(const CommandLine&, const CommandLine&) = default;
};

/// One sentence without a full stop: what is not understood.
struct UsageError
{
    QString message;

    friend bool operator==(const UsageError&, const UsageError&) = default;
};

/// Reads what follows the program's name. Options stand anywhere before "--"; a value follows its option, or a "=". An
/// empty argument names nothing. Of help and version the first decides, whatever is right or wrong behind it.
std::variant<CommandLine, UsageError> parseCommandLine(const QStringList& arguments);

} // namespace kelm
