#include "editor/folding/code_folding_manager.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/text_storage.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace code_folding_manager_test {

using namespace kelm;

class CodeFoldingManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithNothing();
    void thePlaceholderIsFiveBytes();
    void theLanguageChoosesTheScan_data();
    void theLanguageChoosesTheScan();
    void regionsAreSortedByStartLineAndThenAsFound();
    void detectionLeavesFoldsAlone();
    void detectionWithoutATextViewKeepsTheList();
    void foldingCutsTheBodyOut_data();
    void foldingCutsTheBodyOut();
    void foldingWithoutABodyDoesNothing_data();
    void foldingWithoutABodyDoesNothing();
    void foldingTwiceAndUnfoldingTwiceChangeNothingMore();
    void regionsOnOneLineShareTheirFold();
    void aPythonBodyKeepsItsLastLine();
    void eachFoldAndUnfoldIsPosted();
    void aGoneTextViewIsSilent();
    void thePlaceholderIsFoundUpToTenUnitsFurther();
    void aFoldBelowAFoldCannotBeUnfoldedByItsOldLine();
    void aPlaceholderOfTheTextItselfIsTaken();
    void foldsComeBackInReverseOrder();
    void unfoldAllGivesTheTextBackAfterAnyOrder();
    void unfoldAllReportsEachBodyByItself();
    void unfoldAllKeepsEditsMadeMeanwhile();
    void unfoldAllKeepsWhatWasTypedIntoAPlaceholder();
    void aWholeNewTextIsNotMixedWithOldBodies();
    void anotherTextViewStartsAfresh();
};

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

const QString nested = QStringLiteral("a {\n  b {\n    1\n    2\n  }\n  c {\n    3\n  }\n}\nend\n");

struct Fixture
{
    explicit Fixture(const QString& content, Language language = Language::cpp)
    {
        storage.setText(content);
        manager.setStorage(&storage);
        manager.detectFoldableRegions(language);
    }

    /// The region that starts at a line, by the list as it is.
    FoldableRegion region(qsizetype line) const
    {
        return manager.firstRegionStartingAt(line).value_or(FoldableRegion{0, line, line + 2, FoldType::braces});
    }

    NotificationCenter center;
    TextStorage storage;
    CodeFoldingManager manager{center};
};

} // namespace

void CodeFoldingManagerTest::startsWithNothing()
{
    NotificationCenter center;
    const CodeFoldingManager manager(center);
    QVERIFY(manager.storage() == nullptr);
    QVERIFY(manager.foldableRegions().empty());
    QVERIFY(manager.foldedLines().isEmpty());
    QVERIFY(manager.foldedRegionStartLines().empty());
    QVERIFY(manager.foldedContent().empty());
    QVERIFY(!manager.isTextFolded());
    QVERIFY(!manager.firstRegionStartingAt(1));
}

void CodeFoldingManagerTest::thePlaceholderIsFiveBytes()
{
    QCOMPARE(CodeFoldingManager::foldPlaceholder.toUtf8(), QByteArray(" \xe2\x80\xa6 "));
}

void CodeFoldingManagerTest::theLanguageChoosesTheScan_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<FoldType>("type");
    const QList<Language> tags{Language::xml, Language::html};
    const QList<Language> indents{Language::python};
    for (const Language language : Language::allCases()) {
        const FoldType type = tags.contains(language)      ? FoldType::tag
                              : indents.contains(language) ? FoldType::indent
                                                           : FoldType::braces;
        QTest::newRow(qPrintable(language.rawValue())) << language << type;
    }
}

void CodeFoldingManagerTest::theLanguageChoosesTheScan()
{
    QFETCH(Language, language);
    QFETCH(FoldType, type);
    const Fixture fixture(QStringLiteral("{\n  x\n  y\n}\n<a>\n\n</a>\n"), language);
    QCOMPARE(fixture.manager.foldableRegions().size(), size_t(1));
    QCOMPARE(fixture.manager.foldableRegions().front().type, type);
}

