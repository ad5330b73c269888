#include "app/state/unsaved_texts.h"
#include "platform/style/view/style.h"
#include "platform/view/plain_button.h"
#include "support/app_state_fixture.h"
#include "support/test_program.h"
#include "workbench/view/unsaved_text_row.h"
#include "workbench/view/unsaved_texts_group.h"
#include "workbench/view/welcome_view.h"

#include <QDateTime>
#include <QEnterEvent>
#include <QSignalSpy>
#include <QtTest>

namespace unsaved_texts_group_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::seconds patience{30};

struct Fixture : AppStateFixture
{
    AppState kept{{filePanels, userDefaults, scheduler, notificationCenter, log, ProcessRunner::sharedSystem(),
                   ExecutableSearch(ProcessRunner::system()), folder.filePath(u"unsaved"_s)}};
    ThemeManager themes{{userDefaults, log, folder.path(), [](Appearance) {}}};
    WelcomeView view{kept, themes};

    Fixture()
    {
        view.resize(800, 900);
        view.show();
        view.activateWindow();
        if (!QTest::qWaitForWindowActive(&view)) {
            qFatal("no window");
        }
    }

    RecoveryStore& store() { return kept.unsavedTexts().store(); }
    UnsavedTextsGroup& group() { return *view.findChild<UnsavedTextsGroup*>(); }
    const QList<UnsavedTextRow*>& rows() { return group().rows(); }
    void settle()
    {
        store().refresh();
        if (!store().finish(patience)) {
            qFatal("the store does not end");
        }
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    /// Puts texts into the store, the last of them the latest.
    void close(const QStringList& texts)
    {
        for (const QString& text : texts) {
            store().keepReplaced(QUrl::fromLocalFile(u"/one/folder/%1.txt"_s.arg(text)), TextTree(text));
            settle();
            // The list is in the order of time, and the next one is later.
            for (const qint64 now = QDateTime::currentMSecsSinceEpoch(); QDateTime::currentMSecsSinceEpoch() == now;) {
            }
        }
    }
    QStringList titles()
    {
        QStringList titles;
        for (const UnsavedTextRow* row : rows()) {
            titles << row->lines().constFirst();
        }
        return titles;
    }
    /// Has the pointer come to the group, or go.
    void tellOfPointer(QEvent::Type type)
    {
        const QPointF place(5, 5);
        QEnterEvent entered(place, place, place);
        QEvent left(QEvent::Leave);
        QCoreApplication::sendEvent(&group(), type == QEvent::Enter ? &entered : &left);
    }
};

} // namespace

class UnsavedTextsGroupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void ages_data();
    void ages();
    void itIsThereOnlyWhileThereIsAText();
    void aRowTellsTitlePlaceAgeAndWords();
    void aNameTurnsNoDirection();
    void openingGivesAModifiedTab();
    void deletingRemovesTheCopy();
    void aSecondPressHitsNoOtherRow();
    void aHeldKeyHitsNoOtherRow();
    void whatHasGoneLeavesWithThePointer();
    void tabReachesEveryButton();
    void theOthersComeWhenTheyAreAskedFor();
};

void UnsavedTextsGroupTest::ages_data()
{
    QTest::addColumn<qint64>("age");
    QTest::addColumn<QString>("text");
    QTest::newRow("future") << -5000LL << u"just now"_s;
    QTest::newRow("seconds") << 59'999LL << u"just now"_s;
    QTest::newRow("a minute") << 60'000LL << u"1 minute ago"_s;
    QTest::newRow("minutes") << 3'599'999LL << u"59 minutes ago"_s;
    QTest::newRow("an hour") << 3'600'000LL << u"1 hour ago"_s;
    QTest::newRow("hours") << 86'399'999LL << u"23 hours ago"_s;
    QTest::newRow("a day") << 86'400'000LL << u"1 day ago"_s;
    QTest::newRow("days") << 40 * 86'400'000LL << u"40 days ago"_s;
}

