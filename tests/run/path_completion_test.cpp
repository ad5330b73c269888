#include "platform/files/native_path.h"
#include "run/path_completion.h"
#include "support/terminal_fixture.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QDirIterator>
#include <QScopeGuard>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

namespace path_completion_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class PathCompletionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneNameCompletesTheLine_data();
    void oneNameCompletesTheLine();
    void severalNamesAreListed();
    void emptyLineListsTheFolder();
    void noNameGivesNothing_data();
    void noNameGivesNothing();
    void namesStandInTheOrderOfTheListing();
    void folderThatCannotBeReadGivesNothing();
    void slashAloneTakesTheFoldersOwnName();
    void nameThatIsNotUtf8KeepsItsBytes();
    void namesAreListedAsTheyAreShown();
};

void PathCompletionTest::oneNameCompletesTheLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("completed");
    const auto row = [](const char* name, const QString& line, const QString& completed) {
        QTest::newRow(name) << line << completed;
    };
    row("file", u"cat READ"_s, u"cat README.md"_s);
    row("folder gets no slash", u"cd src"_s, u"cd src"_s);
    row("beginning of a folder", u"cd sr"_s, u"cd src"_s);
    row("word alone", u"READ"_s, u"README.md"_s);
    row("hidden file", u"cat .hid"_s, u"cat .hidden"_s);
    row("in a folder", u"cat src/ma"_s, u"cat src/main.c"_s);
    row("in a folder below", u"cat src/inner/d"_s, u"cat src/inner/deep"_s);
    row("slash at the end is lost", u"cat src/"_s, u"cat src"_s);
    row("slash first: the folder is the current one all the same", u"cat /sr"_s, u"cat //src"_s);
    row("slash first, in a folder", u"cat /src/ma"_s, u"cat /src/main.c"_s);
    row("by the name of this folder", u"cat ./READ"_s, u"cat ./README.md"_s);
    row("by the parent", u"cat src/../READ"_s, u"cat src/../README.md"_s);
    row("two slashes", u"cat src//ma"_s, u"cat src/main.c"_s);
    row("only the last word", u"cp READ src/ma"_s, u"cp READ src/main.c"_s);
    row("blanks between words stay", u"cat   READ"_s, u"cat   README.md"_s);
    row("tab does not part words", u"cat\tx sr"_s, u"cat\tx src"_s);
    row("name with a blank comes unquoted", u"cat two"_s, u"cat two words"_s);
    row("Korean", u"cat 한"_s, u"cat 한글.txt"_s);
}

void PathCompletionTest::oneNameCompletesTheLine()
{
    QFETCH(QString, line);
    TerminalFixture fixture;
    fixture.makeFolder(u"src/inner"_s);
    for (const QString& name :
         {u"README.md"_s, u".hidden"_s, u"src/main.c"_s, u"src/inner/deep"_s, u"two words"_s, u"한글.txt"_s}) {
        fixture.makeFile(name);
    }
    QTEST(fixture.session->getTabCompletion(line).value_or(u"(none)"_s), "completed");
    QVERIFY(fixture.screen.writes.isEmpty());
}

void PathCompletionTest::severalNamesAreListed()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"src"_s);
    fixture.makeFile(u"src/main.c"_s);
    fixture.makeFile(u"src/main.h"_s);
    fixture.makeFile(u"src/Makefile"_s);
    QCOMPARE(fixture.session->getTabCompletion(u"cat src/ma"_s), std::nullopt);
    const QString names = PathCompletion(u"cat src/ma"_s, fixture.home()).names().front() == u"main.c"_s
                              ? u"main.c  main.h"_s
                              : u"main.h  main.c"_s;
    QCOMPARE(fixture.screen.writes,
             (QStringList{u"gray: \n"_s + names, u"cyan: "_s + TerminalSession::promptText(fixture.home()),
                          u"green: cat src/ma"_s}));
}

void PathCompletionTest::emptyLineListsTheFolder()
{
    TerminalFixture fixture;
    QCOMPARE(fixture.session->getTabCompletion(u""_s), std::nullopt);
    QVERIFY(fixture.screen.writes.isEmpty());
    fixture.makeFile(u"only"_s);
    QCOMPARE(fixture.session->getTabCompletion(u""_s), u"only"_s);
    QCOMPARE(fixture.session->getTabCompletion(u"cat "_s), u"cat only"_s);
    fixture.makeFile(u".hidden"_s);
    QCOMPARE(fixture.session->getTabCompletion(u""_s), std::nullopt);
    QCOMPARE(fixture.screen.writes.size(), 3);
    QVERIFY(fixture.screen.writes[0] == u"gray: \nonly  .hidden"_s ||
            fixture.screen.writes[0] == u"gray: \n.hidden  only"_s);
    QCOMPARE(fixture.screen.writes[2], u"green: "_s);
}

