// What git is asked to fill the snapshot.
#pragma once

#include <QStringList>

namespace kelm::refreshCommands {

QStringList branch();
QStringList status();
QStringList aheadBehind();
QStringList localBranches();
QStringList remoteBranches();
QStringList remotes();
QStringList stashes();
QStringList tags();

} // namespace kelm::refreshCommands
