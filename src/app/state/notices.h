// What the window tells in one quiet line.
#pragma once

#include "platform/events/scheduler.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kelm {

/// Something that a notice offers to do.
struct NoticeOffer
{
    /// Such as "Reopen".
    QString label;
    /// Does it; the notice has gone by then.
    std::function<void()> accept;
};

/// One line that tells of something that is going on, or that has happened.
struct Notice
{
    /// Such as "Opening notes.txt…".
    QString text;
    /// How far it is, from 0 to 1; absent where nobody knows.
    std::optional<double> progress = std::nullopt;
    /// Ends what it tells of, and removes the notice; absent for what cannot be ended.
    std::function<void()> stop = {};
    /// Whether keys and pointer have to wait for its end.
    bool holdsInput = false;
    /// Whether the main thread itself waits for its end: no window of the program goes on, and it is shown at once,
    /// since it has been waited for already.
    bool stopsAll = false;
    /// How long it has lasted, where that is told.
    std::optional<std::chrono::seconds> time = std::nullopt;
    /// Whether it tells of what has happened, and can be put away.
    bool isNews = false;
    /// What can be done about that.
    std::vector<NoticeOffer> offers = {};
};

/// The notices, of which one is shown at a time. In this order: what holds the input; news that offer nothing, each for
/// some seconds; what goes on, the oldest first; and news that offer something, the latest first, which stay until one
/// of the offers is taken, they are put away, or whoever told of them removes them. Main thread only.
class Notices final : public QObject
{
    Q_OBJECT

public:
    /// Never given twice.
    using Id = quint64;

    /// How long news that offer nothing are shown.
    static constexpr std::chrono::seconds newsTime{6};

    explicit Notices(Scheduler& scheduler) : scheduler_(scheduler) {}

    /// Tells of something that goes on, until it is removed.
    Id add(Notice notice);
    /// Tells of something that has happened. News that offer nothing and say what others already say are not said
    /// twice.
    Id report(const QString& text, std::vector<NoticeOffer> offers = {});
    /// Does nothing for a notice that has gone, since who tells of it may be late.
    void setProgress(Id id, double progress);
    void setTime(Id id, std::chrono::seconds time);
    void remove(Id id);

    /// The notice that is to be shown; null when there is none. Good until the next change.
    const Notice* current() const;
    /// Whether the window's input has to wait.
    bool holdsInput() const { return current() != nullptr && current()->holdsInput; }
    /// Whether the input of every window has to wait.
    bool stopsAll() const { return holdsInput() && current()->stopsAll; }
    /// Whether what is shown can be ended.
    bool canStop() const { return current() != nullptr && current()->stop; }
    /// Ends what is shown, if that can be.
    void stop();
    /// Takes an offer of the notice that is shown, which goes. An index that it has not does nothing.
    void accept(qsizetype offer);
    /// Puts away what is shown, if that is news.
    void putAway();

Q_SIGNALS:
    /// Another notice is shown, or none.
    void currentChanged();
    /// The notice that is shown has come further, or lasts longer.
    void progressChanged();
    void holdsInputChanged();

private:
    struct Entry
    {
        Id id;
        Notice notice;
    };

    const Entry* currentEntry() const;
    /// Null for one that has gone.
    Notice* find(Id id);
    /// Tells of what is another than it was.
    void tell(Id shownBefore, bool heldBefore);
    Id shown() const { return currentEntry() != nullptr ? currentEntry()->id : 0; }
    /// Begins the time of news that offer nothing.
    void beginTime();

    Scheduler& scheduler_;
    std::vector<Entry> entries_;
    Id lastId_ = 0;
    /// The context of the end of what is shown: dropping it cancels that.
    std::unique_ptr<QObject> time_;
};

} // namespace kelm
