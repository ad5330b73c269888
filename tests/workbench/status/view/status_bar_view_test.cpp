#include "support/painted.h"
#include "support/test_program.h"
#include "workbench/status/view/document_status.h"
#include "workbench/status/view/status_bar_items.h"
#include "workbench/status/view/status_bar_view.h"
#include "workbench/view/controls.h"
#include "workbench/view/window_fixture.h"

#include <QDir>

namespace status_bar_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : WindowFixture
{
    StatusBarView& bar = window.statusBarView();

    std::shared_ptr<Document> show(const QString& text = {}, Language language = Language::plainText)
    {
        state.openSnippet(text, language, std::nullopt);
        turnQueue();
        return state.currentDocument();
    }
    void openProjectWithHead(const QByteArray& head)
    {
        QDir(home.path()).mkpath(u"project/.git"_s);
        write(u"project/.git/HEAD"_s, head);
        state.setCurrentProject(QUrl::fromLocalFile(home.filePath(u"project"_s)));
        turnQueue();
    }
};

/// Opens a menu, reads its lines, chooses one, and hands out what was read.
QStringList chooseFrom(StatusBarMenu& button, const QString& line)
{
    QMenu* menu = openMenu(button);
    const QStringList lines = linesOf(*menu);
    choose(*menu, line);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return lines;
}

} // namespace

class StatusBarViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void withoutADocumentThereAreThemeAndBell();
    void sizesAreThoseOfTheDesign();
    void theBranchIsRead_data();
    void theBranchIsRead();
    void aSwitchOfBranchesIsSeen();
    void aRepositoryThatComesLaterIsSeen();
    void aProjectThatIsNoRepositoryShowsMain();
    void theLanguageMenuChooses();
    void theEncodingMenuStoresOnly();
    void theLineEndingMenuStoresOnly();
    void theIndentMenuStoresOnly();
    void theThemeMenuChoosesSavesAndApplies();
    void caretAndSelectionAreShown();
    void aBackwardSelectionCountsUp();
    void theCountsStandInTheMenu();
    void theBarFollowsTheCurrentDocument();
    void theSelectionsCountHasTheAccentColour();
    void partsStandInTheirOrder();
    void anItemUnderTheMouseIsFaintlyLit();
    void theBellDoesNothing();
};

void StatusBarViewTest::withoutADocumentThereAreThemeAndBell()
{
    Fixture fixture;
    QVERIFY(fixture.bar.leftStatus() == nullptr && fixture.bar.rightStatus() == nullptr);
    QVERIFY(!fixture.bar.branchPill().isVisible());
    QVERIFY(fixture.bar.themeMenu().isVisible());
    QVERIFY(visibleButton(fixture.bar, u"Notifications"_s) != nullptr);
    fixture.openProjectWithHead("ref: refs/heads/topic\n");
    QVERIFY(fixture.bar.branchPill().isVisible());
    fixture.state.setCurrentProject(std::nullopt);
    QVERIFY(!fixture.bar.branchPill().isVisible());
}

void StatusBarViewTest::sizesAreThoseOfTheDesign()
{
    Fixture fixture;
    fixture.show();
    QCOMPARE(fixture.bar.height(), 26);
    QCOMPARE(fixture.bar.themeMenu().look().textSize, 11);
    const ButtonLook& pill = fixture.bar.branchPill().look();
    QCOMPARE(pill.padding, QMargins(8, 3, 8, 3));
    auto* bell = static_cast<PlainButton*>(visibleButton(fixture.bar, u"Notifications"_s));
    QCOMPARE(bell->width(), 24);
    QCOMPARE(bell->look().symbolSize, 10);
}

void StatusBarViewTest::theBranchIsRead_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QString>("shown");
    QTest::newRow("a branch") << QByteArray("ref: refs/heads/feature/x\n") << u"feature/x"_s;
    QTest::newRow("a detached head") << QByteArray(40, 'a') + "\n" << u"main"_s;
}

