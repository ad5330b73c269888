#include "editor/kept_ready/completion_item.h"

#include <array>

namespace kelm {

namespace {

struct BadgeEntry
{
    CompletionType type;
    char letter;
    SystemColor color;
};

constexpr std::array badges{
    BadgeEntry{CompletionType::keyword, 'k', SystemColor::purple},
    BadgeEntry{CompletionType::function, 'f', SystemColor::blue},
    BadgeEntry{CompletionType::variable, 'v', SystemColor::orange},
    BadgeEntry{CompletionType::type, 'T', SystemColor::cyan},
    BadgeEntry{CompletionType::snippet, 'S', SystemColor::green},
    BadgeEntry{CompletionType::property, 'p', SystemColor::yellow},
    BadgeEntry{CompletionType::method, 'm', SystemColor::blue},
};

} // namespace

CompletionBadge badgeOf(CompletionType type)
{
    const BadgeEntry& entry = badges[static_cast<std::size_t>(type)];
    return {QString(QLatin1Char(entry.letter)), entry.color};
}

} // namespace kelm
