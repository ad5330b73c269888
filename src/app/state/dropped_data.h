// What is dropped onto the window.
#pragma once

#include "app/state/open_events.h"

class QMimeData;

namespace kelm {

/// Whether something can be opened of what is dragged: files, folders, links, or a text.
bool canOpenDropped(const QMimeData& data);

/// Opens files, folders and links as `openURLs` does; where there are none, the text in a tab of its own, as one that
/// is not saved.
void openDropped(const QMimeData& data, AppState& appState, const LinkHandler& handleLink);

} // namespace kelm
