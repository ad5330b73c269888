#include "git/panel/view/clone_dialog.h"
#include "git/panel/view/credential_status_row.h"
#include "git/panel/view/panel_fixture.h"
#include "platform/view/breaking_label.h"
#include "platform/view/labels.h"
#include "support/painted_text.h"
#include "support/test_program.h"

#include <QSignalSpy>

namespace clone_dialog_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct DialogFixture
{
    TemporaryRepository origin;
    QTemporaryDir folder;
    AppStateFixture app;
    QWidget window;
    QPointer<CloneDialog> dialog;

    DialogFixture()
    {
        origin.write(u"a.txt"_s, "text\n");
        origin.commitAll(u"first"_s);
        window.resize(900, 600);
        window.show();
        present();
    }

    void present()
    {
        dialog = new CloneDialog(app.state.git(), app.filePanels, app.scheduler, &window);
        dialog->open();
        QVERIFY(QTest::qWaitForWindowActive(dialog));
    }

    QLineEdit& field(const QString& name) const
    {
        for (auto* field : dialog->findChildren<QLineEdit*>()) {
            if (field->accessibleName() == name) {
                return *field;
            }
        }
        qFatal("no field");
    }
    QAbstractButton& button(const QString& name) const
    {
        QAbstractButton* found = visibleButton(*dialog, name);
        if (found == nullptr) {
            qFatal("no button %s", qPrintable(name));
        }
        return *found;
    }
    bool shows(const QString& text) const
    {
        for (const auto* label : dialog->findChildren<TextLabel*>()) {
            if (label->isVisible() && label->text() == text) {
                return true;
            }
        }
        return false;
    }
    void paste(const QString& url) const
    {
        QLineEdit& target = field(u"Remote URL"_s);
        target.selectAll();
        target.insert(url);
    }
    void choose()
    {
        app.filePanels.openAnswer = {{QUrl::fromLocalFile(folder.path()), true}};
        clickOn(*dialog, u"Choose"_s);
    }
    TextLabel& label(const QString& text) const
    {
        for (auto* label : dialog->findChildren<TextLabel*>()) {
            if (label->isVisible() && label->text() == text) {
                return *label;
            }
        }
        qFatal("no label '%s'", qPrintable(text));
    }
    /// Whether a label is drawn in a colour at a size.
    bool isDrawn(const QString& text, const Tint& tint, int size) const
    {
        const QImage picture = label(text).grab().toImage();
        const QColor ground = dialog->palette().color(QPalette::Window);
        return isSame(ink(picture, picture.rect(), ground), inkOf(text, style::interfaceFont(size), tint, ground));
    }
    QString error() const
    {
        const auto* label = dialog->findChild<BreakingLabel*>();
        return label->isVisible() ? label->text() : QString();
    }
};

} // namespace

class CloneDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void startsEmpty();
    void aPastedAddressNamesTheFolder();
    void aTypedAddressNamesItOnce();
    void theButtonWaitsForAllThree();
    void aFolderIsChosen();
    void aRepositoryIsCloned();
    void returnClones();
    void aCloneThatFailsTellsItsWords();
    void aFullTargetIsRefused();
    void nothingClosesTheDialogWhileItClones();
    void aCloneIsStoppedAndLeavesNothing();
    void cancelAndEscapeClose();
    void eachPresentationStartsEmpty();
    void theChipsTellWhatIsThere();
    void anErrorIsRedOnRed();
    void aSuccessIsGreen();
    void aChosenFolderStandsOut();
    void longTextsStayInTheDialog();
};

void CloneDialogTest::initTestCase()
{
    useFixedGitEnvironment();
    style::installOn(*qApp);
}

void CloneDialogTest::startsEmpty()
{
    DialogFixture f;
    QVERIFY(f.dialog->isModal());
    QVERIFY(f.shows(u"Clone Repository"_s) && f.shows(u"Remote URL"_s) && f.shows(u"Destination"_s));
    QVERIFY(f.shows(u"Folder name:"_s) && f.shows(u"(pick a folder)"_s));
    QVERIFY(!f.shows(u"✓ Cloned. Repository opened."_s));
    QCOMPARE(f.error(), QString());
    QCOMPARE(f.field(u"Remote URL"_s).text(), QString());
    QCOMPARE(f.field(u"Folder name"_s).text(), QString());
    QCOMPARE(f.field(u"Folder name"_s).placeholderText(), u"repo"_s);
    QVERIFY(f.field(u"Remote URL"_s).hasFocus());
    const QStringList examples = f.field(u"Remote URL"_s).placeholderText().split(u" 또는 "_s);
    QCOMPARE(examples.size(), 2);
    QVERIFY(examples[0].startsWith(u"https://") && examples[0].endsWith(u"/owner/repo.git"));
    QVERIFY(examples[1].startsWith(u"git@") && examples[1].endsWith(u":owner/repo.git"));
    QVERIFY(!f.button(u"Clone"_s).isEnabled() && f.button(u"Cancel"_s).isEnabled());
}

