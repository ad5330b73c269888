#include "learning/link_permission.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

namespace link_permission_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

class LinkPermissionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nobodyHasGivenItAtFirst();
    void itIsGivenAndTakenBack();
    void nothingButTrueCounts();
};

void LinkPermissionTest::nobodyHasGivenItAtFirst()
{
    const QTemporaryDir folder;
    const UserDefaults defaults(folder.filePath(u"store.conf"_s));
    QVERIFY(!linkPermission::isGiven(defaults));
}

void LinkPermissionTest::itIsGivenAndTakenBack()
{
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(u"store.conf"_s));
    linkPermission::give(defaults);
    QVERIFY(linkPermission::isGiven(defaults));
    linkPermission::takeBack(defaults);
    QVERIFY(!linkPermission::isGiven(defaults));
    QVERIFY(!defaults.contains(u"runsLessonLinks"_s));
}

void LinkPermissionTest::nothingButTrueCounts()
{
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(u"store.conf"_s));
    defaults.setBoolean(u"runsLessonLinks"_s, false);
    QVERIFY(!linkPermission::isGiven(defaults));
    defaults.setString(u"runsLessonLinks"_s, u"always"_s);
    QVERIFY(!linkPermission::isGiven(defaults));
    defaults.setBoolean(u"runsLessonLinks"_s, true);
    QVERIFY(linkPermission::isGiven(defaults));
}

const kelm::test::Registered<LinkPermissionTest> registered;

} // namespace link_permission_test

#include "link_permission_test.moc"
