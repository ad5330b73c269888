#include "support/shown_text_view.h"
#include "support/test_program.h"
#include "text/view/text_view_accessible.h"

#include <QAccessible>
#include <QAccessibleEditableTextInterface>
#include <QAccessibleTextInterface>
#include <QtTest>

namespace text_view_accessible_test {

using namespace kelm;
using test::ShownTextView;

namespace {

QString describe(const QAccessibleTextCursorEvent& event)
{
    QString what;
    switch (event.type()) {
    case QAccessible::TextInserted: {
        const auto& inserted = static_cast<const QAccessibleTextInsertEvent&>(event);
        what = QStringLiteral("inserted %1 at %2").arg(inserted.textInserted()).arg(inserted.changePosition());
        break;
    }
    case QAccessible::TextRemoved: {
        const auto& removed = static_cast<const QAccessibleTextRemoveEvent&>(event);
        what = QStringLiteral("removed %1 at %2").arg(removed.textRemoved().size()).arg(removed.changePosition());
        break;
    }
    case QAccessible::TextUpdated: {
        const auto& updated = static_cast<const QAccessibleTextUpdateEvent&>(event);
        what = QStringLiteral("updated %1 to %2 at %3")
                   .arg(updated.textRemoved().size())
                   .arg(updated.textInserted())
                   .arg(updated.changePosition());
        break;
    }
    case QAccessible::TextSelectionChanged: {
        const auto& selection = static_cast<const QAccessibleTextSelectionEvent&>(event);
        what = QStringLiteral("selected %1 to %2").arg(selection.selectionStart()).arg(selection.selectionEnd());
        break;
    }
    case QAccessible::TextCaretMoved:
        what = QStringLiteral("moved");
        break;
    default:
        what = QStringLiteral("unknown");
    }
    return what + QStringLiteral(", caret %1").arg(event.cursorPosition());
}

struct Spoken
{
    QString text;
    int start = -9;
    int end = -9;

    friend bool operator==(const Spoken&, const Spoken&) = default;
};

char* toString(const Spoken& spoken)
{
    return QTest::toString(
        QStringLiteral("%1 %2-%3").arg(spoken.text.toHtmlEscaped()).arg(spoken.start).arg(spoken.end));
}

/// A view with the interfaces that a screen reader sees.
struct ReadView : ShownTextView
{
    explicit ReadView(const QString& marked) : ShownTextView(marked)
    {
        base = QAccessible::queryAccessibleInterface(this);
        if (base != nullptr) {
            reader = base->textInterface();
            writer = base->editableTextInterface();
        }
    }

    Spoken at(int offset, QAccessible::TextBoundaryType type) const
    {
        Spoken spoken;
        spoken.text = reader->textAtOffset(offset, type, &spoken.start, &spoken.end);
        return spoken;
    }
    Spoken before(int offset, QAccessible::TextBoundaryType type) const
    {
        Spoken spoken;
        spoken.text = reader->textBeforeOffset(offset, type, &spoken.start, &spoken.end);
        return spoken;
    }
    Spoken after(int offset, QAccessible::TextBoundaryType type) const
    {
        Spoken spoken;
        spoken.text = reader->textAfterOffset(offset, type, &spoken.start, &spoken.end);
        return spoken;
    }

    QAccessibleInterface* base = nullptr;
    QAccessibleTextInterface* reader = nullptr;
    QAccessibleEditableTextInterface* writer = nullptr;
};

} // namespace

class TextViewAccessibleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theViewIsAnEditableText();
    void textIsReadByOffsets_data();
    void textIsReadByOffsets();
    void unitsAreReadAtOffsets_data();
    void unitsAreReadAtOffsets();
    void unitsLeadThroughTheWholeText_data();
    void unitsLeadThroughTheWholeText();
    void theCaretIsReadAndSet();
    void selectionsAreReadAndSet();
    void charactersAreFoundOnScreen();
    void pointsAreFoundInTheText();
    void rangesAreScrolledToSight();
    void textIsEdited();
    void aReadOnlyTextIsNotEdited();
    void theWholeTextIsSet();
    void offsetsFromOutsideDoNoHarm();
    void editsAndCaretsAreTold();
    void aCompositionIsInTheTextBeforeOthersEdit();
};

void TextViewAccessibleTest::theViewIsAnEditableText()
{
    ReadView view(QStringLiteral("ab|c"));
    QVERIFY(view.base != nullptr);
    QVERIFY(view.reader != nullptr);
    QVERIFY(view.writer != nullptr);
    QCOMPARE(view.base->role(), QAccessible::EditableText);
    QVERIFY(view.base->state().editable);
    QVERIFY(!view.base->state().readOnly);
    QVERIFY(view.base->state().multiLine);
    QVERIFY(view.base->state().focusable);
    QVERIFY(view.base->state().focused);
    QCOMPARE(view.base->text(QAccessible::Value), QStringLiteral("abc"));
    view.setAccessibleName(QStringLiteral("Editor"));
    QCOMPARE(view.base->text(QAccessible::Name), QStringLiteral("Editor"));
    view.setReadOnly(true);
    QVERIFY(view.base->state().readOnly);
    QVERIFY(!view.base->state().editable);
}

