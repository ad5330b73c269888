// Lines for a descriptor that may not take them.
#pragma once

#include <QByteArray>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

namespace kelm {

/// Writes lines to a descriptor by a thread of its own, so that nobody waits for whoever reads them, or does not: a
/// full pipe, a terminal that is held, a disk that is slow. Of lines that wait, a mebibyte is kept; those that come
/// while there is no room are counted, and a line tells their number. What can no longer be written is dropped without
/// a word. From any thread.
class LineWriter
{
public:
    static constexpr qsizetype mostWaiting = qsizetype(1024) * 1024;

    /// The descriptor is not closed with the writer, and its mode is left as it is, since other processes share it.
    explicit LineWriter(int descriptor);
    /// Gives the lines that wait a moment, and leaves those that are not taken then.
    ~LineWriter();
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    /// Adds a line, with its line feed.
    void write(QByteArray line);

    /// Waits until everything has been written; false when the time is over first.
    bool finish(std::chrono::milliseconds patience);

private:
    struct Shared
    {
        std::mutex mutex;
        std::condition_variable changed;
        std::deque<QByteArray> lines;
        qsizetype size = 0;
        qint64 leftOut = 0;
        bool hasThread = false;
        bool isWriting = false;
        bool isStopping = false;
    };

    static void run(const std::shared_ptr<Shared>& shared, int descriptor);

    int descriptor_;
    /// Outlives the writer when its thread is held by the descriptor.
    std::shared_ptr<Shared> shared_ = std::make_shared<Shared>();
};

} // namespace kelm
