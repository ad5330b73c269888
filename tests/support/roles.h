// Test programs that start themselves as their own child processes, in the roles that a test class was registered with.
#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QStringList>

namespace kelm {

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

} // namespace kelm
