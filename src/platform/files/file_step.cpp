#include "platform/files/file_step.h"

#include <atomic>
#include <cerrno>

namespace kelm {

namespace {

std::atomic<FileStepCheck> checkOfTest = nullptr;

} // namespace

void setFileStepCheck(FileStepCheck check)
{
    checkOfTest = check;
}

bool mayTake(FileStep step)
{
    const FileStepCheck check = checkOfTest;
    const int error = check != nullptr ? check(step) : 0;
    if (error != 0) {
        errno = error;
    }
    return error == 0;
}

} // namespace kelm
