#include "editor/folding/tag_names.h"

namespace kelm {

quint32 TagNames::number(QStringView name)
{
    const auto known = numbers_.constFind(name);
    if (known != numbers_.constEnd()) {
        return *known;
    }
    const auto number = quint32(names_.size());
    names_.append(name.toString());
    numbers_.insert(names_.constLast(), number);
    return number;
}

void TagNames::clear()
{
    numbers_.clear();
    names_.clear();
}

} // namespace kelm
