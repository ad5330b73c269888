// Finding what a repository's own settings would have git run.
#pragma once

#include "git/service/git_environment.h"
#include "platform/process/process.h"

#include <QByteArrayList>
#include <QString>
#include <QStringList>

#include <memory>

namespace kelm {

struct RepositoryFiles;

/// Finds what a repository has git run by names of its own choice: filters of contents and programs for comparing.
/// Those that a person has set up for all repositories go on working. Nothing is started for a repository whose
/// settings do not speak of such things, and an answer is kept until one of the files that it comes from changes. One
/// thread.
class ForeignProgramFinder
{
public:
    explicit ForeignProgramFinder(std::shared_ptr<ProcessRunner> runner) : runner_(std::move(runner)) {}

    /// What is to be put in the place of the settings of the repository at `folder`, the one that holds ".git", for git
    /// with `arguments`.
    ForeignPrograms find(const QString& folder, const QStringList& arguments);

private:
    class Search;

    void look(const RepositoryFiles& files);

    std::shared_ptr<ProcessRunner> runner_;
    /// What the last answer was made from.
    QStringList sources_;
    QByteArrayList states_;
    ForeignPrograms found_;
};

} // namespace kelm
