// A log that tests read back.
#pragma once

#include "platform/process/log.h"

#include <QStringList>

namespace kelm {

class CapturedLog final : public Log
{
public:
    void write(const QString& line) override { written << line; }
    void print(const QString& line) override { printed << line; }

    /// The lines of the platform log.
    QStringList written;
    /// The lines of standard output.
    QStringList printed;
};

} // namespace kelm
