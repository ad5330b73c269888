#include "maintenance/uninstall_service.h"
#include "platform/files/standard_paths.h"
#include "platform/files/user_defaults.h"
#include "support/fake_alerts.h"
#include "support/fake_workspace.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace uninstall_service_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A made-up home with everything in it.
struct Fixture
{
    QTemporaryDir home;
    FakeAlerts alerts;
    FakeWorkspace workspace;
    int quits = 0;
    UserDefaults preferences{home.filePath(u"stored.conf"_s)};
    UninstallService service{{alerts, workspace, preferences, [this] { ++quits; }}};
    UninstallService::Plan plan{url(u"KelmWright"_s), url(u"support"_s), url(u"caches"_s), url(u"preferences.conf"_s),
                                url(u"state"_s)};

    Fixture()
    {
        for (const char* folder : {"support", "caches", "state"}) {
            QDir(home.path()).mkdir(QString::fromLatin1(folder));
        }
        for (const char* name : {"KelmWright", "preferences.conf"}) {
            QFile file(home.filePath(QString::fromLatin1(name)));
            if (!file.open(QIODevice::WriteOnly)) {
                qFatal("no file");
            }
        }
    }

    /// What was put off comes while the fixture stands.
    ~Fixture() { QCoreApplication::processEvents(); }

    QUrl url(const QString& name) const { return QUrl::fromLocalFile(home.filePath(name)); }
    QString line(const QString& label, const QString& name) const
    {
        return u"  • "_s + label + u": "_s + home.filePath(name);
    }
};

} // namespace

class UninstallServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theAlertHasItsWordsAndButtons();
    void theListNamesWhatExists();
    void withoutPreferencesNothingIsSaidOrMovedOfThem();
    void cancellingChangesNothing_data();
    void cancellingChangesNothing();
    void keepingTheDataMovesTheProgramAlone();
    void removingEverythingMovesTheProgramLast();
    void aFailureQuitsAllTheSame();
    void absentFieldsAreSkipped();
    void theProgramAsksByItsOwnPlan();
    void thePlanOfTheProgramIsMadeWithoutALook();
    void anApplicationImageIsTheProgram();
    void theImageOfWhoeverStartedTheProgramIsLeftAlone();
};

void UninstallServiceTest::theAlertHasItsWordsAndButtons()
{
    Fixture fixture;
    fixture.service.confirmAndRun(fixture.plan);
    QCOMPARE(fixture.alerts.shown.size(), 1);
    const Alert& alert = fixture.alerts.shown.first();
    QCOMPARE(alert.message, u"Move KelmWright to the Trash?"_s);
    QCOMPARE(alert.informativeText,
             u"This will move the KelmWright app and its user data to the Trash. You can drag them back out if you "
             u"change your mind.\n\nThe following will be moved:\n"_s +
                 UninstallService::itemsList(fixture.plan));
    QCOMPARE(alert.buttons, (QStringList{u"Cancel"_s, u"Keep User Data, Remove App"_s, u"Remove Everything"_s}));
}

void UninstallServiceTest::theListNamesWhatExists()
{
    const Fixture fixture;
    QCOMPARE(
        UninstallService::itemsList(fixture.plan),
        (QStringList{fixture.line(u"App bundle"_s, u"KelmWright"_s),
                     fixture.line(u"Application Support"_s, u"support"_s), fixture.line(u"Caches"_s, u"caches"_s),
                     fixture.line(u"Preferences"_s, u"preferences.conf"_s), fixture.line(u"Saved state"_s, u"state"_s)})
            .join(u'\n'));
}

void UninstallServiceTest::withoutPreferencesNothingIsSaidOrMovedOfThem()
{
    Fixture fixture;
    QFile::remove(fixture.home.filePath(u"preferences.conf"_s));
    fixture.alerts.answer = 2;
    fixture.service.confirmAndRun(fixture.plan);
    QVERIFY(!fixture.alerts.shown.first().informativeText.contains(u"Preferences"_s));
    QVERIFY(!fixture.workspace.trashed.contains(fixture.url(u"preferences.conf"_s)));
    QCOMPARE(fixture.workspace.trashed.size(), 4);
}

void UninstallServiceTest::cancellingChangesNothing_data()
{
    QTest::addColumn<std::optional<int>>("answer");
    QTest::newRow("the first button") << std::optional(0);
    QTest::newRow("closed without one") << std::optional<int>();
    QTest::newRow("another number") << std::optional(3);
}

void UninstallServiceTest::cancellingChangesNothing()
{
    QFETCH(std::optional<int>, answer);
    Fixture fixture;
    fixture.alerts.answer = answer;
    fixture.service.confirmAndRun(fixture.plan);
    QCoreApplication::processEvents();
    QVERIFY(fixture.workspace.trashed.isEmpty());
    QCOMPARE(fixture.quits, 0);
}

void UninstallServiceTest::keepingTheDataMovesTheProgramAlone()
{
    Fixture fixture;
    fixture.alerts.answer = 1;
    fixture.service.confirmAndRun(fixture.plan);
    QCOMPARE(fixture.workspace.trashed, QList<QUrl>{fixture.url(u"KelmWright"_s)});
    QCOMPARE(fixture.quits, 0);
    QTRY_COMPARE(fixture.quits, 1);
    // It lists what exists all the same.
    QVERIFY(fixture.alerts.shown.first().informativeText.contains(u"Application Support"_s));
}