void CodeFoldingManagerTest::regionsAreSortedByStartLineAndThenAsFound()
{
    const Fixture fixture(QStringLiteral("x\n{ {\n {\n\n }\n} y\n}\n"));
    const auto regions = fixture.manager.foldableRegions();
    QCOMPARE(regions.size(), size_t(3));
    QCOMPARE(regions[0], (FoldableRegion{1, 2, 6, FoldType::braces}));
    QCOMPARE(regions[1], (FoldableRegion{2, 2, 7, FoldType::braces}));
    QCOMPARE(regions[2], (FoldableRegion{0, 3, 5, FoldType::braces}));
    QVERIFY(fixture.manager.firstRegionStartingAt(2) == regions[0]);
    QVERIFY(fixture.manager.firstRegionStartingAt(3) == regions[2]);
    QVERIFY(!fixture.manager.firstRegionStartingAt(1));
    QVERIFY(!fixture.manager.firstRegionStartingAt(4));
}

void CodeFoldingManagerTest::detectionLeavesFoldsAlone()
{
    Fixture fixture(nested);
    fixture.manager.fold(fixture.region(2));
    const QString folded = fixture.storage.text();
    // Under another language there are no regions, and the fold stays.
    fixture.manager.detectFoldableRegions(Language::html);
    QVERIFY(fixture.manager.foldableRegions().empty());
    QVERIFY(fixture.manager.isFolded({0, 2, 5, FoldType::braces}));
    QCOMPARE(fixture.manager.foldedContent().at(2).toString(), QStringLiteral("    1\n    2\n"));
    QCOMPARE(fixture.storage.text(), folded);
    fixture.manager.detectFoldableRegions(Language::cpp);
    // The text as it stands: the folded region has no line between its two any more.
    QVERIFY(!fixture.manager.firstRegionStartingAt(2));
    QCOMPARE(fixture.manager.firstRegionStartingAt(1)->endLine, 7);
}

void CodeFoldingManagerTest::detectionWithoutATextViewKeepsTheList()
{
    Fixture fixture(nested);
    const auto regions = fixture.manager.foldableRegions();
    QVERIFY(!regions.empty());
    fixture.manager.setStorage(nullptr);
    fixture.manager.detectFoldableRegions(Language::cpp);
    QCOMPARE(fixture.manager.foldableRegions(), regions);
}

void CodeFoldingManagerTest::foldingCutsTheBodyOut_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<int>("startLine");
    QTest::addColumn<int>("endLine");
    QTest::addColumn<QString>("folded");
    QTest::addColumn<QString>("body");
    QTest::newRow("one line") << text("{\n x\n}") << 1 << 3 << text("{\n … }") << text(" x\n");
    QTest::newRow("several lines") << text("a {\n1\n2\n3\n}\nb") << 1 << 5 << text("a {\n … }\nb") << text("1\n2\n3\n");
    QTest::newRow("in the middle") << text("a\nb {\n\n}\nc") << 2 << 4 << text("a\nb {\n … }\nc") << text("\n");
    QTest::newRow("pairs as line ends") << text("{\r\n x\r\n}\r\n") << 1 << 3 << text("{\r\n … }\r\n")
                                        << text(" x\r\n");
    QTest::newRow("all line ends count") << text("{\rx\u2028y\u2029}") << 1 << 4 << text("{\r … }")
                                         << text("x\u2028y\u2029");
    QTest::newRow("the text ends within the region") << text("{\n x\n y") << 1 << 9 << text("{\n … ") << text(" x\n y");
    QTest::newRow("the text ends behind the region's last body line")
        << text("{\n x\n") << 1 << 3 << text("{\n … ") << text(" x\n");
    QTest::newRow("a region without end")
        << text("{\n x\n") << 1 << std::numeric_limits<int>::max() << text("{\n … ") << text(" x\n");
    QTest::newRow("Korean and emoji") << text("{\n한글 😀\n}") << 1 << 3 << text("{\n … }") << text("한글 😀\n");
}

