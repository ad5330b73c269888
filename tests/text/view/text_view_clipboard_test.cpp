#include "support/shown_text_view.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QtTest>

namespace text_view_clipboard_test {

using namespace kelm;
using test::ShownTextView;

namespace {

QString clipboardText()
{
    return QGuiApplication::clipboard()->text();
}

/// The labels of a menu, separators as "-", what cannot be chosen in parentheses.
QStringList entriesOf(QMenu& menu)
{
    QStringList entries;
    for (const QAction* action : menu.actions()) {
        const QString text = action->isSeparator() ? QStringLiteral("-") : action->text();
        entries.append(action->isEnabled() || action->isSeparator() ? text : u'(' + text + u')');
    }
    return entries;
}

QAction* actionOf(QMenu& menu, const QString& text)
{
    for (QAction* action : menu.actions()) {
        if (action->text() == text) {
            return action;
        }
    }
    return nullptr;
}

} // namespace

class TextViewClipboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textGoesThroughUnitForUnit_data();
    void textGoesThroughUnitForUnit();
    void cutTakesTheSelectedTextAlone_data();
    void cutTakesTheSelectedTextAlone();
    void copyWithoutASelectionKeepsTheClipboard();
    void severalSelectionsComeBackIntoSeveral();
    void severalTextsGoIntoOneSelectionAsLines();
    void aPasteIsOneStep();
    void othersClipboardsArePlainText();
    void foreignPiecesThatDoNotFitAreIgnored();
    void aReadOnlyViewOnlyCopies();
    void theOwnerIsToldWhatCanBeCopied();
    void theMenuOffersWhatCanBeDone_data();
    void theMenuOffersWhatCanBeDone();
    void theMenuDoesWhatItSays();
};

void TextViewClipboardTest::textGoesThroughUnitForUnit_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("CRLF") << QStringLiteral("a\r\nb\r\n");
    QTest::newRow("lone CR") << QStringLiteral("a\rb");
    QTest::newRow("no-break space") << QStringLiteral("a\u00a0b");
    QTest::newRow("line separator") << QStringLiteral("a\u2028b");
    QTest::newRow("paragraph separator") << QStringLiteral("a\u2029b");
    QTest::newRow("next line") << QStringLiteral("a\u0085b");
    QTest::newRow("tab and blanks") << QStringLiteral("\t a  \t");
    QTest::newRow("byte-order mark") << QStringLiteral("\ufeffa");
    QTest::newRow("combining mark") << QStringLiteral("e\u0301");
    QTest::newRow("emoji") << QStringLiteral("👩‍👩‍👧");
    QTest::newRow("NUL") << QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b"));
    QTest::newRow("an unpaired surrogate") << QString(QStringLiteral("a") + QChar(0xd83d));
}

void TextViewClipboardTest::textGoesThroughUnitForUnit()
{
    QFETCH(QString, text);
    ShownTextView view(QStringLiteral("|") + text);
    view.selectAll();
    view.copy();
    ShownTextView other(QStringLiteral("<|>"));
    other.paste();
    QCOMPARE(other.text(), u'<' + text + u'>');
    view.cut();
    QCOMPARE(view.text(), QString());
    view.paste();
    QCOMPARE(view.text(), text);
}

void TextViewClipboardTest::cutTakesTheSelectedTextAlone_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("clipboard");
    QTest::newRow("one") << QStringLiteral("a[bc]d") << QStringLiteral("a|d") << QStringLiteral("bc");
    QTest::newRow("several") << QStringLiteral("[a]b[c]d") << QStringLiteral("|b|d") << QStringLiteral("a\nc");
    QTest::newRow("with a caret beside") << QStringLiteral("[a]b|cd") << QStringLiteral("|b|cd") << QStringLiteral("a");
    QTest::newRow("none") << QStringLiteral("ab|cd") << QStringLiteral("ab|cd") << QStringLiteral("before");
}

void TextViewClipboardTest::cutTakesTheSelectedTextAlone()
{
    QFETCH(QString, before);
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    ShownTextView view(before);
    view.cut();
    QTEST(view.marked(), "after");
    QTEST(clipboardText(), "clipboard");
    view.undo();
    QCOMPARE(view.marked(), before);

    // The menu's Delete takes the same, and leaves the clipboard.
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    view.deleteSelection();
    QTEST(view.marked(), "after");
    QCOMPARE(clipboardText(), QStringLiteral("kept"));
}

