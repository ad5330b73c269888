// Tags from `git for-each-ref`.
#pragma once

#include "git/service/git_records.h"

#include <QList>

namespace kelm {

/// Lines of short name, object type, peeled object, object and subject, separated by null characters. Lines of fewer
/// than five pieces are skipped.
QList<GitTag> parseTags(QStringView output);

} // namespace kelm
