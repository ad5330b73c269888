#include "learning/link_permission.h"
#include "learning/view/environment_row.h"
#include "learning/view/side_panel_fixture.h"
#include "platform/text/platform_words.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

namespace learning_mode_side_panel_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : kelm::test::SidePanelFixture
{
    /// What is read, from top to bottom.
    QStringList texts() const
    {
        QList<std::pair<int, QString>> found;
        for (auto* widget : panel->findChildren<QWidget*>()) {
            const auto* label = qobject_cast<QLabel*>(widget);
            const auto* button = qobject_cast<PlainButton*>(widget);
            const QString text = label != nullptr    ? label->text()
                                 : button != nullptr ? button->text()
                                                     : widget->accessibleName();
            if (widget->isVisible() && !text.isEmpty()) {
                found.append({y(*widget), text});
            }
        }
        std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        QStringList texts;
        for (const auto& [y, text] : found) {
            texts.append(text);
        }
        return texts;
    }
    /// What the button of the fix copies, which then can be pressed again; empty where there is none.
    QString copiedFix()
    {
        QGuiApplication::clipboard()->clear();
        if (PlainButton* const copy = button(u"Copy"_s)) {
            QTest::mouseClick(copy, Qt::LeftButton);
            scheduler.advance(std::chrono::milliseconds(1500));
        }
        return QGuiApplication::clipboard()->text();
    }
    /// The rows of variables that there are, whether they are seen or not.
    QList<EnvRow*> rows() const { return panel->findChildren<EnvRow*>(); }
    QScrollBar& scrollBar() const { return *panel->findChild<QScrollArea*>()->verticalScrollBar(); }
};

} // namespace

class LearningModeSidePanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void theEnglishPanelReads();
    void theKoreanPanelReads();
    void theSlugStandsForAMissingTitle();
    void requirementsShowWhatIsSet();
    void recheckLooksAgain();
    void theExportLineIsCopied();
    void recheckLeavesWhatARowSaysOfItsCopy();
    void longWordsStayInThePanel();
    void theLessonOpens_data();
    void theLessonOpens();
    void theSystemIsAskedOnAWorker();
    void withoutAnAddressThereIsNoLink();
    void aFailedRunIsDiagnosedAndANewOneForgotten();
    void theFixIsCopied();
    void aCopiedFixSaysSo();
    void runsBeforeTheLessonAreNotDiagnosed();
    void theButtonThatSaysSoMovesNothing();
    void withoutARegionNoneIsNamed();
    void anotherLessonTakesThePlace();
    void thousandsOfLettersOfATitleScroll();
    void aTitleWithoutEndIsShownByItsBeginning();
    void hundredsOfKeysScroll();
    void thousandsOfKeysMakeNoMoreRowsThanAreSeen();
    void keysAreNoShellCode();
    void thePermissionIsSaidAndTakenBack();
    void longNamesOfModulesAreShownByTheirBeginning();
    void titlesAreNoMarkup();
};

void LearningModeSidePanelTest::theEnglishPanelReads()
{
    Fixture fixture;
    fixture.show({.slug = u"intro"_s, .title = u"First steps"_s, .regionStart = 3, .regionEnd = 7});
    QCOMPARE(fixture.texts(),
             (QStringList{u"Learning Mode"_s, u"First steps"_s, u"Open lesson"_s, u"API KEYS NEEDED"_s,
                          u"This snippet doesn't require any API keys."_s, u"FROM TEXTBOOK"_s, u"Lines 3–7"_s,
                          u"Lines outside this range were auto-added so the snippet runs end-to-end "
                          u"(imports, sample inputs, auto-print)."_s,
                          u"TIPS"_s, inPlatformWords(u"• Edit any line. Cmd-R runs the whole file."_s),
                          u"• Output appears in the bottom Output panel."_s,
                          u"• Replace sample inputs near the top to test other cases."_s}));
    QCOMPARE(fixture.panel->width(), 280);
}

