#include "git/panel/view/commit_composer.h"
#include "git/panel/view/credential_status_row.h"
#include "git/panel/view/panel_fixture.h"
#include "git/panel/view/shown_widgets.h"
#include "git/panel/view/source_control_bottom_bar.h"
#include "git/panel/view/source_control_empty_state.h"
#include "git/panel/view/source_control_header.h"
#include "git/panel/view/source_control_tab_bar.h"
#include "git/service/git_transfers.h"
#include "platform/process/process_stop.h"
#include "platform/view/breaking_label.h"
#include "platform/view/confirmation_dialog.h"
#include "platform/view/labels.h"
#include "support/painted_text.h"
#include "support/test_program.h"

namespace source_control_view_symbols_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

/// Which symbols and which type stand around the panel's rows, in which colours and which order.
class SourceControlViewSymbolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theEmptyStateLeadsFromItsSignToItsButtons();
    void thePanelIsAColumn();
    void theHeaderHasTheBranchBeforeItsCounts();
    void conflictsAreOrange();
    void theComposersButtonStandsOut();
    void theHistorysHeaderOffersItsLimit();
    void formsStandInTheirOrder_data();
    void formsStandInTheirOrder();
    void anEditedAddressHasItsButtons();
    void questionsOfferTheirAnswers_data();
    void questionsOfferTheirAnswers();
    void theNetworkHasItsThreeButtons();
    void anErrorIsRedAndIsDismissed();
    void whatIsToldMovesNothing_data();
    void whatIsToldMovesNothing();
};

void SourceControlViewSymbolsTest::initTestCase()
{
    useFixedGitEnvironment();
    style::installOn(*qApp);
}

void SourceControlViewSymbolsTest::theEmptyStateLeadsFromItsSignToItsButtons()
{
    PanelFixture f;
    const QTemporaryDir folder;
    f.app.state.setCurrentProject(QUrl::fromLocalFile(folder.path()));
    f.window.show();
    QVERIFY(QTest::qWaitForWindowActive(&f.window));
    const auto& empty = *f.view.findChild<SourceControlEmptyState*>();
    const QList<SymbolLabel*> symbols = shownIn<SymbolLabel>(empty);
    QCOMPARE(symbols.size(), 1);
    QVERIFY(shows(*symbols[0], u"externaldrive.badge.questionmark"_s, Tint::secondary().at(0.6), 28));
    QStringList texts;
    int lowest = symbols[0]->geometry().bottom();
    for (const WrappedLabel* label : shownIn<WrappedLabel>(empty)) {
        QVERIFY(label->y() > lowest);
        lowest = label->geometry().bottom();
        texts.append(label->text());
    }
    QCOMPARE(texts, (QStringList{u"Not a Git repository"_s, u"Open a folder, or clone one below."_s}));
    QCOMPARE(buttonsIn(empty), (QStringList{u"plus.square.on.square|Initialize Repository"_s,
                                            u"square.and.arrow.down.on.square|Clone Repository…"_s}));
    QVERIFY(shownIn<PlainButton>(empty).first()->y() > lowest);
}

void SourceControlViewSymbolsTest::thePanelIsAColumn()
{
    PanelFixture f;
    f.show();
    for (const SourceControlTab tab : allSourceControlTabs) {
        f.view.setTab(tab);
        const auto placeOf = [&f](const QWidget* part) { return QRect(part->mapTo(&f.view, QPoint()), part->size()); };
        const QList<QRect> places{placeOf(f.view.findChild<SourceControlHeader*>()),
                                  placeOf(f.view.findChild<SourceControlTabBar*>()), placeOf(f.list().parentWidget()),
                                  placeOf(f.view.findChild<SourceControlBottomBar*>())};
        QCOMPARE(places.first().top(), 0);
        QCOMPARE(places.last().bottom(), f.view.height() - 1);
        for (qsizetype i = 0; i < places.size(); ++i) {
            QCOMPARE(places[i].width(), f.view.width());
            // With a divider between, if that.
            QVERIFY(i == 0 || places[i].top() - places[i - 1].bottom() - 1 <= 1);
            QVERIFY(i == 0 || places[i].top() > places[i - 1].bottom());
        }
    }
}

