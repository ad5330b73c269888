#include "git/diff/diff_content.h"
#include "git/diff/hunk_hindrance.h"
#include "git/service/git_service.h"
#include "support/diff_text.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

#include <random>

namespace hunk_hindrance_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// What is said of a hunk beforehand, beside what git does with it.
class HunkHindranceTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void refusalIsForetold_data();
    void refusalIsForetold();
    void refusalOfRandomEditsIsForetold();
    void changedMeaningIsForetold_data();
    void changedMeaningIsForetold();
    void conflictsAndInnerRepositoriesAreTold();
    void hunkThatLacksLinesIsNotTaken_data();
    void hunkThatLacksLinesIsNotTaken();

private:
    /// Whether git takes each hunk alone, and whether that was said; the first difference in words.
    static QString difference(const QByteArray& before, const QByteArray& after, bool isReversed);
};

QString HunkHindranceTest::difference(const QByteArray& before, const QByteArray& after, bool isReversed)
{
    const TemporaryRepository repository;
    GitService service(ProcessRunner::sharedSystem());
    repository.write(u"f"_s, before);
    repository.commitAll(u"base"_s);
    repository.write(u"f"_s, after);
    service.open(repository.url());
    const auto start = [&] { isReversed ? service.stage({u"f"_s}) : service.unstage({u"f"_s}); };
    start();
    const QList<DiffFile> files = DiffContent::of(service.diff(u"f"_s, isReversed)).files;
    for (qsizetype hunk = 0; !files.isEmpty() && hunk < files[0].hunks.size(); ++hunk) {
        start();
        const HunkHindrance hindrance = HunkHindrance::of(files[0], hunk, isReversed);
        const GitOpResult result = service.applyPartialPatch(*files[0].patch(hunk), isReversed);
        if (result.isSuccess() != hindrance.reason.isEmpty()) {
            return u"hunk %1: said \"%2\", and git \"%3\"\n"_s.arg(hunk).arg(
                       hindrance.reason, result.isSuccess() ? u"took it"_s : result.message()) +
                   *files[0].patch(hunk);
        }
    }
    return {};
}

void HunkHindranceTest::refusalIsForetold_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("plain") << QByteArray("a\nb\n") << QByteArray("a\nc\n");
    QTest::newRow("emptied") << QByteArray("a\nb\n") << QByteArray();
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n") << QByteArray("a\r\nc\r\n");
    QTest::newRow("empty lines") << QByteArray("\n\n\n") << QByteArray("\n\nx\n\n");
    QTest::newRow("newline is added") << QByteArray("a\nb") << QByteArray("a\nb\n");
    QTest::newRow("newline is removed") << QByteArray("a\nb\n") << QByteArray("a\nb");
    QTest::newRow("last line is changed, no newline") << QByteArray("a\nb") << QByteArray("a\nc");
    QTest::newRow("last line is context, no newline") << QByteArray("a\nb") << QByteArray("A\nb");
    QTest::newRow("line without newline is appended") << QByteArray("a\n") << QByteArray("a\nb");
    QTest::newRow("line without newline is taken away") << QByteArray("a\nb") << QByteArray("a\n");
    QTest::newRow("removed line reads like a header") << QByteArray("a\n-- x\nb\n") << QByteArray("a\nb\n");
    QTest::newRow("added line reads like a header") << QByteArray("a\nb\n") << QByteArray("a\n++ x\nb\n");
    QTest::newRow("such a line is last") << QByteArray("a\n") << QByteArray("a\n++ x\n");
    QTest::newRow("such a line far from the first hunk") << "a\n" + QByteArray("line\n").repeated(20) + "b\n"
                                                         << "A\n" + QByteArray("line\n").repeated(20) + "++ b\n";
}

void HunkHindranceTest::refusalIsForetold()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    for (const bool isReversed : {false, true}) {
        QCOMPARE(difference(before, after, isReversed), QString());
    }
}

void HunkHindranceTest::refusalOfRandomEditsIsForetold()
{
    constexpr int cases = 12;
    for (unsigned seed = 0; seed < cases; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&random](int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random); };
        const QByteArrayList words{"a", "b", "-- c", "++ d", "", "@@ e", "\\ f"};
        QByteArrayList lines;
        for (int line = below(20) + 1; line > 0; --line) {
            lines.append(words[below(below(4) == 0 ? 7 : 2)]);
        }
        const QByteArray before = lines.join('\n') + (below(3) == 0 ? "" : "\n");
        for (int edit = below(3) + 1; edit > 0; --edit) {
            lines[below(int(lines.size()))] = words[below(7)];
        }
        const QByteArray after = lines.join('\n') + (below(3) == 0 ? "" : "\n");
        for (const bool isReversed : {false, true}) {
            const QString found = difference(before, after, isReversed);
            QVERIFY2(found.isEmpty(), qPrintable(u"seed %1: "_s.arg(seed) + found));
        }
    }
}

