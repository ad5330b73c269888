#include "support/test_program.h"
#include "text/editing/undo_history.h"

#include <QtTest>

namespace undo_history_test {

using namespace kelm;

namespace {

SelectionSet caretAt(qsizetype offset)
{
    return SelectionSet(Selection::caret({offset, false}));
}

UndoStep step(EditKind kind, qsizetype location, const QString& removed, const QString& inserted)
{
    UndoStep result;
    result.kind = kind;
    result.replacements = {{location, removed, inserted}};
    result.before = caretAt(location + removed.size());
    result.after = caretAt(location + inserted.size());
    return result;
}

UndoStep typed(qsizetype location, const QString& text)
{
    return step(EditKind::typing, location, QString(), text);
}

/// How many steps can be taken back.
int stepsOf(UndoHistory history)
{
    int count = 0;
    while (history.takeUndo()) {
        ++count;
    }
    return count;
}

} // namespace

class UndoHistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyHistoryHasNothing();
    void adjoiningTypingIsOneStep();
    void whatEndsARun_data();
    void whatEndsARun();
    void aTypedLineBreakEndsItsStep_data();
    void aTypedLineBreakEndsItsStep();
    void otherEditsNeverMerge();
    void anUndoneStepIsNotContinued();
    void aStepTakenBackCanBeMadeAgain();
    void aNewStepForgetsWhatWasUndone();
    void foreignEditsMoveSteps_data();
    void foreignEditsMoveSteps();
    void aForeignEditInTheSameTextForgetsTheStepAndAllBefore();
    void aForeignEditTakenBackLeavesNoTrace();
    void cancelledForeignEditsAreFoundAcrossOthers();
    void manyForeignEditsStayQuick();
};

void UndoHistoryTest::anEmptyHistoryHasNothing()
{
    UndoHistory history;
    QVERIFY(!history.hasUndo());
    QVERIFY(!history.hasRedo());
    QVERIFY(!history.takeUndo());
    QVERIFY(!history.takeRedo());
}

void UndoHistoryTest::adjoiningTypingIsOneStep()
{
    UndoHistory history;
    history.push(typed(0, QStringLiteral("a")));
    history.push(typed(1, QStringLiteral("b")));
    history.push(typed(2, QStringLiteral("c")));
    const std::optional<UndoStep> undone = history.takeUndo();
    QVERIFY(undone);
    QCOMPARE(undone->replacements.size(), std::size_t(3));
    QCOMPARE(undone->before.primary().head.offset, qsizetype(0));
    QCOMPARE(undone->after.primary().head.offset, qsizetype(3));
    QVERIFY(!history.hasUndo());
}

void UndoHistoryTest::whatEndsARun_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<qsizetype>("location");
    QTest::addColumn<bool>("endRun");
    QTest::addColumn<int>("steps");
    QTest::newRow("nothing") << int(EditKind::typing) << qsizetype(1) << false << 1;
    QTest::newRow("a caret elsewhere") << int(EditKind::typing) << qsizetype(0) << false << 2;
    QTest::newRow("another kind") << int(EditKind::composing) << qsizetype(1) << false << 2;
    QTest::newRow("a paste") << int(EditKind::other) << qsizetype(1) << false << 2;
    QTest::newRow("the end of the run") << int(EditKind::typing) << qsizetype(1) << true << 2;
}

void UndoHistoryTest::whatEndsARun()
{
    QFETCH(int, kind);
    QFETCH(qsizetype, location);
    QFETCH(bool, endRun);
    UndoHistory history;
    history.push(typed(0, QStringLiteral("a")));
    if (endRun) {
        history.endRun();
    }
    history.push(step(EditKind(kind), location, QString(), QStringLiteral("b")));
    QTEST(stepsOf(history), "steps");
}

void UndoHistoryTest::aTypedLineBreakEndsItsStep_data()
{
    QTest::addColumn<QString>("lineBreak");
    QTest::newRow("alone") << QStringLiteral("\n");
    QTest::newRow("with the next line's indent") << QStringLiteral("\n    ");
}

void UndoHistoryTest::aTypedLineBreakEndsItsStep()
{
    QFETCH(QString, lineBreak);
    UndoHistory history;
    history.push(typed(0, QStringLiteral("a")));
    history.push(typed(1, lineBreak));
    history.push(typed(1 + lineBreak.size(), QStringLiteral("b")));
    QCOMPARE(stepsOf(history), 2);
    QCOMPARE(history.takeUndo()->replacements.front().inserted.toString(), QStringLiteral("b"));
    QCOMPARE(history.takeUndo()->replacements.size(), std::size_t(2));
}

void UndoHistoryTest::otherEditsNeverMerge()
{
    UndoHistory history;
    history.push(step(EditKind::other, 0, QString(), QStringLiteral("a")));
    history.push(step(EditKind::other, 1, QString(), QStringLiteral("b")));
    QCOMPARE(stepsOf(history), 2);
}

void UndoHistoryTest::anUndoneStepIsNotContinued()
{
    UndoHistory history;
    history.push(typed(0, QStringLiteral("a")));
    history.endRun();
    history.push(typed(1, QStringLiteral("b")));
    history.takeUndo();
    history.push(typed(1, QStringLiteral("c")));
    QCOMPARE(stepsOf(history), 2);

    history.takeUndo();
    history.takeRedo();
    history.push(typed(2, QStringLiteral("d")));
    QCOMPARE(stepsOf(history), 3);
}

