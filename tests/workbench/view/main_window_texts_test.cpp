#include "app/state/notices.h"
#include "learning/lesson_info.h"
#include "settings/view/settings_view.h"
#include "support/test_program.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/all_texts.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/controls.h"
#include "workbench/view/notice_bar.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/tab_item_view.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QClipboard>
#include <QDir>
#include <QLineEdit>
#include <QRegularExpression>

namespace main_window_texts_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A name that reads as that of a picture where its control characters have their way.
const QString hostile = u"note_\u202egpj.\u2066py"_s;
const QString hostileShown = u"note_\u27e8U+202E\u27e9gpj.\u27e8U+2066\u27e9py"_s;

struct Fixture : WindowFixture
{
    /// What all that can be shown says, one after the other.
    QStringList everythingSaid()
    {
        QStringList texts = saidNow();
        for (const QByteArray flag : {"showQuickOpen", "showSearch", "showGoToLine"}) {
            state.setSearchMode(SearchMode::replace);
            state.setProperty(flag, true);
            texts += saidNow();
            state.setProperty(flag, false);
            turnQueue();
        }
        for (SidebarTab tab : SidebarTab::allCases()) {
            window.sidebar()->select(tab);
            texts += saidNow();
        }
        state.setShowBottomPanel(true);
        for (BottomPanelTab tab : BottomPanelTab::allCases()) {
            state.setBottomPanelTab(tab);
            texts += saidNow();
        }
        window.openSettings();
        texts += allTexts(*window.settings());
        state.setShowCloneDialog(true);
        texts += saidNow();
        state.setShowCloneDialog(false);
        turnQueue();
        return texts + saidInMenus();
    }

    QStringList saidNow()
    {
        turnQueue();
        return allTexts(window);
    }

    /// The menus that are made when they are opened.
    QStringList saidInMenus()
    {
        QStringList texts;
        for (PlainButton* button : window.findChildren<PlainButton*>()) {
            if (!button->isVisible() || !button->isEnabled()) {
                continue;
            }
            if (QMenu* menu = openMenu(*button)) {
                addMenu(texts, *menu);
                menu->close();
                turnQueue();
            }
            button->setDown(false);
        }
        for (TabItemView* tab : window.tabBar().tabs()) {
            QMenu menu;
            tab->fillContextMenu(menu);
            addMenu(texts, menu);
        }
        if (window.editorArea().currentEditor() != nullptr) {
            const std::unique_ptr<QMenu> menu(text().makeContextMenu());
            addMenu(texts, *menu);
        }
        return texts;
    }
};

} // namespace

/// What stands anywhere in the window is in the words of its platform, and names what it names.
class MainWindowTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void keysHaveTheWordsOfTheirPlatform();
    void oneSignSaysThatMoreFollows();
    void noNameTurnsItsDirection();
    void whatWorksWithANameHasTheNameItself();
};

void MainWindowTextsTest::keysHaveTheWordsOfTheirPlatform()
{
#ifdef Q_OS_MACOS
    QSKIP("its keyboards have these signs");
#endif
    Fixture fixture;
    fixture.state.openFile(fixture.write(u"a.swift"_s, "let a = 1"));
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.path()));
    fixture.state.openSnippet(u"print(1)"_s, Language::python, LessonInfo{.slug = u"first"_s});
    const QStringList texts = fixture.everythingSaid();
    static const QRegularExpression foreign(u"[⌘⌥⇧⌃⌫⏎⎋↩]|Finder|Cmd|Command key"_s);
    for (const QString& text : texts) {
        QVERIFY2(!text.contains(foreign), qPrintable(text));
    }
    // These were looked at.
    for (const QString& known :
         {u"Undo (Ctrl+Z)"_s, u"Redo (Ctrl+Shift+Z)"_s, u"Toggle Bottom Panel (Ctrl+`)"_s, u"Show in File Manager"_s,
          u"Go to file…  (Esc / Ctrl+W to close)"_s, u"Format JSON (Ctrl+Shift+J)"_s, u"Ctrl+Shift+X"_s, u"Ctrl+."_s}) {
        QVERIFY2(texts.contains(known), qPrintable(known));
    }
}

