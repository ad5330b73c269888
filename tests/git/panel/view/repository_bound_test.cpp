#include "git/panel/view/clone_dialog.h"
#include "git/panel/view/panel_fixture.h"
#include "git/viewer/view/commit_sheet.h"
#include "git/viewer/view/diff_list.h"
#include "git/viewer/view/diff_sheet.h"
#include "git/viewer/view/diff_viewer.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QDialog>

namespace repository_bound_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A panel over one repository, and another one that looks the same.
struct TwoRepositories : PanelFixture
{
    TwoRepositories()
    {
        other.write(u"a.txt"_s, "one\n");
        other.commitAll(u"first"_s);
        for (const TemporaryRepository* each : {&repo, &other}) {
            each->git({u"branch"_s, u"side"_s});
            each->git({u"remote"_s, u"add"_s, u"origin"_s, u"/old"_s});
            each->write(u"a.txt"_s, "two\n");
        }
    }

    void openOther() { app.state.setCurrentProject(other.url()); }
    QDialog* dialog() const
    {
        for (auto* dialog : window.findChildren<QDialog*>()) {
            if (dialog->isVisible()) {
                return dialog;
            }
        }
        return nullptr;
    }
    QByteArray inOther(const QStringList& arguments) const { return other.git(arguments).trimmed(); }

    TemporaryRepository other;
};

} // namespace

class RepositoryBoundTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        useFixedGitEnvironment();
        style::installOn(*qApp);
    }

    void questionsGo_data();
    void questionsGo();
    void anAnswerThatComesLateDoesNothing();
    void sheetsGo();
    void sheetsGoHoweverTheRepositoryDoes_data();
    void sheetsGoHoweverTheRepositoryDoes();
    void sheetsStayWhileTheirRepositoryChanges();
    void aCloneDialogStays();
    void aSheetThatStaysDoesNothing();
    void aCommitThatStaysIsWhatItWas();
    void anAddressThatIsEditedGoes();
    void theNextCommitIsANewOne();
    void aRefreshOfTheSameRepositoryLeavesAllOpen();
};

void RepositoryBoundTest::questionsGo_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("answer");
    QTest::newRow("merge") << u"Merge into current"_s << u"Merge"_s;
    QTest::newRow("delete") << u"Delete"_s << u"Force delete (-D)"_s;
}

void RepositoryBoundTest::questionsGo()
{
    QFETCH(QString, action);
    TwoRepositories f;
    f.show(SourceControlTab::branches);
    act(f.list(), u"side"_s, action);
    QVERIFY(f.dialog() != nullptr);
    f.openOther();
    QVERIFY(f.dialog() == nullptr);
    QCOMPARE(f.inOther({u"branch"_s, u"--list"_s, u"side"_s}), QByteArray("side"));
    QCOMPARE(f.output({u"branch"_s, u"--list"_s, u"side"_s}), QByteArray("side"));
}

void RepositoryBoundTest::anAnswerThatComesLateDoesNothing()
{
    TwoRepositories f;
    f.show(SourceControlTab::branches);
    act(f.list(), u"side"_s, u"Delete"_s);
    const QPointer<QDialog> question = f.dialog();
    QVERIFY(question);
    QAbstractButton* const answer = visibleButton(*question, u"Force delete (-D)"_s);
    // Nobody is told that the project is another one.
    const QSignalBlocker silent(f.git());
    f.git().open(f.other.url());
    QVERIFY(f.dialog() != nullptr);
    answer->click();
    QCOMPARE(f.inOther({u"branch"_s, u"--list"_s, u"side"_s}), QByteArray("side"));
}

void RepositoryBoundTest::sheetsGo()
{
    TwoRepositories f;
    f.show();
    clickRow(f.list(), u"M a.txt"_s);
    QVERIFY(f.dialog() != nullptr);
    f.openOther();
    QVERIFY(f.dialog() == nullptr);
    QVERIFY(!f.view.diffPath());
    f.view.setTab(SourceControlTab::history);
    clickRow(f.list(), f.lines().first());
    QVERIFY(f.dialog() != nullptr && f.view.historySha());
    f.app.state.setCurrentProject(f.repo.url());
    QVERIFY(f.dialog() == nullptr);
    QVERIFY(!f.view.historySha());
}

void RepositoryBoundTest::sheetsGoHoweverTheRepositoryDoes_data()
{
    using Change = std::function<void(TwoRepositories&)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("another one is opened") << Change([](TwoRepositories& f) { f.git().open(f.other.url()); });
    QTest::newRow("another one was read meanwhile")
        << Change([](TwoRepositories& f) { f.git().take(f.other.url(), f.git().snapshot()); });
    QTest::newRow("none is open") << Change([](TwoRepositories& f) { f.git().clearState(); });
    QTest::newRow("the project is a plain folder") << Change([](TwoRepositories& f) {
        const QTemporaryDir plain;
        f.app.state.setCurrentProject(QUrl::fromLocalFile(plain.path()));
    });
    QTest::newRow("the document's folder is left") << Change([](TwoRepositories& f) {
        f.app.state.openFile(QUrl::fromLocalFile(f.other.filePath(u"a.txt"_s)));
        f.app.state.setCurrentProject(std::nullopt);
    });
}

