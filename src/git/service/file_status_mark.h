// The letter and colour that stand for a file's change.
#pragma once

#include "git/service/git_records.h"
#include "platform/desktop/named_colors.h"

namespace kelm {

struct FileStatusMark
{
    QString letter;
    SystemColor color;

    bool operator==(const FileStatusMark&) const = default;
};

/// The mark of a file in the list of staged changes, or in that of the others: the change of that list's side, or the
/// other side's where that is absent.
FileStatusMark fileStatusMark(const GitFileStatus& file, bool staged);

} // namespace kelm
