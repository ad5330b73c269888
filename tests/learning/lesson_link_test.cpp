#include "learning/diagnosis.h"
#include "learning/lesson_link.h"
#include "support/test_program.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

namespace lesson_link_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

QString encoded(const QString& code)
{
    return QString::fromLatin1(code.toUtf8().toBase64());
}

QString link(const QString& items)
{
    return u"kelmpane://open?"_s + items;
}

LessonLink decoded(const QString& urlText)
{
    const auto result = decodeLessonLink(urlText);
    if (!std::holds_alternative<LessonLink>(result)) {
        qFatal("not decoded: %s", qPrintable(urlText.left(200)));
    }
    return std::get<LessonLink>(result);
}

} // namespace

class LessonLinkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void codeDecodes_data();
    void codeDecodes();
    void badLinksFail_data();
    void badLinksFail();
    void aLinkAsksForNothingByItself();
    void runIsOneOrTrue_data();
    void runIsOneOrTrue();
    void languagesComeFromTheExtension();
    void regionsAreTakenAsTheyStand_data();
    void regionsAreTakenAsTheyStand();
    void requirementsAreSplitAndNotTrimmed_data();
    void requirementsAreSplitAndNotTrimmed();
    void withoutASlugThereIsNoLesson();
    void theLessonTakesItsFields();
    void namesAreDecodedAndTheFirstCounts();
    void twentyMegabytesDecode();
    void theWayBack_data();
    void theWayBack();
    void theLinksOfTheSamplePageDecode();
    void diagnoses_data();
    void diagnoses();
    void koreanIsChosenByTheLanguage_data();
    void koreanIsChosenByTheLanguage();
};

void LessonLinkTest::codeDecodes_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("code");
    QTest::newRow("padded") << u"YT4/fg=="_s << u"a>?~"_s;
    QTest::newRow("unpadded") << u"YT4/fg"_s << u"a>?~"_s;
    QTest::newRow("URL-safe") << u"YT4_fg"_s << u"a>?~"_s;
    QTest::newRow("a plus sign is one") << u"Pj4+"_s << u">>>"_s.replace(u'\0', QString());
    QTest::newRow("a minus for it") << u"Pj4-"_s << u">>>"_s;
    QTest::newRow("percent-encoded padding") << u"YQ%3D%3D"_s << u"a"_s;
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("Korean and emoji") << encoded(u"print('안녕 👩‍👩‍👧')\r\n"_s)
                                      << u"print('안녕 👩‍👩‍👧')\r\n"_s;
}

void LessonLinkTest::codeDecodes()
{
    QFETCH(QString, value);
    QFETCH(QString, code);
    QCOMPARE(decoded(link(u"code="_s + value)).code, code);
}

void LessonLinkTest::badLinksFail_data()
{
    using enum LessonLinkFailure;
    QTest::addColumn<QString>("urlText");
    QTest::addColumn<LessonLinkFailure>("failure");
    QTest::newRow("another host") << u"kelmpane://run?code=YQ=="_s << anotherHost;
    QTest::newRow("another case of the host") << u"kelmpane://Open?code=YQ=="_s << anotherHost;
    QTest::newRow("no host") << u"kelmpane:open?code=YQ=="_s << anotherHost;
    QTest::newRow("a colon before the slashes") << u"kelmpane:://open?code=YQ=="_s << anotherHost;
    QTest::newRow("a path before the slashes") << u"kelmpane:x://open?code=YQ=="_s << anotherHost;
    QTest::newRow("slashes in the path alone") << u"kelmpane:/x//open?code=YQ=="_s << anotherHost;
    QTest::newRow("an empty host") << u"kelmpane:////open?code=YQ=="_s << anotherHost;
    QTest::newRow("no query") << u"kelmpane://open"_s << noCode;
    QTest::newRow("no code") << link(u"lang=py"_s) << noCode;
    QTest::newRow("code without a value") << link(u"code&lang=py"_s) << noCode;
    QTest::newRow("the first code has no value") << link(u"code&code=YQ=="_s) << noCode;
    QTest::newRow("names are compared exactly") << link(u"Code=YQ=="_s) << noCode;
    QTest::newRow("code in the fragment") << u"kelmpane://open?x=1#code=YQ=="_s << noCode;
    QTest::newRow("broken percent-encoding") << link(u"code=YQ%3"_s) << noURL;
    QTest::newRow("one more than a multiple of four") << link(u"code=YWJjZ"_s) << noBase64;
    QTest::newRow("a foreign letter") << link(u"code=YQ*="_s) << noBase64;
    QTest::newRow("a blank") << link(u"code=YW%20Jj"_s) << noBase64;
    QTest::newRow("a line feed") << link(u"code=YWJj%0A"_s) << noBase64;
    QTest::newRow("padding in the middle") << link(u"code=YQ==YQ=="_s) << noBase64;
    QTest::newRow("padding alone") << link(u"code===="_s) << noBase64;
    QTest::newRow("no UTF-8") << link(u"code=/w=="_s) << noUtf8;
    QTest::newRow("an encoded surrogate") << link(u"code=7aCA"_s) << noUtf8;
}

