// A log that forgets.
#pragma once

#include "platform/process/log.h"

#include <QStringList>

namespace kelm::soak {

/// Keeps the last lines only: a log that grows would look like a leak.
class RecentLog final : public Log
{
public:
    void write(const QString& line) override { add(line); }
    void print(const QString& line) override { add(line); }

    const QStringList& lines() const { return lines_; }

private:
    static constexpr qsizetype mostLines = 30;

    void add(const QString& line)
    {
        lines_.append(line);
        if (lines_.size() > mostLines) {
            lines_.removeFirst();
        }
    }

    QStringList lines_;
};

} // namespace kelm::soak
