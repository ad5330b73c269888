// Branches in their list.
#pragma once

#include "git/service/git_records.h"
#include "platform/view/row.h"

namespace kelm {

/// A local branch. The current one has no actions.
struct BranchRow
{
    GitBranch branch;
    bool isCurrent = false;
    std::function<void()> onCheckout;
    std::function<void()> onMerge;
    std::function<void()> onDelete;

    Row content() const;
};

/// A branch of a remote.
struct RemoteBranchRow
{
    GitBranch branch;
    std::function<void()> onCheckout;

    Row content() const;
};

} // namespace kelm
