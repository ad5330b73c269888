// The lesson that a snippet belongs to.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace kelm {

/// What a lesson link says about the snippet that it opens. Fixed when the document is made, and never on disk.
struct LessonInfo
{
    /// The lesson's identifier in URLs; never empty.
    QString slug;
    std::optional<QString> title = {};
    /// First and last line, 1-based, of the region that the learner is meant to edit; as the link gave them, neither
    /// put in order nor checked against the text.
    qint64 regionStart = 1;
    qint64 regionEnd = 1;
    /// Names of the environment variables that the code needs. (`requires` itself is a word of the language.)
    QStringList requires_ = {};
    /// The learner's language code in lower case; "ko" is Korean.
    std::optional<QString> lang = {};
    /// Whether the link named any line at all. Where it did not, the two lines above tell nothing.
    bool namesRegion = true;

    friend bool operator==(const LessonInfo&, const LessonInfo&) = default;
};

} // namespace kelm
