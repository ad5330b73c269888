#include "support/marked_text.h"
#include "support/naive_lines.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "text/editing/text_editor.h"

#include <QSignalSpy>
#include <QtTest>

namespace text_editor_test {

using namespace kelm;

namespace {

QString describe(const TextEditor& editor)
{
    return test::describeMarked(editor.storage().text(), editor.selections());
}

struct Fixture
{
    TextStorage storage;
    TextLayout layout{storage};
    TextEditor editor{storage, layout};

    explicit Fixture(const QString& marked = {})
    {
        const test::MarkedText parsed = test::parseMarked(marked);
        storage.setText(parsed.text);
        if (!parsed.selections.empty()) {
            editor.setSelections(SelectionSet(parsed.selections));
        }
    }
};

} // namespace

class TextEditorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void caretsMove_data();
    void caretsMove();
    void deletingTakesWholeCharacters_data();
    void deletingTakesWholeCharacters();
    void typingActsOnAllSelections_data();
    void typingActsOnAllSelections();
    void pastingPutsOneTextAtEachCaret();
    void aRunOfTypingIsOneStep();
    void movingTheCaretEndsARun();
    void aPasteIsAStepOfItsOwn();
    void undoBringsCaretsBack();
    void redoIsForgottenByANewEdit();
    void aReadOnlyTextStays();
    void foreignEditsAreNotUndone();
    void aForeignEditTakenBackLeavesTheHistory();
    void foreignEditsOnUndoneTextForgetOnlyWhatTheyTouch();
    void settingTheTextForgetsTheHistory();
    void theCallBeforeAnEditMayChangeTheText();
    void textIsPutInThePlaceOfARange_data();
    void textIsPutInThePlaceOfARange();
    void rowMovementKeepsItsColumn();
    void selectedTextIsMoved_data();
    void selectedTextIsMoved();
    void receiversMayEditInTurn();
    void caretsFollowEachOfSeveralForeignEdits();
    void caretsAreAddedInRowsThatThereAre_data();
    void caretsAreAddedInRowsThatThereAre();
    void thousandsOfCaretsTypeInALongText();
    void randomEditsAgreeWithAPlainString();
    void randomForeignEditsNeverSpoilUndo();
};

void TextEditorTest::caretsMove_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<Movement>("movement");
    QTest::addColumn<bool>("extend");
    QTest::addColumn<QString>("after");
    const auto row = [](const char* name, const char* before, Movement movement, bool extend, const char* after) {
        QTest::newRow(name) << QString::fromUtf8(before) << movement << extend << QString::fromUtf8(after);
    };
    row("right over a letter", "|ab", Movement::characterRight, false, "a|b");
    row("right over an emoji", "|😀b", Movement::characterRight, false, "😀|b");
    row("right over a family", "|👩‍👩‍👧b", Movement::characterRight, false, "👩‍👩‍👧|b");
    row("right over a CRLF", "a|\r\nb", Movement::characterRight, false, "a\r\n|b");
    row("left over a combining mark", "e\u0301|", Movement::characterLeft, false, "|e\u0301");
    row("left at the top", "|a", Movement::characterLeft, false, "|a");
    row("right at the end", "a|", Movement::characterRight, false, "a|");
    row("left out of a selection", "a[bc]d", Movement::characterLeft, false, "a|bcd");
    row("right out of a selection", "a[bc]d", Movement::characterRight, false, "abc|d");
    row("extended to the right", "a|bc", Movement::characterRight, true, "a[b]c");
    row("word right", "foo| bar baz", Movement::wordRight, false, "foo bar| baz");
    row("word left", "foo bar|", Movement::wordLeft, false, "foo |bar");
    row("line end stays before CRLF", "|ab\r\nc", Movement::lineEnd, false, "ab|\r\nc");
    row("line end of the last line", "a\n|bc", Movement::lineEnd, false, "a\nbc|");
    row("line start", "a\nbc|", Movement::lineStart, false, "a\n|bc");
    row("text end", "|a\nb", Movement::textEnd, false, "a\nb|");
    row("text start extended", "a\nb|", Movement::textStart, true, "[a\nb]");
    row("row down", "a|b\ncd", Movement::rowDown, false, "ab\nc|d");
    row("row down from the last row goes to the end", "a|b", Movement::rowDown, false, "ab|");
    row("row up from the first row goes to the top", "a|b", Movement::rowUp, false, "|ab");
    row("several carets meet and become one", "|a|b", Movement::textEnd, false, "ab|");
    row("several carets each move", "|ab|c", Movement::characterRight, false, "a|bc|");
}

