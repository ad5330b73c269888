// The steps of writing a file at which a disk can refuse.
#pragma once

namespace kelm {

/// What is done to a file or its folder while it is written.
enum class FileStep { create, write, flush, close, rename };

/// Asked before each step: 0 has it taken, and another number is the system's error with which it fails.
using FileStepCheck = int (*)(FileStep step);

/// For tests, which make disks full, broken and slow by it; nothing is asked otherwise, and again after a null one.
/// From any thread; steps that are under way are not waited for.
void setFileStepCheck(FileStepCheck check);

/// Whether a step may be taken; false, with `errno` set, when it fails. From any thread.
bool mayTake(FileStep step);

} // namespace kelm
