#include "support/random_text.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QScopeGuard>
#include <QScreen>
#include <QStyleHints>
#include <QtTest>

namespace text_view_paint_test {

using namespace kelm;
using test::ShownTextView;

namespace {

const QColor paper(250, 250, 240);
const QColor ink(20, 30, 40);
const QColor caretColor(255, 0, 0);

TextViewColors testColors()
{
    TextViewColors colors;
    colors.background = paper;
    colors.text = ink;
    colors.insertionPoint = caretColor;
    colors.selection = QColor(0, 0, 255, 128);
    return colors;
}

/// The viewport as it is painted at a scale; places in it are told in device-independent pixels.
class Picture
{
public:
    explicit Picture(ShownTextView& view, qreal scale = 1)
        : image_(view.viewport()->size() * scale, QImage::Format_RGB32)
    {
        image_.setDevicePixelRatio(scale);
        image_.fill(Qt::magenta);
        view.viewport()->render(&image_);
    }

    QColor at(QPointF point) const { return image_.pixelColor((point * image_.devicePixelRatio()).toPoint()); }

    /// How many pixels of an area satisfy the predicate.
    template <typename Predicate>
    int count(const QRectF& area, Predicate predicate) const
    {
        const qreal scale = image_.devicePixelRatio();
        const QRect pixels =
            QRectF(area.topLeft() * scale, area.size() * scale).toAlignedRect().intersected(image_.rect());
        int found = 0;
        for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
            for (int x = pixels.left(); x <= pixels.right(); ++x) {
                found += predicate(image_.pixelColor(x, y)) ? 1 : 0;
            }
        }
        return found;
    }

    int count(const QRectF& area, const QColor& color) const
    {
        return count(area, [&](const QColor& found) { return found == color; });
    }

    bool isAll(const QRectF& area, const QColor& color) const
    {
        return count(area, [&](const QColor& found) { return found != color; }) == 0;
    }

    QRectF whole() const { return {QPointF(), QSizeF(image_.size()) / image_.devicePixelRatio()}; }

private:
    QImage image_;
};

QColor blended(const QColor& over, const QColor& under)
{
    const auto mix = [&](int top, int bottom) { return (top * over.alpha() + bottom * (255 - over.alpha())) / 255; };
    return {mix(over.red(), under.red()), mix(over.green(), under.green()), mix(over.blue(), under.blue())};
}

bool nearTo(const QColor& a, const QColor& b)
{
    return qAbs(a.red() - b.red()) <= 2 && qAbs(a.green() - b.green()) <= 2 && qAbs(a.blue() - b.blue()) <= 2;
}

/// Where a letter stands, without its edges.
QRectF letter(ShownTextView& view, qsizetype offset)
{
    const QRectF from = view.caretRect({offset, false});
    const QRectF to = view.caretRect({offset + 1, true});
    return QRectF(from.topLeft(), to.bottomRight()).adjusted(1, 1, -1, -1);
}

struct ColoredView : ShownTextView
{
    explicit ColoredView(const QString& marked, QSize size = {400, 200}) : ShownTextView(marked, size)
    {
        setColors(testColors());
    }
};

} // namespace

class TextViewPaintTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setCursorFlashTime(200); }
    void theBackgroundFillsTheView_data() { scales(); }
    void theBackgroundFillsTheView();
    void lettersHaveTheirColors_data() { scales(); }
    void lettersHaveTheirColors();
    void theCaretIsTwoPixelsOfItsColor_data() { scales(); }
    void theCaretIsTwoPixelsOfItsColor();
    void theCaretIsWholeAtTheEdges();
    void theCaretBlinks();
    void theCaretStaysWhenThePlatformWantsNoBlinkingAnyLonger();
    void theScreenShowsWhatAWholePaintingWould();
    void theCaretStandsStillWhileTyping();
    void noCaretWithoutFocusOrInAReadOnlyView();
    void everyCaretIsPainted();
    void aSelectionIsSeenThroughATranslucentColor_data() { scales(); }
    void aSelectionIsSeenThroughATranslucentColor();
    void aSelectedLineEndGoesToTheEdge();
    void aSelectionOverRowsIsWhole();
    void rightToLeftTextIsSelectedWhereItStands();
    void highlightsLieBehindTheLetters();
    void highlightsMoveWithTheText();
    void backgroundRunsArePainted();
    void compositionsAreUnderlined();
    void compositionsShowTheirOwnCaret();
    void onlyWhatIsDirtyIsPainted();
    void manySelectionsCostOnlyWhatIsSeen();

