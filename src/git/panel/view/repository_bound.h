// What was asked for one repository and must not happen in another.
#pragma once

#include <functional>

class QDialog;

namespace kelm {

class GitService;

/// The work as it is to be kept for later: it does nothing when another repository is open by then. The service
/// outlives it.
std::function<void()> inThisRepository(GitService& git, std::function<void()> work);

/// Has a dialog about the repository that is open now rejected as soon as another one is opened, or none.
void closeWithRepository(QDialog& dialog, GitService& git);

} // namespace kelm
