#include "app/command_line/command_line.h"

#include "app/command_line/command_options.h"
#include "app/command_line/operands.h"
#include "platform/files/native_path.h"

#include <algorithm>
#include <array>
#include <optional>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// An option that the toolkit takes out of the command line, and whether a value of its own follows. Each goes with one
/// hyphen or two.
struct ToolkitOption
{
    QLatin1String name;
    bool hasValue;
};

constexpr std::array toolkitOptions{
    ToolkitOption{QLatin1String("display"), true},
    ToolkitOption{QLatin1String("dograb"), false},
    ToolkitOption{QLatin1String("geometry"), true},
    ToolkitOption{QLatin1String("icon"), true},
    ToolkitOption{QLatin1String("nograb"), false},
    ToolkitOption{QLatin1String("platform"), true},
    ToolkitOption{QLatin1String("platformpluginpath"), true},
    ToolkitOption{QLatin1String("platformtheme"), true},
    ToolkitOption{QLatin1String("plugin"), true},
    ToolkitOption{QLatin1String("qwindowgeometry"), true},
    ToolkitOption{QLatin1String("qwindowicon"), true},
    ToolkitOption{QLatin1String("qwindowtitle"), true},
    ToolkitOption{QLatin1String("reverse"), false},
    ToolkitOption{QLatin1String("session"), true},
    ToolkitOption{QLatin1String("style"), true},
    ToolkitOption{QLatin1String("stylesheet"), true},
    ToolkitOption{QLatin1String("title"), true},
};

const ToolkitOption* toolkitOption(QStringView argument)
{
    const QStringView name = argument.sliced(argument.startsWith("--"_L1) ? 2 : 1);
    const auto found = std::find_if(toolkitOptions.begin(), toolkitOptions.end(),
                                    [name](const ToolkitOption& option) { return name == option.name; });
    return found != toolkitOptions.end() ? &*found : nullptr;
}

class Parser
{
public:
    explicit Parser(const QStringList& arguments) : arguments_(arguments) {}

    std::variant<CommandLine, UsageError> parse()
    {
        while (at_ < arguments_.size() && result_.task == CommandLine::Task::open && !error_) {
            take(arguments_[at_++]);
        }
        if (error_) {
            return *error_;
        }
        return result_;
    }

private:
    void take(const QString& argument)
    {
        if (argument.isEmpty()) {
            return;
        }
        if (areOptionsOver_ || argument == u"-" || !argument.startsWith(u'-')) {
            result_.operands.append({argument, !areOptionsOver_ && argument == u"-"});
        } else if (argument == u"--") {
            areOptionsOver_ = true;
        } else {
            takeOption(argument);
        }
    }

    void takeOption(const QString& argument)
    {
        const qsizetype equals = argument.indexOf(u'=');
        const QString name = equals < 0 ? argument : argument.first(equals);
        const std::optional<QString> attached =
            equals < 0 ? std::nullopt : std::optional<QString>(argument.sliced(equals + 1));
        const auto option = std::find_if(commandOptions.begin(), commandOptions.end(),
                                         [&name](const CommandOption& each) { return name == each.name; });
        if (option == commandOptions.end()) {
            takeToolkitOption(argument, name, attached.has_value());
        } else if (option->value.isEmpty() && attached) {
            fail(u"%1 takes no value"_s.arg(name));
        } else if (!option->value.isEmpty() && !attached && at_ == arguments_.size()) {
            fail(u"%1 needs a number"_s.arg(name));
        } else {
            carryOut(*option, option->value.isEmpty() ? QString() : attached ? *attached : arguments_[at_++]);
        }
    }

    void takeToolkitOption(const QString& argument, const QString& name, bool hasAttached)
    {
        const ToolkitOption* option = toolkitOption(name);
        if (option == nullptr || (hasAttached && !option->hasValue)) {
            fail(u"unknown option %1"_s.arg(shownPath(argument)));
            return;
        }
        result_.toolkitArguments.append(argument);
        if (option->hasValue && !hasAttached && at_ < arguments_.size()) {
            result_.toolkitArguments.append(arguments_[at_++]);
        }
    }

    void carryOut(const CommandOption& option, const QString& value)
    {
        switch (option.id) {
        case CommandOptionId::help:
            result_.task = CommandLine::Task::help;
            break;
        case CommandOptionId::version:
            result_.task = CommandLine::Task::version;
            break;
        case CommandOptionId::wait:
            result_.waits = true;
            break;
        case CommandOptionId::newFile:
            result_.makesNewFile = true;
            break;
        case CommandOptionId::openFolder:
            result_.choosesFolder = true;
            break;
        case CommandOptionId::line:
            takeLine(option, value);
            break;
        }
    }

    void takeLine(const CommandOption& option, const QString& value)
    {
        if (const std::optional<quint32> line = placeNumber(value)) {
            result_.line = *line;
        } else {
            fail(u"%1 needs a number, and “%2” is none"_s.arg(QString(option.name), shownPath(value)));
        }
    }

    void fail(const QString& message) { error_ = UsageError{message}; }

    const QStringList& arguments_;
    qsizetype at_ = 0;
    bool areOptionsOver_ = false;
    CommandLine result_;
    std::optional<UsageError> error_;
};

} // namespace

std::variant<CommandLine, UsageError> parseCommandLine(const QStringList& arguments)
{
    return Parser(arguments).parse();
}

} // namespace kelm