void LessonLinkTest::badLinksFail()
{
    QFETCH(QString, urlText);
    QFETCH(LessonLinkFailure, failure);
    const auto result = decodeLessonLink(urlText);
    QVERIFY(std::holds_alternative<LessonLinkFailure>(result));
    QCOMPARE(std::get<LessonLinkFailure>(result), failure);
}

void LessonLinkTest::aLinkAsksForNothingByItself()
{
    QVERIFY(!LessonLink().run);
    const LessonInfo info{.slug = u"s"_s};
    QCOMPARE(info.regionStart, qint64(1));
    QCOMPARE(info.regionEnd, qint64(1));
}

void LessonLinkTest::runIsOneOrTrue_data()
{
    QTest::addColumn<QString>("items");
    QTest::addColumn<bool>("run");
    QTest::newRow("1") << u"&run=1"_s << true;
    QTest::newRow("TRUE") << u"&run=TRUE"_s << true;
    QTest::newRow("yes") << u"&run=yes"_s << false;
    QTest::newRow("01") << u"&run=01"_s << false;
    QTest::newRow("no value") << u"&run"_s << false;
    QTest::newRow("absent") << QString() << false;
}

void LessonLinkTest::runIsOneOrTrue()
{
    QFETCH(QString, items);
    QFETCH(bool, run);
    QCOMPARE(decoded(link(u"code="_s + items)).run, run);
}

void LessonLinkTest::languagesComeFromTheExtension()
{
    QCOMPARE(decoded(link(u"code=&lang=py"_s)).language, Language(Language::python));
    QCOMPARE(decoded(link(u"code=&lang=what"_s)).language, Language(Language::plainText));
    QCOMPARE(decoded(link(u"code="_s)).language, Language(Language::plainText));
}

void LessonLinkTest::regionsAreTakenAsTheyStand_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<qint64>("start");
    QTest::addColumn<qint64>("end");
    QTest::newRow("two") << u"3-7"_s << qint64(3) << qint64(7);
    QTest::newRow("one") << u"7"_s << qint64(7) << qint64(7);
    QTest::newRow("out of order") << u"9-3"_s << qint64(9) << qint64(3);
    QTest::newRow("letters") << u"x"_s << qint64(1) << qint64(1);
    QTest::newRow("letters between") << u"2-x-5-9"_s << qint64(2) << qint64(5);
    QTest::newRow("empty pieces") << u"--4--"_s << qint64(4) << qint64(4);
    QTest::newRow("a plus sign") << u"+2-4"_s << qint64(2) << qint64(4);
    QTest::newRow("empty") << QString() << qint64(1) << qint64(1);
}

void LessonLinkTest::regionsAreTakenAsTheyStand()
{
    QFETCH(QString, value);
    QFETCH(qint64, start);
    QFETCH(qint64, end);
    const LessonInfo info = *decoded(link(u"code=&learnSlug=s&learnRegion="_s + value)).lessonInfo;
    QCOMPARE(info.regionStart, start);
    QCOMPARE(info.regionEnd, end);
    QCOMPARE(info.namesRegion, value.contains(QRegularExpression(u"[0-9]"_s)));
}

