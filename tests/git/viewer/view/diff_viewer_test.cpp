#include "git/viewer/view/diff_find_line.h"
#include "git/viewer/view/shown_viewer.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/segmented_picker.h"
#include "support/diff_text.h"
#include "support/painted_text.h"
#include "support/test_program.h"

#include <QAccessible>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>

namespace diff_viewer_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

namespace {

using Role = HunkControl::Role;
using Side = SideBySideHunkLines::Side;

/// Files of one small hunk each.
QString manyFiles(int count)
{
    QString text;
    for (int file = 0; file < count; ++file) {
        text += diffOf(u"file%1"_s.arg(file), {{u" a"_s, u"-old word"_s, u"+new word"_s}});
    }
    return text;
}

} // namespace

class DiffViewerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qobject_cast<QApplication*>(QCoreApplication::instance())); }

    void contentIsShownInOneOfThreeWays();
    void summaryCountsFilesAndLines();
    void pickerChoosesTheForm();
    void filesWithoutHunksShowTheirHeader();
    void toggleCollapsesAndOpensAHunk();
    void newParseForgetsWhatWasCollapsed();
    void withoutAnActionThereIsNoButton();
    void actionGetsTheFileAndTheHunksIndex();
    void actionMayReplaceTheText();
    void buttonsAreNamedForScreenReaders();
    void textIsToldToScreenReaders();
    void tabLeadsFromHunkToHunk();
    void tabEntersWhereTheDiffIsScrolledTo();
    void keyboardStaysNextToAHunkThatIsGone();
    void unifiedRowsHaveTheirColours();
    void sidesHaveTheirColours();
    void columnsHaveTheirWidths();
    void hunkButtonsHaveTheirSymbols();
    void toolbarHasItsMeasures();
    void wordsHaveTheirType();
    void selectionIsCopiedWithoutSigns();
    void selectionEndsBetweenCharacters();
    void selectionStaysOnItsSide();
    void scrollingEndsWithTheDrag_data();
    void scrollingEndsWithTheDrag();
    void doubleClickSelectsAWord();
    void everythingIsSelectedAndCopied();
    void longLinesGoOnInTheNextRow();
    void whatIsNotOnScreenCostsNothing();
    void veryLongLinesAreComparedInTheBackground();
    void scrollPositionStaysWhenTheTextOrTheWidthChanges();
    void rawTextIsCopiedAsItStands();
    void keysGoFromHunkToHunk();
    void keysGoFromFileToFile();
    void keysActOnTheHunkOnScreen();
    void menuNamesTheKeys();
    void linesAreSelectedByKey();
    void keysSelectNothingBesideTheLines();
    void hunkIsCopiedWhenNothingIsSelected();
    void collapsedHunkIsCopied();
    void hunkOfRemovedLinesIsCopied();
    void nothingToCopyLeavesTheClipboard();
    void textIsFound();
    void foundTextOpensItsHunk();
    void findLineLeavesTheSheet();
    void longTextIsReadElsewhere();
    void staleHunksOfferNothing();
    void pieceBehindTheLastLineFeedIsNoLine();
};

void DiffViewerTest::contentIsShownInOneOfThreeWays()
{
    ShownViewer shown;
    auto* label = qobject_cast<TextLabel*>(shown.page());
    QVERIFY(label != nullptr);
    QCOMPARE(label->text(), u"No changes"_s);

    shown.viewer.setDiffText(u"no diff\n  at all"_s);
    auto* raw = qobject_cast<QPlainTextEdit*>(shown.page());
    QVERIFY(raw != nullptr);
    QCOMPARE(raw->toPlainText(), u"no diff\n  at all"_s);
    QVERIFY(raw->isReadOnly());
    QVERIFY(raw->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    QCOMPARE(raw->lineWrapMode(), QPlainTextEdit::NoWrap);
    QCOMPARE(raw->document()->documentMargin(), 12.0);

    shown.viewer.setDiffText(diffOf(u"a"_s, {{u"+x"_s}}));
    QCOMPARE(shown.page(), &shown.list());
    shown.viewer.setDiffText({});
    QCOMPARE(shown.page(), label);
}

void DiffViewerTest::summaryCountsFilesAndLines()
{
    ShownViewer shown;
    const auto summary = [&] {
        for (const TextLabel* label : shown.viewer.findChildren<TextLabel*>()) {
            if (label->text().contains(u"file")) {
                return label->text();
            }
        }
        return QString();
    };
    QCOMPARE(summary(), u"0 files   +0 \u22120"_s);
    shown.viewer.setDiffText(diffOf(u"a"_s, {{u"-x"_s, u"+y"_s, u"+z"_s}}));
    QCOMPARE(summary(), u"1 file   +2 \u22121"_s);
    QCOMPARE(shown.viewer.filesSummary(), summary());
}

void DiffViewerTest::pickerChoosesTheForm()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s, u"+y"_s}}));
    auto* picker = shown.viewer.findChild<SegmentedPicker*>();
    QCOMPARE(picker->width(), 220);
    const QList<QRadioButton*> segments = picker->findChildren<QRadioButton*>();
    QCOMPARE(segments.size(), 2);
    QCOMPARE(segments[0]->text(), u"Unified"_s);
    QCOMPARE(segments[1]->text(), u"Side-by-side"_s);
    QVERIFY(segments[0]->isChecked());
    QCOMPARE(shown.viewer.mode(), DiffViewMode::unified);

    QTest::mouseClick(segments[1], Qt::LeftButton, {}, QPoint(90, 4));
    QCOMPARE(shown.viewer.mode(), DiffViewMode::sideBySide);
    QCOMPARE(shown.list().diffLayout().mode(), DiffViewMode::sideBySide);
    QCOMPARE(shown.list().columns().size(), 2U);
    segments[1]->setFocus();
    QTest::keyClick(segments[1], Qt::Key_Left);
    QCOMPARE(shown.viewer.mode(), DiffViewMode::unified);
}