void UnsavedTextsGroupTest::ages()
{
    QFETCH(const qint64, age);
    QFETCH(const QString, text);
    QCOMPARE(ageText(1'700'000'000'000 - age, 1'700'000'000'000), text);
}

void UnsavedTextsGroupTest::itIsThereOnlyWhileThereIsAText()
{
    Fixture fixture;
    fixture.settle();
    QVERIFY(!fixture.group().isVisible());
    fixture.close({u"a"_s});
    QVERIFY(fixture.group().isVisible());
    fixture.store().remove(fixture.store().texts().constFirst().id);
    fixture.settle();
    QVERIFY(!fixture.group().isVisible());

    // A text that is open is none of them.
    fixture.kept.createNewTab();
    fixture.kept.currentDocument()->setContent(u"typed"_s);
    fixture.settle();
    QVERIFY(!fixture.group().isVisible());
    fixture.kept.closeTab(0);
    fixture.settle();
    QVERIFY(fixture.group().isVisible());
}

void UnsavedTextsGroupTest::aRowTellsTitlePlaceAgeAndWords()
{
    Fixture fixture;
    fixture.kept.openFile(fixture.write(u"notes.txt"_s, "x"));
    fixture.kept.currentDocument()->setContent(u"\n  some words\nof it"_s);
    fixture.kept.closeTab(0);
    fixture.settle();
    QCOMPARE(fixture.rows().size(), 1);
    QCOMPARE(fixture.rows()[0]->lines(),
             QStringList({u"notes.txt"_s, u"just now · "_s + fixture.folder.path(), u"some words of it"_s}));
    QCOMPARE(fixture.rows()[0]->openButton()->accessibleName(), u"Open notes.txt"_s);
    QCOMPARE(fixture.rows()[0]->deleteButton()->accessibleName(), u"Delete notes.txt"_s);

    fixture.kept.createNewTab();
    fixture.kept.currentDocument()->setContent(u"typed"_s);
    fixture.kept.closeTab(0);
    fixture.settle();
    QCOMPARE(fixture.rows()[0]->lines(), QStringList({u"Untitled"_s, u"just now · Never saved"_s, u"typed"_s}));
}

void UnsavedTextsGroupTest::aNameTurnsNoDirection()
{
    Fixture fixture;
    fixture.store().keepReplaced(QUrl::fromLocalFile(u"/one\u2067/a\u202etxt.py"_s), TextTree(u"text"_s));
    fixture.settle();
    const UnsavedTextRow& row = *fixture.rows()[0];
    QCOMPARE(row.lines().constFirst(), u"a\u27e8U+202E\u27e9txt.py"_s);
    QVERIFY(row.lines().at(1).endsWith(u"/one\u27e8U+2067\u27e9"_s));
    QCOMPARE(row.toolTip(), u"/one\u27e8U+2067\u27e9/a\u27e8U+202E\u27e9txt.py"_s);
    QCOMPARE(row.openButton()->accessibleName(), u"Open a\u27e8U+202E\u27e9txt.py"_s);
}

void UnsavedTextsGroupTest::openingGivesAModifiedTab()
{
    Fixture fixture;
    fixture.close({u"a"_s, u"b"_s});
    QCOMPARE(fixture.titles(), QStringList({u"b.txt"_s, u"a.txt"_s}));
    QSignalSpy opened(&fixture.kept, &AppState::documentsChanged);
    QTest::mouseClick(fixture.rows()[1]->openButton(), Qt::LeftButton);
    QVERIFY(opened.count() > 0 || opened.wait(kelm::test::patience));
    QCOMPARE(fixture.kept.documents().size(), 1);
    QCOMPARE(fixture.kept.currentDocument()->content(), u"a"_s);
    QVERIFY(fixture.kept.currentDocument()->isModified());
    fixture.view.hide();
    fixture.view.show();
    QCOMPARE(fixture.titles(), QStringList(u"b.txt"_s));
}

