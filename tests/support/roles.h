// Test programs that start themselves as their own child processes.
#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QStringList>

#include <functional>
#include <map>
#include <string>

namespace kelm {

/// What a child does in a role; its result is the exit code.
using Role = std::function<int(const QStringList& arguments)>;

/// The name of the argument behind which a role's name and its arguments stand.
inline const QString roleArgument = QStringLiteral("--role");

/// Starts this very program in `role`.
inline void startRole(QProcess& process, const QString& role, const QStringList& arguments)
{
    process.start(QCoreApplication::applicationFilePath(), QStringList{roleArgument, role} + arguments);
}

/// Runs this program in `role` to its end; -1 when it does not end by itself.
inline int runRole(const QString& role, const QStringList& arguments, QByteArray* standardOutput = nullptr,
                   QByteArray* standardError = nullptr)
{
    QProcess process;
    startRole(process, role, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    if (standardOutput != nullptr) {
        *standardOutput = process.readAllStandardOutput();
    }
    if (standardError != nullptr) {
        *standardError = process.readAllStandardError();
    }
    return process.exitCode();
}

/// The role that this process was started in, if any, carried out.
inline std::optional<int> carryOutRole(const std::map<QString, Role>& roles)
{
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3 || arguments[1] != roleArgument) {
        return std::nullopt;
    }
    const auto role = roles.find(arguments[2]);
    return role == roles.end() ? 99 : role->second(arguments.sliced(3));
}

} // namespace kelm
