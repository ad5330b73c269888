#include "git/service/blame_parser.h"
#include "support/test_program.h"

#include <QtTest>

namespace blame_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class BlameParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLineHasItsCommit_data();
    void everyLineHasItsCommit();
};

void BlameParserTest::everyLineHasItsCommit_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QList<GitBlameLine>>("lines");
    QTest::newRow("empty") << u""_s << QList<GitBlameLine>();
    QTest::newRow("author is told once")
        << u"aa 1 1 2\nauthor An Author\nauthor-mail <a@b>\nsummary author of this\nfilename f\n\tone\naa 2 2\n\ttwo\n"
           "bb 1 3 1\nauthor Other\nboundary\n\t\tindented\naa 3 4 1\n\t\n"_s
        << QList<GitBlameLine>{{u"aa"_s, u"An Author"_s, u"one"_s},
                               {u"aa"_s, u"An Author"_s, u"two"_s},
                               {u"bb"_s, u"Other"_s, u"\tindented"_s},
                               {u"aa"_s, u"An Author"_s, u""_s}};
    QTest::newRow("CR stays") << u"aa 1 1 1\nauthor A\n\tx\r\n"_s << QList<GitBlameLine>{{u"aa"_s, u"A"_s, u"x\r"_s}};
    QTest::newRow("cut off") << u"aa 1 1 1\nauthor A\n"_s << QList<GitBlameLine>();
    QTest::newRow("no author") << u"aa 1 1 1\n\tx"_s << QList<GitBlameLine>{{u"aa"_s, u""_s, u"x"_s}};
}

void BlameParserTest::everyLineHasItsCommit()
{
    QFETCH(QString, output);
    QFETCH(QList<GitBlameLine>, lines);
    QCOMPARE(parseBlame(output), lines);
}

const kelm::test::Registered<BlameParserTest> registered;

} // namespace blame_parser_test

#include "blame_parser_test.moc"
