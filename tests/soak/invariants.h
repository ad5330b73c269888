// What holds after every step.
#pragma once

#include "soak/world.h"

namespace kelm::soak {

/// Compares tabs, documents, editor and window with the model; a difference is a failure.
void checkInvariants(World& world);

/// Compares every file with the model, byte for byte.
void checkDisk(World& world);

/// Whether the colours and the foldable regions of the current document, which follow its edits, are those of its text.
void checkFollowers(World& world);

/// Every text that is in no file, of open tabs and of closed ones, has its copy in the store, and no other has.
void checkStore(World& world);

} // namespace kelm::soak
