#include "editor/themes/theme_manager.h"
#include "run/code_runner.h"
#include "run/view/output_view.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"
#include "text/view/text_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QWheelEvent>
#include <QtTest>

namespace output_view_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    AppStateFixture app;
    ThemeManager themes{{app.userDefaults, app.log, app.folder.path(), [](Appearance) {}}};
    std::unique_ptr<OutputView> view = std::make_unique<OutputView>(app.notificationCenter, themes);

    Fixture()
    {
        view->resize(500, 160);
        view->show();
        view->activateWindow();
        if (!QTest::qWaitForWindowActive(view.get())) {
            qFatal("the window does not come up");
        }
    }

    TextView& text() const { return view->textView(); }
    void post(const QVariant& object) { app.notificationCenter.post(notifications::codeOutput, object); }
    void clear() { app.notificationCenter.post(notifications::clearOutput); }
    void sendMouse(QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons) const
    {
        const QPointF place(20, 20);
        QMouseEvent event(type, place, text().viewport()->mapToGlobal(place), button, buttons, {});
        QCoreApplication::sendEvent(text().viewport(), &event);
    }
    bool isAtEnd() const { return text().verticalScrollBar()->value() == text().verticalScrollBar()->maximum(); }
    void waitForTheEnd() const
    {
        QTRY_VERIFY(isAtEnd());
        QTRY_COMPARE(view->scrollAnimation().state(), QAbstractAnimation::Stopped);
    }
    void turnWheel(int angle) const
    {
        QWheelEvent event(QPointF(5, 5), text().viewport()->mapToGlobal(QPointF(5, 5)), {}, {0, angle}, Qt::NoButton,
                          {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(text().viewport(), &event);
    }
    void run()
    {
        app.state.runCurrentFile();
        QTRY_VERIFY(!app.state.codeRunner().isRunning());
    }
};

const QString manyLines = u"line\n"_s.repeated(300);

} // namespace

class OutputViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyPageSaysSo();
    void textsComeInOrderAndThePageEndsScrolledDown();
    void whatIsNoTextIsPassedOver_data();
    void whatIsNoTextIsPassedOver();
    void clearingBeginsAnew();
    void theEndOfALongOutputIsKept();
    void itHearsNothingWhenItIsGone();
    void textCanBeSelectedAndCopiedButNotChanged();
    void controlCharactersAreSeenAndCopiedAsTheyCame();
    void itFollowsTheTheme();
    void theTextIsMonospacedAndRegular();
    void scrollingToTheEndTakesATenthOfASecondAtOnePace();
    void theAnchorStandsAtTheEnd();
    void whoScrollsBackStaysThere();
    void anAnimationEndsWhenThePersonScrollsBack();
    void aNewRunIsFollowedAgain();
    void onlyTheLeftButtonHoldsTheTextStill();
    void aPressWhoseReleaseIsLostEnds();
    void newTextIsNotSelected();
    void aRunShowsWhatIsPosted();
    void aRunThatCannotBeShowsNothing();
    void aSnippetThatCannotRunIsTold();
};

void OutputViewTest::anEmptyPageSaysSo()
{
    Fixture fixture;
    QCOMPARE(fixture.text().text(), u"No output"_s);
    QCOMPARE(fixture.view->output(), QString());
    QCOMPARE(fixture.text().textLayout().font().pixelSize(), 12);
    fixture.post(QString());
    QCOMPARE(fixture.text().text(), u"No output"_s);
    fixture.post(u"No output"_s);
    QCOMPARE(fixture.view->output(), u"No output"_s);
    fixture.post(u"!"_s);
    QCOMPARE(fixture.text().text(), u"No output!"_s);
}

void OutputViewTest::textsComeInOrderAndThePageEndsScrolledDown()
{
    Fixture fixture;
    fixture.post(manyLines);
    // Not before the main queue's turn.
    QCOMPARE(fixture.text().verticalScrollBar()->value(), 0);
    fixture.post(u"첫째 "_s);
    fixture.post(u"둘째"_s);
    QCOMPARE(fixture.view->output(), manyLines + u"첫째 둘째"_s);
    QTRY_VERIFY(fixture.isAtEnd());
    QVERIFY(fixture.text().verticalScrollBar()->maximum() > 0);
    fixture.post(manyLines);
    QVERIFY(!fixture.isAtEnd());
    QTRY_VERIFY(fixture.isAtEnd());
}

