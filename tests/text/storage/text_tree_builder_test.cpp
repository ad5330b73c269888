#include "support/naive_lines.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/storage/text_tree_builder.h"

#include <QtTest>

namespace text_tree_builder_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

QString lines(test::RandomText& random, qsizetype length)
{
    static const QString alphabet = u"\r\n\nab\u2028\U0001F600 "_s;
    QString text(length, Qt::Uninitialized);
    for (QChar& unit : text) {
        unit = alphabet.at(random.below(alphabet.size()));
    }
    return text;
}

void appendByStretches(TextTreeBuilder& builder, QStringView text, test::RandomText& random, qsizetype longest)
{
    while (!text.isEmpty()) {
        const qsizetype length = std::min(random.below(longest + 1), text.size());
        builder.append(text.first(length));
        text = text.sliced(length);
    }
}

} // namespace

class TextTreeBuilderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingGivesTheEmptyText();
    void stretchesOfAnyLengthGiveTheText_data();
    void stretchesOfAnyLengthGiveTheText();
    void buildersOfPartsGiveTheWhole();
    void theTreeIsLow();
    void whatWasTakenIsAsGoodAsAnyOther();
    void aBuilderCanBeUsedAgain();
};

void TextTreeBuilderTest::nothingGivesTheEmptyText()
{
    TextTreeBuilder builder;
    QVERIFY(builder.take().isEmpty());
    builder.append(QStringView());
    builder.append(TextTreeBuilder());
    const TextTree tree = builder.take();
    QVERIFY(tree.isEmpty());
    QCOMPARE(tree.lineCount(), 1);
}

void TextTreeBuilderTest::stretchesOfAnyLengthGiveTheText_data()
{
    QTest::addColumn<qsizetype>("length");
    QTest::addColumn<qsizetype>("longest");
    for (const qsizetype length :
         {qsizetype(1), TextTree::freshPiece - 1, TextTree::freshPiece, TextTree::freshPiece + 1, qsizetype(100'000)}) {
        for (const qsizetype longest : {qsizetype(1), qsizetype(100), TextTree::freshPiece, qsizetype(50'000)}) {
            QTest::addRow("%lld units by up to %lld", qlonglong(length), qlonglong(longest)) << length << longest;
        }
    }
}

void TextTreeBuilderTest::stretchesOfAnyLengthGiveTheText()
{
    QFETCH(qsizetype, length);
    QFETCH(qsizetype, longest);
    test::RandomText random;
    const QString text = lines(random, length);
    TextTreeBuilder builder;
    appendByStretches(builder, text, random, longest);
    QCOMPARE(builder.length(), length);
    const TextTree tree = builder.take();
    QVERIFY(tree == QStringView(text));
    const test::NaiveLines naive(text);
    QCOMPARE(tree.lineCount(), naive.lineCount());
    QCOMPARE(tree.lineFeeds(), naive.lineFeeds());
    for (int i = 0; i < 100; ++i) {
        const qsizetype offset = random.below(length + 1);
        QCOMPARE(tree.lineAt(offset), naive.lineAt(offset));
    }
}

void TextTreeBuilderTest::buildersOfPartsGiveTheWhole()
{
    test::RandomText random;
    for (int round = 0; round < 50; ++round) {
        const QString text = lines(random, random.below(30'000));
        TextTreeBuilder whole;
        for (QStringView left = text; !left.isEmpty();) {
            const qsizetype length = std::min(random.below(9000) + 1, left.size());
            TextTreeBuilder part;
            appendByStretches(part, left.first(length), random, 5000);
            whole.append(std::move(part));
            left = left.sliced(length);
        }
        QCOMPARE(whole.length(), text.size());
        const TextTree tree = whole.take();
        QVERIFY(tree == QStringView(text));
        QCOMPARE(tree.lineCount(), test::NaiveLines(text).lineCount());
    }
}

void TextTreeBuilderTest::theTreeIsLow()
{
    constexpr qsizetype pieces = 1000;
    const QString text(pieces * TextTree::freshPiece, u'x');
    TextTreeBuilder builder;
    builder.append(text);
    const TextTree tree = builder.take();
    QCOMPARE(tree.pieceCount(), pieces);
    // Ten steps reach 1,024 pieces.
    QCOMPARE(tree.height(), 11);
}

void TextTreeBuilderTest::whatWasTakenIsAsGoodAsAnyOther()
{
    test::RandomText random;
    QString text = lines(random, 50'000);
    TextTreeBuilder builder;
    appendByStretches(builder, text, random, 20'000);
    TextTree tree = builder.take();
    for (int edit = 0; edit < 500; ++edit) {
        const qsizetype at = random.below(text.size() + 1);
        const qsizetype removed = std::min(random.below(50), text.size() - at);
        const QString put = lines(random, random.below(50));
        tree.replace({at, removed}, put);
        text.replace(at, removed, put);
    }
    QVERIFY(tree == QStringView(text));
    QCOMPARE(tree.lineCount(), test::NaiveLines(text).lineCount());
}

void TextTreeBuilderTest::aBuilderCanBeUsedAgain()
{
    TextTreeBuilder builder;
    builder.append(u"one");
    const TextTree first = builder.take();
    builder.append(u"two");
    QCOMPARE(builder.length(), 3);
    QCOMPARE(builder.take().toString(), u"two"_s);
    QCOMPARE(first.toString(), u"one"_s);
}

const kelm::test::Registered<TextTreeBuilderTest> registered;

} // namespace text_tree_builder_test

#include "text_tree_builder_test.moc"