void UninstallServiceTest::removingEverythingMovesTheProgramLast()
{
    Fixture fixture;
    fixture.alerts.answer = 2;
    fixture.service.confirmAndRun(fixture.plan);
    QCOMPARE(fixture.workspace.trashed,
             (QList<QUrl>{fixture.url(u"support"_s), fixture.url(u"caches"_s), fixture.url(u"preferences.conf"_s),
                          fixture.url(u"state"_s), fixture.url(u"KelmWright"_s)}));
    QTRY_COMPARE(fixture.quits, 1);
}

void UninstallServiceTest::aFailureQuitsAllTheSame()
{
    Fixture fixture;
    fixture.workspace.trashError = FileError{};
    fixture.alerts.answer = 2;
    fixture.service.confirmAndRun(fixture.plan);
    QCOMPARE(fixture.workspace.trashed.size(), 5);
    QTRY_COMPARE(fixture.quits, 1);
}

void UninstallServiceTest::absentFieldsAreSkipped()
{
    Fixture fixture;
    fixture.plan.appBundle.reset();
    fixture.plan.cachesDir.reset();
    QVERIFY(!UninstallService::itemsList(fixture.plan).contains(u"App bundle"_s));
    fixture.service.performAndQuit(fixture.plan, false);
    QCOMPARE(fixture.workspace.trashed.size(), 3);
}

void UninstallServiceTest::theProgramAsksByItsOwnPlan()
{
    const QTemporaryDir home;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
        qputenv(variable, home.filePath(QString::fromLatin1(variable)).toLocal8Bit());
    }
    FakeAlerts alerts;
    FakeWorkspace workspace;
    QVERIFY(QDir().mkpath(standardPaths::caches()));
    UserDefaults preferences(standardPaths::preferences());
    // It has been set, and is not in the file yet.
    preferences.setBoolean(u"wordWrap"_s, true);
    UninstallService service({alerts, workspace, preferences, [] { qFatal("nobody chose that"); }});
    service.confirmAndRun();
    QCOMPARE(alerts.shown.size(), 1);
    const QString listed = alerts.shown.first().informativeText.section(u"moved:\n"_s, 1);
    QCOMPARE(listed.split(u'\n'), (QStringList{u"  • App bundle: "_s + QCoreApplication::applicationFilePath(),
                                               u"  • Caches: "_s + standardPaths::caches(),
                                               u"  • Preferences: "_s + standardPaths::preferences()}));
    QVERIFY(workspace.trashed.isEmpty());
}

void UninstallServiceTest::thePlanOfTheProgramIsMadeWithoutALook()
{
    qunsetenv("APPIMAGE");
    const QTemporaryDir home;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
        qputenv(variable, home.filePath(QString::fromLatin1(variable)).toLocal8Bit());
    }
    const UninstallService::Plan plan = UninstallService::currentPlan();
    QCOMPARE(plan.appBundle, std::optional(QUrl::fromLocalFile(QCoreApplication::applicationFilePath())));
    QCOMPARE(plan.supportDir, std::optional(QUrl::fromLocalFile(home.filePath(u"XDG_DATA_HOME/KelmPane"_s))));
    QCOMPARE(plan.cachesDir, std::optional(QUrl::fromLocalFile(home.filePath(u"XDG_CACHE_HOME/com.kelm.KelmPane"_s))));
    QCOMPARE(plan.preferences,
             std::optional(QUrl::fromLocalFile(home.filePath(u"XDG_CONFIG_HOME/com.kelm.KelmPane.conf"_s))));
    QCOMPARE(plan.savedState,
             std::optional(QUrl::fromLocalFile(home.filePath(u"XDG_STATE_HOME/com.kelm.KelmPane.savedState"_s))));
}

void UninstallServiceTest::anApplicationImageIsTheProgram()
{
    qputenv("APPIMAGE", "/somewhere/KelmWright.AppImage");
    qputenv("APPDIR", QCoreApplication::applicationDirPath().toLocal8Bit());
    QCOMPARE(UninstallService::currentPlan().appBundle,
             std::optional(QUrl::fromLocalFile(u"/somewhere/KelmWright.AppImage"_s)));
    qunsetenv("APPIMAGE");
    qunsetenv("APPDIR");
}

void UninstallServiceTest::theImageOfWhoeverStartedTheProgramIsLeftAlone()
{
    const QTemporaryDir mounted;
    const auto program = std::optional(QUrl::fromLocalFile(QCoreApplication::applicationFilePath()));
    qputenv("APPIMAGE", "/somewhere/Another.AppImage");
    QCOMPARE(UninstallService::currentPlan().appBundle, program);
    qputenv("APPDIR", mounted.path().toLocal8Bit());
    QCOMPARE(UninstallService::currentPlan().appBundle, program);
    // A folder whose name only begins like the image's.
    qputenv("APPDIR", QCoreApplication::applicationFilePath().chopped(3).toLocal8Bit());
    QCOMPARE(UninstallService::currentPlan().appBundle, program);
    qunsetenv("APPIMAGE");
    qunsetenv("APPDIR");
}

const kelm::test::Registered<UninstallServiceTest> registered;

} // namespace uninstall_service_test

#include "uninstall_service_test.moc"
