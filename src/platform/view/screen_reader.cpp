#include "platform/view/screen_reader.h"

#include <QAccessible>

#include <utility>

namespace kelm::screenReader {

namespace {

std::function<void(QAccessibleEvent&)>& otherEar()
{
    static std::function<void(QAccessibleEvent&)> ear;
    return ear;
}

} // namespace

bool isListening()
{
    return otherEar() || QAccessible::isActive();
}

void tell(QAccessibleEvent& event)
{
    if (otherEar()) {
        otherEar()(event);
    } else {
        QAccessible::updateAccessibility(&event);
    }
}

void tellInstead(std::function<void(QAccessibleEvent&)> ear)
{
    otherEar() = std::move(ear);
}

} // namespace kelm::screenReader
