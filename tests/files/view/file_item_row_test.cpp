#include "files/view/file_item_row.h"
#include "files/view/file_tree_model.h"
#include "files/view/file_tree_view.h"
#include "platform/style/view/ink.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "support/app_state_fixture.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QListView>
#include <QStandardItemModel>
#include <QtTest>

namespace file_item_row_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int width = 300;
constexpr int height = 24;
constexpr int leading = 10;
constexpr int chevronWidth = 14;
/// Behind a badge.
constexpr int trailing = 4;

/// What a row is painted from.
struct Row
{
    QString name = u"name"_s;
    int depth = 0;
    bool isDirectory = false;
    bool isExpanded = false;
    QString icon = u"doc"_s;
    SystemColor iconColor = SystemColor::secondaryLabel;
    QString badge = {};
    SystemColor badgeColor = SystemColor::yellow;
};

QColor ground()
{
    return systemColor(SystemColor::windowBackground, Appearance::dark);
}

QImage emptyPicture()
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(ground());
    return image;
}

QImage picture(const Row& row, QStyle::State state = {})
{
    QStandardItemModel model;
    auto item = std::make_unique<QStandardItem>(row.name);
    item->setData(row.depth, FileTreeModel::depthRole);
    item->setData(row.isDirectory, FileTreeModel::isDirectoryRole);
    item->setData(row.isExpanded, FileTreeModel::isExpandedRole);
    item->setData(row.icon, FileTreeModel::iconRole);
    item->setData(int(row.iconColor), FileTreeModel::iconColorRole);
    item->setData(row.badge, FileTreeModel::badgeRole);
    item->setData(int(row.badgeColor), FileTreeModel::badgeColorRole);
    model.appendRow(item.release());
    const QListView list;
    QStyleOptionViewItem option;
    option.widget = &list;
    option.state = state;
    option.rect = QRect(0, 0, width, height);
    QImage image = emptyPicture();
    QPainter painter(&image);
    FileItemRow().paint(&painter, option, model.index(0, 0));
    return image;
}

QImage symbol(const QString& name, int size, SystemColor color)
{
    return symbolOn(ground(), name, size, style::ink(color, Appearance::dark));
}

} // namespace

class FileItemRowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void eachLevelIsIndentedBySixteen();
    void theChevronTellsTheStateOfAFolder();
    void aFileHasNoChevron();
    void theIconStandsInItsColour_data();
    void theIconStandsInItsColour();
    void theBadgeStandsAtTheEndInItsColour_data();
    void theBadgeStandsAtTheEndInItsColour();
    void withoutABadgeTheEndIsEmpty();
    void aLongNameEndsBeforeTheBadge();
    void theGroundUnderTheMouseIsATenthOfTheSecondaryColour();
    void theEmptyStateReads();
    void theEmptyStateStandsBack();
};

void FileItemRowTest::eachLevelIsIndentedBySixteen()
{
    const Row top{.isDirectory = true, .icon = u"folder.fill"_s};
    const QImage flat = picture(top);
    QVERIFY(isPlain(flat.copy(0, 0, leading, height), ground()));
    QVERIFY(!isPlain(flat.copy(leading, 0, chevronWidth, height), ground()));
    for (const int depth : {1, 2, 5}) {
        Row row = top;
        row.depth = depth;
        const QImage deep = picture(row);
        const int indent = 16 * depth;
        QVERIFY(isPlain(deep.copy(0, 0, leading + indent, height), ground()));
        QCOMPARE(deep.copy(indent, 0, width - indent, height), flat.copy(0, 0, width - indent, height));
    }
}

void FileItemRowTest::theChevronTellsTheStateOfAFolder()
{
    const QRect place(leading, (height - 10) / 2, 10, 10);
    const QImage collapsed = picture({.isDirectory = true});
    QVERIFY(isSame(collapsed.copy(place), symbol(u"chevron.right"_s, 10, SystemColor::secondaryLabel)));
    const QImage expanded = picture({.isDirectory = true, .isExpanded = true});
    QVERIFY(isSame(expanded.copy(place), symbol(u"chevron.down"_s, 10, SystemColor::secondaryLabel)));
}

void FileItemRowTest::aFileHasNoChevron()
{
    QVERIFY(isPlain(picture({}).copy(0, 0, leading + chevronWidth, height), ground()));
}

void FileItemRowTest::theIconStandsInItsColour_data()
{
    QTest::addColumn<QString>("icon");
    QTest::addColumn<SystemColor>("color");
    QTest::newRow("Swift") << u"swift"_s << SystemColor::orange;
    QTest::newRow("Python") << u"chevron.left.forwardslash.chevron.right"_s << SystemColor::blue;
    QTest::newRow("JavaScript") << u"curlybraces"_s << SystemColor::yellow;
    QTest::newRow("JSON") << u"doc.text"_s << SystemColor::green;
    QTest::newRow("Markdown") << u"doc.richtext"_s << SystemColor::purple;
    QTest::newRow("HTML") << u"globe"_s << SystemColor::secondaryLabel;
    QTest::newRow("folder") << u"folder.fill"_s << SystemColor::secondaryLabel;
}

void FileItemRowTest::theIconStandsInItsColour()
{
    QFETCH(QString, icon);
    QFETCH(SystemColor, color);
    // In the middle of a frame 20 wide.
    const QImage shown = picture({.name = {}, .icon = icon, .iconColor = color});
    QVERIFY(isSame(shown.copy(leading + chevronWidth + 3, 5, 14, 14), symbol(icon, 14, color)));
    QVERIFY(isPlain(shown.copy(leading + chevronWidth + 20, 0, 200, height), ground()));
}

