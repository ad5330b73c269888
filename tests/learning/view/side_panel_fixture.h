// A lesson's panel in a window, with everything around it in place.
#pragma once

#include "learning/view/learning_mode_side_panel.h"
#include "platform/events/notification_center.h"
#include "platform/view/plain_button.h"
#include "run/code_runner.h"
#include "support/fake_workspace.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace kelm::test {

struct SidePanelFixture
{
    QTemporaryDir folder;
    NotificationCenter notifications;
    CodeRunner runner{notifications, ExecutableSearch(ProcessRunner::system())};
    FakeWorkspace workspace;
    ManualScheduler scheduler;
    UserDefaults userDefaults{folder.filePath(QStringLiteral("store.conf"))};
    std::unique_ptr<LearningModeSidePanel> panel;

    void show(const LessonInfo& info, int height = 800)
    {
        panel = std::make_unique<LearningModeSidePanel>(
            LearningModeSidePanel::Services{runner, workspace, scheduler, userDefaults});
        panel->setLesson(info);
        panel->resize(280, height);
        panel->show();
        if (!QTest::qWaitForWindowActive(panel.get())) {
            qFatal("no window");
        }
    }
    /// Runs a shell line to its end.
    void run(const QString& line)
    {
        runner.runCode(line, Language::shell);
        QTRY_VERIFY(!runner.isRunning());
        QCoreApplication::processEvents();
    }
    /// Where something of the panel stands.
    int y(const QWidget& part) const { return part.mapTo(panel.get(), QPoint()).y(); }
    /// The button of a name that is seen, or null.
    PlainButton* button(const QString& name) const
    {
        for (auto* button : panel->findChildren<PlainButton*>()) {
            if (button->isVisible() && (button->text() == name || button->accessibleName() == name)) {
                return button;
            }
        }
        return nullptr;
    }
};

} // namespace kelm::test
