#include "support/naive_lines.h"
#include "support/random_text.h"
#include "support/shown_text_view.h"
#include "support/test_program.h"
#include "text/boundaries/text_boundaries.h"
#include "text/view/text_view_keys.h"

#include <QClipboard>
#include <QMimeData>
#include <QtTest>

namespace text_view_random_test {

using namespace kelm;
using test::ShownTextView;

namespace {

/// A plain string that every single replacement is applied to, beside the text as the view's own operations should have
/// left it.
class Model : public QObject
{
public:
    explicit Model(ShownTextView& view) : text(view.text())
    {
        connect(&view.storage(), &TextStorage::willReplace, this, [this](TextRange range, const TextTree& replacement) {
            text.replace(range.location, range.length, replacement.toString());
            ++replacements;
        });
    }

    QString text;
    int replacements = 0;
};

/// Each selection's text replaced by `with`.
QString replacedInSelections(const ShownTextView& view, const QString& with)
{
    QString text(view.text());
    const auto& all = view.editor().selections().all();
    for (auto selection = all.rbegin(); selection != all.rend(); ++selection) {
        text.replace(selection->range().location, selection->range().length, with);
    }
    return text;
}

void checkIndex(const TextStorage& storage)
{
    const test::NaiveLines fresh(storage.text());
    QCOMPARE(storage.lines().lineCount(), fresh.lineCount());
    for (qsizetype line = 0; line < fresh.lineCount(); ++line) {
        QCOMPARE(storage.lines().start(line), fresh.start(line));
        QCOMPARE(storage.lines().end(line), fresh.end(line));
    }
}

void checkRuns(const TextStorage& storage)
{
    qsizetype end = 0;
    for (const ColorRun& run : storage.foreground().runsIn({0, storage.length()})) {
        QVERIFY(run.range.location >= end && !run.range.isEmpty());
        end = run.range.end();
    }
    QVERIFY(end <= storage.length());
}

void checkCarets(const ShownTextView& view)
{
    qsizetype end = -1;
    for (const Selection& selection : view.editor().selections().all()) {
        QVERIFY(selection.range().location > end || (selection.range().location == end && !selection.isCaret()));
        end = selection.range().end();
        QVERIFY(selection.range().location >= 0 && end <= view.text().size());
    }
}

void checkScreen(ShownTextView& view)
{
    const std::vector<TextRow> rows = view.visibleRows();
    QVERIFY(!rows.empty());
    QVERIFY(rows.front().top <= view.textInset().height() + 1);
    for (std::size_t i = 1; i < rows.size(); ++i) {
        QCOMPARE(rows[i].top, rows[i - 1].top + view.textLayout().rowHeight());
        QVERIFY(rows[i].range.location >= rows[i - 1].range.end());
    }
    const qreal last = std::max<qreal>(0, std::ceil(view.pageHeight() - view.viewport()->height()));
    QVERIFY(view.visibleRect().top() >= 0 && view.visibleRect().top() <= last + 1);
}

} // namespace

class TextViewRandomTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomEventsKeepTheViewTrue();

private:
    QPoint randomPoint(ShownTextView& view);
    void mouse(ShownTextView& view);
    void typeText(ShownTextView& view);
    void pressKey(ShownTextView& view);
    void compose(ShownTextView& view);
    void clipboard(ShownTextView& view);
    void dropText(ShownTextView& view);
    void changeView(ShownTextView& view);

    std::unique_ptr<test::RandomText> random_;
};

QPoint TextViewRandomTest::randomPoint(ShownTextView& view)
{
    return {int(random_->below(view.viewport()->width())), int(random_->below(view.viewport()->height()))};
}

void TextViewRandomTest::mouse(ShownTextView& view)
{
    const QString before(view.text().constData(), view.text().size());
    const bool wasComposing = view.isComposing();
    QWidget* target = view.viewport();
    const Qt::KeyboardModifiers modifiers = random_->below(3) == 0   ? Qt::ShiftModifier
                                            : random_->below(3) == 0 ? Qt::ControlModifier
                                                                     : Qt::NoModifier;
    const QPoint from = randomPoint(view);
    if (random_->below(4) == 0) {
        QTest::mouseDClick(target, Qt::LeftButton, modifiers, from);
    } else {
        QTest::mousePress(target, Qt::LeftButton, modifiers, from);
        if (random_->below(2) == 0) {
            const QPoint to = randomPoint(view);
            QMouseEvent move(QEvent::MouseMove, to, target->mapToGlobal(QPointF(to)), Qt::NoButton, Qt::LeftButton,
                             modifiers);
            QCoreApplication::sendEvent(target, &move);
        }
        QTest::mouseRelease(target, Qt::LeftButton, modifiers, from);
    }
    QVERIFY(!view.isComposing());
    if (!wasComposing) {
        QCOMPARE(view.text(), before);
    }
}

void TextViewRandomTest::typeText(ShownTextView& view)
{
    view.commitComposition();
    static const QStringList typed{QStringLiteral("a"), QStringLiteral(" "),  QStringLiteral("\t"),
                                   QStringLiteral("("), QStringLiteral("한"), QStringLiteral("😀")};
    const QString text = typed[random_->below(typed.size())];
    const bool isReturn = random_->below(6) == 0;
    const QString expected = replacedInSelections(view, isReturn ? QStringLiteral("\n") : text);
    QKeyEvent event(QEvent::KeyPress,
                    isReturn        ? Qt::Key_Return
                    : text == u"\t" ? Qt::Key_Tab
                                    : Qt::Key_unknown,
                    {}, isReturn ? QStringLiteral("\r") : text);
    QCoreApplication::sendEvent(&view, &event);
    QCOMPARE(view.text(), expected);
}