void LessonLinkTest::requirementsAreSplitAndNotTrimmed_data()
{
    QTest::addColumn<QString>("items");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("two") << u"&learnRequires=A,,B"_s << QStringList{u"A"_s, u"B"_s};
    QTest::newRow("a blank stays") << u"&learnRequires=A,%20B"_s << QStringList{u"A"_s, u" B"_s};
    QTest::newRow("empty") << u"&learnRequires="_s << QStringList();
    QTest::newRow("absent") << QString() << QStringList();
}

void LessonLinkTest::requirementsAreSplitAndNotTrimmed()
{
    QFETCH(QString, items);
    QFETCH(QStringList, names);
    QCOMPARE(decoded(link(u"code=&learnSlug=s"_s + items)).lessonInfo->requires_, names);
}

void LessonLinkTest::withoutASlugThereIsNoLesson()
{
    QCOMPARE(decoded(link(u"code=&learnSlug=&learnTitle=T"_s)).lessonInfo, std::nullopt);
    QCOMPARE(decoded(link(u"code=&learnTitle=T&learnLang=ko"_s)).lessonInfo, std::nullopt);
    QCOMPARE(decoded(link(u"code=&learnSlug"_s)).lessonInfo, std::nullopt);
}

void LessonLinkTest::theLessonTakesItsFields()
{
    const LessonInfo info =
        *decoded(link(u"code=&learnSlug=a%2Fb&learnTitle=%3Cb%3E%EC%A0%9C%EB%AA%A9+1&learnLang=KO-kr"_s)).lessonInfo;
    QCOMPARE(info.slug, u"a/b"_s);
    QCOMPARE(info.title, std::optional(u"<b>제목+1"_s));
    QCOMPARE(info.lang, std::optional(u"ko-kr"_s));
    const LessonInfo bare = *decoded(link(u"code=&learnSlug=s&learnTitle="_s)).lessonInfo;
    QCOMPARE(bare.title, std::optional(QString(u""_s)));
    QCOMPARE(bare.lang, std::nullopt);
    QVERIFY(!bare.namesRegion);
}

void LessonLinkTest::namesAreDecodedAndTheFirstCounts()
{
    QCOMPARE(decoded(link(u"%63ode=YQ==&code=Yg=="_s)).code, u"a"_s);
    QCOMPARE(decoded(link(u"lang=go&lang=py&code="_s)).language, Language(Language::go));
}

void LessonLinkTest::twentyMegabytesDecode()
{
    const QString code = u"print('0123456789')\n"_s.repeated(1'000'000);
    QCOMPARE(decoded(link(u"code="_s + encoded(code))).code, code);
}

void LessonLinkTest::theWayBack_data()
{
    QTest::addColumn<QString>("slug");
    QTest::addColumn<std::optional<QString>>("lang");
    QTest::addColumn<bool>("hasCompanion");
    QTest::addColumn<std::optional<QString>>("url");
    using Text = std::optional<QString>;
    QTest::newRow("companion") << u"intro"_s << Text() << true << Text(u"tutorbay://lesson/intro"_s);
    QTest::newRow("companion and language")
        << u"intro"_s << Text(u"ko"_s) << true << Text(u"tutorbay://lesson/intro?lang=ko"_s);
    QTest::newRow("site") << u"intro"_s << Text(u"en"_s) << false << Text(u"https://site/lesson/intro?lang=en"_s);
    QTest::newRow("slashes and percent signs")
        << u"a/b/%20c"_s << Text() << false << Text(u"https://site/lesson/a/b/%20c"_s);
    QTest::newRow("a lone percent sign") << u"100%"_s << Text() << true << Text();
    QTest::newRow("percent-encodings of all kinds")
        << u"%09%90%aF%Fa"_s << Text() << false << Text(u"https://site/lesson/%09%90%aF%Fa"_s);
    QTest::newRow("no first digit") << u"%g0"_s << Text() << false << Text();
    QTest::newRow("no second digit") << u"%0g"_s << Text() << false << Text();
    QTest::newRow("a digit is missing") << u"%0"_s << Text() << false << Text();
    QTest::newRow("a blank") << u"a b"_s << Text() << false << Text();
    QTest::newRow("Korean") << u"수업"_s << Text() << true << Text();
    QTest::newRow("an empty language") << u"a"_s << Text(u""_s) << false << Text(u"https://site/lesson/a?lang="_s);
}

