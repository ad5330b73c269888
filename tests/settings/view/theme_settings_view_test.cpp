#include "platform/style/view/ink.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "settings/view/settings_view.h"
#include "settings/view/theme_preview.h"
#include "settings/view/theme_settings_view.h"
#include "support/captured_log.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QListWidget>
#include <QTemporaryDir>
#include <QtTest>

namespace theme_settings_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir home;
    UserDefaults store{home.filePath(u"store.conf"_s)};
    CapturedLog log;
    ThemeManager themes{{store, log, home.path(), [](Appearance) {}}};
    ThemeSettingsView view{themes};

    Fixture()
    {
        view.resize(620, 460);
        view.show();
        if (!QTest::qWaitForWindowExposed(&view)) {
            qFatal("no window");
        }
    }

    int rowCount() const { return static_cast<int>(themes.availableThemes().size()); }
    QImage row(int index)
    {
        QListWidget& list = view.list();
        return list.viewport()->grab(list.visualItemRect(list.item(index))).toImage();
    }
    /// The rows with a check mark.
    QList<int> checked()
    {
        QList<int> rows;
        for (int index = 0; index < rowCount(); ++index) {
            const QImage image = row(index);
            const QRect place(image.width() - 24, image.height() / 2 - 6, 12, 12);
            const QColor ground = image.pixelColor(place.left() - 4, image.height() / 2);
            const QColor accent = style::ink(SystemColor::accent, Appearance::dark);
            if (isSame(image.copy(place), symbolOn(ground, u"checkmark"_s, 12, accent))) {
                rows.append(index);
            } else if (!isPlain(image.copy(place), ground)) {
                rows.append(-1);
            }
        }
        return rows;
    }
    void apply()
    {
        for (auto* button : view.findChildren<PlainButton*>()) {
            if (button->text() == u"Apply Theme") {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
    }
};

constexpr int previewPadding = 14;
constexpr int previewRow = 20;
constexpr int previewNumbers = 28;

/// A theme on black in which no two colours of the sample have the same of red, green and blue in them.
EditorTheme pureTheme()
{
    EditorTheme theme = EditorTheme::monokai();
    theme.backgroundColor = {0, 0, 0, 1};
    theme.commentColor = {1, 0, 0, 1};
    theme.keywordColor = {0, 1, 0, 1};
    theme.typeColor = {0, 0, 1, 1};
    theme.stringColor = {1, 1, 0, 1};
    theme.numberColor = {1, 0, 1, 1};
    theme.lineNumberColor = {0, 1, 1, 1};
    theme.textColor = {1, 1, 1, 1};
    return theme;
}

/// The colours of pure theme that a stretch of a line shows, from left to right, each as long as it goes.
QStringList colorsOf(const QImage& image, const QRect& place)
{
    static const QHash<int, QString> names{{1, u"comment"_s}, {2, u"keyword"_s}, {4, u"type"_s}, {3, u"string"_s},
                                           {5, u"number"_s},  {6, u"line"_s},    {7, u"text"_s}};
    QStringList colors;
    for (int x = place.left(); x <= place.right(); ++x) {
        for (int y = place.top(); y <= place.bottom(); ++y) {
            const QColor color = image.pixelColor(x, y);
            const int parts = (color.red() > 40 ? 1 : 0) + (color.green() > 40 ? 2 : 0) + (color.blue() > 40 ? 4 : 0);
            if (parts != 0 && (colors.isEmpty() || colors.last() != names[parts])) {
                colors.append(names[parts]);
            }
        }
    }
    return colors;
}

} // namespace

class ThemeSettingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void eachRowHasASwatchOfItsTheme();
    void theCheckMarkStandsOnTheCurrentThemeAndMovesWithIt();
    void theSampleHasFiveLinesInTheThemesColours_data();
    void theSampleHasFiveLinesInTheThemesColours();
    void theSampleEndsWithItsFifthLine();
    void theSampleFollowsTheTheme();
    void extensionsAreYetToCome();
    void theListStandsBesideThePreviewAndTheButtons();
};

