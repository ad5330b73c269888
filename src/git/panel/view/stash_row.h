// A stash in its list.
#pragma once

#include "git/service/git_records.h"
#include "platform/view/row.h"

namespace kelm {

struct StashRow
{
    GitStash stash;
    std::function<void()> onApply;
    std::function<void()> onPop;
    std::function<void()> onDrop;

    Row content() const;
};

} // namespace kelm
