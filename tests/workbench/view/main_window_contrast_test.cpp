#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "support/ink_recorder.h"
#include "support/test_program.h"
#include "workbench/view/fixed_colors.h"
#include "workbench/view/look_stages.h"
#include "workbench/view/overlay_layer.h"

#include <QMenu>

namespace main_window_contrast_test {

using namespace kelm;
using namespace kelm::test;

namespace {

constexpr double leastOfText = 4.5;
constexpr double leastOfSymbols = 3;
constexpr double leastOfDisabled = 2.5;

/// The widget that a text or a symbol belongs to.
const QWidget& ownerOf(const Ink& ink, const QWidget& window)
{
    const QWidget* const child = window.childAt(ink.place.center());
    return child != nullptr ? *child : window;
}

bool isDisabled(const Ink& ink, const QWidget& owner)
{
    if (const auto* menu = qobject_cast<const QMenu*>(&owner)) {
        const QAction* const action = menu->actionAt(ink.place.center());
        return action != nullptr && !action->isEnabled();
    }
    return !owner.isEnabled();
}

double leastContrast(const Ink& ink, const QWidget& owner)
{
    if (isDisabled(ink, owner)) {
        return leastOfDisabled;
    }
    return ink.kind == Ink::Kind::text ? leastOfText : leastOfSymbols;
}

/// The class names of a widget and of what it stands in.
QString pathOf(const QWidget& widget)
{
    QStringList names;
    for (const QWidget* each = &widget; each != nullptr; each = each->parentWidget()) {
        names.append(QString::fromLatin1(each->metaObject()->className()).remove(QStringLiteral("kelm::")));
        if (each->isWindow()) {
            break;
        }
    }
    return names.join(u'/');
}

QString told(const QString& theme, const Ink& ink, const QString& path, double least)
{
    const QString what = ink.kind == Ink::Kind::text ? u'"' + ink.text.left(40) + u'"' : QStringLiteral("a symbol");
    return QStringLiteral("%1: %2 %3 on %4: %5, wanted %6 (%7)")
        .arg(theme, what, ink.color.name(), ink.ground.name(), QString::number(ink.contrast(), 'f', 2),
             QString::number(least), path);
}

void choose(LookFixture& fixture, const EditorTheme& theme)
{
    fixture.themes.setCurrentTheme(theme);
    QApplication::setPalette(style::palette(theme.isDark ? Appearance::dark : Appearance::light));
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* alert = qobject_cast<QMessageBox*>(window)) {
            // It takes its picture when it opens, and nobody chooses a theme while it is open.
            alert->setIcon(alert->icon());
        }
    }
    fixture.settle();
}

QStringList palePlaces(const EditorTheme& theme)
{
    QStringList pale;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible()) {
            continue;
        }
        for (const Ink& ink : inksOf(*window)) {
            const QWidget& owner = ownerOf(ink, *window);
            // What an overlay dims is not for reading, and is measured where nothing lies over it.
            if (qobject_cast<const OverlayLayer*>(&owner) != nullptr) {
                continue;
            }
            const QString path = pathOf(owner);
            const double least = leastContrast(ink, owner);
            // Half of a hundredth is rounding.
            if (ink.contrast() + 0.005 < least && !isFixed(path, ink, theme)) {
                pale.append(told(theme.name, ink, path, least));
            }
        }
    }
    pale.removeDuplicates();
    return pale;
}

const std::vector<LookStage>& lookStages()
{
    static const std::vector<LookStage> stages = [] {
        std::vector<LookStage> all = panelStages();
        const std::vector<LookStage> others = overlayStages();
        all.insert(all.end(), others.begin(), others.end());
        return all;
    }();
    return stages;
}

} // namespace

class MainWindowContrastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        useFixedGitEnvironment();
        style::installOn(*qApp);
        project_ = std::make_unique<LookProject>();
    }
    void cleanup() { QApplication::setPalette(style::palette(Appearance::dark)); }

    void aPaleTextIsFound();
    void whatIsDrawnIsRead_data();
    void whatIsDrawnIsRead();
    void whatIsFixedIsAsItWasMeasured();

private:
    std::unique_ptr<LookProject> project_;
};

