// What stands in the editor's place when no document is open.
#pragma once

#include "app/app_state.h"

#include <QWidget>

namespace kelm {

/// The program's name and the two ways to a document.
class EmptyState final : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyState(AppState& appState, QWidget* parent = nullptr);
};

} // namespace kelm
