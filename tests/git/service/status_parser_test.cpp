#include "git/service/status_parser.h"
#include "support/test_program.h"

#include <QSet>
#include <QtTest>

namespace status_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

using Change = std::optional<GitFileChange>;

class StatusParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPairOfLettersIsMapped_data();
    void everyPairOfLettersIsMapped();
    void pathIsWhatFollowsTheColumns_data();
    void pathIsWhatFollowsTheColumns();
    void shortLinesAreSkipped_data();
    void shortLinesAreSkipped();
    void orderIsThatOfTheOutput();
    void identitiesAreFresh();
};

void StatusParserTest::everyPairOfLettersIsMapped_data()
{
    QTest::addColumn<QString>("columns");
    QTest::addColumn<Change>("staged");
    QTest::addColumn<Change>("unstaged");
    const QList<std::pair<QChar, Change>> letters{
        {u' ', {}},
        {u'M', GitFileChange::modified},
        {u'A', GitFileChange::added},
        {u'D', GitFileChange::deleted},
        {u'R', GitFileChange::renamed},
        {u'C', GitFileChange::copied},
        {u'U', GitFileChange::conflicted},
        {u'?', GitFileChange::untracked},
        {u'!', {}},
        {u'T', {}},
        {u'X', {}},
    };
    for (const auto& [x, staged] : letters) {
        for (const auto& [y, unstaged] : letters) {
            const QString columns = QString(x) + y;
            // Only a pair of question marks is an untracked file.
            QTest::newRow(qPrintable(columns)) << columns << (columns == u"??"_s ? Change() : staged) << unstaged;
        }
    }
}

void StatusParserTest::everyPairOfLettersIsMapped()
{
    QFETCH(QString, columns);
    QFETCH(Change, staged);
    QFETCH(Change, unstaged);
    const auto entries = parseStatus(columns + u" a.txt\n"_s);
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].path, u"a.txt"_s);
    QCOMPARE(entries[0].staged, staged);
    QCOMPARE(entries[0].unstaged, unstaged);
}

void StatusParserTest::pathIsWhatFollowsTheColumns_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("path");
    QTest::newRow("blanks") << u"?? a b.txt"_s << u"a b.txt"_s;
    QTest::newRow("rename") << u"R  old.txt -> new.txt"_s << u"old.txt -> new.txt"_s;
    QTest::newRow("quoted") << u"?? \"a\\tb\\355.txt\""_s << u"\"a\\tb\\355.txt\""_s;
    QTest::newRow("one letter") << u" M a"_s << u"a"_s;
    QTest::newRow("leading dash") << u"A  -n"_s << u"-n"_s;
    QTest::newRow("leading blank") << u"A   a"_s << u" a"_s;
    QTest::newRow("trailing blank and CR") << u"A  a \r"_s << u"a \r"_s;
    QTest::newRow("Korean") << u" M 한글.txt"_s << u"한글.txt"_s;
    QTest::newRow("one Korean letter") << u" M 한"_s << u"한"_s;
    QTest::newRow("emoji") << u" M 👍🏽"_s << u"👍🏽"_s;
    QTest::newRow("columns of several units") << u"Mक्षกำab"_s << u"ab"_s;
    QTest::newRow("third column is not looked at") << u" MXa"_s << u"a"_s;
    QTest::newRow("mark on the third column belongs to it") << u" M \u0301a"_s << u"a"_s;
    QTest::newRow("unpaired surrogate") << u" M "_s + QChar(0xD800) << QString(QChar(0xD800));
    QTest::newRow("null") << u" M "_s + QChar(0) + u"b"_s << QString(QChar(0)) + u"b"_s;
}

void StatusParserTest::pathIsWhatFollowsTheColumns()
{
    QFETCH(QString, line);
    QFETCH(QString, path);
    for (const QString& output : {line, line + u'\n'}) {
        const auto entries = parseStatus(output);
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries[0].path, path);
    }
}

void StatusParserTest::shortLinesAreSkipped_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("empty") << u""_s;
    QTest::newRow("newlines") << u"\n\n\n"_s;
    QTest::newRow("one character") << u"M"_s;
    QTest::newRow("columns alone") << u" M "_s;
    QTest::newRow("three characters of four units") << u" M\u0301 "_s;
    QTest::newRow("three characters of seven units") << u"Mक्षกำ"_s;
    QTest::newRow("three characters, one of two units") << u" \U0001F600 "_s;
}

void StatusParserTest::shortLinesAreSkipped()
{
    QFETCH(QString, output);
    QVERIFY(parseStatus(output).isEmpty());
    QCOMPARE(parseStatus(output + u"\n?? a\n"_s).size(), 1);
}

void StatusParserTest::orderIsThatOfTheOutput()
{
    QStringList paths;
    for (const GitFileStatus& entry : parseStatus(u" M z\n\nA  a\n?? m\n!! ignored\n"_s)) {
        paths.append(entry.path);
    }
    QCOMPARE(paths, (QStringList{u"z"_s, u"a"_s, u"m"_s, u"ignored"_s}));
}

void StatusParserTest::identitiesAreFresh()
{
    QSet<QUuid> ids;
    for (int turn = 0; turn < 2; ++turn) {
        for (const GitFileStatus& entry : parseStatus(u" M a\n M a\n"_s)) {
            QVERIFY(!entry.id.isNull());
            ids.insert(entry.id);
        }
    }
    QCOMPARE(ids.size(), 4);
}

const kelm::test::Registered<StatusParserTest> registered;

} // namespace status_parser_test

#include "status_parser_test.moc"
