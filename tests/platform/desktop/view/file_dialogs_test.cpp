#include "platform/desktop/view/file_dialogs.h"
#include "platform/files/user_defaults.h"
#include "support/test_program.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

namespace file_dialogs_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Lets `act` answer the dialog that is shown next; gives the folder that it began in.
void answerNext(QString& folder, const QString& name)
{
    QTimer::singleShot(0, qApp, [&folder, name] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !QTest::qWaitForWindowExposed(dialog)) {
            qFatal("no dialog");
        }
        folder = dialog->directory().path();
        auto* field = dialog->findChild<QLineEdit*>(u"fileNameEdit"_s);
        field->selectAll();
        if (name.isEmpty()) {
            QTest::keyClick(dialog, Qt::Key_Escape);
            return;
        }
        QTest::keyClicks(field, name);
        QTest::keyClick(field, Qt::Key_Return);
    });
}

} // namespace

class FileDialogsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSavePanelBeginsWhereTheLastOneEnded();
    void anOpenPanelBeginsWhereTheLastOneEnded();
    void aFolderPanelBeginsInTheFolderThatWasChosen();
};

void FileDialogsTest::aSavePanelBeginsWhereTheLastOneEnded()
{
    QTemporaryDir home;
    QVERIFY(QDir(home.path()).mkdir(u"one"_s) && QDir(home.path()).mkdir(u"two"_s));
    UserDefaults defaults(home.filePath(u"store.conf"_s));
    FileDialogs dialogs(defaults);
    QString folder;
    answerNext(folder, home.filePath(u"two/a.txt"_s));
    QCOMPARE(dialogs.showSavePanel({.suggestedName = u"Untitled.txt"_s, .startFolders = {home.filePath(u"one"_s)}}),
             std::optional(QUrl::fromLocalFile(home.filePath(u"two/a.txt"_s))));
    QCOMPARE(folder, home.filePath(u"one"_s));
    // One that is left changes nothing.
    answerNext(folder, {});
    QVERIFY(!FileDialogs(defaults).showSavePanel({.startFolders = {home.filePath(u"one"_s)}}));
    answerNext(folder, {});
    QVERIFY(!FileDialogs(defaults).showSavePanel({}));
    QCOMPARE(folder, home.filePath(u"two"_s));
}

void FileDialogsTest::anOpenPanelBeginsWhereTheLastOneEnded()
{
    QTemporaryDir home;
    QVERIFY(QDir(home.path()).mkdir(u"one"_s));
    QFile file(home.filePath(u"one/a.txt"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    UserDefaults defaults(home.filePath(u"store.conf"_s));
    FileDialogs dialogs(defaults);
    const OpenPanelOptions both{.canChooseDirectories = true, .allowsMultipleSelection = true};
    QString folder;
    answerNext(folder, home.filePath(u"one/a.txt"_s));
    QCOMPARE(dialogs.showOpenPanel(both),
             (QList{ChosenURL{QUrl::fromLocalFile(home.filePath(u"one/a.txt"_s)), false}}));
    answerNext(folder, {});
    QVERIFY(dialogs.showOpenPanel(both).isEmpty());
    QCOMPARE(folder, home.filePath(u"one"_s));
}

void FileDialogsTest::aFolderPanelBeginsInTheFolderThatWasChosen()
{
    QTemporaryDir home;
    QVERIFY(QDir(home.path()).mkpath(u"one/in"_s));
    UserDefaults defaults(home.filePath(u"store.conf"_s));
    FileDialogs dialogs(defaults);
    const OpenPanelOptions folders{.canChooseFiles = false, .canChooseDirectories = true, .kind = PanelKind::clone};
    QString folder;
    answerNext(folder, home.filePath(u"one"_s));
    QCOMPARE(dialogs.showOpenPanel(folders).size(), 1);
    answerNext(folder, {});
    QVERIFY(dialogs.showOpenPanel(folders).isEmpty());
    QCOMPARE(folder, home.filePath(u"one"_s));
}

const kelm::test::Registered<FileDialogsTest> registered(kelm::test::Toolkit::widgets);

} // namespace file_dialogs_test

#include "file_dialogs_test.moc"
