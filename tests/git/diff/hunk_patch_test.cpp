#include "git/diff/diff_parser.h"
#include "git/service/git_service.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

#include <random>

namespace hunk_patch_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// The text of one hunk's patch, and what git does with it.
class HunkPatchTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void init();

    void patchHoldsHeaderAndHunk_data();
    void patchHoldsHeaderAndHunk();
    void indexOutOfRangeGivesNoPatch();

    void stagingAHunkTouchesTheIndexAlone();
    void twoHunksAreStagedInEitherOrder_data();
    void twoHunksAreStagedInEitherOrder();
    void unstagingTakesTheHunkOutOfTheIndex();
    void kindsOfFiles_data();
    void kindsOfFiles();
    void missingFinalNewline_data();
    void missingFinalNewline();
    void linesThatLookLikeFileHeaders_data();
    void linesThatLookLikeFileHeaders();
    void refusalIsInGitsWords();
    void statusAloneIsFreshAfterwards();
    void randomEditsEndWhereGitAddEnds_data();
    void randomEditsEndWhereGitAddEnds();

private:
    std::unique_ptr<TemporaryRepository> repository_;
    std::unique_ptr<GitService> service_;

    QList<DiffFile> parsedDiff(const QString& path, bool staged)
    {
        return DiffParser::parse(service_->diff(path, staged));
    }
    /// Stages or unstages one hunk of the file's diff, as the diff sheet does.
    GitOpResult applyHunk(const QString& path, bool staged, qsizetype hunk = 0)
    {
        const auto files = parsedDiff(path, staged);
        return service_->applyPartialPatch(files.value(0).patch(hunk).value_or(u"no such hunk"_s), staged);
    }
    /// Applies hunk after hunk until none is left; the first failure otherwise.
    GitOpResult applyAllHunks(const QString& path, bool staged, const std::function<qsizetype(qsizetype)>& choose)
    {
        // A file of these tests has a few hunks. A line without newline that is staged with one never leaves the diff.
        for (int step = 0; step < 12; ++step) {
            const auto files = parsedDiff(path, staged);
            if (files.isEmpty() || files[0].hunks.isEmpty()) {
                return GitOpResult::success();
            }
            const GitOpResult result =
                service_->applyPartialPatch(*files[0].patch(choose(files[0].hunks.size())), staged);
            if (!result.isSuccess()) {
                return result;
            }
        }
        return GitOpResult::failure(u"no end"_s);
    }
    QString lastError()
    {
        QCoreApplication::sendPostedEvents();
        return service_->lastError().value_or(u"(none)"_s);
    }
};

void HunkPatchTest::init()
{
    repository_ = std::make_unique<TemporaryRepository>();
    service_ = std::make_unique<GitService>(ProcessRunner::sharedSystem());
    QVERIFY(service_->open(repository_->url()));
    QCoreApplication::sendPostedEvents();
    service_->setLastError({});
}

