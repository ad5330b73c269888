#include "editor/folding/fold_scans.h"
#include "editor/folding/foldable_regions.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/text_tree.h"

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <thread>

namespace foldable_regions_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

std::vector<FoldableRegion> scanned(CodeFolding kind, const QString& text)
{
    std::vector<FoldableRegion> regions = kind == CodeFolding::braces    ? scanBraces(text)
                                          : kind == CodeFolding::indents ? scanIndents(text)
                                                                         : scanTags(text);
    std::stable_sort(regions.begin(), regions.end(),
                     [](const FoldableRegion& a, const FoldableRegion& b) { return a.startLine < b.startLine; });
    return regions;
}

std::optional<FoldableRegion> firstAt(const std::vector<FoldableRegion>& regions, qsizetype line)
{
    const auto first = std::find_if(regions.begin(), regions.end(),
                                    [line](const FoldableRegion& region) { return region.startLine == line; });
    return first != regions.end() ? std::optional(*first) : std::nullopt;
}

/// What the scan of a kind looks at, and what is nearly that.
const QStringList& fragments(CodeFolding kind)
{
    static const QStringList braces{u"{"_s,  u"{"_s,     u"}"_s,  u"}"_s,   u"\n"_s, u"\n"_s,    u"\n"_s,
                                    u"\""_s, u"\\"_s,    u"/"_s,  u"//"_s,  u"\r"_s, u"\r\n"_s,  u"'"_s,
                                    u"x"_s,  u"{\n\n"_s, u"한"_s, u"\n}"_s, u"*"_s,  u"\u2028"_s};
    static const QStringList indents{u"\n"_s,   u"\n"_s, u"\n "_s,   u"\n  "_s,   u"\n\t"_s,   u"\n   x"_s, u"\r"_s,
                                     u"\r\n"_s, u" "_s,  u"\t"_s,    u"\u0085"_s, u"\u2028"_s, u"\u2029"_s, u"x"_s,
                                     u"x"_s,    u"한"_s, u"\n  x"_s, u"\nx"_s,    u"\u00a0"_s};
    static const QStringList tags{u"<a>"_s, u"</a>"_s, u"<b "_s,   u"</b>"_s,   u"<"_s,        u">"_s,
                                  u"/"_s,   u"\n"_s,   u"\n"_s,    u"\n"_s,     u"a"_s,        u"b"_s,
                                  u"h1"_s,  u"<h1"_s,  u"</h1>"_s, u"c='\n'"_s, u"<a\u0301"_s, u"<a한"_s,
                                  u"_"_s,   u"-"_s,    u"<a "_s,   u"</"_s,     u"\r"_s};
    return kind == CodeFolding::braces ? braces : kind == CodeFolding::indents ? indents : tags;
}

QString randomText(test::RandomText& random, CodeFolding kind, qsizetype pieces)
{
    const QStringList& all = fragments(kind);
    QString text;
    for (qsizetype i = random.below(pieces + 1); i > 0; --i) {
        text += random.below(12) == 0 ? random.text(2) : all[random.below(all.size())];
    }
    return text;
}

/// A text and its regions, edited at random beside the scan of the whole text.
class Edited
{
public:
    Edited(test::RandomText& random, CodeFolding kind, qsizetype chunk)
        : random_(random), kind_(kind), regions_(kind, chunk)
    {}

    void reset(const QString& text)
    {
        text_ = text;
        tree_ = TextTree(text);
        regions_.reset(text.size());
    }

    void edit()
    {
        TextRange range = random_.range(text_.size());
        if (text_.size() < 400 && random_.below(3) != 0) {
            range.length = 0;
        }
        const QString put = randomText(random_, kind_, random_.below(20) == 0 ? 60 : 3);
        text_.replace(range.location, range.length, put);
        tree_.replace(range, put);
        regions_.textReplaced(range, put.size());
    }

    /// In one go, or in portions with edits between some of them.
    void settle()
    {
        if (random_.below(2) == 0) {
            regions_.settle(tree_);
        }
        while (!regions_.isSettled()) {
            regions_.settle(tree_, random_.below(40));
            if (random_.below(20) == 0) {
                edit();
            }
        }
    }

    /// Empty when the regions are those of a scan.
    QString difference() const
    {
        const std::vector<FoldableRegion> expected = scanned(kind_, text_);
        if (regions_.all() != expected) {
            return u"other regions than those of a scan"_s;
        }
        const qsizetype lines = tree_.lineCount();
        for (int i = 0; i < 8; ++i) {
            const qsizetype line = random_.below(lines + 3);
            if (regions_.firstRegionStartingAt(line) != firstAt(expected, line)) {
                return u"another region at line %1"_s.arg(line);
            }
        }
        return {};
    }

