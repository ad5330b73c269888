#include "run/terminal_session.h"

#include "platform/events/main_queue.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/process/environment.h"
#include "platform/text/character_sets.h"
#include "platform/text/shown_name.h"
#include "run/file_commands.h"
#include "run/path_completion.h"
#include "run/path_names.h"
#include "run/terminal_output.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>

#include <unistd.h>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::milliseconds bannerDelay{100};

const QString helpText =
    u"\nAvailable commands:\n  cd [path]     - Change directory\n  pwd           - Print working directory\n"
    "  clear         - Clear terminal\n  history       - Show command history\n"
    "  export [VAR]  - Set/show environment variables\n  exit          - Close terminal\n"
    "  help          - Show this help\n\nTab completion is available for file paths.\n"
    "Any other command will be executed in the shell.\n"_s;

const QString& firstExecutable(const QStringList& paths)
{
    const auto isExecutable = [](const QString& path) {
        const QFileInfo file(path);
        return file.isFile() && file.isExecutable();
    };
    const auto found = std::find_if(paths.begin(), paths.end(), isExecutable);
    return found != paths.end() ? *found : paths.front();
}

} // namespace

TerminalSession::TerminalSession(Services services, QObject* parent)
    : QObject(parent),
      services_(std::move(services)),
      title_(u"Terminal"_s),
      environment_(applicationEnvironment()),
      currentDirectory_(QDir::homePath()),
      interrupt_(services_.scheduler)
{
    connect(&interrupt_, &CommandInterrupt::isOutlastedChanged, this, &TerminalSession::isInterruptOutlastedChanged);
    services_.notifications.addObserver(this, notifications::runFile,
                                        [this](const Notification& notification) { handleRunFile(notification); });
    services_.scheduler.after(bannerDelay, this, [this] { writeBanner(); });
}

TerminalSession::~TerminalSession() = default;

QStringList TerminalSession::usualShells()
{
    return {u"/bin/zsh"_s, u"/bin/bash"_s, u"/bin/sh"_s};
}

QString TerminalSession::promptText(QStringView directory)
{
    return u"\n%1 $ "_s.arg(directory);
}

void TerminalSession::setTitle(const QString& title)
{
    if (std::exchange(title_, title) != title) {
        Q_EMIT titleChanged();
    }
}

void TerminalSession::executeCommand(const QString& line)
{
    if (line.isEmpty()) {
        return;
    }
    if (isBusy_) {
        whenIdle([this, line] { executeInTurn(line); }, [this, line] { remember(line); });
        return;
    }
    remember(line);
    if (!handleBuiltinCommand(line)) {
        executeExternalCommand(line);
    }
}

void TerminalSession::remember(const QString& line)
{
    if (!line.isEmpty()) {
        commandHistory_.append(line);
        historyIndex_ = commandHistory_.size();
    }
}

void TerminalSession::executeInTurn(const QString& line)
{
    const QPointer<TerminalSession> self = this;
    executeCommand(line);
    if (self) {
        writePrompt();
    }
}

// ---- Builtin commands -----------------------------------------------------------------------------------------------

const std::vector<TerminalSession::Builtin>& TerminalSession::builtins()
{
    static const std::vector<Builtin> table{
        {u"cd", &TerminalSession::cd},           {u"pwd", &TerminalSession::pwd},
        {u"clear", &TerminalSession::clear},     {u"export", &TerminalSession::exportVariable},
        {u"history", &TerminalSession::history}, {u"alias", &TerminalSession::alias},
        {u"help", &TerminalSession::help},       {u"exit", &TerminalSession::exit},
    };
    return table;
}

bool TerminalSession::handleBuiltinCommand(const QString& line)
{
    QStringList pieces;
    for (const QStringView piece : split(line, isWhitespace)) {
        pieces.append(piece.toString());
    }
    const QString name = pieces.takeFirst();
    for (const Builtin& builtin : builtins()) {
        if (builtin.name == name) {
            (this->*builtin.run)(pieces);
            return true;
        }
    }
    return false;
}

