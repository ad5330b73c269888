#include "support/random_text.h"
#include "support/test_program.h"
#include "text/editing/change_batch.h"

#include <QtTest>

namespace change_batch_test {

using namespace kelm;

namespace {

/// Makes the changes one by one, the last one first.
QString applied(QString text, const ChangeBatch& batch)
{
    for (auto change = batch.rbegin(); change != batch.rend(); ++change) {
        text.replace(change->range.location, change->range.length, change->text.toString());
    }
    return text;
}

QString appliedAll(QString text, const std::vector<ChangeBatch>& batches)
{
    for (const ChangeBatch& batch : batches) {
        const Change whole = combined(TextTree(text), batch);
        const QString one = applied(text, batch);
        text.replace(whole.range.location, whole.range.length, whole.text.toString());
        if (text != one) {
            return QStringLiteral("the combined change did something else");
        }
    }
    return text;
}

} // namespace

class ChangeBatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatOneEditDidIsOneBatch();
    void typedLettersAreOneBatch();
    void deletingBackIsABatchForEachKey();
    void randomReplacementsAreMadeAgainAndTakenBack();
};

void ChangeBatchTest::whatOneEditDidIsOneBatch()
{
    // "a b c" became "XX b XX".
    const std::vector<Replacement> made{{0, QStringLiteral("a"), QStringLiteral("XX")},
                                        {5, QStringLiteral("c"), QStringLiteral("XX")}};
    QCOMPARE(batchesAhead(made),
             (std::vector<ChangeBatch>{{{{0, 1}, QStringLiteral("XX")}, {{4, 1}, QStringLiteral("XX")}}}));
    QCOMPARE(batchesBack(made),
             (std::vector<ChangeBatch>{{{{0, 2}, QStringLiteral("a")}, {{5, 2}, QStringLiteral("c")}}}));
    QCOMPARE(combined(TextTree(u"a b c"), batchesAhead(made).front()), (Change{{0, 5}, QStringLiteral("XX b XX")}));
    QVERIFY(batchesAhead({}).empty());
    QVERIFY(batchesBack({}).empty());
}

void ChangeBatchTest::typedLettersAreOneBatch()
{
    const std::vector<Replacement> made{{3, QString(), QStringLiteral("a")}, {4, QString(), QStringLiteral("b")}};
    QCOMPARE(batchesAhead(made).size(), std::size_t(1));
    QCOMPARE(appliedAll(QStringLiteral("012345"), batchesAhead(made)), QStringLiteral("012ab345"));
    QCOMPARE(appliedAll(QStringLiteral("012ab345"), batchesBack(made)), QStringLiteral("012345"));
}

void ChangeBatchTest::deletingBackIsABatchForEachKey()
{
    const std::vector<Replacement> made{{3, QStringLiteral("3"), QString()}, {2, QStringLiteral("2"), QString()}};
    QCOMPARE(batchesAhead(made).size(), std::size_t(2));
    QCOMPARE(appliedAll(QStringLiteral("01234"), batchesAhead(made)), QStringLiteral("014"));
    QCOMPARE(appliedAll(QStringLiteral("014"), batchesBack(made)), QStringLiteral("01234"));
}

void ChangeBatchTest::randomReplacementsAreMadeAgainAndTakenBack()
{
    test::RandomText random;
    for (int round = 0; round < 500; ++round) {
        const QString before = random.text(30);
        QString text = before;
        std::vector<Replacement> made;
        for (int i = 0; i < 8; ++i) {
            const TextRange range = random.range(text.size());
            Replacement replacement{range.location, text.mid(range.location, range.length), random.text(3)};
            text.replace(range.location, range.length, replacement.inserted.toString());
            made.push_back(std::move(replacement));
        }
        QCOMPARE(appliedAll(before, batchesAhead(made)), text);
        QCOMPARE(appliedAll(text, batchesBack(made)), before);
    }
}

const kelm::test::Registered<ChangeBatchTest> registered;

} // namespace change_batch_test

#include "change_batch_test.moc"