private:
    static void scales();
};

void TextViewPaintTest::scales()
{
    QTest::addColumn<qreal>("scale");
    QTest::newRow("1x") << 1.0;
    QTest::newRow("1.5x") << 1.5;
    QTest::newRow("2x") << 2.0;
}

void TextViewPaintTest::theBackgroundFillsTheView()
{
    QFETCH(qreal, scale);
    ColoredView view(QString{});
    view.setReadOnly(true);
    const Picture picture(view, scale);
    QVERIFY(picture.isAll(picture.whole(), paper));
}

void TextViewPaintTest::lettersHaveTheirColors()
{
    QFETCH(qreal, scale);
    ColoredView view(QStringLiteral("MMM|"));
    view.storage().setForeground({1, 1}, 0xff008000);
    const Picture picture(view, scale);
    const auto darkest = [&](qsizetype offset) {
        QColor found = Qt::white;
        picture.count(letter(view, offset), [&](const QColor& color) {
            if (color.lightness() < found.lightness()) {
                found = color;
            }
            return true;
        });
        return found;
    };
    QVERIFY(darkest(0).green() < 120 && darkest(0).lightness() < 90);
    const QColor green = darkest(1);
    QVERIFY(green.green() > green.red() + 60 && green.green() > green.blue() + 60);
    QVERIFY(darkest(2).lightness() < 90);
    // And nothing of them stands beside the text.
    QVERIFY(picture.isAll({200, 0, 100, 200}, paper));
}

void TextViewPaintTest::theCaretIsTwoPixelsOfItsColor()
{
    QFETCH(qreal, scale);
    ColoredView view(QStringLiteral("ab|  "));
    const Picture picture(view, scale);
    const QRectF caret = view.caretRect({2, false});
    const auto pixels = static_cast<int>(std::round(2 * scale) * std::round(caret.height() * scale));
    const int found = picture.count(picture.whole(), caretColor);
    QVERIFY2(qAbs(found - pixels) <= 2 * caret.height() * scale * (scale == 1.5 ? 1 : 0),
             qPrintable(QStringLiteral("%1 instead of %2").arg(found).arg(pixels)));
    QVERIFY(picture.count(caret.adjusted(-2, 0, 2, 0), caretColor) == found);
}

void TextViewPaintTest::theCaretIsWholeAtTheEdges()
{
    ColoredView view(QStringLiteral("|ab"));
    view.setTextInset({0, 0});
    const auto whole = static_cast<int>(2 * view.textLayout().rowHeight());
    QCOMPARE(Picture(view).count(Picture(view).whole(), caretColor), whole);
    // Blanks hang over the right edge; their caret does not.
    view.set(QString(200, u' ') + u'|');
    QCOMPARE(Picture(view).count(Picture(view).whole(), caretColor), whole);
}

void TextViewPaintTest::theCaretBlinks()
{
    ColoredView view(QStringLiteral("ab|"));
    const auto isOn = [&] { return Picture(view).count(Picture(view).whole(), caretColor) > 0; };
    const int flash = QGuiApplication::styleHints()->cursorFlashTime();
    QVERIFY(flash > 0);
    QVERIFY(isOn());
    QTRY_VERIFY(!isOn());
    QTRY_VERIFY(isOn());
}

void TextViewPaintTest::theCaretStaysWhenThePlatformWantsNoBlinkingAnyLonger()
{
    ColoredView view(QStringLiteral("ab|"));
    const auto isOn = [&] { return Picture(view).count(Picture(view).whole(), caretColor) > 0; };
    QTRY_VERIFY(!isOn());
    const int flash = QGuiApplication::styleHints()->cursorFlashTime();
    QApplication::setCursorFlashTime(0);
    const auto restore = qScopeGuard([flash] { QApplication::setCursorFlashTime(flash); });
    QVERIFY(isOn());
}

