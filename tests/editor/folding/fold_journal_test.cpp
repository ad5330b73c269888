#include "editor/folding/fold_journal.h"
#include "support/random_text.h"
#include "support/test_program.h"

#include <QtTest>

#include <iterator>

namespace fold_journal_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString placeholder = u"<~>"_s;

/// A unit of the text, or a fold with what it holds in turn.
struct Node
{
    QChar unit;
    qsizetype startLine = 0;
    std::vector<Node> body;
};

QString shown(const std::vector<Node>& nodes)
{
    QString result;
    for (const Node& node : nodes) {
        result += node.body.empty() ? QString(node.unit) : placeholder;
    }
    return result;
}

QString whole(const std::vector<Node>& nodes)
{
    QString result;
    for (const Node& node : nodes) {
        result += node.body.empty() ? QString(node.unit) : whole(node.body);
    }
    return result;
}

qsizetype shownLength(const Node& node)
{
    return node.body.empty() ? 1 : placeholder.size();
}

qsizetype wholeLength(const Node& node)
{
    return node.body.empty() ? 1 : whole(node.body).size();
}

/// Carries a range over the nodes that it meets, which have one length in its text and another one in the other.
template <typename From, typename To>
TextRange carried(const std::vector<Node>& nodes, TextRange range, From from, To to)
{
    qsizetype here = 0;
    qsizetype there = 0;
    qsizetype start = -1;
    qsizetype end = 0;
    for (const Node& node : nodes) {
        const qsizetype behind = here + from(node);
        const bool isMet = range.isEmpty() ? here < range.location && range.location < behind
                                           : here < range.end() && range.location < behind;
        if (range.isEmpty() && range.location == here) {
            return {there, 0};
        }
        there += to(node);
        if (isMet) {
            start = start < 0 ? there - to(node) : start;
            end = there;
        }
        here = behind;
    }
    if (range.isEmpty()) {
        return {start < 0 ? there : end, 0};
    }
    return TextRange::between(start, end);
}

/// A text that is folded, edited and unfolded, with its journal and with a model of what it comes from.
struct Folded
{
    std::vector<Node> nodes;
    TextTree text;
    FoldJournal journal;
    qsizetype lastLine = 0;

    explicit Folded(const QString& content) : text(content)
    {
        for (const QChar unit : content) {
            nodes.push_back({unit, 0, {}});
        }
    }
    TextRange rangeOf(qsizetype first, qsizetype last) const
    {
        const auto begin = nodes.begin();
        return TextRange::between(shown({begin, begin + first}).size(), shown({begin, begin + last}).size());
    }
    void fold(qsizetype first, qsizetype last)
    {
        const TextRange range = rangeOf(first, last);
        journal.folded(++lastLine, {range.location, placeholder.size()}, text.part(range));
        text.replace(range, placeholder);
        Node fold{QChar(), lastLine, {nodes.begin() + first, nodes.begin() + last}};
        nodes.erase(nodes.begin() + first, nodes.begin() + last);
        nodes.insert(nodes.begin() + first, std::move(fold));
    }
    void edit(qsizetype first, qsizetype last, const QString& typed)
    {
        const TextRange range = rangeOf(first, last);
        TextEdit edit;
        edit.range = range;
        edit.newLength = typed.size();
        journal.textEdited(edit);
        text.replace(range, typed);
        nodes.erase(nodes.begin() + first, nodes.begin() + last);
        std::vector<Node> added;
        for (const QChar unit : typed) {
            added.push_back({unit, 0, {}});
        }
        nodes.insert(nodes.begin() + first, added.begin(), added.end());
    }
    void unfold(qsizetype index, bool isKnownByItsPlace)
    {
        const Node fold = nodes[size_t(index)];
        const TextRange range = rangeOf(index, index + 1);
        const TextTree body(shown(fold.body));
        if (isKnownByItsPlace) {
            journal.takenBack(fold.startLine);
        } else {
            journal.unfolded(fold.startLine, range, TextTree(placeholder), body.length());
        }
        text.replace(range, body);
        nodes.erase(nodes.begin() + index);
        nodes.insert(nodes.begin() + index, fold.body.begin(), fold.body.end());
    }
    /// What the journal says of the folds and what the model says, as texts.
    QStringList openFolds()
    {
        QStringList found;
        for (const FoldJournal::OpenFold& fold : journal.openFolds()) {
            found += line(fold.startLine, fold.placeholder, fold.body.toString());
        }
        found.sort();
        return found;
    }
    QStringList expectedFolds() const
    {
        QStringList expected;
        for (qsizetype index = 0; index < qsizetype(nodes.size()); ++index) {
            if (const Node& node = nodes[size_t(index)]; !node.body.empty()) {
                expected += line(node.startLine, rangeOf(index, index + 1), shown(node.body));
            }
        }
        expected.sort();
        return expected;
    }
    static QString line(qsizetype startLine, TextRange range, const QString& body)
    {
        return QStringLiteral("%1 at %2, %3: %4").arg(startLine).arg(range.location).arg(range.length).arg(body);
    }
};

} // namespace

class FoldJournalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesAndTextsAreThoseOfTheModel();
    void rangesAreCarriedWhole_data();
    void rangesAreCarriedWhole();
    void aFoldRightBehindAnotherIsFound();
    void aBodyInAWrongPlaceIsTakenBackThere();
    void whatIsNotKnownIsAnEdit();
};

void FoldJournalTest::placesAndTextsAreThoseOfTheModel()
{
    test::RandomText random;
    for (int round = 0; round < 300; ++round) {
        Folded folded(u"abcdefghijklmnopqrst"_s.left(2 + random.below(19)));
        for (qsizetype steps = 1 + random.below(14); steps > 0; --steps) {
            const auto count = qsizetype(folded.nodes.size());
            const qsizetype first = random.below(count);
            const qsizetype last = std::min(count, first + 1 + random.below(5));
            const qsizetype what = random.below(4);
            if (what == 0 || count == 0) {
                folded.edit(first, random.below(2) == 0 ? first : last, u"XYZ"_s.left(random.below(4)));
            } else if (what == 1 && !folded.nodes[size_t(first)].body.empty()) {
                folded.unfold(first, random.below(2) == 0);
            } else {
                folded.fold(first, last);
            }
            const QString content = whole(folded.nodes);
            QCOMPARE(folded.text.toString(), shown(folded.nodes));
            QCOMPARE(folded.journal.takenBackIn(folded.text).toString(), content);
            QCOMPARE(folded.openFolds(), folded.expectedFolds());
            QCOMPARE(folded.journal.isEmpty(), folded.openFolds().isEmpty());
            const TextRange seen = random.range(folded.text.length());
            QCOMPARE(folded.journal.wholeRange(seen), carried(folded.nodes, seen, shownLength, wholeLength));
            const TextRange wanted = random.range(content.size());
            QCOMPARE(folded.journal.shownRange(wanted), carried(folded.nodes, wanted, wholeLength, shownLength));
        }
        const QString content = whole(folded.nodes);
        while (const auto last = folded.journal.takeLast()) {
            folded.text.replace({last->location, last->length}, last->original);
        }
        QCOMPARE(folded.text.toString(), content);
        QVERIFY(folded.journal.isEmpty());
        QVERIFY(folded.journal.openFolds().empty());
    }
}

