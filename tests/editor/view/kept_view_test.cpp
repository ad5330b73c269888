#include "support/random_text.h"
#include "support/shown_document.h"
#include "support/test_program.h"

#include <QtTest>

#include <memory>

namespace kept_view_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A document in a container on screen, whose file another program changes.
struct Fixture : test::ShownDocument
{
    explicit Fixture(const QString& text) : ShownDocument(text, Language::swift, {800, 400}) {}

    TextView& text() { return textView(); }
    void changeFile(const QString& newText)
    {
        document->takeFileText(TextTree(newText));
        QCoreApplication::processEvents();
    }
};

/// A function of a name, with a body of some lines.
QString function(const QString& name, int lines = 2)
{
    return u"func "_s + name + u"() {\n"_s + u"  line\n"_s.repeated(lines) + u"}\n"_s;
}

QString folded(const QString& name)
{
    return u"func "_s + name + u"() {\n \u2026 }\n"_s;
}

QString numbered(int from, int to)
{
    QString lines;
    for (int number = from; number < to; ++number) {
        lines += u"line %1\n"_s.arg(number);
    }
    return lines;
}

} // namespace

class KeptViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTextOfTheFileIsOneUndoStep();
    void aTextThatIsStoredOverItIsTaken();
    void whatIsTypedBeforeItIsShownComesAfterIt();
    void whatIsComposedMeanwhileComesAfterIt();
    void aFoldOfATextThatIsStillReadIsNotMistaken();
    void caretsStayWithTheirText();
    void theTopOfTheScreenStays();
    void foldsStay_data();
    void foldsStay();
    void undoingBringsBackTheTextBehindTheFold();
    void randomChangesAndUndoGiveEachTextAgain();
};

void KeptViewTest::theTextOfTheFileIsOneUndoStep()
{
    Fixture fixture(u"one\ntwo\nthree\n"_s);
    fixture.changeFile(u"one\n2\nthree\nfour\n"_s);
    QCOMPARE(fixture.text().text(), u"one\n2\nthree\nfour\n"_s);
    QCOMPARE(fixture.document->content(), u"one\n2\nthree\nfour\n"_s);
    QVERIFY(!fixture.document->isModified());
    fixture.text().undo();
    QCOMPARE(fixture.document->content(), u"one\ntwo\nthree\n"_s);
    QVERIFY(fixture.document->isModified());
    QVERIFY(!fixture.text().editor().canUndo());
    fixture.text().redo();
    QCOMPARE(fixture.document->content(), u"one\n2\nthree\nfour\n"_s);
    // A modified document that is loaded again is not modified any more.
    QVERIFY(fixture.document->isModified());
    fixture.changeFile(u"from the disk"_s);
    QVERIFY(!fixture.document->isModified());
}

void KeptViewTest::aTextThatIsStoredOverItIsTaken()
{
    Fixture fixture(u"one"_s);
    fixture.document->takeFileText(TextTree(u"from the disk"_s));
    fixture.document->setContent(u"from a command"_s);
    QVERIFY(!fixture.document->isStoredTextOfFile());
    QCoreApplication::processEvents();
    QCOMPARE(fixture.text().text(), u"from a command"_s);
    QVERIFY(fixture.document->isModified());
}

void KeptViewTest::whatIsTypedBeforeItIsShownComesAfterIt()
{
    Fixture fixture(u"one\n"_s);
    fixture.text().setSelectedRange({4, 0});
    fixture.document->takeFileText(TextTree(u"zero\none\n"_s));
    QTest::keyClicks(&fixture.text(), u"x"_s);
    QCOMPARE(fixture.document->content(), u"zero\none\nx"_s);
    QVERIFY(fixture.document->isModified());
}

void KeptViewTest::whatIsComposedMeanwhileComesAfterIt()
{
    Fixture fixture(u"one\n"_s);
    fixture.text().setSelectedRange({4, 0});
    QInputMethodEvent composing(u"한"_s, {});
    QCoreApplication::sendEvent(&fixture.text(), &composing);
    fixture.changeFile(u"zero\none\n"_s);
    QVERIFY(!fixture.text().isComposing());
    QCOMPARE(fixture.document->content(), u"zero\none\n한"_s);
    QVERIFY(fixture.document->isModified());
    fixture.text().undo();
    QCOMPARE(fixture.document->content(), u"zero\none\n"_s);
}

