#include "support/script_texts.h"
#include "support/test_program.h"
#include "text/boundaries/text_boundaries.h"
#include "text/editing/text_editor.h"

#include <QtTest>

#include <algorithm>

namespace text_editor_characters_test {

using namespace kelm;

struct Fixture
{
    TextStorage storage;
    TextLayout layout{storage};
    TextEditor editor{storage, layout};

    explicit Fixture(const QString& text)
    {
        storage.setText(text);
        editor.setSelections(SelectionSet(Selection::caret({0, false})));
    }

    qsizetype head() const { return editor.selections().primary().head.offset; }
};

/// Steps, deletions and counts mean the same characters, whatever the text.
class TextEditorCharactersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCaretStepsFromCharacterToCharacter();
    void aSelectionGrowsByCharacters();
    void eachKeyDeletesOneCharacter();
    void theCaretIsPutBetweenCharacters();
    void wordStepsEndBetweenCharacters();
    void rowsBeginAndEndBetweenCharacters_data();
    void rowsBeginAndEndBetweenCharacters();
};

void TextEditorCharactersTest::aCaretStepsFromCharacterToCharacter()
{
    test::RandomScripts random;
    for (int round = 0; round < 25; ++round) {
        const QString text = random.text(20);
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        Fixture fixture(text);
        for (const qsizetype boundary : boundaries) {
            QCOMPARE(fixture.head(), boundary);
            fixture.editor.move(Movement::characterRight, Extend::no);
        }
        QCOMPARE(fixture.head(), text.size());
        for (auto boundary = boundaries.rbegin(); boundary != boundaries.rend(); ++boundary) {
            QCOMPARE(fixture.head(), *boundary);
            fixture.editor.move(Movement::characterLeft, Extend::no);
        }
        QCOMPARE(boundaries.size(), graphemeCount(text) + 1);
    }
}

void TextEditorCharactersTest::aSelectionGrowsByCharacters()
{
    test::RandomScripts random;
    for (int round = 0; round < 25; ++round) {
        const QString text = random.text(20);
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        Fixture fixture(text);
        const qsizetype first = random.below(boundaries.size());
        fixture.editor.setSelections(SelectionSet(Selection::caret({boundaries[first], false})));
        for (qsizetype index = first; index < boundaries.size(); ++index) {
            const TextRange selected = fixture.editor.selections().primary().range();
            QCOMPARE(selected, TextRange::between(boundaries[first], boundaries[index]));
            QCOMPARE(graphemeCount(fixture.storage.substring(selected)), index - first);
            fixture.editor.move(Movement::characterRight, Extend::yes);
        }
    }
}

void TextEditorCharactersTest::eachKeyDeletesOneCharacter()
{
    test::RandomScripts random;
    for (int round = 0; round < 25; ++round) {
        const QString text = random.text(20);
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        Fixture back(text);
        back.editor.move(Movement::textEnd, Extend::no);
        Fixture ahead(text);
        for (qsizetype index = boundaries.size() - 1; index >= 0; --index) {
            QCOMPARE(back.storage.text(), text.first(boundaries[index]));
            QCOMPARE(graphemeCount(back.storage.text()), index);
            back.editor.erase(Movement::characterLeft);
        }
        for (const qsizetype boundary : boundaries) {
            QCOMPARE(ahead.storage.text(), text.sliced(boundary));
            ahead.editor.erase(Movement::characterRight);
        }
        QVERIFY(ahead.storage.text().isEmpty());
    }
}

void TextEditorCharactersTest::theCaretIsPutBetweenCharacters()
{
    test::RandomScripts random;
    for (int round = 0; round < 25; ++round) {
        const QString text = random.text(20);
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        Fixture fixture(text);
        for (qsizetype offset = 0; offset <= text.size(); ++offset) {
            fixture.editor.setSelections(SelectionSet(Selection::caret({offset, false})));
            QVERIFY(text.isEmpty() || std::binary_search(boundaries.begin(), boundaries.end(), fixture.head()));
        }
    }
}

void TextEditorCharactersTest::wordStepsEndBetweenCharacters()
{
    test::RandomScripts random;
    for (int round = 0; round < 25; ++round) {
        const QString text = random.text(20);
        const QList<qsizetype> boundaries = test::characterBoundaries(text);
        Fixture fixture(text);
        for (const Movement movement : {Movement::wordRight, Movement::wordLeft}) {
            for (qsizetype steps = text.size(); steps > 0; --steps) {
                fixture.editor.move(movement, Extend::no);
                QVERIFY(std::binary_search(boundaries.begin(), boundaries.end(), fixture.head()));
            }
            QCOMPARE(fixture.head(), movement == Movement::wordRight ? text.size() : qsizetype(0));
        }
    }
}

void TextEditorCharactersTest::rowsBeginAndEndBetweenCharacters_data()
{
    // What is wider than its row is wrapped anywhere, by the toolkit's own boundaries.
    QTest::addColumn<QString>("text");
    QTest::newRow("Hindi") << QStringLiteral("क्षत्रि").repeated(20);
    QTest::newRow("Thai") << QStringLiteral("กำ").repeated(40);
    QTest::newRow("flags behind pictographs") << QStringLiteral("😀🇰🇷").repeated(20);
    QTest::newRow("keycaps") << QStringLiteral("1️⃣").repeated(40);
}

void TextEditorCharactersTest::rowsBeginAndEndBetweenCharacters()
{
    QFETCH(QString, text);
    const QList<qsizetype> boundaries = test::characterBoundaries(text);
    Fixture fixture(text);
    for (int columns = 5; columns < 25; ++columns) {
        fixture.layout.setWidth(columns * fixture.layout.advance());
        for (const TextRow& row : fixture.layout.rowsBetween(0, 1e9)) {
            for (const Movement movement : {Movement::rowStart, Movement::rowEnd, Movement::rowDown, Movement::rowUp}) {
                const qsizetype inside = graphemeBoundaryAtOrBefore(text, row.range.location + row.range.length / 2);
                fixture.editor.setSelections(SelectionSet(Selection::caret({inside, false})));
                fixture.editor.move(movement, Extend::no);
                QVERIFY(boundaries.contains(fixture.head()));
                // There is nothing further on.
                const qsizetype once = fixture.head();
                if (movement == Movement::rowStart || movement == Movement::rowEnd) {
                    fixture.editor.move(movement, Extend::no);
                    QCOMPARE(fixture.head(), once);
                }
            }
        }
    }
}

const kelm::test::Registered<TextEditorCharactersTest> registered(kelm::test::Toolkit::gui);

} // namespace text_editor_characters_test

#include "text_editor_characters_test.moc"
