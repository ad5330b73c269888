#include "platform/process/orderly_end.h"
#include "platform/text/platform_words.h"
#include "support/test_program.h"
#include "text/view/find_bar.h"
#include "workbench/view/bottom_panel.h"
#include "workbench/view/controls.h"
#include "workbench/view/overlay_layer.h"
#include "workbench/view/sidebar_view.h"
#include "workbench/view/tool_bar_view.h"
#include "workbench/view/window_fixture.h"

#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace compositions_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString syllable = u"글"_s;

struct Fixture : WindowFixture
{
    Fixture()
    {
        state.createNewTab();
        state.createNewTab();
        turnQueue();
    }

    template <typename Field>
    static Field* visibleField(const QWidget& part)
    {
        for (auto* field : part.findChildren<Field*>()) {
            if (field->isVisible() && field->isEnabled()) {
                return field;
            }
        }
        return nullptr;
    }

    /// Puts the keyboard on a field.
    QWidget* fieldNamed(const QString& name)
    {
        QWidget* field = &text();
        if (name == u"the find field") {
            text().showFindBar();
            field = visibleField<QLineEdit>(text().findBar());
        } else if (name == u"the terminal") {
            state.setShowBottomPanel(true);
            turnQueue();
            field = visibleField<TextView>(*window.bottomPanel());
        } else if (name == u"the search field") {
            window.sidebar()->select(SidebarTab::search);
            field = visibleField<QLineEdit>(*window.sidebar());
        } else if (name == u"a message") {
            // Of the kind that the commit message is.
            field = new QPlainTextEdit(window.sidebar());
            field->show();
        } else if (name == u"quick open") {
            state.setShowQuickOpen(true);
            turnQueue();
            field = QApplication::focusWidget();
        }
        field->setFocus();
        return field;
    }

    static QString textOf(const QWidget* field)
    {
        if (const auto* line = qobject_cast<const QLineEdit*>(field)) {
            return line->text();
        }
        if (const auto* message = qobject_cast<const QPlainTextEdit*>(field)) {
            return message->toPlainText();
        }
        return static_cast<const TextView*>(field)->text();
    }

    static void compose(QWidget* field, const QString& preedit)
    {
        QInputMethodEvent event(preedit, {});
        QCoreApplication::sendEvent(field, &event);
    }
    static void commit(QWidget* field, const QString& committed)
    {
        QInputMethodEvent event;
        event.setCommitString(committed);
        QCoreApplication::sendEvent(field, &event);
    }

    /// What a method does once it has heard that its composition has ended: first nothing is composed, then it commits.
    void echo() const
    {
        if (QWidget* field = QApplication::focusWidget()) {
            compose(field, {});
            commit(field, syllable);
        }
    }
};

} // namespace

class CompositionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void eachEndsOnceWhereItWasBegun_data();
    void eachEndsOnceWhereItWasBegun();
    void buttonsFindWhatIsComposed_data();
    void buttonsFindWhatIsComposed();
    void whatIsCommittedLateGoesWhereItWasComposed();
    void whatIsComposedElsewhereEndsTheFirst();
    void nothingElseIsDropped();
    void aFieldThatGoesTakesItsCompositionAlong();
    void theEndOfTheProgramFindsWhatIsComposed();
};

void CompositionsTest::eachEndsOnceWhereItWasBegun_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("how");
    for (const QString& field : {u"the text"_s, u"the find field"_s, u"the terminal"_s, u"the search field"_s,
                                 u"a message"_s, u"quick open"_s}) {
        for (const QString& how : {u"a click in the text"_s, u"a click in the field"_s, u"the right button"_s,
                                   u"the toolbar"_s, u"the focus"_s, u"save"_s, u"a new tab"_s, u"an overlay"_s}) {
            QTest::addRow("%s, %s", qPrintable(field), qPrintable(how)) << field << how;
        }
    }
}

void CompositionsTest::eachEndsOnceWhereItWasBegun()
{
    QFETCH(QString, field);
    QFETCH(QString, how);
    Fixture fixture;
    const std::shared_ptr<Document> document = fixture.state.currentDocument();
    fixture.text().storage().setText(u"abc"_s);
    const QPointer<QWidget> target = fixture.fieldNamed(field);
    QVERIFY(target->hasFocus());
    const bool inText = target == &fixture.text();
    TextView& text = fixture.text();
    const QString before = Fixture::textOf(target);
    Fixture::compose(target, u"ㄱ"_s);
    Fixture::compose(target, syllable);
    // The platform's part commits before another widget has the keyboard.
    const auto platformCommits = [&] {
        if (inText ? text.isComposing() : Fixture::textOf(target) == before) {
            Fixture::commit(target, syllable);
        }
    };
    if (how == u"a click in the text") {
        QTest::mousePress(text.viewport(), Qt::LeftButton, {}, {6, text.viewport()->height() - 10});
        QTest::mouseRelease(text.viewport(), Qt::LeftButton, {}, {6, text.viewport()->height() - 10});
    } else if (how == u"a click in the field") {
        auto* view = qobject_cast<QAbstractScrollArea*>(target.data());
        QTest::mouseClick(view != nullptr ? view->viewport() : target.data(), Qt::LeftButton, {}, {8, 8});
    } else if (how == u"the right button") {
        auto* view = qobject_cast<QAbstractScrollArea*>(target.data());
        QTest::mousePress(view != nullptr ? view->viewport() : target.data(), Qt::RightButton, {}, {8, 8});
    } else if (how == u"the toolbar") {
        QTest::mouseClick(visibleButton(fixture.window.toolbar(), inPlatformWords(u"Toggle Minimap (⇧⌘M)"_s)),
                          Qt::LeftButton);
    } else if (how == u"the focus") {
        platformCommits();
        fixture.window.toolbar().findChild<PlainButton*>()->setFocus();
    } else if (how == u"save") {
        // Asks for a place, and is given none.
        platformCommits();
        fixture.command(Command::save)->trigger();
    } else if (how == u"a new tab") {
        platformCommits();
        fixture.state.createNewTab();
    } else {
        platformCommits();
        fixture.state.setShowGoToLine(true);
    }
    fixture.turnQueue();
    fixture.echo();
    fixture.turnQueue();
    QVERIFY(target);
    QCOMPARE(Fixture::textOf(target).count(syllable), before.count(syllable) + 1);
    QCOMPARE(document->content().count(syllable), inText ? 1 : 0);
    QVERIFY(!text.isComposing());
    for (const auto& each : fixture.state.documents()) {
        QVERIFY(each == document || each->content().isEmpty());
    }
}

