#include "platform/process/raw_command.h"

#include "platform/files/native_path.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

namespace kelm {

namespace {

/// An entry of the environment. A variable that the application has as well keeps its bytes, which its text may not
/// tell.
QByteArray variable(const QString& name, const QString& value)
{
    const QByteArray nativeName = nativePath(name);
    const char* const own = std::getenv(nativeName.constData());
    return nativeName + '=' + (own != nullptr && QString::fromUtf8(own) == value ? QByteArray(own) : nativePath(value));
}

bool isRawText(const QString& text)
{
    return holdsRawBytes(text);
}

} // namespace

RawCommand::Texts::Texts(std::vector<QByteArray> texts) : texts_(std::move(texts))
{
    for (const QByteArray& text : texts_) {
        // Copies of the bytes share them, so that these stay good.
        pointers_.push_back(const_cast<char*>(text.constData()));
    }
    pointers_.push_back(nullptr);
}

std::optional<RawCommand> RawCommand::of(const ProcessCommand& command)
{
    const bool isRaw =
        holdsRawBytes(command.program) || holdsRawBytes(command.workingDirectory) ||
        std::any_of(command.arguments.begin(), command.arguments.end(), isRawText) ||
        (command.environment && std::any_of(command.environment->begin(), command.environment->end(), isRawText));
    return isRaw ? std::optional(RawCommand(command)) : std::nullopt;
}

RawCommand::RawCommand(const ProcessCommand& command)
    : folder_(nativePath(command.workingDirectory)), program_(nativePath(command.program))
{
    std::vector<QByteArray> arguments{program_};
    for (const QString& argument : command.arguments) {
        arguments.push_back(nativePath(argument));
    }
    arguments_ = Texts(std::move(arguments));
    if (command.environment) {
        std::vector<QByteArray> variables;
        for (auto entry = command.environment->cbegin(); entry != command.environment->cend(); ++entry) {
            variables.push_back(variable(entry.key(), entry.value()));
        }
        environment_ = Texts(std::move(variables));
    }
}

void RawCommand::execute() const
{
    if (!folder_.isEmpty() && ::chdir(folder_.constData()) != 0) {
        return;
    }
    if (environment_) {
        ::execve(program_.constData(), arguments_.pointers(), environment_->pointers());
    } else {
        ::execv(program_.constData(), arguments_.pointers());
    }
}

} // namespace kelm