void CodeFoldingManagerTest::foldingCutsTheBodyOut()
{
    QFETCH(QString, content);
    QFETCH(int, startLine);
    QFETCH(int, endLine);
    QFETCH(QString, folded);
    QFETCH(QString, body);
    Fixture fixture(content);
    const FoldableRegion region{0, startLine, endLine, FoldType::braces};
    fixture.manager.fold(region);
    QCOMPARE(fixture.storage.text(), folded);
    QVERIFY(fixture.manager.isFolded(region));
    QVERIFY(fixture.manager.isTextFolded());
    QCOMPARE(fixture.manager.foldedRegionStartLines(), (std::set<qsizetype>{startLine}));
    QCOMPARE(fixture.manager.foldedContent(), (std::map<qsizetype, TextTree>{{startLine, TextTree(body)}}));
    QVERIFY(!fixture.manager.foldedLines().contains(startLine));
    QVERIFY(fixture.manager.foldedLines().contains(startLine + 1));
    QVERIFY(fixture.manager.foldedLines().contains(endLine - 1));
    QVERIFY(!fixture.manager.foldedLines().contains(endLine));
    QCOMPARE(fixture.manager.foldedLines().count(), qsizetype(endLine) - startLine - 1);

    fixture.manager.unfold(region);
    QCOMPARE(fixture.storage.text(), content);
    QVERIFY(!fixture.manager.isFolded(region));
    QVERIFY(!fixture.manager.isTextFolded());
    QVERIFY(fixture.manager.foldedRegionStartLines().empty());
    QVERIFY(fixture.manager.foldedContent().empty());
    QVERIFY(fixture.manager.foldedLines().isEmpty());
}

void CodeFoldingManagerTest::foldingWithoutABodyDoesNothing_data()
{
    constexpr qsizetype least = std::numeric_limits<qsizetype>::min();
    constexpr qsizetype most = std::numeric_limits<qsizetype>::max();
    QTest::addColumn<QString>("content");
    QTest::addColumn<qsizetype>("startLine");
    QTest::addColumn<qsizetype>("endLine");
    QTest::newRow("no line between") << text("{\n}") << qsizetype(1) << qsizetype(2);
    QTest::newRow("one line") << text("{}\n\n") << qsizetype(1) << qsizetype(1);
    QTest::newRow("line 0") << text("{\nx\n}") << qsizetype(0) << qsizetype(3);
    QTest::newRow("negative lines") << text("{\nx\n}") << qsizetype(-3) << qsizetype(3);
    QTest::newRow("backwards") << text("{\nx\n}") << qsizetype(3) << qsizetype(1);
    QTest::newRow("behind the text") << text("{\nx\n}") << qsizetype(4) << qsizetype(9);
    QTest::newRow("the last line") << text("{\nx\n}") << qsizetype(3) << qsizetype(9);
    QTest::newRow("the empty last line") << text("{\nx\n") << qsizetype(3) << qsizetype(9);
    QTest::newRow("an empty text") << QString() << qsizetype(1) << qsizetype(3);
    QTest::newRow("least and most") << text("{\nx\n}") << least << most;
    QTest::newRow("most and least") << text("{\nx\n}") << most << least;
    QTest::newRow("most and most") << text("{\nx\n}") << most << most;
}

void CodeFoldingManagerTest::foldingWithoutABodyDoesNothing()
{
    QFETCH(QString, content);
    QFETCH(qsizetype, startLine);
    QFETCH(qsizetype, endLine);
    Fixture fixture(content);
    int posts = 0;
    fixture.center.addObserver(this, notifications::codeFoldingChanged, [&](const Notification&) { ++posts; });
    const FoldableRegion region{0, startLine, endLine, FoldType::braces};
    fixture.manager.fold(region);
    fixture.manager.unfold(region);
    QCOMPARE(fixture.storage.text(), content);
    QVERIFY(!fixture.manager.isFolded(region));
    QVERIFY(fixture.manager.foldedLines().isEmpty());
    QVERIFY(fixture.manager.foldedContent().empty());
    QCOMPARE(posts, 0);
}

void CodeFoldingManagerTest::foldingTwiceAndUnfoldingTwiceChangeNothingMore()
{
    Fixture fixture(nested);
    const FoldableRegion region = fixture.region(2);
    fixture.manager.unfold(region);
    QCOMPARE(fixture.storage.text(), nested);
    fixture.manager.fold(region);
    const QString folded = fixture.storage.text();
    fixture.manager.fold(region);
    QCOMPARE(fixture.storage.text(), folded);
    fixture.manager.unfold(region);
    fixture.manager.unfold(region);
    QCOMPARE(fixture.storage.text(), nested);
}