void PathCompletionTest::noNameGivesNothing_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("no such name") << u"cat x"_s;
    QTest::newRow("other case") << u"cat readme"_s;
    QTest::newRow("no such folder") << u"cat nowhere/x"_s;
    QTest::newRow("file in the place of a folder") << u"cat README.md/x"_s;
    QTest::newRow("tilde is a name") << u"cat ~/READ"_s;
    QTest::newRow("absolute path") << u"cat /etc/host"_s;
    QTest::newRow("quotes are part of the name") << u"cat \"READ"_s;
    QTest::newRow("this folder and its parent are not listed") << u"cat .."_s;
}

void PathCompletionTest::noNameGivesNothing()
{
    QFETCH(QString, line);
    TerminalFixture fixture;
    fixture.makeFile(u"README.md"_s);
    QCOMPARE(fixture.session->getTabCompletion(line), std::nullopt);
    QVERIFY(fixture.screen.writes.isEmpty());
}

void PathCompletionTest::namesStandInTheOrderOfTheListing()
{
    TerminalFixture fixture;
    for (int number = 0; number < 50; ++number) {
        fixture.makeFile(u"name%1"_s.arg(number));
    }
    const PathCompletion completion(u"name"_s, fixture.home());
    QStringList listing;
    QDirIterator iterator(fixture.home(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (iterator.hasNext()) {
        iterator.next();
        listing.append(iterator.fileName());
    }
    QCOMPARE(completion.names(), listing);
    QCOMPARE(listing.size(), 50);
}

void PathCompletionTest::folderThatCannotBeReadGivesNothing()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"closed"_s);
    fixture.makeFile(u"closed/file"_s);
    QVERIFY(QFile::setPermissions(fixture.path(u"closed"_s), QFile::Permissions()));
    std::optional<QString> completed;
    {
        const Unprivileged user;
        completed = fixture.session->getTabCompletion(u"cat closed/f"_s);
    }
    QVERIFY(QFile::setPermissions(fixture.path(u"closed"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(completed, std::nullopt);
    QVERIFY(fixture.screen.writes.isEmpty());
}

void PathCompletionTest::slashAloneTakesTheFoldersOwnName()
{
    TerminalFixture fixture;
    fixture.makeFolder(u"folder"_s);
    fixture.session->executeCommand(u"cd folder"_s);
    // The slash is lost, so the folder itself is what is completed, beside its own place.
    QCOMPARE(fixture.session->getTabCompletion(u"ls /"_s), u"ls //folder"_s);
}

void PathCompletionTest::nameThatIsNotUtf8KeepsItsBytes()
{
    TerminalFixture fixture;
    const RawFolder raw(fixture);
    const QString line = u"ls "_s + raw.name;
    const QString lineBelow = line + u"/inner"_s;
    QCOMPARE(fixture.session->getTabCompletion(u"ls caf"_s), line);
    QCOMPARE(fixture.session->getTabCompletion(line + u"/in"_s), lineBelow);
    // The shell is given the same bytes.
    QCOMPARE(fixture.run(line), QStringList{u"output: green=inner\n"_s});
}

void PathCompletionTest::namesAreListedAsTheyAreShown()
{
    TerminalFixture fixture;
    fixture.makeFile(u"cafe\n"_s);
    const QByteArray raw = nativePath(fixture.path(pathOfNative("caf\xe9")));
    QCOMPARE(::mkdir(raw.constData(), 0700), 0);
    const auto tidy = qScopeGuard([&raw] { ::rmdir(raw.constData()); });
    QCOMPARE(fixture.session->getTabCompletion(u"cd caf"_s), std::nullopt);
    QCOMPARE(fixture.screen.writes.size(), 3);
    QVERIFY(fixture.screen.writes[0] == u"gray: \ncaf⟨E9⟩  cafe⟨U+000A⟩"_s ||
            fixture.screen.writes[0] == u"gray: \ncafe⟨U+000A⟩  caf⟨E9⟩"_s);
    QCOMPARE(fixture.screen.writes[2], u"green: cd caf"_s);
}

const kelm::test::Registered<PathCompletionTest> registered;

} // namespace path_completion_test

#include "path_completion_test.moc"
