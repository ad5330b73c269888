// A commit in the history.
#pragma once

#include "git/git_records.h"
#include "git/view/row.h"

namespace kelm {

struct CommitRow
{
    GitCommit commit;
    std::function<void()> onClick;

    Row content() const;
};

} // namespace kelm
