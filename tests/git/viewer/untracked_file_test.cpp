#include "git/diff/diff_content.h"
#include "git/diff/file_facts.h"
#include "git/viewer/untracked_file.h"
#include "support/test_program.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace untracked_file_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class UntrackedFileTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsADiffThatAddsIt_data();
    void textIsADiffThatAddsIt();
    void nameStaysInItsLine();
    void anythingElseIsTold_data();
    void anythingElseIsTold();
    void whatIsNoRegularFileIsNotRead();
    void longTextIsCutBehindALine_data();
    void longTextIsCutBehindALine();

private:
    QTemporaryDir folder_;

    QString written(const QByteArray& content) const
    {
        const QString path = folder_.filePath(u"file"_s);
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? path : QString();
    }
};

void UntrackedFileTest::textIsADiffThatAddsIt_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("body");
    QTest::newRow("a line") << QByteArray("one\n") << u"@@ -0,0 +1 @@\n+one\n"_s;
    QTest::newRow("three") << QByteArray("one\n\n three\n") << u"@@ -0,0 +1,3 @@\n+one\n+\n+ three\n"_s;
    QTest::newRow("an empty line") << QByteArray("\n") << u"@@ -0,0 +1 @@\n+\n"_s;
    QTest::newRow("without a newline") << QByteArray("one\ntwo")
                                       << u"@@ -0,0 +1,2 @@\n+one\n+two\n\\ No newline at end of file\n"_s;
    QTest::newRow("a single unit") << QByteArray("x") << u"@@ -0,0 +1 @@\n+x\n\\ No newline at end of file\n"_s;
    QTest::newRow("carriage returns") << QByteArray("one\r\n") << u"@@ -0,0 +1 @@\n+one\r\n"_s;
    QTest::newRow("Hangul") << QByteArray("가\n") << u"@@ -0,0 +1 @@\n+가\n"_s;
}

void UntrackedFileTest::textIsADiffThatAddsIt()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, body);
    const UntrackedFile file = UntrackedFile::read(written(content), u"some name"_s);
    QCOMPARE(file.diff,
             u"diff --git a/some name b/some name\nnew file mode 100644\n--- /dev/null\n+++ b/some name\n"_s + body);
    QCOMPARE(file.words, QString());
}

void UntrackedFileTest::nameStaysInItsLine()
{
    const UntrackedFile file = UntrackedFile::read(written("one\n"), u"a\nb %1"_s);
    const DiffContent content = DiffContent::of(file.diff);
    QCOMPARE(content.files.size(), 1);
    QCOMPARE(content.files[0].path, u"a\u2424b %1"_s);
    QCOMPARE(filesSummary(content.files), u"1 file   +1 \u22120"_s);
}

void UntrackedFileTest::anythingElseIsTold_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("words");
    QTest::newRow("nothing") << QByteArray() << u"Untracked empty file"_s;
    QTest::newRow("a null character") << QByteArray("a\0b\n", 4) << u"Untracked binary file, 4 bytes"_s;
    QTest::newRow("no UTF-8") << QByteArray("\xff\xfe\n") << u"Untracked binary file, 3 bytes"_s;
    QTest::newRow("half a character at the end") << QByteArray("a\n\xea\xb0") << u"Untracked binary file, 4 bytes"_s;
    const QByteArray line(UntrackedFile::most, 'x');
    const auto tooLong = u"Untracked file, %1, with a line that is too long to show"_s;
    QTest::newRow("a long line") << line + "x\n" << tooLong.arg(sizeInWords(line.size() + 2));
    QTest::newRow("a character of it cut")
        << line.chopped(1) + "\xea\xb0\x80" << tooLong.arg(sizeInWords(line.size() + 2));
    const auto binary = u"Untracked binary file, %1"_s;
    QTest::newRow("a long line with a null character")
        << line.chopped(1) + '\0' + "x" << binary.arg(sizeInWords(line.size() + 1));
    QTest::newRow("a long line that is no UTF-8") << "\xff" + line << binary.arg(sizeInWords(line.size() + 1));
    QTest::newRow("long, with no line") << QByteArray(line.size() + 1, '\0')
                                        << binary.arg(sizeInWords(line.size() + 1));
}

void UntrackedFileTest::anythingElseIsTold()
{
    QFETCH(QByteArray, content);
    const UntrackedFile file = UntrackedFile::read(written(content), u"file"_s);
    QCOMPARE(file.diff, QString());
    QTEST(file.words, "words");
}

void UntrackedFileTest::whatIsNoRegularFileIsNotRead()
{
    const auto words = [this](const QString& name) {
        const UntrackedFile file = UntrackedFile::read(folder_.filePath(name), name);
        return file.diff + file.words;
    };
    QVERIFY(QDir(folder_.path()).mkdir(u"folder"_s));
    QCOMPARE(words(u"folder"_s), u"Untracked folder"_s);
    QCOMPARE(::mkfifo(folder_.filePath(u"pipe"_s).toLocal8Bit().constData(), 0600), 0);
    QCOMPARE(words(u"pipe"_s), u"Untracked file, which cannot be read"_s);
    QCOMPARE(words(u"missing"_s), u"Untracked file, which cannot be read"_s);
    // Also one to a folder, and one to nothing: what stands behind a link is not its text.
    for (const QString& target : {folder_.filePath(u"folder"_s), u"/nowhere/at all"_s}) {
        QVERIFY(QFile::remove(folder_.filePath(u"link"_s)) || !QFileInfo(folder_.filePath(u"link"_s)).isSymLink());
        QVERIFY(QFile::link(target, folder_.filePath(u"link"_s)));
        QCOMPARE(words(u"link"_s), u"Untracked link to "_s + target);
    }
}

void UntrackedFileTest::longTextIsCutBehindALine_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<qsizetype>("lines");
    constexpr qsizetype most = UntrackedFile::most;
    const QByteArray line = QByteArray(99, 'x') + '\n';
    const QByteArray whole = line.repeated(most / line.size());
    QTest::newRow("just as long as may be") << whole << whole.count('\n');
    QTest::newRow("that without its newline") << whole.chopped(1) << whole.count('\n');
    QTest::newRow("one more, in another line") << whole + 'x' << whole.count('\n');
    QTest::newRow("cut in the middle of a line") << "y" + whole << whole.count('\n') - 1;
    QTest::newRow("cut in the middle of a character") << whole.chopped(1) + "\xea\xb0\x80\n" << whole.count('\n') - 1;
    QTest::newRow("much more") << whole.repeated(2) << whole.count('\n');
}

void UntrackedFileTest::longTextIsCutBehindALine()
{
    QFETCH(QByteArray, content);
    QFETCH(qsizetype, lines);
    const UntrackedFile file = UntrackedFile::read(written(content), u"file"_s);
    QCOMPARE(file.words, QString());
    const DiffContent read = DiffContent::of(file.diff);
    QCOMPARE(filesSummary(read.files), u"1 file   +%1 \u22120"_s.arg(lines));
    QCOMPARE(read.files[0].hunks[0].newCount, lines);
    // What was cut off is no end of the file.
    QCOMPARE(file.diff.contains(u'\\'), content.size() <= UntrackedFile::most && !content.endsWith('\n'));
}

const kelm::test::Registered<UntrackedFileTest> registered;

} // namespace untracked_file_test

#include "untracked_file_test.moc"