    const FoldableRegions& regions() const { return regions_; }
    const QString& text() const { return text_; }

private:
    test::RandomText& random_;
    CodeFolding kind_;
    QString text_;
    TextTree tree_;
    FoldableRegions regions_;
};

/// Sources in which each chunk has something left over for another one.
QString source(CodeFolding kind, qsizetype units)
{
    const QString block = kind == CodeFolding::braces
                              ? u"int f() {\n    if (x) { // \"\n        puts(\"}\");\n\n    }\n}\nclass A {\n"_s
                          : kind == CodeFolding::indents ? u"def f(x):\n    if x:\n\n        a\n        b\n    c\n"_s
                                                         : u"<p>\n<ul class='a'\n>\n<li>a<br>\n\n</li>\n</ul>\n"_s;
    return block.repeated(units / block.size() + 1);
}

void addKinds()
{
    QTest::addColumn<CodeFolding>("kind");
    QTest::newRow("braces") << CodeFolding::braces;
    QTest::newRow("indents") << CodeFolding::indents;
    QTest::newRow("tags") << CodeFolding::tags;
}

} // namespace

class FoldableRegionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyTextHasNone_data() { addKinds(); }
    void anEmptyTextHasNone();
    void aFreshTextHasTheRegionsOfAScan_data() { addKinds(); }
    void aFreshTextHasTheRegionsOfAScan();
    void whatIsAnsweredIsWhatWasSettled_data() { addKinds(); }
    void whatIsAnsweredIsWhatWasSettled();
    void randomEditsLeaveTheRegionsOfAScan_data();
    void randomEditsLeaveTheRegionsOfAScan();
    void everyShortTextInEveryCut_data() { addKinds(); }
    void everyShortTextInEveryCut();
    void linesLongerThanAChunk_data() { addKinds(); }
    void linesLongerThanAChunk();
    void aKeyReadsOneChunk_data();
    void aKeyReadsOneChunk();
    void anOpenedTagReadsNoFurtherThanItsEnd();
    void settlingStopsAndGoesOn();
    void aCopyIsSettledOnAnotherThread_data() { addKinds(); }
    void aCopyIsSettledOnAnotherThread();
    void aTextOfAnotherLengthIsReadAnew();
};

void FoldableRegionsTest::anEmptyTextHasNone()
{
    QFETCH(CodeFolding, kind);
    FoldableRegions regions(kind);
    QVERIFY(regions.isSettled());
    QVERIFY(regions.all().empty());
    QVERIFY(!regions.firstRegionStartingAt(1));
    regions.reset(0);
    QVERIFY(!regions.isSettled());
    regions.settle(TextTree());
    QVERIFY(regions.isSettled());
    QVERIFY(regions.all().empty());
    QVERIFY(!regions.firstRegionStartingAt(1));
}

