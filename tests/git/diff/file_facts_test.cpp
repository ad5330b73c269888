#include "git/diff/diff_parser.h"
#include "git/diff/file_facts.h"
#include "support/diff_text.h"
#include "support/test_program.h"

#include <QtTest>

namespace file_facts_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class FileFactsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void labelTellsWhatTheHunksDoNot_data();
    void labelTellsWhatTheHunksDoNot();
    void contentsHaveTheirNames();
    void sizesAreShort_data();
    void sizesAreShort();
};

void FileFactsTest::labelTellsWhatTheHunksDoNot_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<DiffFileSizes>("sizes");
    QTest::addColumn<QString>("label");
    const DiffFileSizes none;
    const QString binary = u"diff --git a/i b/i\n%1index 1111111..2222222 100644\nBinary files a/i and b/i differ\n"_s;

    QTest::newRow("text") << diffOf(u"a"_s, {{u"-x"_s}}) << none << u"1 hunk"_s;
    QTest::newRow("binary") << binary.arg(QString()) << none << u"Binary file"_s;
    QTest::newRow("binary with sizes") << binary.arg(QString()) << DiffFileSizes{12288, 15360}
                                       << u"Binary file, 12 KB → 15 KB"_s;
    QTest::newRow("new binary") << binary.arg(u"new file mode 100644\n"_s) << DiffFileSizes{{}, 15360}
                                << u"New binary file, 15 KB"_s;
    QTest::newRow("deleted binary") << binary.arg(u"deleted file mode 100644\n"_s) << DiffFileSizes{100, {}}
                                    << u"Deleted binary file, 100 bytes"_s;
    QTest::newRow("binary renamed and changed in mode")
        << binary.arg(u"old mode 100644\nnew mode 100755\nsimilarity index 96%\nrename from o\nrename to i\n"_s)
        << DiffFileSizes{1, 2}
        << u"Binary file, 1 byte → 2 bytes · Renamed from o, 96 % alike · Mode 100644 → 100755"_s;
    QTest::newRow("mode alone") << u"diff --git a/r b/r\nold mode 100644\nnew mode 100755\n"_s << none
                                << u"Mode 100644 → 100755"_s;
    QTest::newRow("rename alone") << u"diff --git a/o b/n\nsimilarity index 100%\nrename from o\nrename to n\n"_s
                                  << none << u"Renamed from o, 100 % alike"_s;
    QTest::newRow("rename of a quoted name")
        << u"diff --git \"a/\\355\\225\\234 \\342\\200\\256\" b/n\nsimilarity index 100%\n"
           "rename from \"\\355\\225\\234 \\342\\200\\256\"\nrename to n\n"_s
        << none << u"Renamed from 한 ⟨U+202E⟩, 100 % alike"_s;
    QTest::newRow("rename with a hunk")
        << u"diff --git a/o b/n\nsimilarity index 90%\nrename from o\nrename to n\n@@ -1 +1 @@\n-a\n+b\n"_s << none
        << u"Renamed from o, 90 % alike · 1 hunk"_s;
    QTest::newRow("copy") << u"diff --git a/o b/n\nsimilarity index 100%\ncopy from o\ncopy to n\n"_s << none
                          << u"Copied from o, 100 % alike"_s;
    QTest::newRow("new empty file") << u"diff --git a/e b/e\nnew file mode 100644\nindex 0000000..e69de29\n"_s << none
                                    << u"New empty file"_s;
    QTest::newRow("deleted empty file") << u"diff --git a/e b/e\ndeleted file mode 100644\nindex e69de29..0000000\n"_s
                                        << none << u"Deleted empty file"_s;
    QTest::newRow("nothing at all") << u"diff --git a/e b/e\n"_s << none << u"No changes"_s;
    QTest::newRow("submodule") << diffOf(u"s"_s,
                                         {{u"-Subproject commit 1a2b3c4d5e6f"_s, u"+Subproject commit 5d6e7f8091a2"_s}})
                               << none << u"Submodule 1a2b3c4 → 5d6e7f8 · 1 hunk"_s;
    QTest::newRow("submodule with changes of its own")
        << diffOf(u"s"_s, {{u"-Subproject commit 1a2b3c4d5e6f"_s, u"+Subproject commit 1a2b3c4d5e6f-dirty"_s}}) << none
        << u"Submodule 1a2b3c4 → 1a2b3c4-dirty · 1 hunk"_s;
    QTest::newRow("new submodule") << diffOf(u"s"_s, {{u"+Subproject commit 5d6e7f8091a2"_s}}) << none
                                   << u"Submodule 5d6e7f8 · 1 hunk"_s;
}

