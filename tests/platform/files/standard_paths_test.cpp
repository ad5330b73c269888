#include "platform/files/standard_paths.h"
#include "support/test_program.h"

#include <QDir>
#include <QtTest>

namespace standard_paths_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class StandardPathsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
#ifndef Q_OS_MACOS
    void pathsFollowTheEnvironment();
    void withoutAnEnvironmentTheyStandInTheHomeFolder();
    void aRelativeStateHomeIsIgnored();
#endif
};

#ifndef Q_OS_MACOS

void StandardPathsTest::pathsFollowTheEnvironment()
{
    qputenv("XDG_DATA_HOME", "/x/data");
    qputenv("XDG_CACHE_HOME", "/x/cache");
    qputenv("XDG_CONFIG_HOME", "/x/config");
    qputenv("XDG_STATE_HOME", "/x/state");
    QCOMPARE(standardPaths::applicationSupportDirectory(), u"/x/data"_s);
    QCOMPARE(standardPaths::applicationSupport(), u"/x/data/KelmPane"_s);
    QCOMPARE(standardPaths::caches(), u"/x/cache/com.kelm.KelmPane"_s);
    QCOMPARE(standardPaths::preferences(), u"/x/config/com.kelm.KelmPane.conf"_s);
    QCOMPARE(standardPaths::savedState(), u"/x/state/com.kelm.KelmPane.savedState"_s);
}

void StandardPathsTest::withoutAnEnvironmentTheyStandInTheHomeFolder()
{
    for (const char* name : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"}) {
        qunsetenv(name);
    }
    const QString home = QDir::homePath();
    QCOMPARE(standardPaths::applicationSupport(), home + u"/.local/share/KelmPane"_s);
    QCOMPARE(standardPaths::caches(), home + u"/.cache/com.kelm.KelmPane"_s);
    QCOMPARE(standardPaths::preferences(), home + u"/.config/com.kelm.KelmPane.conf"_s);
    QCOMPARE(standardPaths::savedState(), home + u"/.local/state/com.kelm.KelmPane.savedState"_s);
}

void StandardPathsTest::aRelativeStateHomeIsIgnored()
{
    qputenv("XDG_STATE_HOME", "state");
    QCOMPARE(standardPaths::savedState(), QDir::homePath() + u"/.local/state/com.kelm.KelmPane.savedState"_s);
}

#endif

const kelm::test::Registered<StandardPathsTest> registered;

} // namespace standard_paths_test

#include "standard_paths_test.moc"