void CodeFoldingManagerTest::regionsOnOneLineShareTheirFold()
{
    const QString content = QStringLiteral("{ {\n1\n}\n2\n}\n");
    Fixture fixture(content);
    const FoldableRegion inner = fixture.manager.foldableRegions().at(0);
    const FoldableRegion outer = fixture.manager.foldableRegions().at(1);
    QCOMPARE(inner.endLine, 3);
    QCOMPARE(outer.endLine, 5);
    fixture.manager.fold(inner);
    QCOMPARE(fixture.storage.text(), text("{ {\n … }\n2\n}\n"));
    QVERIFY(fixture.manager.isFolded(outer));
    fixture.manager.fold(outer);
    QCOMPARE(fixture.storage.text(), text("{ {\n … }\n2\n}\n"));
    // Whichever of the two is given, the one fold is undone; the hidden lines taken out are those of the one given.
    fixture.manager.unfold(outer);
    QCOMPARE(fixture.storage.text(), content);
    QVERIFY(fixture.manager.foldedLines().isEmpty());
    fixture.manager.fold(outer);
    fixture.manager.unfold(inner);
    QCOMPARE(fixture.storage.text(), content);
    QCOMPARE(fixture.manager.foldedLines().count(), 2);
}

void CodeFoldingManagerTest::aPythonBodyKeepsItsLastLine()
{
    Fixture one(QStringLiteral("def f():\n  a\nx\n"), Language::python);
    QVERIFY(one.manager.foldableRegions().empty());
    Fixture two(QStringLiteral("def f():\n  a\n  b\nx\n"), Language::python);
    QCOMPARE(two.manager.foldableRegions().size(), size_t(1));
    two.manager.fold(two.region(1));
    QCOMPARE(two.storage.text(), text("def f():\n …   b\nx\n"));
}

void CodeFoldingManagerTest::eachFoldAndUnfoldIsPosted()
{
    Fixture fixture(nested);
    QStringList posts;
    fixture.center.addObserver(this, QStringLiteral("codeFoldingChanged"), [&](const Notification& notification) {
        QVERIFY(!notification.object.isValid());
        QVERIFY(notification.userInfo.isEmpty());
        posts += notification.name;
    });
    fixture.manager.fold(fixture.region(2));
    QCOMPARE(posts.size(), 1);
    fixture.manager.unfold(fixture.region(2));
    QCOMPARE(posts.size(), 2);
    fixture.manager.unfoldAll();
    QCOMPARE(posts.size(), 2);
    fixture.manager.fold(fixture.region(2));
    fixture.manager.unfoldAll();
    QCOMPARE(posts.size(), 4);
    fixture.manager.toggle(2);
    QCOMPARE(posts.size(), 5);
    fixture.manager.toggle(2);
    QCOMPARE(posts.size(), 6);
    // A line without anything to fold.
    fixture.manager.toggle(3);
    QCOMPARE(posts.size(), 6);
}

void CodeFoldingManagerTest::aGoneTextViewIsSilent()
{
    NotificationCenter center;
    CodeFoldingManager manager(center);
    auto storage = std::make_unique<TextStorage>();
    storage->setText(nested);
    manager.setStorage(storage.get());
    manager.detectFoldableRegions(Language::cpp);
    const FoldableRegion region = *manager.firstRegionStartingAt(2);
    manager.fold(region);
    storage.reset();
    QVERIFY(manager.storage() == nullptr);
    manager.fold(*manager.firstRegionStartingAt(1));
    manager.unfold(region);
    manager.unfoldAll();
    manager.detectFoldableRegions(Language::cpp);
    QVERIFY(manager.isFolded(region));
    QCOMPARE(manager.foldedContent().at(2).toString(), QStringLiteral("    1\n    2\n"));
    QCOMPARE(manager.foldableRegions().size(), size_t(3));
}

void CodeFoldingManagerTest::thePlaceholderIsFoundUpToTenUnitsFurther()
{
    for (const int shift : {1, 9, 10}) {
        Fixture fixture(nested);
        fixture.manager.fold(fixture.region(2));
        fixture.storage.replace({fixture.storage.text().indexOf(CodeFoldingManager::foldPlaceholder), 0},
                                QString(shift, u'x'));
        fixture.manager.unfold(fixture.region(2));
        QCOMPARE(fixture.storage.text(), QString(nested).insert(nested.indexOf(u"    1"), QString(shift, u'x')));
        QVERIFY(!fixture.manager.isTextFolded());
    }
    Fixture fixture(nested);
    fixture.manager.fold(fixture.region(2));
    fixture.storage.replace({fixture.storage.text().indexOf(CodeFoldingManager::foldPlaceholder), 0},
                            QString(11, u'x'));
    const QString before = fixture.storage.text();
    fixture.manager.unfold(fixture.region(2));
    QCOMPARE(fixture.storage.text(), before);
    QVERIFY(fixture.manager.isFolded(fixture.region(2)));
    QCOMPARE(fixture.manager.foldedContent().size(), size_t(1));
    fixture.manager.unfoldAll();
    QCOMPARE(fixture.storage.text(), QString(nested).insert(nested.indexOf(u"    1"), QString(11, u'x')));
}