void TextEditorTest::caretsMove()
{
    QFETCH(QString, before);
    QFETCH(Movement, movement);
    QFETCH(bool, extend);
    Fixture fixture(before);
    fixture.editor.move(movement, extend ? Extend::yes : Extend::no);
    QTEST(describe(fixture.editor), "after");
}

void TextEditorTest::deletingTakesWholeCharacters_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<Movement>("movement");
    QTest::addColumn<QString>("after");
    const auto row = [](const char* name, const char* before, Movement movement, const char* after) {
        QTest::newRow(name) << QString::fromUtf8(before) << movement << QString::fromUtf8(after);
    };
    row("back over a letter", "ab|", Movement::characterLeft, "a|");
    row("back over an emoji sequence", "x👩‍👩‍👧|", Movement::characterLeft, "x|");
    row("back over a CRLF", "a\r\n|b", Movement::characterLeft, "a|b");
    row("ahead over a combining mark", "|e\u0301x", Movement::characterRight, "|x");
    row("ahead over a CRLF", "a|\r\nb", Movement::characterRight, "a|b");
    row("a selection goes, whatever the direction", "a[bc]d", Movement::characterRight, "a|d");
    row("word back", "foo bar|", Movement::wordLeft, "foo |");
    row("at the top nothing goes", "|a", Movement::characterLeft, "|a");
    row("several carets", "ab|cd|", Movement::characterLeft, "a|c|");
    row("two carets reaching for the same word", "fo|o|", Movement::wordLeft, "|");
}

void TextEditorTest::deletingTakesWholeCharacters()
{
    QFETCH(QString, before);
    QFETCH(Movement, movement);
    Fixture fixture(before);
    fixture.editor.erase(movement);
    QTEST(describe(fixture.editor), "after");
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), test::parseMarked(before).text);
}

void TextEditorTest::typingActsOnAllSelections_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("after");
    QTest::newRow("one caret") << QStringLiteral("a|b") << QStringLiteral("x") << QStringLiteral("ax|b");
    QTest::newRow("a selection is replaced") << QStringLiteral("[ab]c") << QStringLiteral("x") << QStringLiteral("x|c");
    QTest::newRow("three at once") << QStringLiteral("|a[b]c|") << QStringLiteral("xy")
                                   << QStringLiteral("xy|axy|cxy|");
}

void TextEditorTest::typingActsOnAllSelections()
{
    QFETCH(QString, before);
    QFETCH(QString, typed);
    Fixture fixture(before);
    QSignalSpy edited(&fixture.storage, &TextStorage::edited);
    fixture.editor.insertText(typed, EditKind::typing);
    QTEST(describe(fixture.editor), "after");
    QCOMPARE(edited.size(), 1);
    fixture.editor.undo();
    QCOMPARE(describe(fixture.editor), before);
}

void TextEditorTest::pastingPutsOneTextAtEachCaret()
{
    Fixture fixture(QStringLiteral("|a|b"));
    fixture.editor.paste({QStringLiteral("1"), QStringLiteral("2")});
    QCOMPARE(describe(fixture.editor), QStringLiteral("1|a2|b"));
    fixture.editor.select({0, 1});
    fixture.editor.paste({QStringLiteral("x"), QStringLiteral("y")});
    QCOMPARE(fixture.storage.text(), QStringLiteral("x\nya2b"));
}

void TextEditorTest::aRunOfTypingIsOneStep()
{
    Fixture fixture;
    for (const QChar letter : QStringLiteral("one\ntwo")) {
        fixture.editor.insertText(QString(letter), EditKind::typing);
    }
    fixture.editor.undo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("one\n|"));
    fixture.editor.undo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("|"));
    QVERIFY(!fixture.editor.canUndo());
    fixture.editor.redo();
    fixture.editor.redo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("one\ntwo|"));
    QVERIFY(!fixture.editor.canRedo());
}

void TextEditorTest::movingTheCaretEndsARun()
{
    Fixture fixture;
    fixture.editor.insertText(QStringLiteral("a"), EditKind::typing);
    fixture.editor.move(Movement::characterLeft, Extend::no);
    fixture.editor.move(Movement::characterRight, Extend::no);
    fixture.editor.insertText(QStringLiteral("b"), EditKind::typing);
    fixture.editor.endUndoRun();
    fixture.editor.insertText(QStringLiteral("c"), EditKind::typing);
    fixture.editor.erase(Movement::characterLeft);
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("abc"));
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("ab"));
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("a"));
}

