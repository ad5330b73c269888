#include "platform/desktop/view/save_dialog.h"
#include "support/test_program.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace save_dialog_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir home;
    std::unique_ptr<SaveDialog> dialog;

    explicit Fixture(const QString& suggestedName)
    {
        QFile file(home.filePath(u"there.txt"_s));
        if (!QDir(home.path()).mkdir(u"folder"_s) || !file.open(QIODevice::WriteOnly)) {
            qFatal("no files");
        }
        const SavePanelOptions options{.allowedTypes = {ContentType::plainText, ContentType::json},
                                       .suggestedName = suggestedName};
        dialog = std::make_unique<SaveDialog>(nullptr, options, home.path());
        dialog->show();
        if (!QTest::qWaitForWindowExposed(dialog.get())) {
            qFatal("no window");
        }
    }

    QLineEdit& field() const { return *dialog->findChild<QLineEdit*>(u"fileNameEdit"_s); }
    /// What the dialog says of a place where nothing can be saved; empty while it says nothing.
    QString words() const
    {
        const auto* label = dialog->findChild<QLabel*>(u"whyNotSaved"_s);
        return label != nullptr && label->isVisible() ? label->text() : QString();
    }
    void enter(const QString& name) const
    {
        field().selectAll();
        QTest::keyClicks(&field(), name);
        QTest::keyClick(&field(), Qt::Key_Return);
    }
};

} // namespace

class SaveDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNameIsSelectedUpToItsExtension_data();
    void theNameIsSelectedUpToItsExtension();
    void theKindsOfTextStandInTheirOrder();
    void returnTakesTheName();
    void whereNothingCanBeSavedTheDialogSaysSoAndStays();
    void aFolderIsEntered();
    void whatIsThereIsReplacedAfterAQuestion();
};

void SaveDialogTest::theNameIsSelectedUpToItsExtension_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("selected");
    QTest::newRow("with an extension") << u"Untitled.py"_s << u"Untitled"_s;
    QTest::newRow("without") << u"Makefile"_s << u"Makefile"_s;
    QTest::newRow("hidden") << u".bashrc"_s << u".bashrc"_s;
    QTest::newRow("with two") << u"a.tar.gz"_s << u"a.tar"_s;
}

void SaveDialogTest::theNameIsSelectedUpToItsExtension()
{
    QFETCH(QString, name);
    const Fixture fixture(name);
    QCOMPARE(fixture.field().text(), name);
    QTEST(fixture.field().selectedText(), "selected");
}

void SaveDialogTest::theKindsOfTextStandInTheirOrder()
{
    const QTemporaryDir home;
    SaveDialog dialog(
        nullptr,
        {.allowedTypes = {ContentType::plainText, ContentType::sourceCode, ContentType::json, ContentType::xml}},
        home.path());
    QCOMPARE(dialog.nameFilters(), (QStringList{u"Plain Text (*.txt *)"_s, u"Source Code (*)"_s, u"JSON (*.json)"_s,
                                                u"XML (*.xml *.plist)"_s}));
    QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptSave);
    QCOMPARE(dialog.fileMode(), QFileDialog::AnyFile);
}

void SaveDialogTest::returnTakesTheName()
{
    const Fixture fixture(u"Untitled.py"_s);
    QTest::keyClicks(&fixture.field(), u"mine"_s);
    QTest::keyClick(&fixture.field(), Qt::Key_Return);
    QCOMPARE(fixture.dialog->result(), int(QDialog::Accepted));
    QCOMPARE(fixture.dialog->selectedUrls(), QList{QUrl::fromLocalFile(fixture.home.filePath(u"mine.py"_s))});
}

void SaveDialogTest::whereNothingCanBeSavedTheDialogSaysSoAndStays()
{
    const Fixture fixture(u"Untitled.py"_s);
    fixture.enter(fixture.home.filePath(u"gone/a.py"_s));
    QVERIFY(fixture.dialog->isVisible());
    QCOMPARE(fixture.words(), u"There is no folder “gone”."_s);
    // What is typed now is another name.
    QTest::keyClicks(&fixture.field(), u"a"_s);
    QCOMPARE(fixture.words(), QString());
    fixture.enter(fixture.home.filePath(u"there.txt/a.py"_s));
    QCOMPARE(fixture.words(), u"“there.txt” is not a folder."_s);
    fixture.enter(fixture.home.filePath(u"folder/a.py"_s));
    QVERIFY(!fixture.dialog->isVisible());
    QCOMPARE(fixture.dialog->selectedUrls(), QList{QUrl::fromLocalFile(fixture.home.filePath(u"folder/a.py"_s))});
}

void SaveDialogTest::aFolderIsEntered()
{
    const Fixture fixture(u"Untitled.py"_s);
    fixture.enter(u"folder"_s);
    QVERIFY(fixture.dialog->isVisible());
    QCOMPARE(fixture.words(), QString());
    QCOMPARE(fixture.dialog->directory().dirName(), u"folder"_s);
}

void SaveDialogTest::whatIsThereIsReplacedAfterAQuestion()
{
    const Fixture fixture(u"Untitled.py"_s);
    bool isAsked = false;
    QTimer::singleShot(0, fixture.dialog.get(), [&isAsked] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        isAsked = box != nullptr;
        if (box != nullptr) {
            box->button(QMessageBox::No)->click();
        }
    });
    fixture.enter(u"there.txt"_s);
    QVERIFY(isAsked);
    QVERIFY(fixture.dialog->isVisible());
}

const kelm::test::Registered<SaveDialogTest> registered(kelm::test::Toolkit::widgets);

} // namespace save_dialog_test

#include "save_dialog_test.moc"