void StatusBarViewTest::theBranchIsRead()
{
    QFETCH(QByteArray, head);
    QFETCH(QString, shown);
    Fixture fixture;
    fixture.openProjectWithHead(head);
    QCOMPARE(fixture.bar.branchPill().text(), shown);
}

void StatusBarViewTest::aSwitchOfBranchesIsSeen()
{
    Fixture fixture;
    fixture.openProjectWithHead("ref: refs/heads/one\n");
    // git writes a new file and puts it in the place of the old one.
    const QString head = fixture.home.filePath(u"project/.git/HEAD"_s);
    fixture.write(u"project/.git/HEAD.lock"_s, "ref: refs/heads/two\n");
    QFile::remove(head);
    QVERIFY(QFile::rename(head + u".lock"_s, head));
    QTRY_COMPARE(fixture.bar.branchPill().text(), u"two"_s);
}

void StatusBarViewTest::aRepositoryThatComesLaterIsSeen()
{
    Fixture fixture;
    QDir(fixture.home.path()).mkpath(u"project"_s);
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.filePath(u"project/"_s)));
    QCOMPARE(fixture.bar.branchPill().text(), u"main"_s);
    const auto comes = [&](const QByteArray& head, const QString& shown) {
        QDir(fixture.home.path()).mkpath(u"project/.git"_s);
        fixture.write(u"project/.git/HEAD"_s, head);
        return QTest::qWaitFor([&] { return fixture.bar.branchPill().text() == shown; }, kelm::test::patience);
    };
    QVERIFY(comes("ref: refs/heads/topic\n", u"topic"_s));
    QVERIFY(QDir(fixture.home.filePath(u"project/.git"_s)).removeRecursively());
    QTRY_COMPARE(fixture.bar.branchPill().text(), u"main"_s);
    QVERIFY(comes("ref: refs/heads/again\n", u"again"_s));
}

void StatusBarViewTest::aProjectThatIsNoRepositoryShowsMain()
{
    Fixture fixture;
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.home.path()));
    QCOMPARE(fixture.bar.branchPill().text(), u"main"_s);
}

void StatusBarViewTest::theLanguageMenuChooses()
{
    Fixture fixture;
    const auto document = fixture.show({}, Language::swift);
    QStringList expected;
    for (const Language language : Language::allCases()) {
        expected.append((language == Language(Language::swift) ? u"*"_s : QString()) + language.rawValue());
    }
    QCOMPARE(chooseFrom(fixture.bar.leftStatus()->languageMenu(), u"Ruby"_s), expected);
    QCOMPARE(document->language(), Language(Language::ruby));
    QCOMPARE(fixture.bar.leftStatus()->languageMenu().text(), u"Ruby"_s);
    QCOMPARE(fixture.bar.leftStatus()->languageMenu().look().symbol, Language(Language::ruby).iconName());
}

void StatusBarViewTest::theEncodingMenuStoresOnly()
{
    Fixture fixture;
    const auto document = fixture.show(u"text"_s);
    QCOMPARE(chooseFrom(fixture.bar.leftStatus()->encodingMenu(), u"UTF-16"_s),
             (QStringList{u"*UTF-8"_s, u"UTF-16"_s, u"ASCII"_s}));
    QCOMPARE(document->encoding(), TextEncoding::utf16);
    QCOMPARE(fixture.bar.leftStatus()->encodingMenu().text(), u"UTF-16"_s);
    QCOMPARE(document->content(), u"text"_s);
    QVERIFY(!document->isModified());
}

