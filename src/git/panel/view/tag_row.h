// A tag in its list.
#pragma once

#include "git/service/git_records.h"
#include "platform/view/row.h"

namespace kelm {

struct TagRow
{
    GitTag tag;
    std::function<void()> onPush;
    std::function<void()> onDelete;

    Row content() const;
};

} // namespace kelm
