#include "git/service/checkout_target.h"
#include "support/test_program.h"

#include <QtTest>

namespace checkout_target_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class CheckoutTargetTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void questionNamesAllThatMayBeMeant();
    void answerTellsTheBranch_data();
    void answerTellsTheBranch();
};

void CheckoutTargetTest::questionNamesAllThatMayBeMeant()
{
    const QStringList start{u"for-each-ref"_s, u"--format=%(refname)"_s};
    QCOMPARE(CheckoutTarget(u"side"_s).question(),
             start + QStringList({u"refs/heads/side"_s, u"refs/remotes/**/side"_s}));
    QCOMPARE(CheckoutTarget(u"heads/x"_s).question(),
             start + QStringList({u"refs/heads/heads/x"_s, u"refs/remotes/**/heads/x"_s, u"refs/heads/x"_s}));
    QCOMPARE(CheckoutTarget(u"heads/"_s).question(),
             start + QStringList({u"refs/heads/heads/"_s, u"refs/remotes/**/heads/"_s}));
}

void CheckoutTargetTest::answerTellsTheBranch_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("branch");
    QTest::addColumn<bool>("isLocal");
    QTest::newRow("nothing") << u"side"_s << QString() << QString() << false;
    QTest::newRow("a local branch") << u"side"_s << u"refs/heads/side\n"_s << u"side"_s << true;
    QTest::newRow("a remote's") << u"side"_s << u"refs/remotes/origin/side\n"_s << u"side"_s << false;
    QTest::newRow("both") << u"side"_s << u"refs/heads/side\nrefs/remotes/origin/side\n"_s << u"side"_s << true;
    QTest::newRow("two remotes'") << u"a/b"_s << u"refs/remotes/o/a/b\nrefs/remotes/p/q/a/b\n"_s << u"a/b"_s << false;
    QTest::newRow("a remote's that ends alike") << u"side"_s << u"refs/remotes/origin/inside\n"_s << QString() << false;
    QTest::newRow("one that begins alike") << u"side"_s << u"refs/heads/side/a\n"_s << QString() << false;
    QTest::newRow("a tag of the name") << u"side"_s << u"refs/tags/a/side\n"_s << QString() << false;
    QTest::newRow("a branch with git's long name") << u"heads/x"_s << u"refs/heads/x\n"_s << u"x"_s << true;
    QTest::newRow("one that is called so itself")
        << u"heads/x"_s << u"refs/heads/heads/x\nrefs/heads/x\n"_s << u"heads/x"_s << true;
    QTest::newRow("a remote's that is called so")
        << u"heads/x"_s << u"refs/remotes/o/heads/x\n"_s << u"heads/x"_s << false;
    QTest::newRow("the long name of nothing") << u"heads/"_s << u"refs/heads/\n"_s << QString() << false;
    QTest::newRow("no name") << QString() << u"refs/heads/\nrefs/heads/a\n"_s << QString() << false;
    QTest::newRow("no name, of a remote") << QString() << u"refs/remotes/a/\n"_s << QString() << false;
}

void CheckoutTargetTest::answerTellsTheBranch()
{
    QFETCH(QString, name);
    QFETCH(QString, answer);
    QFETCH(QString, branch);
    const CheckoutTarget target(name);
    QCOMPARE(target.nameIn(answer), branch.isEmpty() ? std::nullopt : std::optional(branch));
    QTEST(target.isLocalIn(answer), "isLocal");
}

const kelm::test::Registered<CheckoutTargetTest> registered;

} // namespace checkout_target_test

#include "checkout_target_test.moc"