void OutputViewTest::whatIsNoTextIsPassedOver_data()
{
    QTest::addColumn<QVariant>("object");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("number") << QVariant(3);
    QTest::newRow("bytes") << QVariant(QByteArray("bytes"));
    QTest::newRow("URL") << QVariant(QUrl(u"file:///x"_s));
    QTest::newRow("list") << QVariant(QStringList{u"text"_s});
}

void OutputViewTest::whatIsNoTextIsPassedOver()
{
    QFETCH(QVariant, object);
    Fixture fixture;
    fixture.app.notificationCenter.post(notifications::codeOutput, object);
    QCOMPARE(fixture.view->output(), QString());
}

void OutputViewTest::clearingBeginsAnew()
{
    Fixture fixture;
    fixture.post(manyLines);
    fixture.clear();
    QCOMPARE(fixture.text().text(), u"No output"_s);
    fixture.post(u"new"_s);
    QCOMPARE(fixture.view->output(), u"new"_s);
    // The placeholder's colour is gone with it.
    QVERIFY(fixture.text().storage().foreground().runsIn({0, 3}).empty());
}

void OutputViewTest::theEndOfALongOutputIsKept()
{
    Fixture fixture;
    const QString mebibyte = u"0123456789abcde\n"_s.repeated(1 << 16);
    for (int piece = 0; piece < 70; ++piece) {
        fixture.post(mebibyte);
    }
    fixture.post(u"the last line"_s);
    const QString output = fixture.view->output();
    QVERIFY(output.size() >= mostKeptUnits && output.size() <= mostKeptUnits + 2 * keptSlackUnits);
    QVERIFY2(output.startsWith(u"[The first 6.0 MiB were let go.]\n0123456789abcde\n"_s), qPrintable(output.left(60)));
    QVERIFY(output.endsWith(u"\nthe last line"_s));
    QTRY_VERIFY(fixture.isAtEnd());
    fixture.clear();
    fixture.post(u"new"_s);
    QCOMPARE(fixture.view->output(), u"new"_s);
}

void OutputViewTest::itHearsNothingWhenItIsGone()
{
    Fixture fixture;
    fixture.post(manyLines);
    fixture.view.reset();
    fixture.post(u"lost"_s);
    fixture.view = std::make_unique<OutputView>(fixture.app.notificationCenter, fixture.themes);
    QCOMPARE(fixture.view->output(), QString());
    QCoreApplication::processEvents();
}

