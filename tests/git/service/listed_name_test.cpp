#include "git/service/listed_name.h"
#include "support/test_program.h"

#include <QtTest>

namespace listed_name_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class ListedNameTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shortFormIsThatOfALongName_data();
    void shortFormIsThatOfALongName();
    void questionNamesBothThatMayBeMeant();
    void answerTellsTheName_data();
    void answerTellsTheName();
};

void ListedNameTest::shortFormIsThatOfALongName_data()
{
    QTest::addColumn<GitNameKind>("kind");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shortForm");
    QTest::newRow("a branch") << GitNameKind::branch << u"v1"_s << QString();
    QTest::newRow("a long branch") << GitNameKind::branch << u"heads/v1"_s << u"v1"_s;
    QTest::newRow("a branch in a folder") << GitNameKind::branch << u"heads/a/b"_s << u"a/b"_s;
    QTest::newRow("a branch called like a tag") << GitNameKind::branch << u"tags/v1"_s << QString();
    QTest::newRow("a tag") << GitNameKind::tag << u"v1"_s << QString();
    QTest::newRow("a long tag") << GitNameKind::tag << u"tags/v1"_s << u"v1"_s;
    QTest::newRow("a tag called like a branch") << GitNameKind::tag << u"heads/v1"_s << QString();
    QTest::newRow("nothing behind it") << GitNameKind::branch << u"heads/"_s << QString();
    QTest::newRow("a remote") << GitNameKind::remote << u"heads/v1"_s << QString();
    QTest::newRow("no name") << GitNameKind::branch << QString() << QString();
}

void ListedNameTest::shortFormIsThatOfALongName()
{
    QFETCH(GitNameKind, kind);
    QFETCH(QString, name);
    QTEST(ListedName(kind, name).shortForm(), "shortForm");
}

void ListedNameTest::questionNamesBothThatMayBeMeant()
{
    const QStringList start{u"for-each-ref"_s, u"--format=%(refname)"_s};
    QCOMPARE(ListedName(GitNameKind::branch, u"heads/x"_s).question(),
             start + QStringList({u"refs/heads/heads/x"_s, u"refs/heads/x"_s}));
    QCOMPARE(ListedName(GitNameKind::tag, u"tags/x"_s).question(),
             start + QStringList({u"refs/tags/tags/x"_s, u"refs/tags/x"_s}));
}

void ListedNameTest::answerTellsTheName_data()
{
    QTest::addColumn<GitNameKind>("kind");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("found");
    const auto branch = GitNameKind::branch;
    QTest::newRow("a long branch") << branch << u"heads/x"_s << u"refs/heads/x\n"_s << u"x"_s;
    QTest::newRow("a long tag") << GitNameKind::tag << u"tags/x"_s << u"refs/tags/x\n"_s << u"x"_s;
    QTest::newRow("one that is called so itself")
        << branch << u"heads/x"_s << u"refs/heads/heads/x\n"_s << u"heads/x"_s;
    QTest::newRow("both") << branch << u"heads/x"_s << u"refs/heads/heads/x\nrefs/heads/x\n"_s << u"heads/x"_s;
    QTest::newRow("neither") << branch << u"heads/x"_s << QString() << u"heads/x"_s;
    QTest::newRow("one that begins alike") << branch << u"heads/x"_s << u"refs/heads/x/a\n"_s << u"heads/x"_s;
    QTest::newRow("no long name") << branch << u"x"_s << u"refs/heads/\n"_s << u"x"_s;
}

void ListedNameTest::answerTellsTheName()
{
    QFETCH(GitNameKind, kind);
    QFETCH(QString, name);
    QFETCH(QString, answer);
    QTEST(ListedName(kind, name).nameIn(answer), "found");
}

const kelm::test::Registered<ListedNameTest> registered;

} // namespace listed_name_test

#include "listed_name_test.moc"