void FileItemRowTest::theBadgeStandsAtTheEndInItsColour_data()
{
    QTest::addColumn<QString>("badge");
    QTest::addColumn<SystemColor>("color");
    QTest::newRow("modified") << u"M"_s << SystemColor::yellow;
    QTest::newRow("added") << u"A"_s << SystemColor::green;
    QTest::newRow("deleted") << u"D"_s << SystemColor::red;
    QTest::newRow("renamed") << u"R"_s << SystemColor::blue;
    QTest::newRow("conflicted") << u"!"_s << SystemColor::orange;
}

void FileItemRowTest::theBadgeStandsAtTheEndInItsColour()
{
    QFETCH(QString, badge);
    QFETCH(SystemColor, color);
    const QImage shown = picture({.badge = badge, .badgeColor = color});
    QImage expected = emptyPicture();
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(style::interfaceFont(10, QFont::Bold));
    painter.setPen(style::ink(color, Appearance::dark));
    painter.drawText(QRect(0, 0, width - trailing, height), Qt::AlignRight | Qt::AlignVCenter, badge);
    painter.end();
    const QRect end(width / 2, 0, width / 2, height);
    QVERIFY(!isPlain(expected.copy(end), ground()));
    QVERIFY(isSame(shown.copy(end), expected.copy(end)));
}

void FileItemRowTest::withoutABadgeTheEndIsEmpty()
{
    QVERIFY(isPlain(picture({}).copy(width / 2, 0, width / 2, height), ground()));
}

void FileItemRowTest::aLongNameEndsBeforeTheBadge()
{
    const QImage shown = picture({.name = QString(400, u'i'), .badge = u"M"_s});
    const int badge = QFontMetrics(style::interfaceFont(10, QFont::Bold)).horizontalAdvance(u'M');
    // With a gap of 4 before the badge.
    const int end = width - trailing - badge - 4;
    const QRect place(end, 0, width - end, height);
    QCOMPARE(shown.copy(place), picture({.name = {}, .badge = u"M"_s}).copy(place));
    QVERIFY(!isPlain(shown.copy(end - 20, 0, 20, height), ground()));
}

void FileItemRowTest::theGroundUnderTheMouseIsATenthOfTheSecondaryColour()
{
    const Row row{.isDirectory = true, .badge = u"M"_s};
    const QPoint free(width / 2, 3);
    QCOMPARE(picture(row).pixelColor(free), ground());
    QColor secondary = systemColor(SystemColor::secondaryLabel, Appearance::dark);
    secondary.setAlphaF(secondary.alphaF() * 0.1F);
    const QImage hovered = picture(row, QStyle::State_MouseOver);
    QVERIFY(distance(hovered.pixelColor(free), over(ground(), secondary)) <= 1);
    // From end to end, with round corners.
    QCOMPARE(hovered.pixelColor(hovered.rect().topLeft()), ground());
    for (const int x : {0, width - 1}) {
        QVERIFY(distance(hovered.pixelColor(x, height / 2), over(ground(), secondary)) <= 1);
    }
    // A row that is current, or selected, has no ground by that.
    QCOMPARE(picture(row, QStyle::State_HasFocus | QStyle::State_Selected), picture(row));
}

void FileItemRowTest::theEmptyStateReads()
{
    AppStateFixture fixture;
    FileTreeView view(fixture.state, fixture.filePanels);
    view.resize(260, 500);
    view.show();
    QList<std::pair<int, QString>> found;
    for (auto* label : view.findChildren<TextLabel*>()) {
        found.append({label->mapTo(&view, QPoint()).y(), label->isVisible() ? label->text() : QString()});
    }
    for (auto* button : view.findChildren<PlainButton*>()) {
        found.append({button->mapTo(&view, QPoint()).y(), button->isVisible() ? button->text() : QString()});
    }
    std::sort(found.begin(), found.end());
    QStringList texts;
    for (const auto& [y, text] : found) {
        if (!text.isEmpty()) {
            texts.append(text);
        }
    }
    QCOMPARE(texts, (QStringList{u"No folder opened"_s, u"Open Folder…"_s, u"or drag a folder into the sidebar"_s}));
    fixture.state.setCurrentProject(QUrl::fromLocalFile(fixture.folder.path()));
    for (auto* label : view.findChildren<TextLabel*>()) {
        QVERIFY(!label->isVisible() || !texts.contains(label->text()));
    }
}

void FileItemRowTest::theEmptyStateStandsBack()
{
    AppStateFixture fixture;
    FileTreeView view(fixture.state, fixture.filePanels);
    view.resize(260, 500);
    view.show();
    auto* symbol = view.findChild<SymbolLabel*>();
    SymbolLabel question(u"folder.badge.questionmark"_s, 28, Tint::secondary().at(0.6));
    QVERIFY(icons::has(u"folder.badge.questionmark"_s));
    QCOMPARE(symbol->size(), QSize(28, 28));
    QVERIFY(looksLike(*symbol, question));
    const auto isTinted = [&view](const QString& text, int size, const Tint& tint) {
        for (auto* label : view.findChildren<TextLabel*>()) {
            if (label->text() == text) {
                TextLabel expected(text, style::interfaceFont(size), tint);
                return looksLike(*label, expected);
            }
        }
        return false;
    };
    QVERIFY(isTinted(u"No folder opened"_s, 13, Tint::secondary()));
    QVERIFY(isTinted(u"or drag a folder into the sidebar"_s, 10, Tint::secondary().at(0.7)));
}

const kelm::test::Registered<FileItemRowTest> registered(kelm::test::Toolkit::widgets);

} // namespace file_item_row_test

#include "file_item_row_test.moc"