void CompositionsTest::buttonsFindWhatIsComposed_data()
{
    QTest::addColumn<QString>("field");
    for (const QString& field :
         {u"the text"_s, u"the find field"_s, u"the terminal"_s, u"the search field"_s, u"a message"_s}) {
        QTest::newRow(qPrintable(field)) << field;
    }
}

void CompositionsTest::buttonsFindWhatIsComposed()
{
    QFETCH(QString, field);
    Fixture fixture;
    QWidget* target = fixture.fieldNamed(field);
    PlainButton button({}, fixture.window.sidebar());
    button.setFixedSize(20, 20);
    button.show();
    QString found;
    connect(&button, &PlainButton::clicked, &button, [&] { found = Fixture::textOf(target); });
    Fixture::compose(target, syllable);
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(found.count(syllable), 1);
    fixture.echo();
    QCOMPARE(Fixture::textOf(target).count(syllable), 1);
}

void CompositionsTest::whatIsCommittedLateGoesWhereItWasComposed()
{
    Fixture fixture;
    auto* field = static_cast<QLineEdit*>(fixture.fieldNamed(u"the search field"_s));
    Fixture::compose(field, syllable);
    Fixture::commit(&fixture.text(), syllable);
    QCOMPARE(field->text(), syllable);
    QCOMPARE(fixture.state.currentDocument()->content(), QString());
    fixture.echo();
    QCOMPARE(field->text(), syllable);
}

void CompositionsTest::whatIsComposedElsewhereEndsTheFirst()
{
    Fixture fixture;
    auto* field = static_cast<QLineEdit*>(fixture.fieldNamed(u"the search field"_s));
    Fixture::compose(field, syllable);
    Fixture::compose(&fixture.text(), u"ㅎ"_s);
    Fixture::compose(&fixture.text(), u"한"_s);
    Fixture::commit(&fixture.text(), u"한"_s);
    QCOMPARE(field->text(), syllable);
    QCOMPARE(fixture.state.currentDocument()->content(), u"한"_s);
}

void CompositionsTest::nothingElseIsDropped()
{
    Fixture fixture;
    TextView& text = fixture.text();
    // The same syllable twice, each composed.
    for (int i = 0; i < 2; ++i) {
        Fixture::compose(&text, syllable);
        Fixture::commit(&text, syllable);
    }
    QCOMPARE(text.text(), syllable + syllable);
    // Behind a key a method may commit without composing.
    QTest::keyClicks(&text, u"x"_s);
    Fixture::commit(&text, syllable);
    Fixture::commit(&text, syllable);
    QCOMPARE(text.text(), syllable + syllable + u'x' + syllable + syllable);
    // Only what was committed may come again.
    Fixture::compose(&text, syllable);
    QTest::mouseClick(text.viewport(), Qt::LeftButton, {}, {6, 6});
    Fixture::commit(&text, u"다"_s);
    Fixture::commit(&text, syllable);
    QCOMPARE(text.text().count(syllable), 6);
    QCOMPARE(text.text().count(u'다'), 1);
}

void CompositionsTest::aFieldThatGoesTakesItsCompositionAlong()
{
    Fixture fixture;
    auto field = std::make_unique<QLineEdit>(&fixture.window);
    field->show();
    field->setFocus();
    Fixture::compose(field.get(), syllable);
    field.reset();
    QTest::mouseClick(fixture.text().viewport(), Qt::LeftButton, {}, {6, 6});
    Fixture::compose(&fixture.text(), u"한"_s);
    Fixture::commit(&fixture.text(), u"한"_s);
    QCOMPARE(fixture.state.currentDocument()->content(), u"한"_s);
}

const kelm::test::Registered<CompositionsTest> registered(kelm::test::Toolkit::widgets);

void CompositionsTest::theEndOfTheProgramFindsWhatIsComposed()
{
    Fixture fixture;
    const std::shared_ptr<Document> document = fixture.state.currentDocument();
    fixture.text().setFocus();
    Fixture::compose(&fixture.text(), syllable);
    QCOMPARE(document->content(), QString());
    endInOrder();
    QCOMPARE(document->content(), syllable);
    QVERIFY(document->isModified());
    // The end may have been called off.
    fixture.echo();
    QCOMPARE(document->content(), syllable);
}

} // namespace compositions_test

#include "compositions_test.moc"