void KeptViewTest::aFoldOfATextThatIsStillReadIsNotMistaken()
{
    // With the first lines folded, the lower ones stand where others stood, and the new text is too long to be read at
    // once.
    const QString begun = u"a {\n1\n2\n3\n}\nb {\n1\n2\n}\nx\nc {\n1\n}\n"_s;
    Fixture fixture(begun + u"p\n"_s.repeated(700'000));
    QTRY_VERIFY(fixture.folds().isSettled());
    fixture.view->lineNumberView().onFoldToggle(6);
    fixture.view->lineNumberView().onFoldToggle(1);
    QCOMPARE(fixture.folds().placeholders().size(), std::size_t(2));
    fixture.changeFile(begun + u"q\n"_s.repeated(700'000));
    QVERIFY(fixture.document->content() == begun + u"q\n"_s.repeated(700'000));
    QVERIFY(!fixture.folds().isSettled());
    QVERIFY(!fixture.folds().isTextFolded());
}

void KeptViewTest::caretsStayWithTheirText()
{
    Fixture fixture(u"one\ntwo\nthree\n"_s);
    fixture.text().setSelectedRange({8, 5});
    fixture.changeFile(u"zero\none\ntwo\nthree\n"_s);
    QCOMPARE(fixture.text().selectedRange(), (TextRange{13, 5}));
    fixture.changeFile(u"zero\none\ntwo\nthree\nfour\n"_s);
    QCOMPARE(fixture.text().selectedRange(), (TextRange{13, 5}));
    // Where there is another text at both ends, it stays where it stood.
    fixture.changeFile(u"Zero\none\ntwo\nthree\nFour\n"_s);
    QCOMPARE(fixture.text().selectedRange(), (TextRange{13, 5}));
    fixture.changeFile(u"short"_s);
    QCOMPARE(fixture.text().selectedRange(), (TextRange{5, 0}));
}

void KeptViewTest::theTopOfTheScreenStays()
{
    Fixture fixture(numbered(0, 500));
    fixture.text().scrollToY(200 * 17.0 + 5);
    QCoreApplication::processEvents();
    const auto topText = [&] {
        const TextRow row = fixture.text().visibleRows().front();
        return fixture.text().storage().substring(row.range) + u" at %1"_s.arg(row.top);
    };
    const QString before = topText();
    for (const QString& text :
         {u"new\n"_s.repeated(30) + numbered(0, 500), numbered(100, 500), numbered(100, 500) + numbered(0, 50),
          numbered(100, 150) + numbered(170, 500) + numbered(0, 50)}) {
        fixture.changeFile(text);
        QCOMPARE(topText(), before);
    }
    // The caret was not asked to be seen.
    QCOMPARE(fixture.text().selectedRange(), (TextRange{0, 0}));
}

void KeptViewTest::foldsStay_data()
{
    QTest::addColumn<QString>("newText");
    QTest::addColumn<QString>("shown");
    QTest::newRow("the same before and behind")
        << function(u"a"_s) + u"new\n"_s + function(u"b"_s) << folded(u"a"_s) + u"new\n"_s + folded(u"b"_s);
    QTest::newRow("lines before") << u"new\nnew\n"_s + function(u"a"_s) + function(u"b"_s)
                                  << u"new\nnew\n"_s + folded(u"a"_s) + folded(u"b"_s);
    QTest::newRow("lines behind") << function(u"a"_s) + function(u"b"_s) + u"new\n"_s
                                  << folded(u"a"_s) + folded(u"b"_s) + u"new\n"_s;
    QTest::newRow("within a body") << function(u"a"_s) + function(u"b"_s, 5) << folded(u"a"_s) + folded(u"b"_s);
    QTest::newRow("one of them gone") << function(u"a"_s) << folded(u"a"_s);
    QTest::newRow("nothing of it left") << u"another text\n"_s << u"another text\n"_s;
}

void KeptViewTest::foldsStay()
{
    QFETCH(QString, newText);
    QFETCH(QString, shown);
    Fixture fixture(function(u"a"_s) + function(u"b"_s));
    fixture.view->lineNumberView().onFoldToggle(5);
    fixture.view->lineNumberView().onFoldToggle(1);
    QCOMPARE(fixture.text().text(), folded(u"a"_s) + folded(u"b"_s));
    fixture.changeFile(newText);
    QCOMPARE(fixture.document->content(), newText);
    QCOMPARE(fixture.text().text(), shown);
    QVERIFY(!fixture.document->isModified());
}

void KeptViewTest::undoingBringsBackTheTextBehindTheFold()
{
    const QString before = function(u"a"_s) + function(u"b"_s);
    Fixture fixture(before);
    fixture.view->lineNumberView().onFoldToggle(5);
    fixture.changeFile(function(u"a"_s) + function(u"b"_s, 9));
    QCOMPARE(fixture.text().text(), function(u"a"_s) + folded(u"b"_s));
    fixture.text().undo();
    QCOMPARE(fixture.document->content(), before);
}

void KeptViewTest::randomChangesAndUndoGiveEachTextAgain()
{
    test::RandomText random;
    QList<QString> texts{function(u"a"_s) + numbered(0, 20) + function(u"b"_s, 4)};
    Fixture fixture(texts.constFirst());
    for (int round = 0; round < 30; ++round) {
        QString text = texts.constLast();
        const TextRange range = random.range(text.size());
        text.replace(range.location, range.length, random.below(3) == 0 ? function(u"c"_s, 3) : random.text(6));
        if (text == texts.constLast()) {
            continue;
        }
        fixture.changeFile(text);
        QCOMPARE(fixture.document->content(), text);
        texts.append(text);
        const auto line = qsizetype(1 + random.below(30));
        fixture.view->lineNumberView().onFoldToggle(line);
        QCOMPARE(fixture.document->content(), text);
    }
    while (texts.size() > 1) {
        texts.removeLast();
        fixture.text().undo();
        QCOMPARE(fixture.document->content(), texts.constLast());
    }
    QVERIFY(!fixture.text().editor().canUndo());
}

const kelm::test::Registered<KeptViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace kept_view_test

#include "kept_view_test.moc"
