#include "git/diff/diff_parser.h"
#include "git/service/git_names.h"
#include "git/service/git_service.h"
#include "platform/files/native_path.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

namespace git_names_operations_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

struct Name
{
    const char* tag;
    QString name;
    QString shown;
};

/// Names that git quotes, takes for options or patterns, or cannot be told in UTF-8.
const QList<Name>& oddNames()
{
    static const QList<Name> names{
        {"blank", u"a b.txt"_s, u"a b.txt"_s},
        {"arrow", u"a -> b"_s, u"a -> b"_s},
        {"Korean", u"한국어.txt"_s, u"한국어.txt"_s},
        {"quotes", u"\"q\".txt"_s, u"\"q\".txt"_s},
        {"line feed", u"a\nb.txt"_s, u"a\u27e8U+000A\u27e9b.txt"_s},
        {"tab", u"a\tb.txt"_s, u"a\u27e8U+0009\u27e9b.txt"_s},
        {"back slash", u"a\\b\\n.txt"_s, u"a\\b\\n.txt"_s},
        {"hyphen", u"-f"_s, u"-f"_s},
        {"star", u"*"_s, u"*"_s},
        {"brackets", u"[a]"_s, u"[a]"_s},
        {"magic", u":(top)plain.txt"_s, u":(top)plain.txt"_s},
        {"exclamation", u":!plain.txt"_s, u":!plain.txt"_s},
        {"no UTF-8", pathOfNative("caf\xe9.txt"), u"caf\u27e8E9\u27e9.txt"_s},
        {"half UTF-8", pathOfNative("\xed\x95\xc3 x"),
         u"\u27e8ED\u27e9\u27e8"
         "95\u27e9\u27e8"
         "C3\u27e9 x"_s},
        {"direction", u"a\u202etxt.exe"_s, u"a\u27e8U+202E\u27e9txt.exe"_s},
        {"folder", u"한 글/\"x\"\n/ y"_s, u"한 글/\"x\"\u27e8U+000A\u27e9/ y"_s},
        {"blanks at the ends", u" x "_s, u"\u27e8U+0020\u27e9x\u27e8U+0020\u27e9"_s},
    };
    return names;
}

QByteArray lines(int count, const QByteArray& changed = {})
{
    QByteArray text;
    for (int line = 1; line <= count; ++line) {
        text += (line == 1 && !changed.isEmpty() ? changed : "line " + QByteArray::number(line)) + '\n';
    }
    return text;
}

} // namespace

/// Every operation on files of every name, by way of what the list of changes holds.
class GitNamesOperationsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();
    void newFileIsStagedAndUnstaged_data() { addNames(); }
    void newFileIsStagedAndUnstaged();
    void changeIsDiffedStagedAndDiscarded_data() { addNames(); }
    void changeIsDiffedStagedAndDiscarded();
    void hunkIsStagedAndUnstaged_data() { addNames(); }
    void hunkIsStagedAndUnstaged();
    void historyIsRead_data() { addNames(); }
    void historyIsRead();
    void renameIsOneEntryAndUnstagedWhole_data() { addNames(); }
    void renameIsOneEntryAndUnstagedWhole();
    void renameInTheFolderIsStagedWholeAndBroughtBack_data() { addNames(); }
    void renameInTheFolderIsStagedWholeAndBroughtBack();
    void settingsOfQuotingChangeNothing();
    void untrackedFileIsNotDiscarded();

private:
    std::unique_ptr<TemporaryRepository> repository_;
    std::unique_ptr<GitService> git_;

    static void addNames()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        for (const Name& name : oddNames()) {
            QTest::newRow(name.tag) << name.name << name.shown;
        }
    }
    QByteArray native(const QString& name) const { return nativePath(repository_->filePath(name)); }
    void write(const QString& name, const QByteArray& content) const
    {
        const QByteArray path = native(name);
        for (qsizetype slash = path.indexOf('/', 1); slash > 0; slash = path.indexOf('/', slash + 1)) {
            ::mkdir(path.first(slash).constData(), 0700);
        }
        FILE* const file = std::fopen(path.constData(), "wb");
        QVERIFY(file != nullptr);
        std::fwrite(content.constData(), 1, std::size_t(content.size()), file);
        std::fclose(file);
    }
    QByteArray read(const QString& name) const
    {
        QByteArray content;
        if (FILE* const file = std::fopen(native(name).constData(), "rb")) {
            content.resize(100000);
            content.resize(qsizetype(std::fread(content.data(), 1, std::size_t(content.size()), file)));
            std::fclose(file);
        }
        return content;
    }
    void commit() const { repository_->commitAll(u"commit"_s); }
    void open()
    {
        QVERIFY(git_->open(repository_->url()));
        takeError();
    }
    QString takeError()
    {
        QCoreApplication::sendPostedEvents();
        const QString text = git_->lastError().value_or(QString());
        git_->setLastError({});
        return text;
    }
    /// The entry of a name; the test fails when there is none.
    GitFileStatus entry(const QString& name) const
    {
        for (const GitFileStatus& file : git_->status()) {
            if (namesOf(file).current == name) {
                return file;
            }
        }
        QTest::qFail(qPrintable(u"no entry for "_s + shownPath(name)), __FILE__, __LINE__);
        return {};
    }
    /// The other files, which every pattern would match, still have their changes.
    void verifyOthersAreUntouched() const
    {
        QCOMPARE(repository_->read(u"plain.txt"_s), QByteArray("changed\n"));
        QCOMPARE(repository_->read(u"a"_s), QByteArray("changed\n"));
        QCOMPARE(entry(u"plain.txt"_s).unstaged, std::optional(GitFileChange::modified));
        QCOMPARE(entry(u"a"_s).staged, std::nullopt);
    }
};

