#include "platform/appearance.h"

#include <utility>

namespace kelm {

namespace {

std::function<void(Appearance)>& installed()
{
    static std::function<void(Appearance)> set;
    return set;
}

} // namespace

void setApplicationAppearance(Appearance appearance)
{
    if (installed()) {
        installed()(appearance);
    }
}

void installAppearance(std::function<void(Appearance)> set)
{
    installed() = std::move(set);
}

} // namespace kelm
