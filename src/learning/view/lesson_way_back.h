// The way from the panel back to the lesson.
#pragma once

#include "learning/lesson_info.h"
#include "platform/desktop/workspace.h"
#include "platform/events/background_task.h"

#include <QObject>
#include <QString>

#include <optional>

namespace kelm {

/// Knows where the lesson that is shown is to be opened: in the companion application when one is installed, else on
/// the lesson site. Which of them it is a worker asks, since the system may take seconds for the answer. Main thread
/// only.
class LessonWayBack final : public QObject
{
    Q_OBJECT

public:
    /// The workspace outlives the object.
    explicit LessonWayBack(Workspace& workspace, QObject* parent = nullptr) : QObject(parent), workspace_(workspace) {}

    /// Takes another lesson, and asks for its address. Whether it has one is known at once.
    void setLesson(const LessonInfo& lessonInfo);
    bool exists() const { return exists_; }
    /// Opens the lesson, once its address is known.
    void open();

Q_SIGNALS:
    /// The address is known.
    void found(const QString& address);

private:
    Workspace& workspace_;
    bool exists_ = false;
    bool opensWhenFound_ = false;
    std::optional<QString> address_;
    BackgroundTask asking_;
};

} // namespace kelm
