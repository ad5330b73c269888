#include "editor/themes/theme_manager.h"
#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "run/view/problems_view.h"
#include "support/captured_log.h"
#include "support/painted.h"
#include "support/test_program.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

namespace problems_view_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

class ProblemsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { style::installOn(*qApp); }

    void itSaysThatThereAreNone();
    void itsSymbolAndTextAreSecondary();
    void itsGroundIsTheThemes();
};

namespace {

struct Fixture
{
    QTemporaryDir home;
    UserDefaults defaults{home.filePath(u"defaults.conf"_s)};
    CapturedLog log;
    ThemeManager themes{{defaults, log, home.path(), [](Appearance) {}}};
    ProblemsView view{themes};
};

} // namespace

void ProblemsViewTest::itSaysThatThereAreNone()
{
    Fixture fixture;
    const auto labels = fixture.view.findChildren<TextLabel*>();
    QCOMPARE(labels.size(), qsizetype(1));
    QCOMPARE(labels.front()->text(), u"No problems detected"_s);
    QCOMPARE(fixture.view.findChildren<SymbolLabel*>().size(), qsizetype(1));
}

void ProblemsViewTest::itsSymbolAndTextAreSecondary()
{
    Fixture fixture;
    fixture.view.resize(400, 200);
    fixture.view.show();
    QVERIFY(icons::has(u"exclamationmark.triangle"_s));
    SymbolLabel triangle(u"exclamationmark.triangle"_s, 24, Tint::secondary());
    QVERIFY(looksLike(*fixture.view.findChild<SymbolLabel*>(), triangle));
    TextLabel text(u"No problems detected"_s, style::interfaceFont(13), Tint::secondary());
    QVERIFY(looksLike(*fixture.view.findChild<TextLabel*>(), text));
}

void ProblemsViewTest::itsGroundIsTheThemes()
{
    Fixture fixture;
    fixture.view.resize(400, 200);
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        fixture.themes.setCurrentTheme(theme);
        QCOMPARE(fixture.view.grab().toImage().pixelColor(0, 0).rgb(), theme.backgroundColor.toColor().rgb());
    }
}

const kelm::test::Registered<ProblemsViewTest> registered(kelm::test::Toolkit::widgets);

} // namespace problems_view_test

#include "problems_view_test.moc"
