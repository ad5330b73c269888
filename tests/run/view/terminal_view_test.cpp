#include "run/view/terminal_page.h"
#include "support/roles.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>

namespace terminal_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Quits while a command runs and keys wait for it.
int quitWhileRunning(const QStringList& /*arguments*/)
{
    TerminalPage page;
    page.showBanner();
    QTimer::singleShot(0, page.view.get(), [&page] {
        page.onceRunning(
            [&page] {
                page.type(QStringLiteral("waiting"));
                QCoreApplication::quit();
            },
            QStringLiteral("started\n"));
        page.run(QStringLiteral("echo started; sleep 60"));
    });
    return QCoreApplication::exec();
}

/// Quits while the first of two lines runs that were pasted; both lines say in a file that they were begun.
int quitBeforeTheRest(const QStringList& arguments)
{
    TerminalPage page;
    page.showBanner();
    const QString file = arguments.first();
    QTimer::singleShot(0, page.view.get(), [&page, file] {
        page.onceRunning([] { QCoreApplication::quit(); }, QStringLiteral("started\n"));
        QGuiApplication::clipboard()->setText(
            QStringLiteral("echo first >> '%1'; echo started; sleep 60\necho second >> '%1'\n").arg(file));
        page.press(Qt::Key_V, Qt::ControlModifier);
    });
    return QCoreApplication::exec();
}

/// Quits while a line runs that was typed ahead, with another one behind it.
int quitBeforeWhatWasTypedAhead(const QStringList& arguments)
{
    TerminalPage page;
    page.showBanner();
    const QString file = arguments.first();
    QTimer::singleShot(0, page.view.get(), [&page, file] {
        page.onceRunning(
            [&page, file] {
                page.onceRunning([] { QCoreApplication::quit(); }, QStringLiteral("started\n"));
                page.run(QStringLiteral("echo first >> '%1'; echo started; sleep 60").arg(file));
                page.run(QStringLiteral("echo second >> '%1'").arg(file));
            },
            QStringLiteral("ready\n"));
        page.run(QStringLiteral("echo ready; sleep 0.2"));
    });
    return QCoreApplication::exec();
}

} // namespace

class TerminalViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itHasOneSessionForItsLife();
    void theRepresentableTiesViewAndSession();
    void itIsBlackToAllEdges();
    void exitPutsTheBottomPanelAway();
    void itGivesTheKeyboardToItsText();
    void runFileReachesTheSession();
    void charactersWrittenByteByByteArriveWhole();
    void invalidBytesDropTheirChunkAndNothingElse();
    void quittingDoesNotWaitForACommand();
    void quittingBeginsNothing_data();
    void quittingBeginsNothing();
};

void TerminalViewTest::itHasOneSessionForItsLife()
{
    TerminalPage page;
    const QUuid id = page.session().id();
    page.view->hide();
    page.view->show();
    QCOMPARE(page.session().id(), id);
    const QPointer<TerminalSession> session(&page.session());
    page.view.reset();
    QVERIFY(!session);
    // Nothing is left that would write the banner.
    page.app.scheduler.advance(std::chrono::seconds(1));
}

void TerminalViewTest::theRepresentableTiesViewAndSession()
{
    QWidget parent;
    TerminalSession session({Scheduler::system(), NotificationCenter::shared()});
    const TerminalViewRepresentable representable(session);
    TerminalTextView* view = representable.makeView(&parent);
    QCOMPARE(view->parentWidget(), &parent);
    QCOMPARE(view->session(), &session);
    QVERIFY(session.textView() == view);
    view->appendText(u"text"_s, plainColors::white);
    representable.updateView();
    QCOMPARE(view->text(), u"text"_s);
    delete view;
    QVERIFY(session.textView() == nullptr);
}

void TerminalViewTest::itIsBlackToAllEdges()
{
    TerminalPage page;
    const QImage picture = page.view->grab().toImage();
    for (const QPoint corner : {QPoint(0, 0), QPoint(picture.width() - 1, 0), QPoint(0, picture.height() - 1),
                                QPoint(picture.width() - 1, picture.height() - 1)}) {
        QCOMPARE(picture.pixelColor(corner), plainColors::black);
    }
}

void TerminalViewTest::exitPutsTheBottomPanelAway()
{
    TerminalPage page;
    page.showBanner();
    page.app.state.setShowBottomPanel(true);
    page.run(u"exit"_s);
    QVERIFY(!page.app.state.showBottomPanel());
    QCOMPARE(page.written(), u"exit"_s + page.prompt());
}

void TerminalViewTest::itGivesTheKeyboardToItsText()
{
    TerminalPage page;
    page.text().clearFocus();
    page.view->setFocus();
    QVERIFY(page.text().hasFocus());
}

void TerminalViewTest::runFileReachesTheSession()
{
    TerminalPage page;
    page.showBanner();
    page.makeFile(u"a b.sh"_s);
    page.app.notificationCenter.post(notifications::runFile, QUrl::fromLocalFile(page.path(u"a b.sh"_s)));
    QCOMPARE(page.session().commandHistory(), QStringList{u"bash \""_s + page.path(u"a b.sh"_s) + u'"'});
    QCOMPARE(page.written(), page.prompt());
}

void TerminalViewTest::charactersWrittenByteByByteArriveWhole()
{
    TerminalPage page;
    page.showBanner();
    // U+D55C and an emoji.
    page.run(u"for b in 355 225 234 360 237 230 200; do printf \"\\\\$b\"; sleep 0.02; done; echo"_s);
    QVERIFY(page.written().contains(u"한😀\n"_s));
}

void TerminalViewTest::invalidBytesDropTheirChunkAndNothingElse()
{
    TerminalPage page;
    page.showBanner();
    page.run(u"printf before; sleep 0.1; printf 'bad\\377'; sleep 0.1; printf after"_s);
    QVERIFY(page.written().endsWith(u"beforeafter"_s + page.prompt()));
}

void TerminalViewTest::quittingDoesNotWaitForACommand()
{
    // The command would take longer than the program is waited for.
    QCOMPARE(runRole(u"quit-while-running"_s, {}), 0);
}

void TerminalViewTest::quittingBeginsNothing_data()
{
    QTest::addColumn<QString>("role");
    QTest::newRow("that was pasted") << u"quit-before-the-rest"_s;
    QTest::newRow("that was typed ahead") << u"quit-before-what-was-typed-ahead"_s;
}

void TerminalViewTest::quittingBeginsNothing()
{
    QFETCH(QString, role);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"begun"_s));
    QCOMPARE(runRole(role, {file.fileName()}), 0);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("first\n"));
}

const kelm::test::Registered<TerminalViewTest>
    registered(kelm::test::Toolkit::widgets, {{u"quit-while-running"_s, quitWhileRunning},
                                              {u"quit-before-the-rest"_s, quitBeforeTheRest},
                                              {u"quit-before-what-was-typed-ahead"_s, quitBeforeWhatWasTypedAhead}});

} // namespace terminal_view_test

#include "terminal_view_test.moc"
