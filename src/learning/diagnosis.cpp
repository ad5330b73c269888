#include "learning/diagnosis.h"

#include "platform/text/regular_expression.h"

#include <QStringList>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

/// A rule that goes by texts in the standard error; any of them will do.
struct Rule
{
    QStringList texts;
    /// Looked for in the text in lower case; empty for none.
    QString lowerCaseText;
    QString englishTitle;
    QString koreanTitle;
    QString englishMessage;
    QString koreanMessage;
};

/// The rules in the order in which they are tried, behind that of the missing module.
const std::array<Rule, 5>& rules()
{
    static const std::array<Rule, 5> rules{
        Rule{{u"AuthenticationError"_s, u" 401"_s, u"Unauthorized"_s},
             {},
             u"API key auth failed"_s,
             u"API 키 인증 실패"_s,
             u"Check ANTHROPIC_API_KEY / OPENAI_API_KEY value (no stray spaces or quotes)."_s,
             u"ANTHROPIC_API_KEY / OPENAI_API_KEY 값을 확인 (앞뒤 공백·따옴표 조심)."_s},
        Rule{{u"RateLimit"_s, u" 429"_s},
             {},
             u"API rate limit"_s,
             u"API 호출 한도 초과"_s,
             u"Retry after 10–30s or switch to a cheaper model (haiku / gpt-4o-mini)."_s,
             u"10~30초 후 다시 시도하거나, 더 저렴한 모델 (haiku / gpt-4o-mini) 로 바꿔보세요."_s},
        Rule{{u"APIConnectionError"_s, u"getaddrinfo"_s, u"ENOTFOUND"_s, u"Could not resolve"_s},
             {},
             u"Network failure"_s,
             u"네트워크 연결 실패"_s,
             u"Check VPN / firewall / DNS. May need proxy on corporate networks."_s,
             u"VPN/방화벽/DNS 확인. 회사망이면 proxy 설정 필요할 수 있어요."_s},
        Rule{{u"TimeoutError"_s},
             u"timed out"_s,
             u"Timeout"_s,
             u"호출 시간 초과"_s,
             u"Check if model/prompt is too large, or consider streaming."_s,
             u"모델·프롬프트가 너무 큰지 확인하거나 streaming 사용 고려."_s},
        Rule{{u"JSONDecodeError"_s},
             {},
             u"JSON parse error"_s,
             u"JSON 파싱 실패"_s,
             u"Response isn't JSON. Verify structured output / response_format matches the model."_s,
             u"응답이 JSON 아닙니다. structured output / response_format 가 모델에 맞게 설정됐는지 확인."_s},
    };
    return rules;
}

const QString modulePrefix = u"No module named "_s;

/// The name in the first complaint about a module; absent without one.
std::optional<QString> missingModule(const QString& standardError)
{
    static const std::optional<RegularExpression> pattern =
        RegularExpression::compile(uR"(No module named ['"]?([\w.]+)['"]?)");
    const auto match = pattern->firstMatch(standardError);
    if (!match) {
        return std::nullopt;
    }
    QString name = standardError.mid(match->location(), match->length());
    name.remove(modulePrefix);
    const auto isQuote = [](QChar sign) { return sign == u'\'' || sign == u'"'; };
    while (!name.isEmpty() && isQuote(name.front())) {
        name.remove(0, 1);
    }
    while (!name.isEmpty() && isQuote(name.back())) {
        name.chop(1);
    }
    return name;
}

bool applies(const Rule& rule, const QString& standardError)
{
    return std::any_of(rule.texts.begin(), rule.texts.end(),
                       [&](const QString& text) { return standardError.contains(text); }) ||
           (!rule.lowerCaseText.isEmpty() && standardError.toLower().contains(rule.lowerCaseText));
}

} // namespace

bool isKorean(const LessonInfo& lessonInfo)
{
    // What follows, of any length, plays no part.
    return lessonInfo.lang && lessonInfo.lang->left(2).toLower() == u"ko";
}

std::optional<Diagnosis> diagnose(const QString& standardError, bool isKo)
{
    if (standardError.isEmpty()) {
        return std::nullopt;
    }
    if (const auto name = missingModule(standardError)) {
        return Diagnosis{isKo ? u"모듈 누락"_s : u"Missing module"_s,
                         isKo ? u"'"_s + *name + u"' 를 찾을 수 없습니다."_s
                              : u"Module '"_s + *name + u"' is not installed."_s,
                         u"pip install "_s + *name};
    }
    for (const Rule& rule : rules()) {
        if (applies(rule, standardError)) {
            return Diagnosis{isKo ? rule.koreanTitle : rule.englishTitle,
                             isKo ? rule.koreanMessage : rule.englishMessage, std::nullopt};
        }
    }
    return std::nullopt;
}

} // namespace kelm