void DiffViewerTest::filesWithoutHunksShowTheirHeader()
{
    ShownViewer shown(u"diff --git a/i.png b/i.png\nBinary files a/i.png and b/i.png differ\n"
                      "diff --git a/old b/new\nsimilarity index 100%\nrename from old\nrename to new\n"
                      "diff --git a/run.sh b/run.sh\nold mode 100644\nnew mode 100755\n"
                      "diff --git a/empty b/empty\nnew file mode 100644\nindex 0000000..e69de29\n"_s);
    const DiffLayout& layout = shown.list().diffLayout();
    QCOMPARE(layout.files().size(), 4);
    for (qsizetype file = 0; file < 4; ++file) {
        QCOMPARE(layout.fileHeight(file), layout.metrics().fileHeader);
    }
    QCOMPARE(layout.files()[1].path, u"new"_s);
    QVERIFY(shown.shownButtons().isEmpty());
    QCOMPARE(shown.viewer.filesSummary(), u"4 files   +0 \u22120"_s);
    // Tab has nowhere to go within.
    shown.list().setFocus();
    QTest::keyClick(&shown.list(), Qt::Key_Tab);
    QVERIFY(!shown.list().hasFocus());
}

void DiffViewerTest::toggleCollapsesAndOpensAHunk()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s, u"+y"_s}, {u" z"_s}}));
    const DiffLayout& layout = shown.list().diffLayout();
    const QUuid id = layout.files()[0].hunks[0].id;
    const qint64 open = layout.height();
    PlainButton* toggle = shown.button(0, 0, Role::toggle);
    PlainButton* below = shown.button(0, 1, Role::toggle);
    const int belowTop = below->y();
    QCOMPARE(toggle->look().symbol, u"chevron.down"_s);

    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(shown.viewer.collapsedHunks(), QSet<QUuid>{id});
    QVERIFY(layout.isCollapsed(0, 0));
    QVERIFY(!layout.isCollapsed(0, 1));
    QCOMPARE(layout.height(), open - 2 * layout.metrics().row);
    QCOMPARE(toggle->look().symbol, u"chevron.right"_s);
    QCOMPARE(below->y(), belowTop - 2 * layout.metrics().row);

    QTest::mouseClick(toggle, Qt::LeftButton);
    QVERIFY(shown.viewer.collapsedHunks().isEmpty());
    QCOMPARE(layout.height(), open);
    QCOMPARE(toggle->look().symbol, u"chevron.down"_s);
}

void DiffViewerTest::newParseForgetsWhatWasCollapsed()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s, u"+y"_s}}));
    const QUuid id = shown.list().diffLayout().files()[0].hunks[0].id;
    shown.viewer.toggleHunk(id);
    // The same text is the same parse.
    shown.viewer.setDiffText(QString(shown.viewer.diffText()));
    QVERIFY(shown.list().diffLayout().isCollapsed(0, 0));

    shown.viewer.setMode(DiffViewMode::sideBySide);
    QVERIFY(!shown.list().diffLayout().isCollapsed(0, 0));
    QVERIFY(shown.list().diffLayout().files()[0].hunks[0].id != id);
    QVERIFY(shown.viewer.collapsedHunks().contains(id));
}

void DiffViewerTest::withoutAnActionThereIsNoButton()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s}, {u"+y"_s}}));
    QCOMPARE(shown.shownButtons().size(), 2);
    QVERIFY(shown.button(0, 0, Role::action) == nullptr);
    shown.viewer.setHunkAction(u"Stage hunk"_s, [](const DiffFile&, qsizetype) {});
    QCOMPARE(shown.shownButtons().size(), 4);
    QCOMPARE(shown.button(0, 1, Role::action)->text(), u"Stage hunk"_s);
    shown.viewer.setHunkAction(u"Stage hunk"_s, {});
    QCOMPARE(shown.shownButtons().size(), 2);
}

void DiffViewerTest::actionGetsTheFileAndTheHunksIndex()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s}}) + diffOf(u"b"_s, {{u"-x"_s}, {u"+y"_s}}));
    QList<std::pair<QString, qsizetype>> calls;
    shown.viewer.setHunkAction(u"Stage hunk"_s, [&](const DiffFile& file, qsizetype hunk) {
        calls.append({file.path, hunk});
    });
    QTest::mouseClick(shown.button(1, 1, Role::action), Qt::LeftButton);
    QTest::mouseClick(shown.button(0, 0, Role::action), Qt::LeftButton);
    QCOMPARE(calls, (QList<std::pair<QString, qsizetype>>{{u"b"_s, 1}, {u"a"_s, 0}}));
}

void DiffViewerTest::actionMayReplaceTheText()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s}, {u"+y"_s}}));
    QString path;
    shown.viewer.setHunkAction(u"Stage hunk"_s, [&](const DiffFile& file, qsizetype) {
        shown.viewer.setDiffText({});
        path = file.path;
    });
    QTest::mouseClick(shown.button(0, 1, Role::action), Qt::LeftButton);
    QCOMPARE(path, u"a"_s);
    QVERIFY(shown.shownButtons().isEmpty());
}

void DiffViewerTest::buttonsAreNamedForScreenReaders()
{
    ShownViewer shown(diffOf(u"a.txt"_s, {{u"-x"_s}}));
    shown.viewer.setHunkAction(u"Unstage hunk"_s, [](const DiffFile&, qsizetype) {});
    const auto name = [](PlainButton* button) {
        return QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name);
    };
    PlainButton* toggle = shown.button(0, 0, Role::toggle);
    PlainButton* action = shown.button(0, 0, Role::action);
    QCOMPARE(name(toggle), u"Collapse hunk @@ -1,9 +1,9 @@ section 0 of a.txt"_s);
    QCOMPARE(name(action), u"Unstage hunk @@ -1,9 +1,9 @@ section 0 of a.txt"_s);
    QCOMPARE(action->toolTip(), u"Apply just this hunk to the index"_s);
    QVERIFY(QAccessible::queryAccessibleInterface(toggle)->state().focusable);
    QTest::mouseClick(toggle, Qt::LeftButton);
    QCOMPARE(name(toggle), u"Expand hunk @@ -1,9 +1,9 @@ section 0 of a.txt"_s);
    // A screen reader presses it without a mouse.
    QAccessible::queryAccessibleInterface(toggle)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    QTRY_VERIFY(shown.viewer.collapsedHunks().isEmpty());
}

