#include "git/service/log_parser.h"
#include "support/test_program.h"

#include <QtTest>

namespace log_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class LogParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesOfFourPiecesAreCommits_data();
    void linesOfFourPiecesAreCommits();
};

void LogParserTest::linesOfFourPiecesAreCommits_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QList<GitCommit>>("commits");
    const auto row = [](const char* name, const QString& output, const QList<GitCommit>& commits) {
        QTest::newRow(name) << QString(output).replace(u'#', QChar(0x1F)) << commits;
    };
    row("empty", u""_s, {});
    row("two, no newline at the end", u"h2#An Author#2024-02-03#Second\nh1#An Author#2024-02-02#First"_s,
        {{u"h2"_s, u"An Author"_s, u"2024-02-03"_s, u"Second"_s},
         {u"h1"_s, u"An Author"_s, u"2024-02-02"_s, u"First"_s}});
    row("empty subject", u"h#a#d#\n"_s, {{u"h"_s, u"a"_s, u"d"_s, u""_s}});
    row("subject with the separator drops the commit", u"h#a#d#x#y\ng#a#d#s"_s, {{u"g"_s, u"a"_s, u"d"_s, u"s"_s}});
    row("three pieces are skipped", u"h#a#d\n\n"_s, {});
    row("Korean", u"h#홍길동#2024-02-03#고침"_s, {{u"h"_s, u"홍길동"_s, u"2024-02-03"_s, u"고침"_s}});
}

void LogParserTest::linesOfFourPiecesAreCommits()
{
    QFETCH(QString, output);
    QFETCH(QList<GitCommit>, commits);
    QCOMPARE(parseLog(output), commits);
}

const kelm::test::Registered<LogParserTest> registered;

} // namespace log_parser_test

#include "log_parser_test.moc"
