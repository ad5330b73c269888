// What went wrong with a run, in the learner's words.
#pragma once

#include "learning/lesson_info.h"

#include <QString>

#include <optional>

namespace kelm {

/// Whether the lesson's texts are Korean rather than English.
bool isKorean(const LessonInfo& lessonInfo);

struct Diagnosis
{
    QString title;
    QString message;
    /// A line that the learner can paste.
    std::optional<QString> fix;

    friend bool operator==(const Diagnosis&, const Diagnosis&) = default;
};

/// What the standard error of a run tells; absent for an empty one and for what no rule knows. The exit status plays no
/// part. Linear in the length of `standardError`; any thread.
std::optional<Diagnosis> diagnose(const QString& standardError, bool isKo);

} // namespace kelm
