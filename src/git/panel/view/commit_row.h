// A commit in the history.
#pragma once

#include "git/service/git_records.h"
#include "platform/view/row.h"

namespace kelm {

struct CommitRow
{
    GitCommit commit;
    std::function<void()> onClick;

    Row content() const;
};

} // namespace kelm
