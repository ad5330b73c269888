#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "support/app_state_fixture.h"
#include "support/painted.h"
#include "support/test_program.h"
#include "workbench/view/controls.h"
#include "workbench/view/editor_area.h"
#include "workbench/view/recent_file_button.h"
#include "workbench/view/welcome_view.h"

#include <QKeyEvent>
#include <QtTest>

namespace welcome_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture : AppStateFixture
{
    ThemeManager themes{{userDefaults, log, folder.path(), [](Appearance) {}}};
    WelcomeView view{state, themes};

    Fixture()
    {
        view.resize(800, 700);
        view.show();
        if (!QTest::qWaitForWindowExposed(&view)) {
            qFatal("no window");
        }
    }

    /// Makes files and puts them into the list of recent ones.
    QList<QUrl> setRecentFiles(int count)
    {
        QList<QUrl> files;
        for (int file = 0; file < count; ++file) {
            files.append(write(u"file %1.txt"_s.arg(file), "text"));
        }
        state.setRecentFiles(files);
        settle();
        return files;
    }
    static void settle()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    /// The buttons that are seen, from top to bottom.
    QList<RecentFileButton*> rows() const
    {
        QList<RecentFileButton*> rows;
        for (auto* row : view.findChildren<RecentFileButton*>()) {
            if (row->isVisible()) {
                rows.append(row);
            }
        }
        std::sort(rows.begin(), rows.end(), [](const auto* a, const auto* b) { return a->y() < b->y(); });
        return rows;
    }
    QStringList names() const
    {
        QStringList names;
        for (const RecentFileButton* row : rows()) {
            names.append(row->text());
        }
        return names;
    }
    TextLabel* label(const QString& text) const
    {
        for (auto* label : view.findChildren<TextLabel*>()) {
            if (label->isVisible() && label->text() == text) {
                return label;
            }
        }
        return nullptr;
    }
};

} // namespace

class WelcomeViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void itReadsAndOffersToBegin();
    void withoutRecentFilesThereIsNoGroup();
    void theFiveMostRecentFilesStandInTheirOrder();
    void aClickOpens();
    void aHeldKeyOpensOnce_data();
    void aHeldKeyOpensOnce();
    void aFileThatIsGoneIsLoggedAlone();
    void eachRowShowsANameAndAFolder();
    void theGroupStandsOnATenthOfTheSecondaryColour();
    void theColumnIsSpacedByTwenty();
    void headingAndAdviceLookAsTheyShould();
    void noSettingKeepsItAway();
};

void WelcomeViewTest::itReadsAndOffersToBegin()
{
    Fixture fixture;
    TextLabel name(u"KelmWright"_s, style::interfaceFont(26, QFont::Bold), Tint::primary());
    QVERIFY(fixture.label(u"KelmWright"_s) != nullptr);
    QVERIFY(looksLike(*fixture.label(u"KelmWright"_s), name));
    QVERIFY(fixture.label(u"Start editing by creating a new file or opening an existing one"_s) != nullptr);
    SymbolLabel icon(u"doc.text"_s, 60, Tint::secondary());
    QCOMPARE(fixture.view.findChild<SymbolLabel*>()->size(), QSize(60, 60));
    QVERIFY(looksLike(*fixture.view.findChild<SymbolLabel*>(), icon));
    clickOn(fixture.view, u"New File"_s);
    QCOMPARE(fixture.state.documents().size(), 1);
    fixture.filePanels.openAnswer = {{fixture.write(u"a.txt"_s, "text"), false}};
    clickOn(fixture.view, u"Open File"_s);
    QCOMPARE(fixture.state.currentDocument()->title(), u"a.txt"_s);
}

void WelcomeViewTest::withoutRecentFilesThereIsNoGroup()
{
    Fixture fixture;
    QVERIFY(fixture.label(u"Recent Files"_s) == nullptr);
    QVERIFY(fixture.rows().isEmpty());
    fixture.setRecentFiles(1);
    QVERIFY(fixture.label(u"Recent Files"_s) != nullptr);
    QCOMPARE(fixture.names(), QStringList{u"file 0.txt"_s});
    fixture.state.setRecentFiles({});
    Fixture::settle();
    QVERIFY(fixture.label(u"Recent Files"_s) == nullptr);
    QVERIFY(fixture.rows().isEmpty());
}