void TextEditorTest::aPasteIsAStepOfItsOwn()
{
    Fixture fixture;
    fixture.editor.insertText(QStringLiteral("a"), EditKind::typing);
    fixture.editor.paste({QStringLiteral("b")});
    fixture.editor.paste({QStringLiteral("c")});
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("ab"));
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("a"));
}

void TextEditorTest::undoBringsCaretsBack()
{
    Fixture fixture(QStringLiteral("[one] two [three]"));
    fixture.editor.insertText(QStringLiteral("x"), EditKind::typing);
    fixture.editor.select({0, 0});
    fixture.editor.undo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("[one] two [three]"));
    fixture.editor.redo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("x| two x|"));
}

void TextEditorTest::redoIsForgottenByANewEdit()
{
    Fixture fixture;
    fixture.editor.insertText(QStringLiteral("a"), EditKind::typing);
    fixture.editor.undo();
    fixture.editor.insertText(QStringLiteral("b"), EditKind::typing);
    QVERIFY(!fixture.editor.canRedo());
    fixture.editor.redo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("b"));
}

void TextEditorTest::aReadOnlyTextStays()
{
    Fixture fixture(QStringLiteral("a|b"));
    fixture.editor.setReadOnly(true);
    fixture.editor.insertText(QStringLiteral("x"), EditKind::typing);
    fixture.editor.erase(Movement::characterLeft);
    fixture.editor.paste({QStringLiteral("x")});
    QCOMPARE(describe(fixture.editor), QStringLiteral("a|b"));
    fixture.editor.move(Movement::characterRight, Extend::no);
    QCOMPARE(describe(fixture.editor), QStringLiteral("ab|"));
}

void TextEditorTest::foreignEditsAreNotUndone()
{
    Fixture fixture(QStringLiteral("one two|"));
    QSignalSpy changed(&fixture.editor, &TextEditor::textChanged);
    fixture.editor.insertText(QStringLiteral("!"), EditKind::typing);
    fixture.storage.replace({0, 3}, u"1");
    QCOMPARE(changed.size(), 1);
    QCOMPARE(describe(fixture.editor), QStringLiteral("1 two!|"));
    fixture.editor.undo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("1 two|"));
    QVERIFY(!fixture.editor.canUndo());
    fixture.editor.redo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("1 two!|"));
}

void TextEditorTest::aForeignEditTakenBackLeavesTheHistory()
{
    Fixture fixture(QStringLiteral("{\n|\n}\n{\nb\n}"));
    fixture.editor.insertText(QStringLiteral("abc"), EditKind::typing);
    const QString whole = fixture.storage.text();
    // Two bodies are cut out and put back, the first cut first: not in the reverse order.
    fixture.storage.replace({2, 4}, u" … ");
    fixture.storage.replace({9, 2}, u" … ");
    fixture.storage.replace({2, 3}, u"abc\n");
    fixture.storage.replace({10, 3}, u"b\n");
    QCOMPARE(fixture.storage.text(), whole);
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("{\n\n}\n{\nb\n}"));
    fixture.editor.redo();
    QCOMPARE(fixture.storage.text(), whole);
}

void TextEditorTest::foreignEditsOnUndoneTextForgetOnlyWhatTheyTouch()
{
    Fixture fixture(QStringLiteral("|"));
    fixture.editor.paste({QStringLiteral("first ")});
    fixture.editor.paste({QStringLiteral("second ")});
    fixture.editor.paste({QStringLiteral("third")});
    fixture.storage.replace({8, 2}, u"C");
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("first seCnd "));
    QVERIFY(!fixture.editor.canUndo());
}

void TextEditorTest::settingTheTextForgetsTheHistory()
{
    Fixture fixture;
    fixture.editor.insertText(QStringLiteral("a"), EditKind::typing);
    fixture.storage.setText(QStringLiteral("new"));
    QVERIFY(!fixture.editor.canUndo());
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("new"));
}

void TextEditorTest::theCallBeforeAnEditMayChangeTheText()
{
    Fixture fixture(QStringLiteral("a … b|"));
    fixture.editor.setBeforeEdit([&] {
        const qsizetype at = fixture.storage.text().indexOf(QStringLiteral(" … "));
        if (at >= 0) {
            fixture.storage.replace({at, 3}, u"restored");
        }
    });
    fixture.editor.insertText(QStringLiteral("!"), EditKind::typing);
    QCOMPARE(describe(fixture.editor), QStringLiteral("arestoredb!|"));
}

