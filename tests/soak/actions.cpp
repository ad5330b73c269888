#include "soak/action.h"

namespace kelm::soak {

std::vector<Action> allActions()
{
    std::vector<Action> all;
    for (const auto actions : {typingActions, selectingActions, foldingActions, findingActions, commandActions,
                               tabActions, fileActions, windowActions, runningActions, sourceControlActions}) {
        for (const Action& action : actions()) {
            all.push_back(action);
        }
    }
    return all;
}

} // namespace kelm::soak