void TextViewAccessibleTest::textIsReadByOffsets_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("text");
    QTest::newRow("a part") << 1 << 3 << QStringLiteral("b\r");
    QTest::newRow("all") << 0 << 7 << QStringLiteral("ab\r\n😀c");
    QTest::newRow("nothing") << 2 << 2 << QString();
    QTest::newRow("past the end") << 6 << 99 << QStringLiteral("c");
    QTest::newRow("before the start") << -4 << 1 << QStringLiteral("a");
}

void TextViewAccessibleTest::textIsReadByOffsets()
{
    QFETCH(int, start);
    QFETCH(int, end);
    ReadView view(QStringLiteral("|ab\r\n😀c"));
    QCOMPARE(view.reader->characterCount(), 7);
    QTEST(view.reader->text(start, end), "text");
}

void TextViewAccessibleTest::unitsAreReadAtOffsets_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QAccessible::TextBoundaryType>("type");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<int>("start");
    constexpr auto character = QAccessible::CharBoundary;
    constexpr auto word = QAccessible::WordBoundary;
    constexpr auto line = QAccessible::LineBoundary;
    const auto row = [](const char* name, const char* text, int offset, QAccessible::TextBoundaryType type,
                        const char* unit, int start) {
        QTest::newRow(name) << QString::fromUtf8(text) << offset << type << QString::fromUtf8(unit) << start;
    };
    row("a character", "abc", 1, character, "b", 1);
    row("an emoji from its middle", "a👩‍👩‍👧b", 4, character, "👩‍👩‍👧", 1);
    row("a CRLF from its middle", "a\r\nb", 2, character, "\r\n", 1);
    row("two consonants from their middle", "aक्षb", 2, character, "क्ष", 1);
    row("a flag behind a pictograph", "😀🇰🇷", 4, character, "🇰🇷", 2);
    row("a Thai word", "ภาษาไทย", 5, word, "ไทย", 4);
    row("a sign with its mark", "a=\u0338b", 2, word, "=\u0338", 1);
    row("no character at the end", "ab", 2, character, "", 2);
    row("a word", "foo bar_1 baz", 6, word, "bar_1", 4);
    row("blanks", "foo   bar", 4, word, "   ", 3);
    row("a line end is a word of its own", "foo\nbar", 3, word, "\n", 3);
    row("an empty line", "a\n\nb", 2, word, "\n", 2);
    row("a CRLF as a word", "foo\r\nbar", 4, word, "\r\n", 3);
    row("a line", "one\ntwo\nthree", 5, line, "two\n", 4);
    row("the empty line, not the one before", "one\n\nthree", 4, line, "\n", 4);
    row("the last, empty line", "one\n", 4, line, "", 4);
    row("a line with CRLF", "one\r\ntwo", 4, line, "one\r\n", 0);
    row("the whole text", "one\ntwo", 5, QAccessible::NoBoundary, "one\ntwo", 0);
    row("a paragraph is a line", "one\ntwo", 5, QAccessible::ParagraphBoundary, "two", 4);
    row("an empty text", "", 0, line, "", 0);
}

void TextViewAccessibleTest::unitsAreReadAtOffsets()
{
    QFETCH(QString, text);
    QFETCH(int, offset);
    QFETCH(QAccessible::TextBoundaryType, type);
    QFETCH(QString, unit);
    QFETCH(int, start);
    ReadView view(QStringLiteral("|") + text);
    QCOMPARE(view.at(offset, type), (Spoken{unit, start, start + int(unit.size())}));
}

void TextViewAccessibleTest::unitsLeadThroughTheWholeText_data()
{
    QTest::addColumn<QAccessible::TextBoundaryType>("type");
    QTest::newRow("characters") << QAccessible::CharBoundary;
    QTest::newRow("words") << QAccessible::WordBoundary;
    QTest::newRow("lines") << QAccessible::LineBoundary;
}

