#include "git/diff/diff_parser.h"
#include "support/temporary_repository.h"
#include "support/test_program.h"

#include <QtTest>

#include <random>

namespace diff_parser_history_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

struct Counts
{
    qint64 added = 0;
    qint64 removed = 0;

    bool operator==(const Counts&) const = default;
};

/// The counts of `--numstat -z` by path; a binary file has none.
QMap<QString, std::optional<Counts>> numstat(const QByteArray& output)
{
    QMap<QString, std::optional<Counts>> files;
    QByteArrayList fields = output.split('\0');
    while (fields.size() > 1) {
        const QByteArrayList pieces = fields.takeFirst().split('\t');
        QString path = QString::fromUtf8(pieces[2]);
        if (path.isEmpty()) {
            // A rename: the two paths follow.
            fields.removeFirst();
            path = QString::fromUtf8(fields.takeFirst());
        }
        files.insert(path, pieces[0] == "-" ? std::nullopt
                                            : std::optional(Counts{pieces[0].toLongLong(), pieces[1].toLongLong()}));
    }
    return files;
}

/// Checks a hunk against its own header: numbers run on without a gap, and the counts are the header's. The last hunk
/// of an output has one more line of context.
QString hunkFault(const DiffHunk& hunk, bool isLast)
{
    qint64 oldLine = hunk.oldStart;
    qint64 newLine = hunk.newStart;
    for (const DiffLine& line : hunk.lines.sliced(1)) {
        if (line.oldLineNumber && *line.oldLineNumber != oldLine++) {
            return u"old number of \"%1\""_s.arg(line.text);
        }
        if (line.newLineNumber && *line.newLineNumber != newLine++) {
            return u"new number of \"%1\""_s.arg(line.text);
        }
    }
    const qint64 extra = isLast ? 1 : 0;
    if (oldLine - hunk.oldStart != hunk.oldCount + extra || newLine - hunk.newStart != hunk.newCount + extra) {
        return u"counts of %1"_s.arg(hunk.header);
    }
    return {};
}

/// Compares a parsed diff with git's own counts; empty when they agree.
QString fault(const QByteArray& diff, const QMap<QString, std::optional<Counts>>& expected)
{
    const auto files = DiffParser::parse(QString::fromUtf8(diff));
    if (files.size() != expected.size()) {
        return u"%1 files instead of %2"_s.arg(files.size()).arg(expected.size());
    }
    for (const DiffFile& file : files) {
        if (!expected.contains(file.path)) {
            return u"unknown path %1"_s.arg(file.path);
        }
        Counts counts;
        for (const DiffHunk& hunk : file.hunks) {
            const bool isLast = &file == &files.last() && &hunk == &file.hunks.last();
            if (const QString text = hunkFault(hunk, isLast); !text.isEmpty()) {
                return file.path + u": "_s + text;
            }
            for (const DiffLine& line : hunk.lines) {
                counts.added += line.kind == DiffLineKind::added;
                counts.removed += line.kind == DiffLineKind::removed;
            }
        }
        if (counts != expected[file.path].value_or(Counts{})) {
            return file.path + u": +%1 -%2"_s.arg(counts.added).arg(counts.removed);
        }
    }
    return {};
}

} // namespace

/// The parser against git's own counts.
class DiffParserHistoryTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useFixedGitEnvironment(); }
    void countsAgreeWithGitsOverARandomHistory();
    void countsAgreeWithGitsOverThisProjectsHistory();
};

