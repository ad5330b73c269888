#include "git/service/git_names.h"
#include "git/service/status_parser.h"
#include "support/test_program.h"

#include <QtTest>

namespace git_names_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

/// The names of files in what git prints.
class GitNamesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entryHasItsNames_data();
    void entryHasItsNames();
    void operationTakesItsNames_data();
    void operationTakesItsNames();
    void sheetFindsBothNamesOfARename();
    void namesAreShownWithSigns();
};

void GitNamesTest::entryHasItsNames_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("current");
    QTest::addColumn<std::optional<QString>>("previous");
    using Name = std::optional<QString>;
    const auto row = [](const char* line, const QString& current, const Name& previous = {}) {
        QTest::newRow(line) << QString::fromUtf8(line) << current << previous;
    };
    row("?? a.txt", u"a.txt"_s);
    row("?? \"a b\"", u"a b"_s);
    row("R  a -> b", u"b"_s, u"a"_s);
    row("R  \"a b\" -> b", u"b"_s, u"a b"_s);
    row("R  a -> \"c d\"", u"c d"_s, u"a"_s);
    row("R  \"x -> y\" -> \"c -> d\"", u"c -> d"_s, u"x -> y"_s);
    row("RM \"\\\"q\\\"\" -> \"\\355\\225\\234\"", u"한"_s, u"\"q\""_s);
    row(" R a -> b", u"b"_s, u"a"_s);
    row("C  a -> b", u"b"_s, u"a"_s);
    // A plain name in which an arrow stands.
    row("?? a -> b", u"a -> b"_s);
    row("?? \"a -> b\"", u"a -> b"_s);
    row(" M a -> b", u"a -> b"_s);
    // No rename that git would print.
    row("R  a", u"a"_s);
    row("R   -> b", u" -> b"_s);
}

void GitNamesTest::entryHasItsNames()
{
    QFETCH(QString, line);
    const QList<GitFileStatus> status = parseStatus(line);
    QCOMPARE(status.size(), 1);
    const GitFileNames names = namesOf(status[0]);
    QTEST(names.current, "current");
    QTEST(names.previous, "previous");
    // The record keeps git's words.
    QCOMPARE(status[0].path, line.sliced(3));
}

void GitNamesTest::operationTakesItsNames_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("stage");
    QTest::addColumn<QString>("unstage");
    QTest::addColumn<QString>("discard");
    QTest::addColumn<QString>("diff");
    QTest::addColumn<QString>("stagedDiff");
    const auto row = [](const char* line, const QString& stage, const QString& unstage, const QString& discard,
                        const QString& diff, const QString& stagedDiff) {
        QTest::newRow(line) << QString::fromUtf8(line) << stage << unstage << discard << diff << stagedDiff;
    };
    row("MM a", u"a"_s, u"a"_s, u"a"_s, u"a"_s, u"a"_s);
    row("RM a -> b", u"b"_s, u"a,b"_s, u"b"_s, u"b"_s, u"a,b"_s);
    row(" R a -> b", u"a,b"_s, u"b"_s, u"a"_s, u"a,b"_s, u"b"_s);
    row("CM a -> b", u"b"_s, u"b"_s, u"b"_s, u"b"_s, u"b"_s);
}

void GitNamesTest::operationTakesItsNames()
{
    QFETCH(QString, line);
    const GitFileStatus file = parseStatus(line).value(0);
    QTEST(namesToStage(file).join(u','), "stage");
    QTEST(namesToUnstage(file).join(u','), "unstage");
    QTEST(namesToDiscard(file).join(u','), "discard");
    QTEST(namesToDiff(file, false).join(u','), "diff");
    QTEST(namesToDiff(file, true).join(u','), "stagedDiff");
}

void GitNamesTest::sheetFindsBothNamesOfARename()
{
    const QList<GitFileStatus> status = parseStatus(u"R  a -> \"b c\"\n M d\n");
    QCOMPARE(namesToDiff(status, u"b c"_s, true), (QStringList{u"a"_s, u"b c"_s}));
    QCOMPARE(namesToDiff(status, u"b c"_s, false), QStringList{u"b c"_s});
    QCOMPARE(namesToDiff(status, u"d"_s, true), QStringList{u"d"_s});
    QCOMPARE(namesToDiff(status, u"gone"_s, true), QStringList{u"gone"_s});
}

void GitNamesTest::namesAreShownWithSigns()
{
    const QList<GitFileStatus> status = parseStatus(u"R  \"a\\nb\" -> \"\\342\\200\\256c\"\n?? \"\\351 d\"\n");
    QCOMPARE(shownNames(status[0]), u"a\u27e8U+000A\u27e9b -> \u27e8U+202E\u27e9c"_s);
    QCOMPARE(shownNames(status[1]), u"\u27e8E9\u27e9 d"_s);
}

const kelm::test::Registered<GitNamesTest> registered;

} // namespace git_names_test

#include "git_names_test.moc"