void CodeFoldingManagerTest::aFoldBelowAFoldCannotBeUnfoldedByItsOldLine()
{
    Fixture fixture(nested);
    const FoldableRegion upper = fixture.region(2);
    const FoldableRegion lower = fixture.region(6);
    fixture.manager.fold(lower);
    fixture.manager.fold(upper);
    const QString both = fixture.storage.text();
    QCOMPARE(both, text("a {\n  b {\n …   }\n  c {\n …   }\n}\nend\n"));
    // Its placeholder has moved up by a line.
    fixture.manager.unfold(lower);
    QCOMPARE(fixture.storage.text(), both);
    QVERIFY(fixture.manager.isFolded(lower));
    QVERIFY(fixture.manager.foldedLines().contains(7));
    // With the upper body back, the lines are right again.
    fixture.manager.unfold(upper);
    fixture.manager.unfold(lower);
    QCOMPARE(fixture.storage.text(), nested);
    QVERIFY(!fixture.manager.isTextFolded());
    fixture.manager.fold(lower);
    fixture.manager.fold(upper);
    fixture.manager.unfold(lower);
    fixture.manager.unfoldAll();
    QCOMPARE(fixture.storage.text(), nested);
    QVERIFY(fixture.manager.foldedLines().isEmpty());
    QVERIFY(fixture.manager.foldedContent().empty());
    QVERIFY(fixture.manager.foldedRegionStartLines().empty());
}

void CodeFoldingManagerTest::aPlaceholderOfTheTextItselfIsTaken()
{
    const QString content = text("{\n1\n2\n3\n}\n{\n4\n}\nx\ny\na … b\n");
    Fixture fixture(content);
    const FoldableRegion upper = fixture.region(1);
    const FoldableRegion lower = fixture.region(6);
    fixture.manager.fold(lower);
    fixture.manager.fold(upper);
    QCOMPARE(fixture.storage.text(), text("{\n … }\n{\n … }\nx\ny\na … b\n"));
    // Behind the line that is now the sixth stands something that looks like a placeholder.
    fixture.manager.unfold(lower);
    QCOMPARE(fixture.storage.text(), text("{\n … }\n{\n … }\nx\ny\na4\nb\n"));
    QVERIFY(!fixture.manager.isFolded(lower));
    fixture.manager.unfold(upper);
    QCOMPARE(fixture.storage.text(), text("{\n1\n2\n3\n}\n{\n … }\nx\ny\na4\nb\n"));
    QVERIFY(fixture.manager.foldedContent().empty());
    QVERIFY(fixture.manager.isTextFolded());
    fixture.manager.unfoldAll();
    QCOMPARE(fixture.storage.text(), content);
    QVERIFY(!fixture.manager.isTextFolded());
}

/// A region of the list, or any two lines.
static FoldableRegion anyRegion(test::RandomText& random, const Fixture& fixture)
{
    const auto regions = fixture.manager.foldableRegions();
    if (!regions.empty() && random.below(3) > 0) {
        return regions[size_t(random.below(qsizetype(regions.size())))];
    }
    const qsizetype start = random.below(fixture.storage.lines().lineCount()) + 1;
    return {0, start, start + 2 + random.below(6), FoldType::braces};
}

static QString anyText(test::RandomText& random)
{
    const QStringList pieces{QStringLiteral("{\n"), QStringLiteral("}\n"), QStringLiteral("\n"), QStringLiteral("x\n"),
                             QStringLiteral("{"),   QStringLiteral("}"),   text(" … "),          text("…"),
                             text(" … \n"),         QStringLiteral(" ")};
    QString result;
    for (qsizetype i = random.below(60); i > 0; --i) {
        result += random.below(6) == 0 ? random.text(3) : pieces[random.below(pieces.size())];
    }
    return result;
}

