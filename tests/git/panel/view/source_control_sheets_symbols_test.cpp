#include "git/panel/view/clone_dialog.h"
#include "git/panel/view/credential_status_row.h"
#include "git/panel/view/panel_fixture.h"
#include "git/panel/view/shown_widgets.h"
#include "git/viewer/view/commit_sheet.h"
#include "git/viewer/view/diff_sheet.h"
#include "git/viewer/view/diff_viewer.h"
#include "platform/view/breaking_label.h"
#include "platform/view/labels.h"
#include "support/test_program.h"

#include <QRadioButton>

namespace source_control_sheets_symbols_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

/// Which symbols, controls and type stand at the head of the panel's sheets, in which colours and which order.
class SourceControlSheetsSymbolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theCloneDialogHasItsSign();
    void theDiffSheetHasItsHeader();
    void theCommitSheetHasItsHeader();
};

void SourceControlSheetsSymbolsTest::initTestCase()
{
    useFixedGitEnvironment();
    style::installOn(*qApp);
}

void SourceControlSheetsSymbolsTest::theCloneDialogHasItsSign()
{
    PanelFixture f;
    f.show();
    f.view.setShowCloneDialog(true);
    const auto& dialog = *f.window.findChild<CloneDialog*>();
    QVERIFY(QTest::qWaitForWindowActive(f.window.findChild<CloneDialog*>()));
    const QList<SymbolLabel*> symbols = shownIn<SymbolLabel>(dialog);
    QCOMPARE(symbols.size(), 1);
    QVERIFY(shows(*symbols[0], u"square.and.arrow.down.on.square"_s, Tint::accent()));
    QStringList texts;
    for (const TextLabel* label : shownIn<TextLabel>(dialog)) {
        texts.append(label->text());
    }
    QCOMPARE(texts, (QStringList{u"Clone Repository"_s, u"Remote URL"_s, u"Destination"_s, u"(pick a folder)"_s,
                                 u"Folder name:"_s}));
    QVERIFY(symbols[0]->x() < labelOf(dialog, u"Clone Repository"_s)->x());
    const QString examples = shownIn<QLineEdit>(dialog).first()->placeholderText();
    QCOMPARE(controlsIn(dialog), (QStringList{examples, u"Choose"_s, u"repo"_s, u"Cancel"_s, u"Clone"_s}));
    // The chips stand between the address and the folder, and what they mean below them.
    const QList<CredentialChip*> chips = shownIn<CredentialChip>(dialog);
    QCOMPARE(chips.size(), 3);
    const auto top = [&dialog](const QWidget* widget) { return widget->mapTo(&dialog, QPoint()).y(); };
    QVERIFY(top(shownIn<QLineEdit>(dialog).first()) < top(chips.first()));
    const QList<WrappedLabel*> hints = shownIn<WrappedLabel>(dialog);
    QCOMPARE(hints.size(), 1);
    QVERIFY(top(chips.last()) < top(hints.first()));
    QVERIFY(top(hints.first()) < top(labelOf(dialog, u"Destination"_s)));
    QCOMPARE(buttonsIn(dialog), (QStringList{u"|Choose"_s, u"|Cancel"_s, u"|Clone"_s}));
    const QList<PlainButton*> buttons = shownIn<PlainButton>(dialog);
    QVERIFY(!(buttons[1]->look().ground == prominentLook().ground));
    QVERIFY(buttons[2]->look().ground == prominentLook().ground);
}

void SourceControlSheetsSymbolsTest::theDiffSheetHasItsHeader()
{
    PanelFixture f;
    f.repo.write(u"a.txt"_s, "two\n");
    f.git().open(f.repo.url());
    DiffSheetView sheet(f.git(), u"a.txt"_s, nullptr);
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    TextLabel* const path = labelOf(sheet, u"a.txt"_s);
    QVERIFY(path != nullptr);
    const QWidget& header = *path->parentWidget();
    QCOMPARE(shownIn<TextLabel>(header), QList{path});
    const QList<QRadioButton*> views = shownIn<QRadioButton>(header);
    QCOMPARE(views.size(), 2);
    QCOMPARE(views[0]->text() + u' ' + views[1]->text(), u"Working Staged"_s);
    QVERIFY(views[0]->isChecked());
    sheet.setStagedView(true);
    QVERIFY(views[1]->isChecked());
    QCOMPARE(namesOfPushButtonsIn(header), QStringList{u"Close"_s});
    const auto left = [&header](const QWidget* widget) { return widget->mapTo(&header, QPoint()).x(); };
    QVERIFY(left(path) < left(views[0]) && left(views[1]) < left(shownIn<QPushButton>(header).first()));
    QVERIFY(header.geometry().bottom() < sheet.viewer().y());
    // What else is told stands below the diff.
    QTRY_COMPARE(sheet.counts(), u"Working: 1 hunk · Staged: none"_s);
    const TextLabel* const counts = labelOf(sheet, sheet.counts());
    QVERIFY(counts != nullptr);
    QVERIFY(counts->mapTo(&sheet, QPoint()).y() > sheet.viewer().geometry().bottom());
}

void SourceControlSheetsSymbolsTest::theCommitSheetHasItsHeader()
{
    PanelFixture f;
    f.git().open(f.repo.url());
    const QString sha = QString::fromLatin1(f.output({u"rev-parse"_s, u"HEAD"_s}));
    CommitDetailView sheet(f.git(), sha, nullptr);
    sheet.show();
    QVERIFY(QTest::qWaitForWindowExposed(&sheet));
    TextLabel* const title = labelOf(sheet, u"Commit "_s + sha.first(10));
    QVERIFY(isDrawn(title, Tint::primary(), style::interfaceFont(12, QFont::DemiBold)));
    const QWidget& header = *title->parentWidget();
    QCOMPARE(namesOfPushButtonsIn(header), (QStringList{u"Copy SHA"_s, u"Close"_s}));
    QVERIFY(title->geometry().right() < shownIn<QPushButton>(header).first()->x());
}

const kelm::test::Registered<SourceControlSheetsSymbolsTest> registered(kelm::test::Toolkit::widgets);

} // namespace source_control_sheets_symbols_test

#include "source_control_sheets_symbols_test.moc"
