// A shell that a test talks with.
#pragma once

#include "platform/process/child_process.h"
#include "platform/process/process_table.h"
#include "support/patience.h"

#include <QtTest>

#include <algorithm>
#include <optional>
#include <vector>

namespace kelm::test {

/// A shell that runs a line, heard until it has said the word "ready", and as many numbers as are awaited.
struct ToldShell
{
    ToldShell(const QString& shell, const QString& line, bool ownGroup, qsizetype numbers)
    {
        QObject::connect(&child, &ChildProcess::outputRead, &child, [this](const QString& text) { output += text; });
        QObject::connect(&child, &ChildProcess::finished, &child, [this](const ProcessExit& how) { exit = how; });
        const auto error = child.start({.program = shell,
                                        .arguments = {QStringLiteral("-c"), line},
                                        .standardInput = QByteArray(),
                                        .ownGroup = ownGroup});
        const auto hasTold = [this, numbers] {
            return output.contains(QStringLiteral("ready\n")) && told().size() >= numbers;
        };
        isReady = !error && QTest::qWaitFor(hasTold, patience);
    }

    /// The numbers that it has said on lines of their own.
    QList<qint64> told() const
    {
        QList<qint64> numbers;
        for (const QString& line : output.split(u'\n')) {
            if (const qint64 number = line.toLongLong(); number > 0) {
                numbers.append(number);
            }
        }
        return numbers;
    }

    ChildProcess child;
    QString output;
    std::optional<ProcessExit> exit;
    bool isReady = false;
};

/// Whether a process is there and has not ended.
inline bool lives(qint64 process)
{
    const std::vector<ProcessEntry> table = processTable();
    return std::any_of(table.begin(), table.end(),
                       [process](const ProcessEntry& entry) { return entry.id == process && !entry.hasEnded; });
}

} // namespace kelm::test