void CodeFoldingManagerTest::foldsComeBackInReverseOrder()
{
    test::RandomText random;
    for (int round = 0; round < 500; ++round) {
        const QString content = anyText(random);
        Fixture fixture(content);
        std::vector<FoldableRegion> folded;
        for (qsizetype i = random.below(8); i > 0; --i) {
            if (random.below(2) == 0) {
                fixture.manager.detectFoldableRegions(Language::cpp);
            }
            const FoldableRegion region = anyRegion(random, fixture);
            const quint64 revision = fixture.storage.revision();
            fixture.manager.fold(region);
            if (fixture.storage.revision() != revision) {
                folded.push_back(region);
            }
        }
        QCOMPARE(fixture.manager.foldedContent().size(), folded.size());
        for (; !folded.empty(); folded.pop_back()) {
            fixture.manager.unfold(folded.back());
        }
        QCOMPARE(fixture.storage.text(), content);
        QVERIFY(!fixture.manager.isTextFolded());
        QVERIFY(fixture.manager.foldedContent().empty());
        QVERIFY(fixture.manager.foldedRegionStartLines().empty());
    }
}

void CodeFoldingManagerTest::unfoldAllGivesTheTextBackAfterAnyOrder()
{
    // In another order than the reverse one, a fold is looked for by a line that is no longer its own: it stays folded,
    // or its body goes where another placeholder stood. The text comes back whole all the same.
    test::RandomText random;
    int strayed = 0;
    for (int round = 0; round < 2000; ++round) {
        const QString content = anyText(random);
        Fixture fixture(content);
        for (qsizetype i = random.below(20); i > 0; --i) {
            if (random.below(3) == 0) {
                fixture.manager.detectFoldableRegions(Language::cpp);
            }
            const auto& folds = fixture.manager.foldedRegionStartLines();
            if (!folds.empty() && random.below(2) == 0) {
                const qsizetype line = *std::next(folds.begin(), random.below(qsizetype(folds.size())));
                fixture.manager.unfold({0, line, line + 2 + random.below(4), FoldType::braces});
            } else {
                fixture.manager.fold(anyRegion(random, fixture));
            }
        }
        strayed += fixture.manager.foldedContent().empty() && fixture.storage.text() != content;
        QVERIFY(fixture.manager.isTextFolded() || fixture.storage.text() == content);
        fixture.manager.unfoldAll();
        QCOMPARE(fixture.storage.text(), content);
        QVERIFY(!fixture.manager.isTextFolded());
        QVERIFY(fixture.manager.foldedLines().isEmpty());
        QVERIFY(fixture.manager.foldedContent().empty());
        QVERIFY(fixture.manager.foldedRegionStartLines().empty());
    }
    // The hard case did occur.
    QVERIFY(strayed > 0);
}

void CodeFoldingManagerTest::unfoldAllReportsEachBodyByItself()
{
    Fixture fixture(nested);
    const FoldableRegion inner = fixture.region(2);
    const FoldableRegion outer = fixture.region(1);
    fixture.manager.fold(inner);
    fixture.manager.fold({0, 1, outer.endLine - 2, FoldType::braces});
    // A caret in the last line but one, carried along by what the storage tells.
    qsizetype caret = fixture.storage.text().indexOf(u"end");
    connect(&fixture.storage, &TextStorage::edited, this, [&](const TextEdit& edit) { caret = edit.moved(caret); });
    QSignalSpy edits(&fixture.storage, &TextStorage::edited);
    fixture.manager.unfoldAll();
    QCOMPARE(edits.size(), 2);
    QCOMPARE(fixture.storage.text(), nested);
    QCOMPARE(caret, nested.indexOf(u"end"));
    fixture.manager.unfoldAll();
    QCOMPARE(edits.size(), 2);
}

namespace {

/// A text of units and of folds that hold texts in turn.
struct Node
{
    QChar unit;
    std::vector<Node> body;
    qsizetype length() const { return body.empty() ? 1 : CodeFoldingManager::foldPlaceholder.size(); }
};

QString flattened(const std::vector<Node>& nodes)
{
    QString result;
    for (const Node& node : nodes) {
        result += node.body.empty() ? QString(node.unit) : flattened(node.body);
    }
    return result;
}

/// The index of the node that begins at an offset.
size_t nodeAt(const std::vector<Node>& nodes, qsizetype offset)
{
    size_t index = 0;
    for (; offset > 0; ++index) {
        offset -= nodes[index].length();
    }
    return index;
}

} // namespace

