// The words of the lesson panel.
#pragma once

#include <QString>

#include <array>

namespace kelm {

/// A text in the panel's two languages.
struct LessonText
{
    QString english;
    QString korean;

    const QString& in(bool isKo) const { return isKo ? korean : english; }
};

namespace lessonTexts {

extern const LessonText learningMode;
extern const LessonText openLesson;
extern const LessonText keysNeeded;
extern const LessonText noKeysNeeded;
extern const LessonText recheck;
extern const LessonText diagnosis;
extern const LessonText region;
extern const LessonText regionNote;
extern const LessonText tipsHeading;
extern const std::array<LessonText, 3> tips;
extern const LessonText copyExport;
extern const LessonText copied;
extern const LessonText copyFix;
extern const LessonText linkAsks;
extern const LessonText linkRun;
extern const LessonText linkRunAlways;
extern const LessonText linkRunAlwaysHelp;
extern const LessonText linkPutAway;
extern const LessonText linkKey;
extern const LessonText linksHeading;
extern const LessonText linksRun;
extern const LessonText askAgain;

/// The lines that the textbook shows, such as "Lines 3–7".
QString regionLines(qint64 start, qint64 end, bool isKo);

/// Where to get the value of an environment variable.
QString whereToGetKey(const QString& key, bool isKo);

} // namespace lessonTexts

} // namespace kelm
