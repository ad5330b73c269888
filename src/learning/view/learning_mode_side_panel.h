// The panel beside the text of a lesson.
#pragma once

#include "learning/diagnosis.h"
#include "learning/lesson_info.h"
#include "platform/desktop/workspace.h"
#include "platform/events/scheduler.h"

#include <QHash>
#include <QTimer>
#include <QWidget>

class QVBoxLayout;

namespace kelm {

class CodeRunner;

/// Tells a learner what the snippet needs, which lines the textbook shows, and what went wrong in the latest run, in
/// English or Korean. What comes from a link is shown as it stands, never as markup.
class LearningModeSidePanel final : public QWidget
{
    Q_OBJECT

public:
    /// Runner and services outlive the panel.
    LearningModeSidePanel(LessonInfo lessonInfo, CodeRunner& runner, Workspace& workspace, Scheduler& scheduler,
                          QWidget* parent = nullptr);

    /// The diagnosis that is shown.
    const std::optional<Diagnosis>& diagnosis() const { return diagnosis_; }
    /// Looks anew at the environment of this process.
    void recheckEnv();
    /// How often it was looked at.
    int refreshTick() const { return refreshTick_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makeRequirements();
    QWidget* makeRegion();
    QWidget* makeTips();
    QWidget* makeDiagnosis(const Diagnosis& diagnosis);
    QWidget* makeSection(const QString& heading, const class Tint& tint);
    void fillRequirements();
    void updateDiagnosis();

    LessonInfo lessonInfo_;
    CodeRunner& runner_;
    Workspace& workspace_;
    Scheduler& scheduler_;
    bool isKo_;
    QHash<QString, bool> envCache_;
    int refreshTick_ = 0;
    std::optional<Diagnosis> diagnosis_;
    QVBoxLayout* column_ = nullptr;
    QVBoxLayout* requirements_ = nullptr;
    QWidget* diagnosisSection_ = nullptr;
    QTimer diagnosisTimer_;
};

} // namespace kelm
