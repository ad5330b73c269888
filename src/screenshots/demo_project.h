// The project that the pictures show.
#pragma once

#include <QString>

namespace kelm::screenshots {

/// Makes a small project in `folder`, which does not exist yet: sources in several languages, a Korean one among them,
/// under git, with a history, branches, a tag, a stash, and changes of each kind. False when git is not there.
bool makeDemoProject(const QString& folder);

} // namespace kelm::screenshots