void StatusBarViewTest::theLineEndingMenuStoresOnly()
{
    Fixture fixture;
    const auto document = fixture.show(u"a\nb"_s);
    QCOMPARE(chooseFrom(fixture.bar.leftStatus()->lineEndingMenu(), u"CRLF (Windows)"_s),
             (QStringList{u"*LF (Unix)"_s, u"CRLF (Windows)"_s, u"CR (Classic Mac)"_s}));
    QCOMPARE(fixture.bar.leftStatus()->lineEndingMenu().text(), u"CRLF (Windows)"_s);
    QCOMPARE(document->content(), u"a\nb"_s);
    QVERIFY(!document->isModified());
}

void StatusBarViewTest::theIndentMenuStoresOnly()
{
    Fixture fixture;
    const auto document = fixture.show(u"\ta"_s);
    QCOMPARE(chooseFrom(fixture.bar.rightStatus()->indentMenu(), u"Tabs"_s),
             (QStringList{u"Spaces: 2"_s, u"*Spaces: 4"_s, u"Spaces: 8"_s, u"Tabs"_s}));
    QVERIFY(document->indentStyle().isTabs());
    QCOMPARE(fixture.bar.rightStatus()->indentMenu().text(), u"Tabs"_s);
    QCOMPARE(document->content(), u"\ta"_s);
    QVERIFY(!document->isModified());
}

void StatusBarViewTest::theThemeMenuChoosesSavesAndApplies()
{
    Fixture fixture;
    QStringList expected;
    for (const EditorTheme& theme : fixture.themes.availableThemes()) {
        expected.append((theme.name == fixture.themes.currentTheme().name ? u"*"_s : QString()) + theme.name);
    }
    const QString light = EditorTheme::githubLight().name;
    fixture.appearances.clear();
    QCOMPARE(chooseFrom(fixture.bar.themeMenu(), light), expected);
    QCOMPARE(fixture.themes.currentTheme().name, light);
    QCOMPARE(fixture.bar.themeMenu().text(), light);
    QCOMPARE(fixture.defaults.string(u"selectedTheme"_s), light);
    QTRY_COMPARE(fixture.appearances, QList<Appearance>{Appearance::light});
}

void StatusBarViewTest::caretAndSelectionAreShown()
{
    Fixture fixture;
    fixture.show(u"one\ntwo"_s);
    DocumentRightStatus& status = *fixture.bar.rightStatus();
    QVERIFY(!status.selection().isVisible());
    fixture.text().setSelectedRange({5, 0});
    QTRY_COMPARE(status.position().text(), u"Ln 2, Col 2"_s);
    fixture.state.currentDocument()->setSelection(TextSelection{{2, 1, 4}, {2, 4, 7}});
    QCOMPARE(status.selection().text(), u"3 selected"_s);
    QVERIFY(status.selection().isVisible());
    fixture.state.currentDocument()->setSelection(std::nullopt);
    QVERIFY(!status.selection().isVisible());
}

void StatusBarViewTest::aBackwardSelectionCountsUp()
{
    Fixture fixture;
    const auto document = fixture.show(u"0123456789"_s);
    document->setSelection(TextSelection{{1, 9, 8}, {1, 3, 2}});
    QCOMPARE(fixture.bar.rightStatus()->selection().text(), u"6 selected"_s);
}

void StatusBarViewTest::theCountsStandInTheMenu()
{
    Fixture fixture;
    fixture.show(u"one two\r\n👩‍👩‍👧 한글"_s);
    DocumentRightStatus& status = *fixture.bar.rightStatus();
    QCOMPARE(status.linesMenu().text(), u"3 lines"_s);
    QMenu* menu = openMenu(status.linesMenu());
    QCOMPARE(linesOf(*menu), (QStringList{u"!Lines: 3"_s, u"!Characters: 12"_s, u"!Words: 4"_s}));
    menu->close();
}