void FileFactsTest::labelTellsWhatTheHunksDoNot()
{
    QFETCH(QString, text);
    QFETCH(DiffFileSizes, sizes);
    const auto files = DiffParser::parse(text);
    QCOMPARE(files.size(), 1);
    QTEST(fileLabel(files[0], sizes), "label");
}

void FileFactsTest::contentsHaveTheirNames()
{
    const auto facts = [](const QString& index) {
        const auto files = DiffParser::parse(u"diff --git a/a b/a\n"_s + index + u'\n');
        return DiffFileFacts::of(files[0]);
    };
    QCOMPARE(facts(u"index 1a2b..3c4d 100644"_s).oldContent, u"1a2b"_s);
    QCOMPARE(facts(u"index 1a2b..3c4d 100644"_s).newContent, u"3c4d"_s);
    QCOMPARE(facts(u"index 1a2b..0000000"_s).oldContent, u"1a2b"_s);
    QCOMPARE(facts(u"index 1a2b..0000000"_s).newContent, QString());
    QCOMPARE(facts(u"index 1a2b"_s).newContent, QString());
    QCOMPARE(facts(u"index 0000000..3c4d"_s).oldContent, QString());
    QCOMPARE(facts(u"index 0000000..3c4d"_s).newContent, u"3c4d"_s);
    // Of a combined diff there are several old ones.
    QCOMPARE(facts(u"index 1a2b,5e6f..3c4d"_s).newContent, QString());
}

void FileFactsTest::sizesAreShort_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("words");
    QTest::newRow("nothing") << qint64(0) << u"0 bytes"_s;
    QTest::newRow("one") << qint64(1) << u"1 byte"_s;
    QTest::newRow("below a step") << qint64(1023) << u"1023 bytes"_s;
    QTest::newRow("a step") << qint64(1024) << u"1 KB"_s;
    QTest::newRow("a half") << qint64(1536) << u"1.5 KB"_s;
    QTest::newRow("whole") << qint64(12 * 1024 + 300) << u"12 KB"_s;
    QTest::newRow("just above a step") << qint64(1050) << u"1 KB"_s;
    QTest::newRow("a tenth above it") << qint64(1126) << u"1.1 KB"_s;
    QTest::newRow("just below ten") << qint64(10138) << u"9.9 KB"_s;
    QTest::newRow("ten and more") << qint64(10957) << u"11 KB"_s;
    QTest::newRow("below the next step") << qint64(1000) * 1024 << u"1000 KB"_s;
    QTest::newRow("the next step") << qint64(1024) * 1024 << u"1 MB"_s;
    QTest::newRow("one and a half of it") << qint64(1536) * 1024 << u"1.5 MB"_s;
    QTest::newRow("the largest step") << (qint64(3) << 40) << u"3 TB"_s;
    QTest::newRow("beyond all steps") << (qint64(5000) << 40) << u"5000 TB"_s;
    QTest::newRow("large") << qint64(5) * 1024 * 1024 * 1024 << u"5 GB"_s;
}

void FileFactsTest::sizesAreShort()
{
    QFETCH(qint64, bytes);
    QTEST(sizeInWords(bytes), "words");
}

const kelm::test::Registered<FileFactsTest> registered;

} // namespace file_facts_test

#include "file_facts_test.moc"