void SourceControlViewSymbolsTest::theHeaderHasTheBranchBeforeItsCounts()
{
    PanelFixture f;
    f.show();
    const auto& header = *f.view.findChild<SourceControlHeader*>();
    const QList<SymbolLabel*> symbols = shownIn<SymbolLabel>(header);
    QCOMPARE(symbols.size(), 1);
    QVERIFY(shows(*symbols[0], u"arrow.triangle.branch"_s, Tint::secondary()));
    QStringList texts;
    for (const TextLabel* label : shownIn<TextLabel>(header)) {
        QVERIFY(label->x() > symbols[0]->geometry().right());
        texts.append(label->text());
    }
    QCOMPARE(texts, (QStringList{u"main"_s, u"↑0 ↓0"_s}));
    QVERIFY(isDrawn(labelOf(header, u"↑0 ↓0"_s), Tint::secondary(), style::interfaceFont(11)));
    const QList<PlainButton*> buttons = shownIn<PlainButton>(header);
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons[0]->toolTip(), u"Refresh"_s);
    QVERIFY(buttons[0]->look().ground == Tint::clear());
    // A spacer stands before it.
    QVERIFY(buttons[0]->x() > labelOf(header, u"↑0 ↓0"_s)->geometry().right() + 50);
}

void SourceControlViewSymbolsTest::conflictsAreOrange()
{
    PanelFixture f;
    f.repo.makeConflictingBranches();
    f.repo.tryGit({u"merge"_s, u"side"_s});
    f.show();
    const auto& header = *f.view.findChild<SourceControlHeader*>();
    const QList<SymbolLabel*> symbols = shownIn<SymbolLabel>(header);
    QCOMPARE(symbols.size(), 2);
    QCOMPARE(symbols[1]->toolTip(), u"Merge conflicts in working tree"_s);
    QVERIFY(shows(*symbols[1], u"exclamationmark.triangle.fill"_s, SystemColor::orange));
    TextLabel* const count = labelOf(f.view, u"1 conflicted"_s);
    QVERIFY(count != nullptr);
    const QWidget& bar = *count->parentWidget();
    const QList<SymbolLabel*> signs = shownIn<SymbolLabel>(bar);
    QCOMPARE(signs.size(), 1);
    QVERIFY(shows(*signs[0], u"exclamationmark.triangle.fill"_s, SystemColor::orange));
    QVERIFY(signs[0]->x() < count->x());
    QCOMPARE(buttonsIn(bar), QStringList{u"|Abort Merge"_s});
    QVERIFY(shownIn<PlainButton>(bar).first()->x() > count->geometry().right());
    // It stands above the message.
    const auto* composer = f.view.findChild<CommitComposer*>();
    QVERIFY(bar.mapTo(&f.view, QPoint()).y() < composer->mapTo(&f.view, QPoint()).y());
}

void SourceControlViewSymbolsTest::theComposersButtonStandsOut()
{
    PanelFixture f;
    f.window.resize(420, 600);
    f.show();
    const auto& composer = *f.view.findChild<CommitComposer*>();
    QCOMPARE(composer.findChild<CommitMessageField*>()->placeholderText(), u"Commit message"_s);
    QCOMPARE(buttonsIn(composer), (QStringList{u"|Commit"_s, u"|Stage All"_s}));
    const QList<PlainButton*> buttons = shownIn<PlainButton>(composer);
    QVERIFY(buttons[0]->look().ground == prominentLook().ground);
    QVERIFY(!(buttons[1]->look().ground == prominentLook().ground));
    const QList<QCheckBox*> boxes = shownIn<QCheckBox>(composer);
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes[0]->text(), u"Amend last"_s);
    QVERIFY(boxes[0]->x() > buttons[0]->x() && boxes[0]->x() < buttons[1]->x());
    // A spacer stands before the last.
    QVERIFY(buttons[1]->x() > boxes[0]->geometry().right() + 20);
}

