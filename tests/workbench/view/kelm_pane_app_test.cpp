#include "app/state/app_state.h"
#include "app/state/notices.h"
#include "editor/view/editor_container_view.h"
#include "platform/events/open_request.h"
#include "platform/style/view/style.h"
#include "support/test_program.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"
#include "workbench/view/menu_bar.h"

#include <QFile>
#include <QFileInfo>
#include <QFileOpenEvent>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QtTest>

namespace kelm_pane_app_test {

using namespace kelm;

/// The application is one for the process, so the cases follow on each other and take what state they find.
class KelmPaneAppTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void theStartOpensWhatTheCommandLineNames();
    void aStartWithoutArgumentsShowsTheWelcome();
    void aFileThatTheSystemHandsOverOpens();
    void aFolderThatTheSystemHandsOverBecomesTheProject();
    void aFolderOpensNoTab();
    void theProcessStaysWhenItsWindowIsClosed();
    void quittingAsksAndWritesNothing();
    void aLinkOpensBeforeThereIsAWindow();
    void anAddressThatIsNoFileIsNoProject();
    void themeAndAppearanceGoTogether();
    void theStartTakesTheAppearanceOfTheTheme();
    void anotherStartBringsTheWindowBack();
    void aGoodLinkBringsTheWindowAndABadOneDoesNot();
    void veryManyFilesOpenInTheirOrder();
    void aFileOpensAtItsLine_data();
    void aFileOpensAtItsLine();
    void eachOfSeveralFilesOpensAtItsLine();
    void aLineOfAFileThatIsOpenIsShown();
    void aStartCanAskForANewFile();

private:
    QString write(const QString& name)
    {
        QFile file(folder_.filePath(name));
        const bool isOpen = file.open(QIODevice::WriteOnly);
        return isOpen && file.write("text") == 4 ? file.fileName() : QString();
    }

    /// What a start with these arguments asks for, each a path or a URL as it stands.
    static openRequest::Request requestOf(const QStringList& arguments)
    {
        openRequest::Request request{QUuid::createUuid()};
        for (const QString& argument : arguments) {
            const QString path = QFileInfo(argument).isDir() ? argument + u'/' : argument;
            const bool isURL = argument.contains(QStringLiteral("://"));
            request.items.append(isURL ? argument : QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded));
        }
        return request;
    }

    QTemporaryDir folder_;
};

void KelmPaneAppTest::initTestCase()
{
    style::installOn(*qApp);
}

void KelmPaneAppTest::init()
{
    AppState::shared().setDocuments({});
    AppState::shared().setCurrentDocumentIndex(0);
    AppState::shared().setCurrentProject(std::nullopt);
}

void KelmPaneAppTest::theStartOpensWhatTheCommandLineNames()
{
    KelmPaneApp app;
    app.start(requestOf({write(QStringLiteral("a.txt")), folder_.path(), write(QStringLiteral("b.txt"))}));
    QVERIFY(app.window().isVisible());
    const AppState& state = AppState::shared();
    QCOMPARE(state.documents().size(), 2);
    QCOMPARE(state.currentDocument()->title(), QStringLiteral("b.txt"));
    QCOMPARE(state.currentProject()->toLocalFile(), folder_.path() + u'/');
    QCOMPARE(app.window().editorArea().currentEditor()->text(), QStringLiteral("text"));
}

void KelmPaneAppTest::aStartWithoutArgumentsShowsTheWelcome()
{
    KelmPaneApp app;
    app.start(requestOf({}));
    QVERIFY(app.window().isVisible());
    QCOMPARE(app.window().windowTitle(), QStringLiteral("KelmWright"));
    QCOMPARE(app.window().objectName(), QStringLiteral("main"));
    QCOMPARE(app.window().windowRole(), QStringLiteral("main"));
    QVERIFY(AppState::shared().documents().isEmpty());
    QVERIFY(app.window().editorArea().currentEditor() == nullptr);
}

void KelmPaneAppTest::aFileThatTheSystemHandsOverOpens()
{
    KelmPaneApp app;
    app.start(requestOf({}));
    QFileOpenEvent event(write(QStringLiteral("한글 & name.txt")));
    QCoreApplication::sendEvent(qApp, &event);
    QCOMPARE(AppState::shared().currentDocument()->title(), QStringLiteral("한글 & name.txt"));
}

void KelmPaneAppTest::aFolderThatTheSystemHandsOverBecomesTheProject()
{
    KelmPaneApp app;
    app.start(requestOf({}));
    QFileOpenEvent event(QUrl::fromLocalFile(folder_.path() + u'/'));
    QCoreApplication::sendEvent(qApp, &event);
    QCOMPARE(AppState::shared().currentProject()->toLocalFile(), folder_.path() + u'/');
}

