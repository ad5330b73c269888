#include "run/path_names.h"
#include "support/test_program.h"

#include <QDir>
#include <QtTest>

#include <pwd.h>

namespace path_names_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;

class PathNamesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void componentsAreTakenApart_data();
    void componentsAreTakenApart();
    void componentsAreJoinedByOneSlash_data();
    void componentsAreJoinedByOneSlash();
    void pathsAreStandardizedByName_data();
    void pathsAreStandardizedByName();
    void tildeIsTheHomeFolder();
};

void PathNamesTest::componentsAreTakenApart_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* path, const char* parent, const char* name) {
        QTest::addRow("\"%s\"", path) << QString::fromUtf8(path) << QString::fromUtf8(parent)
                                      << QString::fromUtf8(name);
    };
    row("/a/b", "/a", "b");
    row("/a/b/", "/a", "b");
    row("/a//b//", "/a", "b");
    row("/a", "/", "a");
    row("//a", "/", "a");
    row("/", "/", "/");
    row("//", "/", "/");
    row("a/b", "a", "b");
    row("a/", "", "a");
    row("a", "", "a");
    row("", "", "");
    row("../x", "..", "x");
    row("/한글/글", "/한글", "글");
}

void PathNamesTest::componentsAreTakenApart()
{
    QFETCH(QString, path);
    QTEST(deletingLastPathComponent(path), "parent");
    QTEST(lastPathComponent(QStringView(path)), "name");
}

void PathNamesTest::componentsAreJoinedByOneSlash_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("component");
    QTest::addColumn<QString>("joined");
    QTest::newRow("plain") << u"/a"_s << u"b"_s << u"/a/b"_s;
    QTest::newRow("slash at the end") << u"/a/"_s << u"b"_s << u"/a/b"_s;
    QTest::newRow("slash at the start") << u"/a"_s << u"/b"_s << u"/a/b"_s;
    QTest::newRow("root") << u"/"_s << u"b"_s << u"/b"_s;
    QTest::newRow("several components") << u"/a"_s << u"b/../c"_s << u"/a/b/../c"_s;
}

void PathNamesTest::componentsAreJoinedByOneSlash()
{
    QFETCH(QString, path);
    QFETCH(QString, component);
    QTEST(appendingPathComponent(path, component), "joined");
}

void PathNamesTest::pathsAreStandardizedByName_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("standardized");
    QTest::newRow("plain") << u"/a/b"_s << u"/a/b"_s;
    QTest::newRow("dot") << u"/a/./b/."_s << u"/a/b"_s;
    QTest::newRow("two dots") << u"/a/b/../c"_s << u"/a/c"_s;
    QTest::newRow("slash at the end") << u"/a/b/"_s << u"/a/b"_s;
    QTest::newRow("root") << u"/"_s << u"/"_s;
    QTest::newRow("up to the root") << u"/a/.."_s << u"/"_s;
    QTest::newRow("above the root") << u"/.."_s << u"/"_s;
    QTest::newRow("far above the root") << u"/a/../../../b"_s << u"/b"_s;
    QTest::newRow("name of three dots") << u"/..."_s << u"/..."_s;
}

void PathNamesTest::pathsAreStandardizedByName()
{
    QFETCH(QString, path);
    QTEST(standardizedPath(path), "standardized");
}

void PathNamesTest::tildeIsTheHomeFolder()
{
    const QString home = QDir::homePath();
    QCOMPARE(expandingTilde(u"~"_s), home);
    QCOMPARE(expandingTilde(u"~/"_s), home + u'/');
    QCOMPARE(expandingTilde(u"~/a b/~"_s), home + u"/a b/~"_s);
    QCOMPARE(expandingTilde(u"/a/~"_s), u"/a/~"_s);
    QCOMPARE(expandingTilde(u"a~"_s), u"a~"_s);
    QCOMPARE(expandingTilde(u""_s), u""_s);
    QCOMPARE(expandingTilde(u"~no-such-user-here/x"_s), u"~no-such-user-here/x"_s);
    const passwd* superuser = ::getpwnam("root");
    QVERIFY(superuser != nullptr);
    QCOMPARE(expandingTilde(u"~root/x"_s), QFile::decodeName(superuser->pw_dir) + u"/x"_s);

    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", "/");
    const QString atRoot = expandingTilde(u"~/x"_s);
    const QString root = expandingTilde(u"~"_s);
    qputenv("HOME", before);
    QCOMPARE(atRoot, u"/x"_s);
    QCOMPARE(root, u"/"_s);
}

const kelm::test::Registered<PathNamesTest> registered;

} // namespace path_names_test

#include "path_names_test.moc"
