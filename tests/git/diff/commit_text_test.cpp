#include "git/diff/commit_text.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

namespace commit_text_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

class CommitTextTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }

    void headIsRead_data();
    void headIsRead();
    void headIsThatOfGit();
};

void CommitTextTest::headIsRead_data()
{
    QTest::addColumn<QString>("shown");
    QTest::addColumn<CommitText>("commit");
    const QString head = u"commit 1a2b\nAuthor: A B <a@b>\nDate:   Sat Feb 3 04:05:06 2024 +0000\n"_s;
    const auto commit = [](const QString& message, const QString& merged = {}) {
        return CommitText{u"A B <a@b>"_s, u"Sat Feb 3 04:05:06 2024 +0000"_s, merged, message};
    };
    QTest::newRow("nothing") << QString() << CommitText{};
    QTest::newRow("one line") << head + u"\n    Mend it\n\ndiff --git a/a b/a\n@@ -1 +1 @@\n-    no message\n"_s
                              << commit(u"Mend it"_s);
    QTest::newRow("without changes") << head + u"\n    Mend it\n"_s << commit(u"Mend it"_s);
    QTest::newRow("cut off in its message") << head + u"\n    Mend it"_s << commit(u"Mend it"_s);
    QTest::newRow("cut off in its head") << head.chopped(1) << commit({});
    QTest::newRow("several paragraphs, an indented line")
        << head + u"\n    Mend it\n    \n    Since it was\n        broken.\n"
                  "    diff --git is no file here\n\ndiff --git a/a b/a\n"_s
        << commit(u"Mend it\n\nSince it was\n    broken.\ndiff --git is no file here"_s);
    QTest::newRow("merge") << u"commit 1a2b\nMerge: 1a2b 3c4d\n"_s + head.sliced(12) +
                                  u"\n    Merge it\n\ndiff --cc a\n"_s
                           << commit(u"Merge it"_s, u"1a2b 3c4d"_s);
    QTest::newRow("without a message") << head + u"\n\ndiff --git a/a b/a\n"_s << commit({});
    QTest::newRow("with notes") << head + u"\n    Mend it\n\nNotes:\n    Well done\n\ndiff --git a/a b/a\n"_s
                                << commit(u"Mend it\n\nNotes:\nWell done"_s);
    QTest::newRow("a signature before it")
        << u"gpg: Signature made today\n"_s + head + u"\n    Mend it\n"_s << commit(u"Mend it"_s);
}

void CommitTextTest::headIsRead()
{
    QFETCH(QString, shown);
    QTEST(CommitText::of(shown), "commit");
}

void CommitTextTest::headIsThatOfGit()
{
    const TemporaryRepository repository;
    const QString message = u"Author: no head\n\nDate: nor this\n\n    indented\n\n* 가나다"_s;
    repository.write(u"a"_s, "a\n");
    repository.commitAll(message);
    const CommitText commit = CommitText::of(QString::fromUtf8(repository.git({u"show"_s, u"--no-color"_s})));
    QCOMPARE(commit.author, u"Test Author <test@example.org>"_s);
    QCOMPARE(commit.date, u"Sat Feb 3 04:05:06 2024 +0000"_s);
    QCOMPARE(commit.message, message);
}

const kelm::test::Registered<CommitTextTest> registered;

} // namespace commit_text_test

#include "commit_text_test.moc"