void CodeFoldingManagerTest::unfoldAllKeepsEditsMadeMeanwhile()
{
    test::RandomText random;
    for (int round = 0; round < 500; ++round) {
        const QString content = anyText(random);
        Fixture fixture(content);
        std::vector<Node> model;
        for (const QChar unit : content) {
            model.push_back({unit, {}});
        }
        for (qsizetype i = random.below(12); i > 0; --i) {
            if (random.below(2) == 0) {
                // Whole placeholders go or stay.
                const auto first = random.below(qsizetype(model.size()) + 1);
                const auto last = std::min(first + random.below(5), qsizetype(model.size()));
                qsizetype start = 0;
                qsizetype end = 0;
                for (qsizetype k = 0; k < last; ++k) {
                    (k < first ? start : end) += model[size_t(k)].length();
                }
                const QString typed = random.text(2);
                fixture.storage.replace({start, end}, typed);
                model.erase(model.begin() + first, model.begin() + last);
                std::vector<Node> nodes;
                for (const QChar unit : typed) {
                    nodes.push_back({unit, {}});
                }
                model.insert(model.begin() + first, nodes.begin(), nodes.end());
                continue;
            }
            fixture.manager.detectFoldableRegions(Language::cpp);
            const auto connection = connect(&fixture.storage, &TextStorage::edited, this, [&](const TextEdit& edit) {
                const auto first = model.begin() + qsizetype(nodeAt(model, edit.range.location));
                const auto last = model.begin() + qsizetype(nodeAt(model, edit.range.end()));
                Node fold{QChar(), {first, last}};
                *first = std::move(fold);
                model.erase(first + 1, last);
            });
            fixture.manager.fold(anyRegion(random, fixture));
            disconnect(connection);
        }
        fixture.manager.unfoldAll();
        QCOMPARE(fixture.storage.text(), flattened(model));
    }
}

void CodeFoldingManagerTest::unfoldAllKeepsWhatWasTypedIntoAPlaceholder()
{
    const QString content = QStringLiteral("{\n 1\n}\n");
    const struct
    {
        TextRange range;
        const char* typed;
        const char* result;
    } cases[] = {
        {{2, 0}, "x", "{\nx 1\n}\n"}, {{5, 0}, "x", "{\n 1\nx}\n"},    {{3, 0}, "x", "{\n 1\nx… }\n"},
        {{4, 0}, "", "{\n 1\n}\n"},   {{3, 1}, "xy", "{\n 1\nxy }\n"}, {{4, 2}, "x", "{\n 1\nx\n"},
        {{1, 2}, "x", "{x 1\n}\n"},   {{2, 3}, "x", "{\nx}\n"},        {{0, 7}, "x", "x"},
    };
    for (const auto& edit : cases) {
        Fixture fixture(content);
        fixture.manager.fold(fixture.region(1));
        QCOMPARE(fixture.storage.text(), text("{\n … }\n"));
        fixture.storage.replace(edit.range, text(edit.typed));
        fixture.manager.unfoldAll();
        QCOMPARE(fixture.storage.text(), text(edit.result));
    }
}

void CodeFoldingManagerTest::aWholeNewTextIsNotMixedWithOldBodies()
{
    Fixture fixture(nested);
    fixture.manager.fold(fixture.region(2));
    fixture.storage.setText(QStringLiteral("other\n"));
    // The numbers of the old fold stay until they are cleared.
    QVERIFY(fixture.manager.isFolded({0, 2, 5, FoldType::braces}));
    QVERIFY(!fixture.manager.isTextFolded());
    fixture.manager.unfold({0, 2, 5, FoldType::braces});
    fixture.manager.unfoldAll();
    QCOMPARE(fixture.storage.text(), QStringLiteral("other\n"));
    QVERIFY(!fixture.manager.isFolded({0, 2, 5, FoldType::braces}));
}

void CodeFoldingManagerTest::anotherTextViewStartsAfresh()
{
    Fixture fixture(nested);
    fixture.manager.fold(fixture.region(2));
    TextStorage other;
    other.setText(QStringLiteral("other\ntext\n"));
    fixture.manager.setStorage(&other);
    const QString folded = fixture.storage.text();
    fixture.manager.unfoldAll();
    QCOMPARE(other.text(), QStringLiteral("other\ntext\n"));
    QCOMPARE(fixture.storage.text(), folded);
    // Edits of the first one are none of its business any more.
    fixture.storage.replace({0, 3}, u"");
    QVERIFY(!fixture.manager.isTextFolded());
}

const kelm::test::Registered<CodeFoldingManagerTest> registered;

} // namespace code_folding_manager_test

#include "code_folding_manager_test.moc"
