#include "platform/events/start_tokens.h"

namespace kelm {

namespace {

constexpr auto startupVariable = "DESKTOP_STARTUP_ID";
constexpr auto activationVariable = "XDG_ACTIVATION_TOKEN";

QString take(const char* name)
{
    const QString value = qEnvironmentVariable(name);
    qunsetenv(name);
    return value;
}

void put(const char* name, const QString& value)
{
    if (!value.isEmpty()) {
        qputenv(name, value.toUtf8());
    }
}

} // namespace

openRequest::Tokens takeStartTokens()
{
    return {take(startupVariable), take(activationVariable)};
}

void putStartTokens(const openRequest::Tokens& tokens)
{
    put(startupVariable, tokens.startupId);
    put(activationVariable, tokens.activation);
}

} // namespace kelm