void KelmPaneAppTest::aFolderOpensNoTab()
{
    KelmPaneApp app;
    app.start(requestOf({folder_.path()}));
    QVERIFY(AppState::shared().documents().isEmpty());
    QVERIFY(AppState::shared().currentProject().has_value());
}

void KelmPaneAppTest::theProcessStaysWhenItsWindowIsClosed()
{
    KelmPaneApp app;
    app.start(requestOf({write(QStringLiteral("a.txt"))}));
    const QSignalSpy quitting(qApp, &QCoreApplication::aboutToQuit);
    app.window().close();
    QCoreApplication::processEvents();
    QVERIFY(!QGuiApplication::quitOnLastWindowClosed());
    QCOMPARE(quitting.count(), 0);
    QCOMPARE(AppState::shared().documents().size(), 1);
}

void KelmPaneAppTest::quittingAsksAndWritesNothing()
{
    KelmPaneApp app;
    const QString file = write(QStringLiteral("a.txt"));
    app.start(requestOf({file}));
    AppState::shared().currentDocument()->setContent(QStringLiteral("not saved"));
    bool isAsked = false;
    QTimer::singleShot(0, &app, [&] {
        menuAction(*app.window().menuBar(), Command::quit)->trigger();
        isAsked = QApplication::activeModalWidget() != nullptr;
    });
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(!isAsked);
    QVERIFY(AppState::shared().currentDocument()->isModified());
    QFile kept(file);
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("text"));
}

void KelmPaneAppTest::aLinkOpensBeforeThereIsAWindow()
{
    AppDelegate delegate;
    delegate.open({openRequest::Item(QStringLiteral("kelmpane://open?code=YWI="))});
    const AppState& state = AppState::shared();
    QTRY_COMPARE(state.documents().size(), 1);
    QCOMPARE(state.currentDocument()->content(), QStringLiteral("ab"));
}

void KelmPaneAppTest::anAddressThatIsNoFileIsNoProject()
{
    KelmPaneApp app;
    app.start(requestOf({QStringLiteral("https://x/"), QStringLiteral("https://x/tmp/")}));
    QVERIFY(!AppState::shared().currentProject());
    QVERIFY(AppState::shared().documents().isEmpty());
    QVERIFY(AppState::shared().notices().current() != nullptr);
    AppState::shared().notices().putAway();
}

void KelmPaneAppTest::anotherStartBringsTheWindowBack()
{
    KelmPaneApp app;
    app.start(requestOf({}));
    app.window().close();
    app.openFromOutside(requestOf({}));
    QVERIFY(app.window().isVisible());
    app.window().close();
    app.openFromOutside(requestOf({QUrl::fromLocalFile(write(QStringLiteral("a.txt"))).toString()}));
    QVERIFY(app.window().isVisible());
    QCOMPARE(AppState::shared().currentDocument()->title(), QStringLiteral("a.txt"));
}

void KelmPaneAppTest::aGoodLinkBringsTheWindowAndABadOneDoesNot()
{
    KelmPaneApp app;
    app.start(requestOf({}));
    app.window().close();
    app.openFromOutside(
        requestOf({QStringLiteral("kelmpane://open?code=!!"), QStringLiteral("kelmpane://close?code=YQ==")}));
    QCoreApplication::processEvents();
    QVERIFY(!app.window().isVisible());
    QVERIFY(AppState::shared().documents().isEmpty());
    app.openFromOutside(requestOf({QStringLiteral("kelmpane://open?code=YQ==&learnSlug=intro")}));
    QTRY_VERIFY(app.window().isVisible());
    QCOMPARE(AppState::shared().currentDocument()->content(), QStringLiteral("a"));
    QVERIFY(app.window().lessonPanel() != nullptr);
    AppState::shared().createNewTab();
    QVERIFY(app.window().lessonPanel() == nullptr);
    AppState::shared().setCurrentDocumentIndex(0);
    QVERIFY(app.window().lessonPanel() != nullptr);
}

void KelmPaneAppTest::themeAndAppearanceGoTogether()
{
    KelmPaneApp app;
    app.start(requestOf({}));
    ThemeManager& themes = ThemeManager::shared();
    for (const EditorTheme& theme : {EditorTheme::githubLight(), EditorTheme::monokai()}) {
        themes.setCurrentTheme(theme);
        themes.applyAppearance();
        QTRY_COMPARE(style::appearanceOf(app.window()) == Appearance::dark, theme.isDark);
    }
}

void KelmPaneAppTest::theStartTakesTheAppearanceOfTheTheme()
{
    ThemeManager& themes = ThemeManager::shared();
    for (const EditorTheme& theme : {EditorTheme::githubLight(), EditorTheme::monokai()}) {
        themes.setCurrentTheme(theme);
        KelmPaneApp app;
        app.start(requestOf({}));
        QTRY_COMPARE(style::appearanceOf(app.window()) == Appearance::dark, theme.isDark);
    }
}

