// Remotes from `git remote -v`.
#pragma once

#include "git/service/git_records.h"

#include <QList>

namespace kelm {

/// One record a name, in the order of first appearance, with the URL of its first line: the one that is fetched from.
/// What git says behind it about a partial clone, such as "[blob:none]", is no part of it.
QList<GitRemote> parseRemotes(QStringView output);

} // namespace kelm