void MainWindowContrastTest::aPaleTextIsFound()
{
    QWidget window;
    window.setPalette(QPalette(Qt::white, Qt::white));
    window.resize(200, 60);
    QLabel pale(QStringLiteral("pale"), &window);
    QPalette colors = pale.palette();
    colors.setColor(QPalette::WindowText, QColor(200, 200, 200));
    pale.setPalette(colors);
    pale.resize(100, 30);
    SymbolLabel mark(QStringLiteral("plus"), 16, QColor(0, 0, 0, 128), &window);
    mark.setGeometry(120, 10, 16, 16);
    window.show();
    const std::vector<Ink> inks = inksOf(window);
    QCOMPARE(inks.size(), std::size_t(2));
    QCOMPARE(inks[0].text, QStringLiteral("pale"));
    QCOMPARE(inks[0].color, QColor(200, 200, 200));
    QCOMPARE(inks[0].ground, QColor(Qt::white));
    QVERIFY(std::abs(inks[0].contrast() - 1.67) < 0.01);
    QCOMPARE(inks[1].kind, Ink::Kind::symbol);
    QVERIFY(isNear(inks[1].color, QColor(127, 127, 127)));
}

void MainWindowContrastTest::whatIsDrawnIsRead_data()
{
    QTest::addColumn<qsizetype>("stage");
    for (qsizetype stage = 0; stage < std::ssize(lookStages()); ++stage) {
        QTest::newRow(lookStages()[stage].name) << stage;
    }
}

void MainWindowContrastTest::whatIsDrawnIsRead()
{
    QFETCH(qsizetype, stage);
    LookFixture fixture(*project_);
    lookStages()[stage].show(fixture);
    fixture.settle();
    QStringList pale;
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        choose(fixture, theme);
        pale.append(palePlaces(theme));
    }
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window != &fixture.window && window->isVisible()) {
            window->close();
        }
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY2(pale.isEmpty(), qPrintable(u'\n' + pale.join(u'\n')));
}

void MainWindowContrastTest::whatIsFixedIsAsItWasMeasured()
{
    QStringList measured;
    const auto note = [&](const EditorTheme& theme, const char* name, double figure, double least) {
        if (figure + 0.005 < least) {
            measured.append(
                QStringLiteral("%1, %2: %3").arg(theme.name, QString::fromLatin1(name)).arg(figure, 0, 'f', 2));
        }
    };
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        const QColor ground = theme.backgroundColor.toColor();
        const QColor gutter = theme.gutterColor.toColor();
        const Appearance appearance = theme.isDark ? Appearance::dark : Appearance::light;
        for (const ThemeInk& ink : themeInks) {
            const bool isOnGutter = ink.color == &EditorTheme::lineNumberColor;
            note(theme, ink.name, contrast((theme.*ink.color).toColor(), isOnGutter ? gutter : ground), leastOfText);
        }
        const auto layer = [](QColor color, double opacity) {
            color.setAlphaF(static_cast<float>(opacity));
            return color;
        };
        const QColor selected = over(ground, layer(systemColor(SystemColor::blue, Appearance::dark), 0.4));
        note(theme, "text, selected", contrast(theme.textColor.toColor(), selected), leastOfText);
        const QColor map = over(ground, layer(theme.isDark ? Qt::white : Qt::black, 0.04));
        note(theme, "plain line of the minimap", contrast(over(map, layer(Qt::white, 0.5)), map), leastOfSymbols);
        note(theme, "button that runs", contrast(Qt::white, systemColor(SystemColor::green, appearance)), leastOfText);
        const QColor blue = systemColor(SystemColor::blue, appearance);
        note(theme, "line number of a lesson", contrast(blue, over(gutter, layer(blue, 0.1))), leastOfText);
    }
    QStringList fixed;
    for (const FixedInk& ink : fixedInks) {
        fixed.append(QStringLiteral("%1, %2: %3")
                         .arg(QString::fromLatin1(ink.theme), QString::fromLatin1(ink.name))
                         .arg(ink.contrast, 0, 'f', 2));
    }
    measured.sort();
    fixed.sort();
    QCOMPARE(measured, fixed);
}

const kelm::test::Registered<MainWindowContrastTest> registered(kelm::test::Toolkit::widgets);

} // namespace main_window_contrast_test

#include "main_window_contrast_test.moc"