void CloneDialogTest::aPastedAddressNamesTheFolder()
{
    DialogFixture f;
    f.paste(u"https://host/owner/repo.git"_s);
    QCOMPARE(f.field(u"Folder name"_s).text(), u"repo"_s);
    f.field(u"Folder name"_s).clear();
    f.paste(u"https://host/owner/other.git/"_s);
    QCOMPARE(f.field(u"Folder name"_s).text(), u"other"_s);
}

void CloneDialogTest::aTypedAddressNamesItOnce()
{
    DialogFixture f;
    QTest::keyClicks(&f.field(u"Remote URL"_s), u"ssh://host/repo.git"_s);
    QCOMPARE(f.field(u"Remote URL"_s).text(), u"ssh://host/repo.git"_s);
    QCOMPARE(f.field(u"Folder name"_s).text(), u"s"_s);
}

void CloneDialogTest::theButtonWaitsForAllThree()
{
    DialogFixture f;
    f.paste(u"x/repo"_s);
    QVERIFY(!f.button(u"Clone"_s).isEnabled());
    f.choose();
    QVERIFY(f.button(u"Clone"_s).isEnabled());
    f.field(u"Folder name"_s).setText(u"  "_s);
    QVERIFY(!f.button(u"Clone"_s).isEnabled());
    f.field(u"Folder name"_s).setText(u"name"_s);
    QVERIFY(f.button(u"Clone"_s).isEnabled());
    f.paste(u" \t"_s);
    QVERIFY(!f.button(u"Clone"_s).isEnabled());
}

void CloneDialogTest::aFolderIsChosen()
{
    DialogFixture f;
    clickOn(*f.dialog, u"Choose"_s);
    QVERIFY(f.shows(u"(pick a folder)"_s));
    f.choose();
    QVERIFY(f.shows(f.folder.path()));
    QCOMPARE(f.app.filePanels.openPanelOptions.prompt, u"Choose"_s);
}

void CloneDialogTest::aRepositoryIsCloned()
{
    DialogFixture f;
    f.paste(f.origin.path() + u"/.git"_s);
    f.choose();
    f.field(u"Folder name"_s).setText(u"새 폴더"_s);
    QSignalSpy closed(f.dialog, &QDialog::finished);
    clickOn(*f.dialog, u"Clone"_s);
    QVERIFY(!f.button(u"Cloning…"_s).isEnabled() && !f.button(u"Cancel"_s).isEnabled());
    QVERIFY(!f.app.state.git().isBusy());
    QTRY_VERIFY_WITH_TIMEOUT(f.shows(u"✓ Cloned. Repository opened."_s), 20000);
    QVERIFY(f.button(u"Clone"_s).isVisible() && f.button(u"Cancel"_s).isEnabled());
    QCOMPARE(f.app.state.git().repoURL().value_or(QUrl()), QUrl::fromLocalFile(f.folder.filePath(u"새 폴더"_s)));
    f.app.scheduler.advance(std::chrono::milliseconds(799));
    QVERIFY(f.dialog->isVisible());
    f.app.scheduler.advance(std::chrono::milliseconds(1));
    QVERIFY(!f.dialog->isVisible());
    QCOMPARE(closed.size(), 1);
    QTRY_VERIFY(f.dialog.isNull());
}

void CloneDialogTest::returnClones()
{
    DialogFixture f;
    QTest::keyClick(&f.field(u"Remote URL"_s), Qt::Key_Return);
    QVERIFY(f.dialog->isVisible() && !f.dialog->form().inProgress());
    f.paste(f.origin.path());
    f.choose();
    f.field(u"Folder name"_s).setText(u"copy"_s);
    QTest::keyClick(&f.field(u"Folder name"_s), Qt::Key_Return);
    QVERIFY(f.dialog->form().inProgress());
    QTRY_VERIFY_WITH_TIMEOUT(f.dialog->form().didSucceed(), 20000);
}

