#include "workbench/view/lesson_place.h"

#include "learning/view/learning_mode_side_panel.h"
#include "platform/view/divider.h"

#include <QHBoxLayout>

#include <algorithm>

namespace kelm {

LessonPlace::LessonPlace(AppState& appState, Workspace& workspace, UserDefaults& userDefaults, QWidget* parent)
    : QWidget(parent), appState_(appState), workspace_(workspace), userDefaults_(userDefaults)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    setVisible(false);
    connect(&appState_, &AppState::currentDocumentChanged, this, &LessonPlace::follow);
    connect(&appState_, &AppState::documentsChanged, this, &LessonPlace::forgetClosed);
    follow();
}

void LessonPlace::follow()
{
    const std::shared_ptr<Document> document = appState_.currentDocument();
    const bool hasLesson = document && document->lessonInfo();
    if (hasLesson) {
        if (panel_ == nullptr) {
            makePanel();
        }
        const auto known = runsBefore_.constFind(document->id());
        const quint64 before = known != runsBefore_.cend() ? *known : panel_->runsBegun();
        runsBefore_.insert(document->id(), before);
        panel_->setLesson(*document->lessonInfo(), before);
    }
    setVisible(hasLesson);
}

void LessonPlace::makePanel()
{
    panel_ =
        new LearningModeSidePanel({appState_.codeRunner(), workspace_, appState_.scheduler(), userDefaults_}, this);
    layout()->addWidget(new Divider(Qt::Vertical, this));
    layout()->addWidget(panel_);
}

void LessonPlace::forgetClosed()
{
    const AppState::Documents& open = appState_.documents();
    runsBefore_.removeIf([&open](const auto& entry) {
        return std::none_of(open.begin(), open.end(),
                            [&entry](const auto& document) { return document->id() == entry.key(); });
    });
}

} // namespace kelm
