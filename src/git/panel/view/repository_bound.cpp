#include "git/panel/view/repository_bound.h"

#include "git/service/git_service.h"

#include <QDialog>

#include <utility>

namespace kelm {

std::function<void()> inThisRepository(GitService& git, std::function<void()> work)
{
    return [&git, repository = git.repoURL(), work = std::move(work)] {
        if (git.repoURL() == repository) {
            work();
        }
    };
}

void closeWithRepository(QDialog& dialog, GitService& git)
{
    // The branch is the first thing that is written when a repository is opened or closed.
    QObject::connect(&git, &GitService::branchChanged, &dialog, [&dialog, &git, repository = git.repoURL()] {
        if (git.repoURL() != repository) {
            dialog.reject();
        }
    });
}

} // namespace kelm