void TextViewClipboardTest::copyWithoutASelectionKeepsTheClipboard()
{
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    ShownTextView view(QStringLiteral("ab|cd"));
    view.copy();
    QCOMPARE(clipboardText(), QStringLiteral("before"));
}

void TextViewClipboardTest::severalSelectionsComeBackIntoSeveral()
{
    ShownTextView view(QStringLiteral("[one] [two\r\n] [three]"));
    view.cut();
    QCOMPARE(view.marked(), QStringLiteral("| | |"));
    QTest::keyClicks(&view, QStringLiteral("-"));
    view.paste();
    QCOMPARE(view.marked(), QStringLiteral("-one| -two\r\n| -three|"));
    view.undo();
    QCOMPARE(view.marked(), QStringLiteral("-| -| -|"));
}

void TextViewClipboardTest::severalTextsGoIntoOneSelectionAsLines()
{
    ShownTextView view(QStringLiteral("[one] [two]"));
    view.copy();
    QCOMPARE(clipboardText(), QStringLiteral("one\ntwo"));
    view.set(QStringLiteral("<[x]>"));
    view.paste();
    QCOMPARE(view.marked(), QStringLiteral("<one\ntwo|>"));
    // As many selections as there are not texts: all of them into each.
    view.set(QStringLiteral("| | |"));
    view.paste();
    QCOMPARE(view.marked(), QStringLiteral("one\ntwo| one\ntwo| one\ntwo|"));
}

void TextViewClipboardTest::aPasteIsOneStep()
{
    QGuiApplication::clipboard()->setText(QStringLiteral("P"));
    ShownTextView view(QStringLiteral("|"));
    QTest::keyClicks(&view, QStringLiteral("a"));
    view.paste();
    view.paste();
    QTest::keyClicks(&view, QStringLiteral("b"));
    QCOMPARE(view.text(), QStringLiteral("aPPb"));
    for (const char16_t* text : {u"aPP", u"aP", u"a", u""}) {
        view.undo();
        QCOMPARE(view.text(), QString::fromUtf16(text));
    }
}

void TextViewClipboardTest::othersClipboardsArePlainText()
{
    auto* data = new QMimeData;
    data->setText(QStringLiteral("plain"));
    data->setHtml(QStringLiteral("<b>rich</b>"));
    QGuiApplication::clipboard()->setMimeData(data);
    ShownTextView view(QStringLiteral("|"));
    view.paste();
    QCOMPARE(view.text(), QStringLiteral("plain"));

    auto* picture = new QMimeData;
    picture->setData(QStringLiteral("image/png"), "x");
    QGuiApplication::clipboard()->setMimeData(picture);
    view.paste();
    QCOMPARE(view.text(), QStringLiteral("plain"));
}

void TextViewClipboardTest::foreignPiecesThatDoNotFitAreIgnored()
{
    ShownTextView view(QStringLiteral("[one] [two]"));
    view.copy();
    const QStringList formats = QGuiApplication::clipboard()->mimeData()->formats();
    const auto own = std::find_if(formats.begin(), formats.end(), [](const QString& format) {
        return format.startsWith(QStringLiteral("application/"));
    });
    QVERIFY(own != formats.end());
    const QByteArray pieces = QGuiApplication::clipboard()->mimeData()->data(*own);
    // Lengths of another text than the one beside them, cut short, and nonsense.
    for (const QByteArray& odd :
         {pieces, pieces.left(2), QByteArray(), QByteArray("\xff\xff\xff\xff\xff\xff"), QByteArray("-1 5"),
          QByteArray("2 2"), QByteArray("5 0"), QByteArray("9223372036854775807 1"), QByteArray("5 x")}) {
        auto* data = new QMimeData;
        data->setText(QStringLiteral("plain"));
        data->setData(*own, odd);
        QGuiApplication::clipboard()->setMimeData(data);
        view.set(QStringLiteral("| |"));
        view.paste();
        QCOMPARE(view.text(), QStringLiteral("plain plain"));
    }
}