void TextEditorTest::textIsPutInThePlaceOfARange_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<TextRange>("range");
    QTest::addColumn<QString>("after");
    QTest::newRow("a caret before it") << QStringLiteral("a|bcd") << TextRange{2, 1} << QStringLiteral("a|bxyd");
    QTest::newRow("a caret behind it") << QStringLiteral("abcd|") << TextRange{1, 1} << QStringLiteral("axycd|");
    QTest::newRow("a caret at its end") << QStringLiteral("ab|c") << TextRange{0, 2} << QStringLiteral("xy|c");
    QTest::newRow("a caret within it") << QStringLiteral("ab|cd") << TextRange{1, 2} << QStringLiteral("axy|d");
    QTest::newRow("a caret at an insertion") << QStringLiteral("a|b") << TextRange{1, 0} << QStringLiteral("axy|b");
    QTest::newRow("a selection elsewhere") << QStringLiteral("a[bc]d") << TextRange{0, 1} << QStringLiteral("xy[bc]d");
    QTest::newRow("several carets") << QStringLiteral("|abc|") << TextRange{1, 1} << QStringLiteral("|axyc|");
    QTest::newRow("a caret right before it") << QStringLiteral("a|b") << TextRange{1, 1} << QStringLiteral("a|xy");
    QTest::newRow("past the end") << QStringLiteral("|ab") << TextRange{1, 9} << QStringLiteral("|axy");
}

void TextEditorTest::textIsPutInThePlaceOfARange()
{
    QFETCH(QString, before);
    QFETCH(TextRange, range);
    Fixture fixture(before);
    const QSignalSpy changed(&fixture.editor, &TextEditor::textChanged);
    fixture.editor.insertText(QStringLiteral("xy"), range);
    QTEST(describe(fixture.editor), "after");
    QCOMPARE(changed.size(), 1);
    fixture.editor.undo();
    QCOMPARE(describe(fixture.editor), before);
    fixture.editor.redo();
    QTEST(describe(fixture.editor), "after");
    fixture.editor.setReadOnly(true);
    fixture.editor.insertText(QStringLiteral("z"), {0, 0});
    QTEST(describe(fixture.editor), "after");
}

void TextEditorTest::rowMovementKeepsItsColumn()
{
    Fixture fixture(QStringLiteral("longer line\nab\nlonger line"));
    fixture.editor.select({8, 0});
    fixture.editor.move(Movement::rowDown, Extend::no);
    QCOMPARE(fixture.editor.selectedRange().location, 14);
    fixture.editor.move(Movement::rowDown, Extend::no);
    QCOMPARE(fixture.editor.selectedRange().location, 15 + 8);
    fixture.editor.move(Movement::rowUp, Extend::yes);
    fixture.editor.move(Movement::rowUp, Extend::yes);
    QCOMPARE(fixture.editor.selectedRange(), TextRange::between(8, 23));
}

void TextEditorTest::selectedTextIsMoved_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<qsizetype>("to");
    QTest::addColumn<QString>("after");
    const auto row = [](const char* name, const char* before, qsizetype to, const char* after) {
        QTest::newRow(name) << QString::fromUtf8(before) << to << QString::fromUtf8(after);
    };
    row("ahead", "a[bc]def", 5, "ade[bc]f");
    row("back", "abc[de]f", 1, "a[de]bcf");
    row("to the end", "a[bc]def", 6, "adef[bc]");
    row("into itself", "a[bcd]ef", 3, "a[bcd]ef");
    row("to its own start", "a[bc]def", 1, "a[bc]def");
    row("to its own end", "a[bc]def", 3, "a[bc]def");
    row("several together", "a[b]c[d]ef", 5, "ace[b\nd]f");
    row("several, to a place between them", "[a]bc[d]ef", 2, "b[a\nd]cef");
    row("with a caret beside", "a[bc]d|ef", 4, "ad[bc]ef");
}