void FoldableRegionsTest::aFreshTextHasTheRegionsOfAScan()
{
    QFETCH(CodeFolding, kind);
    const QString text = source(kind, 500'000);
    FoldableRegions regions(kind);
    regions.reset(text.size());
    const TextTree tree(text);
    regions.settle(tree);
    QVERIFY(regions.isSettled());
    const std::vector<FoldableRegion> expected = scanned(kind, text);
    QVERIFY(expected.size() > 10'000);
    QVERIFY(regions.all() == expected);
    auto next = expected.begin();
    for (qsizetype line = 0; line <= tree.lineCount() + 1; ++line) {
        const bool starts = next != expected.end() && next->startLine == line;
        QCOMPARE(regions.firstRegionStartingAt(line).has_value(), starts);
        QVERIFY(!starts || regions.firstRegionStartingAt(line) == *next);
        next = std::find_if(next, expected.end(), [line](auto& region) { return region.startLine > line; });
    }
}

void FoldableRegionsTest::whatIsAnsweredIsWhatWasSettled()
{
    QFETCH(CodeFolding, kind);
    QString text = source(kind, 2000);
    TextTree tree(text);
    FoldableRegions regions(kind, 64);
    regions.reset(text.size());
    QVERIFY(regions.all().empty());
    regions.settle(tree);
    const std::vector<FoldableRegion> before = scanned(kind, text);
    QVERIFY(regions.all() == before);

    text.insert(0, u"\n\n"_s);
    tree.replace({0, 0}, u"\n\n");
    regions.textReplaced({0, 0}, 2);
    QVERIFY(!regions.isSettled());
    QVERIFY(regions.all() == before);
    QVERIFY(regions.firstRegionStartingAt(1) == firstAt(before, 1));
    regions.settle(tree);
    QVERIFY(regions.all() == scanned(kind, text));
    regions.reset(text.size());
    QVERIFY(regions.all() == scanned(kind, text));
}

void FoldableRegionsTest::randomEditsLeaveTheRegionsOfAScan_data()
{
    QTest::addColumn<CodeFolding>("kind");
    QTest::addColumn<int>("chunk");
    for (const int chunk : {1, 3, 8, 30, 200}) {
        QTest::addRow("braces in %d", chunk) << CodeFolding::braces << chunk;
        QTest::addRow("indents in %d", chunk) << CodeFolding::indents << chunk;
        QTest::addRow("tags in %d", chunk) << CodeFolding::tags << chunk;
    }
}

void FoldableRegionsTest::randomEditsLeaveTheRegionsOfAScan()
{
    QFETCH(CodeFolding, kind);
    QFETCH(int, chunk);
    constexpr int settlings = 3000;
    test::RandomText random;
    Edited edited(random, kind, chunk);
    size_t found = 0;
    for (int i = 0; i < settlings; ++i) {
        if (i % 100 == 0) {
            edited.reset(randomText(random, kind, 400));
        }
        const std::vector<FoldableRegion> before = edited.regions().all();
        for (qsizetype edits = random.below(4); edits > 0; --edits) {
            edited.edit();
        }
        QVERIFY(edited.regions().all() == before);
        edited.settle();
        const QString difference = edited.difference();
        QVERIFY2(difference.isEmpty(), qPrintable(difference + u" in "_s + edited.text()));
        found += before.size();
    }
    // Texts without regions would prove little.
    QVERIFY2(found > size_t(settlings / 2), qPrintable(QString::number(found)));
}

/// All texts of a few fragments, each settled whole and after each of its units was put in last.
void FoldableRegionsTest::everyShortTextInEveryCut()
{
    QFETCH(CodeFolding, kind);
    const QStringList few = kind == CodeFolding::braces    ? QStringList{u"{"_s, u"}"_s, u"\n"_s, u"\""_s, u"//"_s}
                            : kind == CodeFolding::indents ? QStringList{u"x"_s, u" "_s, u"\n"_s, u"\r"_s, u"\n x"_s}
                                                           : QStringList{u"<a"_s, u">"_s, u"\n"_s, u"</a>"_s, u"<b>"_s};
    constexpr int longest = 6;
    for (int number = 0; number < 15'625; ++number) {
        QString text;
        for (int rest = number, i = 0; i < longest; ++i, rest /= int(few.size())) {
            text += few[rest % few.size()];
        }
        const std::vector<FoldableRegion> expected = scanned(kind, text);
        const qsizetype last = number % text.size();
        QString begun = text;
        begun.remove(last, 1);
        FoldableRegions regions(kind, 1);
        regions.reset(begun.size());
        regions.settle(TextTree(begun));
        regions.textReplaced({last, 0}, 1);
        regions.settle(TextTree(text));
        QVERIFY2(regions.all() == expected, qPrintable(text));
    }
}

void FoldableRegionsTest::linesLongerThanAChunk()
{
    QFETCH(CodeFolding, kind);
    test::RandomText random;
    const QString filling = kind == CodeFolding::tags ? u"<a><b></a>"_s : u"{ } {"_s;
    for (const QString& end : {u"\n"_s, u"\r\n"_s, u"\r"_s, u"\u2028"_s}) {
        QString text = u"{"_s + end + u" {"_s;
        for (int i = 0; i < 12; ++i) {
            text += filling.repeated(random.below(200)) + end.repeated(1 + random.below(3)) + QString(i % 5, u' ');
        }
        text += kind == CodeFolding::tags ? u"</b></a></a>\n</a>"_s : u"}\n}\n}\n"_s;
        FoldableRegions regions(kind, 64);
        TextTree tree(text);
        regions.reset(text.size());
        regions.settle(tree);
        QVERIFY(regions.all() == scanned(kind, text));
        for (int i = 0; i < 100; ++i) {
            const TextRange range = random.range(text.size());
            text.replace(range.location, range.length, end);
            tree.replace(range, end);
            regions.textReplaced(range, end.size());
            regions.settle(tree);
            QVERIFY(regions.all() == scanned(kind, text));
        }
    }
}

void FoldableRegionsTest::aKeyReadsOneChunk_data()
{
    QTest::addColumn<CodeFolding>("kind");
    QTest::addColumn<QString>("key");
    QTest::newRow("letter in source") << CodeFolding::braces << u"x"_s;
    QTest::newRow("opened string") << CodeFolding::braces << u"\""_s;
    QTest::newRow("brace") << CodeFolding::braces << u"{"_s;
    QTest::newRow("line") << CodeFolding::braces << u"\n"_s;
    QTest::newRow("indent") << CodeFolding::indents << u" "_s;
    QTest::newRow("letter in page") << CodeFolding::tags << u"x"_s;
    QTest::newRow("closing tag") << CodeFolding::tags << u"</p>"_s;
}

void FoldableRegionsTest::aKeyReadsOneChunk()
{
    QFETCH(CodeFolding, kind);
    QFETCH(QString, key);
    QString text = source(kind, 20'000);
    TextTree tree(text);
    FoldableRegions regions(kind, 256);
    regions.reset(text.size());
    regions.settle(tree);
    for (const qsizetype offset : {qsizetype(0), text.size() / 3, text.size()}) {
        text.insert(offset, key);
        tree.replace({offset, 0}, key);
        regions.textReplaced({offset, 0}, key.size());
        // No more than one chunk is read for this.
        regions.settle(tree, 1);
        QVERIFY(regions.isSettled());
        QVERIFY(regions.all() == scanned(kind, text));
    }
}

void FoldableRegionsTest::anOpenedTagReadsNoFurtherThanItsEnd()
{
    // Its end is far away, and nothing between needs to be read anew.
    QString text = u"<b>\n\n"_s + u"word </b \n"_s.repeated(2000) + u"<p>\n\n</b>\n"_s.repeated(2000);
    TextTree tree(text);
    FoldableRegions regions(CodeFolding::tags, 256);
    regions.reset(text.size());
    regions.settle(tree);
    QVERIFY(regions.all() == scanned(CodeFolding::tags, text));
    text.insert(5, u"<a\n"_s);
    tree.replace({5, 0}, u"<a\n");
    regions.textReplaced({5, 0}, 3);
    // The chunk of the tag, and that of its end.
    regions.settle(tree, 1);
    regions.settle(tree, 1);
    QVERIFY(regions.isSettled());
    QVERIFY(regions.all() == scanned(CodeFolding::tags, text));
}

void FoldableRegionsTest::settlingStopsAndGoesOn()
{
    const QString text = source(CodeFolding::braces, 20'000);
    const TextTree tree(text);
    FoldableRegions regions(CodeFolding::braces, 256);
    regions.reset(text.size());
    std::atomic<bool> stop = true;
    regions.settle(tree, FoldableRegions::unlimited, &stop);
    QVERIFY(!regions.isSettled());
    int portions = 0;
    for (; !regions.isSettled(); ++portions) {
        regions.settle(tree, 1000);
    }
    // What one portion has read is not read again.
    QVERIFY2(portions >= 14 && portions <= 21, qPrintable(QString::number(portions)));
    QVERIFY(regions.all() == scanned(CodeFolding::braces, text));
    stop = false;
    regions.reset(text.size());
    regions.settle(tree, FoldableRegions::unlimited, &stop);
    QVERIFY(regions.isSettled());
}

void FoldableRegionsTest::aCopyIsSettledOnAnotherThread()
{
    QFETCH(CodeFolding, kind);
    test::RandomText random;
    QString text = source(kind, 20'000);
    TextTree tree(text);
    FoldableRegions regions(kind, 128);
    regions.reset(text.size());
    regions.settle(tree);
    for (int round = 0; round < 20; ++round) {
        const auto edit = [&](FoldableRegions* other) {
            const TextRange range = random.range(text.size());
            const QString put = randomText(random, kind, 5);
            text.replace(range.location, range.length, put);
            tree.replace(range, put);
            regions.textReplaced(range, put.size());
            if (other != nullptr) {
                other->textReplaced(range, put.size());
            }
        };
        edit(nullptr);
        const std::vector<FoldableRegion> shown = regions.all();
        const std::vector<FoldableRegion> expected = scanned(kind, text);
        FoldableRegions copy = regions;
        bool isRight = false;
        std::thread worker([&copy, &isRight, &expected, snapshot = tree] {
            copy.settle(snapshot);
            isRight = copy.all() == expected;
        });
        QVERIFY(regions.all() == shown);
        worker.join();
        QVERIFY(isRight);
        edit(&copy);
        regions = copy;
        QVERIFY(regions.all() == expected);
        regions.settle(tree);
        QVERIFY(regions.all() == scanned(kind, text));
    }
}

void FoldableRegionsTest::aTextOfAnotherLengthIsReadAnew()
{
    FoldableRegions regions(CodeFolding::braces);
    regions.settle(TextTree(u"{\n\n}"));
    QCOMPARE(regions.all().size(), size_t(1));
    regions.textReplaced({100, 5}, 1);
    regions.settle(TextTree(u"{\n\n}{\n\n}"));
    QCOMPARE(regions.all().size(), size_t(2));
}

const kelm::test::Registered<FoldableRegionsTest> registered;

} // namespace foldable_regions_test

#include "foldable_regions_test.moc"