void LearningModeSidePanelTest::theKoreanPanelReads()
{
    Fixture fixture;
    fixture.show({.slug = u"intro"_s, .title = u"첫걸음"_s, .regionStart = 2, .regionEnd = 2, .lang = u"ko"_s});
    QCOMPARE(
        fixture.texts(),
        (QStringList{
            u"학습 모드"_s, u"첫걸음"_s, u"레슨 열기"_s, u"필요한 API 키"_s,
            u"이 스니펫은 API 키가 필요하지 않습니다."_s, u"교재 발췌 구간"_s, u"2–2 행"_s,
            u"이 범위 밖의 줄은 스니펫이 end-to-end 로 실행되도록 자동 추가됨 (imports · 샘플 입력 · auto-print)."_s,
            u"팁"_s, inPlatformWords(u"• 아무 줄이나 수정하세요. Cmd-R 로 전체 파일 실행."_s),
            u"• 결과는 아래쪽 Output 패널에 표시됩니다."_s,
            u"• 상단의 샘플 입력값을 바꿔서 다른 케이스도 시험해 보세요."_s}));
}

void LearningModeSidePanelTest::theSlugStandsForAMissingTitle()
{
    Fixture fixture;
    fixture.show({.slug = u"the-slug"_s});
    QVERIFY(fixture.texts().contains(u"the-slug"_s));
}

void LearningModeSidePanelTest::requirementsShowWhatIsSet()
{
    qputenv("KELM_TEST_SET", "value");
    qputenv("KELM_TEST_EMPTY", "");
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .requires_ = {u"KELM_TEST_SET"_s, u"KELM_TEST_EMPTY"_s, u"OPENAI_API_KEY"_s}});
    const QStringList texts = fixture.texts();
    QCOMPARE(texts.count(u"Copy export"_s), qEnvironmentVariableIsSet("OPENAI_API_KEY") ? 1 : 2);
    QVERIFY(texts.contains(u"Get a key: your vendor console"_s));
    QVERIFY(texts.indexOf(u"KELM_TEST_SET"_s) < texts.indexOf(u"KELM_TEST_EMPTY"_s));
    QVERIFY(!texts.contains(u"This snippet doesn't require any API keys."_s));
}

void LearningModeSidePanelTest::recheckLooksAgain()
{
    qunsetenv("KELM_TEST_LATER");
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .requires_ = {u"KELM_TEST_LATER"_s}, .lang = u"ko"_s});
    QVERIFY(fixture.button(u"export 복사"_s) != nullptr);
    qputenv("KELM_TEST_LATER", "1");
    QVERIFY(fixture.button(u"export 복사"_s) != nullptr);
    QTest::mouseClick(fixture.button(u"다시 확인"_s), Qt::LeftButton);
    QVERIFY(fixture.button(u"export 복사"_s) == nullptr);
    qunsetenv("KELM_TEST_LATER");
}

void LearningModeSidePanelTest::theExportLineIsCopied()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .requires_ = {u"KELM_TEST_ABSENT"_s}});
    QTest::mouseClick(fixture.button(u"Copy export"_s), Qt::LeftButton);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"export KELM_TEST_ABSENT=..."_s);
    QVERIFY(fixture.button(u"Copied!"_s) != nullptr);
    fixture.scheduler.advance(std::chrono::milliseconds(1499));
    QVERIFY(fixture.button(u"Copied!"_s) != nullptr);
    fixture.scheduler.advance(std::chrono::milliseconds(1));
    QVERIFY(fixture.button(u"Copy export"_s) != nullptr);
}