void TerminalSession::cd(const QStringList& arguments)
{
    const QString path = arguments.join(u' ');
    changeDirectory(path.isEmpty() ? QDir::homePath() : path);
}

void TerminalSession::pwd(const QStringList& /*arguments*/)
{
    write(u'\n' + currentDirectory_, plainColors::white);
}

void TerminalSession::clear(const QStringList& /*arguments*/)
{
    if (TerminalScreen* view = textView()) {
        view->clear();
    }
    writePrompt();
}

void TerminalSession::exportVariable(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        QString text = u"\n"_s;
        for (auto entry = environment_.cbegin(); entry != environment_.cend(); ++entry) {
            text += entry.key() + u'=' + entry.value() + u'\n';
        }
        write(text, plainColors::white);
        return;
    }
    const QString assignment = arguments.join(u' ');
    const qsizetype equals = assignment.indexOf(u'=');
    if (equals < 0) {
        return;
    }
    environment_.insert(assignment.first(equals), assignment.sliced(equals + 1));
    write(u"\nSet "_s + assignment, plainColors::gray);
}

void TerminalSession::history(const QStringList& /*arguments*/)
{
    QString text = u"\n"_s;
    for (qsizetype index = 0; index < commandHistory_.size(); ++index) {
        text += QString::number(index + 1) + u"  "_s + commandHistory_[index] + u'\n';
    }
    write(text, plainColors::white);
}

void TerminalSession::alias(const QStringList& /*arguments*/)
{
    write(u"\nAliases not yet implemented"_s, plainColors::yellow);
}

void TerminalSession::help(const QStringList& /*arguments*/)
{
    write(helpText, plainColors::cyan);
}

void TerminalSession::exit(const QStringList& /*arguments*/)
{
    // The session itself goes on, with its text.
    if (services_.hideBottomPanel) {
        services_.hideBottomPanel();
    }
}

void TerminalSession::changeDirectory(const QString& path)
{
    const QString expanded = expandingTilde(path);
    QString target = expanded.startsWith(u'/') ? expanded : appendingPathComponent(currentDirectory_, expanded);
    if (!isFolder(currentDirectory_)) {
        // Nothing is below a folder that has gone, ".." neither, and yet that is where a person would go.
        target = standardizedPath(target);
    }
    if (!isFolder(target)) {
        write(u"\ncd: no such directory: "_s + path, plainColors::red);
        return;
    }
    currentDirectory_ = standardizedPath(target);
    // A folder that may not be entered is the session's all the same: its next command tells.
    [[maybe_unused]] const int entered = ::chdir(nativePath(currentDirectory_).constData());
}

// ---- External commands ----------------------------------------------------------------------------------------------

void TerminalSession::executeExternalCommand(const QString& line)
{
    process_ = std::make_unique<ChildProcess>();
    const auto output = std::make_shared<TerminalOutput>();
    connect(process_.get(), &ChildProcess::outputRead, this,
            [this, output](const QString& text) { append(output->output(text)); });
    connect(process_.get(), &ChildProcess::errorRead, this,
            [this, output](const QString& text) { append(output->error(text)); });
    const auto error = process_->start({.program = firstExecutable(services_.shells),
                                        .arguments = {u"-c"_s, line},
                                        .workingDirectory = currentDirectory_,
                                        .environment = environment_,
                                        .ownGroup = true});
    if (error) {
        write(u"\nError: "_s + *error, plainColors::red);
        return;
    }
    waitUntilExit();
}

void TerminalSession::waitUntilExit()
{
    QEventLoop loop;
    connect(process_.get(), &ChildProcess::finished, &loop, &QEventLoop::quit);
    connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
    const QPointer<TerminalSession> self = this;
    setIsBusy(true);
    loop.exec();
    if (self) {
        if (process_->isRunning()) {
            // The program ends, and nothing that waits for the command is to be begun by that.
            ++stops_;
            waiting_.clear();
        }
        setIsBusy(false);
        onMainQueue(this, [this] { runWhatWaits(); });
    }
}