void CloneDialogTest::aCloneThatFailsTellsItsWords()
{
    DialogFixture f;
    f.paste(f.folder.filePath(u"absent/<b>repo</b>.git"_s));
    f.choose();
    clickOn(*f.dialog, u"Clone"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!f.error().isEmpty(), 20000);
    QVERIFY(f.error().contains(u"<b>repo</b>"));
    QTRY_COMPARE(f.app.state.git().lastError().value_or(QString()), f.error());
    QVERIFY(f.dialog->isVisible() && f.button(u"Clone"_s).isEnabled() && f.button(u"Cancel"_s).isEnabled());
    QVERIFY(!f.shows(u"✓ Cloned. Repository opened."_s));
}

void CloneDialogTest::aFullTargetIsRefused()
{
    DialogFixture f;
    QVERIFY(QDir(f.folder.path()).mkpath(u"repo/inner"_s));
    f.paste(u"x/repo"_s);
    f.choose();
    clickOn(*f.dialog, u"Clone"_s);
    QCOMPARE(f.error(), u"Target already exists and is not empty: "_s + f.folder.filePath(u"repo"_s));
    QVERIFY(!f.dialog->form().inProgress());
}

void CloneDialogTest::nothingClosesTheDialogWhileItClones()
{
    DialogFixture f;
    f.paste(f.origin.path());
    f.choose();
    f.field(u"Folder name"_s).setText(u"copy"_s);
    clickOn(*f.dialog, u"Clone"_s);
    QTest::keyClick(f.dialog, Qt::Key_Escape);
    f.dialog->close();
    QTest::mouseClick(&f.button(u"Cancel"_s), Qt::LeftButton);
    QVERIFY(f.dialog && f.dialog->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(f.dialog->form().didSucceed(), 20000);
    QTest::keyClick(f.dialog, Qt::Key_Escape);
    QTRY_VERIFY(f.dialog.isNull());
}

void CloneDialogTest::aCloneIsStoppedAndLeavesNothing()
{
    DialogFixture f;
    // It asks for its credentials from a program that never answers.
    const QString asking = f.folder.filePath(u"ssh"_s);
    QFile script(asking);
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nexec sleep 60\n");
    script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    script.close();
    qputenv("GIT_SSH", asking.toLocal8Bit());
    f.paste(u"somebody@example.org:repository"_s);
    f.choose();
    f.field(u"Folder name"_s).setText(u"clone"_s);
    QVERIFY(visibleButton(*f.dialog, u"Stop"_s) == nullptr);
    clickOn(*f.dialog, u"Clone"_s);
    QVERIFY(f.shows(u"git clone, 0 s"_s));
    const QString target = f.folder.filePath(u"clone"_s);
    QTRY_VERIFY(QFileInfo::exists(target));
    clickOn(*f.dialog, u"Stop"_s);
    QTRY_COMPARE(f.error(), u"git clone was stopped."_s);
    qunsetenv("GIT_SSH");
    QVERIFY(!QFileInfo::exists(target));
    // It can be tried again.
    QVERIFY(visibleButton(*f.dialog, u"Stop"_s) == nullptr);
    QVERIFY(f.button(u"Clone"_s).isEnabled() && f.button(u"Cancel"_s).isEnabled());
}

void CloneDialogTest::cancelAndEscapeClose()
{
    DialogFixture f;
    QSignalSpy cancelled(f.dialog, &QDialog::finished);
    clickOn(*f.dialog, u"Cancel"_s);
    QCOMPARE(cancelled.size(), 1);
    QTRY_VERIFY(f.dialog.isNull());
    f.present();
    QSignalSpy escaped(f.dialog, &QDialog::finished);
    QTest::keyClick(f.dialog, Qt::Key_Escape);
    QCOMPARE(escaped.size(), 1);
    QTRY_VERIFY(f.dialog.isNull());
    f.present();
    f.dialog->close();
    QTRY_VERIFY(f.dialog.isNull());
}

void CloneDialogTest::eachPresentationStartsEmpty()
{
    DialogFixture f;
    f.paste(u"x/repo"_s);
    f.choose();
    clickOn(*f.dialog, u"Cancel"_s);
    QTRY_VERIFY(f.dialog.isNull());
    f.present();
    QCOMPARE(f.field(u"Remote URL"_s).text(), QString());
    QVERIFY(f.shows(u"(pick a folder)"_s));
}

void CloneDialogTest::theChipsTellWhatIsThere()
{
    const QTemporaryDir home;
    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", home.path().toLocal8Bit());
    QVERIFY(QDir(home.path()).mkpath(u".ssh"_s));
    QFile key(home.filePath(u".ssh/id_rsa"_s));
    QVERIFY(key.open(QIODevice::WriteOnly));
    key.close();
    DialogFixture f;
    qputenv("HOME", before);
    const auto* row = f.dialog->findChild<CredentialStatusRow*>();
    QVERIFY(row->hasSSHKey() && !row->hasGitCredentialHelper());
    QCOMPARE(row->hint(), u"Authenticated git clone of private repos should work."_s);
    QStringList chips;
    for (const auto* chip : row->findChildren<CredentialChip*>()) {
        chips.append(chip->accessibleName() + (chip->isPresent() ? u": yes"_s : u": no"_s));
        QCOMPARE(chip->accessibleDescription(), chip->isPresent() ? u"found"_s : u"not found"_s);
    }
    QCOMPARE(chips, (QStringList{u"SSH key: yes"_s, row->hasGitHubCLI() ? u"gh CLI: yes"_s : u"gh CLI: no"_s,
                                 u"git helper: no"_s}));
}

void CloneDialogTest::anErrorIsRedOnRed()
{
    DialogFixture f;
    QVERIFY(QDir(f.folder.path()).mkpath(u"repo/inner"_s));
    f.paste(u"x/repo"_s);
    f.choose();
    clickOn(*f.dialog, u"Clone"_s);
    auto* error = f.dialog->findChild<BreakingLabel*>();
    // Its words depend on where the folder is.
    error->setText(u"Words"_s);
    const QImage picture = error->grab().toImage();
    const QColor ground = over(f.dialog->palette().color(QPalette::Window), Tint(SystemColor::red).at(0.08));
    QVERIFY(isNear(picture.pixelColor(picture.width() - 10, picture.height() / 2), ground));
    QVERIFY(isSame(ink(picture, picture.rect().adjusted(6, 6, -6, -6), ground),
                   inkOf(u"Words"_s, style::interfaceFont(11), SystemColor::red, ground)));
}

void CloneDialogTest::aSuccessIsGreen()
{
    DialogFixture f;
    f.paste(f.origin.path());
    f.choose();
    f.field(u"Folder name"_s).setText(u"copy"_s);
    clickOn(*f.dialog, u"Clone"_s);
    QTRY_VERIFY_WITH_TIMEOUT(f.dialog->form().didSucceed(), 20000);
    QVERIFY(f.isDrawn(u"✓ Cloned. Repository opened."_s, SystemColor::green, 11));
}

void CloneDialogTest::aChosenFolderStandsOut()
{
    DialogFixture f;
    QVERIFY(f.isDrawn(u"Folder name:"_s, Tint::primary(), 11));
    QVERIFY(f.isDrawn(u"(pick a folder)"_s, Tint::secondary(), 12));
    // A path that there is room for.
    f.app.filePanels.openAnswer = {{QUrl::fromLocalFile(u"/parent"_s), true}};
    clickOn(*f.dialog, u"Choose"_s);
    QVERIFY(f.isDrawn(QDir::toNativeSeparators(u"/parent"_s), Tint::primary(), 12));
}

void CloneDialogTest::longTextsStayInTheDialog()
{
    DialogFixture f;
    const int width = f.dialog->width();
    const QString deep = f.folder.path() + u'/' + QString(200, u'x');
    QVERIFY(QDir().mkpath(deep + u"/inner"_s));
    f.app.filePanels.openAnswer = {{QUrl::fromLocalFile(f.folder.path()), true}};
    clickOn(*f.dialog, u"Choose"_s);
    f.paste(QString(2000, u'y'));
    f.field(u"Folder name"_s).setText(QString(200, u'x'));
    clickOn(*f.dialog, u"Clone"_s);
    QVERIFY(!f.error().isEmpty());
    QCOMPARE(f.dialog->width(), width);
    QVERIFY(f.dialog->height() < 600);
}

const kelm::test::Registered<CloneDialogTest> registered(kelm::test::Toolkit::widgets);

} // namespace clone_dialog_test

#include "clone_dialog_test.moc"
