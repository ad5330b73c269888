#include "git/panel/view/branch_row.h"
#include "git/panel/view/commit_row.h"
#include "git/panel/view/panel_fixture.h"
#include "git/panel/view/remote_row.h"
#include "git/panel/view/row_menu.h"
#include "git/panel/view/stash_row.h"
#include "git/panel/view/tag_row.h"
#include "platform/text/platform_words.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QMenu>

namespace row_menu_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

QStringList namesOf(const QList<RowAction>& actions)
{
    QStringList names;
    for (const RowAction& action : actions) {
        names.append(action.help);
    }
    return names;
}

/// Opens the menu of the row that reads `line`, by key.
QMenu* menuOf(RowList& list, const QString& line)
{
    list.setFocus(Qt::TabFocusReason);
    list.setCurrentIndex(list.model()->index(itemOf(list, line), 0));
    QTest::keyClick(&list, Qt::Key_F10, Qt::ShiftModifier);
    return list.findChild<QMenu*>();
}

} // namespace

class RowMenuTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void everyListOffersWhatCanBeCopied_data();
    void everyListOffersWhatCanBeCopied();
    void changedFileIsOpenedRevealedAndCopied();
    void deletedFileIsOnlyCopied();
    void fileInConflictIsOpened_data();
    void fileInConflictIsOpened();
    void renamedFileHasItsNewPlace();
};

void RowMenuTest::everyListOffersWhatCanBeCopied_data()
{
    QTest::addColumn<QList<RowAction>>("menu");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("copied");
    const QString sha = u"0123456789abcdef0123456789abcdef01234567"_s;

    QTest::newRow("commit") << CommitRow{{sha, u"A"_s, u"2024-02-03"_s, u"Mend it"_s}, {}}.content().menu
                            << QStringList{u"Copy SHA"_s, u"Copy Summary"_s} << QStringList{sha, u"Mend it"_s};
    GitBranch branch;
    branch.name = u"feature/x"_s;
    QTest::newRow("branch") << BranchRow{branch, false, {}, {}, {}}.content().menu << QStringList{u"Copy Name"_s}
                            << QStringList{branch.name};
    QTest::newRow("current branch") << BranchRow{branch, true, {}, {}, {}}.content().menu << QStringList{u"Copy Name"_s}
                                    << QStringList{branch.name};
    QTest::newRow("remote branch") << RemoteBranchRow{branch, {}}.content().menu << QStringList{u"Copy Name"_s}
                                   << QStringList{branch.name};
    QTest::newRow("stash") << StashRow{{0, u"stash@{0}"_s, u"WIP"_s}, {}, {}, {}}.content().menu
                           << QStringList{u"Copy Name"_s, u"Copy Message"_s} << QStringList{u"stash@{0}"_s, u"WIP"_s};
    GitTag tag;
    tag.name = u"v1"_s;
    QTest::newRow("tag without an object")
        << TagRow{tag, {}, {}}.content().menu << QStringList{u"Copy Name"_s} << QStringList{u"v1"_s};
    tag.sha = sha;
    QTest::newRow("tag") << TagRow{tag, {}, {}}.content().menu << QStringList{u"Copy Name"_s, u"Copy SHA"_s}
                         << QStringList{u"v1"_s, sha};
    GitRemote remote;
    remote.name = u"origin"_s;
    remote.url = u"https://example.org/r.git"_s;
    QTest::newRow("remote") << RemoteRow{remote, {}, {}, {}, {}}.content().menu
                            << QStringList{u"Copy Name"_s, u"Copy URL"_s} << QStringList{remote.name, remote.url};
}

void RowMenuTest::everyListOffersWhatCanBeCopied()
{
    QFETCH(QList<RowAction>, menu);
    QFETCH(QStringList, copied);
    QTEST(namesOf(menu), "names");
    for (qsizetype index = 0; index < menu.size(); ++index) {
        menu[index].run();
        QCOMPARE(QGuiApplication::clipboard()->text(), copied[index]);
    }
}

