#include "editor/folding/tag_names.h"

#include <string_view>

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

quint32 TagNameLookup::number(QStringView name)
{
    const auto units = std::u16string_view(name.utf16(), size_t(name.size()));
    const size_t key = units.front() + units.back() * 11U + units.size() * 37U;
    Known& known = known_[key % known_.size()];
    if (std::u16string_view(QStringView(known.name).utf16(), size_t(known.name.size())) != units) {
        known.number = names_.number(name);
        known.name = names_.name(known.number);
    }
    return known.number;
}

void TagNames::clear()
{
    numbers_.clear();
    names_.clear();
}

} // namespace kelm