void UnsavedTextsGroupTest::deletingRemovesTheCopy()
{
    Fixture fixture;
    fixture.close({u"a"_s});
    QTest::mouseClick(fixture.rows()[0]->deleteButton(), Qt::LeftButton);
    fixture.settle();
    QVERIFY(fixture.store().texts().isEmpty());
    QCOMPARE(QDir(fixture.folder.filePath(u"unsaved"_s)).entryList({u"*.copy"_s}, QDir::Files), QStringList());
}

void UnsavedTextsGroupTest::aSecondPressHitsNoOtherRow()
{
    Fixture fixture;
    fixture.close({u"a"_s, u"b"_s, u"c"_s});
    fixture.tellOfPointer(QEvent::Enter);
    const QPoint place = fixture.rows()[0]->deleteButton()->mapTo(&fixture.view, QPoint(5, 5));
    const auto pressThere = [&] {
        if (QWidget* const hit = fixture.view.childAt(place)) {
            QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(&fixture.view, place));
        }
        fixture.settle();
    };
    pressThere();
    QCOMPARE(fixture.rows().size(), 3);
    QVERIFY(fixture.rows()[0]->hasGone());
    QCOMPARE(fixture.rows()[0]->lines(), QStringList({u"c.txt"_s, u"Deleted"_s, QString()}));
    pressThere();
    pressThere();
    QCOMPARE(fixture.store().texts().size(), 2);
}

void UnsavedTextsGroupTest::aHeldKeyHitsNoOtherRow()
{
    Fixture fixture;
    fixture.close({u"a"_s, u"b"_s, u"c"_s});
    fixture.rows()[1]->deleteButton()->setFocus(Qt::TabFocusReason);
    for (int repeat = 0; repeat < 5; ++repeat) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        fixture.settle();
    }
    QCOMPARE(fixture.store().texts().size(), 2);
    QVERIFY(fixture.rows()[1]->hasFocus());
    // Going on from there goes on to the next row, and what has gone leaves.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    fixture.settle();
    QCOMPARE(fixture.titles(), QStringList({u"c.txt"_s, u"a.txt"_s}));
    QVERIFY(fixture.rows()[1]->openButton()->hasFocus());
}

void UnsavedTextsGroupTest::whatHasGoneLeavesWithThePointer()
{
    Fixture fixture;
    fixture.close({u"a"_s, u"b"_s});
    fixture.tellOfPointer(QEvent::Enter);
    QTest::mouseClick(fixture.rows()[0]->deleteButton(), Qt::LeftButton);
    fixture.settle();
    QCOMPARE(fixture.rows().size(), 2);
    fixture.tellOfPointer(QEvent::Leave);
    fixture.settle();
    QCOMPARE(fixture.titles(), QStringList(u"a.txt"_s));
}

void UnsavedTextsGroupTest::tabReachesEveryButton()
{
    Fixture fixture;
    fixture.close({u"a"_s, u"b"_s});
    fixture.rows()[0]->openButton()->setFocus();
    QList<QWidget*> reached{QApplication::focusWidget()};
    for (int tab = 0; tab < 3; ++tab) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached << QApplication::focusWidget();
    }
    QCOMPARE(reached, QList<QWidget*>({fixture.rows()[0]->openButton(), fixture.rows()[0]->deleteButton(),
                                       fixture.rows()[1]->openButton(), fixture.rows()[1]->deleteButton()}));
}

void UnsavedTextsGroupTest::theOthersComeWhenTheyAreAskedFor()
{
    Fixture fixture;
    QStringList texts;
    for (qsizetype text = 0; text < UnsavedTextsGroup::shownAtFirst + 2; ++text) {
        texts << QString::number(text);
    }
    fixture.close(texts);
    QCOMPARE(fixture.rows().size(), UnsavedTextsGroup::shownAtFirst);
    for (PlainButton* button : fixture.group().findChildren<PlainButton*>()) {
        if (button->text() == u"Show All 7"_s && button->isVisible()) {
            button->click();
            break;
        }
    }
    QCOMPARE(fixture.rows().size(), texts.size());
}

const kelm::test::Registered<UnsavedTextsGroupTest> registered(kelm::test::Toolkit::widgets);

} // namespace unsaved_texts_group_test

#include "unsaved_texts_group_test.moc"