void TextViewAccessibleTest::unitsLeadThroughTheWholeText()
{
    QFETCH(QAccessible::TextBoundaryType, type);
    const QString text = QStringLiteral("foo bar\r\n\n\n  baz();\r한글 👩‍👩‍👧\u2028 x\n");
    ReadView view(QStringLiteral("|") + text);
    // Forwards, from each unit to the one behind it, nothing is missed and nothing comes twice.
    Spoken spoken = view.at(0, type);
    QString read = spoken.text;
    for (int steps = 0; spoken.end < text.size(); ++steps) {
        QVERIFY(steps < 100);
        const Spoken next = view.after(spoken.start, type);
        QCOMPARE(next.start, spoken.end);
        QVERIFY(next.end > next.start);
        read += next.text;
        spoken = next;
    }
    QCOMPARE(read, text);
    QCOMPARE(view.after(spoken.start, type).text, QString());
    // And back.
    QString back = spoken.text;
    for (int steps = 0; spoken.start > 0; ++steps) {
        QVERIFY(steps < 100);
        const Spoken previous = view.before(spoken.start, type);
        QCOMPARE(previous.end, spoken.start);
        back.prepend(previous.text);
        spoken = previous;
    }
    QCOMPARE(back, text);
    QCOMPARE(view.before(0, type), (Spoken{QString(), 0, 0}));
}

void TextViewAccessibleTest::theCaretIsReadAndSet()
{
    ReadView view(QStringLiteral("ab|c\r\n"));
    QCOMPARE(view.reader->cursorPosition(), 2);
    view.reader->setCursorPosition(1);
    QCOMPARE(view.marked(), QStringLiteral("a|bc\r\n"));
    view.reader->setCursorPosition(99);
    QCOMPARE(view.marked(), QStringLiteral("abc\r\n|"));
    view.reader->setCursorPosition(-3);
    QCOMPARE(view.marked(), QStringLiteral("|abc\r\n"));
    // Never into the middle of a character.
    view.reader->setCursorPosition(4);
    QCOMPARE(view.marked(), QStringLiteral("abc|\r\n"));
}

void TextViewAccessibleTest::selectionsAreReadAndSet()
{
    ReadView view(QStringLiteral("ab|cdefgh"));
    int start = -1;
    int end = -1;
    QCOMPARE(view.reader->selectionCount(), 0);
    view.reader->selection(0, &start, &end);
    QCOMPARE(start, 0);
    QCOMPARE(end, 0);
    view.reader->addSelection(1, 3);
    QCOMPARE(view.marked(), QStringLiteral("a[bc]defgh"));
    view.reader->addSelection(7, 5);
    QCOMPARE(view.marked(), QStringLiteral("a[bc]de[fg]h"));
    QCOMPARE(view.reader->selectionCount(), 2);
    view.reader->selection(1, &start, &end);
    QCOMPARE(start, 5);
    QCOMPARE(end, 7);
    view.reader->setSelection(0, 0, 1);
    QCOMPARE(view.marked(), QStringLiteral("[a]bcde[fg]h"));
    view.reader->removeSelection(0);
    QCOMPARE(view.marked(), QStringLiteral("abcde[fg]h"));
    view.reader->removeSelection(9);
    QCOMPARE(view.marked(), QStringLiteral("abcde[fg]h"));
    view.reader->removeSelection(0);
    QCOMPARE(view.reader->selectionCount(), 0);
    QCOMPARE(view.reader->cursorPosition(), 7);
    // A caret beside a selection is no selection.
    view.set(QStringLiteral("a|b[cd]e"));
    QCOMPARE(view.reader->selectionCount(), 1);
    view.reader->selection(0, &start, &end);
    QCOMPARE(start, 2);
    QCOMPARE(end, 4);
}

void TextViewAccessibleTest::charactersAreFoundOnScreen()
{
    ReadView view(QStringLiteral("|ab\ncd"));
    const QRect b = view.reader->characterRect(1);
    const QRect expected =
        QRectF(view.caretRect({1, false}).topLeft(), view.caretRect({2, true}).bottomRight()).toAlignedRect();
    QCOMPARE(b, expected.translated(view.viewport()->mapToGlobal(QPoint(0, 0))));
    QVERIFY(b.width() > 4);
    const QRect d = view.reader->characterRect(4);
    QVERIFY(d.top() >= b.bottom());
    QCOMPARE(d.left(), b.left());
    // A line end has a place, too.
    QVERIFY(!view.reader->characterRect(2).isEmpty());
    QVERIFY(!view.reader->characterRect(5).isEmpty());
}

void TextViewAccessibleTest::pointsAreFoundInTheText()
{
    ReadView view(QStringLiteral("|ab\ncd"));
    for (const int offset : {0, 1, 3, 4}) {
        QCOMPARE(view.reader->offsetAtPoint(view.reader->characterRect(offset).topLeft() + QPoint(2, 2)), offset);
    }
}

void TextViewAccessibleTest::rangesAreScrolledToSight()
{
    ReadView view(QStringLiteral("|") + QStringLiteral("line\n").repeated(300));
    view.reader->scrollToSubstring(1000, 1004);
    QVERIFY(view.visibleRect().top() > 500);
    QVERIFY(view.viewport()->rect().contains(view.pointAt(1000)));
}

