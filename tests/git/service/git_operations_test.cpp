#include "git/service/git_operations.h"
#include "support/test_program.h"

#include <QtTest>

namespace git_operations_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class GitOperationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsGivenStandsInItsPlace_data();
    void whatIsGivenStandsInItsPlace();
};

void GitOperationsTest::whatIsGivenStandsInItsPlace_data()
{
    QTest::addColumn<GitOperation>("operation");
    QTest::addColumn<QStringList>("given");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nothing") << GitOperation{{u"a", u"b"}} << QStringList{} << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("one") << GitOperation{{u"a", u"%1"}} << QStringList{u"x y"_s} << QStringList{u"a"_s, u"x y"_s};
    QTest::newRow("other order") << GitOperation{{u"%2", u"%1"}} << QStringList{u"x"_s, u"y"_s}
                                 << QStringList{u"y"_s, u"x"_s};
    QTest::newRow("within a word") << GitOperation{{u"refs/%1!"}} << QStringList{u"x"_s} << QStringList{u"refs/x!"_s};
    QTest::newRow("an empty one") << GitOperation{{u"a", u"%1", u"b"}} << QStringList{u""_s}
                                  << QStringList{u"a"_s, u""_s, u"b"_s};
    QTest::newRow("all") << GitOperation{{u"a", u"--", u"%@"}} << QStringList{u"x"_s, u"y"_s}
                         << QStringList{u"a"_s, u"--"_s, u"x"_s, u"y"_s};
    QTest::newRow("all of none") << GitOperation{{u"a", u"%@"}} << QStringList{} << QStringList{u"a"_s};
    QTest::newRow("places in what is given")
        << GitOperation{{u"%1", u"%2"}} << QStringList{u"%2"_s, u"%1 %@"_s} << QStringList{u"%2"_s, u"%1 %@"_s};
    QTest::newRow("a place that nothing is given for")
        << GitOperation{{u"%2"}} << QStringList{u"x"_s} << QStringList{u"%2"_s};
}

void GitOperationsTest::whatIsGivenStandsInItsPlace()
{
    QFETCH(GitOperation, operation);
    QFETCH(QStringList, given);
    QTEST(operation.arguments(given), "arguments");
}

const kelm::test::Registered<GitOperationsTest> registered;

} // namespace git_operations_test

#include "git_operations_test.moc"