void ThemeSettingsViewTest::eachRowHasASwatchOfItsTheme()
{
    Fixture fixture;
    QCOMPARE(fixture.view.list().count(), fixture.rowCount());
    QVERIFY(fixture.rowCount() >= 6);
    QVERIFY(fixture.view.list().width() >= 150);
    for (int index = 0; index < fixture.rowCount(); ++index) {
        const EditorTheme& theme = fixture.themes.availableThemes().at(index);
        QCOMPARE(fixture.view.list().item(index)->text(), theme.name);
        const QImage image = fixture.row(index);
        const QColor inside = theme.backgroundColor.toColor();
        const QRect swatch(12, image.height() / 2 - 8, 22, 16);
        QVERIFY(isPlain(image.copy(swatch.adjusted(2, 2, -2, -2)), inside));
        // The outline runs through the outermost pixels, half of which the ground of the swatch fills.
        QColor half = inside;
        half.setAlphaF(0.5F);
        QColor gray = systemColor(SystemColor::gray, Appearance::dark);
        gray.setAlphaF(0.3F);
        const QColor ground = image.pixelColor(2, 2);
        const QColor outline = over(over(ground, half), gray);
        QVERIFY(distance(image.pixelColor(swatch.left(), swatch.center().y()), outline) <= 3);
        QVERIFY(distance(image.pixelColor(swatch.right(), swatch.center().y()), outline) <= 3);
        QVERIFY(distance(image.pixelColor(swatch.left() - 1, swatch.center().y()), ground) <= 1);
    }
}

void ThemeSettingsViewTest::theCheckMarkStandsOnTheCurrentThemeAndMovesWithIt()
{
    Fixture fixture;
    QCOMPARE(fixture.themes.currentTheme(), fixture.themes.availableThemes().at(0));
    QCOMPARE(fixture.checked(), QList<int>{0});
    fixture.view.list().setCurrentRow(3);
    QCOMPARE(fixture.checked(), QList<int>{0});
    fixture.apply();
    QCOMPARE(fixture.themes.currentTheme(), fixture.themes.availableThemes().at(3));
    QCOMPARE(fixture.checked(), QList<int>{3});
    // So it does when the theme is set elsewhere.
    fixture.themes.setCurrentTheme(fixture.themes.availableThemes().at(1));
    QCOMPARE(fixture.checked(), QList<int>{1});
}

void ThemeSettingsViewTest::theSampleHasFiveLinesInTheThemesColours_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("colors");
    QTest::newRow("comment") << 0 << u"// This is a comment"_s << QStringList{u"comment"_s};
    QTest::newRow("type") << 1 << u"struct ContentView: View {"_s
                          << QStringList{u"keyword"_s, u"type"_s, u"text"_s, u"type"_s, u"text"_s};
    QTest::newRow("string") << 2 << u"    var message = \"Hello World\""_s
                            << QStringList{u"keyword"_s, u"text"_s, u"string"_s};
    QTest::newRow("number") << 3 << u"    let count = 42"_s << QStringList{u"keyword"_s, u"text"_s, u"number"_s};
    QTest::newRow("end") << 4 << u"}"_s << QStringList{u"text"_s};
}

void ThemeSettingsViewTest::theSampleHasFiveLinesInTheThemesColours()
{
    QFETCH(int, line);
    QFETCH(QString, text);
    QFETCH(QStringList, colors);
    ThemePreview preview(pureTheme());
    preview.resize(340, preview.sizeHint().height());
    const QImage image = preview.grab().toImage();
    const int top = previewPadding + line * previewRow;
    const int left = previewPadding + previewNumbers;
    QCOMPARE(colorsOf(image, {previewPadding, top, previewNumbers, previewRow}), QStringList{u"line"_s});
    QCOMPARE(colorsOf(image, {left, top, 340 - left, previewRow}), colors);
    // It reads as it does in one colour.
    const QFont font = style::monospaced(13);
    const QFontMetricsF metrics(font);
    QImage expected(340, previewRow, QImage::Format_RGB32);
    expected.fill(Qt::black);
    QPainter painter(&expected);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QPointF(left, (previewRow + metrics.ascent() - metrics.descent()) / 2), text);
    painter.drawText(QRect(previewPadding, 0, previewNumbers - 10, previewRow), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(line + 1));
    painter.end();
    for (int x = previewPadding; x < 340 - previewPadding; ++x) {
        for (int y = 0; y < previewRow; ++y) {
            const QColor shown = image.pixelColor(x, top + y);
            const int strength = std::max({shown.red(), shown.green(), shown.blue()});
            QVERIFY(std::abs(strength - expected.pixelColor(x, y).red()) < 60);
        }
    }
}

