#include "git/service/foreign_programs.h"

#include "git/service/git_service.h"
#include "git/service/repository_files.h"
#include "platform/files/file_identity.h"
#include "platform/files/native_path.h"
#include "platform/files/start_of_file.h"

#include <QDir>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <array>
#include <limits>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// Settings of more than this are taken for ones that speak of everything.
constexpr qsizetype longestSettings = 1 << 20;

/// An index of more than this is not gone through for submodules; they are not looked into then.
constexpr qsizetype longestIndex = 8 << 20;

/// An index of more than this is gone through beside the main thread.
constexpr qint64 longIndex = 1 << 18;

/// How an index marks the entry of a submodule, and one whose entries stand in another file.
constexpr QByteArrayView submoduleMode("\0\0\xe0\0", 4);
constexpr QByteArrayView sharedIndex = "link";

/// The words of settings that name programs by names of their own.
constexpr std::array namedPrograms{"filter", "textconv", "command", "include"};
/// The words of settings by which a look for changes would run a program.
constexpr std::array lookingPrograms{"filter", "fsmonitor", "include"};
/// The words of settings by which fetching over the network would run a program, or go somewhere else.
constexpr std::array fetchingPrograms{"sshcommand", "protocol", "helper",  "askpass",   "uploadpack",
                                      "proxy",      "vcs",      "include", "insteadof", "alternaterefs"};

template <typename Words>
bool speaksOf(const QByteArray& settings, const Words& words)
{
    return std::any_of(words.begin(), words.end(), [&](const char* word) { return settings.contains(word); });
}

/// The settings in small letters; absent when they are too long to look into.
std::optional<QByteArray> settingsText(const RepositoryFiles& files)
{
    QByteArray text;
    for (const QString& path : {files.settings(), files.settingsOfTheWorkTree()}) {
        text += startOfFile(path, longestSettings).value_or(QByteArray()).toLower() + '\n';
    }
    return text.size() < longestSettings ? std::optional(text) : std::nullopt;
}

std::optional<QByteArray> indexOf(const RepositoryFiles& files)
{
    return startOfFile(files.index(), std::numeric_limits<int>::max());
}

/// Whether a program for comparing may be set for all files, by the repository or for all of a person's. The plain diff
/// in its place costs a process more, so that it is put there only then.
bool mayCompareByAProgram(const std::optional<QByteArray>& own)
{
    const QString home = QDir::homePath();
    const QString configuration = qEnvironmentVariable("XDG_CONFIG_HOME", home + u"/.config"_s);
    QByteArray text = own.value_or(QByteArrayLiteral("external"));
    for (const QString& path : {qEnvironmentVariable("GIT_CONFIG_GLOBAL", home + u"/.gitconfig"_s),
                                configuration + u"/git/config"_s, u"/etc/gitconfig"_s}) {
        text += startOfFile(path, longestSettings).value_or(QByteArray()).toLower();
    }
    return speaksOf(text, std::array{"external", "include"}) || qEnvironmentVariableIsSet("GIT_CONFIG_COUNT") ||
           qEnvironmentVariableIsSet("GIT_CONFIG_PARAMETERS") || qEnvironmentVariableIsSet("GIT_CONFIG_SYSTEM");
}

bool mayNameSubmodules(const QByteArray& index)
{
    return index.contains(submoduleMode) || index.contains(sharedIndex);
}

/// Whether git, looking for changes in a submodule, would run what that names. It starts itself there without the
/// settings that it is given here.
bool isForeign(const RepositoryFiles& submodule)
{
    const auto text = settingsText(submodule);
    const auto index = indexOf(submodule);
    // What it lacks would be fetched there, by its own means.
    return !text || speaksOf(*text, lookingPrograms) || speaksOf(*text, fetchingPrograms) ||
           (index && mayNameSubmodules(*index));
}

/// A text as it is; for any other file its hash, so that a change of it is still seen.
const QString plainText = u"plain() { if test ! -s \"$1\" || LC_ALL=C grep -Iq '' \"$1\"; then cat \"$1\"; "
                          "else git hash-object --no-filters \"$1\"; fi; }; plain"_s;

