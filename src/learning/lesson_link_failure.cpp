#include "learning/lesson_link_failure.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// Of a link that is refused for its size.
constexpr qsizetype mostLogged = 4096;

struct Reason
{
    LessonLinkFailure failure;
    QString words;
    /// Whether the fault lies in the code that the link holds, and not in the link.
    bool isOfCode;
};

const Reason& reasonOf(LessonLinkFailure failure)
{
    using enum LessonLinkFailure;
    static const std::array<Reason, 7> reasons{
        Reason{noURL, u"The lesson link is not a valid address"_s, false},
        Reason{anotherHost, u"The lesson link does not begin with kelmpane://open"_s, false},
        Reason{noCode, u"The lesson link holds no code"_s, false},
        Reason{noBase64, u"The lesson's code is not valid base64"_s, true},
        Reason{noUtf8, u"The lesson's code is not UTF-8 text"_s, true},
        Reason{tooLong, u"The lesson link is longer than 4 MB"_s, false},
        Reason{tooManyKeys, u"The lesson link asks for more than 10,000 keys"_s, false},
    };
    return *std::find_if(reasons.begin(), reasons.end(),
                         [failure](const Reason& reason) { return reason.failure == failure; });
}

} // namespace

QString wordsFor(LessonLinkFailure failure)
{
    return reasonOf(failure).words;
}

QString logLineFor(LessonLinkFailure failure, const QString& urlText)
{
    if (reasonOf(failure).isOfCode) {
        return u"kelmpane:// failed to decode code"_s;
    }
    const bool isCut = failure == LessonLinkFailure::tooLong || failure == LessonLinkFailure::tooManyKeys;
    const QString link = isCut && urlText.size() > mostLogged ? urlText.first(mostLogged) + u'…' : urlText;
    return u"kelmpane:// invalid URL: "_s + link;
}

} // namespace kelm
