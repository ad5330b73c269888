// Where the panel of a lesson stands.
#pragma once

#include "app/state/app_state.h"
#include "platform/desktop/workspace.h"

#include <QHash>
#include <QUuid>
#include <QWidget>

namespace kelm {

class LearningModeSidePanel;

/// Shows the lesson panel, with a divider before it, while the current document has a lesson. The panel is made with
/// the first lesson, and then filled with the others.
class LessonPlace final : public QWidget
{
    Q_OBJECT

public:
    /// All of it outlives the place.
    LessonPlace(AppState& appState, Workspace& workspace, UserDefaults& userDefaults, QWidget* parent = nullptr);

    /// Null until there is a lesson.
    LearningModeSidePanel* panel() const { return panel_; }

private:
    void follow();
    void forgetClosed();
    void makePanel();

    AppState& appState_;
    Workspace& workspace_;
    UserDefaults& userDefaults_;
    LearningModeSidePanel* panel_ = nullptr;
    /// How many runs had begun when each of the open lessons was first shown.
    QHash<QUuid, quint64> runsBefore_;
};

} // namespace kelm