void DiffViewerTest::textIsToldToScreenReaders()
{
    for (const DiffViewMode mode : allDiffViewModes) {
        ShownViewer shown(manyFiles(60), mode);
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&shown.list());
        QVERIFY(accessible->state().readOnly);
        QAccessibleTextInterface* text = accessible->textInterface();
        QVERIFY(text != nullptr);
        const QString whole = text->text(0, text->characterCount());
        QVERIFY(
            whole.startsWith(u"file0\n@@ -1,9 +1,9 @@ section 0\na\nremoved: old word\nadded: new word\nfile1\n"_s));

        const int word = static_cast<int>(whole.indexOf(u"word\nfile1"));
        const QRect letter = text->characterRect(word);
        const QPoint place = shown.pointOf({0, 0, mode == DiffViewMode::unified ? 2 : 1, 4});
        QVERIFY(letter.contains(shown.list().viewport()->mapToGlobal(place + QPoint(2, 0))));
        QCOMPARE(text->offsetAtPoint(letter.center() - QPoint(2, 0)), word);

        text->addSelection(word, word + 4);
        QCOMPARE(shown.list().selectedText(), u"word"_s);
        int start = 0;
        int end = 0;
        text->selection(0, &start, &end);
        QCOMPARE(start, word);
        QCOMPARE(end, word + 4);
        text->removeSelection(0);
        QCOMPARE(text->selectionCount(), 0);

        text->scrollToSubstring(static_cast<int>(whole.indexOf(u"file59")), 0);
        QVERIFY(shown.button(59, 0, Role::toggle) != nullptr);
        const QUuid last = shown.list().diffLayout().files()[59].hunks[0].id;
        shown.viewer.toggleHunk(last);
        QVERIFY(text->text(0, text->characterCount()).endsWith(u"file59\n@@ -1,9 +1,9 @@ section 0\n"_s));
    }
}

void DiffViewerTest::tabLeadsFromHunkToHunk()
{
    ShownViewer shown(manyFiles(60));
    shown.viewer.setHunkAction(u"Stage hunk"_s, [](const DiffFile&, qsizetype) {});
    shown.list().setFocus();
    QVERIFY(shown.list().hasFocus());
    for (qsizetype file = 0; file < 60; ++file) {
        for (const Role role : {Role::toggle, Role::action}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            PlainButton* button = shown.button(file, 0, role);
            QVERIFY(button != nullptr);
            QVERIFY(button->hasFocus());
            QVERIFY(shown.list().viewport()->rect().contains(button->geometry()));
        }
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(!shown.list().isAncestorOf(QApplication::focusWidget()));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(shown.list().hasFocus());

    shown.list().verticalScrollBar()->setValue(0);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QVERIFY(shown.list().diffLayout().isCollapsed(0, 0));
    QVERIFY(shown.button(0, 0, Role::toggle)->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(shown.button(0, 0, Role::toggle)->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(shown.list().hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(!shown.list().hasFocus());
}

void DiffViewerTest::tabEntersWhereTheDiffIsScrolledTo()
{
    ShownViewer shown(manyFiles(60));
    const DiffLayout& layout = shown.list().diffLayout();
    shown.list().verticalScrollBar()->setValue(static_cast<int>(layout.fileTop(30)));
    shown.list().setFocus();
    QTest::keyClick(&shown.list(), Qt::Key_Tab);
    QVERIFY(shown.button(30, 0, Role::toggle)->hasFocus());
    // The button keeps the keyboard while it is scrolled away, and Tab goes on from it.
    shown.list().verticalScrollBar()->setValue(0);
    QVERIFY(shown.button(30, 0, Role::toggle)->hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(shown.button(31, 0, Role::toggle)->hasFocus());
}

void DiffViewerTest::keyboardStaysNextToAHunkThatIsGone()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s}, {u"+y"_s}}));
    shown.viewer.setHunkAction(
        u"Stage hunk"_s, [&](const DiffFile&, qsizetype) { shown.viewer.setDiffText(diffOf(u"a"_s, {{u"-x"_s}})); });
    shown.button(0, 1, Role::action)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCOMPARE(shown.list().diffLayout().files()[0].hunks.size(), 1);
    QVERIFY(shown.button(0, 0, Role::action)->hasFocus());
}

void DiffViewerTest::unifiedRowsHaveTheirColours()
{
    ShownViewer shown(
        diffOf(u"a"_s, {{u" same"_s, u"-let x = 1"_s, u"+let y = 1"_s, u"+more"_s, u"\\ No newline"_s, u" last"_s}}));
    const QColor base = shown.list().palette().color(QPalette::Base);
    const QColor removed = over(base, Tint(SystemColor::red).at(0.1));
    const QColor added = over(base, Tint(SystemColor::green).at(0.1));
    const auto rowColor = [&](qsizetype entry) {
        return shown.colorAt(shown.pointOf({0, 0, entry, 0}) + QPoint(600, 7));
    };
    QVERIFY(isNear(rowColor(0), base));
    QVERIFY(isNear(rowColor(1), removed));
    QVERIFY(isNear(rowColor(2), added));
    QVERIFY(isNear(rowColor(3), added));
    QVERIFY(isNear(rowColor(4), over(base, Tint(SystemColor::gray).at(0.05))));

    // Below the letters, where only the ground is: the word that changed, and one that did not.
    const auto wordColor = [&](qsizetype entry, qsizetype unit) {
        return shown.colorAt(shown.pointOf({0, 0, entry, unit}) + QPoint(1, 7));
    };
    QVERIFY(isNear(wordColor(1, 4), over(removed, Tint(SystemColor::red).at(0.35))));
    QVERIFY(isNear(wordColor(1, 0), removed));
    QVERIFY(isNear(wordColor(2, 4), over(added, Tint(SystemColor::green).at(0.35))));
    QVERIFY(isNear(wordColor(2, 0), added));
    QVERIFY(isNear(wordColor(3, 0), added));

    const DiffLayout& layout = shown.list().diffLayout();
    const auto headerColor = [&](qint64 top) { return shown.colorAt(QPoint(400, int(top) + 3)); };
    QVERIFY(isNear(headerColor(layout.fileTop(0)), over(base, Tint(SystemColor::secondaryLabel).at(0.08))));
    QVERIFY(isNear(headerColor(layout.hunkTop(0, 0)), over(base, Tint(SystemColor::blue).at(0.06))));
}

