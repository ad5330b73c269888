// The panel beside the text of a lesson.
#pragma once

#include "learning/diagnosis.h"
#include "learning/lesson_info.h"
#include "platform/desktop/workspace.h"
#include "platform/events/background_task.h"
#include "platform/events/scheduler.h"
#include "platform/files/user_defaults.h"

#include <QHash>
#include <QTimer>
#include <QWidget>

#include <array>

class QScrollArea;
class QVBoxLayout;

namespace kelm {

class CodeRunner;
class DiagnosisSection;
class LessonSection;
class LessonWayBack;
class PlainButton;
class RequirementList;
class TextLabel;
class WrappedLabel;

/// Tells a learner what the snippet needs, which lines the textbook shows, and what went wrong in the latest run, in
/// English or Korean. Made once and filled with one lesson after the other. What comes from a link is shown as it
/// stands, never as markup, and what is longer than anybody reads by its beginning.
class LearningModeSidePanel final : public QWidget
{
    Q_OBJECT

public:
    /// What the panel shows and reaches; all of it outlives the panel.
    struct Services
    {
        CodeRunner& runner;
        Workspace& workspace;
        Scheduler& scheduler;
        UserDefaults& userDefaults;
    };

    explicit LearningModeSidePanel(const Services& services, QWidget* parent = nullptr);
    ~LearningModeSidePanel() override;

    /// Shows a lesson, from its top. The runs that had begun before it was opened, of which there were `runsBefore`,
    /// are none of its own and are not diagnosed.
    void setLesson(const LessonInfo& lessonInfo, quint64 runsBefore = 0);
    /// How many runs have begun since the panel was made.
    quint64 runsBegun() const { return runsBegun_; }

    /// The diagnosis that is shown.
    const std::optional<Diagnosis>& diagnosis() const { return diagnosis_; }
    /// Looks anew at the environment of this process.
    void recheckEnv();
    /// How often it was looked at.
    int refreshTick() const { return refreshTick_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void makeSections();
    void makeHeader();
    void makeRequirements();
    void makeRegion();
    void makePermission();
    PlainButton* addButton(LessonSection& section, const QString& symbol, int symbolSize);
    void followRunner();
    void fillHeader();
    void fillRequirements();
    void fillRegion();
    void fillTips();
    void fillPermission();
    /// Looks anew at what the run has written, or soon again where that is being done.
    void updateDiagnosis();
    void lookAgain();
    void showDiagnosis(const std::optional<Diagnosis>& diagnosis);

    LessonInfo lessonInfo_;
    CodeRunner& runner_;
    Scheduler& scheduler_;
    UserDefaults& userDefaults_;
    LessonWayBack* wayBack_;
    bool isKo_ = false;
    QHash<QString, bool> envCache_;
    int refreshTick_ = 0;
    std::optional<Diagnosis> diagnosis_;
    quint64 runsBegun_ = 0;
    quint64 runsBefore_ = 0;
    QTimer diagnosisTimer_;
    BackgroundTask diagnosisTask_;
    bool isDiagnosisStale_ = false;

    QScrollArea* area_;
    QVBoxLayout* column_ = nullptr;
    LessonSection* header_ = nullptr;
    TextLabel* learningMode_ = nullptr;
    WrappedLabel* title_ = nullptr;
    PlainButton* openLesson_ = nullptr;
    LessonSection* requirements_ = nullptr;
    WrappedLabel* noKeys_ = nullptr;
    RequirementList* keys_ = nullptr;
    PlainButton* recheck_ = nullptr;
    DiagnosisSection* diagnosisSection_ = nullptr;
    LessonSection* region_ = nullptr;
    TextLabel* regionLines_ = nullptr;
    WrappedLabel* regionNote_ = nullptr;
    LessonSection* tips_ = nullptr;
    std::array<WrappedLabel*, 3> tipLines_{};
    LessonSection* permission_ = nullptr;
    WrappedLabel* linksRun_ = nullptr;
    PlainButton* askAgain_ = nullptr;
};

} // namespace kelm