void TextViewClipboardTest::aReadOnlyViewOnlyCopies()
{
    ShownTextView view(QStringLiteral("a[bc]d"));
    view.setReadOnly(true);
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    view.cut();
    QCOMPARE(clipboardText(), QStringLiteral("before"));
    view.paste();
    view.deleteSelection();
    QCOMPARE(view.marked(), QStringLiteral("a[bc]d"));
    view.copy();
    QCOMPARE(clipboardText(), QStringLiteral("bc"));
}

void TextViewClipboardTest::theOwnerIsToldWhatCanBeCopied()
{
    ShownTextView view(QStringLiteral("abc|"));
    QSignalSpy available(&view, &TextView::copyAvailable);
    view.setSelectedRange({0, 2});
    QCOMPARE(available.takeLast().at(0).toBool(), true);
    view.setSelectedRange({1, 0});
    QCOMPARE(available.takeLast().at(0).toBool(), false);
}

void TextViewClipboardTest::theMenuOffersWhatCanBeDone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("edited");
    QTest::addColumn<QString>("entries");
    QTest::newRow("nothing selected")
        << QStringLiteral("a|b") << false << false
        << QStringLiteral(
               "(Undo) (Redo) - (Cut) (Copy) Paste (Delete) - Select_All - Find_in_Text… (Use_Selection_for_Find)");
    QTest::newRow("a selection")
        << QStringLiteral("[a]b") << false << false
        << QStringLiteral("(Undo) (Redo) - Cut Copy Paste Delete - Select_All - Find_in_Text… Use_Selection_for_Find");
    QTest::newRow("after an edit")
        << QStringLiteral("a|b") << false << true
        << QStringLiteral(
               "Undo (Redo) - (Cut) (Copy) Paste (Delete) - Select_All - Find_in_Text… (Use_Selection_for_Find)");
    QTest::newRow("read-only")
        << QStringLiteral("[a]b") << true << false
        << QStringLiteral(
               "(Undo) (Redo) - (Cut) Copy (Paste) (Delete) - Select_All - Find_in_Text… Use_Selection_for_Find");
    QTest::newRow("empty")
        << QStringLiteral("|") << false << false
        << QStringLiteral(
               "(Undo) (Redo) - (Cut) (Copy) Paste (Delete) - (Select_All) - Find_in_Text… (Use_Selection_for_Find)");
}

void TextViewClipboardTest::theMenuOffersWhatCanBeDone()
{
    QFETCH(QString, text);
    QFETCH(bool, readOnly);
    QFETCH(bool, edited);
    QFETCH(QString, entries);
    ShownTextView view(text);
    if (edited) {
        QTest::keyClicks(&view, QStringLiteral("x"));
    }
    view.setReadOnly(readOnly);
    const std::unique_ptr<QMenu> menu(view.makeContextMenu());
    QCOMPARE(entriesOf(*menu).replaceInStrings(QStringLiteral(" "), QStringLiteral("_")).join(u' '), entries);
}

void TextViewClipboardTest::theMenuDoesWhatItSays()
{
    ShownTextView view(QStringLiteral("a[b]c"));
    const std::unique_ptr<QMenu> menu(view.makeContextMenu());
    actionOf(*menu, QStringLiteral("Cut"))->trigger();
    QCOMPARE(view.marked(), QStringLiteral("a|c"));
    actionOf(*menu, QStringLiteral("Paste"))->trigger();
    QCOMPARE(view.marked(), QStringLiteral("ab|c"));
    actionOf(*menu, QStringLiteral("Select All"))->trigger();
    QCOMPARE(view.marked(), QStringLiteral("[abc]"));
    actionOf(*menu, QStringLiteral("Copy"))->trigger();
    QCOMPARE(clipboardText(), QStringLiteral("abc"));
    actionOf(*menu, QStringLiteral("Delete"))->trigger();
    QCOMPARE(view.text(), QString());
    // The menu that a right click opens runs until it is closed; what is composed is in the text by then.
    view.compose(QStringLiteral("한"));
    QTimer::singleShot(0, &view, [] {
        QVERIFY(QApplication::activePopupWidget() != nullptr);
        QApplication::activePopupWidget()->close();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, view.mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(view.viewport(), &event);
    QCOMPARE(view.text(), QStringLiteral("한"));
}

const kelm::test::Registered<TextViewClipboardTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_clipboard_test

#include "text_view_clipboard_test.moc"
