// Any words on a command line, one a line: what is understood is understood again when it is written anew, and the name
// of a place comes back from its item.
#include "app/command_line/command_line.h"
#include "app/command_line/operands.h"
#include "fuzz/require.h"
#include "platform/files/native_path.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace kelm;

/// Arguments that mean the same. What the toolkit takes is left out.
QStringList written(const CommandLine& line)
{
    QStringList arguments;
    if (line.waits) {
        arguments << QStringLiteral("--wait");
    }
    if (line.makesNewFile) {
        arguments << QStringLiteral("--new-file");
    }
    if (line.choosesFolder) {
        arguments << QStringLiteral("--open-folder");
    }
    if (line.line > 0) {
        arguments << QStringLiteral("--line") << QString::number(line.line);
    }
    // Behind "--" nothing is standard input.
    const auto last = std::find_if(line.operands.rbegin(), line.operands.rend(),
                                   [](const CommandLine::Operand& operand) { return operand.isStandardInput; });
    const auto plain = line.operands.rend() - last;
    for (qsizetype index = 0; index < line.operands.size(); ++index) {
        if (index == plain) {
            arguments << QStringLiteral("--");
        }
        arguments << line.operands[index].text;
    }
    return arguments;
}

void checkOperand(const QString& operand)
{
    const QString folder = QStringLiteral("/no folder of this name/한글");
    openRequest::Item item = itemOfOperand(operand, folder);
    require(item.line > 0 || item.column == 0);
    if (item.text.endsWith(u'/')) {
        // A folder has no lines.
        item.line = item.column = 0;
    } else if (item.line > 0) {
        item.column = std::max<quint32>(item.column, 1);
    }
    require(itemOfOperand(operandOf(item), folder) == item);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QStringList arguments;
    for (const QByteArray& bytes : QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)).split('\n')) {
        arguments << pathOfNative(bytes.left(bytes.indexOf('\0') < 0 ? bytes.size() : bytes.indexOf('\0')));
    }
    const auto parsed = parseCommandLine(arguments);
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        require(!error->message.isEmpty());
    } else {
        auto line = std::get<CommandLine>(parsed);
        require(line.operands.size() + line.toolkitArguments.size() <= arguments.size());
        line.toolkitArguments.clear();
        if (line.task == CommandLine::Task::open) {
            const auto again = parseCommandLine(written(line));
            require(std::holds_alternative<CommandLine>(again) && std::get<CommandLine>(again) == line);
        }
    }
    for (const QString& argument : arguments) {
        if (!argument.isEmpty()) {
            checkOperand(argument);
        }
    }
    return 0;
}