void TextViewRandomTest::pressKey(ShownTextView& view)
{
    const auto& actions = keyActions();
    const KeyAction& action = actions[static_cast<std::size_t>(random_->below(qsizetype(actions.size())))];
    const QList<QKeySequence> keys = action.standardKey == QKeySequence::UnknownKey
                                         ? QList<QKeySequence>{action.sequence}
                                         : QKeySequence::keyBindings(action.standardKey);
    if (keys.isEmpty()) {
        return;
    }
    view.commitComposition();
    const QString before(view.text().constData(), view.text().size());
    QTest::keySequence(&view, keys.constFirst());
    if (action.kind == KeyAction::Kind::move || action.kind == KeyAction::Kind::addCaret) {
        QCOMPARE(view.text(), before);
    }
}

void TextViewRandomTest::compose(ShownTextView& view)
{
    if (random_->below(3) == 0) {
        const QString text = random_->text(2);
        view.compose(QString());
        const QString expected = replacedInSelections(view, text);
        if (!text.isEmpty()) {
            view.commitText(text);
            QCOMPARE(view.text(), expected);
        }
        return;
    }
    const QString expected =
        view.isComposing() ? QString(view.text().constData(), view.text().size()) : replacedInSelections(view, {});
    view.compose(QStringLiteral("한글").left(1 + random_->below(2)),
                 {{QInputMethodEvent::Cursor, int(random_->below(3)), 1, QVariant()}});
    QVERIFY(view.isComposing());
    QCOMPARE(view.text(), expected);
    QVERIFY(view.inputMethodQuery(Qt::ImCursorRectangle).toRectF().height() > 0);
}

void TextViewRandomTest::clipboard(ShownTextView& view)
{
    view.commitComposition();
    const QStringList selected = view.editor().selectedTexts();
    switch (random_->below(3)) {
    case 0:
        view.copy();
        break;
    case 1: {
        const QString expected = replacedInSelections(view, {});
        view.cut();
        QCOMPARE(view.text(), expected);
        break;
    }
    default: {
        // Texts grow with every paste; a long one would make the test long.
        if (view.text().size() < 4000) {
            view.paste();
        }
        return;
    }
    }
    if (!selected.isEmpty()) {
        QCOMPARE(QGuiApplication::clipboard()->text(), selected.join(u'\n'));
    }
}

void TextViewRandomTest::dropText(ShownTextView& view)
{
    QMimeData data;
    data.setText(random_->text(4));
    view.commitComposition();
    const QPoint point = randomPoint(view);
    QString expected(view.text().constData(), view.text().size());
    expected.insert(view.placeAt(point).offset, data.text());
    QVERIFY(view.dropFromOutside(data, point));
    QCOMPARE(view.text(), expected);
}

void TextViewRandomTest::changeView(ShownTextView& view)
{
    switch (random_->below(5)) {
    case 0:
        view.resize(int(120 + random_->below(400)), int(60 + random_->below(200)));
        break;
    case 1:
        view.scrollToY(qreal(random_->below(qsizetype(view.pageHeight()) + 1)));
        break;
    case 2:
        view.storage().setForeground(random_->range(view.text().size()), 0xff000000 | QRgb(random_->below(0xffffff)));
        break;
    case 3:
        view.grab();
        break;
    default:
        QCoreApplication::processEvents();
    }
}

void TextViewRandomTest::randomEventsKeepTheViewTrue()
{
    random_ = std::make_unique<test::RandomText>();
    QGuiApplication::clipboard()->clear();
    const QString first = random_->text(200);
    ShownTextView view(QStringLiteral("|"));
    view.storage().setText(QString(first.constData(), first.size()));
    Model model(view);
    using Operation = void (TextViewRandomTest::*)(ShownTextView&);
    const std::vector<Operation> operations{
        &TextViewRandomTest::mouse,     &TextViewRandomTest::typeText, &TextViewRandomTest::typeText,
        &TextViewRandomTest::pressKey,  &TextViewRandomTest::pressKey, &TextViewRandomTest::compose,
        &TextViewRandomTest::clipboard, &TextViewRandomTest::dropText, &TextViewRandomTest::changeView};
    for (int step = 0; step < 4000; ++step) {
        (this->*operations[static_cast<std::size_t>(random_->below(qsizetype(operations.size())))])(view);
        QCOMPARE(view.text(), model.text);
        checkIndex(view.storage());
        checkRuns(view.storage());
        checkCarets(view);
        checkScreen(view);
        if (QTest::currentTestFailed()) {
            qWarning("in step %d", step);
            return;
        }
        if (step % 500 == 499) {
            // All the way back, and to and fro again.
            view.commitComposition();
            const QString last(view.text().constData(), view.text().size());
            int steps = 0;
            for (; view.editor().canUndo(); ++steps) {
                view.undo();
            }
            QCOMPARE(view.text(), first);
            for (; steps > 0; --steps) {
                view.redo();
            }
            QCOMPARE(view.text(), last);
        }
        if (view.text().size() > 6000) {
            view.selectAll();
            QTest::keyClick(&view, Qt::Key_Delete);
        }
    }
}

const kelm::test::Registered<TextViewRandomTest> registered(kelm::test::Toolkit::widgets);

} // namespace text_view_random_test

#include "text_view_random_test.moc"