void LearningModeSidePanelTest::recheckLeavesWhatARowSaysOfItsCopy()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .requires_ = {u"KELM_TEST_ABSENT"_s, u"KELM_TEST_LATER"_s}});
    QCOMPARE(fixture.panel->refreshTick(), 1);
    QTest::mouseClick(fixture.button(u"Copy export"_s), Qt::LeftButton);
    qputenv("KELM_TEST_LATER", "1");
    QTest::mouseClick(fixture.button(u"Recheck"_s), Qt::LeftButton);
    qunsetenv("KELM_TEST_LATER");
    QCOMPARE(fixture.panel->refreshTick(), 2);
    QVERIFY(fixture.button(u"Copied!"_s) != nullptr);
    QVERIFY(fixture.button(u"Copy export"_s) == nullptr);
    fixture.scheduler.advance(std::chrono::milliseconds(1500));
    QVERIFY(fixture.button(u"Copied!"_s) == nullptr);
    QVERIFY(fixture.button(u"Copy export"_s) != nullptr);
    QCoreApplication::processEvents();
    const QStringList texts = fixture.texts();
    QVERIFY(texts.contains(u"KELM_TEST_LATER"_s));
    QVERIFY(texts.indexOf(u"KELM_TEST_ABSENT"_s) < texts.indexOf(u"KELM_TEST_LATER"_s));
}

void LearningModeSidePanelTest::longWordsStayInThePanel()
{
    Fixture fixture;
    const QString word = u"a_very_long_name.with_many_parts.and_more_parts.and_still_more_parts.and_an_end"_s;
    fixture.show({.slug = word, .requires_ = {word.toUpper().replace(u'.', u'_')}});
    fixture.run(u"echo \"No module named '%1'\" >&2"_s.arg(word));
    QTRY_VERIFY(fixture.button(u"Copy"_s) != nullptr);
    QTRY_VERIFY(fixture.button(u"Copy"_s)->mapTo(fixture.panel.get(), QPoint(26, 0)).x() <= 280);
    const QRect panel = fixture.panel->rect();
    for (const auto* label : fixture.panel->findChildren<QLabel*>()) {
        if (!label->isVisible()) {
            continue;
        }
        const QRect place(label->mapTo(fixture.panel.get(), QPoint()), label->size());
        QVERIFY(place.left() >= 0 && place.right() <= panel.right());
        QVERIFY(label->height() >= label->heightForWidth(label->width()));
    }
}

void LearningModeSidePanelTest::theLessonOpens_data()
{
    QTest::addColumn<bool>("hasCompanion");
    QTest::addColumn<QString>("scheme");
    QTest::newRow("in the companion application") << true << u"tutorbay"_s;
    QTest::newRow("on the site") << false << u"https"_s;
}

void LearningModeSidePanelTest::theLessonOpens()
{
    QFETCH(bool, hasCompanion);
    QFETCH(QString, scheme);
    Fixture fixture;
    if (hasCompanion) {
        fixture.workspace.applications.insert(u"tutorbay"_s, u"tutorbay.desktop"_s);
    }
    fixture.show({.slug = u"intro"_s, .lang = u"en"_s});
    // The system may not have answered yet which application there is.
    QTest::mouseClick(fixture.button(u"Open lesson"_s), Qt::LeftButton);
    QTRY_COMPARE(fixture.workspace.opened.size(), 1);
    QCOMPARE(fixture.workspace.opened.first().scheme(), scheme);
    QVERIFY(fixture.workspace.opened.first().toString().endsWith(u"/intro?lang=en"_s));
}

void LearningModeSidePanelTest::theSystemIsAskedOnAWorker()
{
    Fixture fixture;
    fixture.show({.slug = u"intro"_s});
    QVERIFY(fixture.button(u"Open lesson"_s) != nullptr);
    QTRY_VERIFY(fixture.workspace.askedFrom != nullptr);
    QVERIFY(fixture.workspace.askedFrom != QThread::currentThread());
}

void LearningModeSidePanelTest::withoutAnAddressThereIsNoLink()
{
    Fixture fixture;
    fixture.show({.slug = u"no address"_s});
    QVERIFY(fixture.button(u"Open lesson"_s) == nullptr);
}

