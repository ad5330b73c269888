#include "platform/process/raw_command.h"

#include "platform/files/native_path.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace kelm {

namespace {

/// As many as any sensible command has; a longer one is left to the toolkit.
constexpr std::size_t mostTexts = 1024;

/// The texts as the system takes them, with a null behind the last.
class Pointers
{
public:
    explicit Pointers(const std::vector<QByteArray>& texts)
    {
        std::transform(texts.begin(), texts.end(), pointers_.begin(),
                       [](const QByteArray& text) { return const_cast<char*>(text.constData()); });
    }
    char* const* data() const { return pointers_.data(); }

private:
    std::array<char*, mostTexts + 1> pointers_ = {};
};

} // namespace

std::optional<RawCommand> RawCommand::of(const ProcessCommand& command)
{
    const bool isRaw = holdsRawBytes(command.program) || holdsRawBytes(command.workingDirectory) ||
                       std::any_of(command.arguments.begin(), command.arguments.end(),
                                   [](const QString& argument) { return holdsRawBytes(argument); });
    const auto variables = command.environment ? std::size_t(command.environment->size()) : 0;
    const bool isSensible = std::size_t(command.arguments.size()) < mostTexts && variables <= mostTexts;
    return isRaw && isSensible ? std::optional(RawCommand(command)) : std::nullopt;
}

RawCommand::RawCommand(const ProcessCommand& command)
    : folder_(nativePath(command.workingDirectory)), program_(nativePath(command.program))
{
    arguments_.push_back(program_);
    for (const QString& argument : command.arguments) {
        arguments_.push_back(nativePath(argument));
    }
    if (command.environment) {
        environment_.emplace();
        for (auto entry = command.environment->cbegin(); entry != command.environment->cend(); ++entry) {
            environment_->push_back(nativePath(entry.key() + u'=' + entry.value()));
        }
    }
}

void RawCommand::execute() const
{
    if (!folder_.isEmpty() && ::chdir(folder_.constData()) != 0) {
        return;
    }
    const Pointers arguments(arguments_);
    if (environment_) {
        const Pointers variables(*environment_);
        ::execve(program_.constData(), arguments.data(), variables.data());
    } else {
        ::execv(program_.constData(), arguments.data());
    }
}

} // namespace kelm