void RowMenuTest::changedFileIsOpenedRevealedAndCopied()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.show();
    QMenu* menu = menuOf(f.list(), u"M a.txt"_s);
    QVERIFY(menu != nullptr);
    QCOMPARE(linesOf(*menu), (QStringList{u"Show Diff"_s, u"-"_s, u"Stage"_s, u"Discard"_s, u"-"_s, u"Open File"_s,
                                          inPlatformWords(u"Reveal in Finder"_s), u"Copy Path"_s}));
    choose(*menu, inPlatformWords(u"Reveal in Finder"_s));
    QCOMPARE(f.workspace.revealed, QList<QUrl>{QUrl::fromLocalFile(f.repo.filePath(u"a.txt"_s))});
    QTRY_VERIFY(f.list().findChild<QMenu*>() == nullptr);
    choose(*menuOf(f.list(), u"M a.txt"_s), u"Copy Path"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), f.repo.filePath(u"a.txt"_s));
    QTRY_VERIFY(f.list().findChild<QMenu*>() == nullptr);
    choose(*menuOf(f.list(), u"M a.txt"_s), u"Open File"_s);
    QTRY_VERIFY(f.app.state.currentDocument() && f.app.state.currentDocument()->fileURL());
    QCOMPARE(f.app.state.currentDocument()->fileURL()->toLocalFile(), f.repo.filePath(u"a.txt"_s));
}

void RowMenuTest::deletedFileIsOnlyCopied()
{
    PanelFixture f;
    f.repo.remove(u"a.txt"_s);
    f.show();
    QMenu* menu = menuOf(f.list(), u"D a.txt"_s);
    QVERIFY(menu != nullptr);
    QCOMPARE(linesOf(*menu), (QStringList{u"Show Diff"_s, u"-"_s, u"Stage"_s, u"Discard"_s, u"-"_s, u"Copy Path"_s}));
}

void RowMenuTest::fileInConflictIsOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("line");
    QTest::newRow("both changed it") << u"a.txt"_s << u"! a.txt"_s;
    QTest::newRow("both added it") << u"new.txt"_s << u"A new.txt"_s;
}

void RowMenuTest::fileInConflictIsOpened()
{
    QFETCH(QString, name);
    QFETCH(QString, line);
    PanelFixture f;
    f.repo.git({u"checkout"_s, u"-q"_s, u"-b"_s, u"other"_s});
    f.repo.write(name, "theirs\n");
    f.repo.commitAll(u"theirs"_s);
    f.repo.git({u"checkout"_s, u"-q"_s, u"main"_s});
    f.repo.write(name, "ours\n");
    f.repo.commitAll(u"ours"_s);
    f.repo.tryGit({u"merge"_s, u"other"_s});
    f.show();
    clickRow(f.list(), line);
    QVERIFY(!f.view.diffPath());
    QTRY_VERIFY(f.app.state.currentDocument() && f.app.state.currentDocument()->fileURL());
    QCOMPARE(f.app.state.currentDocument()->fileURL()->toLocalFile(), f.repo.filePath(name));
    choose(*menuOf(f.list(), line), u"Show Diff"_s);
    QCOMPARE(f.view.diffPath(), std::optional(name));
}

void RowMenuTest::renamedFileHasItsNewPlace()
{
    GitFileStatus file;
    file.path = u"old -> new"_s;
    const QUrl tree = QUrl::fromLocalFile(u"/r"_s);
    QCOMPARE(fileOf(file, tree).toLocalFile(), u"/r/old -> new"_s);
    file.staged = GitFileChange::renamed;
    QCOMPARE(fileOf(file, tree).toLocalFile(), u"/r/new"_s);
}

const kelm::test::Registered<RowMenuTest> registered(kelm::test::Toolkit::widgets);

} // namespace row_menu_test

#include "row_menu_test.moc"