void ThemeSettingsViewTest::theSampleEndsWithItsFifthLine()
{
    ThemePreview preview(pureTheme());
    preview.resize(340, preview.sizeHint().height() + 3 * previewRow);
    const QImage image = preview.grab().toImage();
    const int end = previewPadding + 5 * previewRow;
    QVERIFY(isPlain(image.copy(10, end, 320, image.height() - end - 10), Qt::black));
}

void ThemeSettingsViewTest::theSampleFollowsTheTheme()
{
    ThemePreview preview(EditorTheme::monokai());
    preview.resize(preview.sizeHint());
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        preview.setTheme(theme);
        const QImage image = preview.grab().toImage();
        QVERIFY(isPlain(image.copy(8, 2, 300, 10), theme.backgroundColor.toColor()));
    }
}

void ThemeSettingsViewTest::extensionsAreYetToCome()
{
    ExtensionSettingsView view;
    view.resize(600, 400);
    view.show();
    QStringList texts;
    int y = 0;
    for (auto* label : view.findChildren<TextLabel*>()) {
        QVERIFY(label->isVisible() && label->y() > y);
        y = label->y();
        texts.append(label->text());
    }
    QCOMPARE(texts, (QStringList{u"Extensions"_s, u"Extensions will be available in a future update."_s}));
    auto* symbol = view.findChild<SymbolLabel*>();
    SymbolLabel piece(u"puzzlepiece.extension"_s, 40, Tint::secondary());
    QVERIFY(icons::has(u"puzzlepiece.extension"_s));
    QVERIFY(symbol->y() < view.findChildren<TextLabel*>().first()->y());
    QVERIFY(looksLike(*symbol, piece));
    const auto* button = view.findChild<PlainButton*>();
    QCOMPARE(button->text(), u"Learn More"_s);
    QVERIFY(button->y() > y);
}

void ThemeSettingsViewTest::theListStandsBesideThePreviewAndTheButtons()
{
    Fixture fixture;
    QVERIFY(fixture.view.list().minimumWidth() >= 150);
    TextLabel* heading = nullptr;
    for (auto* label : fixture.view.findChildren<TextLabel*>()) {
        heading = label->text() == u"Preview" ? label : heading;
    }
    QVERIFY(heading != nullptr);
    QList<PlainButton*> buttons;
    for (const QString& text : {u"Apply Theme"_s, u"Import Theme..."_s}) {
        for (auto* button : fixture.view.findChildren<PlainButton*>()) {
            if (button->text() == text) {
                buttons.append(button);
            }
        }
    }
    QCOMPARE(buttons.size(), 2);
    QCOMPARE(buttons.first()->look().ground, prominentLook().ground);
    QVERIFY(buttons.last()->look().ground != prominentLook().ground);
    QVERIFY(buttons.first()->geometry().right() < buttons.last()->x());
    const int list = fixture.view.list().geometry().right();
    QVERIFY(heading->x() > list && fixture.view.preview().x() > list && buttons.first()->x() > list);
    QVERIFY(heading->geometry().bottom() < fixture.view.preview().y());
    QVERIFY(fixture.view.preview().geometry().bottom() < buttons.first()->y());
}

const kelm::test::Registered<ThemeSettingsViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace theme_settings_view_test

#include "theme_settings_view_test.moc"
