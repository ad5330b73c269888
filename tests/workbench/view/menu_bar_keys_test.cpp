#include "support/test_program.h"
#include "workbench/view/window_fixture.h"

namespace menu_bar_keys_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

/// The page of keys names every key of the menus, and none that is no longer there.
class MenuBarKeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeyOfTheMenusIsNamed();
};

void MenuBarKeysTest::everyKeyOfTheMenusIsNamed()
{
    WindowFixture fixture;
    QStringList rows;
    for (const QAction* action : fixture.window.menuBar()->findChildren<QAction*>()) {
        if (!action->shortcut().isEmpty()) {
            rows << u"| %1 | `%2` |"_s.arg(action->text(), action->shortcut().toString(QKeySequence::PortableText));
        }
    }
    QVERIFY(!rows.isEmpty());

    QFile page(QStringLiteral(KELM_KEYS_PAGE));
    QVERIFY(page.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(page.readAll());
    const QString menus = text.section(u"## In the menus"_s, 1).section(u"\n## "_s, 0, 0);
    const auto isRow = [](const QString& line) { return line.startsWith(u"| ") && line.contains(u'`'); };
    QStringList named = menus.split(u'\n');
    named.erase(std::remove_if(named.begin(), named.end(), std::not_fn(isRow)), named.end());
    QCOMPARE(QSet<QString>(named.begin(), named.end()), QSet<QString>(rows.begin(), rows.end()));
}

const kelm::test::Registered<MenuBarKeysTest> registered(kelm::test::Toolkit::widgets);

} // namespace menu_bar_keys_test

#include "menu_bar_keys_test.moc"