void LearningModeSidePanelTest::aFailedRunIsDiagnosedAndANewOneForgotten()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s});
    fixture.run(u"echo 'HTTP 401' >&2; exit 1"_s);
    QTRY_VERIFY(fixture.panel->diagnosis().has_value());
    const QStringList texts = fixture.texts();
    QVERIFY(texts.indexOf(u"DIAGNOSIS"_s) > texts.indexOf(u"API KEYS NEEDED"_s));
    QVERIFY(texts.indexOf(u"DIAGNOSIS"_s) < texts.indexOf(u"FROM TEXTBOOK"_s));
    QCOMPARE(texts.at(texts.indexOf(u"DIAGNOSIS"_s) + 1), u"API key auth failed"_s);
    fixture.run(u"true"_s);
    QTRY_VERIFY(!fixture.panel->diagnosis().has_value());
    QVERIFY(!fixture.texts().contains(u"DIAGNOSIS"_s));
    fixture.run(u"echo 'a warning: timed out' >&2; exit 0"_s);
    QTRY_VERIFY(fixture.panel->diagnosis().has_value());
}

void LearningModeSidePanelTest::theFixIsCopied()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .lang = u"ko"_s});
    fixture.run(u"echo \"No module named 'foo.bar'\" >&2"_s);
    QTRY_VERIFY(fixture.button(u"복사"_s) != nullptr);
    QTest::mouseClick(fixture.button(u"복사"_s), Qt::LeftButton);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"pip install foo.bar"_s);
    QVERIFY(fixture.texts().contains(u"문제 진단"_s));
    QVERIFY(fixture.texts().contains(u"'foo.bar' 를 찾을 수 없습니다."_s));
}

void LearningModeSidePanelTest::aCopiedFixSaysSo()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s});
    fixture.run(u"echo \"No module named 'foo.bar'\" >&2"_s);
    QTRY_VERIFY(fixture.button(u"Copy"_s) != nullptr);
    QTest::mouseClick(fixture.button(u"Copy"_s), Qt::LeftButton);
    QVERIFY(fixture.button(u"Copied!"_s) != nullptr);
    fixture.scheduler.advance(std::chrono::milliseconds(1499));
    QVERIFY(fixture.button(u"Copied!"_s) != nullptr);
    fixture.scheduler.advance(std::chrono::milliseconds(1));
    QVERIFY(fixture.button(u"Copied!"_s) == nullptr);
    QVERIFY(fixture.button(u"Copy"_s) != nullptr);
    // Of another lesson nothing was copied.
    QTest::mouseClick(fixture.button(u"Copy"_s), Qt::LeftButton);
    fixture.panel->setLesson({.slug = u"t"_s, .lang = u"ko"_s});
    QVERIFY(fixture.button(u"Copied!"_s) == nullptr && fixture.button(u"복사됨!"_s) == nullptr);
    QVERIFY(fixture.button(u"복사"_s) != nullptr);
}

void LearningModeSidePanelTest::runsBeforeTheLessonAreNotDiagnosed()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s});
    fixture.run(u"echo 'HTTP 401' >&2"_s);
    QTRY_VERIFY(fixture.panel->diagnosis().has_value());
    fixture.panel->setLesson({.slug = u"t"_s}, fixture.panel->runsBegun());
    QVERIFY(!fixture.panel->diagnosis().has_value());
    QVERIFY(!fixture.texts().contains(u"DIAGNOSIS"_s));
    fixture.run(u"echo 'HTTP 429' >&2"_s);
    QTRY_VERIFY(fixture.panel->diagnosis().has_value());
    QVERIFY(fixture.texts().contains(u"API rate limit"_s));
}