void HunkPatchTest::patchHoldsHeaderAndHunk_data()
{
    QTest::addColumn<QString>("diff");
    QTest::addColumn<int>("hunk");
    QTest::addColumn<QString>("patch");
    const auto row = [](const char* name, const QString& diff, int hunk, const QString& patch) {
        QTest::newRow(name) << diff << hunk << patch;
    };
    row("ordinary", u"diff --git a/f b/f\nindex 1..2 100644\n--- a/f\n+++ b/f\n@@ -1,2 +1,2 @@ s\n a\n-b\n+c"_s, 0,
        u"diff --git a/f b/f\nindex 1..2 100644\n--- a/f\n+++ b/f\n@@ -1,2 +1,2 @@ s\n a\n-b\n+c\n"_s);
    row("second hunk keeps its numbers",
        u"diff --git a/f b/f\n--- a/f\n+++ b/f\n@@ -1 +1,2 @@\n a\n+b\n@@ -40,7 +41,8 @@\n c\n+d"_s, 1,
        u"diff --git a/f b/f\n--- a/f\n+++ b/f\n@@ -40,7 +41,8 @@\n c\n+d\n"_s);
    row("extra empty line behind the last hunk", u"diff --git a/f b/f\n@@ -1 +1 @@\n-a\n+b\n"_s, 0,
        u"diff --git a/f b/f\n@@ -1 +1 @@\n-a\n+b\n \n"_s);
    row("no line naming the file", u"--- a/x\n+++ b/f\n@@ -1 +1 @@\n-a\n+b"_s, 0,
        u"diff --git a/f b/f\n--- a/f\n+++ b/f\n@@ -1 +1 @@\n-a\n+b\n"_s);
    row("nothing but a hunk", u"@@ -1 +1 @@\n-a\n+b"_s, 0,
        u"diff --git a/ b/\n--- a/\n+++ b/\n@@ -1 +1 @@\n-a\n+b\n"_s);
    row("percent sign in a made-up path", u"+++ b/%1 100%\n@@ -1 +1 @@\n a"_s, 0,
        u"diff --git a/%1 100% b/%1 100%\n--- a/%1 100%\n+++ b/%1 100%\n@@ -1 +1 @@\n a\n"_s);
    row("new file",
        u"diff --git a/n b/n\nnew file mode 100644\nindex 0..1\n--- /dev/null\n+++ b/n\n@@ -0,0 +1 @@\n+a"_s, 0,
        u"diff --git a/n b/n\nnew file mode 100644\nindex 0..1\n--- /dev/null\n+++ b/n\n@@ -0,0 +1 @@\n+a\n"_s);
    row("deleted file", u"diff --git a/d b/d\ndeleted file mode 100644\n--- a/d\n+++ /dev/null\n@@ -1 +0,0 @@\n-a"_s, 0,
        u"diff --git a/d b/d\ndeleted file mode 100644\n--- a/d\n+++ /dev/null\n@@ -1 +0,0 @@\n-a\n"_s);
    row("rename with a change",
        u"diff --git a/o b/n\nsimilarity index 90%\nrename from o\nrename to n\nindex 1..2\n"
        "--- a/o\n+++ b/n\n@@ -1 +1 @@\n-a\n+b"_s,
        0, u"diff --git a/o b/n\nrename from o\nrename to n\nindex 1..2\n--- a/o\n+++ b/n\n@@ -1 +1 @@\n-a\n+b\n"_s);
    row("modes and copies are dropped",
        u"diff --git a/o b/n\nold mode 100644\nnew mode 100755\ncopy from o\ncopy to n\nBinary files x\n"
        "@@ -1 +1 @@\n-a\n+b"_s,
        0, u"diff --git a/o b/n\n@@ -1 +1 @@\n-a\n+b\n"_s);
    row("marker gets another backslash", u"diff --git a/f b/f\n@@ -1 +1 @@\n-a\n\\ No newline at end of file\n+b"_s, 0,
        u"diff --git a/f b/f\n@@ -1 +1 @@\n-a\n\\\\ No newline at end of file\n+b\n"_s);
    row("carriage returns stay", u"diff --git a/f b/f\n@@ -1 +1 @@\n-a\r\n+b\r"_s, 0,
        u"diff --git a/f b/f\n@@ -1 +1 @@\n-a\r\n+b\r\n"_s);
    row("line without a sign is context", u"diff --git a/f b/f\n@@ -1 +1 @@\n\n\tx"_s, 0,
        u"diff --git a/f b/f\n@@ -1 +1 @@\n \n \tx\n"_s);
}

void HunkPatchTest::patchHoldsHeaderAndHunk()
{
    QFETCH(QString, diff);
    QFETCH(int, hunk);
    QFETCH(QString, patch);
    const auto files = DiffParser::parse(diff);
    QCOMPARE(files.size(), 1);
    QCOMPARE(files[0].patch(hunk), std::optional(patch));
}

void HunkPatchTest::indexOutOfRangeGivesNoPatch()
{
    const auto files = DiffParser::parse(u"diff --git a/f b/f\n@@ -1 +1 @@\n-a\n+b\n@@ -9 +9 @@\n-a\n+b"_s);
    QVERIFY(files[0].patch(0).has_value());
    QVERIFY(files[0].patch(1).has_value());
    QCOMPARE(files[0].patch(-1), std::nullopt);
    QCOMPARE(files[0].patch(2), std::nullopt);
    QCOMPARE(DiffFile().patch(0), std::nullopt);
}

namespace {

/// Lines "1" to `count`, some of them changed.
QByteArray lines(int count, const QList<int>& changed = {})
{
    QByteArray text;
    for (int number = 1; number <= count; ++number) {
        text += (changed.contains(number) ? "changed " : "line ") + QByteArray::number(number) + '\n';
    }
    return text;
}

} // namespace