void HunkHindranceTest::changedMeaningIsForetold_data()
{
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("isCautioned");
    QTest::newRow("with a newline") << QByteArray("a\nb\n") << false;
    QTest::newRow("without") << QByteArray("a\nb") << true;
}

void HunkHindranceTest::changedMeaningIsForetold()
{
    QFETCH(QByteArray, after);
    QFETCH(bool, isCautioned);
    const TemporaryRepository repository;
    repository.write(u"f"_s, "a\n");
    repository.commitAll(u"base"_s);
    repository.write(u"f"_s, after);
    GitService service(ProcessRunner::sharedSystem());
    service.open(repository.url());
    const QList<DiffFile> files = DiffContent::of(service.diff(u"f"_s, false)).files;
    const HunkHindrance hindrance = HunkHindrance::of(files[0], 0, false);
    QVERIFY(hindrance.reason.isEmpty());
    QCOMPARE(!hindrance.caution.isEmpty(), isCautioned);
    QVERIFY(service.applyPartialPatch(*files[0].patch(0), false).isSuccess());
    QCOMPARE(repository.staged(u"f"_s) != after, isCautioned);
}

void HunkHindranceTest::conflictsAndInnerRepositoriesAreTold()
{
    const auto reason = [](const QString& text) {
        return HunkHindrance::of(DiffContent::of(text).files[0], 0, false).reason;
    };
    QVERIFY(reason(u"diff --cc a\nindex 1,2..0\n--- a/a\n+++ b/a\n@@@ -1 -1 +1 @@@\n++x\n"_s).contains(u"conflict"));
    QVERIFY(reason(u"diff --git a/s b/s\nindex 1..2 160000\n--- a/s\n+++ b/s\n@@ -1 +1 @@\n"
                   "-Subproject commit 1a2b\n+Subproject commit 1a2b-dirty\n"_s)
                .contains(u"submodule"));
    QVERIFY(reason(u"diff --git a/o b/n\nsimilarity index 90%\ncopy from o\ncopy to n\n@@ -1 +1 @@\n-a\n+b\n"_s)
                .contains(u"copied"));
}

void HunkHindranceTest::hunkThatLacksLinesIsNotTaken_data()
{
    QTest::addColumn<QString>("hunk");
    QTest::addColumn<bool>("isWhole");
    QTest::newRow("whole") << u"@@ -1,3 +1,2 @@\n a\n-b\n-c\n+d\n"_s << true;
    QTest::newRow("without an end of its own") << u"@@ -1,3 +1,2 @@\n a\n-b\n-c\n+d"_s << true;
    QTest::newRow("one old line less than it says") << u"@@ -1,4 +1,2 @@\n a\n-b\n-c\n+d\n"_s << false;
    QTest::newRow("one new line less") << u"@@ -1,3 +1,3 @@\n a\n-b\n-c\n+d\n"_s << false;
    QTest::newRow("only added") << u"@@ -0,0 +1,2 @@\n+a\n+b\n"_s << true;
    QTest::newRow("only added, one less") << u"@@ -0,0 +1,3 @@\n+a\n+b\n"_s << false;
    QTest::newRow("only removed") << u"@@ -1,2 +0,0 @@\n-a\n-b\n"_s << true;
    QTest::newRow("only removed, one less") << u"@@ -1,3 +0,0 @@\n-a\n-b\n"_s << false;
    QTest::newRow("the mark of no newline is no line")
        << u"@@ -1,2 +1,3 @@\n-a\n-b\n+a\n+b\n\\ No newline at end of file\n"_s << false;
}

void HunkHindranceTest::hunkThatLacksLinesIsNotTaken()
{
    QFETCH(QString, hunk);
    const DiffContent content = DiffContent::of(u"diff --git a/f b/f\nindex 1..2 100644\n--- a/f\n+++ b/f\n"_s + hunk);
    for (const bool isReversed : {false, true}) {
        QTEST(HunkHindrance::of(content.files[0], 0, isReversed).reason.isEmpty(), "isWhole");
    }
}

const kelm::test::Registered<HunkHindranceTest> registered;

} // namespace hunk_hindrance_test

#include "hunk_hindrance_test.moc"
