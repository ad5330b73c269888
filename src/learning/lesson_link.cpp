#include "learning/lesson_link.h"

#include "platform/files/utf8_file.h"
#include "platform/text/decimal_integer.h"

#include <QList>
#include <QUrl>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

struct QueryItem
{
    QString name;
    std::optional<QString> value;
};

/// The authority's host as it is written: a parsed URL has it in lower case.
QStringView hostOf(QStringView urlText)
{
    const qsizetype colon = urlText.indexOf(u':');
    if (colon < 0 || !urlText.sliced(colon + 1).startsWith(u"//")) {
        return {};
    }
    QStringView authority = urlText.sliced(colon + 3);
    const auto end = std::find_if(authority.begin(), authority.end(),
                                  [](QChar sign) { return sign == u'/' || sign == u'?' || sign == u'#'; });
    authority.truncate(end - authority.begin());
    authority = authority.sliced(authority.lastIndexOf(u'@') + 1);
    const qsizetype port = authority.indexOf(u':');
    return port < 0 ? authority : authority.first(port);
}

/// Absent when the bytes behind the percent signs are no UTF-8.
std::optional<QString> percentDecoded(QStringView text)
{
    if (!text.contains(u'%')) {
        return text.toString();
    }
    return decodeUtf8Text(QByteArray::fromPercentEncoding(text.toUtf8()));
}

/// The items of the query; absent when the URL has none.
std::optional<QList<QueryItem>> queryItems(QStringView urlText)
{
    const qsizetype fragment = urlText.indexOf(u'#');
    const QStringView whole = fragment < 0 ? urlText : urlText.first(fragment);
    const qsizetype mark = whole.indexOf(u'?');
    if (mark < 0) {
        return std::nullopt;
    }
    QList<QueryItem> items;
    for (const QStringView piece : whole.sliced(mark + 1).split(u'&')) {
        const qsizetype equals = piece.indexOf(u'=');
        const auto name = percentDecoded(equals < 0 ? piece : piece.first(equals));
        const auto value = equals < 0 ? std::nullopt : percentDecoded(piece.sliced(equals + 1));
        if (name) {
            items.append({*name, value});
        }
    }
    return items;
}

std::optional<QString> firstValue(const QList<QueryItem>& items, QStringView name)
{
    const auto found =
        std::find_if(items.begin(), items.end(), [name](const QueryItem& item) { return item.name == name; });
    return found == items.end() ? std::nullopt : found->value;
}

bool isBase64Sign(QChar sign)
{
    const char16_t unit = sign.unicode();
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9') ||
           unit == u'+' || unit == u'/';
}

/// Whether `text` is base64 with its padding (RFC 4648, section 4): nothing but its signs, and at most two "=" at the
/// end.
bool isPaddedBase64(QStringView text)
{
    QStringView body = text;
    while (body.endsWith(u'=')) {
        body.chop(1);
    }
    return text.size() % 4 == 0 && text.size() - body.size() <= 2 &&
           std::all_of(body.begin(), body.end(), isBase64Sign);
}

std::variant<QString, LessonLinkFailure> decodedCode(QString code)
{
    code.replace(u'-', u'+').replace(u'_', u'/');
    code.append(QString((4 - code.size() % 4) % 4, u'='));
    if (!isPaddedBase64(code)) {
        return LessonLinkFailure::noBase64;
    }
    if (std::optional<QString> text = decodeUtf8Text(QByteArray::fromBase64(code.toLatin1()))) {
        return *std::move(text);
    }
    return LessonLinkFailure::noUtf8;
}

struct Region
{
    qint64 start = 1;
    qint64 end = 1;
    bool isNamed = false;
};

Region parseRegion(const QString& text)
{
    QList<qint64> numbers;
    for (const QStringView piece : QStringView(text).split(u'-', Qt::SkipEmptyParts)) {
        if (const auto number = decimalInteger(piece)) {
            numbers.append(*number);
        }
    }
    if (numbers.isEmpty()) {
        return {};
    }
    return {numbers.first(), numbers.size() > 1 ? numbers.at(1) : numbers.first(), true};
}

std::optional<LessonInfo> lessonInfoOf(const QList<QueryItem>& items)
{
    const std::optional<QString> slug = firstValue(items, u"learnSlug");
    if (!slug || slug->isEmpty()) {
        return std::nullopt;
    }
    const Region region = parseRegion(firstValue(items, u"learnRegion").value_or(QString()));
    std::optional<QString> lang = firstValue(items, u"learnLang");
    if (lang) {
        lang = lang->toLower();
    }
    return LessonInfo{.slug = *slug,
                      .title = firstValue(items, u"learnTitle"),
                      .regionStart = region.start,
                      .regionEnd = region.end,
                      .requires_ =
                          firstValue(items, u"learnRequires").value_or(QString()).split(u',', Qt::SkipEmptyParts),
                      .lang = lang,
                      .namesRegion = region.isNamed};
}

/// Whether `text` holds nothing but the characters of a URI (RFC 3986, appendix A), with whole percent-encodings.
bool isUri(QStringView text)
{
    constexpr QStringView others = u"-._~:/?#[]@!$&'()*+,;=";
    const auto isHexadecimal = [](QChar sign) {
        const char16_t unit = sign.toLower().unicode();
        return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f');
    };
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar sign = text[at];
        if (sign == u'%') {
            if (at + 2 >= text.size() || !isHexadecimal(text[at + 1]) || !isHexadecimal(text[at + 2])) {
                return false;
            }
        } else if (!(sign.unicode() < 0x80 && sign.isLetterOrNumber()) && !others.contains(sign)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool isLessonLink(QStringView urlText)
{
    return urlText.startsWith(u"kelmpane:");
}

std::variant<LessonLink, LessonLinkFailure> decodeLessonLink(const QString& urlText)
{
    if (!QUrl(urlText, QUrl::StrictMode).isValid()) {
        return LessonLinkFailure::noURL;
    }
    if (hostOf(urlText) != u"open") {
        return LessonLinkFailure::anotherHost;
    }
    const auto items = queryItems(urlText);
    const auto encoded = items ? firstValue(*items, u"code") : std::nullopt;
    if (!encoded) {
        return LessonLinkFailure::noCode;
    }
    const auto decoded = decodedCode(*encoded);
    if (const auto* failure = std::get_if<LessonLinkFailure>(&decoded)) {
        return *failure;
    }
    const QString run = firstValue(*items, u"run").value_or(QString());
    return LessonLink{.code = std::get<QString>(decoded),
                      .language = Language::from(firstValue(*items, u"lang").value_or(u"txt"_s)),
                      .run = run == u"1" || run.toLower() == u"true",
                      .lessonInfo = lessonInfoOf(*items)};
}

std::optional<QString> lessonURL(const LessonInfo& lessonInfo, bool hasCompanionApplication, const QString& lessonSite)
{
    const QString lesson = u"/"_s + lessonInfo.slug + (lessonInfo.lang ? u"?lang="_s + *lessonInfo.lang : QString());
    const QString companion = u"tutorbay://lesson"_s + lesson;
    if (hasCompanionApplication && isUri(companion)) {
        return companion;
    }
    const QString web = lessonSite + u"/lesson"_s + lesson;
    return isUri(web) ? std::optional(web) : std::nullopt;
}

} // namespace kelm