/// What stands in the place of a repository's own setting where a person has none of that name. The place of a program
/// for comparing, which depends on the command, is left empty.
QString harmless(const QString& key)
{
    if (key.startsWith(u"submodule.")) {
        return u"dirty"_s;
    }
    return key.endsWith(u".required") ? u"false"_s : key.endsWith(u".textconv") ? plainText : QString();
}

/// What tells one state of a file from another; empty for a file that is not there.
QByteArray stateOf(const QString& path)
{
    struct stat status = {};
    if (::stat(nativePath(path).constData(), &status) != 0) {
        return {};
    }
#ifdef Q_OS_MACOS
    const timespec& changed = status.st_ctimespec;
#else
    const timespec& changed = status.st_ctim;
#endif
    return QByteArray::number(qint64(status.st_ino)) + ' ' + QByteArray::number(qint64(status.st_size)) + ' ' +
           QByteArray::number(qint64(changed.tv_sec)) + ' ' + QByteArray::number(qint64(changed.tv_nsec));
}

/// The files on which an answer depends.
QStringList sources(const RepositoryFiles& files)
{
    return {files.settings(), files.settingsOfTheWorkTree(), files.head(), files.index(), files.modules()};
}

QByteArrayList statesOf(const QString& folder, const QStringList& paths)
{
    QByteArrayList states{nativePath(folder)};
    for (const QString& path : paths) {
        states.append(stateOf(path));
    }
    return states;
}

} // namespace

/// One look into a repository's settings, by way of git.
class ForeignProgramFinder::Search
{
public:
    Search(ProcessRunner& runner, const RepositoryFiles& files)
        : runner_(runner), files_(files), sources_(sources(files))
    {}

    /// `text` is that of the settings, absent where it is too long to look into.
    ForeignPrograms run(const std::optional<QByteArray>& text)
    {
        if (!text || speaksOf(*text, namedPrograms)) {
            ask({u"--show-scope"_s, u"--get-regexp"_s,
                 u"^(filter\\..*\\.(clean|smudge|process|required)|diff\\..*\\.(command|textconv))$"_s},
                true);
        }
        ForeignPrograms found{.mayFetch = text && !speaksOf(*text, fetchingPrograms)};
        if (mayCompareByAProgram(text)) {
            found.settings.append({u"diff.external"_s, QString()});
        }
        if (hasForeignSubmodule()) {
            found.settings.append({u"diff.ignoreSubmodules"_s, u"dirty"_s});
            askForSubmodules();
        }
        found.settings += replacements();
        return found;
    }

    /// The files that were looked at.
    const QStringList& sourcesOfTheAnswer() const { return sources_; }

private:
    struct Entry
    {
        bool isOfTheRepository;
        QString key;
        QString value;
    };

    /// What is missing is not fetched for it: nothing is known yet of the means.
    ProcessResult answerTo(const QStringList& arguments)
    {
        ProcessCommand command = GitService::makeProcess(arguments, files_.folder);
        command.standardInput = QByteArray();
        replaceForeignPrograms(*command.environment, {.mayFetch = false});
        return runner_.run(command);
    }

    bool hasForeignSubmodule()
    {
        const auto index = indexOf(files_);
        if (!index || !mayNameSubmodules(*index)) {
            return false;
        }
        if (index->size() > longestIndex) {
            return true;
        }
        const ProcessResult listing = answerTo({u"ls-files"_s, u"--stage"_s, u"-z"_s});
        bool isFound = !listing.exit.isSuccess();
        for (const QByteArray& entry : listing.standardOutput.split('\0')) {
            if (!entry.startsWith("160000 ")) {
                continue;
            }
            const QString folder = files_.folder + u'/' + pathOfNative(entry.sliced(entry.indexOf('\t') + 1));
            sources_.append(folder + u"/.git"_s);
            if (const auto submodule = RepositoryFiles::of(folder)) {
                sources_ += sources(*submodule);
                isFound = isFound || isForeign(*submodule);
            }
        }
        return isFound;
    }

