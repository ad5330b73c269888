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
/// Of the newest `limit` commits.
QStringList log(qint64 limit);

} // namespace kelm::refreshCommands
