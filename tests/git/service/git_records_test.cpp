#include "git/service/git_records.h"
#include "support/test_program.h"

#include <QtTest>

namespace git_records_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class GitRecordsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesHaveTheirNamesLettersAndOrder_data();
    void changesHaveTheirNamesLettersAndOrder();
    void otherLettersAreNoChange_data();
    void otherLettersAreNoChange();
    void unmergedFilesAreThoseOfAMerge();
};

void GitRecordsTest::changesHaveTheirNamesLettersAndOrder_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<GitFileChange>("change");
    QTest::addColumn<QString>("letter");
    QTest::newRow("modified") << 0 << GitFileChange::modified << u"M"_s;
    QTest::newRow("added") << 1 << GitFileChange::added << u"A"_s;
    QTest::newRow("deleted") << 2 << GitFileChange::deleted << u"D"_s;
    QTest::newRow("renamed") << 3 << GitFileChange::renamed << u"R"_s;
    QTest::newRow("copied") << 4 << GitFileChange::copied << u"C"_s;
    QTest::newRow("untracked") << 5 << GitFileChange::untracked << u"?"_s;
    QTest::newRow("conflicted") << 6 << GitFileChange::conflicted << u"U"_s;
}

void GitRecordsTest::changesHaveTheirNamesLettersAndOrder()
{
    QFETCH(int, place);
    QFETCH(GitFileChange, change);
    QFETCH(QString, letter);
    QCOMPARE(static_cast<int>(change), place);
    QCOMPARE(rawValue(change), QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(changeFrom(letter), std::optional(change));
}

void GitRecordsTest::otherLettersAreNoChange_data()
{
    QTest::addColumn<QString>("letter");
    for (const QString& letter :
         {u" "_s, u"!"_s, u"T"_s, u"X"_s, u"B"_s, u"m"_s, u"."_s, u"\u0000"_s, u"한"_s, u""_s, u"M\u0301"_s}) {
        QTest::newRow(qPrintable(u"letter \"%1\""_s.arg(letter))) << letter;
    }
}

void GitRecordsTest::otherLettersAreNoChange()
{
    QFETCH(QString, letter);
    QVERIFY(!changeFrom(letter));
}

void GitRecordsTest::unmergedFilesAreThoseOfAMerge()
{
    // Every pair of columns, of which git gives these seven to what a merge has left.
    const QStringList letters{u" "_s, u"M"_s, u"A"_s, u"D"_s, u"R"_s, u"C"_s, u"?"_s, u"U"_s};
    QStringList unmerged;
    for (const QString& staged : letters) {
        for (const QString& unstaged : letters) {
            if (isUnmerged(
                    {.id = {}, .path = u"a"_s, .staged = changeFrom(staged), .unstaged = changeFrom(unstaged)})) {
                unmerged.append(staged + unstaged);
            }
        }
    }
    for (const QString& pair : {u"DD"_s, u"AU"_s, u"UD"_s, u"UA"_s, u"DU"_s, u"AA"_s, u"UU"_s}) {
        QVERIFY2(unmerged.contains(pair), qPrintable(pair));
    }
    // Of two other letters one is a conflict's.
    for (const QString& pair : std::as_const(unmerged)) {
        QVERIFY2(pair.contains(u'U') || pair == u"AA" || pair == u"DD", qPrintable(pair));
    }
}

const kelm::test::Registered<GitRecordsTest> registered;

} // namespace git_records_test

#include "git_records_test.moc"
