// Why a lesson link opens nothing.
#pragma once

#include <QString>

namespace kelm {

enum class LessonLinkFailure {
    /// It has signs that no URL has.
    noURL,
    /// Its host is another than "open", or it has none.
    anotherHost,
    /// It has no item "code" with a value.
    noCode,
    noBase64,
    /// Its code is base64, and what that holds is no UTF-8.
    noUtf8,
    /// It is longer than any lesson's.
    tooLong,
    /// It asks for more environment variables than anybody has.
    tooManyKeys,
};

/// The reason in words, a whole sentence without its full stop.
QString wordsFor(LessonLinkFailure failure);

/// The line of the log. A link of more than a few thousand letters stands there by its beginning.
QString logLineFor(LessonLinkFailure failure, const QString& urlText);

} // namespace kelm
