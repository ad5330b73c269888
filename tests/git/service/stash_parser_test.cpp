#include "git/service/stash_parser.h"
#include "support/test_program.h"

#include <QtTest>

namespace stash_parser_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class StashParserTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesOfTwoPiecesAreStashes_data();
    void linesOfTwoPiecesAreStashes();
};

void StashParserTest::linesOfTwoPiecesAreStashes_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QList<GitStash>>("stashes");
    const QChar separator(0x1F);
    const auto row = [separator](const char* name, const QString& output, const QList<GitStash>& stashes) {
        QTest::newRow(name) << QString(output).replace(u'#', separator) << stashes;
    };
    row("empty", u""_s, {});
    row("two", u"stash@{0}#WIP on main: 1 x\nstash@{1}#On main: y\n"_s,
        {{0, u"stash@{0}"_s, u"WIP on main: 1 x"_s}, {1, u"stash@{1}"_s, u"On main: y"_s}});
    row("skipped lines count", u"a#b\nbad\na#b#c\nc#d"_s, {{0, u"a"_s, u"b"_s}, {3, u"c"_s, u"d"_s}});
    row("empty pieces are kept", u"#\n"_s, {{0, u""_s, u""_s}});
    row("Korean", u"stash@{0}#임시 저장"_s, {{0, u"stash@{0}"_s, u"임시 저장"_s}});
}

void StashParserTest::linesOfTwoPiecesAreStashes()
{
    QFETCH(QString, output);
    QFETCH(QList<GitStash>, stashes);
    QCOMPARE(parseStashes(output), stashes);
}

const kelm::test::Registered<StashParserTest> registered;

} // namespace stash_parser_test

#include "stash_parser_test.moc"
