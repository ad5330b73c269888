// Files that are dragged in from elsewhere.
#pragma once

#include <QDropEvent>

namespace kelm {

/// Takes what is dragged as a copy, whatever was proposed, and not at all where it can only be moved: who hears that it
/// was moved deletes the file.
inline void acceptAsCopy(QDropEvent& event)
{
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(event.possibleActions().testFlag(Qt::CopyAction));
}

} // namespace kelm