void DiffViewerTest::sidesHaveTheirColours()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-let x = 1"_s, u"-gone"_s, u"+let y = 1"_s, u" last"_s}}),
                      DiffViewMode::sideBySide);
    const QColor base = shown.list().palette().color(QPalette::Base);
    const auto colorAt = [&](qsizetype entry, qsizetype unit, Side side) {
        return shown.colorAt(shown.pointOf({0, 0, entry, unit}, side) + QPoint(1, 7));
    };
    QVERIFY(isNear(colorAt(0, 4, Side::oldSide), over(base, Tint(SystemColor::red).at(0.35))));
    QVERIFY(isNear(colorAt(0, 4, Side::newSide), over(base, Tint(SystemColor::green).at(0.35))));
    QVERIFY(isNear(colorAt(0, 0, Side::oldSide), base));
    QVERIFY(isNear(colorAt(0, 0, Side::newSide), base));
    QVERIFY(isNear(colorAt(1, 0, Side::oldSide), base));

    const std::vector<DiffColumn>& columns = shown.list().columns();
    const int top = int(shown.list().diffLayout().entryTop(0, 0, 1)) + 14;
    // The number's ground is there where a line is, and not in an empty cell.
    QVERIFY(isNear(shown.colorAt(QPoint(int(columns[0].left) + 3, top)),
                   over(base, Tint(SystemColor::secondaryLabel).at(0.04))));
    QVERIFY(isNear(shown.colorAt(QPoint(int(columns[1].left) + 3, top)), base));
}

void DiffViewerTest::columnsHaveTheirWidths()
{
    const std::vector<DiffColumn> unified = diffColumns(DiffViewMode::unified, 12, 512);
    QCOMPARE(unified.size(), 1U);
    QCOMPARE(unified[0].signLeft, 12.0 + 36 + 36);
    QCOMPARE(unified[0].bodyLeft, 12.0 + 36 + 36 + 16);

    const std::vector<DiffColumn> sides = diffColumns(DiffViewMode::sideBySide, 12, 513);
    QCOMPARE(sides.size(), 2U);
    QCOMPARE(sides[0].right - sides[0].left, 250.0);
    QCOMPARE(sides[1].right - sides[1].left, 250.0);
    QCOMPARE(sides[1].left - sides[0].right, 1.0);
    for (const DiffColumn& column : sides) {
        QCOMPARE(column.signLeft, column.left + 36 + 4);
        QCOMPARE(column.bodyLeft, column.left + 36 + 18);
        QCOMPARE(column.bodyRight, column.right - 10);
    }
}

void DiffViewerTest::hunkButtonsHaveTheirSymbols()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s}}));
    shown.viewer.setHunkAction(u"Stage hunk"_s, [](const DiffFile&, qsizetype) {});
    const ButtonLook& toggle = shown.button(0, 0, Role::toggle)->look();
    QCOMPARE(toggle.symbol, u"chevron.down"_s);
    QCOMPARE(toggle.symbolSize, 10);
    QVERIFY(toggle.ground == Tint::clear());
    const ButtonLook& action = shown.button(0, 0, Role::action)->look();
    QCOMPARE(action.symbol, u"plus.circle"_s);
    QCOMPARE(action.textSize, 10);
    QVERIFY(action.ground == Tint::clear());
    // The header's padding is 10: what is drawn of both starts and ends there.
    const QRect shownToggle = shown.button(0, 0, Role::toggle)->geometry();
    QCOMPARE(shownToggle.left() + toggle.padding.left(), int(shown.list().columns().front().left) + 10);
    const QRect shownAction = shown.button(0, 0, Role::action)->geometry();
    QCOMPARE(shownAction.right() + 1 - action.padding.right(), int(shown.list().columns().back().right) - 10);
}

void DiffViewerTest::toolbarHasItsMeasures()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s, u"+y"_s}}));
    auto* picker = shown.viewer.findChild<SegmentedPicker*>();
    const auto labels = shown.viewer.findChildren<TextLabel*>();
    const auto summary = std::find_if(labels.begin(), labels.end(), [&](const TextLabel* label) {
        return label->text() == shown.viewer.filesSummary();
    });
    QVERIFY(summary != labels.end());
    const QRect left(picker->mapTo(&shown.viewer, QPoint()), picker->size());
    const QRect right((*summary)->mapTo(&shown.viewer, QPoint()), (*summary)->size());
    QCOMPARE(left.left(), 12);
    QCOMPARE(right.right() + 1, shown.viewer.width() - 12);
    QVERIFY(right.left() > left.right() + 100);
    const QWidget* toolbar = picker->parentWidget();
    QCOMPARE(toolbar->y(), 0);
    QCOMPARE(toolbar->height(), 6 + std::max(left.height(), right.height()) + 6);
    // Then a divider, then the content.
    QCOMPARE(shown.list().mapTo(&shown.viewer, QPoint()).y(), toolbar->height() + 1);
    const QImage picture = (*summary)->grab().toImage();
    const QColor ground = shown.viewer.palette().color(QPalette::Window);
    QVERIFY(isText(ink(picture, picture.rect(), ground), (*summary)->text(), style::monospaced(10), Tint::secondary(),
                   ground));
}

void DiffViewerTest::wordsHaveTheirType()
{
    ShownViewer shown;
    const QWidget* page = shown.page();
    const QImage picture = shown.page()->grab().toImage();
    const QColor ground = page->palette().color(QPalette::Base);
    const QRect words = inkRect(picture, picture.rect(), ground);
    QVERIFY(isText(ink(picture, picture.rect(), ground), u"No changes"_s, style::monospaced(12), Tint::secondary(),
                   ground));
    // In the middle.
    const QPoint off = words.center() - picture.rect().center();
    QVERIFY(off.manhattanLength() <= 4);

    shown.viewer.setDiffText(u"plain words"_s);
    const QFont font = shown.page()->font();
    QCOMPARE(font.families(), style::monospaced(12).families());
    QCOMPARE(font.pixelSize(), 12);
}