void TextEditorTest::selectedTextIsMoved()
{
    QFETCH(QString, before);
    QFETCH(qsizetype, to);
    QFETCH(QString, after);
    Fixture fixture(before);
    QCOMPARE(fixture.editor.moveSelectedTextTo(to), before != after);
    QCOMPARE(describe(fixture.editor), after);
    if (before != after) {
        fixture.editor.undo();
        QCOMPARE(describe(fixture.editor), before);
        fixture.editor.redo();
        QCOMPARE(describe(fixture.editor), after);
    }
    QCOMPARE(fixture.editor.canUndo(), before != after);

    Fixture readOnly(before);
    readOnly.editor.setReadOnly(true);
    QVERIFY(!readOnly.editor.moveSelectedTextTo(to));
    QCOMPARE(describe(readOnly.editor), before);
}

void TextEditorTest::receiversMayEditInTurn()
{
    // Someone answers each edit with one of his own at the top of the text.
    Fixture fixture(QStringLiteral("abc|"));
    bool answered = false;
    connect(&fixture.storage, &TextStorage::edited, this, [&] {
        if (!std::exchange(answered, true)) {
            fixture.storage.replace({0, 0}, u"> ");
        }
    });
    fixture.editor.insertText(QStringLiteral("d"), EditKind::typing);
    QCOMPARE(describe(fixture.editor), QStringLiteral("> abcd|"));
    fixture.editor.undo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("> abc|"));
    fixture.editor.redo();
    QCOMPARE(describe(fixture.editor), QStringLiteral("> abcd|"));
}

void TextEditorTest::caretsFollowEachOfSeveralForeignEdits()
{
    // A formatter changes every line in one bracket; the caret stays in its own.
    Fixture fixture(QStringLiteral("a\nb\n|c\nd\n"));
    QSignalSpy told(&fixture.editor, &TextEditor::selectionChanged);
    {
        const EditingBracket bracket(fixture.storage);
        for (const qsizetype at : {6, 4, 2, 0}) {
            fixture.storage.replace({at, 1}, u"xx");
        }
        QCOMPARE(told.count(), 0);
    }
    QCOMPARE(told.count(), 1);
    QCOMPARE(fixture.storage.text(), QStringLiteral("xx\nxx\nxx\nxx\n"));
    QVERIFY(fixture.editor.selectedRange().location >= 6 && fixture.editor.selectedRange().end() <= 8);

    {
        const EditingBracket bracket(fixture.storage);
        fixture.storage.replace({0, 0}, QString(50, u'y'));
        fixture.storage.setText(QStringLiteral("z"));
    }
    QVERIFY(fixture.editor.selectedRange().end() <= 1);
}

void TextEditorTest::caretsAreAddedInRowsThatThereAre_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<Movement>("direction");
    QTest::addColumn<QString>("after");
    QTest::newRow("below") << QStringLiteral("a|b\ncd") << Movement::rowDown << QStringLiteral("a|b\nc|d");
    QTest::newRow("above") << QStringLiteral("ab\nc|d") << Movement::rowUp << QStringLiteral("a|b\nc|d");
    QTest::newRow("below the last") << QStringLiteral("ab\nc|d") << Movement::rowDown << QStringLiteral("ab\nc|d");
    QTest::newRow("above the first") << QStringLiteral("a|b\ncd") << Movement::rowUp << QStringLiteral("a|b\ncd");
    QTest::newRow("several") << QStringLiteral("a|\nb|\nc") << Movement::rowDown << QStringLiteral("a|\nb|\nc|");
}

void TextEditorTest::caretsAreAddedInRowsThatThereAre()
{
    QFETCH(QString, before);
    QFETCH(Movement, direction);
    Fixture fixture(before);
    fixture.editor.addCarets(direction);
    QTEST(describe(fixture.editor), "after");
}

void TextEditorTest::thousandsOfCaretsTypeInALongText()
{
    // Moved one by one, 100,000 carets in two million units would move a hundred thousand million of them at each key.
    constexpr qsizetype lines = 100'000;
    const QString text = QStringLiteral("line of a long text\n").repeated(lines);
    Fixture fixture;
    fixture.storage.setText(QString(text.constData(), text.size()));
    std::vector<Selection> carets;
    for (qsizetype line = 0; line < lines; ++line) {
        carets.push_back(Selection::caret({line * 20 + 4, false}));
    }
    fixture.editor.setSelections(SelectionSet(carets));
    for (const char16_t* key : {u"a", u"b"}) {
        fixture.editor.insertText(QString::fromUtf16(key), EditKind::typing);
    }
    fixture.editor.erase(Movement::characterLeft);
    QCOMPARE(fixture.storage.text(), QStringLiteral("linea of a long text\n").repeated(lines));
    QCOMPARE(fixture.editor.selections().all().size(), std::size_t(lines));
    QCOMPARE(fixture.editor.selections().all()[1].head.offset, qsizetype(21 + 5));
    fixture.editor.undo();
    fixture.editor.undo();
    QCOMPARE(fixture.storage.text(), text);
    QVERIFY(!fixture.editor.canUndo());
    fixture.editor.redo();
    QCOMPARE(fixture.storage.text(), QStringLiteral("lineab of a long text\n").repeated(lines));
}

