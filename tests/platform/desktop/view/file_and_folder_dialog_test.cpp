#include "platform/desktop/view/file_and_folder_dialog.h"
#include "support/test_program.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace file_and_folder_dialog_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A folder with a folder and two files, and a dialog that shows it.
struct Fixture
{
    QTemporaryDir home;
    std::unique_ptr<FileAndFolderDialog> dialog;

    explicit Fixture(const OpenPanelOptions& options)
    {
        QDir(home.path()).mkdir(u"folder"_s);
        for (const QString& name : {u"a.txt"_s, u"b.txt"_s}) {
            QFile file(home.filePath(name));
            if (!file.open(QIODevice::WriteOnly)) {
                qFatal("no file");
            }
        }
        dialog = std::make_unique<FileAndFolderDialog>(nullptr, options);
        dialog->setDirectory(home.path());
        dialog->show();
        if (!QTest::qWaitForWindowExposed(dialog.get())) {
            qFatal("no window");
        }
    }

    QAbstractItemView& list() const { return *dialog->findChild<QAbstractItemView*>(u"listView"_s); }
    QPushButton& openButton() const { return *dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open); }
    QLineEdit& nameField() const { return *dialog->findChild<QLineEdit*>(u"fileNameEdit"_s); }
    /// The row of a name, once the dialog has read the folder.
    QModelIndex indexOf(const QString& name) const
    {
        QModelIndex found;
        const bool isFound = QTest::qWaitFor(
            [&] {
                const QAbstractItemModel& model = *list().model();
                for (int row = 0; row < model.rowCount(list().rootIndex()); ++row) {
                    const QModelIndex index = model.index(row, 0, list().rootIndex());
                    if (index.data().toString() == name) {
                        found = index;
                    }
                }
                return found.isValid();
            },
            kelm::test::patience);
        return isFound ? found : QModelIndex();
    }
    void select(const QStringList& names) const
    {
        list().selectionModel()->clearSelection();
        for (const QString& name : names) {
            list().selectionModel()->select(indexOf(name), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
        QCoreApplication::processEvents();
    }
    /// The names that were chosen, a folder's with a slash.
    QStringList chosen() const
    {
        QStringList names;
        for (const ChosenURL& choice : dialog->chosenURLs()) {
            names.append(choice.url.fileName() + (choice.isDirectory ? u"/"_s : QString()));
        }
        names.sort();
        return names;
    }
};

const OpenPanelOptions everything{
    .canChooseFiles = true, .canChooseDirectories = true, .allowsMultipleSelection = true};

} // namespace

class FileAndFolderDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesAndFoldersAreChosenTogether();
    void aFolderAloneIsChosenAndNotEntered();
    void aTypedNameIsChosen();
    void cancellingChoosesNothing();
    void onlyFoldersAreOfferedWhereFilesAreNot();
    void onlyFilesAreChosenWhereFoldersAreNot();
    void theButtonHasItsWords();
};

void FileAndFolderDialogTest::filesAndFoldersAreChosenTogether()
{
    const Fixture fixture(everything);
    fixture.select({u"a.txt"_s, u"folder"_s, u"b.txt"_s});
    QTRY_VERIFY(fixture.openButton().isEnabled());
    QTest::mouseClick(&fixture.openButton(), Qt::LeftButton);
    QCOMPARE(fixture.dialog->result(), int(QDialog::Accepted));
    QCOMPARE(fixture.chosen(), (QStringList{u"a.txt"_s, u"b.txt"_s, u"folder/"_s}));
}

void FileAndFolderDialogTest::aFolderAloneIsChosenAndNotEntered()
{
    const Fixture fixture(everything);
    fixture.select({u"folder"_s});
    QTRY_VERIFY(fixture.openButton().isEnabled());
    QTest::mouseClick(&fixture.openButton(), Qt::LeftButton);
    QCOMPARE(fixture.dialog->result(), int(QDialog::Accepted));
    QCOMPARE(fixture.chosen(), QStringList{u"folder/"_s});
    QCOMPARE(fixture.dialog->chosenURLs().first().url, QUrl::fromLocalFile(fixture.home.filePath(u"folder"_s)));
}

void FileAndFolderDialogTest::aTypedNameIsChosen()
{
    const Fixture fixture(everything);
    QVERIFY(fixture.indexOf(u"a.txt"_s).isValid());
    QTest::keyClicks(&fixture.nameField(), u"b.txt"_s);
    QTest::keyClick(&fixture.nameField(), Qt::Key_Return);
    QCOMPARE(fixture.chosen(), QStringList{u"b.txt"_s});
}

void FileAndFolderDialogTest::cancellingChoosesNothing()
{
    const Fixture fixture(everything);
    fixture.select({u"a.txt"_s});
    QTest::keyClick(fixture.dialog.get(), Qt::Key_Escape);
    QCOMPARE(fixture.dialog->result(), int(QDialog::Rejected));
    QCOMPARE(fixture.chosen(), QStringList());
}

void FileAndFolderDialogTest::onlyFoldersAreOfferedWhereFilesAreNot()
{
    const Fixture fixture({.canChooseFiles = false, .canChooseDirectories = true});
    QVERIFY(fixture.indexOf(u"folder"_s).isValid());
    QVERIFY(fixture.dialog->testOption(QFileDialog::ShowDirsOnly));
    QCOMPARE(fixture.dialog->fileMode(), QFileDialog::Directory);
    fixture.select({u"folder"_s});
    QTest::mouseClick(fixture.dialog->findChild<QDialogButtonBox*>()->buttons().first(), Qt::LeftButton);
    QCOMPARE(fixture.chosen(), QStringList{u"folder/"_s});
}

void FileAndFolderDialogTest::onlyFilesAreChosenWhereFoldersAreNot()
{
    const Fixture fixture({.canChooseFiles = true});
    QCOMPARE(fixture.dialog->fileMode(), QFileDialog::ExistingFile);
    fixture.select({u"a.txt"_s});
    QTRY_VERIFY(fixture.openButton().isEnabled());
    QTest::mouseClick(&fixture.openButton(), Qt::LeftButton);
    QCOMPARE(fixture.chosen(), QStringList{u"a.txt"_s});
    const Fixture entered({.canChooseFiles = true});
    QVERIFY(entered.indexOf(u"folder"_s).isValid());
    QTest::keyClicks(&entered.nameField(), u"folder"_s);
    QTest::keyClick(&entered.nameField(), Qt::Key_Return);
    QCOMPARE(entered.chosen(), QStringList());
    QVERIFY(entered.dialog->isVisible());
}

void FileAndFolderDialogTest::theButtonHasItsWords()
{
    const Fixture plain(everything);
    QCOMPARE(plain.dialog->labelText(QFileDialog::Accept), u"Open"_s);
    const Fixture named({.canChooseFiles = false, .canChooseDirectories = true, .prompt = u"Choose"_s});
    QCOMPARE(named.dialog->labelText(QFileDialog::Accept), u"Choose"_s);
}

const kelm::test::Registered<FileAndFolderDialogTest> registered(kelm::test::Toolkit::widgets);

} // namespace file_and_folder_dialog_test

#include "file_and_folder_dialog_test.moc"
