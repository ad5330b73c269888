// Prints the whole snapshot of the repository that holds a folder, as the program sees it.
#include "git/service/git_service.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

void printStatus(QTextStream& out, const GitService& git)
{
    const auto name = [](const std::optional<GitFileChange>& change) { return change ? rawValue(*change) : u"-"_s; };
    out << "status: " << git.status().size() << ", conflicted: " << git.conflictedFiles().size() << '\n';
    for (const GitFileStatus& file : git.status()) {
        out << "  staged " << name(file.staged) << ", unstaged " << name(file.unstaged) << ": " << file.path << '\n';
    }
}

void printRefs(QTextStream& out, const GitService& git)
{
    out << "branches: " << git.branches().size() << '\n';
    for (const GitBranch& branch : git.branches()) {
        out << (branch.isCurrent ? "* " : "  ") << (branch.isRemote ? "remote " : "") << branch.name
            << (branch.upstream ? u" -> "_s + *branch.upstream : QString()) << '\n';
    }
    out << "remotes: " << git.remotes().size() << '\n';
    for (const GitRemote& remote : git.remotes()) {
        out << "  " << remote.name << ' ' << remote.url << '\n';
    }
    out << "stashes: " << git.stashes().size() << '\n';
    for (const GitStash& stash : git.stashes()) {
        out << "  " << stash.id << ' ' << stash.label << ' ' << stash.message << '\n';
    }
    out << "tags: " << git.tags().size() << '\n';
    for (const GitTag& tag : git.tags()) {
        out << "  " << tag.name << ' ' << tag.sha.value_or(u"-"_s) << ' ' << tag.annotation.value_or(u"-"_s) << '\n';
    }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    if (argc != 2) {
        out << "usage: git_snapshot FOLDER\n";
        return 2;
    }
    GitService git(ProcessRunner::sharedSystem());
    const bool isFound = git.open(QUrl::fromLocalFile(QString::fromLocal8Bit(argv[1])));
    QCoreApplication::sendPostedEvents();
    if (!isFound) {
        out << "no repository\n";
        return 1;
    }
    out << "repository: " << git.repoURL()->toLocalFile() << '\n';
    out << "branch: " << git.branch() << ", ahead " << git.ahead() << ", behind " << git.behind() << '\n';
    printStatus(out, git);
    printRefs(out, git);
    out << "commits:\n";
    for (const GitCommit& commit : git.log(10)) {
        out << "  " << commit.id.first(7) << ' ' << commit.date << ' ' << commit.author << ": " << commit.summary
            << '\n';
    }
    out << "upstream missing: " << (git.upstreamMissingForCurrent() ? "yes" : "no") << '\n';
    out << "last error: " << git.lastError().value_or(u"-"_s) << '\n';
    return 0;
}
