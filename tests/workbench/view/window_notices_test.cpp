#include "app/state/document_rewriter.h"
#include "app/state/large_files.h"
#include "app/state/notices.h"
#include "platform/view/plain_button.h"
#include "support/blocked_workers.h"
#include "support/test_program.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMimeData>

#include <optional>

namespace window_notices_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A text that takes a worker to sort, the last line first.
const QString unsorted = u"line\n"_s.repeated(DocumentRewriter::longestAtOnce / 5 + 1) + u"first"_s;
const QString sorted = u"first\n"_s + u"line\n"_s.repeated(DocumentRewriter::longestAtOnce / 5) + u"line"_s;

struct Fixture : WindowFixture
{
    /// Until it goes no work of another thread begins.
    std::optional<BlockedWorkers> blocked;
    QUrl url = write(u"lines.txt"_s, unsorted.toUtf8());

    Fixture()
    {
        state.openFile(url);
        turnQueue();
        QVERIFY(text().hasFocus());
    }
    ~Fixture() { state.notices().stop(); }

    void beginSorting()
    {
        blocked.emplace();
        command(Command::sortLinesAscending)->trigger();
        QVERIFY(state.notices().holdsInput());
    }
    void finish()
    {
        blocked.reset();
        QTRY_VERIFY(state.notices().current() == nullptr);
        turnQueue();
    }
    QString content() { return state.currentDocument()->content(); }
    QWindow* handle() { return window.windowHandle(); }
    NoticeBar& bar() { return window.noticeBar(); }

    /// Reads a file of 1 MB as one that takes long, once the workers are let.
    QUrl beginOpening()
    {
        blocked.emplace();
        state.largeFiles().setLeastSize(1'000'000);
        const QUrl large = write(u"large.txt"_s, QByteArray(1'000'000, 'a'));
        state.openFile(large);
        return large;
    }
};

} // namespace

class WindowNoticesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void noNoticeIsThereAtFirst();
    void theNoticeIsShownWhileLinesAreSorted();
    void theNoticeStandsAboveTheStatusBarAndTakesNoKeyboard();
    void sortingIsOneUndoStep();
    void typedKeysComeAfterwardsInTheirOrder();
    void commandsComeAfterwardsAsWell();
    void aHeldCommandHoldsTheKeysBehindIt();
    void composedTextComesAfterwards();
    void escapeEndsItAndChangesNothing();
    void theEscapeKeyThatIsHeldDownEndsOneThing();
    void thePointerIsDropped();
    void aReleaseGoesToWhoHasThePress();
    void nothingCanBeDropped();
    void otherWindowsHaveTheirInput();
    void openingNamesTheFileAndHoldsNothing();
    void escapeEndsOpening();
    void escapeClosesAnOverlayFirst();
    void theTabComesWithItsText();
    void anOfferIsTakenByAClick();
    void newsArePutAwayByAClick();
};

void WindowNoticesTest::noNoticeIsThereAtFirst()
{
    Fixture fixture;
    QVERIFY(fixture.bar().isHidden());
}

void WindowNoticesTest::theNoticeIsShownWhileLinesAreSorted()
{
    Fixture fixture;
    fixture.beginSorting();
    // Not at once: most texts are sorted before it could be read.
    QVERIFY(fixture.bar().isHidden());
    QTRY_VERIFY(fixture.bar().isVisible());
    QCOMPARE(fixture.bar().text(), u"Sorting lines…"_s);
    QVERIFY(fixture.bar().offersStop());
    QCOMPARE(fixture.content(), unsorted);
    fixture.finish();
    QVERIFY(fixture.bar().isHidden());
    QCOMPARE(fixture.content(), sorted);
}

