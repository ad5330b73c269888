// A changed file in the list of changes.
#pragma once

#include "git/service/git_records.h"
#include "platform/view/row.h"

namespace kelm {

/// One file in the list of staged changes (`staged`) or in that of the others.
struct FileStatusRow
{
    GitFileStatus file;
    bool staged = false;
    std::function<void()> onClickDiff;
    std::function<void()> onUnstage;
    std::function<void()> onStage;
    /// Absent where there is nothing to discard.
    std::function<void()> onDiscard = {};
    /// Of a file in conflict, which a click opens: there the conflict is resolved.
    std::function<void()> onOpen = {};
    QList<RowAction> menu = {};

    Row content() const;
};

} // namespace kelm
