#include "editor/themes/theme_manager.h"
#include "platform/view/labels.h"
#include "run/view/problems_view.h"
#include "support/captured_log.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class ProblemsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itSaysThatThereAreNone();
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

void ProblemsViewTest::itsGroundIsTheThemes()
{
    Fixture fixture;
    fixture.view.resize(400, 200);
    for (const EditorTheme& theme : EditorTheme::allThemes()) {
        fixture.themes.setCurrentTheme(theme);
        QCOMPARE(fixture.view.grab().toImage().pixelColor(0, 0).rgb(), theme.backgroundColor.toColor().rgb());
    }
}

QTEST_MAIN(ProblemsViewTest)
#include "problems_view_test.moc"
