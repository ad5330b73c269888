#include "git/service/ahead_behind_parser.h"
#include "support/test_program.h"

#include <QtTest>

namespace ahead_behind_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class AheadBehindParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstPieceIsBehindSecondIsAhead_data();
    void firstPieceIsBehindSecondIsAhead();
};

void AheadBehindParserTest::firstPieceIsBehindSecondIsAhead_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<std::optional<AheadBehind>>("counts");
    const auto row = [](const char* name, const QString& output, std::optional<AheadBehind> counts) {
        QTest::newRow(name) << output << counts;
    };
    row("both", u"3\t5\n"_s, AheadBehind{3, 5});
    row("no newline", u"3\t5"_s, AheadBehind{3, 5});
    row("empty", u""_s, AheadBehind{0, 0});
    row("blank", u" \t\n"_s, AheadBehind{0, 0});
    row("one piece", u"3\n"_s, {});
    row("three pieces", u"1\t2\t3"_s, {});
    row("empty pieces drop out", u"1\t\t2"_s, AheadBehind{1, 2});
    row("blanks do not separate", u"1 2"_s, {});
    row("no number counts as 0", u"x\t2"_s, AheadBehind{0, 2});
    row("blank inside a piece", u"1\t 2"_s, AheadBehind{1, 0});
    row("too large counts as 0", u"1\t9223372036854775808"_s, AheadBehind{1, 0});
}

void AheadBehindParserTest::firstPieceIsBehindSecondIsAhead()
{
    QFETCH(QString, output);
    QFETCH(std::optional<AheadBehind>, counts);
    QCOMPARE(parseAheadBehind(output), counts);
}

const kelm::test::Registered<AheadBehindParserTest> registered;

} // namespace ahead_behind_parser_test

#include "ahead_behind_parser_test.moc"