void WelcomeViewTest::theFiveMostRecentFilesStandInTheirOrder()
{
    Fixture fixture;
    const QList<QUrl> files = fixture.setRecentFiles(10);
    QCOMPARE(fixture.state.recentFiles().size(), 10);
    QCOMPARE(fixture.names(),
             (QStringList{u"file 0.txt"_s, u"file 1.txt"_s, u"file 2.txt"_s, u"file 3.txt"_s, u"file 4.txt"_s}));
    QVERIFY(fixture.label(u"Recent Files"_s)->mapTo(&fixture.view, QPoint()).y() <
            fixture.rows().first()->mapTo(&fixture.view, QPoint()).y());
    fixture.state.openFile(files.at(7));
    Fixture::settle();
    QCOMPARE(fixture.names(),
             (QStringList{u"file 7.txt"_s, u"file 0.txt"_s, u"file 1.txt"_s, u"file 2.txt"_s, u"file 3.txt"_s}));
}

void WelcomeViewTest::aClickOpens()
{
    Fixture fixture;
    const QList<QUrl> files = fixture.setRecentFiles(5);
    QTest::mouseClick(fixture.rows().at(2), Qt::LeftButton);
    QCOMPARE(fixture.state.documents().size(), 1);
    QCOMPARE(fixture.state.currentDocument()->fileURL(), std::optional(files.at(2)));
    QCOMPARE(fixture.state.currentDocument()->content(), u"text"_s);
}

void WelcomeViewTest::aHeldKeyOpensOnce_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter") << Qt::Key_Enter;
    QTest::newRow("space") << Qt::Key_Space;
}

void WelcomeViewTest::aHeldKeyOpensOnce()
{
    QFETCH(Qt::Key, key);
    Fixture fixture;
    const QList<QUrl> files = fixture.setRecentFiles(3);
    RecentFileButton& row = *fixture.rows().at(1);
    row.setFocus();
    const auto sendRepeated = [&row, key] {
        QKeyEvent up(QEvent::KeyRelease, key, {}, {}, true);
        QKeyEvent down(QEvent::KeyPress, key, {}, {}, true);
        QCoreApplication::sendEvent(&row, &up);
        QCoreApplication::sendEvent(&row, &down);
    };
    // What was pressed elsewhere is none of its own.
    sendRepeated();
    QTest::keyRelease(&row, key);
    QVERIFY(fixture.state.documents().isEmpty());
    QTest::keyPress(&row, key);
    sendRepeated();
    QVERIFY(fixture.state.documents().isEmpty());
    QTest::keyRelease(&row, key);
    QCOMPARE(fixture.state.documents().size(), 1);
    QCOMPARE(fixture.state.currentDocument()->fileURL(), std::optional(files.at(1)));
}

void WelcomeViewTest::aFileThatIsGoneIsLoggedAlone()
{
    Fixture fixture;
    const QList<QUrl> files = fixture.setRecentFiles(3);
    QVERIFY(QFile::remove(files.at(1).toLocalFile()));
    QTest::mouseClick(fixture.rows().at(1), Qt::LeftButton);
    QVERIFY(fixture.log.written.last().contains(u"Error opening file: "_s));
    QVERIFY(fixture.state.documents().isEmpty());
    QCOMPARE(fixture.state.recentFiles(), files);
    QCOMPARE(fixture.names(), (QStringList{u"file 0.txt"_s, u"file 1.txt"_s, u"file 2.txt"_s}));
}

void WelcomeViewTest::eachRowShowsANameAndAFolder()
{
    Fixture fixture;
    fixture.state.setRecentFiles({QUrl(u"file:///one/folder/a name.txt"_s)});
    Fixture::settle();
    RecentFileButton& row = *fixture.rows().first();
    QCOMPARE(row.accessibleDescription(), u"/one/folder"_s);
    const QImage shown = row.grab().toImage();
    const QColor ground = shown.pixelColor(0, 0);
    const QColor secondary = systemColor(SystemColor::secondaryLabel, Appearance::dark);
    QVERIFY(isSame(shown.copy(6, (row.height() - 16) / 2, 16, 16), symbolOn(ground, u"doc"_s, 16, secondary)));
    QImage expected(shown.size(), QImage::Format_RGB32);
    expected.fill(ground);
    QPainter painter(&expected);
    const auto write = [&painter, &row](int y, const QFont& font, const QColor& color, const QString& text) {
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(QRect(30, y, row.width(), QFontMetrics(font).height()), Qt::AlignVCenter, text);
    };
    const QFont name = style::interfaceFont(13);
    write(6, name, systemColor(SystemColor::primaryLabel, Appearance::dark), u"a name.txt"_s);
    write(6 + QFontMetrics(name).height() + 2, style::interfaceFont(10), secondary, u"/one/folder"_s);
    painter.end();
    const QRect texts(24, 0, row.width() - 24, row.height());
    QVERIFY(isSame(shown.copy(texts), expected.copy(texts)));
}