void HunkPatchTest::stagingAHunkTouchesTheIndexAlone()
{
    repository_->write(u"f"_s, lines(60));
    repository_->commitAll(u"base"_s);
    repository_->write(u"f"_s, lines(60, {5, 30, 55}));
    QCOMPARE(parsedDiff(u"f"_s, false)[0].hunks.size(), 3);
    QCOMPARE(applyHunk(u"f"_s, false, 1), GitOpResult::success());
    QCOMPARE(repository_->staged(u"f"_s), lines(60, {30}));
    QCOMPARE(repository_->read(u"f"_s), lines(60, {5, 30, 55}));
    QCOMPARE(parsedDiff(u"f"_s, false)[0].hunks.size(), 2);
    QCOMPARE(parsedDiff(u"f"_s, true)[0].hunks.size(), 1);
}

void HunkPatchTest::twoHunksAreStagedInEitherOrder_data()
{
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("first, second") << QList<int>{0, 1};
    QTest::newRow("second, first") << QList<int>{1, 0};
}

void HunkPatchTest::twoHunksAreStagedInEitherOrder()
{
    QFETCH(QList<int>, order);
    repository_->write(u"f"_s, lines(40));
    repository_->commitAll(u"base"_s);
    // The first hunk makes the file longer, so the second's numbers are those of the whole diff and not of the index.
    const QByteArray edited = "inserted 1\ninserted 2\n" + lines(40, {35}) + "appended\n";
    repository_->write(u"f"_s, edited);
    const auto files = parsedDiff(u"f"_s, false);
    QCOMPARE(files[0].hunks.size(), 2);
    for (const int hunk : order) {
        QCOMPARE(service_->applyPartialPatch(*files[0].patch(hunk), false), GitOpResult::success());
    }
    QCOMPARE(repository_->staged(u"f"_s), edited);
    const auto staged = parsedDiff(u"f"_s, true);
    for (const int hunk : order) {
        QCOMPARE(service_->applyPartialPatch(*staged[0].patch(hunk), true), GitOpResult::success());
    }
    QCOMPARE(repository_->staged(u"f"_s), lines(40));
}

void HunkPatchTest::unstagingTakesTheHunkOutOfTheIndex()
{
    repository_->write(u"f"_s, lines(40));
    repository_->commitAll(u"base"_s);
    repository_->write(u"f"_s, lines(40, {5, 35}));
    service_->stage({u"f"_s});
    QCOMPARE(parsedDiff(u"f"_s, true)[0].hunks.size(), 2);
    QCOMPARE(applyHunk(u"f"_s, true, 0), GitOpResult::success());
    QCOMPARE(repository_->staged(u"f"_s), lines(40, {35}));
    QCOMPARE(parsedDiff(u"f"_s, true)[0].hunks.size(), 1);
    QCOMPARE(repository_->read(u"f"_s), lines(40, {5, 35}));
}