void StatusBarViewTest::theBarFollowsTheCurrentDocument()
{
    Fixture fixture;
    fixture.show(u"a"_s, Language::swift);
    fixture.show(u"a\nb"_s, Language::go);
    QCOMPARE(fixture.bar.leftStatus()->languageMenu().text(), u"Go"_s);
    QCOMPARE(fixture.bar.rightStatus()->linesMenu().text(), u"2 lines"_s);
    fixture.state.setCurrentDocumentIndex(0);
    QCOMPARE(fixture.bar.leftStatus()->languageMenu().text(), u"Swift"_s);
    QCOMPARE(fixture.bar.rightStatus()->linesMenu().text(), u"1 lines"_s);
    fixture.state.setDocuments({});
    QVERIFY(fixture.bar.leftStatus() == nullptr);
}

void StatusBarViewTest::theSelectionsCountHasTheAccentColour()
{
    Fixture fixture;
    const auto document = fixture.show(u"0123456789"_s);
    document->setSelection(TextSelection{{1, 1, 0}, {1, 9, 8}});
    fixture.turnQueue();
    const QImage image = fixture.bar.rightStatus()->selection().grab().toImage();
    bool bluish = false;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            const QColor color = image.pixelColor(x, y);
            bluish = bluish || color.blue() > color.red() + 80;
        }
    }
    QVERIFY(bluish);
}

void StatusBarViewTest::partsStandInTheirOrder()
{
    Fixture fixture;
    const auto* divider = fixture.bar.findChild<StatusBarDivider*>();
    QVERIFY(!divider->isVisible());
    const auto document = fixture.show(u"0123456789"_s);
    document->setSelection(TextSelection{{1, 1, 0}, {1, 9, 8}});
    fixture.openProjectWithHead("ref: refs/heads/topic\n");
    QVERIFY(divider->isVisible());
    DocumentLeftStatus& left = *fixture.bar.leftStatus();
    DocumentRightStatus& right = *fixture.bar.rightStatus();
    const std::initializer_list<const QWidget*> order{&left.languageMenu(),
                                                      &left.encodingMenu(),
                                                      &left.lineEndingMenu(),
                                                      &fixture.bar.branchPill(),
                                                      &right.position(),
                                                      &right.selection(),
                                                      &right.linesMenu(),
                                                      &right.indentMenu(),
                                                      divider,
                                                      &fixture.bar.themeMenu(),
                                                      visibleButton(fixture.bar, u"Notifications"_s)};
    int end = 0;
    for (const QWidget* part : order) {
        const int x = part->mapTo(&fixture.bar, QPoint()).x();
        QVERIFY(part->isVisible());
        QVERIFY(x >= end);
        end = x + part->width();
    }
    QVERIFY(end <= fixture.bar.width());
    // The pill is apart from both sides.
    const QRect pill = fixture.bar.branchPill().geometry();
    QVERIFY(pill.left() - left.geometry().right() > 50);
    QVERIFY(right.geometry().left() - pill.right() > 50);
}

void StatusBarViewTest::anItemUnderTheMouseIsFaintlyLit()
{
    Fixture fixture;
    fixture.show(u"a"_s);
    StatusBarItem& item = fixture.bar.rightStatus()->position();
    const auto ground = [&item] { return item.grab().toImage().pixelColor(2, item.height() / 2); };
    const QColor idle = ground();
    item.setAttribute(Qt::WA_UnderMouse, true);
    const QColor lit = over(idle, Tint::primary().at(style::hoverOpacity).on(item));
    QVERIFY(distance(lit, idle) > 2);
    QVERIFY(distance(ground(), lit) <= 1);
    item.setAttribute(Qt::WA_UnderMouse, false);
    QCOMPARE(ground(), idle);
}

void StatusBarViewTest::theBellDoesNothing()
{
    Fixture fixture;
    const qsizetype windows = QApplication::topLevelWidgets().size();
    clickOn(fixture.bar, u"Notifications"_s);
    fixture.turnQueue();
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
    QVERIFY(fixture.state.documents().isEmpty());
    QVERIFY(!fixture.state.showBottomPanel());
}

const kelm::test::Registered<StatusBarViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace status_bar_view_test

#include "status_bar_view_test.moc"
