#include "support/accessible_events.h"
#include "support/accessible_tree.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"
#include "text/view/text_view_accessible.h"

#include <QAccessibleTextInterface>
#include <QtTest>

namespace text_view_accessible_length_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

/// The most that any one answer may hold, in UTF-16 units.
constexpr int most = 1 << 18;
/// Longer than the longest piece of a line.
constexpr int longLine = 100000;

struct Piece
{
    QString text;
    int start = 0;
    int end = 0;
};

Piece pieceAt(QAccessibleTextInterface& text, int offset, QAccessible::TextBoundaryType type)
{
    Piece piece;
    piece.text = text.textAtOffset(offset, type, &piece.start, &piece.end);
    return piece;
}

} // namespace

class TextViewAccessibleLengthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noAnswerHoldsALongText();
    void aLongLineIsReadInPieces_data();
    void aLongLineIsReadInPieces();
    void noPieceSplitsACharacter();
    void aLongEditIsToldByItsBeginning();
    void nothingIsToldWhileNobodyListens();
    void aTextCanBeATerminalAndBusy();
};

void TextViewAccessibleLengthTest::noAnswerHoldsALongText()
{
    ShownTextView view(u"|"_s);
    view.storage().setText(u"twelve units"_s.repeated(2000000));
    QAccessibleTextInterface& text = *accessible(view)->textInterface();
    QCOMPARE(text.characterCount(), 24000000);
    QCOMPARE(text.text(0, text.characterCount()).size(), most);
    QCOMPARE(text.text(12000000, 24000000), u"twelve units"_s.repeated(most / 12 + 1).left(most));
    QCOMPARE(accessible(view)->text(QAccessible::Value).size(), most);
    for (const auto type : {QAccessible::WordBoundary, QAccessible::LineBoundary, QAccessible::ParagraphBoundary,
                            QAccessible::SentenceBoundary, QAccessible::NoBoundary}) {
        QVERIFY(pieceAt(text, 7000000, type).text.size() <= most);
    }
}

void TextViewAccessibleLengthTest::aLongLineIsReadInPieces_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("the only line") << u"x"_s.repeated(longLine);
    QTest::newRow("between others") << u"a\n"_s + u"x"_s.repeated(longLine) + u"\nb"_s;
    QTest::newRow("a whole number of pieces") << u"x"_s.repeated(1 << 15);
    QTest::newRow("one more than that") << u"x"_s.repeated((1 << 15) + 1);
    QTest::newRow("astral, shifted by one") << u"x"_s + u"😀"_s.repeated(longLine / 2) + u"\n"_s;
}

void TextViewAccessibleLengthTest::aLongLineIsReadInPieces()
{
    QFETCH(QString, text);
    ShownTextView view(u"|"_s);
    view.storage().setText(text);
    QAccessibleTextInterface& reader = *accessible(view)->textInterface();
    QString forwards;
    int at = 0;
    while (at < text.size()) {
        const Piece piece = pieceAt(reader, at, QAccessible::LineBoundary);
        QCOMPARE(piece.start, at);
        QVERIFY(piece.end > at);
        forwards += piece.text;
        at = piece.end;
    }
    QVERIFY(forwards == text);
    QString backwards;
    Piece piece = pieceAt(reader, int(text.size()), QAccessible::LineBoundary);
    backwards = piece.text;
    while (piece.start > 0) {
        const int start = piece.start;
        piece.text = reader.textBeforeOffset(start, QAccessible::LineBoundary, &piece.start, &piece.end);
        QCOMPARE(piece.end, start);
        backwards.prepend(piece.text);
    }
    QVERIFY(backwards == text);
}

void TextViewAccessibleLengthTest::noPieceSplitsACharacter()
{
    ShownTextView view(u"|"_s);
    view.storage().setText(u"x"_s + u"😀"_s.repeated(longLine));
    QAccessibleTextInterface& reader = *accessible(view)->textInterface();
    for (int offset = 0; offset < longLine; offset += 997) {
        const Piece piece = pieceAt(reader, offset, QAccessible::LineBoundary);
        QVERIFY(piece.start <= offset && offset < piece.end);
        QVERIFY(!piece.text.front().isLowSurrogate());
        QVERIFY(!piece.text.back().isHighSurrogate());
    }
}

void TextViewAccessibleLengthTest::aLongEditIsToldByItsBeginning()
{
    ShownTextView view(u"|"_s);
    AccessibleListener listener;
    view.storage().replace({0, 0}, u"twelve units"_s.repeated(2000000));
    QVERIFY(!listener.all().isEmpty());
    qsizetype told = 0;
    for (const AccessibleListener::Heard& heard : listener.all()) {
        told += heard.text.size();
    }
    QVERIFY2(told > 0 && told <= most, qPrintable(QString::number(told)));
}

void TextViewAccessibleLengthTest::nothingIsToldWhileNobodyListens()
{
    ShownTextView view(u"ab|"_s);
    AccessibleListener listener;
    QTest::keyClicks(&view, u"c"_s);
    QCOMPARE(listener.take(QAccessible::TextInserted, &view).size(), 1);
    QVERIFY(!listener.take(QAccessible::TextCaretMoved, &view).isEmpty());
    listener.take(QAccessible::TextSelectionChanged);
    screenReader::tellInstead({});
    const auto before = listener.all().size();
    QTest::keyClicks(&view, u"defg"_s);
    QCOMPARE(listener.all().size(), before);
}

void TextViewAccessibleLengthTest::aTextCanBeATerminalAndBusy()
{
    ShownTextView view(u"|"_s);
    QCOMPARE(accessible(view)->role(), QAccessible::EditableText);
    QVERIFY(!accessible(view)->state().busy);
    setAccessibleTextRole(view, QAccessible::Terminal);
    QCOMPARE(accessible(view)->role(), QAccessible::Terminal);
    AccessibleListener listener;
    setAccessibleTextBusy(view, true);
    setAccessibleTextBusy(view, true);
    QVERIFY(accessible(view)->state().busy);
    QCOMPARE(listener.take(QAccessible::StateChanged, &view).size(), 1);
    setAccessibleTextBusy(view, false);
    QVERIFY(!accessible(view)->state().busy);
}

const test::Registered<TextViewAccessibleLengthTest> registered(test::Toolkit::widgets);

} // namespace text_view_accessible_length_test

#include "text_view_accessible_length_test.moc"
