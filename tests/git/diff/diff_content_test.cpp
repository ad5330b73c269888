#include "git/diff/diff_content.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace diff_content_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class DiffContentTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsShownInOneOfThreeWays_data();
    void textIsShownInOneOfThreeWays();
    void eachParseHasItsOwnIdentities();
    void hunksAreCounted();
};

void DiffContentTest::textIsShownInOneOfThreeWays_data()
{
    using State = DiffContent::State;
    QTest::addColumn<QString>("text");
    QTest::addColumn<State>("state");
    QTest::addColumn<QString>("summary");

    QTest::newRow("no text") << QString() << State::noChanges << u"0 files   +0 \u22120"_s;
    QTest::newRow("prose") << u"Nothing to see\nhere\n"_s << State::rawText << u"0 files   +0 \u22120"_s;
    QTest::newRow("a line feed alone") << u"\n"_s << State::rawText << u"0 files   +0 \u22120"_s;
    QTest::newRow("one file") << diffOf(u"a"_s, {{u"-x"_s, u"+y"_s, u"+z"_s, u" c"_s}}) << State::files
                              << u"1 file   +2 \u22121"_s;
    QTest::newRow("two files, three hunks") << diffOf(u"a"_s, {{u"-x"_s}, {u"+y"_s}}) + diffOf(u"b"_s, {{u"+z"_s}})
                                            << State::files << u"2 files   +2 \u22121"_s;
    QTest::newRow("binary")
        << u"diff --git a/i.png b/i.png\nindex 1..2 100644\nBinary files a/i.png and b/i.png differ\n"_s << State::files
        << u"1 file   +0 \u22120"_s;
    QTest::newRow("a hunk without a file") << u"@@ -1 +1 @@\n+a"_s << State::files << u"1 file   +1 \u22120"_s;
}

void DiffContentTest::textIsShownInOneOfThreeWays()
{
    QFETCH(QString, text);
    QFETCH(QString, summary);
    const DiffContent content = DiffContent::of(text);
    QTEST(content.state, "state");
    QCOMPARE(content.files.isEmpty(), content.state != DiffContent::State::files);
    QCOMPARE(filesSummary(content.files), summary);
}

void DiffContentTest::eachParseHasItsOwnIdentities()
{
    const QString text = diffOf(u"a"_s, {{u"-x"_s}});
    const DiffContent first = DiffContent::of(text);
    const DiffContent second = DiffContent::of(text);
    QVERIFY(first.files[0].id != second.files[0].id);
    QVERIFY(first.files[0].hunks[0].id != second.files[0].hunks[0].id);
}

void DiffContentTest::hunksAreCounted()
{
    QCOMPARE(hunkCountLabel(0), u"0 hunks"_s);
    QCOMPARE(hunkCountLabel(1), u"1 hunk"_s);
    QCOMPARE(hunkCountLabel(2), u"2 hunks"_s);
}

const kelm::test::Registered<DiffContentTest> registered;

} // namespace diff_content_test

#include "diff_content_test.moc"