void TextViewPaintTest::theCaretStandsStillWhileTyping()
{
    ColoredView view(QStringLiteral("ab|"));
    const auto isOn = [&] { return Picture(view).count(Picture(view).whole(), caretColor) > 0; };
    QTRY_VERIFY(!isOn());
    QTest::keyClicks(&view, QStringLiteral("x"));
    QVERIFY(isOn());
    QTRY_VERIFY(!isOn());
    QTest::keyClick(&view, Qt::Key_Left);
    QVERIFY(isOn());
}

void TextViewPaintTest::noCaretWithoutFocusOrInAReadOnlyView()
{
    ColoredView view(QStringLiteral("ab|"));
    const auto carets = [&] { return Picture(view).count(Picture(view).whole(), caretColor); };
    QVERIFY(carets() > 0);
    view.setReadOnly(true);
    QCOMPARE(carets(), 0);
    view.setReadOnly(false);
    QVERIFY(carets() > 0);
    QLineEdit other(&view);
    other.setGeometry(300, 100, 50, 20);
    other.show();
    other.setFocus();
    QCOMPARE(carets(), 0);
    view.setFocus();
    QVERIFY(carets() > 0);
}

void TextViewPaintTest::everyCaretIsPainted()
{
    ColoredView view(QStringLiteral("a|b\n|\ncd|\n[e]f"));
    const Picture picture(view);
    const auto one = static_cast<int>(2 * view.textLayout().rowHeight());
    QCOMPARE(picture.count(picture.whole(), caretColor), 3 * one);
    for (const qsizetype offset : {1, 3, 6}) {
        QCOMPARE(picture.count(view.caretRect({offset, false}).adjusted(-2, 0, 2, 0), caretColor), one);
    }
}

void TextViewPaintTest::aSelectionIsSeenThroughATranslucentColor()
{
    QFETCH(qreal, scale);
    ColoredView view(QStringLiteral("a[   ]b"));
    const Picture picture(view, scale);
    const QColor expected = blended(testColors().selection, paper);
    const QRectF selected(view.caretRect({1, false}).topLeft(), view.caretRect({4, false}).bottomRight());
    const QRectF inner = selected.adjusted(2, 0, -2, 0);
    // Painted once, whatever row or run comes after it.
    QCOMPARE(picture.count(inner, [&](const QColor& color) { return !nearTo(color, expected); }), 0);
    QCOMPARE(picture.at({selected.right() + 12, selected.center().y()}), paper);
    QCOMPARE(picture.at({selected.center().x(), selected.bottom() + 3}), paper);
}

void TextViewPaintTest::aSelectedLineEndGoesToTheEdge()
{
    ColoredView view(QStringLiteral("a[b\n\n]cd"));
    const Picture picture(view);
    const QColor expected = blended(testColors().selection, paper);
    const auto isSelected = [&](qsizetype offsetInLine, qreal x) {
        return nearTo(picture.at({x, view.caretRect({offsetInLine, false}).center().y()}), expected);
    };
    QVERIFY(isSelected(0, 200));
    QVERIFY(isSelected(3, 200));
    QVERIFY(isSelected(3, 20));
    QVERIFY(!isSelected(4, 200));
    // A selection that ends before the line's end ends there.
    view.set(QStringLiteral("a[b]\ncd"));
    QVERIFY(Picture(view).isAll({200, 0, 100, 100}, paper));
}

void TextViewPaintTest::aSelectionOverRowsIsWhole()
{
    ColoredView view(QStringLiteral("[") + QString(200, u' ').replace(99, 1, u'x').replace(40, 1, u'x') +
                     QStringLiteral("x]"));
    const std::vector<TextRow> rows = view.visibleRows();
    const Picture picture(view);
    const QColor expected = blended(testColors().selection, paper);
    for (std::size_t row = 0; row + 1 < rows.size(); ++row) {
        QVERIFY(nearTo(picture.at({15, rows[row].top + 3}), expected));
        QVERIFY(nearTo(picture.at({300, rows[row].top + 3}), expected));
    }
}

