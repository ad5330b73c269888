// What went wrong with a run, in the lesson panel.
#pragma once

#include "learning/diagnosis.h"
#include "learning/view/lesson_section.h"
#include "platform/events/scheduler.h"

namespace kelm {

class PlainButton;

/// A diagnosis with the line that mends it, where there is one, and a button that copies the line and says so for 1.5
/// seconds.
class DiagnosisSection final : public LessonSection
{
    Q_OBJECT

public:
    explicit DiagnosisSection(Scheduler& scheduler, QWidget* parent = nullptr);

    void show(const Diagnosis& diagnosis, bool isKo);
    /// Whether the line was copied within the last 1.5 seconds.
    bool copied() const { return copied_; }

private:
    void copyFix();
    void setCopied(bool copied);
    void addFix();

    bool isKo_ = false;
    bool copied_ = false;
    QString fix_;
    Debounce copiedEnd_;
    TextLabel* title_;
    WrappedLabel* message_;
    QWidget* fixRow_ = nullptr;
    WrappedLabel* fixText_ = nullptr;
    PlainButton* copyButton_ = nullptr;
};

} // namespace kelm