void GitNamesOperationsTest::init()
{
    repository_ = std::make_unique<TemporaryRepository>();
    git_ = std::make_unique<GitService>(ProcessRunner::sharedSystem());
    repository_->write(u"plain.txt"_s, "1\n");
    repository_->write(u"a"_s, "1\n");
    commit();
    repository_->write(u"plain.txt"_s, "changed\n");
    repository_->write(u"a"_s, "changed\n");
}

void GitNamesOperationsTest::newFileIsStagedAndUnstaged()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    write(name, "1\n");
    // A folder that is new as a whole is one entry.
    const bool isInFolder = name.contains(u'/');
    const QString listed = isInFolder ? name.first(name.indexOf(u'/') + 1) : name;
    open();
    const GitFileStatus untracked = entry(listed);
    QCOMPARE(untracked.unstaged, std::optional(GitFileChange::untracked));
    QVERIFY(shown.startsWith(shownNames(untracked)));
    git_->stage(namesToStage(untracked));
    QCOMPARE(takeError(), QString());
    const GitFileStatus staged = entry(name);
    QCOMPARE(shownNames(staged), shown);
    QCOMPARE(staged.staged, std::optional(GitFileChange::added));
    verifyOthersAreUntouched();
    git_->unstage(namesToUnstage(staged));
    QCOMPARE(entry(listed).unstaged, std::optional(GitFileChange::untracked));
    verifyOthersAreUntouched();
    QVERIFY(isThere(repository_->filePath(namesOf(staged).current)));
}

void GitNamesOperationsTest::changeIsDiffedStagedAndDiscarded()
{
    QFETCH(QString, name);
    write(name, "1\n");
    repository_->git({u"--literal-pathspecs"_s, u"add"_s, u"--"_s, name});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"x"_s});
    write(name, "2\n");
    open();
    const GitFileStatus file = entry(name);
    const auto hasOneFile = [](const QString& diff) { return diff.count(u"diff --git"_s) == 1; };
    const QString diff = git_->diff(namesToDiff(file, false), false);
    QVERIFY2(hasOneFile(diff) && diff.contains(u"+2\n"_s), qPrintable(diff));
    git_->stage(namesToStage(file));
    QVERIFY(git_->diff(namesToDiff(entry(name), false), false).isEmpty());
    QVERIFY(hasOneFile(git_->diff(namesToDiff(entry(name), true), true)));
    git_->unstage(namesToUnstage(entry(name)));
    git_->discardChanges(namesToDiscard(entry(name)));
    QCOMPARE(takeError(), QString());
    QCOMPARE(read(name), QByteArray("1\n"));
    verifyOthersAreUntouched();
    QCOMPARE(git_->status().size(), 2);
}

void GitNamesOperationsTest::hunkIsStagedAndUnstaged()
{
    QFETCH(QString, name);
    write(name, lines(30));
    repository_->git({u"--literal-pathspecs"_s, u"add"_s, u"--"_s, name});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"x"_s});
    write(name, lines(30, "changed") + "new\n");
    open();
    const auto diffOf = [this, &name](bool staged) {
        return DiffParser::parse(git_->diff(namesToDiff(entry(name), staged), staged));
    };
    const auto working = diffOf(false);
    QCOMPARE(working.size(), 1);
    QCOMPARE(working[0].hunks.size(), 2);
    const auto patch = working[0].patch(0);
    QVERIFY(patch.has_value());
    QVERIFY2(git_->applyPartialPatch(*patch, false).isSuccess(), qPrintable(takeError()));
    QCOMPARE(entry(name).staged, std::optional(GitFileChange::modified));
    QCOMPARE(diffOf(false)[0].hunks.size(), 1);
    const auto staged = diffOf(true);
    QCOMPARE(staged[0].hunks.size(), 1);
    QVERIFY(git_->applyPartialPatch(*staged[0].patch(0), true).isSuccess());
    QCOMPARE(entry(name).staged, std::nullopt);
    QCOMPARE(read(name), lines(30, "changed") + "new\n");
}