void DiffViewerTest::selectionIsCopiedWithoutSigns()
{
    ShownViewer shown(diffOf(u"a"_s, {{u" first"_s, u"-second"_s, u"+third 가나"_s}}));
    shown.drag(shown.pointOf({0, 0, 0, 2}), shown.pointOf({0, 0, 2, 7}));
    QCOMPARE(shown.list().selectedText(), u"rst\nsecond\nthird 가"_s);
    QTest::keyClick(&shown.list(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"rst\nsecond\nthird 가"_s);

    // Up to another place with Shift, and away with a click.
    QTest::mouseClick(shown.list().viewport(), Qt::LeftButton, Qt::ShiftModifier, shown.pointOf({0, 0, 1, 3}));
    QCOMPARE(shown.list().selectedText(), u"rst\nsec"_s);
    QTest::mouseClick(shown.list().viewport(), Qt::LeftButton, {}, shown.pointOf({0, 0, 1, 3}));
    QCOMPARE(shown.list().selectedText(), QString());
}

void DiffViewerTest::selectionEndsBetweenCharacters()
{
    // Two consonants that join are one character, wherever in it the pointer is.
    const QString line = u"aक्षb"_s;
    ShownViewer shown(diffOf(u"a"_s, {{u' ' + line}}));
    const QPoint start = shown.pointOf({0, 0, 0, 0});
    const QPoint end = shown.pointOf({0, 0, 0, line.size()});
    const QStringList whole{QString(), u"a"_s, u"aक्ष"_s, line};
    for (int x = start.x(); x <= end.x(); ++x) {
        shown.drag(start, QPoint(x, start.y()));
        QVERIFY2(whole.contains(shown.list().selectedText()), qPrintable(shown.list().selectedText()));
    }
    QCOMPARE(shown.list().selectedText(), line);
}

void DiffViewerTest::selectionStaysOnItsSide()
{
    ShownViewer shown(diffOf(u"a"_s, {{u" first"_s, u"-second"_s, u"+third"_s, u"+fourth"_s}}),
                      DiffViewMode::sideBySide);
    shown.drag(shown.pointOf({0, 0, 0, 0}, Side::oldSide), shown.pointOf({0, 0, 1, 5}, Side::newSide));
    QCOMPARE(shown.list().selectedText(), u"first\nsecond"_s);
    shown.drag(shown.pointOf({0, 0, 0, 0}), shown.pointOf({0, 0, 2, 6}));
    QCOMPARE(shown.list().selectedText(), u"first\nthird\nfourth"_s);
}

void DiffViewerTest::scrollingEndsWithTheDrag_data()
{
    QTest::addColumn<QString>("end");
    for (const char* end : {"release", "menu", "move without the button", "other files"}) {
        QTest::newRow(end) << QString::fromLatin1(end);
    }
}

void DiffViewerTest::scrollingEndsWithTheDrag()
{
    QFETCH(QString, end);
    ShownViewer shown(manyFiles(200));
    DiffList& list = shown.list();
    QWidget* const viewport = list.viewport();
    const QPoint start = shown.pointOf({0, 0, 1, 1});
    const QPoint below(start.x(), viewport->height() + 1);
    const auto move = [&](Qt::MouseButtons buttons) {
        QMouseEvent event(QEvent::MouseMove, below, viewport->mapToGlobal(below), Qt::NoButton, buttons, {});
        QCoreApplication::sendEvent(viewport, &event);
    };
    QTest::mousePress(viewport, Qt::LeftButton, {}, start);
    move(Qt::LeftButton);
    QTRY_VERIFY(list.scrolledTo() > 0);
    if (end == u"release") {
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, below);
    } else if (end == u"menu") {
        QContextMenuEvent event(QContextMenuEvent::Mouse, start, viewport->mapToGlobal(start));
        QCoreApplication::sendEvent(viewport, &event);
        list.findChild<QMenu*>()->close();
    } else if (end == u"move without the button") {
        move(Qt::NoButton);
    } else {
        shown.viewer.setDiffText(manyFiles(100));
        QTRY_VERIFY(!shown.viewer.isReading());
    }
    const qint64 scrolled = list.scrolledTo();
    // Longer than several steps of the scrolling.
    QTest::qWait(150);
    QCOMPARE(list.scrolledTo(), scrolled);
    // Only a press begins another.
    if (end != u"release") {
        move(Qt::LeftButton);
        QTest::qWait(150);
        QCOMPARE(list.scrolledTo(), scrolled);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, below);
    }
}

void DiffViewerTest::doubleClickSelectsAWord()
{
    ShownViewer shown(diffOf(u"a"_s, {{u" some words here"_s}}));
    QTest::mouseDClick(shown.list().viewport(), Qt::LeftButton, {}, shown.pointOf({0, 0, 0, 7}));
    QCOMPARE(shown.list().selectedText(), u"words"_s);
}