void TerminalSession::setIsBusy(bool isBusy)
{
    isBusy_ = isBusy;
    interrupt_.reset();
    Q_EMIT isBusyChanged();
}

void TerminalSession::whenIdle(std::function<void()> work, std::function<void()> thrownAway)
{
    if (isBusy_ || !waiting_.empty()) {
        waiting_.push_back({std::move(work), std::move(thrownAway)});
    } else {
        work();
    }
}

void TerminalSession::runWhatWaits()
{
    const QPointer<TerminalSession> self = this;
    while (self && !isBusy_ && !waiting_.empty()) {
        const Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        const bool isThrownAway = thrownAwayCount_ > 0;
        thrownAwayCount_ -= isThrownAway ? 1 : 0;
        (isThrownAway && next.thrownAway ? next.thrownAway : next.work)();
        if (self && isThrownAway && thrownAwayCount_ == 0) {
            Q_EMIT waitingThrownAway();
        }
    }
}

void TerminalSession::sendInterrupt()
{
    ++stops_;
    if (process_) {
        interrupt_.interrupt(*process_);
    }
    thrownAwayCount_ = waiting_.size();
    write(u"^C"_s, plainColors::red);
    writePrompt();
}

void TerminalSession::endCommand()
{
    ++stops_;
    if (isBusy_ && process_) {
        interrupt_.end(*process_);
    }
}

// ---- What the keys ask for ------------------------------------------------------------------------------------------

QString TerminalSession::getNextCommand()
{
    if (historyIndex_ >= commandHistory_.size() - 1) {
        historyIndex_ = commandHistory_.size();
        return u""_s;
    }
    return commandHistory_[++historyIndex_];
}

std::optional<QString> TerminalSession::getTabCompletion(const QString& line)
{
    const PathCompletion completion(line, currentDirectory_);
    if (completion.names().isEmpty()) {
        return std::nullopt;
    }
    if (completion.names().size() == 1) {
        return completion.lineWith(completion.names().front());
    }
    QStringList shown;
    for (const QString& name : completion.names()) {
        shown.append(shownName(name));
    }
    write(u'\n' + shown.join(u"  "_s), plainColors::gray);
    writePrompt();
    write(line, plainColors::green);
    return std::nullopt;
}

// ---- Running a file -------------------------------------------------------------------------------------------------

void TerminalSession::handleRunFile(const Notification& notification)
{
    if (notification.object.metaType() != QMetaType::fromType<QUrl>()) {
        return;
    }
    const QUrl file = notification.object.toUrl();
    whenIdle([this, file] { runFile(file); }, [this, file] { remember(shellLineFor(file).value_or(QString())); });
}

void TerminalSession::runFile(const QUrl& file)
{
    if (const auto line = shellLineFor(file)) {
        executeInTurn(*line);
        return;
    }
    write(u"\nUnsupported file type: ."_s + pathExtension(file).toLower() + u'\n', plainColors::red);
    writePrompt();
}

// ---- Writing --------------------------------------------------------------------------------------------------------

void TerminalSession::writeBanner()
{
    // Whoever types as soon as there is something to type in means the command behind the prompt.
    TerminalScreen* const screen = isBusy_ ? nullptr : textView();
    const QString typed = screen != nullptr ? screen->takeTyped() : QString();
    write(u"KelmWright Terminal v2.0\n"_s, plainColors::cyan);
    write(u"Type 'help' for available commands\n"_s, plainColors::gray);
    writePrompt();
    if (!typed.isEmpty()) {
        screen->putTyped(typed);
    }
}

void TerminalSession::append(const AttributedText& output)
{
    if (TerminalScreen* view = textView()) {
        view->appendOutput(output);
    }
}

void TerminalSession::write(const QString& text, const QColor& color)
{
    if (TerminalScreen* view = textView()) {
        view->appendText(text, color);
    }
}

void TerminalSession::writePrompt()
{
    if (TerminalScreen* view = textView()) {
        view->appendPrompt();
    }
}

} // namespace kelm