void SourceControlViewSymbolsTest::theHistorysHeaderOffersItsLimit()
{
    PanelFixture f;
    f.show(SourceControlTab::history);
    TextLabel* const title = labelOf(f.view, u"Recent commits"_s);
    QVERIFY(title != nullptr);
    QList<PlainButton*> buttons;
    for (PlainButton* button : shownIn<PlainButton>(f.view)) {
        if (button->parentWidget() == title->parentWidget()) {
            buttons.append(button);
        }
    }
    QCOMPARE(buttons.size(), 2);
    QCOMPARE(buttons[0]->text(), u"50"_s);
    QCOMPARE(buttons[1]->toolTip(), u"Reload"_s);
    for (const PlainButton* button : buttons) {
        QVERIFY(button->look().ground == Tint::clear());
        QVERIFY(button->x() > title->x());
    }
}

void SourceControlViewSymbolsTest::formsStandInTheirOrder_data()
{
    QTest::addColumn<SourceControlTab>("tab");
    QTest::addColumn<QStringList>("controls");
    QTest::newRow("changes") << SourceControlTab::changes << QStringList{u"Commit"_s, u"Amend last"_s, u"Stage All"_s};
    QTest::newRow("branches") << SourceControlTab::branches << QStringList{u"New branch"_s, u"Create"_s};
    QTest::newRow("stashes") << SourceControlTab::stashes
                             << QStringList{u"Stash message (optional)"_s, u"Include untracked files (-u)"_s,
                                            u"Stash"_s};
    QTest::newRow("tags") << SourceControlTab::tags
                          << QStringList{u"Tag name (e.g. v1.0)"_s, u"Annotation (optional)"_s, u"Create"_s};
    QTest::newRow("remotes") << SourceControlTab::remotes << QStringList{u"Name (e.g. origin)"_s, u"URL"_s, u"Add"_s};
}

void SourceControlViewSymbolsTest::formsStandInTheirOrder()
{
    QFETCH(SourceControlTab, tab);
    QFETCH(QStringList, controls);
    PanelFixture f;
    f.show(tab);
    const QWidget& shown = *f.list().parentWidget();
    QCOMPARE(controlsIn(shown), controls);
    // The list stands below them.
    for (const PlainButton* button : shownIn<PlainButton>(shown)) {
        QVERIFY(button->mapTo(&shown, button->rect().bottomLeft()).y() < f.list().y());
    }
}

void SourceControlViewSymbolsTest::anEditedAddressHasItsButtons()
{
    PanelFixture f;
    f.repo.git({u"remote"_s, u"add"_s, u"origin"_s, u"/old"_s});
    f.show(SourceControlTab::remotes);
    act(f.list(), u"origin / /old"_s, u"Edit URL"_s);
    auto* field = f.list().viewport()->findChild<QLineEdit*>();
    QVERIFY(field != nullptr);
    QCOMPARE(controlsIn(*field->parentWidget()), (QStringList{u"URL"_s, u"Save"_s, u"Cancel"_s}));
    QCOMPARE(field->text(), u"/old"_s);
}

void SourceControlViewSymbolsTest::questionsOfferTheirAnswers_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("answers");
    QTest::newRow("merge") << u"Merge into current"_s << u"Merge side into main?"_s
                           << QStringList{u"Cancel"_s, u"Merge"_s};
    QTest::newRow("delete") << u"Delete"_s << u"Delete branch side?"_s
                            << QStringList{u"Cancel"_s, u"Force delete (-D)"_s, u"Delete (safe)"_s};
}

void SourceControlViewSymbolsTest::questionsOfferTheirAnswers()
{
    QFETCH(QString, action);
    QFETCH(QString, title);
    QFETCH(QStringList, answers);
    PanelFixture f;
    f.repo.git({u"branch"_s, u"side"_s});
    f.show(SourceControlTab::branches);
    act(f.list(), u"side"_s, action);
    const auto* dialog = f.window.findChild<ConfirmationDialog*>();
    QVERIFY(dialog != nullptr && dialog->isVisible());
    QCOMPARE(dialog->windowTitle(), title);
    QCOMPARE(dialog->findChild<BreakingLabel*>()->text(), title);
    // From the first at the right to the way out at the left.
    QCOMPARE(controlsIn(*dialog), answers);
    // Nothing is done before somebody answers.
    QCOMPARE(f.output({u"branch"_s, u"--list"_s, u"side"_s}), QByteArray("side"));
    clickOn(*dialog, u"Cancel"_s);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(f.output({u"branch"_s, u"--list"_s, u"side"_s}), QByteArray("side"));
}