void HunkPatchTest::kindsOfFiles_data()
{
    using Prepare = std::function<void(TemporaryRepository&)>;
    QTest::addColumn<QString>("path");
    QTest::addColumn<Prepare>("prepare");
    const auto row = [](const char* name, const QString& path, const Prepare& prepare) {
        QTest::newRow(name) << path << prepare;
    };
    row("new file", u"n"_s, [](TemporaryRepository& repository) {
        repository.commitAll(u"base"_s);
        repository.write(u"n"_s, "a\nb\n");
        repository.git({u"add"_s, u"-N"_s, u"n"_s});
    });
    row("deleted file", u"d"_s, [](TemporaryRepository& repository) {
        repository.write(u"d"_s, "a\nb\n");
        repository.commitAll(u"base"_s);
        repository.remove(u"d"_s);
    });
    row("CRLF lines", u"c"_s, [](TemporaryRepository& repository) {
        repository.write(u"c"_s, "a\r\nb\r\nc\r\n");
        repository.commitAll(u"base"_s);
        repository.write(u"c"_s, "a\r\nB\r\nc\nd\r\n");
    });
    row("trailing blanks and empty lines", u"t"_s, [](TemporaryRepository& repository) {
        repository.write(u"t"_s, "a\n\n\n");
        repository.commitAll(u"base"_s);
        repository.write(u"t"_s, "\na  \n\t\n\n");
    });
    row("name with blanks", u"a b c.txt"_s, [](TemporaryRepository& repository) {
        repository.write(u"a b c.txt"_s, "a\n");
        repository.commitAll(u"base"_s);
        repository.write(u"a b c.txt"_s, "b\n");
    });
    row("name with a leading dash", u"-n"_s, [](TemporaryRepository& repository) {
        repository.write(u"-n"_s, "a\n");
        repository.commitAll(u"base"_s);
        repository.write(u"-n"_s, "b\n");
    });
    // Its diff names it in quotes, and quotes it stays.
    row("Korean name", u"한글.txt"_s, [](TemporaryRepository& repository) {
        repository.write(u"한글.txt"_s, "가\n");
        repository.commitAll(u"base"_s);
        repository.write(u"한글.txt"_s, "나\n");
    });
    row("name with a newline", u"a\nb"_s, [](TemporaryRepository& repository) {
        repository.write(u"a\nb"_s, "a\n");
        repository.commitAll(u"base"_s);
        repository.write(u"a\nb"_s, "b\n");
    });
    row("name with quotes", u"\"q\""_s, [](TemporaryRepository& repository) {
        repository.write(u"\"q\""_s, "a\n");
        repository.commitAll(u"base"_s);
        repository.write(u"\"q\""_s, "b\n");
    });
    row("emptied file", u"e"_s, [](TemporaryRepository& repository) {
        repository.write(u"e"_s, "a\nb\n");
        repository.commitAll(u"base"_s);
        repository.write(u"e"_s, "");
    });
    row("change of mode and content", u"m"_s, [](TemporaryRepository& repository) {
        repository.write(u"m"_s, "a\n");
        repository.commitAll(u"base"_s);
        repository.write(u"m"_s, "b\n");
        repository.git({u"config"_s, u"core.fileMode"_s, u"false"_s});
    });
}

void HunkPatchTest::kindsOfFiles()
{
    using Prepare = std::function<void(TemporaryRepository&)>;
    QFETCH(QString, path);
    QFETCH(Prepare, prepare);
    prepare(*repository_);
    const QByteArray before = repository_->git({u"ls-files"_s, u"-s"_s});
    QCOMPARE(parsedDiff(path, false).size(), 1);
    QCOMPARE(applyHunk(path, false), GitOpResult::success());
    const QByteArray byHunk = repository_->git({u"ls-files"_s, u"-s"_s});
    QVERIFY(byHunk != before);
    repository_->git({u"add"_s, u"-A"_s});
    QCOMPARE(byHunk, repository_->git({u"ls-files"_s, u"-s"_s}));

    QCOMPARE(applyHunk(path, true), GitOpResult::success());
    QVERIFY(repository_->git({u"diff"_s, u"--cached"_s}).isEmpty());
    QCOMPARE(lastError(), u"(none)"_s);
}

void HunkPatchTest::missingFinalNewline_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("refusal");
    QTest::addColumn<QByteArray>("staged");
    // The marker of a line without newline has one backslash too many, so git does not know it. Between two lines that
    // is a corrupt patch; at the end of the hunk git takes the last line to have a newline.
    QTest::newRow("newline is added") << QByteArray("a\nb") << QByteArray("a\nb\n")
                                      << u"error: corrupt patch at line "_s << QByteArray("a\nb");
    QTest::newRow("last line is changed")
        << QByteArray("a\nb") << QByteArray("a\nc") << u"error: corrupt patch at line "_s << QByteArray("a\nb");
    QTest::newRow("last line is context")
        << QByteArray("a\nb") << QByteArray("A\nb") << u"error: patch failed: f:1\n"_s << QByteArray("a\nb");
    QTest::newRow("newline is removed") << QByteArray("a\nb\n") << QByteArray("a\nb") << QString()
                                        << QByteArray("a\nb\n");
    QTest::newRow("line without newline is appended")
        << QByteArray("a\n") << QByteArray("a\nb") << QString() << QByteArray("a\nb\n");
    QTest::newRow("last line is far away")
        << lines(9).chopped(1) << lines(9, {1}).chopped(1) << QString() << lines(9, {1}).chopped(1);
}