void MainWindowTextsTest::oneSignSaysThatMoreFollows()
{
    // Commands that have had three stops from the start keep them.
    const QStringList old{
        u"Open..."_s,       u"Save As..."_s,    u"Find..."_s,         u"Find and Replace..."_s, u"Find in Project..."_s,
        u"Go to File..."_s, u"Go to Line..."_s, u"Import Theme..."_s, u"Coming soon..."_s};
    Fixture fixture;
    fixture.state.createNewTab();
    const QStringList texts = fixture.everythingSaid();
    QVERIFY(texts.contains(u"Find in Text…"_s));
    for (const QString& text : texts) {
        QVERIFY2(!text.contains(u"..."_s) || old.contains(text), qPrintable(text));
    }
}

void MainWindowTextsTest::noNameTurnsItsDirection()
{
    Fixture fixture;
    const QString folder = u"work_\u202ered\u200f"_s;
    QVERIFY(QDir(fixture.home.path()).mkpath(folder + u"/inner_\u202b"_s));
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.filePath(folder)));
    fixture.state.openFile(fixture.write(folder + u'/' + hostile, "needle"));
    fixture.state.openSnippet(u"print(1)"_s, Language::python,
                              LessonInfo{.slug = u"first"_s, .title = u"Loops\u202e!ecin"_s});
    fixture.state.openFile(QUrl::fromLocalFile(fixture.home.filePath(u"gone_\u202eexe.txt"_s)));
    QTRY_VERIFY(fixture.window.noticeBar().isVisible());
    QStringList texts = fixture.everythingSaid();
    fixture.window.sidebar()->select(SidebarTab::search);
    for (auto* field : fixture.window.sidebar()->findChildren<QLineEdit*>()) {
        QTest::keyClicks(field, u"needle"_s);
        QTest::keyClick(field, Qt::Key_Return);
    }
    const QString result = hostileShown + u", needle"_s;
    QTRY_VERIFY(fixture.saidNow().contains(result));
    texts += fixture.saidNow();
    // The tabs have gone, and the last files stand on the welcome.
    fixture.state.setDocuments({});
    texts += fixture.saidNow();
    static const QRegularExpression turning(u"[\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]"_s);
    for (const QString& text : texts) {
        QVERIFY2(!text.contains(turning), qPrintable(text));
    }
    const QString folderShown = u"work_\u27e8U+202E\u27e9red\u27e8U+200F\u27e9"_s;
    for (const QString& known : {hostileShown, folderShown, u"inner_\u27e8U+202B\u27e9"_s,
                                 u"Loops\u27e8U+202E\u27e9!ecin"_s, fixture.home.filePath(folderShown)}) {
        QVERIFY2(texts.contains(known), qPrintable(known));
    }
    QVERIFY(!texts.filter(u"gone_\u27e8U+202E\u27e9exe.txt could not be opened"_s).isEmpty());
}

void MainWindowTextsTest::whatWorksWithANameHasTheNameItself()
{
    Fixture fixture;
    const QUrl url = fixture.write(hostile, "text");
    fixture.state.openFile(url);
    fixture.turnQueue();
    QCOMPARE(fixture.state.currentDocument()->title(), hostile);
    QMenu menu;
    fixture.window.tabBar().tabs().first()->fillContextMenu(menu);
    for (QAction* action : menu.actions()) {
        if (action->text() == u"Copy Path"_s) {
            action->trigger();
        }
    }
    QCOMPARE(QGuiApplication::clipboard()->text(), url.toLocalFile());
    fixture.text().selectAll();
    fixture.text().editor().insertText(u"other"_s, EditKind::other);
    fixture.command(Command::save)->trigger();
    QTRY_COMPARE(Fixture::read(url), QByteArray("other"));
}

const kelm::test::Registered<MainWindowTextsTest> registered(kelm::test::Toolkit::widgets);

} // namespace main_window_texts_test

#include "main_window_texts_test.moc"