void WindowNoticesTest::theNoticeStandsAboveTheStatusBarAndTakesNoKeyboard()
{
    Fixture fixture;
    fixture.beginSorting();
    QTRY_VERIFY(fixture.bar().isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    const QWidget& status = fixture.window.statusBarView();
    QCOMPARE(fixture.bar().geometry().bottom() + 1, status.geometry().top());
    QCOMPARE(fixture.bar().width(), status.width());
    QVERIFY(fixture.text().hasFocus());
}

void WindowNoticesTest::sortingIsOneUndoStep()
{
    Fixture fixture;
    fixture.beginSorting();
    fixture.finish();
    QCOMPARE(fixture.content(), sorted);
    fixture.text().undo();
    QCOMPARE(fixture.content(), unsorted);
    fixture.text().redo();
    QCOMPARE(fixture.content(), sorted);
}

void WindowNoticesTest::typedKeysComeAfterwardsInTheirOrder()
{
    Fixture fixture;
    fixture.beginSorting();
    // As the system gives them, and as they would come to the text itself.
    for (const char key : {'w', 'a'}) {
        QTest::keyClick(fixture.handle(), key);
    }
    QTest::keyClicks(&fixture.text(), u"it"_s);
    QTest::keyClick(fixture.handle(), Qt::Key_Backspace);
    QTest::keyClick(fixture.handle(), Qt::Key_Return);
    QCOMPARE(fixture.content(), unsorted);
    fixture.finish();
    QTRY_COMPARE(fixture.content(), u"wai\n"_s + sorted);
    // And the next ones come at once.
    QTest::keyClick(fixture.handle(), 'x');
    QCOMPARE(fixture.content(), u"wai\nx"_s + sorted);
}

void WindowNoticesTest::commandsComeAfterwardsAsWell()
{
    Fixture fixture;
    fixture.beginSorting();
    QTest::keyClick(fixture.handle(), 'x');
    QTest::keyClick(fixture.handle(), Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(fixture.handle(), 'y');
    QTest::keyClick(fixture.handle(), Qt::Key_B, Qt::ControlModifier);
    QVERIFY(fixture.state.showSidebar());
    QCOMPARE(WindowFixture::read(fixture.url), unsorted.toUtf8());
    fixture.finish();
    QTRY_VERIFY(!fixture.state.showSidebar());
    QCOMPARE(WindowFixture::read(fixture.url), (u"x"_s + sorted).toUtf8());
    QCOMPARE(fixture.content(), u"xy"_s + sorted);
}

void WindowNoticesTest::aHeldCommandHoldsTheKeysBehindIt()
{
    Fixture fixture;
    fixture.beginSorting();
    QTest::keyClick(fixture.handle(), 'x');
    // What is no JSON stays as it is.
    QTest::keyClick(fixture.handle(), Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(fixture.handle(), 'y');
    QStringList notices;
    connect(&fixture.state.notices(), &Notices::currentChanged, this, [&] {
        if (const Notice* notice = fixture.state.notices().current()) {
            notices << notice->text + fixture.content().left(2);
        }
    });
    fixture.finish();
    QTRY_COMPARE(fixture.content(), u"xy"_s + sorted);
    QCOMPARE(notices, QStringList{u"Formatting JSON…xf"_s});
}

void WindowNoticesTest::composedTextComesAfterwards()
{
    Fixture fixture;
    fixture.beginSorting();
    QTest::keyClick(fixture.handle(), 'x');
    QInputMethodEvent composing(u"하"_s, {});
    QCoreApplication::sendEvent(&fixture.text(), &composing);
    QInputMethodEvent composed;
    composed.setCommitString(u"한"_s);
    QCoreApplication::sendEvent(&fixture.text(), &composed);
    QTest::keyClick(fixture.handle(), 'y');
    QCOMPARE(fixture.content(), unsorted);
    fixture.finish();
    QTRY_COMPARE(fixture.content(), u"x한y"_s + sorted);
}

void WindowNoticesTest::escapeEndsItAndChangesNothing()
{
    Fixture fixture;
    fixture.beginSorting();
    QTRY_VERIFY(fixture.bar().isVisible());
    QTest::keyClick(fixture.handle(), 'x');
    QTest::keyClick(fixture.handle(), Qt::Key_Escape);
    QVERIFY(fixture.state.notices().current() == nullptr);
    QVERIFY(fixture.bar().isHidden());
    QTRY_COMPARE(fixture.content(), u"x"_s + unsorted);
    fixture.finish();
    QCOMPARE(fixture.content(), u"x"_s + unsorted);
    fixture.text().undo();
    QVERIFY(fixture.content() == unsorted);
}

void WindowNoticesTest::theEscapeKeyThatIsHeldDownEndsOneThing()
{
    Fixture fixture;
    fixture.beginOpening();
    fixture.beginSorting();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, {});
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Escape, {}, {}, true);
    QCoreApplication::sendEvent(&fixture.text(), &press);
    QCoreApplication::sendEvent(&fixture.text(), &repeated);
    QCOMPARE(fixture.state.notices().current()->text, u"Opening large.txt…"_s);
}

void WindowNoticesTest::thePointerIsDropped()
{
    Fixture fixture;
    fixture.beginSorting();
    const QPoint place(30, 100);
    const TextRange before = fixture.text().selectedRange();
    QTest::mouseClick(fixture.text().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(fixture.text().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseClick(fixture.handle(), Qt::LeftButton, {}, fixture.text().viewport()->mapTo(&fixture.window, place));
    QCOMPARE(fixture.text().selectedRange(), before);
    const QRectF seen = fixture.text().visibleRect();
    QWheelEvent wheel(place, fixture.text().viewport()->mapToGlobal(place), {}, {0, -600}, {}, {}, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(fixture.text().viewport(), &wheel);
    QCOMPARE(fixture.text().visibleRect(), seen);
    fixture.finish();
    QCOMPARE(fixture.text().selectedRange(), before);
    // And afterwards it works again.
    QTest::mouseClick(fixture.text().viewport(), Qt::LeftButton, {}, place);
    QVERIFY(fixture.text().selectedRange() != before);
}

void WindowNoticesTest::aReleaseGoesToWhoHasThePress()
{
    Fixture fixture;
    QWidget& viewport = *fixture.text().viewport();
    QTest::mousePress(&viewport, Qt::LeftButton, {}, {30, 100});
    const TextRange pressed = fixture.text().selectedRange();
    fixture.beginSorting();
    QTest::mouseRelease(&viewport, Qt::LeftButton, {}, {30, 100});
    fixture.finish();
    // No drag goes on.
    QTest::mouseMove(&viewport, {60, 200});
    QCOMPARE(fixture.text().selectedRange().length, pressed.length);
}

void WindowNoticesTest::nothingCanBeDropped()
{
    Fixture fixture;
    fixture.beginSorting();
    QMimeData data;
    data.setText(u"dropped"_s);
    QDragEnterEvent enter({30, 30}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(fixture.text().viewport(), &enter);
    QVERIFY(!enter.isAccepted());
    QDropEvent drop({30, 30}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(fixture.text().viewport(), &drop);
    QCOMPARE(fixture.content(), unsorted);
    fixture.finish();
    QCOMPARE(fixture.content(), sorted);
}

void WindowNoticesTest::otherWindowsHaveTheirInput()
{
    Fixture fixture;
    QLineEdit other;
    other.show();
    fixture.beginSorting();
    QTest::keyClicks(&other, u"typed"_s);
    QTest::keyClick(&other, Qt::Key_Escape);
    QCOMPARE(other.text(), u"typed"_s);
    QVERIFY(fixture.state.notices().holdsInput());
}

void WindowNoticesTest::openingNamesTheFileAndHoldsNothing()
{
    Fixture fixture;
    fixture.beginOpening();
    QTRY_VERIFY(fixture.bar().isVisible());
    QCOMPARE(fixture.bar().text(), u"Opening large.txt… 0 %"_s);
    QTest::keyClick(fixture.handle(), 'x');
    QCOMPARE(fixture.content(), u"x"_s + unsorted);
}

void WindowNoticesTest::escapeEndsOpening()
{
    Fixture fixture;
    fixture.beginOpening();
    QTest::keyClick(fixture.handle(), Qt::Key_Escape);
    QVERIFY(fixture.state.notices().current() == nullptr);
    fixture.finish();
    QCOMPARE(fixture.state.documents().size(), 1);
    QCOMPARE(fixture.content(), unsorted);
}

void WindowNoticesTest::escapeClosesAnOverlayFirst()
{
    Fixture fixture;
    fixture.beginOpening();
    fixture.state.setShowGoToLine(true);
    fixture.turnQueue();
    QTest::keyClick(fixture.window.focusWidget(), Qt::Key_Escape);
    QVERIFY(!fixture.state.showGoToLine());
    QVERIFY(fixture.state.notices().current() != nullptr);
    fixture.turnQueue();
    QTest::keyClick(fixture.window.focusWidget(), Qt::Key_Escape);
    QVERIFY(fixture.state.notices().current() == nullptr);
}

void WindowNoticesTest::theTabComesWithItsText()
{
    Fixture fixture;
    const QUrl large = fixture.beginOpening();
    QCOMPARE(fixture.state.documents().size(), 1);
    fixture.finish();
    QCOMPARE(fixture.state.documents().size(), 2);
    QCOMPARE(fixture.state.currentDocument()->fileURL(), large);
    QCOMPARE(fixture.text().text(), QString(1'000'000, u'a'));
}

void WindowNoticesTest::anOfferIsTakenByAClick()
{
    Fixture fixture;
    int taken = 0;
    fixture.state.notices().report(u"Closed with unsaved changes"_s, {{u"Reopen"_s, [&taken] { ++taken; }}});
    QTRY_VERIFY(fixture.bar().isVisible());
    QTest::mouseClick(fixture.bar().offers().front(), Qt::LeftButton);
    QCOMPARE(taken, 1);
    QVERIFY(fixture.bar().isHidden());
    QVERIFY(fixture.text().hasFocus());
}

void WindowNoticesTest::newsArePutAwayByAClick()
{
    Fixture fixture;
    fixture.state.notices().report(u"lines.txt could not be saved"_s);
    QTRY_VERIFY(fixture.bar().isVisible());
    QVERIFY(!fixture.bar().offersStop());
    QTest::mouseClick(fixture.bar().putAwayButton(), Qt::LeftButton);
    QVERIFY(fixture.bar().isHidden());
    QVERIFY(fixture.text().hasFocus());
}

const kelm::test::Registered<WindowNoticesTest> registered(kelm::test::Toolkit::widgets);

} // namespace window_notices_test

#include "window_notices_test.moc"