void RepositoryBoundTest::sheetsGoHoweverTheRepositoryDoes()
{
    QFETCH(std::function<void(TwoRepositories&)>, change);
    for (const bool isCommit : {false, true}) {
        TwoRepositories f;
        f.show(isCommit ? SourceControlTab::history : SourceControlTab::changes);
        clickRow(f.list(), isCommit ? f.lines().first() : u"M a.txt"_s);
        const QPointer<QDialog> sheet = f.dialog();
        QVERIFY(sheet);
        QCOMPARE(f.view.historySha().has_value(), isCommit);
        QCOMPARE(f.view.diffPath().has_value(), !isCommit);
        change(f);
        QVERIFY(f.dialog() == nullptr);
        QVERIFY(!f.view.diffPath());
        QVERIFY(!f.view.historySha());
        QTRY_VERIFY(!sheet);
    }
}

void RepositoryBoundTest::sheetsStayWhileTheirRepositoryChanges()
{
    TwoRepositories f;
    f.show();
    clickRow(f.list(), u"M a.txt"_s);
    const QPointer<QDialog> sheet = f.dialog();
    f.repo.git({u"checkout"_s, u"-q"_s, u"side"_s});
    f.git().refreshAll();
    QCOMPARE(f.git().branch(), u"side"_s);
    f.view.syncRepo();
    QCOMPARE(f.dialog(), sheet);
    QCOMPARE(f.view.diffPath(), std::optional(u"a.txt"_s));
}

void RepositoryBoundTest::aCloneDialogStays()
{
    TwoRepositories f;
    f.show();
    f.view.setShowCloneDialog(true);
    auto* dialog = f.window.findChild<CloneDialog*>();
    dialog->form().setRemoteURL(u"typed"_s);
    f.openOther();
    QVERIFY(dialog->isVisible());
    QVERIFY(f.view.showCloneDialog());
    QCOMPARE(dialog->form().remoteURL(), u"typed"_s);
    f.git().clearState();
    QVERIFY(dialog->isVisible());
}

void RepositoryBoundTest::aCommitThatStaysIsWhatItWas()
{
    TwoRepositories f;
    f.git().open(f.repo.url());
    const QString sha = QString::fromLatin1(f.output({u"rev-parse"_s, u"HEAD"_s}));
    CommitDetailView sheet(f.git(), sha, nullptr);
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    const QString content = sheet.content();
    QVERIFY(content.contains(u"+one"));
    f.git().open(f.other.url());
    sheet.hide();
    sheet.show();
    QCOMPARE(sheet.content(), content);
    QCOMPARE(sheet.viewer().diffText(), content);
}

void RepositoryBoundTest::aSheetThatStaysDoesNothing()
{
    TwoRepositories f;
    f.git().open(f.repo.url());
    DiffSheetView sheet(f.git(), u"a.txt"_s, nullptr);
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    QVERIFY(sheet.diff().contains(u"+two"));
    QTRY_COMPARE(sheet.counts(), u"Working: 1 hunk · Staged: none"_s);
    f.git().open(f.other.url());
    // It has no part in what the other one says of a file of the same name.
    QCOMPARE(sheet.counts(), QString());
    QTest::mouseClick(sheet.viewer().list().button({0, 0, HunkControl::Role::action}), Qt::LeftButton);
    QCOMPARE(f.inOther({u"diff"_s, u"--cached"_s}), QByteArray());
    QCOMPARE(f.output({u"diff"_s, u"--cached"_s}), QByteArray());
    sheet.setStagedView(true);
    sheet.setStagedView(false);
    QVERIFY(sheet.diff().isEmpty());
}

void RepositoryBoundTest::anAddressThatIsEditedGoes()
{
    TwoRepositories f;
    f.show(SourceControlTab::remotes);
    const auto editor = [&] { return f.list().viewport()->findChild<QLineEdit*>(); };
    act(f.list(), u"origin / /old"_s, u"Edit URL"_s);
    QTest::keyClicks(editor(), u"/new"_s);
    f.openOther();
    QTRY_VERIFY(editor() == nullptr);
    QCOMPARE(f.lines(), QStringList{u"origin / /old"_s});
    act(f.list(), u"origin / /old"_s, u"Edit URL"_s);
    QCOMPARE(editor()->text(), u"/old"_s);
    QCOMPARE(f.inOther({u"remote"_s, u"get-url"_s, u"origin"_s}), QByteArray("/old"));
}

void RepositoryBoundTest::theNextCommitIsANewOne()
{
    TwoRepositories f;
    f.show();
    f.view.setCommitMessage(u"typed"_s);
    f.click(u"Amend last"_s);
    f.openOther();
    QCOMPARE(f.view.commitMessage(), u"typed"_s);
    f.click(u"Stage All"_s);
    f.click(u"Commit"_s);
    QCOMPARE(f.inOther({u"log"_s, u"--format=%s"_s}), QByteArray("typed\nfirst"));
    QCOMPARE(f.output({u"log"_s, u"--format=%s"_s}), QByteArray("first"));
}

void RepositoryBoundTest::aRefreshOfTheSameRepositoryLeavesAllOpen()
{
    TwoRepositories f;
    f.show();
    f.click(u"Amend last"_s);
    f.view.setTab(SourceControlTab::branches);
    act(f.list(), u"side"_s, u"Delete"_s);
    f.view.syncRepo();
    QVERIFY(f.dialog() != nullptr);
    clickOn(*f.dialog(), u"Force delete (-D)"_s);
    QCOMPARE(f.output({u"branch"_s, u"--list"_s, u"side"_s}), QByteArray());
    f.view.setTab(SourceControlTab::changes);
    QVERIFY(static_cast<QCheckBox*>(visibleButton(f.view, u"Amend last"_s))->isChecked());
}

const kelm::test::Registered<RepositoryBoundTest> registered(kelm::test::Toolkit::widgets);

} // namespace repository_bound_test

#include "repository_bound_test.moc"