void GitNamesOperationsTest::historyIsRead()
{
    QFETCH(QString, name);
    write(name, "1\n2\n");
    repository_->git({u"--literal-pathspecs"_s, u"add"_s, u"--"_s, name});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"of the name"_s});
    open();
    const QList<GitCommit> commits = git_->fileLog(name, 10);
    QCOMPARE(commits.size(), 1);
    QCOMPARE(commits[0].summary, u"of the name"_s);
    QCOMPARE(git_->blame(name).size(), 2);
    QCOMPARE(takeError(), QString());
}

void GitNamesOperationsTest::renameIsOneEntryAndUnstagedWhole()
{
    QFETCH(QString, name);
    QFETCH(QString, shown);
    // To the next of the names.
    qsizetype at = 0;
    while (oddNames()[at].name != name) {
        ++at;
    }
    const Name& next = oddNames()[(at + 1) % oddNames().size()];
    write(name, lines(20));
    repository_->git({u"--literal-pathspecs"_s, u"add"_s, u"--"_s, name});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"x"_s});
    write(next.name, lines(20));
    QCOMPARE(::unlink(native(name).constData()), 0);
    repository_->git({u"--literal-pathspecs"_s, u"add"_s, u"--"_s, name, next.name});
    open();
    const GitFileStatus file = entry(next.name);
    QCOMPARE(file.staged, std::optional(GitFileChange::renamed));
    QCOMPARE(namesOf(file).previous, std::optional(name));
    QCOMPARE(shownNames(file), shown + u" -> "_s + next.shown);
    const QString diff = git_->diff(namesToDiff(file, true), true);
    QVERIFY2(diff.contains(u"rename from "_s) && diff.count(u"diff --git"_s) == 1, qPrintable(diff));
    git_->unstage(namesToUnstage(file));
    QCOMPARE(takeError(), QString());
    QCOMPARE(entry(name).unstaged, std::optional(GitFileChange::deleted));
    QVERIFY(repository_->git({u"diff"_s, u"--cached"_s, u"--name-only"_s}).isEmpty());
    QCOMPARE(read(next.name), lines(20));
}

void GitNamesOperationsTest::renameInTheFolderIsStagedWholeAndBroughtBack()
{
    QFETCH(QString, name);
    const QString next = u"new \"name\""_s;
    write(name, lines(20));
    repository_->git({u"--literal-pathspecs"_s, u"add"_s, u"--"_s, name});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"x"_s});
    write(next, lines(20));
    QCOMPARE(::unlink(native(name).constData()), 0);
    repository_->git({u"add"_s, u"-N"_s, u"--"_s, next});
    open();
    QCOMPARE(entry(next).unstaged, std::optional(GitFileChange::renamed));
    git_->discardChanges(namesToDiscard(entry(next)));
    QCOMPARE(takeError(), QString());
    QCOMPARE(read(name), lines(20));
    QCOMPARE(read(next), lines(20));
    QCOMPARE(::unlink(native(name).constData()), 0);
    git_->refreshStatus();
    git_->stage(namesToStage(entry(next)));
    QCOMPARE(takeError(), QString());
    QCOMPARE(entry(next).staged, std::optional(GitFileChange::renamed));
    verifyOthersAreUntouched();
}

void GitNamesOperationsTest::settingsOfQuotingChangeNothing()
{
    // Names as they are would make of one file that is not UTF-8 a status without any change.
    repository_->git({u"config"_s, u"core.quotePath"_s, u"false"_s});
    const QString raw = pathOfNative("caf\xe9.txt");
    write(raw, "1\n");
    write(u"한국어.txt"_s, "1\n");
    open();
    QCOMPARE(git_->status().size(), 4);
    QCOMPARE(entry(raw).unstaged, std::optional(GitFileChange::untracked));
    QCOMPARE(entry(u"한국어.txt"_s).unstaged, std::optional(GitFileChange::untracked));
}

void GitNamesOperationsTest::untrackedFileIsNotDiscarded()
{
    write(u"new \"file\""_s, "mine\n");
    open();
    git_->discardChanges(namesToDiscard(entry(u"new \"file\""_s)));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(git_->lastFailure().value_or(GitFailure{}).sentence(),
             u"git has no version of new \"file\" to go back to."_s);
    QVERIFY(takeError().contains(u"did not match"_s));
    QCOMPARE(read(u"new \"file\""_s), QByteArray("mine\n"));
    // Git's own words for what is no file at all.
    git_->discardChanges({u"nothing"_s});
    QVERIFY(takeError().contains(u"did not match"_s));
}

const Registered<GitNamesOperationsTest> registered;

} // namespace git_names_operations_test

#include "git_names_operations_test.moc"