void HunkPatchTest::missingFinalNewline()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, refusal);
    QFETCH(QByteArray, staged);
    repository_->write(u"f"_s, before);
    repository_->commitAll(u"base"_s);
    repository_->write(u"f"_s, after);
    const GitOpResult result = applyHunk(u"f"_s, false);
    QCOMPARE(result.isSuccess(), refusal.isEmpty());
    QVERIFY2(result.message().startsWith(refusal), qPrintable(result.message()));
    QCOMPARE(lastError(), result.isSuccess() ? u"(none)"_s : result.message());
    QCOMPARE(repository_->staged(u"f"_s), staged);
    QCOMPARE(repository_->read(u"f"_s), after);
}

void HunkPatchTest::linesThatLookLikeFileHeaders_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("isRefused");
    // A removed "-- x" and an added "++ x" end the hunk and become header lines of the patch.
    QTest::newRow("removed, in front of another change") << QByteArray("-- x\nb\n") << QByteArray("B\n") << true;
    QTest::newRow("removed alone") << QByteArray("a\n-- x\nb\n") << QByteArray("a\nb\n") << true;
    QTest::newRow("added") << QByteArray("a\nb\n") << QByteArray("a\n++ x\nb\n") << true;
    QTest::newRow("context") << QByteArray("a\n-- x\n++ y\n") << QByteArray("b\n-- x\n++ y\n") << false;
    QTest::newRow("added with the other sign") << QByteArray("a\n") << QByteArray("a\n-- x\n") << false;
    QTest::newRow("removed with the other sign") << QByteArray("a\n++ x\n") << QByteArray("a\n") << false;
    QTest::newRow("signs without a blank") << QByteArray("a\n--\n++\n") << QByteArray("a\n++\n--\n") << false;
}

void HunkPatchTest::linesThatLookLikeFileHeaders()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(bool, isRefused);
    repository_->write(u"f"_s, before);
    repository_->commitAll(u"base"_s);
    repository_->write(u"f"_s, after);
    const GitOpResult result = applyHunk(u"f"_s, false);
    QCOMPARE(result.isSuccess(), !isRefused);
    QCOMPARE(repository_->staged(u"f"_s), isRefused ? before : after);
    QCOMPARE(lastError(), isRefused ? result.message() : u"(none)"_s);
    if (isRefused) {
        QVERIFY2(result.message().startsWith(u"error: "_s), qPrintable(result.message()));
    }
}

void HunkPatchTest::refusalIsInGitsWords()
{
    repository_->write(u"f"_s, lines(5));
    repository_->commitAll(u"base"_s);
    repository_->write(u"f"_s, lines(5, {3}));
    const QString patch = *parsedDiff(u"f"_s, false)[0].patch(0);
    QCOMPARE(service_->applyPartialPatch(patch, false), GitOpResult::success());
    // Once more, it does not fit.
    const GitOpResult result = service_->applyPartialPatch(patch, false);
    const ProcessResult bare =
        repository_->tryGit({u"apply"_s, u"--cached"_s, u"--unidiff-zero"_s, u"-"_s}, patch.toUtf8());
    QCOMPARE(result, GitOpResult::failure(QString::fromUtf8(bare.standardError)));
    QCOMPARE(lastError(), QString::fromUtf8(bare.standardError));
    // An empty patch is refused too.
    QVERIFY(!service_->applyPartialPatch(QString(), false).isSuccess());
    // And an index that another program has locked.
    repository_->write(u".git/index.lock"_s, "");
    QVERIFY(!service_->applyPartialPatch(patch, true).isSuccess());
    QVERIFY2(lastError().contains(u"index.lock"_s), qPrintable(lastError()));
    QCOMPARE(repository_->staged(u"f"_s), lines(5, {3}));
}

void HunkPatchTest::statusAloneIsFreshAfterwards()
{
    repository_->write(u"f"_s, lines(5));
    repository_->commitAll(u"base"_s);
    repository_->write(u"f"_s, lines(5, {3}));
    service_->refreshAll();
    repository_->git({u"tag"_s, u"made-elsewhere"_s});
    repository_->git({u"branch"_s, u"made-elsewhere"_s});
    QCOMPARE(service_->status()[0].unstaged, std::optional(GitFileChange::modified));
    QCOMPARE(applyHunk(u"f"_s, false), GitOpResult::success());
    QCOMPARE(service_->status()[0].unstaged, std::nullopt);
    QCOMPARE(service_->status()[0].staged, std::optional(GitFileChange::modified));
    QVERIFY(service_->tags().isEmpty());
    QCOMPARE(service_->branches().size(), 1);
}