void DiffViewerTest::everythingIsSelectedAndCopied()
{
    ShownViewer shown(diffOf(u"a.txt"_s, {{u" one"_s, u"+two"_s}}));
    shown.list().setFocus();
    QTest::keyClick(&shown.list(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&shown.list(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"a.txt\none\ntwo"_s);
}

void DiffViewerTest::longLinesGoOnInTheNextRow()
{
    const QString line = u"word "_s.repeated(60);
    ShownViewer shown(diffOf(u"a"_s, {{u" "_s + line, u"-"_s + line + u"old"_s, u"+"_s + line + u"new"_s}}));
    const DiffLayout& layout = shown.list().diffLayout();
    QVERIFY(layout.entryRows(0, 0, 0) > 1);
    const int start = shown.pointOf({0, 0, 1, 0}).y();
    const QPoint end = shown.pointOf({0, 0, 1, 301});
    QCOMPARE(end.y() - start, (layout.entryRows(0, 0, 1) - 1) * layout.metrics().row);
    QVERIFY(end.x() < shown.list().viewport()->width());
    // The changed word stands in the last row.
    const QColor removed = over(shown.list().palette().color(QPalette::Base), Tint(SystemColor::red).at(0.1));
    QVERIFY(isNear(shown.colorAt(end + QPoint(1, 7)), over(removed, Tint(SystemColor::red).at(0.35))));
    QCOMPARE(shown.list().horizontalScrollBar()->maximum(), 0);

    const qsizetype rows = layout.entryRows(0, 0, 0);
    shown.viewer.resize(400, 500);
    QTRY_VERIFY(layout.entryRows(0, 0, 0) > rows);
}

void DiffViewerTest::whatIsNotOnScreenCostsNothing()
{
    ShownViewer shown(manyFiles(2000));
    shown.list().viewport()->repaint();
    QVERIFY(shown.list().comparedPairs() > 0);
    QVERIFY(shown.list().comparedPairs() < 20);
    QVERIFY(shown.viewer.findChildren<PlainButton*>().size() < 60);
    shown.list().verticalScrollBar()->setValue(shown.list().verticalScrollBar()->maximum());
    shown.list().viewport()->repaint();
    QVERIFY(shown.list().comparedPairs() < 40);
    QVERIFY(shown.viewer.findChildren<PlainButton*>().size() < 60);
    QVERIFY(shown.button(1999, 0, Role::toggle) != nullptr);
    QVERIFY(shown.button(0, 0, Role::toggle) == nullptr);
}

void DiffViewerTest::veryLongLinesAreComparedInTheBackground()
{
    const QString line = u"word, "_s.repeated(180'000);
    ShownViewer shown(diffOf(u"a"_s, {{u"-old "_s + line, u"+new "_s + line}}));
    const QColor removed = over(shown.list().palette().color(QPalette::Base), Tint(SystemColor::red).at(0.1));
    const QPoint word = shown.pointOf({0, 0, 0, 0}) + QPoint(1, 7);
    QTRY_VERIFY(isNear(shown.colorAt(word), over(removed, Tint(SystemColor::red).at(0.35))));
    QVERIFY(isNear(shown.colorAt(shown.pointOf({0, 0, 0, 5}) + QPoint(1, 7)), removed));
}

void DiffViewerTest::scrollPositionStaysWhenTheTextOrTheWidthChanges()
{
    ShownViewer shown(manyFiles(60));
    const DiffLayout& layout = shown.list().diffLayout();
    shown.list().verticalScrollBar()->setValue(static_cast<int>(layout.fileTop(30)) + 5);
    const qint64 before = shown.list().scrolledTo();
    shown.viewer.setDiffText(manyFiles(61));
    QCOMPARE(shown.list().scrolledTo(), before);

    // Lines above that take more rows push nothing away.
    const QString line = u"word "_s.repeated(60);
    shown.viewer.setDiffText(diffOf(u"a"_s, {{u" "_s + line, u" "_s + line}}) + manyFiles(60));
    shown.list().verticalScrollBar()->setValue(static_cast<int>(layout.fileTop(30)) + 5);
    const qint64 wide = layout.fileTop(30);
    shown.viewer.resize(400, 500);
    QTRY_VERIFY(layout.fileTop(30) > wide);
    QCOMPARE(shown.list().scrolledTo(), layout.fileTop(30) + 5);
}

void DiffViewerTest::rawTextIsCopiedAsItStands()
{
    ShownViewer shown(u"no\u00a0break\nnext"_s);
    auto* raw = qobject_cast<QPlainTextEdit*>(shown.page());
    raw->selectAll();
    raw->copy();
    QCOMPARE(QGuiApplication::clipboard()->text(), u"no\u00a0break\nnext"_s);
}

void DiffViewerTest::keysGoFromHunkToHunk()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s}, {u"+y"_s}}) + manyFiles(60));
    DiffList& list = shown.list();
    list.setFocus();
    const auto current = [&] { return list.currentHunk().value_or(HunkControl{-1, -1, Role::toggle}); };
    const auto at = [](qsizetype file, qsizetype hunk) { return HunkControl{file, hunk, Role::toggle}; };
    QTest::keyClick(&list, Qt::Key_N);
    QCOMPARE(current(), at(0, 0));
    QTest::keyClick(&list, Qt::Key_F7);
    QCOMPARE(current(), at(0, 1));
    QTest::keyClick(&list, Qt::Key_N);
    QCOMPARE(current(), at(1, 0));
    QTest::keyClick(&list, Qt::Key_P);
    QCOMPARE(current(), at(0, 1));
    QTest::keyClick(&list, Qt::Key_F7, Qt::ShiftModifier);
    QTest::keyClick(&list, Qt::Key_P);
    QCOMPARE(current(), at(0, 0));
    for (int hunk = 0; hunk < 80; ++hunk) {
        QTest::keyClick(&list, Qt::Key_N);
    }
    QCOMPARE(current(), at(60, 0));
    QVERIFY(shown.button(60, 0, Role::toggle) != nullptr);
    // Somebody who scrolls away has left it.
    list.verticalScrollBar()->setValue(0);
    QCOMPARE(current(), at(0, 0));
}

void DiffViewerTest::keysGoFromFileToFile()
{
    ShownViewer shown(manyFiles(60));
    DiffList& list = shown.list();
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_N, Qt::ShiftModifier);
    QCOMPARE(list.currentHunk()->file, 1);
    QTest::keyClick(&list, Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(list.currentHunk()->file, 2);
    QCOMPARE(list.scrolledTo(), list.diffLayout().fileTop(2) - 6);
    QTest::keyClick(&list, Qt::Key_PageUp, Qt::ControlModifier);
    QTest::keyClick(&list, Qt::Key_P, Qt::ShiftModifier);
    QTest::keyClick(&list, Qt::Key_P, Qt::ShiftModifier);
    QCOMPARE(list.currentHunk()->file, 0);
}

