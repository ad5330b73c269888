// What the soak can do.
#pragma once

#include <vector>

namespace kelm::soak {

struct World;

/// One thing that a person, or another program, does.
struct Action
{
    const char* name;
    /// How often it is chosen beside the others.
    int weight;
    /// Whether it makes sense now; null for always.
    bool (*isPossible)(World& world);
    /// Does it, and tells the model what must have come of it.
    void (*run)(World& world);
};

std::vector<Action> typingActions();
std::vector<Action> selectingActions();
std::vector<Action> foldingActions();
std::vector<Action> findingActions();
std::vector<Action> commandActions();
std::vector<Action> tabActions();
std::vector<Action> fileActions();
std::vector<Action> windowActions();
std::vector<Action> runningActions();
std::vector<Action> sourceControlActions();

/// All of the above.
std::vector<Action> allActions();

} // namespace kelm::soak
