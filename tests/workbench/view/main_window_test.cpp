#include "platform/desktop/view/file_dialogs.h"
#include "support/test_program.h"
#include "workbench/view/main_window.h"
#include "workbench/view/tab_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QProcess>

namespace main_window_test {

using namespace kelm;
using namespace kelm::test;

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void uninstallingIsWhatTheWindowWasGiven();
    void typingAndSavingChangeTheFile();
    void bytesAreThoseOfBefore_data();
    void bytesAreThoseOfBefore();
    void aFileThatIsNotUtf8OpensNothing();
    void eachDocumentKeepsItsEditor();
    void closingLeavesTheOthersAlone();
    void droppedFilesOpenAndAFolderIsTheProject();
    void draggedFilesAreCopied();
    void undoThatChangesNothingLeavesTheDocument();
    void theWindowTakesTheThemesGround();
    void theSavePanelNamesTheFile();
    void theProgramDrawsAPictureWithoutADisplay();
};

void MainWindowTest::uninstallingIsWhatTheWindowWasGiven()
{
    WindowFixture fixture;
    fixture.command(Command::uninstall)->trigger();
    QCOMPARE(fixture.uninstalls, 1);
}

void MainWindowTest::typingAndSavingChangeTheFile()
{
    WindowFixture fixture;
    const QUrl url = fixture.write(QStringLiteral("a.swift"), "let a = 1\n");
    fixture.state.openFile(url);
    fixture.turnQueue();
    QVERIFY(fixture.text().hasFocus());
    QTest::keyClicks(&fixture.text(), QStringLiteral("// "));
    QCOMPARE(fixture.state.currentDocument()->title(), QStringLiteral("a.swift *"));
    QTest::keyClick(&fixture.text(), Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(WindowFixture::read(url), QByteArray("// let a = 1\n"));
    QCOMPARE(fixture.state.currentDocument()->title(), QStringLiteral("a.swift"));
}

void MainWindowTest::bytesAreThoseOfBefore_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n");
    QTest::newRow("lone CR") << QByteArray("a\rb\r");
    QTest::newRow("mixed ends") << QByteArray("a\nb\r\nc\rd");
    QTest::newRow("no final newline") << QByteArray("a\nb");
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "a\n");
    QTest::newRow("NUL") << QByteArray("a\0b\n", 4);
    QTest::newRow("no-break space") << QByteArray("a\xC2\xA0"
                                                  "b\n");
    QTest::newRow("line and paragraph separator") << QByteArray("a\xE2\x80\xA8"
                                                                "b\xE2\x80\xA9"
                                                                "c");
    QTest::newRow("next line") << QByteArray("a\xC2\x85"
                                             "b");
    QTest::newRow("noncharacter") << QByteArray("a\xEF\xB7\x90"
                                                "b");
    QTest::newRow("astral") << QByteArray("\xF0\x9F\x98\x80 \xF0\x9D\x92\x9C\n");
    QTest::newRow("combining") << QByteArray("e\xCC\x81 \xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB\n");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("one line of 5 MB") << QByteArray("word \xED\x95\x9C ").repeated(500000);
}

void MainWindowTest::bytesAreThoseOfBefore()
{
    QFETCH(QByteArray, bytes);
    WindowFixture fixture;
    const QUrl url = fixture.write(QStringLiteral("bytes.txt"), bytes);
    fixture.state.openFile(url);
    fixture.turnQueue();
    for (const qsizetype place : {qsizetype(0), fixture.text().text().size() / 2, fixture.text().text().size()}) {
        fixture.text().setSelectedRange({place, 0});
        QTest::keyClick(&fixture.text(), Qt::Key_X);
        QVERIFY(fixture.state.currentDocument()->isModified());
        QTest::keyClick(&fixture.text(), Qt::Key_Backspace);
        QTest::keyClick(&fixture.text(), Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!fixture.state.currentDocument()->isModified());
        QCOMPARE(WindowFixture::read(url), bytes);
    }
}

void MainWindowTest::aFileThatIsNotUtf8OpensNothing()
{
    WindowFixture fixture;
    fixture.state.openFile(fixture.write(QStringLiteral("latin.txt"), "caf\xE9\n"));
    QVERIFY(fixture.state.documents().isEmpty());
    QVERIFY(fixture.window.editorArea().currentEditor() == nullptr);
    QVERIFY(fixture.log.written.last().startsWith(QStringLiteral("  ❌ Error opening file: ")));
}

