// What git will do to the files, asked of git itself before the editor does it.
#pragma once

#include "soak/world.h"

namespace kelm::soak {

/// What git prints, without the line end at its end.
QByteArray gitText(const World& world, const QStringList& arguments);

/// Whether git sees no change; `untrackedToo` with files that it does not know.
bool isClean(const World& world, bool untrackedToo);

/// Tells the model that the files go from one tree to another: what is the same in both stays as it is on disk.
void expectTree(World& world, const QByteArray& from, const QByteArray& to);

/// Tells the model that a path becomes what the index holds; nothing happens to one that git does not know.
void expectFromIndex(World& world, const QString& name);

/// How many hunks there are between index and file.
qsizetype hunkCount(const World& world, const QString& name);

} // namespace kelm::soak