void TextViewPaintTest::rightToLeftTextIsSelectedWhereItStands()
{
    ColoredView view(QStringLiteral("אבג[דהו]\nab אבג cd"));
    const QColor expected = blended(testColors().selection, paper);
    const auto countIn = [&](qsizetype from, qsizetype to) {
        // The letters of a right-to-left range stand between the carets of its ends, the later one to the left.
        const QRectF a = view.caretRect({from, false});
        const QRectF b = view.caretRect({to, false});
        const QRectF area(QPointF(std::min(a.x(), b.x()) + 1, a.top()),
                          QPointF(std::max(a.x(), b.x()) - 1, a.bottom()));
        const Picture picture(view);
        return picture.count(area, [&](const QColor& color) { return nearTo(color, expected); });
    };
    QVERIFY(countIn(3, 6) > 50);
    QCOMPARE(countIn(0, 3), 0);
    // A selection from the line before reaches the row from its logical start, which is on the right.
    view.set(QStringLiteral("x[y\nאבג]דהו"));
    QVERIFY(countIn(3, 6) > 50);
    QCOMPARE(countIn(6, 9), 0);
    // Both directions in one row: from "b" into the Hebrew word.
    view.set(QStringLiteral("a[b א]בג cd"));
    QVERIFY(countIn(1, 2) > 10);
    QVERIFY(countIn(7, 9) == 0);
}

void TextViewPaintTest::highlightsLieBehindTheLetters()
{
    ColoredView view(QStringLiteral("a  b  c|"));
    view.setHighlights({{{1, 2}, QColor(Qt::yellow)}, {{4, 2}, QColor(Qt::cyan)}});
    const Picture picture(view);
    const auto between = [&](qsizetype offset) { return view.caretRect({offset + 1, false}).center(); };
    QCOMPARE(picture.at(between(1)), QColor(Qt::yellow));
    QCOMPARE(picture.at(between(4)), QColor(Qt::cyan));
    QVERIFY(picture.count(letter(view, 0), QColor(Qt::yellow)) == 0);
    view.setHighlights({});
    QCOMPARE(Picture(view).at(between(1)), paper);
}

void TextViewPaintTest::highlightsMoveWithTheText()
{
    ColoredView view(QStringLiteral("|one two"));
    view.setHighlights({{{4, 3}, QColor(Qt::yellow)}});
    QTest::keyClicks(&view, QStringLiteral("xy"));
    QCOMPARE(view.highlights().front().range, (TextRange{6, 3}));
    // What is typed right before or behind is not part of what was found.
    view.storage().replace({9, 0}, u"z");
    QCOMPARE(view.highlights().front().range, (TextRange{6, 3}));
    view.storage().replace({6, 0}, u"z");
    QCOMPARE(view.highlights().front().range, (TextRange{7, 3}));
    view.storage().replace({5, 20}, u"");
    QVERIFY(view.highlights().front().range.isEmpty());
}

void TextViewPaintTest::backgroundRunsArePainted()
{
    ColoredView view(QStringLiteral("a  b|"));
    view.storage().setBackground({1, 2}, 0xff00ff00);
    QCOMPARE(Picture(view).at(view.caretRect({2, false}).center()), QColor(0, 255, 0));
    view.storage().setBackground({1, 2}, {});
    QCOMPARE(Picture(view).at(view.caretRect({2, false}).center()), paper);
}

void TextViewPaintTest::compositionsAreUnderlined()
{
    ColoredView view(QStringLiteral("a|"));
    const auto below = [&] {
        const QRectF start = view.caretRect({1, false});
        return Picture(view).count({start.x(), start.top() + start.height() * 0.75, 14, start.height() * 0.25},
                                   [](const QColor& color) { return color.lightness() < 150 && color != caretColor; });
    };
    QCOMPARE(below(), 0);
    view.compose(QStringLiteral("--"));
    QVERIFY(below() >= 12);
    view.compose(QString());
    QCOMPARE(below(), 0);
}

