// Tests of permissions, which count for nothing when the tests run as root.
#pragma once

#include <unistd.h>

namespace kelm::test {

/// While it lives, the process has no more rights than an ordinary user.
class Unprivileged
{
public:
    Unprivileged()
    {
        if (::geteuid() == 0) {
            isChanged_ = ::seteuid(65534) == 0;
        }
    }
    ~Unprivileged()
    {
        if (isChanged_ && ::seteuid(0) != 0) {
            ::_exit(96);
        }
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

private:
    bool isChanged_ = false;
};

} // namespace kelm::test