void KelmPaneAppTest::veryManyFilesOpenInTheirOrder()
{
    KelmPaneApp app;
    app.start(requestOf({}));
    QStringList names;
    QStringList urlTexts;
    for (int number = 0; number < 170; ++number) {
        names << QStringLiteral("many%1.txt").arg(number);
        urlTexts << QUrl::fromLocalFile(write(names.last())).toString(QUrl::FullyEncoded);
    }
    const AppState& state = AppState::shared();
    app.openFromOutside(requestOf(urlTexts));
    // The window goes on before all of them are open; what is handed over meanwhile comes behind them.
    QVERIFY(state.documents().size() < names.size());
    names << QStringLiteral("last.txt");
    app.openFromOutside(requestOf({QUrl::fromLocalFile(write(names.last())).toString(QUrl::FullyEncoded)}));
    QTRY_COMPARE(state.documents().size(), names.size());
    for (qsizetype index = 0; index < names.size(); ++index) {
        QCOMPARE(state.documents()[index]->title(), names[index]);
    }
    QCOMPARE(state.currentDocument()->title(), QStringLiteral("last.txt"));
    QVERIFY(state.recentFiles().first().path().endsWith(QStringLiteral("last.txt")));
}

void KelmPaneAppTest::aFileOpensAtItsLine_data()
{
    QTest::addColumn<quint32>("line");
    QTest::addColumn<quint32>("column");
    QTest::addColumn<qsizetype>("offset");
    QTest::newRow("a line") << 500U << 0U << qsizetype(499 * 4);
    QTest::newRow("a column") << 500U << 3U << qsizetype(499 * 4 + 2);
    QTest::newRow("beyond the end") << 99'999U << 1U << qsizetype(4000);
}

void KelmPaneAppTest::aFileOpensAtItsLine()
{
    QFETCH(quint32, line);
    QFETCH(quint32, column);
    QFETCH(qsizetype, offset);
    QFile file(folder_.filePath(QStringLiteral("lines.txt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("abc\n").repeated(1000));
    file.close();
    KelmPaneApp app;
    app.start({{}, {{QUrl::fromLocalFile(file.fileName()).toString(), line, column}}});
    EditorContainerView* editor = app.window().editorArea().currentEditor();
    QTRY_COMPARE(editor->textView().selectedRange().location, offset);
    const auto caret = [&] { return editor->textView().caretRect({offset, false}).center(); };
    // It is there once the window has got its size.
    QTRY_VERIFY(editor->textView().viewport()->rect().toRectF().contains(caret()));
    QTRY_COMPARE(AppState::shared().currentDocument()->cursorPosition().line, std::min<qsizetype>(line, 1001));
}

void KelmPaneAppTest::eachOfSeveralFilesOpensAtItsLine()
{
    QStringList urls;
    for (const QString& name : {QStringLiteral("one.txt"), QStringLiteral("two.txt")}) {
        QFile file(folder_.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("a\nb\nc\n");
        urls.append(QUrl::fromLocalFile(file.fileName()).toString());
    }
    KelmPaneApp app;
    app.start({{}, {{urls[0], 2}, {urls[1], 3}}});
    AppState& state = AppState::shared();
    QTRY_COMPARE(app.window().editorArea().currentEditor()->textView().selectedRange().location, 4);
    state.setCurrentDocumentIndex(0);
    QTRY_COMPARE(app.window().editorArea().currentEditor()->textView().selectedRange().location, 2);
    // Once only.
    app.window().editorArea().currentEditor()->textView().setSelectedRange({0, 0});
    state.setCurrentDocumentIndex(1);
    state.setCurrentDocumentIndex(0);
    QCoreApplication::processEvents();
    QCOMPARE(app.window().editorArea().currentEditor()->textView().selectedRange().location, 0);
}

void KelmPaneAppTest::aLineOfAFileThatIsOpenIsShown()
{
    KelmPaneApp app;
    const QString file = write(QStringLiteral("a.txt"));
    app.start(requestOf({file}));
    app.openFromOutside({{}, {{QUrl::fromLocalFile(file).toString(), 1, 3}}});
    QTRY_COMPARE(app.window().editorArea().currentEditor()->textView().selectedRange().location, 2);
    QCOMPARE(AppState::shared().documents().size(), 1);
}

void KelmPaneAppTest::aStartCanAskForANewFile()
{
    KelmPaneApp app;
    app.start({{}, {openRequest::Item({}, 0, 0, openRequest::Item::Kind::newFile)}});
    const AppState& state = AppState::shared();
    QCOMPARE(state.documents().size(), 1);
    QCOMPARE(state.currentDocument()->title(), QStringLiteral("Untitled"));
    QVERIFY(!state.currentDocument()->fileURL());
    QVERIFY(!state.currentProject());
}

const kelm::test::Registered<KelmPaneAppTest> registered(kelm::test::Toolkit::widgets);

} // namespace kelm_pane_app_test

#include "kelm_pane_app_test.moc"