void DiffViewerTest::keysActOnTheHunkOnScreen()
{
    ShownViewer shown(manyFiles(60));
    QList<QString> acted;
    shown.viewer.setHunkAction(
        u"Stage hunk"_s, [&](const DiffFile& file, qsizetype) { acted.append(file.path); },
        [](const DiffFile& file, qsizetype) {
            return HunkHindrance{file.path == u"file1" ? u"No."_s : QString(), {}};
        });
    DiffList& list = shown.list();
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_S);
    QTest::keyClick(&list, Qt::Key_N);
    QTest::keyClick(&list, Qt::Key_N);
    QTest::keyClick(&list, Qt::Key_S);
    QVERIFY(!shown.button(1, 0, Role::action)->isEnabled());
    QTest::keyClick(&list, Qt::Key_N);
    QTest::keyClick(&list, Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(acted, (QList<QString>{u"file0"_s, u"file2"_s}));
    list.verticalScrollBar()->setValue(int(list.diffLayout().fileTop(30)));
    QTest::keyClick(&list, Qt::Key_S);
    QCOMPARE(acted.last(), u"file30"_s);
}

void DiffViewerTest::menuNamesTheKeys()
{
    ShownViewer shown(manyFiles(3));
    int acted = 0;
    shown.viewer.setHunkAction(
        u"Stage hunk"_s, [&](const DiffFile&, qsizetype) { ++acted; },
        [](const DiffFile& file, qsizetype) {
            return HunkHindrance{file.path == u"file1" ? u"No."_s : QString(), {}};
        });
    // A row of the second file's hunk, by which it becomes the current one, and then of the first's.
    for (const qsizetype file : {1, 0}) {
        const QPoint place = shown.pointOf({file, 0, 1, 1});
        QTest::mouseClick(shown.list().viewport(), Qt::LeftButton, {}, place);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, shown.list().viewport()->mapToGlobal(place));
        QApplication::sendEvent(shown.list().viewport(), &event);
        auto* menu = shown.list().findChild<QMenu*>();
        QVERIFY(menu != nullptr);
        QStringList entries;
        for (const QAction* action : menu->actions()) {
            entries.append(action->text() + u'|' + action->shortcut().toString());
        }
        QCOMPARE(entries, (QStringList{u"Copy|Ctrl+C"_s, u"Select All|Ctrl+A"_s, u"|"_s, u"Next Hunk|F7"_s,
                                       u"Previous Hunk|Shift+F7"_s, u"Stage hunk|Ctrl+Return"_s}));
        QCOMPARE(menu->actions().last()->isEnabled(), file == 0);
        menu->actions().last()->trigger();
        menu->close();
        QTRY_VERIFY(shown.list().findChild<QMenu*>() == nullptr);
    }
    QCOMPARE(acted, 1);
}

void DiffViewerTest::linesAreSelectedByKey()
{
    ShownViewer shown(diffOf(u"a"_s, {{u" one"_s, u"-two"_s, u"+three"_s}, {u" four"_s}}));
    DiffList& list = shown.list();
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(list.selectedText(), u"one"_s);
    QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(list.selectedText(), u"one\ntwo\nthree\nfour"_s);
    QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(list.selectedText(), u"one\ntwo\nthree\nfour"_s);
    QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
    QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
    QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(list.selectedText(), u"one"_s);
    QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(list.selectedText(), u"a\none"_s);
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"a\none"_s);
}

void DiffViewerTest::keysSelectNothingBesideTheLines()
{
    for (const DiffViewMode mode : allDiffViewModes) {
        // The first line is taken for a header, so that the hunk has none.
        ShownViewer shown(diffOf(u"a.sql"_s, {{u"--- old"_s, u"+-- new"_s}}) + diffOf(u"b"_s, {{u" one"_s}}), mode);
        DiffList& list = shown.list();
        const DiffLayout& layout = list.diffLayout();
        QCOMPARE(layout.entryCount(0, 0), 0);
        list.setFocus();
        QTest::keyClick(&list, Qt::Key_A, Qt::ControlModifier);
        const QString everything = list.selectedText();
        QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(list.selectedText(), everything);

        const QPoint below(100, list.viewport()->height() - 5);
        QVERIFY(below.y() > layout.height());
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, below);
        QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(list.selectedText(), QString());
        QTest::keyClick(&list, Qt::Key_Up, Qt::ShiftModifier);
        QCOMPARE(list.selectedText(), u"one"_s);

        const QPoint header(300, int(layout.hunkTop(0, 0) - list.scrolledTo()) + layout.metrics().hunkHeader / 2);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, header);
        QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(list.selectedText(), u"b"_s);
    }
}

void DiffViewerTest::hunkIsCopiedWhenNothingIsSelected()
{
    ShownViewer shown(diffOf(u"a"_s, {{u" one"_s}, {u"-two"_s, u"+three"_s}}));
    shown.list().setFocus();
    QTest::keyClick(&shown.list(), Qt::Key_N);
    QTest::keyClick(&shown.list(), Qt::Key_N);
    QTest::keyClick(&shown.list(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"two\nthree"_s);
}

void DiffViewerTest::collapsedHunkIsCopied()
{
    ShownViewer shown(diffOf(u"a"_s, {{u" one"_s, u"-two"_s}, {u" three"_s}}));
    DiffList& list = shown.list();
    list.setFocus();
    QGuiApplication::clipboard()->setText(u"before"_s);
    QTest::keyClick(&list, Qt::Key_N);
    shown.viewer.toggleHunk(list.diffLayout().files()[0].hunks[0].id);
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"one\ntwo"_s);
    // Also where what is selected is not to be seen.
    list.select({{0, 0, 0, 0}, {0, 0, 0, 3}, Side::newSide});
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"one\ntwo"_s);
}

void DiffViewerTest::hunkOfRemovedLinesIsCopied()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-one"_s, u"-two"_s}}), DiffViewMode::sideBySide);
    DiffList& list = shown.list();
    list.setFocus();
    QGuiApplication::clipboard()->setText(u"before"_s);
    QTest::keyClick(&list, Qt::Key_N);
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"one\ntwo"_s);
    // By line as well.
    QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(list.selectedText(), u"one"_s);
}

void DiffViewerTest::nothingToCopyLeavesTheClipboard()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"+"_s}, {u" x"_s}}));
    shown.list().setFocus();
    QGuiApplication::clipboard()->setText(u"before"_s);
    QTest::keyClick(&shown.list(), Qt::Key_N);
    QTest::keyClick(&shown.list(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"before"_s);
}