void MainWindowTest::eachDocumentKeepsItsEditor()
{
    WindowFixture fixture;
    // Not a snippet, which takes the keyboard with the caret at its start a moment later.
    fixture.state.openFile(
        fixture.write(QStringLiteral("a.swift"), "{\n  a\n  b\n}\n" + QByteArray("line\n").repeated(300)));
    fixture.turnQueue();
    EditorContainerView* first = fixture.window.editorArea().currentEditor();
    QTest::keyClicks(&fixture.text(), QStringLiteral("x"));
    fixture.text().setSelectedRange({500, 4});
    first->scrollToLine(120);
    const QRectF place = fixture.text().visibleRect();
    fixture.state.createNewTab();
    fixture.turnQueue();
    QTest::keyClicks(&fixture.text(), QStringLiteral("other"));
    QCOMPARE(fixture.state.documents()[0]->content().at(0), u'x');
    fixture.state.setCurrentDocumentIndex(0);
    fixture.turnQueue();
    QCOMPARE(fixture.window.editorArea().currentEditor(), first);
    QCOMPARE(fixture.text().selectedRange(), (TextRange{500, 4}));
    QCOMPARE(fixture.text().visibleRect(), place);
    fixture.text().undo();
    QCOMPARE(fixture.state.documents()[0]->content().at(0), u'{');
    QCOMPARE(fixture.state.documents()[1]->content(), QStringLiteral("other"));
}

void MainWindowTest::closingLeavesTheOthersAlone()
{
    WindowFixture fixture;
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        fixture.state.openFile(fixture.write(QString::fromLatin1(name), name));
    }
    fixture.state.setCurrentDocumentIndex(1);
    fixture.turnQueue();
    QPointer<EditorContainerView> closed = fixture.window.editorArea().currentEditor();
    fixture.state.closeTab(1);
    fixture.turnQueue();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(closed.isNull());
    QCOMPARE(fixture.text().text(), QStringLiteral("c.txt"));
    fixture.state.closeTab(1);
    fixture.state.closeTab(0);
    fixture.turnQueue();
    QVERIFY(fixture.window.editorArea().currentEditor() == nullptr);
    QVERIFY(fixture.window.tabBar().tabs().isEmpty());
}

void MainWindowTest::droppedFilesOpenAndAFolderIsTheProject()
{
    WindowFixture fixture;
    QMimeData data;
    const QUrl folder = QUrl::fromLocalFile(fixture.home.path());
    data.setUrls({fixture.write(QStringLiteral("a.txt"), "a"), folder, fixture.write(QStringLiteral("b.txt"), "b")});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&fixture.window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&fixture.window, &drop);
    QCOMPARE(fixture.state.documents().size(), 2);
    QCOMPARE(fixture.state.currentProject(), std::optional(folder));
}

void MainWindowTest::draggedFilesAreCopied()
{
    WindowFixture fixture;
    QMimeData data;
    data.setUrls({fixture.write(QStringLiteral("a.txt"), "a")});
    // With Shift a file manager proposes to move, and deletes what was taken so.
    const Qt::DropActions both = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter({10, 10}, both, &data, Qt::LeftButton, Qt::ShiftModifier);
    QDragMoveEvent move({20, 20}, both, &data, Qt::LeftButton, Qt::ShiftModifier);
    QDropEvent drop({20, 20}, both, &data, Qt::LeftButton, Qt::ShiftModifier);
    for (QDropEvent* event : std::initializer_list<QDropEvent*>{&enter, &move, &drop}) {
        QCOMPARE(event->proposedAction(), Qt::MoveAction);
        QCoreApplication::sendEvent(&fixture.window, event);
        QVERIFY(event->isAccepted());
        QCOMPARE(event->dropAction(), Qt::CopyAction);
    }
    QCOMPARE(fixture.state.documents().size(), 1);
    QDragEnterEvent onlyMoved({10, 10}, Qt::MoveAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&fixture.window, &onlyMoved);
    QVERIFY(!onlyMoved.isAccepted());
}