void UndoHistoryTest::aStepTakenBackCanBeMadeAgain()
{
    UndoHistory history;
    history.push(typed(0, QStringLiteral("a")));
    const auto undone = history.takeUndo();
    QVERIFY(!history.hasUndo());
    QVERIFY(history.hasRedo());
    const auto redone = history.takeRedo();
    QVERIFY(redone);
    QCOMPARE(redone->replacements, undone->replacements);
    QVERIFY(history.hasUndo());
    QVERIFY(!history.hasRedo());
}

void UndoHistoryTest::aNewStepForgetsWhatWasUndone()
{
    UndoHistory history;
    history.push(typed(0, QStringLiteral("a")));
    history.takeUndo();
    history.push(typed(0, QStringLiteral("b")));
    QVERIFY(!history.hasRedo());
}

void UndoHistoryTest::foreignEditsMoveSteps_data()
{
    QTest::addColumn<bool>("undone");
    QTest::addColumn<qsizetype>("location");
    QTest::addColumn<QString>("removed");
    QTest::addColumn<QString>("inserted");
    QTest::addColumn<qsizetype>("now");
    // The step put "abc" in at 10.
    QTest::newRow("text before an undo") << false << qsizetype(2) << QString() << QStringLiteral("xx") << qsizetype(12);
    QTest::newRow("text gone before an undo")
        << false << qsizetype(2) << QStringLiteral("xx") << QString() << qsizetype(8);
    QTest::newRow("right before an undo")
        << false << qsizetype(10) << QString() << QStringLiteral("x") << qsizetype(11);
    QTest::newRow("behind an undo") << false << qsizetype(13) << QString() << QStringLiteral("x") << qsizetype(10);
    QTest::newRow("text before a redo") << true << qsizetype(2) << QString() << QStringLiteral("xx") << qsizetype(12);
    QTest::newRow("behind a redo") << true << qsizetype(11) << QString() << QStringLiteral("x") << qsizetype(10);
}

void UndoHistoryTest::foreignEditsMoveSteps()
{
    QFETCH(bool, undone);
    QFETCH(qsizetype, location);
    QFETCH(QString, removed);
    QFETCH(QString, inserted);
    UndoHistory history;
    history.push(typed(10, QStringLiteral("abc")));
    if (undone) {
        history.takeUndo();
    }
    history.foreignEdit({location, removed, inserted});
    const auto moved = undone ? history.takeRedo() : history.takeUndo();
    QVERIFY(moved);
    QTEST(moved->replacements.front().location, "now");
}

void UndoHistoryTest::aForeignEditInTheSameTextForgetsTheStepAndAllBefore()
{
    UndoHistory history;
    history.push(step(EditKind::other, 0, QString(), QStringLiteral("first")));
    history.push(step(EditKind::other, 10, QString(), QStringLiteral("second")));
    history.push(step(EditKind::other, 30, QString(), QStringLiteral("third")));
    history.foreignEdit({12, QStringLiteral("c"), QStringLiteral("CC")});
    const auto third = history.takeUndo();
    QVERIFY(third);
    QCOMPARE(third->replacements.front().inserted.toString(), QStringLiteral("third"));
    QCOMPARE(third->replacements.front().location, qsizetype(31));
    QVERIFY(!history.hasUndo());
}

void UndoHistoryTest::aForeignEditTakenBackLeavesNoTrace()
{
    UndoHistory history;
    history.push(typed(10, QStringLiteral("abc")));
    history.foreignEdit({9, QStringLiteral("xabcx"), QStringLiteral("…")});
    history.foreignEdit({9, QStringLiteral("…"), QStringLiteral("xabcx")});
    const auto step = history.takeUndo();
    QVERIFY(step);
    QCOMPARE(step->replacements.front().location, qsizetype(10));
}

void UndoHistoryTest::cancelledForeignEditsAreFoundAcrossOthers()
{
    // Two folds are made and opened again in the order in which they were made.
    UndoHistory history;
    history.push(typed(10, QStringLiteral("abc")));
    history.foreignEdit({0, QStringLiteral("12345"), QStringLiteral("…")});
    history.foreignEdit({5, QStringLiteral("xabcx"), QStringLiteral("…")});
    history.foreignEdit({0, QStringLiteral("…"), QStringLiteral("12345")});
    history.foreignEdit({9, QStringLiteral("…"), QStringLiteral("xabcx")});
    const auto step = history.takeUndo();
    QVERIFY(step);
    QCOMPARE(step->replacements.front().location, qsizetype(10));
}

void UndoHistoryTest::manyForeignEditsStayQuick()
{
    // Output that is appended by the thousand while there is a history: each takes the same small time, whatever went
    // before. Compared pair by pair this would take minutes.
    UndoHistory history;
    history.push(typed(0, QStringLiteral("abc")));
    for (qsizetype i = 0; i < 100'000; ++i) {
        history.foreignEdit({3 + i, QString(), QStringLiteral("x")});
    }
    const auto step = history.takeUndo();
    QVERIFY(step);
    QCOMPARE(step->replacements.front().location, qsizetype(0));
}

const kelm::test::Registered<UndoHistoryTest> registered;

} // namespace undo_history_test

#include "undo_history_test.moc"