void LearningModeSidePanelTest::theButtonThatSaysSoMovesNothing()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s});
    fixture.run(u"echo \"No module named 'foo.bar'\" >&2"_s);
    QTRY_VERIFY(fixture.button(u"Copy"_s) != nullptr);
    QCoreApplication::processEvents();
    const PlainButton* const button = fixture.button(u"Copy"_s);
    const QRect before = button->geometry();
    QTest::mouseClick(fixture.button(u"Copy"_s), Qt::LeftButton);
    QCoreApplication::processEvents();
    QCOMPARE(button->geometry(), before);
}

void LearningModeSidePanelTest::withoutARegionNoneIsNamed()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .namesRegion = false});
    const QStringList texts = fixture.texts();
    QVERIFY(!texts.contains(u"FROM TEXTBOOK"_s));
    QVERIFY(!texts.contains(u"Lines 1–1"_s));
    QVERIFY(texts.contains(u"TIPS"_s));
}

void LearningModeSidePanelTest::anotherLessonTakesThePlace()
{
    Fixture fixture;
    fixture.show({.slug = u"one"_s, .requires_ = {u"KELM_TEST_A"_s, u"KELM_TEST_B"_s}, .namesRegion = false});
    fixture.panel->setLesson(
        {.slug = u"zwei"_s, .regionStart = 4, .regionEnd = 5, .requires_ = {u"KELM_TEST_C"_s}, .lang = u"ko"_s});
    QCoreApplication::processEvents();
    QCOMPARE(fixture.texts().mid(0, 8),
             (QStringList{u"학습 모드"_s, u"zwei"_s, u"레슨 열기"_s, u"필요한 API 키"_s, u"KELM_TEST_C"_s,
                          u"export 복사"_s, u"키 받기: 벤더 콘솔"_s, u"다시 확인"_s}));
    fixture.panel->setLesson({.slug = u"three"_s});
    QCoreApplication::processEvents();
    QCOMPARE(fixture.texts().mid(0, 6),
             (QStringList{u"Learning Mode"_s, u"three"_s, u"Open lesson"_s, u"API KEYS NEEDED"_s,
                          u"This snippet doesn't require any API keys."_s, u"FROM TEXTBOOK"_s}));
}

void LearningModeSidePanelTest::thousandsOfLettersOfATitleScroll()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .title = u"가나다 abc "_s.repeated(375)});
    QVERIFY(fixture.texts().contains(u"가나다 abc "_s.repeated(375).trimmed()));
    QVERIFY(fixture.scrollBar().maximum() > 0);
    QCOMPARE(fixture.panel->width(), 280);
    QCOMPARE(fixture.panel->height(), 800);
}

void LearningModeSidePanelTest::aTitleWithoutEndIsShownByItsBeginning()
{
    Fixture fixture;
    const QString title = u"😀"_s.repeated(500'000);
    fixture.show({.slug = u"s"_s, .title = title});
    const QStringList texts = fixture.texts();
    const auto shown = std::find_if(texts.begin(), texts.end(), [](const QString& text) { return text.size() > 100; });
    QVERIFY(shown != texts.end());
    QCOMPARE(*shown, u"😀"_s.repeated(1500) + u'…');
}

void LearningModeSidePanelTest::hundredsOfKeysScroll()
{
    Fixture fixture;
    QStringList keys;
    for (int number = 0; number < 200; ++number) {
        keys << u"KELM_TEST_%1"_s.arg(number);
    }
    fixture.show({.slug = u"s"_s, .requires_ = keys});
    QVERIFY(fixture.texts().contains(keys.first()));
    QVERIFY(!fixture.texts().contains(keys.last()));
    QStringList seen;
    QScrollBar& bar = fixture.scrollBar();
    for (int value = 0;; value += 300) {
        bar.setValue(value);
        for (const QString& text : fixture.texts()) {
            if (text.startsWith(u"KELM_TEST_") && !seen.contains(text)) {
                seen << text;
            }
        }
        if (value > bar.maximum()) {
            break;
        }
    }
    QCOMPARE(seen, keys);
    QVERIFY(fixture.texts().contains(u"TIPS"_s));
}

void LearningModeSidePanelTest::thousandsOfKeysMakeNoMoreRowsThanAreSeen()
{
    Fixture fixture;
    QStringList keys;
    for (int number = 0; number < 10'000; ++number) {
        keys << u"KELM_TEST_%1"_s.arg(number);
    }
    fixture.show({.slug = u"s"_s, .requires_ = keys});
    // Those that have been seen go: as many places as would show hundreds.
    for (int step = 0; step <= 10; ++step) {
        fixture.scrollBar().setValue(fixture.scrollBar().maximum() / 10 * step);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!fixture.rows().isEmpty());
        QVERIFY(fixture.rows().size() < 60);
        // Each has a place of its own.
        QList<EnvRow*> rows = fixture.rows();
        std::sort(rows.begin(), rows.end(), [](const EnvRow* a, const EnvRow* b) { return a->y() < b->y(); });
        for (qsizetype row = 1; row < rows.size(); ++row) {
            QVERIFY(rows.at(row)->y() > rows.at(row - 1)->geometry().bottom());
        }
    }
    fixture.scrollBar().setValue(fixture.scrollBar().maximum());
    QVERIFY(fixture.texts().contains(keys.last()));
}

