#include "platform/desktop/appearance.h"

#include <utility>

namespace kelm {

namespace {

std::function<void(Appearance)>& applicationAppearanceSetter()
{
    static std::function<void(Appearance)> set;
    return set;
}

} // namespace

void setApplicationAppearance(Appearance appearance)
{
    if (applicationAppearanceSetter()) {
        applicationAppearanceSetter()(appearance);
    }
}

void installAppearance(std::function<void(Appearance)> set)
{
    applicationAppearanceSetter() = std::move(set);
}

} // namespace kelm