void DiffViewerTest::textIsFound()
{
    ShownViewer shown(manyFiles(60));
    DiffList& list = shown.list();
    list.setFocus();
    DiffFindLine& line = shown.viewer.findLine();
    QVERIFY(!line.isVisible());
    QTest::keyClick(&list, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(line.isVisible());
    QVERIFY(line.field().hasFocus());
    QTest::keyClicks(&line.field(), u"NEW"_s);
    QCOMPARE(list.selection()->anchor, (DiffTextPlace{0, 0, 2, 0}));
    QCOMPARE(list.selectedText(), u"new"_s);
    QTest::keyClick(&line.field(), Qt::Key_Return);
    QCOMPARE(list.selection()->anchor.file, 1);
    QTest::keyClick(&line.field(), Qt::Key_F3);
    QCOMPARE(list.selection()->anchor.file, 2);
    QTest::keyClick(&line.field(), Qt::Key_F3, Qt::ShiftModifier);
    QTest::keyClick(&line.field(), Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClick(&line.field(), Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(list.selection()->anchor.file, 59);
    QVERIFY(list.scrolledTo() > list.diffLayout().fileTop(40));
    QCOMPARE(line.told(), u"Went on at the other end"_s);
    QTest::keyClicks(&line.field(), u"x"_s);
    QCOMPARE(line.told(), u"Not found"_s);
    QVERIFY(!list.selection());
}

void DiffViewerTest::foundTextOpensItsHunk()
{
    ShownViewer shown(diffOf(u"a"_s, {{u"-x"_s}, {u"+there"_s}}));
    QTest::mouseClick(shown.button(0, 1, Role::toggle), Qt::LeftButton);
    QVERIFY(shown.list().diffLayout().isCollapsed(0, 1));
    shown.viewer.showFindLine();
    QTest::keyClicks(&shown.viewer.findLine().field(), u"there"_s);
    QVERIFY(!shown.list().diffLayout().isCollapsed(0, 1));
    QCOMPARE(shown.list().selectedText(), u"there"_s);
}

void DiffViewerTest::findLineLeavesTheSheet()
{
    ShownViewer shown(manyFiles(3));
    shown.viewer.showFindLine();
    QTest::keyClick(&shown.viewer.findLine().field(), Qt::Key_Escape);
    QVERIFY(!shown.viewer.findLine().isVisible());
    QVERIFY(shown.viewer.isVisible());
    QVERIFY(shown.list().hasFocus());
}

void DiffViewerTest::longTextIsReadElsewhere()
{
    QStringList lines(50'000, u"+some words in a line of a long text"_s);
    ShownViewer shown;
    QSignalSpy isShown(&shown.viewer, &DiffViewer::shown);
    shown.viewer.setDiffText(diffOf(u"a"_s, {lines}));
    QVERIFY(shown.viewer.diffText().size() > DiffViewer::longestAtOnce);
    QVERIFY(shown.viewer.isReading());
    QCOMPARE(qobject_cast<TextLabel*>(shown.page())->text(), u"Reading the diff…"_s);
    // What comes of a text that is shown no more is dropped.
    shown.viewer.setDiffText(diffOf(u"b"_s, {lines}));
    // The window may change meanwhile.
    shown.viewer.resize(400, 400);
    QVERIFY(isShown.wait(kelm::test::patience));
    QVERIFY(!shown.viewer.isReading());
    QCOMPARE(isShown.count(), 1);
    QCOMPARE(shown.page(), &shown.list());
    QCOMPARE(shown.viewer.filesSummary(), u"1 file   +50000 \u22120"_s);
    QCOMPARE(shown.list().diffLayout().files()[0].path, u"b"_s);
    ShownViewer small(diffOf(u"b"_s, {lines.first(10)}));
    small.viewer.resize(400, 400);
    QCOMPARE(shown.list().diffLayout().columns(), small.list().diffLayout().columns());
    // And a short one is there at once.
    shown.viewer.setDiffText(diffOf(u"c"_s, {{u"+x"_s}}));
    QVERIFY(!shown.viewer.isReading());
    QCOMPARE(shown.list().diffLayout().files()[0].path, u"c"_s);
}

void DiffViewerTest::staleHunksOfferNothing()
{
    int acted = 0;
    ShownViewer shown(diffOf(u"a"_s, {{u"+x"_s}}));
    shown.viewer.setHunkAction(u"Stage hunk"_s, [&](const DiffFile&, qsizetype) { ++acted; });
    QSignalSpy isShown(&shown.viewer, &DiffViewer::shown);
    shown.viewer.setDiffText(diffOf(u"b"_s, {QStringList(50'000, u"+some words in a line of a long text"_s)}));
    QVERIFY(shown.viewer.isReading());
    QTest::mouseClick(shown.button(0, 0, Role::action), Qt::LeftButton);
    QCOMPARE(acted, 0);
    QVERIFY(isShown.wait(kelm::test::patience));
    QTest::mouseClick(shown.button(0, 0, Role::action), Qt::LeftButton);
    QCOMPARE(acted, 1);
}

void DiffViewerTest::pieceBehindTheLastLineFeedIsNoLine()
{
    for (const DiffViewMode mode : allDiffViewModes) {
        ShownViewer shown(diffOf(u"a"_s, {{u" x"_s, u" "_s}}), mode);
        const DiffLayout& layout = shown.list().diffLayout();
        // The parser counts it, and the hunk's patch holds it.
        QCOMPARE(layout.files()[0].hunks[0].lines.size(), 4);
        QCOMPARE(layout.entryCount(0, 0), 2);
        // Of a text that ends without a line feed nothing is taken.
        QString text = diffOf(u"a"_s, {{u" x"_s, u" "_s}});
        text.chop(1);
        shown.viewer.setDiffText(text);
        QCOMPARE(layout.entryCount(0, 0), 2);
        text.chop(1);
        shown.viewer.setDiffText(text);
        QCOMPARE(layout.entryCount(0, 0), 1);
    }
}

const kelm::test::Registered<DiffViewerTest> registered(kelm::test::Toolkit::widgets);

} // namespace diff_viewer_test

#include "diff_viewer_test.moc"
