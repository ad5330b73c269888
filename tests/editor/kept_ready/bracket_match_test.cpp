#include "editor/kept_ready/bracket_match.h"
#include "support/test_program.h"

#include <QtTest>

namespace bracket_match_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class BracketMatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void partners_data();
    void partners();
};

void BracketMatchTest::partners_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("location");
    QTest::addColumn<qsizetype>("partner");
    const qsizetype none = -1;
    QTest::newRow("at the start") << u"()"_s << qsizetype(0) << none;
    QTest::newRow("behind an opening one") << u"()"_s << qsizetype(1) << qsizetype(1);
    QTest::newRow("behind a closing one") << u"()"_s << qsizetype(2) << qsizetype(0);
    QTest::newRow("nested, from outside") << u"{a{b}c}"_s << qsizetype(1) << qsizetype(6);
    QTest::newRow("nested, from inside") << u"{a{b}c}"_s << qsizetype(3) << qsizetype(4);
    QTest::newRow("nested, backward") << u"[[x][y]]"_s << qsizetype(8) << qsizetype(0);
    QTest::newRow("other kinds do not count") << u"([)]"_s << qsizetype(1) << qsizetype(2);
    QTest::newRow("never closed") << u"(x"_s << qsizetype(1) << none;
    QTest::newRow("a closing one at the start") << u")"_s << qsizetype(1) << none;
    QTest::newRow("never opened") << u"a)"_s << qsizetype(2) << none;
    QTest::newRow("no bracket") << u"(a)"_s << qsizetype(2) << none;
    QTest::newRow("strings count") << u"(\")\")"_s << qsizetype(1) << qsizetype(2);
    QTest::newRow("an emoji between") << u"(\U0001F600)"_s << qsizetype(1) << qsizetype(3);
    QTest::newRow("behind half an emoji") << u"(\U0001F600)"_s << qsizetype(2) << none;
    QTest::newRow("past the end") << u"()"_s << qsizetype(9) << none;
    QTest::newRow("the empty text") << QString() << qsizetype(0) << none;
}

void BracketMatchTest::partners()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, location);
    QTEST(partnerOfBracketBefore(text, location).value_or(-1), "partner");
}

const kelm::test::Registered<BracketMatchTest> registered;

} // namespace bracket_match_test

#include "bracket_match_test.moc"
