#include "git/service/branch_parser.h"
#include "support/test_program.h"

#include <QtTest>

namespace branch_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

namespace {

/// One branch as a line of text.
QString described(const GitBranch& branch)
{
    return u"%1|%2|%3|%4"_s.arg(branch.name, branch.isRemote ? u"remote"_s : u"local"_s,
                                branch.isCurrent ? u"current"_s : u"other"_s, branch.upstream.value_or(u"(none)"_s));
}

QStringList described(const QList<GitBranch>& branches)
{
    QStringList lines;
    for (const GitBranch& branch : branches) {
        lines.append(described(branch));
    }
    return lines;
}

} // namespace

class BranchParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void localLines_data();
    void localLines();
    void remoteLines_data();
    void remoteLines();
    void identitiesAreFresh();
};

void BranchParserTest::localLines_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("branches");
    const QChar null(0);
    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("current with upstream")
        << u"main%1*%1origin/main\n"_s.arg(null) << QStringList{u"main|local|current|origin/main"_s};
    QTest::newRow("other without upstream")
        << u"topic%1 %1\n"_s.arg(null) << QStringList{u"topic|local|other|(none)"_s};
    QTest::newRow("git's order stays") << u"z%1 %1\n\na%1*%1\n"_s.arg(null)
                                       << QStringList{u"z|local|other|(none)"_s, u"a|local|current|(none)"_s};
    QTest::newRow("mark must be the star alone") << u"a%1* %1"_s.arg(null) << QStringList{u"a|local|other|(none)"_s};
    QTest::newRow("two pieces are skipped") << u"a%1*\nb%1 %1"_s.arg(null) << QStringList{u"b|local|other|(none)"_s};
    QTest::newRow("more pieces do no harm") << u"a%1*%1u%1x"_s.arg(null) << QStringList{u"a|local|current|u"_s};
    QTest::newRow("local name may end in HEAD")
        << u"x/HEAD%1 %1"_s.arg(null) << QStringList{u"x/HEAD|local|other|(none)"_s};
    QTest::newRow("Korean and slashes") << u"기능/하나%1*%1"_s.arg(null)
                                        << QStringList{u"기능/하나|local|current|(none)"_s};
}

void BranchParserTest::localLines()
{
    QFETCH(QString, output);
    QFETCH(QStringList, branches);
    QCOMPARE(described(parseLocalBranches(output)), branches);
}

void BranchParserTest::remoteLines_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("branches");
    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("two") << u"origin/main\norigin/feature/x\n"_s
                         << QStringList{u"origin/main|remote|other|(none)"_s,
                                        u"origin/feature/x|remote|other|(none)"_s};
    QTest::newRow("HEAD is left out") << u"origin/HEAD\norigin/main"_s
                                      << QStringList{u"origin/main|remote|other|(none)"_s};
    QTest::newRow("any HEAD is left out") << u"a/b/HEAD\n\n"_s << QStringList();
    QTest::newRow("HEAD under the name of its remote alone")
        << u"origin\norigin/main\nteam/fork/topic\nteam/fork"_s
        << QStringList{u"origin/main|remote|other|(none)"_s, u"team/fork/topic|remote|other|(none)"_s};
    QTest::newRow("HEAD beside a branch that a local one is named like")
        << u"origin\nremotes/origin/main"_s << QStringList{u"remotes/origin/main|remote|other|(none)"_s};
    QTest::newRow("a branch without a folder stays")
        << u"git-svn\norigin/git-svn\norig\norigin/main"_s
        << QStringList{u"git-svn|remote|other|(none)"_s, u"origin/git-svn|remote|other|(none)"_s,
                       u"orig|remote|other|(none)"_s, u"origin/main|remote|other|(none)"_s};
    QTest::newRow("only behind a slash") << u"origin/OVERHEAD\nHEAD"_s
                                         << QStringList{u"origin/OVERHEAD|remote|other|(none)"_s,
                                                        u"HEAD|remote|other|(none)"_s};
}

void BranchParserTest::remoteLines()
{
    QFETCH(QString, output);
    QFETCH(QStringList, branches);
    QCOMPARE(described(parseRemoteBranches(output)), branches);
}

void BranchParserTest::identitiesAreFresh()
{
    const auto branches = parseRemoteBranches(u"o/a\no/a"_s);
    QVERIFY(!branches[0].id.isNull());
    QVERIFY(branches[0].id != branches[1].id);
}

const kelm::test::Registered<BranchParserTest> registered;

} // namespace branch_parser_test

#include "branch_parser_test.moc"