    /// What the repository says of looking into its submodules, wherever it says so.
    void askForSubmodules()
    {
        const QStringList ignored{u"--get-regexp"_s, u"^submodule\\..*\\.ignore$"_s};
        ask(QStringList{u"--show-scope"_s} + ignored, true);
        if (isThere(files_.modules())) {
            ask(QStringList{u"--file"_s, files_.modules()} + ignored, false);
        } else {
            // Git looks there when the file is gone.
            ask(QStringList{u"--blob"_s, u":.gitmodules"_s} + ignored, false);
            ask(QStringList{u"--blob"_s, u"HEAD:.gitmodules"_s} + ignored, false);
        }
    }

    /// Takes down what `git config` answers. An answer without a scope comes from the repository.
    void ask(const QStringList& question, bool hasScope)
    {
        const QList<QByteArray> pieces =
            answerTo(QStringList{u"config"_s, u"--null"_s} + question).standardOutput.split('\0');
        const qsizetype step = hasScope ? 2 : 1;
        for (qsizetype at = 0; at + step < pieces.size(); at += step) {
            const QByteArray& entry = pieces[at + step - 1];
            const qsizetype end = entry.indexOf('\n');
            const bool isOwn = !hasScope || pieces[at] == "local" || pieces[at] == "worktree";
            entries_.append({isOwn, pathOfNative(end < 0 ? entry : entry.first(end)),
                             end < 0 ? u"true"_s : pathOfNative(entry.sliced(end + 1))});
        }
    }

    /// What takes the place of the repository's own among the entries.
    GitSettings replacements() const
    {
        QHash<QString, QString> ofThePerson;
        GitSettings settings;
        for (const Entry& entry : entries_) {
            if (!entry.isOfTheRepository) {
                ofThePerson.insert(entry.key, entry.value);
            }
        }
        QSet<QString> done;
        for (const Entry& entry : entries_) {
            const bool isSubmodule = entry.key.startsWith(u"submodule.");
            if (entry.isOfTheRepository && !done.contains(entry.key) && !(isSubmodule && entry.value == u"all")) {
                done.insert(entry.key);
                settings.append(
                    {entry.key, isSubmodule ? harmless(entry.key) : ofThePerson.value(entry.key, harmless(entry.key))});
            }
        }
        return settings;
    }

    ProcessRunner& runner_;
    const RepositoryFiles& files_;
    QList<Entry> entries_;
    QStringList sources_;
};

ForeignPrograms ForeignProgramFinder::find(const QString& folder, const QStringList& arguments)
{
    const auto files = RepositoryFiles::of(folder);
    if (!files) {
        return {};
    }
    if (statesOf(folder, sources_) != states_) {
        const std::optional<FileIdentity> index = identityOf(nativePath(files->index()));
        if (index && index->size > longIndex) {
            runner_->compute([&] { look(*files); });
        } else {
            look(*files);
        }
    }
    ForeignPrograms foreign = found_;
    for (auto& [key, value] : foreign.settings) {
        if (key == u"diff.external" || (key.startsWith(u"diff.") && key.endsWith(u".command"))) {
            value = plainDiffCommand(arguments);
        }
    }
    return foreign;
}

void ForeignProgramFinder::look(const RepositoryFiles& files)
{
    // What is included stands in files that are not looked at.
    const auto text = settingsText(files);
    const bool isWhole = text && !text->contains("include");
    const QByteArrayList before = statesOf(files.folder, sources(files));
    Search search(*runner_, files);
    found_ = search.run(text);
    sources_ = search.sourcesOfTheAnswer();
    const QByteArrayList now = statesOf(files.folder, sources_);
    // A file that changed meanwhile is looked at again.
    states_ = isWhole && now.first(before.size()) == before ? now : QByteArrayList();
}

} // namespace kelm