void TextViewPaintTest::compositionsShowTheirOwnCaret()
{
    ColoredView view(QStringLiteral("a|b"));
    view.compose(QStringLiteral("xy"), {{QInputMethodEvent::Cursor, 1, 1, QVariant()}});
    const auto one = static_cast<int>(2 * view.textLayout().rowHeight());
    const auto carets = [&] { return Picture(view).count(Picture(view).whole(), caretColor); };
    QVERIFY(carets() > one / 2);
    QTRY_COMPARE(carets(), 0);
    QTRY_VERIFY(carets() > one / 2);
    view.compose(QStringLiteral("xy"), {{QInputMethodEvent::Cursor, 1, 0, QVariant()}});
    QCOMPARE(carets(), 0);
}

void TextViewPaintTest::onlyWhatIsDirtyIsPainted()
{
    // A blinking caret asks for a few pixels.
    ColoredView view(QStringLiteral("line\n").repeated(10) + u'|');
    class Watch : public QObject
    {
    public:
        QRegion painted;
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::Paint) {
                painted += static_cast<QPaintEvent*>(event)->region();
            }
            return false;
        }
    } watch;
    QCoreApplication::processEvents();
    view.viewport()->installEventFilter(&watch);
    QTRY_VERIFY(!watch.painted.isEmpty());
    QVERIFY(watch.painted.boundingRect().width() < 10);
    QVERIFY(watch.painted.boundingRect().height() < 2 * view.textLayout().rowHeight());
}

void TextViewPaintTest::manySelectionsCostOnlyWhatIsSeen()
{
    ShownTextView view(QStringLiteral("line\n").repeated(20'000));
    std::vector<Selection> carets;
    for (qsizetype line = 0; line < 20'000; ++line) {
        carets.push_back(Selection::caret({line * 5, false}));
    }
    view.editor().setSelections(SelectionSet(carets));
    const quint64 before = view.textLayout().layoutsMade();
    view.grab();
    // A whole turn of the blink.
    QTest::qWait(QGuiApplication::styleHints()->cursorFlashTime());
    QVERIFY(view.textLayout().layoutsMade() - before < 100);
}

void TextViewPaintTest::theScreenShowsWhatAWholePaintingWould()
{
    QApplication::setCursorFlashTime(0);
    test::RandomText random;
    ShownTextView view(
        QStringLiteral("one\ntwo three four five six seven eight nine ten eleven twelve thirteen\n\n").repeated(12));
    QVERIFY(view.isShown());
    view.setColors(testColors());
    static constexpr Qt::Key keys[] = {Qt::Key_Left,      Qt::Key_Right,    Qt::Key_Up,    Qt::Key_Down,
                                       Qt::Key_Backspace, Qt::Key_Delete,   Qt::Key_End,   Qt::Key_Home,
                                       Qt::Key_Return,    Qt::Key_PageDown, Qt::Key_PageUp};
    for (int round = 0; round < 600; ++round) {
        // Several between two paintings, as under load.
        for (qsizetype count = 1 + random.below(3); count > 0; --count) {
            switch (random.below(8)) {
            case 0:
            case 1:
            case 2:
                view.editor().insertText(QStringList{QStringLiteral("a"), QStringLiteral("wide words "),
                                                     QStringLiteral("한"), QStringLiteral("gÅj")}[random.below(4)],
                                         EditKind::typing);
                break;
            case 3:
                view.undo();
                break;
            case 4:
                view.storage().setForeground({random.below(view.text().size()), random.below(30)}, 0xff3366cc);
                break;
            case 5:
                view.setSelectedRange({random.below(view.text().size()), random.below(4) == 0 ? 5 : 0});
                break;
            default:
                QTest::keyClick(&view, keys[random.below(qsizetype(std::size(keys)))],
                                random.below(5) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
                break;
            }
        }
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        const QImage screen = view.screen()->grabWindow(view.winId()).toImage().convertToFormat(QImage::Format_RGB32);
        const QImage whole = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QRect text(view.viewport()->pos(), view.viewport()->size());
        QCOMPARE(screen.size(), whole.size());
        if (screen.copy(text) != whole.copy(text)) {
            screen.save(QStringLiteral("screen.png"));
            whole.save(QStringLiteral("whole.png"));
            QFAIL(qPrintable(QStringLiteral("round %1").arg(round)));
        }
    }
    QApplication::setCursorFlashTime(200);
}

const kelm::test::Registered<TextViewPaintTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_paint_test

#include "text_view_paint_test.moc"
