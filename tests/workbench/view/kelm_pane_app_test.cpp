#include "app/state/app_state.h"
#include "editor/view/editor_container_view.h"
#include "platform/style/view/style.h"
#include "support/test_program.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/kelm_pane_app.h"
#include "workbench/view/main_window.h"

#include <QFile>
#include <QFileOpenEvent>
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
    void themeAndAppearanceGoTogether();
    void theStartTakesTheAppearanceOfTheTheme();
    void anotherStartBringsTheWindowBack();
    void aGoodLinkBringsTheWindowAndABadOneDoesNot();
    void veryManyFilesOpenInTheirOrder();

private:
    QString write(const QString& name)
    {
        QFile file(folder_.filePath(name));
        const bool isOpen = file.open(QIODevice::WriteOnly);
        return isOpen && file.write("text") == 4 ? file.fileName() : QString();
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
    app.start({write(QStringLiteral("a.txt")), folder_.path(), write(QStringLiteral("b.txt"))});
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
    app.start({});
    QVERIFY(app.window().isVisible());
    QVERIFY(AppState::shared().documents().isEmpty());
    QVERIFY(app.window().editorArea().currentEditor() == nullptr);
}

void KelmPaneAppTest::aFileThatTheSystemHandsOverOpens()
{
    KelmPaneApp app;
    app.start({});
    QFileOpenEvent event(write(QStringLiteral("한글 & name.txt")));
    QCoreApplication::sendEvent(qApp, &event);
    QCOMPARE(AppState::shared().currentDocument()->title(), QStringLiteral("한글 & name.txt"));
}

void KelmPaneAppTest::aFolderThatTheSystemHandsOverBecomesTheProject()
{
    KelmPaneApp app;
    app.start({});
    QFileOpenEvent event(QUrl::fromLocalFile(folder_.path() + u'/'));
    QCoreApplication::sendEvent(qApp, &event);
    QCOMPARE(AppState::shared().currentProject()->toLocalFile(), folder_.path() + u'/');
}

void KelmPaneAppTest::aFolderOpensNoTab()
{
    KelmPaneApp app;
    app.start({folder_.path()});
    QVERIFY(AppState::shared().documents().isEmpty());
    QVERIFY(AppState::shared().currentProject().has_value());
}

void KelmPaneAppTest::theProcessStaysWhenItsWindowIsClosed()
{
    KelmPaneApp app;
    app.start({write(QStringLiteral("a.txt"))});
    const QSignalSpy quitting(qApp, &QCoreApplication::aboutToQuit);
    app.window().close();
    QCoreApplication::processEvents();
    QVERIFY(!QGuiApplication::quitOnLastWindowClosed());
    QCOMPARE(quitting.count(), 0);
    QCOMPARE(AppState::shared().documents().size(), 1);
}

void KelmPaneAppTest::anotherStartBringsTheWindowBack()
{
    KelmPaneApp app;
    app.start({});
    app.window().close();
    app.openFromOutside({});
    QVERIFY(app.window().isVisible());
    app.window().close();
    app.openFromOutside({QUrl::fromLocalFile(write(QStringLiteral("a.txt"))).toString()});
    QVERIFY(app.window().isVisible());
    QCOMPARE(AppState::shared().currentDocument()->title(), QStringLiteral("a.txt"));
}

void KelmPaneAppTest::aGoodLinkBringsTheWindowAndABadOneDoesNot()
{
    KelmPaneApp app;
    app.start({});
    app.window().close();
    app.openFromOutside({QStringLiteral("kelmpane://open?code=!!"), QStringLiteral("kelmpane://close?code=YQ==")});
    QCoreApplication::processEvents();
    QVERIFY(!app.window().isVisible());
    QVERIFY(AppState::shared().documents().isEmpty());
    app.openFromOutside({QStringLiteral("kelmpane://open?code=YQ==&learnSlug=intro")});
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
    app.start({});
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
        app.start({});
        QTRY_COMPARE(style::appearanceOf(app.window()) == Appearance::dark, theme.isDark);
    }
}

void KelmPaneAppTest::veryManyFilesOpenInTheirOrder()
{
    KelmPaneApp app;
    app.start({});
    QStringList names;
    QStringList urlTexts;
    for (int number = 0; number < 170; ++number) {
        names << QStringLiteral("many%1.txt").arg(number);
        urlTexts << QUrl::fromLocalFile(write(names.last())).toString(QUrl::FullyEncoded);
    }
    const AppState& state = AppState::shared();
    app.openFromOutside(urlTexts);
    // The window goes on before all of them are open; what is handed over meanwhile comes behind them.
    QVERIFY(state.documents().size() < names.size());
    names << QStringLiteral("last.txt");
    app.openFromOutside({QUrl::fromLocalFile(write(names.last())).toString(QUrl::FullyEncoded)});
    QTRY_COMPARE(state.documents().size(), names.size());
    for (qsizetype index = 0; index < names.size(); ++index) {
        QCOMPARE(state.documents()[index]->title(), names[index]);
    }
    QCOMPARE(state.currentDocument()->title(), QStringLiteral("last.txt"));
    QVERIFY(state.recentFiles().first().path().endsWith(QStringLiteral("last.txt")));
}

const kelm::test::Registered<KelmPaneAppTest> registered(kelm::test::Toolkit::widgets);

} // namespace kelm_pane_app_test

#include "kelm_pane_app_test.moc"