void HunkPatchTest::randomEditsEndWhereGitAddEnds_data()
{
    QTest::addColumn<unsigned>("seed");
    QTest::addColumn<bool>("hasOddLines");
    QTest::addColumn<int>("turns");
    const unsigned seed = qEnvironmentVariableIntValue("KELM_TEST_SEED");
    QTest::newRow("distinct lines, hunks in any order") << seed + 1 << false << 8;
    QTest::newRow("odd and repeated lines, hunks from the top") << seed + 2 << true << 12;
}

void HunkPatchTest::randomEditsEndWhereGitAddEnds()
{
    QFETCH(unsigned, seed);
    QFETCH(bool, hasOddLines);
    QFETCH(int, turns);
    std::mt19937 random(seed);
    const auto below = [&random](qsizetype bound) {
        return std::uniform_int_distribution<qsizetype>(0, bound - 1)(random);
    };
    const QByteArrayList odd{"",
                             "-- x",
                             "++ y",
                             "--",
                             "+",
                             "-",
                             " ",
                             "\\ No newline at end of file",
                             "a\r",
                             "a",
                             "a",
                             "diff --git a/x b/x",
                             "@@ -1 +1 @@",
                             "index 1",
                             "한글\t",
                             "Binary files"};
    int counter = 0;
    const auto line = [&]() -> QByteArray {
        return hasOddLines ? odd[below(odd.size())] : "line " + QByteArray::number(++counter);
    };
    // With repeated lines a hunk could fit elsewhere too when those in front of it are not there yet.
    const auto choose = [&](qsizetype count) { return hasOddLines ? 0 : below(count); };
    int refusals = 0;
    for (int turn = 0; turn < turns; ++turn) {
        const QString path = u"f%1"_s.arg(turn);
        QByteArrayList text;
        for (auto count = 1 + below(60); count > 0; --count) {
            text.append(line());
        }
        const auto content = [&] { return text.join('\n') + (hasOddLines && below(6) == 0 ? "" : "\n"); };
        repository_->write(path, content());
        repository_->commitAll(path);
        for (auto edits = 1 + below(6); edits > 0; --edits) {
            const auto place = below(text.size() + 1);
            switch (below(3)) {
            case 0:
                text.insert(place, line());
                break;
            case 1:
                if (place < text.size()) {
                    text[place] = line();
                }
                break;
            default:
                if (place < text.size() && text.size() > 1) {
                    text.removeAt(place);
                }
            }
        }
        const QByteArray edited = content();
        const QByteArray committed = repository_->read(path);
        repository_->write(path, edited);

        // The diffs hold a marker or a line that ends a hunk: then git may refuse, and in no other case.
        const auto mayBeRefused = [&](bool staged) {
            const QString diff = service_->diff(path, staged);
            return diff.contains(u"\n\\ "_s) || diff.contains(u"\n--- x"_s) || diff.contains(u"\n+++ y"_s);
        };
        const bool isSpecial = mayBeRefused(false);
        const GitOpResult staging = applyAllHunks(path, false, choose);
        const QByteArray trace =
            QByteArray::number(seed) + ": turn " + QByteArray::number(turn) + ' ' + staging.message().toUtf8();
        if (staging.isSuccess()) {
            QVERIFY2(repository_->staged(path) == edited, trace.constData());
        } else {
            QVERIFY2(isSpecial, trace.constData());
            ++refusals;
        }
        if (staging.message() != u"no end") {
            QCOMPARE(lastError(), staging.isSuccess() ? u"(none)"_s : staging.message());
        }
        service_->setLastError({});

        repository_->git({u"add"_s, path});
        const bool isSpecialStaged = mayBeRefused(true);
        const GitOpResult unstaging = applyAllHunks(path, true, choose);
        if (unstaging.isSuccess()) {
            QVERIFY2(repository_->staged(path) == committed, trace.constData());
        } else {
            QVERIFY2(isSpecialStaged, trace.constData());
        }
        lastError();
        service_->setLastError({});
        QVERIFY2(repository_->read(path) == edited, trace.constData());
        repository_->git({u"add"_s, path});
    }
    QVERIFY(hasOddLines || refusals == 0);
    QVERIFY(refusals < turns);
}

const kelm::test::Registered<HunkPatchTest> registered;

} // namespace hunk_patch_test

#include "hunk_patch_test.moc"
