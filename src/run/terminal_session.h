// A terminal without a pseudo-terminal: one line, one command.
#pragma once

#include "platform/events/notification_center.h"
#include "platform/events/scheduler.h"
#include "platform/process/child_process.h"
#include "run/command_interrupt.h"
#include "run/terminal_screen.h"

#include <QColor>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QUuid>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

namespace kelm {

/// Runs the lines that a person types: a builtin command by itself, any other line in a shell of its own. The session
/// keeps the working folder, the environment and the history; it begins in the home folder.
///
/// A command is waited for in a local event loop: its output appears as it comes, the window lives, and `sendInterrupt`
/// reaches it. A command leads a process group of its own, so an interrupt reaches what it has started as well. The
/// wait ends with the command, with the session, and when the application quits; no child is ended by any of these.
/// What processes that a command leaves behind write later is thrown away.
///
/// Who else wants something of the session meanwhile asks with `whenIdle`. Main thread only.
class TerminalSession final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged)

public:
    using Environment = QMap<QString, QString>;

    /// What the session reaches beyond itself; all of it outlives the session.
    struct Services
    {
        Scheduler& scheduler;
        NotificationCenter& notifications;
        /// Shells in the order of preference; the first that is executable runs a line, else the first.
        QStringList shells = usualShells();
        /// What "exit" does: it puts away the panel that the terminal stands in.
        std::function<void()> hideBottomPanel = {};
    };

    /// Observes `runFile`, and writes its banner and the first prompt 0.1 seconds later.
    explicit TerminalSession(Services services, QObject* parent = nullptr);
    ~TerminalSession() override;

    static QStringList usualShells();

    /// The prompt in `directory`, with the line feed before it.
    static QString promptText(QStringView directory);

    const QUuid& id() const { return id_; }

    /// Where output goes. The session does not keep `view` alive, and writes nothing while there is none.
    template <typename View>
    void setTextView(View* view)
    {
        static_assert(std::is_base_of_v<QObject, View> && std::is_base_of_v<TerminalScreen, View>);
        viewGuard_ = view;
        view_ = view;
    }
    TerminalScreen* textView() const { return viewGuard_ ? view_ : nullptr; }

    const QString& title() const { return title_; }
    void setTitle(const QString& title);

    /// The latest command that was given to a shell, kept when it has ended; null before the first.
    const ChildProcess* process() const { return process_.get(); }

    /// Each line that was executed, oldest first.
    const QStringList& commandHistory() const { return commandHistory_; }
    /// The place in the history; the number of its lines when that is the new line.
    qsizetype historyIndex() const { return historyIndex_; }
    void setHistoryIndex(qsizetype index) { historyIndex_ = index; }

    /// What each command gets as its environment; at first the application's own.
    const Environment& environment() const { return environment_; }
    /// An absolute path.
    const QString& currentDirectory() const { return currentDirectory_; }

    /// Whether a command is being waited for.
    bool isBusy() const { return isBusy_; }
    /// Whether `whenIdle` would run its work at once.
    bool isIdle() const { return !isBusy_ && waiting_.empty(); }
    /// Whether some work waits for its turn.
    bool hasWaiting() const { return !waiting_.empty(); }
    /// Runs `work` now, or, while a command is waited for, when it has ended and its caller has written the prompt; in
    /// the order of the calls. Where `thrownAway` is given and the person interrupts before, that runs in its place.
    void whenIdle(std::function<void()> work, std::function<void()> thrownAway = {});

    /// Runs one line and comes back when it has ended; an empty one is passed over. The prompt that follows is the
    /// caller's. While a command is waited for, the line waits for its turn, and a prompt is written behind it.
    void executeCommand(const QString& line);

    /// Interrupts the command that is running, if one is, and writes "^C" and a prompt in any case. Lines that wait for
    /// their turn are not run any more; they stay in the history.
    void sendInterrupt();
    /// Whether the command that is being waited for has been interrupted.
    bool isInterrupted() const { return interrupt_.isAsked(); }
    /// Whether it goes on two seconds later.
    bool isInterruptOutlasted() const { return interrupt_.isOutlasted(); }
    /// Ends the command that is being waited for with all that it has started, as `CommandInterrupt::end` does.
    void endCommand();
    /// How often a command was told to stop, in one way or the other.
    quint64 stops() const { return stops_; }

    /// Puts a line into the history and does nothing else with it.
    void remember(const QString& line);

    /// Moves one forward in the history and returns the line there; the empty text behind the last one.
    QString getNextCommand();

    /// `line` with the path at its end completed, when there is exactly one way to do so. Several ways are listed, and
    /// the line is written again below them, where it counts as output.
    std::optional<QString> getTabCompletion(const QString& line);

    /// Runs the file that the notification names by its extension, when the session is idle. The line enters the
    /// history and is not shown.
    void handleRunFile(const Notification& notification);

Q_SIGNALS:
    void titleChanged();
    void isBusyChanged();
    void isInterruptOutlastedChanged();
    /// All that waited when the person interrupted has been thrown away.
    void waitingThrownAway();

private:
    struct Builtin
    {
        QStringView name;
        void (TerminalSession::*run)(const QStringList& arguments);
    };
    static const std::vector<Builtin>& builtins();

    void executeInTurn(const QString& line);
    bool handleBuiltinCommand(const QString& line);
    void cd(const QStringList& arguments);
    void pwd(const QStringList& arguments);
    void clear(const QStringList& arguments);
    void exportVariable(const QStringList& arguments);
    void history(const QStringList& arguments);
    void alias(const QStringList& arguments);
    void help(const QStringList& arguments);
    void exit(const QStringList& arguments);

    void changeDirectory(const QString& path);
    void executeExternalCommand(const QString& line);
    void waitUntilExit();
    void setIsBusy(bool isBusy);
    void runWhatWaits();
    void runFile(const QUrl& file);

    void writeBanner();
    void append(const AttributedText& output);
    void write(const QString& text, const QColor& color);
    void writePrompt();

    Services services_;
    QUuid id_ = QUuid::createUuid();
    QPointer<QObject> viewGuard_;
    TerminalScreen* view_ = nullptr;
    QString title_;
    std::unique_ptr<ChildProcess> process_;
    QStringList commandHistory_;
    qsizetype historyIndex_ = 0;
    Environment environment_;
    QString currentDirectory_;
    bool isBusy_ = false;
    CommandInterrupt interrupt_;
    quint64 stops_ = 0;
    struct Waiting
    {
        std::function<void()> work;
        /// Empty for what is not thrown away.
        std::function<void()> thrownAway;
    };
    std::deque<Waiting> waiting_;
    /// How many of those that wait are to be thrown away, from the first on.
    std::size_t thrownAwayCount_ = 0;
};

} // namespace kelm
