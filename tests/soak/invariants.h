// What holds after every step.
#pragma once

#include "soak/world.h"

namespace kelm::soak {

/// Compares tabs, documents, editor and window with the model; a difference is a failure.
void checkInvariants(World& world);

/// Compares every file with the model, byte for byte.
void checkDisk(World& world);

} // namespace kelm::soak