void TextViewAccessibleTest::textIsEdited()
{
    ReadView view(QStringLiteral("|abcdef"));
    view.writer->insertText(3, QStringLiteral("XY"));
    QCOMPARE(view.text(), QStringLiteral("abcXYdef"));
    view.writer->deleteText(0, 2);
    QCOMPARE(view.text(), QStringLiteral("cXYdef"));
    view.writer->replaceText(1, 3, QStringLiteral("-"));
    QCOMPARE(view.text(), QStringLiteral("c-def"));
    for (const char16_t* text : {u"cXYdef", u"abcXYdef", u"abcdef"}) {
        view.undo();
        QCOMPARE(view.text(), QString::fromUtf16(text));
    }
}

void TextViewAccessibleTest::aReadOnlyTextIsNotEdited()
{
    ReadView view(QStringLiteral("|abc"));
    view.setReadOnly(true);
    view.writer->insertText(1, QStringLiteral("X"));
    view.writer->deleteText(0, 2);
    view.base->setText(QAccessible::Value, QStringLiteral("new"));
    QCOMPARE(view.text(), QStringLiteral("abc"));
}

void TextViewAccessibleTest::theWholeTextIsSet()
{
    ReadView view(QStringLiteral("a|bc"));
    view.base->setText(QAccessible::Value, QStringLiteral("new\r\n"));
    QCOMPARE(view.text(), QStringLiteral("new\r\n"));
    view.undo();
    QCOMPARE(view.marked(), QStringLiteral("a|bc"));
}

void TextViewAccessibleTest::offsetsFromOutsideDoNoHarm()
{
    for (const char16_t* text : {u"", u"abc\n", u"\r\n"}) {
        ReadView view(u'|' + QString::fromUtf16(text));
        for (const int offset : {-99, -1, 0, 1, 4, 5, 99}) {
            for (const auto type : {QAccessible::CharBoundary, QAccessible::WordBoundary, QAccessible::LineBoundary,
                                    QAccessible::SentenceBoundary, QAccessible::NoBoundary}) {
                for (const Spoken& spoken :
                     {view.at(offset, type), view.before(offset, type), view.after(offset, type)}) {
                    QVERIFY(spoken.start >= 0 && spoken.end >= spoken.start && spoken.end <= view.text().size());
                    QCOMPARE(spoken.text, view.text().mid(spoken.start, spoken.end - spoken.start));
                }
            }
            view.reader->characterRect(offset);
            int start = -9;
            int end = -9;
            view.reader->attributes(offset, &start, &end);
            QVERIFY(start >= 0 && end >= start);
            view.reader->scrollToSubstring(offset, offset + 50);
            view.reader->addSelection(offset, -offset);
            view.reader->removeSelection(offset);
            view.writer->deleteText(offset, offset);
        }
        QCOMPARE(view.text(), QString::fromUtf16(text));
    }
}

void TextViewAccessibleTest::editsAndCaretsAreTold()
{
    // The event that the platform passes on where a screen reader listens, as each edit makes it.
    ReadView view(QStringLiteral("ab|c"));
    QString told;
    connect(&view.storage(), &TextStorage::edited, this,
            [&](const TextEdit& edit) { told = describe(*accessibleEditEvent(view, edit)); });
    QTest::keyClicks(&view, QStringLiteral("x"));
    QCOMPARE(told, QStringLiteral("inserted x at 2, caret 3"));
    QTest::keyClick(&view, Qt::Key_Backspace);
    QCOMPARE(told, QStringLiteral("removed 1 at 2, caret 2"));
    view.storage().replace({0, 1}, u"yy");
    QCOMPARE(told, QStringLiteral("updated 1 to yy at 0, caret 3"));
    QCOMPARE(describe(*accessibleSelectionEvent(view)), QStringLiteral("moved, caret 3"));
    view.setSelectedRange({1, 2});
    QCOMPARE(describe(*accessibleSelectionEvent(view)), QStringLiteral("selected 1 to 3, caret 3"));
}

void TextViewAccessibleTest::aCompositionIsInTheTextBeforeOthersEdit()
{
    ReadView view(QStringLiteral("a|b"));
    view.compose(QStringLiteral("한"));
    view.writer->insertText(0, QStringLiteral("X"));
    QCOMPARE(view.text(), QStringLiteral("Xa한b"));
    view.compose(QStringLiteral("글"));
    view.reader->setCursorPosition(0);
    QVERIFY(!view.isComposing());
    QVERIFY(view.text().contains(u'글'));
}

const kelm::test::Registered<TextViewAccessibleTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_accessible_test

#include "text_view_accessible_test.moc"
