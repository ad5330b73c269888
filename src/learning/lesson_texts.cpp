#include "learning/lesson_texts.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm::lessonTexts {

const LessonText learningMode{u"Learning Mode"_s, u"학습 모드"_s};
const LessonText openLesson{u"Open lesson"_s, u"레슨 열기"_s};
const LessonText keysNeeded{u"API KEYS NEEDED"_s, u"필요한 API 키"_s};
const LessonText noKeysNeeded{u"This snippet doesn't require any API keys."_s,
                              u"이 스니펫은 API 키가 필요하지 않습니다."_s};
const LessonText recheck{u"Recheck"_s, u"다시 확인"_s};
const LessonText diagnosis{u"DIAGNOSIS"_s, u"문제 진단"_s};
const LessonText region{u"FROM TEXTBOOK"_s, u"교재 발췌 구간"_s};
const LessonText regionNote{
    u"Lines outside this range were auto-added so the snippet runs end-to-end (imports, sample inputs, auto-print)."_s,
    u"이 범위 밖의 줄은 스니펫이 end-to-end 로 실행되도록 자동 추가됨 (imports · 샘플 입력 · auto-print)."_s};
const LessonText tipsHeading{u"TIPS"_s, u"팁"_s};
const std::array<LessonText, 3> tips{
    LessonText{u"• Edit any line. Cmd-R runs the whole file."_s,
               u"• 아무 줄이나 수정하세요. Cmd-R 로 전체 파일 실행."_s},
    LessonText{u"• Output appears in the bottom Output panel."_s, u"• 결과는 아래쪽 Output 패널에 표시됩니다."_s},
    LessonText{u"• Replace sample inputs near the top to test other cases."_s,
               u"• 상단의 샘플 입력값을 바꿔서 다른 케이스도 시험해 보세요."_s},
};
const LessonText copyExport{u"Copy export"_s, u"export 복사"_s};
const LessonText copied{u"Copied!"_s, u"복사됨!"_s};
const LessonText copyFix{u"Copy"_s, u"복사"_s};
const LessonText linkAsks{u"A link asks to run this code on this computer."_s,
                          u"링크가 이 코드를 이 컴퓨터에서 실행하려고 합니다."_s};
const LessonText linkRun{u"Run"_s, u"실행"_s};
const LessonText linkRunAlways{u"Always run lesson links"_s, u"레슨 링크는 항상 실행"_s};
const LessonText linkRunAlwaysHelp{u"Run the code of every link without asking"_s,
                                   u"모든 링크의 코드를 묻지 않고 실행"_s};
const LessonText linkPutAway{u"Dismiss"_s, u"닫기"_s};
const LessonText linkKey{u"F6 brings the keyboard here"_s, u"F6 키로 이동"_s};
const LessonText linksHeading{u"LESSON LINKS"_s, u"레슨 링크"_s};
const LessonText linksRun{u"Lesson links run their code without asking."_s,
                          u"레슨 링크의 코드가 묻지 않고 실행됩니다."_s};
const LessonText askAgain{u"Ask again"_s, u"다시 묻기"_s};

QString regionLines(qint64 start, qint64 end, bool isKo)
{
    const QString lines = QString::number(start) + u'–' + QString::number(end);
    return isKo ? lines + u" 행"_s : u"Lines "_s + lines;
}

QString whereToGetKey(const QString& key, bool isKo)
{
    const QString prefix = isKo ? u"키 받기: "_s : u"Get a key: "_s;
    if (key == u"ANTHROPIC_API_KEY") {
        return prefix + QStringLiteral(KELM_ANTHROPIC_KEY_CONSOLE);
    }
    if (key == u"OPENAI_API_KEY") {
        return prefix + QStringLiteral(KELM_OPENAI_KEY_CONSOLE);
    }
    return prefix + (isKo ? u"벤더 콘솔"_s : u"your vendor console"_s);
}

} // namespace kelm::lessonTexts