void WelcomeViewTest::theGroupStandsOnATenthOfTheSecondaryColour()
{
    Fixture fixture;
    fixture.setRecentFiles(1);
    QWidget& group = *fixture.rows().first()->parentWidget();
    const QImage image = fixture.view.grab().toImage();
    const QColor ground = fixture.themes.currentTheme().backgroundColor.toColor();
    QVERIFY(distance(image.pixelColor(2, 2), ground) <= 1);
    QColor secondary = systemColor(SystemColor::secondaryLabel, Appearance::dark);
    secondary.setAlphaF(secondary.alphaF() * 0.1F);
    const QPoint edge = group.mapTo(&fixture.view, QPoint(3, group.height() / 2));
    QVERIFY(distance(image.pixelColor(edge), over(ground, secondary)) <= 1);
    // Its corners are round.
    QVERIFY(distance(image.pixelColor(group.mapTo(&fixture.view, QPoint(0, 0))), ground) <= 1);
}

void WelcomeViewTest::theColumnIsSpacedByTwenty()
{
    Fixture fixture;
    QList<QWidget*> column{fixture.view.findChild<SymbolLabel*>(), fixture.label(u"KelmWright"_s),
                           fixture.label(u"Start editing by creating a new file or opening an existing one"_s),
                           visibleButton(fixture.view, u"New File"_s)};
    for (qsizetype index = 1; index < column.size(); ++index) {
        QCOMPARE(column.at(index)->y(), column.at(index - 1)->geometry().bottom() + 1 + 20);
    }
    const QWidget* open = visibleButton(fixture.view, u"Open File"_s);
    QCOMPARE(open->y(), column.last()->y());
    QCOMPARE(open->x(), column.last()->geometry().right() + 1 + 20);
    // In the middle of the area.
    for (const QWidget* part : column.first(3)) {
        QVERIFY(std::abs(part->geometry().center().x() - part->parentWidget()->rect().center().x()) <= 1);
    }
}

void WelcomeViewTest::headingAndAdviceLookAsTheyShould()
{
    Fixture fixture;
    fixture.setRecentFiles(1);
    TextLabel& advice = *fixture.label(u"Start editing by creating a new file or opening an existing one"_s);
    TextLabel secondary(advice.text(), style::interfaceFont(style::typeSize::body), Tint::secondary());
    QVERIFY(looksLike(advice, secondary));
    TextLabel& heading = *fixture.label(u"Recent Files"_s);
    TextLabel headline(heading.text(), style::headlineFont(), Tint::primary());
    QVERIFY(looksLike(heading, headline));
    // What is in the group begins at its left.
    QCOMPARE(heading.x(), fixture.rows().first()->x());
    QVERIFY(heading.x() > 0 && heading.x() < 40);
}

void WelcomeViewTest::noSettingKeepsItAway()
{
    AppStateFixture state;
    state.userDefaults.setBoolean(u"showWelcome"_s, false);
    ThemeManager themes{{state.userDefaults, state.log, state.folder.path(), [](Appearance) {}}};
    EditorArea area(state.state, themes);
    area.resize(800, 700);
    area.show();
    QVERIFY(visibleButton(area, u"New File"_s) != nullptr);
    state.state.createNewTab();
    QVERIFY(visibleButton(area, u"New File"_s) == nullptr);
    state.state.setDocuments({});
    QVERIFY(visibleButton(area, u"New File"_s) != nullptr);
}

const kelm::test::Registered<WelcomeViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace welcome_view_test

#include "welcome_view_test.moc"
