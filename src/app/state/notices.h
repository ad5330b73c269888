// What goes on and takes its time.
#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace kelm {

/// One line that tells of something that is going on.
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
};

/// The notices of what is going on, of which one is shown at a time: the first that holds the input, or else the one
/// that has been there longest. Main thread only.
class Notices final : public QObject
{
    Q_OBJECT

public:
    /// Never given twice.
    using Id = quint64;

    Id add(Notice notice);
    /// Does nothing for a notice that has gone, since who tells of it may be late.
    void setProgress(Id id, double progress);
    void remove(Id id);

    /// The notice that is to be shown; null when nothing goes on. Good until the next change.
    const Notice* current() const;
    /// Whether the window's input has to wait.
    bool holdsInput() const { return current() != nullptr && current()->holdsInput; }
    /// Whether what is shown can be ended.
    bool canStop() const { return current() != nullptr && current()->stop; }
    /// Ends what is shown, if that can be.
    void stop();

Q_SIGNALS:
    /// Another notice is shown, or none.
    void currentChanged();
    /// The notice that is shown has come further.
    void progressChanged();
    void holdsInputChanged();

private:
    struct Entry
    {
        Id id;
        Notice notice;
    };

    const Entry* currentEntry() const;
    /// Tells of what is another than it was.
    void tell(Id shownBefore, bool heldBefore);
    Id shown() const { return currentEntry() != nullptr ? currentEntry()->id : 0; }

    std::vector<Entry> entries_;
    Id lastId_ = 0;
};

} // namespace kelm