void MainWindowTest::undoThatChangesNothingLeavesTheDocument()
{
    WindowFixture fixture;
    fixture.state.openFile(fixture.write(QStringLiteral("a.txt"), "func f() {\n  one\n  two\n}\n"));
    fixture.turnQueue();
    const std::shared_ptr<Document> document = fixture.state.currentDocument();
    for (const Command command : {Command::undo, Command::redo}) {
        fixture.command(command)->trigger();
        fixture.turnQueue();
        QVERIFY(!document->isModified());
    }
    QTest::keyClicks(&fixture.text(), QStringLiteral("x"));
    fixture.command(Command::undo)->trigger();
    QVERIFY(document->isModified());
    document->setIsModified(false);
    fixture.command(Command::undo)->trigger();
    fixture.turnQueue();
    QVERIFY(!document->isModified());
    // What is composed over its equal is a step that leaves the text as it is.
    fixture.text().setSelectedRange({0, 4});
    fixture.text().copy();
    QInputMethodEvent compose(QStringLiteral("f"), {});
    QCoreApplication::sendEvent(&fixture.text(), &compose);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("func"));
    QCoreApplication::sendEvent(&fixture.text(), &commit);
    document->setIsModified(false);
    for (const Command command : {Command::undo, Command::redo}) {
        fixture.command(command)->trigger();
        fixture.turnQueue();
        QVERIFY(!document->isModified());
    }
}

void MainWindowTest::theWindowTakesTheThemesGround()
{
    WindowFixture fixture;
    fixture.themes.setCurrentTheme(EditorTheme::githubLight());
    fixture.turnQueue();
    const QImage image = fixture.window.grab().toImage();
    QCOMPARE(image.pixelColor(20, image.height() - 20), QColor(Qt::white));
}

void MainWindowTest::theSavePanelNamesTheFile()
{
    WindowFixture around;
    FileDialogs dialogs(around.defaults);
    AppState state({dialogs, around.defaults, Scheduler::system(), around.notifications, around.log,
                    ProcessRunner::sharedSystem(), ExecutableSearch(ProcessRunner::system())});
    MainWindow window({state, around.themes, around.workspace, around.defaults, around.updates});
    window.show();
    state.createNewTab();
    const std::shared_ptr<Document> document = state.currentDocument();
    document->setContent(QStringLiteral("print(1)\n"));
    const QString path = around.home.filePath(QStringLiteral("saved here.py"));
    const auto saveAndAnswer = [&](Qt::Key key) {
        QTimer::singleShot(0, &window, [&path, key] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr || !QTest::qWaitForWindowExposed(dialog)) {
                qFatal("no dialog");
            }
            auto* field = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            field->setText(path);
            QTest::keyClick(field, key);
        });
        menuAction(*window.menuBar(), Command::save)->trigger();
    };
    saveAndAnswer(Qt::Key_Escape);
    QVERIFY(!QFile::exists(path));
    QVERIFY(!document->fileURL());
    QVERIFY(document->isModified());
    saveAndAnswer(Qt::Key_Return);
    QCOMPARE(WindowFixture::read(QUrl::fromLocalFile(path)), QByteArray("print(1)\n"));
    QCOMPARE(document->fileURL(), std::optional(QUrl::fromLocalFile(path)));
    QVERIFY(!document->isModified());
    QCOMPARE(state.recentFiles(), QList{QUrl::fromLocalFile(path)});
    QCOMPARE(document->language(), Language(Language::python));
    // From now on it goes there without a panel.
    document->setContent(QStringLiteral("print(2)\n"));
    menuAction(*window.menuBar(), Command::save)->trigger();
    QCOMPARE(WindowFixture::read(QUrl::fromLocalFile(path)), QByteArray("print(2)\n"));
}

void MainWindowTest::theProgramDrawsAPictureWithoutADisplay()
{
    const QTemporaryDir folder;
    const QString picture = folder.filePath(QStringLiteral("window.png"));
    const QString source = folder.filePath(QStringLiteral("a.swift"));
    QFile file(source);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("let answer = 42\n");
    file.close();
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KELMWRIGHT_PICTURE"), picture);
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QStringLiteral(KELM_PROGRAM), {source});
    QVERIFY(program.waitForFinished(30000));
    QVERIFY2(program.exitCode() == 0, program.readAll().constData());
    const QImage image(picture);
    QVERIFY(image.width() >= 900);
    // The keyword is painted in its colour.
    const QRgb keyword = EditorTheme::monokai().keywordColor.toColor().rgb();
    bool found = false;
    for (int y = 80; y < 200 && !found; ++y) {
        for (int x = 260; x < 500 && !found; ++x) {
            found = image.pixel(x, y) == keyword;
        }
    }
    QVERIFY(found);
}

const kelm::test::Registered<MainWindowTest> registered(kelm::test::Toolkit::widgets);

} // namespace main_window_test

#include "main_window_test.moc"