void SourceControlViewSymbolsTest::theNetworkHasItsThreeButtons()
{
    PanelFixture f;
    f.show();
    QCOMPARE(buttonsIn(*f.view.findChild<SourceControlBottomBar*>()),
             (QStringList{u"arrow.down.circle|Fetch"_s, u"arrow.down.to.line|Pull"_s, u"arrow.up.to.line|Push"_s}));
}

void SourceControlViewSymbolsTest::anErrorIsRedAndIsDismissed()
{
    PanelFixture f;
    f.window.resize(600, 600);
    f.show();
    f.git().setLastError(u"first\nsecond"_s);
    const auto& bar = *f.view.findChild<SourceControlBottomBar*>();
    QCOMPARE(buttonsIn(bar).last(), u"xmark.circle.fill|Dismiss"_s);
    const PlainButton& dismiss = *shownIn<PlainButton>(bar).last();
    QVERIFY(dismiss.look().tint == Tint::secondary());
    QVERIFY(dismiss.look().ground == Tint::clear());
    auto* line = f.view.findChild<ErrorLine*>();
    QVERIFY(isDrawn(line, SystemColor::red, style::interfaceFont(11)));
    // Behind the buttons, in their line.
    const QList<PlainButton*> buttons = shownIn<PlainButton>(bar);
    const auto middle = [&bar](const QWidget& widget) { return widget.mapTo(&bar, widget.rect().center()); };
    QVERIFY(middle(*line).x() > middle(*buttons[2]).x());
    QVERIFY(middle(dismiss).x() > middle(*line).x());
    QVERIFY(std::abs(middle(*line).y() - middle(*buttons[0]).y()) <= 1);
}

void SourceControlViewSymbolsTest::whatIsToldMovesNothing_data()
{
    QTest::addColumn<int>("width");
    for (const int width : {220, 260, 420}) {
        QTest::addRow("%d", width) << width;
    }
}

void SourceControlViewSymbolsTest::whatIsToldMovesNothing()
{
    QFETCH(int, width);
    PanelFixture f;
    f.window.resize(width, 600);
    f.show();
    const auto& bar = *f.view.findChild<SourceControlBottomBar*>();
    const auto places = [&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        const auto placeOf = [&f](const QWidget& each) { return each.mapTo(&f.view, QPoint()); };
        QList<QPoint> all{placeOf(f.list())};
        for (const QString& name : {u"Fetch"_s, u"Pull"_s, u"Push"_s}) {
            all.append(placeOf(*visibleButton(bar, name)));
        }
        // Where there is no room beside the buttons, what is told stands above them.
        return width < 300 ? all : all << placeOf(bar);
    };
    QTRY_COMPARE(f.view.width(), width);
    const QList<QPoint> before = places();
    f.git().setLastError(u"one line"_s);
    QVERIFY(f.view.findChild<ErrorLine*>()->isVisible());
    QCOMPARE(places(), before);
    f.git().setLastError(u"first\nsecond"_s);
    QVERIFY(visibleButton(bar, u"Details"_s) != nullptr);
    QCOMPARE(places(), before);
    // Nor does what runs, with the words of before beside it.
    GitTransfers& transfers = f.git().transfers();
    const quint64 fetch = transfers.add(u"git fetch"_s, std::make_shared<ProcessStop>());
    QVERIFY(visibleButton(bar, u"Stop"_s) != nullptr);
    QVERIFY(f.view.findChild<ErrorLine*>()->isVisible());
    QCOMPARE(places(), before);
    for (const PlainButton* button : shownIn<PlainButton>(bar)) {
        QVERIFY(bar.rect().contains(QRect(button->mapTo(&bar, QPoint()), button->size())));
    }
    f.git().setLastError(std::nullopt);
    QCOMPARE(places(), before);
    transfers.remove(fetch);
    QVERIFY(visibleButton(bar, u"Stop"_s) == nullptr);
    QCOMPARE(places(), before);
}

const kelm::test::Registered<SourceControlViewSymbolsTest> registered(kelm::test::Toolkit::widgets);

} // namespace source_control_view_symbols_test

#include "source_control_view_symbols_test.moc"