void DiffParserHistoryTest::countsAgreeWithGitsOverARandomHistory()
{
    std::mt19937 random(static_cast<unsigned>(qEnvironmentVariableIntValue("KELM_TEST_SEED")));
    const auto below = [&random](qsizetype bound) {
        return std::uniform_int_distribution<qsizetype>(0, bound - 1)(random);
    };
    TemporaryRepository repository;
    repository.git({u"config"_s, u"core.quotePath"_s, u"false"_s});
    // No line begins with "-- " or "++ ": those end a hunk.
    const QByteArrayList words{
        "",     "a",   "--", "++",           "-",    "+",   " ", "\\ x", "diff --git a/x b/x", "@@ -1 +1 @@", "index 1",
        "한글", "a\r", "\t", "Binary files", "--x ", "+++x"};
    QMap<QString, QByteArrayList> texts;
    int nameCounter = 0;
    for (int commit = 0; commit < 40; ++commit) {
        for (auto change = 1 + below(4); change > 0; --change) {
            const bool isNew = texts.isEmpty() || below(4) == 0;
            const QString name =
                isNew ? u"d%1/f %2 한"_s.arg(below(3)).arg(++nameCounter) : texts.keys()[below(texts.size())];
            QByteArrayList& text = texts[name];
            if (!isNew && below(8) == 0) {
                const QString moved = name + u"x"_s;
                QVERIFY(QFile::rename(repository.filePath(name), repository.filePath(moved)));
                texts[moved] = texts.take(name);
                continue;
            }
            if (!isNew && below(10) == 0) {
                repository.remove(name);
                texts.remove(name);
                continue;
            }
            for (auto edits = 1 + below(10); edits > 0; --edits) {
                const auto place = below(text.size() + 1);
                if (below(3) > 0 || place == text.size()) {
                    text.insert(place, words[below(words.size())] + QByteArray::number(below(1000)));
                } else {
                    text.removeAt(place);
                }
            }
            repository.write(name, text.join('\n') + (below(4) == 0 ? "" : "\n"));
        }
        if (below(6) == 0) {
            repository.write(u"binary"_s, QByteArray("\0\1\2", 3) + QByteArray::number(commit));
        }
        repository.commitAll(u"commit %1"_s.arg(commit));
    }
    const QByteArrayList commits = repository.git({u"rev-list"_s, u"HEAD"_s}).trimmed().split('\n');
    QCOMPARE(commits.size(), 40);
    for (const QByteArray& commit : commits) {
        const QString sha = QString::fromLatin1(commit);
        const auto expected =
            numstat(repository.git({u"show"_s, u"--format="_s, u"-M"_s, u"--numstat"_s, u"-z"_s, sha}));
        const QString text = fault(repository.git({u"show"_s, u"--format="_s, u"-M"_s, sha}), expected);
        QVERIFY2(text.isEmpty(), qPrintable(sha + u": "_s + text));
    }
}

void DiffParserHistoryTest::countsAgreeWithGitsOverThisProjectsHistory()
{
    const QString root = QStringLiteral(KELM_REPOSITORY);
    const auto run = [&root](const QStringList& arguments) {
        return ProcessRunner::system().run({.program = u"/usr/bin/git"_s,
                                            .arguments = QStringList{u"-c"_s, u"safe.directory=*"_s} + arguments,
                                            .workingDirectory = root});
    };
    const ProcessResult log = run({u"rev-list"_s, u"--max-count=30"_s, u"--no-merges"_s, u"HEAD"_s});
    if (log.launchError || !log.exit.isSuccess()) {
        QSKIP("the sources are no repository");
    }
    int compared = 0;
    for (const QByteArray& commit : log.standardOutput.trimmed().split('\n')) {
        const QString sha = QString::fromLatin1(commit);
        const QByteArray diff = run({u"show"_s, u"--format="_s, u"-M"_s, sha}).standardOutput;
        // What the parser takes for a header where git means a line is not compared.
        if (diff.contains("\n--- ") && diff.count("\n--- ") != diff.count("\n+++ ")) {
            continue;
        }
        const auto expected =
            numstat(run({u"show"_s, u"--format="_s, u"-M"_s, u"--numstat"_s, u"-z"_s, sha}).standardOutput);
        const QString text = fault(diff, expected);
        QVERIFY2(text.isEmpty(), qPrintable(sha + u": "_s + text));
        ++compared;
    }
    QVERIFY(compared > 0);
}

const kelm::test::Registered<DiffParserHistoryTest> registered;

} // namespace diff_parser_history_test

#include "diff_parser_history_test.moc"
