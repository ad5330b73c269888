// The links with which a lesson site hands over code.
#pragma once

#include "app/language/language.h"
#include "learning/lesson_info.h"
#include "learning/lesson_link_failure.h"

#include <QString>

#include <optional>
#include <variant>

namespace kelm {

/// What a lesson link asks for.
struct LessonLink
{
    QString code;
    Language language;
    bool run = false;
    std::optional<LessonInfo> lessonInfo;

    friend bool operator==(const LessonLink&, const LessonLink&) = default;
};

/// Whether the text of a URL names the scheme of lesson links, "kelmpane", in these letters.
bool isLessonLink(QStringView urlText);

/// Reads the text of a URL of the scheme "kelmpane" (RFC 3986): the host is "open", and the query's items, in any order
/// and compared after percent-decoding, are "code" (base64 of UTF-8 bytes, in the standard or the URL-safe alphabet,
/// padded or not), "lang", "run", "learnSlug", "learnTitle", "learnRegion", "learnRequires" and "learnLang". A plus
/// sign is a plus sign, the first item of a name counts, and an item without "=" has no value. Linear time; any thread.
std::variant<LessonLink, LessonLinkFailure> decodeLessonLink(const QString& urlText);

/// The way back: the lesson in the companion application when one is installed, else on the lesson site. Absent when
/// what results is no URL, since neither slug nor language is encoded.
std::optional<QString> lessonURL(const LessonInfo& lessonInfo, bool hasCompanionApplication, const QString& lessonSite);

} // namespace kelm