void LessonLinkTest::theWayBack()
{
    QFETCH(QString, slug);
    QFETCH(std::optional<QString>, lang);
    QFETCH(bool, hasCompanion);
    QFETCH(std::optional<QString>, url);
    QCOMPARE(lessonURL({.slug = slug, .lang = lang}, hasCompanion, u"https://site"_s), url);
}

void LessonLinkTest::theLinksOfTheSamplePageDecode()
{
    QFile page(QStringLiteral(KELM_SAMPLES "/lesson-links.html"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    static const QRegularExpression reference(u"href=\"(kelmpane:[^\"]*)\""_s);
    QStringList titles;
    for (const auto& match : reference.globalMatch(QString::fromUtf8(page.readAll()))) {
        const LessonLink link = decoded(match.captured(1).replace(u"&amp;"_s, u"&"_s));
        QVERIFY(link.run && link.language == Language(Language::python) && !link.code.isEmpty());
        titles.append(*link.lessonInfo->title);
    }
    QCOMPARE(titles, (QStringList{u"A first loop"_s, u"첫 번째 반복문"_s, u"When a module is missing"_s}));
}

void LessonLinkTest::diagnoses_data()
{
    QTest::addColumn<QString>("standardError");
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("korean");
    const auto row = [](const char* name, const char* text, const char* english, const char* korean) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(english) << QString::fromUtf8(korean);
    };
    row("nothing", "", "", "");
    row("something else", "SyntaxError: invalid syntax", "", "");
    row("a module", "ModuleNotFoundError: No module named 'foo.bar'\n",
        "Missing module|Module 'foo.bar' is not installed.|pip install foo.bar",
        "모듈 누락|'foo.bar' 를 찾을 수 없습니다.|pip install foo.bar");
    row("a module without quotes", "No module named requests",
        "Missing module|Module 'requests' is not installed.|pip install requests",
        "모듈 누락|'requests' 를 찾을 수 없습니다.|pip install requests");
    row("a module goes before all", "HTTP 401\nNo module named \"x\"",
        "Missing module|Module 'x' is not installed.|pip install x",
        "모듈 누락|'x' 를 찾을 수 없습니다.|pip install x");
    row("a key", "HTTP/1.1 401",
        "API key auth failed|Check ANTHROPIC_API_KEY / OPENAI_API_KEY value (no stray spaces or quotes).",
        "API 키 인증 실패|ANTHROPIC_API_KEY / OPENAI_API_KEY 값을 확인 (앞뒤 공백·따옴표 조심).");
    row("no blank before the number", "E401", "", "");
    row("a limit", "openai.RateLimitError",
        "API rate limit|Retry after 10–30s or switch to a cheaper model (haiku / gpt-4o-mini).",
        "API 호출 한도 초과|10~30초 후 다시 시도하거나, 더 저렴한 모델 (haiku / gpt-4o-mini) 로 바꿔보세요.");
    row("the network", "getaddrinfo failed",
        "Network failure|Check VPN / firewall / DNS. May need proxy on corporate networks.",
        "네트워크 연결 실패|VPN/방화벽/DNS 확인. 회사망이면 proxy 설정 필요할 수 있어요.");
    row("time, in any case", "Connection TIMED OUT",
        "Timeout|Check if model/prompt is too large, or consider streaming.",
        "호출 시간 초과|모델·프롬프트가 너무 큰지 확인하거나 streaming 사용 고려.");
    row("but not its error's name", "TIMEOUTERROR", "", "");
    // Each of the other signs by itself.
    for (const char* sign : {"AuthenticationError", "HTTP 401", "Unauthorized"}) {
        row(sign, sign,
            "API key auth failed|Check ANTHROPIC_API_KEY / OPENAI_API_KEY value (no stray spaces or quotes).",
            "API 키 인증 실패|ANTHROPIC_API_KEY / OPENAI_API_KEY 값을 확인 (앞뒤 공백·따옴표 조심).");
    }
    for (const char* sign : {"RateLimit", "HTTP 429"}) {
        row(sign, sign, "API rate limit|Retry after 10–30s or switch to a cheaper model (haiku / gpt-4o-mini).",
            "API 호출 한도 초과|10~30초 후 다시 시도하거나, 더 저렴한 모델 (haiku / gpt-4o-mini) 로 바꿔보세요.");
    }
    for (const char* sign : {"APIConnectionError", "ENOTFOUND", "Could not resolve"}) {
        row(sign, sign, "Network failure|Check VPN / firewall / DNS. May need proxy on corporate networks.",
            "네트워크 연결 실패|VPN/방화벽/DNS 확인. 회사망이면 proxy 설정 필요할 수 있어요.");
    }
    row("TimeoutError", "TimeoutError", "Timeout|Check if model/prompt is too large, or consider streaming.",
        "호출 시간 초과|모델·프롬프트가 너무 큰지 확인하거나 streaming 사용 고려.");
    row("JSON", "json.decoder.JSONDecodeError: x",
        "JSON parse error|Response isn't JSON. Verify structured output / response_format matches the model.",
        "JSON 파싱 실패|응답이 JSON 아닙니다. structured output / response_format 가 모델에 맞게 설정됐는지 확인.");
    row("the limit goes before the network", "ENOTFOUND 429",
        "API rate limit|Retry after 10–30s or switch to a cheaper model (haiku / gpt-4o-mini).",
        "API 호출 한도 초과|10~30초 후 다시 시도하거나, 더 저렴한 모델 (haiku / gpt-4o-mini) 로 바꿔보세요.");
    row("the network goes before time", "timed out: Could not resolve",
        "Network failure|Check VPN / firewall / DNS. May need proxy on corporate networks.",
        "네트워크 연결 실패|VPN/방화벽/DNS 확인. 회사망이면 proxy 설정 필요할 수 있어요.");
    row("time goes before JSON", "JSONDecodeError: Timed Out",
        "Timeout|Check if model/prompt is too large, or consider streaming.",
        "호출 시간 초과|모델·프롬프트가 너무 큰지 확인하거나 streaming 사용 고려.");
    // Letter case counts, but for "timed out".
    for (const char* text : {"no module named x", "authenticationerror", "UNAUTHORIZED", "ratelimit", "enotfound",
                             "GetAddrInfo", "could not resolve", "jsondecodeerror", "401", "429"}) {
        row(text, text, "", "");
    }
    row("the key goes before the limit", " 429 Unauthorized",
        "API key auth failed|Check ANTHROPIC_API_KEY / OPENAI_API_KEY value (no stray spaces or quotes).",
        "API 키 인증 실패|ANTHROPIC_API_KEY / OPENAI_API_KEY 값을 확인 (앞뒤 공백·따옴표 조심).");
}

void LessonLinkTest::diagnoses()
{
    QFETCH(QString, standardError);
    QFETCH(QString, english);
    QFETCH(QString, korean);
    const auto text = [&](bool isKo) {
        const auto found = diagnose(standardError, isKo);
        return found ? found->title + u'|' + found->message + (found->fix ? u'|' + *found->fix : QString()) : QString();
    };
    QCOMPARE(text(false), english);
    QCOMPARE(text(true), korean);
}

void LessonLinkTest::koreanIsChosenByTheLanguage_data()
{
    QTest::addColumn<std::optional<QString>>("lang");
    QTest::addColumn<bool>("isKo");
    using Text = std::optional<QString>;
    QTest::newRow("ko") << Text(u"ko"_s) << true;
    QTest::newRow("KO") << Text(u"KO"_s) << true;
    QTest::newRow("ko-KR") << Text(u"ko-KR"_s) << true;
    QTest::newRow("kor") << Text(u"kor"_s) << true;
    QTest::newRow("en") << Text(u"en"_s) << false;
    QTest::newRow("k alone") << Text(u"k"_s) << false;
    QTest::newRow("in another place") << Text(u"en-ko"_s) << false;
    QTest::newRow("empty") << Text(QString()) << false;
    QTest::newRow("absent") << Text() << false;
}

void LessonLinkTest::koreanIsChosenByTheLanguage()
{
    QFETCH(std::optional<QString>, lang);
    QFETCH(bool, isKo);
    QCOMPARE(isKorean({.slug = u"s"_s, .lang = lang}), isKo);
}

const kelm::test::Registered<LessonLinkTest> registered;

} // namespace lesson_link_test

#include "lesson_link_test.moc"