void TextEditorTest::randomEditsAgreeWithAPlainString()
{
    test::RandomText random;
    Fixture fixture;
    TextEditor& editor = fixture.editor;
    // Every state the text has had at a step's border, so that undo and redo can be checked against them.
    QStringList states{QString()};
    qsizetype at = 0;
    const auto carets = [&] {
        std::vector<Selection> selections;
        for (qsizetype i = 1 + random.below(3); i > 0; --i) {
            selections.push_back(Selection::over(random.range(fixture.storage.length())));
        }
        return SelectionSet(selections);
    };
    for (int round = 0; round < 4000; ++round) {
        const QString before = fixture.storage.text();
        switch (random.below(6)) {
        case 0:
            if (at > 0) {
                editor.undo();
                --at;
            } else {
                QVERIFY(!editor.canUndo());
            }
            break;
        case 1:
            if (at + 1 < states.size()) {
                editor.redo();
                ++at;
            } else {
                QVERIFY(!editor.canRedo());
            }
            break;
        case 2:
            editor.setSelections(carets());
            editor.move(static_cast<Movement>(random.below(14)), random.below(2) == 0 ? Extend::yes : Extend::no);
            break;
        default: {
            editor.setSelections(carets());
            QString model = before;
            const QString typed = before.size() > 300 ? QString() : random.text(4);
            const std::vector<Selection> selections = editor.selections().all();
            for (auto selection = selections.rbegin(); selection != selections.rend(); ++selection) {
                model.replace(selection->range().location, selection->range().length, typed);
            }
            editor.insertText(typed, EditKind::other);
            QCOMPARE(fixture.storage.text(), model);
            if (model != before) {
                states.resize(at + 1);
                states.append(model);
                ++at;
            }
            break;
        }
        }
        QCOMPARE(fixture.storage.text(), states[at]);
        const test::NaiveLines rebuilt(fixture.storage.text());
        QCOMPARE(fixture.storage.lines().lineCount(), rebuilt.lineCount());
        qsizetype end = -1;
        for (const Selection& selection : editor.selections().all()) {
            QVERIFY(selection.range().location >= std::max<qsizetype>(0, end));
            end = selection.range().end();
            QVERIFY(end <= fixture.storage.length());
        }
    }
}

void TextEditorTest::randomForeignEditsNeverSpoilUndo()
{
    test::RandomText random;
    for (int round = 0; round < 400; ++round) {
        // The user writes capital letters, others write small ones and take away small ones only. So the capitals after
        // each undo must be those of the state before, however the small ones have changed.
        Fixture fixture(QStringLiteral("abcdefghijklmnop"));
        const auto capitals = [&] {
            QString kept = fixture.storage.text();
            kept.removeIf([](QChar unit) { return !unit.isUpper(); });
            return kept;
        };
        QStringList states{capitals()};
        for (int edit = 0; edit < 6; ++edit) {
            if (random.below(3) == 0) {
                const qsizetype place = random.below(fixture.storage.length());
                const qsizetype length = fixture.storage.text()[place].isLower() ? random.below(2) : 0;
                fixture.storage.replace({place, length}, u"xyz");
            } else {
                fixture.editor.select({random.below(fixture.storage.length() + 1), 0});
                fixture.editor.insertText(QString(QChar(static_cast<char16_t>(u'A' + random.below(26)))),
                                          EditKind::other);
                states.append(capitals());
            }
        }
        while (fixture.editor.canUndo()) {
            const QString small = fixture.storage.text();
            fixture.editor.undo();
            if (fixture.storage.text() != small) {
                states.removeLast();
                QCOMPARE(capitals(), states.last());
            }
        }
        while (fixture.editor.canRedo()) {
            fixture.editor.redo();
        }
    }
}

const kelm::test::Registered<TextEditorTest> registered(kelm::test::Toolkit::gui);

} // namespace text_editor_test

#include "text_editor_test.moc"