void LearningModeSidePanelTest::keysAreNoShellCode()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .requires_ = {u"A; touch x #"_s}});
    QTest::mouseClick(fixture.button(u"Copy export"_s), Qt::LeftButton);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"export 'A; touch x #=...'"_s);
}

void LearningModeSidePanelTest::thePermissionIsSaidAndTakenBack()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s});
    QVERIFY(fixture.button(u"Ask again"_s) == nullptr);
    linkPermission::give(fixture.userDefaults);
    QCoreApplication::processEvents();
    QVERIFY(fixture.texts().contains(u"Lesson links run their code without asking."_s));
    QTest::mouseClick(fixture.button(u"Ask again"_s), Qt::LeftButton);
    QVERIFY(!linkPermission::isGiven(fixture.userDefaults));
    QVERIFY(fixture.button(u"Ask again"_s) == nullptr);
}

void LearningModeSidePanelTest::longNamesOfModulesAreShownByTheirBeginning()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s});
    // What a program has written when it ends is given up where nobody has read it yet.
    QTemporaryDir folder;
    QFile isRead(folder.filePath(u"read"_s));
    fixture.runner.runCode(u"printf \"No module named '%0500000d'\" 7 >&2; until test -e '"_s + isRead.fileName() +
                               u"'; do :; done"_s,
                           Language::shell);
    QTRY_COMPARE(fixture.runner.stderrBuffer().size(), u"No module named ''"_s.size() + 500'000);
    QVERIFY(isRead.open(QIODevice::WriteOnly));
    QTRY_VERIFY(!fixture.runner.isRunning());
    // What came first may have been looked at by itself.
    QTRY_COMPARE(fixture.copiedFix().size(), u"pip install "_s.size() + 500'000);
    for (const QString& text : fixture.texts()) {
        QVERIFY(text.size() < 1100);
    }
}

void LearningModeSidePanelTest::titlesAreNoMarkup()
{
    Fixture fixture;
    fixture.show({.slug = u"s"_s, .title = u"<img src=x>\u0001<b>t</b>"_s});
    for (const auto* label : fixture.panel->findChildren<QLabel*>()) {
        QCOMPARE(label->textFormat(), Qt::PlainText);
    }
    QVERIFY(fixture.texts().contains(u"<img src=x>\u27e8U+0001\u27e9<b>t</b>"_s));
}

const kelm::test::Registered<LearningModeSidePanelTest> registered(kelm::test::Toolkit::widgets);

} // namespace learning_mode_side_panel_test

#include "learning_mode_side_panel_test.moc"