void FoldJournalTest::rangesAreCarriedWhole_data()
{
    QTest::addColumn<TextRange>("shownRange");
    QTest::addColumn<TextRange>("wholeRange");
    // "ab12345cd" is seen as "ab<~>cd".
    QTest::newRow("before it") << TextRange{0, 2} << TextRange{0, 2};
    QTest::newRow("behind it") << TextRange{5, 2} << TextRange{7, 2};
    QTest::newRow("all of it") << TextRange{2, 3} << TextRange{2, 5};
    QTest::newRow("on both sides") << TextRange{1, 5} << TextRange{1, 7};
    QTest::newRow("a place before it") << TextRange{2, 0} << TextRange{2, 0};
    QTest::newRow("a place behind it") << TextRange{5, 0} << TextRange{7, 0};
    QTest::newRow("the start") << TextRange{0, 0} << TextRange{0, 0};
    QTest::newRow("the end") << TextRange{7, 0} << TextRange{9, 0};
}

void FoldJournalTest::rangesAreCarriedWhole()
{
    QFETCH(TextRange, shownRange);
    QFETCH(TextRange, wholeRange);
    Folded folded(u"ab12345cd"_s);
    folded.fold(2, 7);
    QCOMPARE(folded.journal.wholeRange(shownRange), wholeRange);
    QCOMPARE(folded.journal.shownRange(wholeRange), shownRange);
    // A part of what is hidden, or of what stands for it, is all of it; a place within goes to the end.
    QCOMPARE(folded.journal.wholeRange({3, 1}), (TextRange{2, 5}));
    QCOMPARE(folded.journal.wholeRange({0, 3}), (TextRange{0, 7}));
    QCOMPARE(folded.journal.wholeRange({4, 2}), (TextRange{2, 6}));
    QCOMPARE(folded.journal.wholeRange({3, 0}), (TextRange{7, 0}));
    QCOMPARE(folded.journal.shownRange({3, 1}), (TextRange{2, 3}));
    QCOMPARE(folded.journal.shownRange({0, 3}), (TextRange{0, 5}));
    QCOMPARE(folded.journal.shownRange({6, 2}), (TextRange{2, 4}));
    QCOMPARE(folded.journal.shownRange({4, 0}), (TextRange{5, 0}));
}

void FoldJournalTest::aFoldRightBehindAnotherIsFound()
{
    Folded folded(u"a12345b"_s);
    folded.fold(1, 3);
    folded.fold(2, 5);
    QCOMPARE(folded.text.toString(), u"a<~><~>b"_s);
    QCOMPARE(folded.openFolds(), (QStringList{u"1 at 1, 3: 12"_s, u"2 at 4, 3: 345"_s}));
    folded.unfold(1, false);
    QCOMPARE(folded.openFolds(), (QStringList{u"2 at 3, 3: 345"_s}));
    folded.unfold(3, false);
    QVERIFY(folded.journal.isEmpty());
}

void FoldJournalTest::aBodyInAWrongPlaceIsTakenBackThere()
{
    Folded folded(u"ab12cd<~>e"_s);
    folded.fold(2, 4);
    QCOMPARE(folded.text.toString(), u"ab<~>cd<~>e"_s);
    folded.journal.unfolded(1, {7, 3}, TextTree(placeholder), 2);
    folded.text.replace({7, 3}, u"12");
    QVERIFY(folded.openFolds().isEmpty());
    QVERIFY(!folded.journal.isEmpty());
    QCOMPARE(folded.journal.takenBackIn(folded.text).toString(), u"ab12cd<~>e"_s);
    folded.journal.clear();
    QVERIFY(folded.journal.isEmpty());
}

void FoldJournalTest::whatIsNotKnownIsAnEdit()
{
    Folded folded(u"<~>ab12cd"_s);
    folded.fold(5, 7);
    folded.journal.unfolded(9, {0, 3}, TextTree(placeholder), 7);
    folded.text.replace({0, 3}, u"another");
    QCOMPARE(folded.openFolds(), (QStringList{u"1 at 9, 3: 12"_s}));
    QCOMPARE(folded.journal.takenBackIn(folded.text).toString(), u"anotherab12cd"_s);
}

const kelm::test::Registered<FoldJournalTest> registered;

} // namespace fold_journal_test

#include "fold_journal_test.moc"