void OutputViewTest::textCanBeSelectedAndCopiedButNotChanged()
{
    Fixture fixture;
    fixture.post(u"some text"_s);
    fixture.text().setFocus();
    QTest::keyClicks(&fixture.text(), u"x"_s);
    QTest::keyClick(&fixture.text(), Qt::Key_Backspace);
    QCOMPARE(fixture.view->output(), u"some text"_s);
    QTest::keyClick(&fixture.text(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&fixture.text(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"some text"_s);
    fixture.post(u" more"_s);
    QCOMPARE(fixture.text().selectedRange(), (TextRange{0, 9}));
}

void OutputViewTest::controlCharactersAreSeenAndCopiedAsTheyCame()
{
    Fixture fixture;
    const QString text = u"\x1b[31mred\x1b[0m \a\b\u009b2J\u007f end"_s + QChar(0) + u"\v"_s;
    fixture.post(text);
    QCOMPARE(fixture.view->output(), text);
    TextLayout& layout = fixture.text().textLayout();
    for (qsizetype offset = 0; offset < text.size(); ++offset) {
        // Each takes its place of one letter, and none covers what follows.
        const qreal width = layout.caretRect({offset + 1, true}).x() - layout.caretRect({offset, true}).x();
        QVERIFY2(std::abs(width - layout.advance()) < 0.5, qPrintable(QString::number(offset)));
    }
    // The first one stands on a ground of its own, which fills its place as no box would.
    const QImage picture = fixture.text().viewport()->grab().toImage();
    const QRect cell(12, 9, int(layout.advance()), int(layout.rowHeight()) - 2);
    int changed = 0;
    for (int y = cell.top(); y <= cell.bottom(); ++y) {
        for (int x = cell.left(); x <= cell.right(); ++x) {
            changed += picture.pixelColor(x, y).rgb() != fixture.text().colors().background.rgb() ? 1 : 0;
        }
    }
    QVERIFY2(changed * 10 > cell.width() * cell.height() * 9, qPrintable(QString::number(changed)));
    fixture.text().setFocus();
    QTest::keyClick(&fixture.text(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&fixture.text(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), text);
}

void OutputViewTest::itFollowsTheTheme()
{
    Fixture fixture;
    // The ring of the keyboard has a colour of its own.
    fixture.text().clearFocus();
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        fixture.themes.setCurrentTheme(theme);
        QCOMPARE(fixture.text().colors().background, theme.backgroundColor.toColor());
        QCOMPARE(fixture.text().colors().text, theme.textColor.toColor());
        QCOMPARE(fixture.view->grab().toImage().pixelColor(0, 0).rgb(), theme.backgroundColor.toColor().rgb());
        const auto runs = fixture.text().storage().foreground().runsIn({0, 9});
        QCOMPARE(runs.size(), std::size_t(1));
        QCOMPARE(runs.front().color & 0xffffffU >> 8U, theme.textColor.toColor().rgba() & 0xffffffU >> 8U);
    }
}

void OutputViewTest::theTextIsMonospacedAndRegular()
{
    Fixture fixture;
    fixture.post(u"text"_s);
    const QFont& font = fixture.text().textLayout().font();
    QCOMPARE(font.pixelSize(), 12);
    QCOMPARE(font.weight(), int(QFont::Normal));
    QVERIFY(!font.italic());
    const QFontMetricsF metrics(font);
    QCOMPARE(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'W'));
}

void OutputViewTest::scrollingToTheEndTakesATenthOfASecondAtOnePace()
{
    Fixture fixture;
    const QVariantAnimation& animation = fixture.view->scrollAnimation();
    QCOMPARE(animation.duration(), 100);
    QCOMPARE(animation.easingCurve().type(), QEasingCurve::Linear);
    QCOMPARE(animation.state(), QAbstractAnimation::Stopped);
    QSignalSpy changes(&animation, &QAbstractAnimation::stateChanged);
    fixture.post(manyLines);
    QCOMPARE(changes.count(), 0);
    QTRY_COMPARE(changes.count(), 2);
    QVERIFY(fixture.isAtEnd());
}

void OutputViewTest::theAnchorStandsAtTheEnd()
{
    Fixture fixture;
    auto* anchor = fixture.view->findChild<QWidget*>(u"outputBottom"_s);
    QVERIFY(anchor != nullptr);
    fixture.post(manyLines);
    QTRY_VERIFY(fixture.isAtEnd());
    QTRY_COMPARE(anchor->geometry().bottom(), fixture.text().viewport()->height() - 1);
    QCOMPARE(anchor->height(), 1);
    QCOMPARE(anchor->width(), fixture.text().viewport()->width());
    fixture.text().scrollToY(0);
    QVERIFY(anchor->y() > fixture.text().viewport()->height());
}

void OutputViewTest::whoScrollsBackStaysThere()
{
    Fixture fixture;
    fixture.post(manyLines);
    QTRY_VERIFY(fixture.isAtEnd());
    QTest::qWait(120);
    fixture.turnWheel(240);
    const int place = fixture.text().verticalScrollBar()->value();
    QVERIFY(!fixture.isAtEnd());
    fixture.post(manyLines);
    QTest::qWait(120);
    QCOMPARE(fixture.text().verticalScrollBar()->value(), place);
    while (!fixture.isAtEnd()) {
        fixture.turnWheel(-1200);
    }
    fixture.post(manyLines);
    QVERIFY(!fixture.isAtEnd());
    QTRY_VERIFY(fixture.isAtEnd());
}

void OutputViewTest::anAnimationEndsWhenThePersonScrollsBack()
{
    Fixture fixture;
    fixture.post(manyLines);
    QTRY_VERIFY(fixture.text().verticalScrollBar()->value() > 40);
    fixture.turnWheel(120);
    const int place = fixture.text().verticalScrollBar()->value();
    QTest::qWait(150);
    QCOMPARE(fixture.text().verticalScrollBar()->value(), place);
}

void OutputViewTest::aNewRunIsFollowedAgain()
{
    Fixture fixture;
    fixture.post(manyLines);
    QTRY_VERIFY(fixture.isAtEnd());
    fixture.turnWheel(240);
    fixture.clear();
    fixture.post(manyLines);
    QTRY_VERIFY(fixture.isAtEnd());
}

void OutputViewTest::onlyTheLeftButtonHoldsTheTextStill()
{
    Fixture fixture;
    fixture.post(manyLines);
    QTRY_VERIFY(fixture.isAtEnd());
    // A menu takes the release.
    fixture.sendMouse(QEvent::MouseButtonPress, Qt::RightButton, Qt::RightButton);
    fixture.post(manyLines);
    QVERIFY(!fixture.isAtEnd());
    fixture.waitForTheEnd();
    // The second press of a double click may begin a drag.
    fixture.sendMouse(QEvent::MouseButtonDblClick, Qt::LeftButton, Qt::LeftButton);
    const int place = fixture.text().verticalScrollBar()->value();
    fixture.post(manyLines);
    fixture.sendMouse(QEvent::MouseButtonRelease, Qt::RightButton, Qt::LeftButton);
    QTest::qWait(150);
    QCOMPARE(fixture.text().verticalScrollBar()->value(), place);
    fixture.sendMouse(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    QTRY_VERIFY(fixture.isAtEnd());
}

void OutputViewTest::aPressWhoseReleaseIsLostEnds()
{
    Fixture fixture;
    fixture.post(manyLines);
    fixture.waitForTheEnd();
    fixture.sendMouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    fixture.post(manyLines);
    QTest::qWait(150);
    QVERIFY(!fixture.isAtEnd());
    fixture.sendMouse(QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
    fixture.waitForTheEnd();
    fixture.sendMouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    fixture.view->hide();
    fixture.view->show();
    fixture.post(manyLines);
    QTRY_VERIFY(fixture.isAtEnd());
}

void OutputViewTest::newTextIsNotSelected()
{
    Fixture fixture;
    fixture.post(manyLines);
    fixture.text().selectAll();
    fixture.clear();
    QVERIFY(!fixture.text().editor().selections().hasText());
    fixture.post(u"a new run"_s);
    QVERIFY(!fixture.text().editor().selections().hasText());
    // Nor where the placeholder was selected.
    fixture.clear();
    fixture.text().selectAll();
    fixture.post(u"a new run"_s);
    QVERIFY(!fixture.text().editor().selections().hasText());
}

void OutputViewTest::aRunShowsWhatIsPosted()
{
    Fixture fixture;
    fixture.app.state.openSnippet(u"echo 안녕; echo wrong >&2; exit 3"_s, Language::shell, std::nullopt);
    fixture.run();
    // Both outputs come by pipes of their own.
    const QString end = u"\n\nProcess exited with code 3\n"_s;
    QVERIFY(fixture.view->output() == u"안녕\n[ERROR] wrong\n"_s + end ||
            fixture.view->output() == u"[ERROR] wrong\n안녕\n"_s + end);
    // The next run begins anew.
    fixture.app.state.openSnippet(u"true"_s, Language::shell, std::nullopt);
    fixture.run();
    QCOMPARE(fixture.view->output(), u"\n\nProcess exited with code 0\n"_s);
}

void OutputViewTest::aRunThatCannotBeShowsNothing()
{
    Fixture fixture;
    fixture.post(u"old"_s);
    fixture.app.state.openFile(fixture.app.write(u"a.sql"_s, "select 1"));
    fixture.run();
    QCOMPARE(fixture.text().text(), u"No output"_s);
}

void OutputViewTest::aSnippetThatCannotRunIsTold()
{
    Fixture fixture;
    fixture.post(u"old"_s);
    fixture.app.openTabs({u"prose"_s});
    fixture.run();
    QCOMPARE(fixture.view->output(), u"Error: language 'Plain Text' is not runnable."_s);
}

const kelm::test::Registered<OutputViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace output_view_test

#include "output_view_test.moc"
