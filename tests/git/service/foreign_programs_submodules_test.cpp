#include "git/service/foreign_repository.h"
#include "support/test_program.h"

#include <QtTest>

namespace foreign_programs_submodules_test {

using namespace Qt::Literals::StringLiterals;
using namespace kelm;
using namespace kelm::test;

/// A repository whose submodules' own settings name programs: git starts itself in those.
class ForeignProgramsSubmodulesTest final : public QObject, private ForeignRepository
{
    Q_OBJECT

private Q_SLOTS:
    void init() { prepare(); }
    void submoduleRunsNothing_data();
    void submoduleRunsNothing();
    void submoduleThatIsToBePassedOverStaysSo();
    void submoduleFetchesNothing();
};

void ForeignProgramsSubmodulesTest::submoduleRunsNothing_data()
{
    QTest::addColumn<QString>("ignore");
    QTest::addColumn<QString>("modules");
    QTest::addColumn<QString>("key");
    const QString monitor = u"core.fsmonitor"_s;
    QTest::newRow("nothing said") << QString() << u"kept"_s << monitor;
    QTest::newRow("said in .gitmodules") << u".gitmodules"_s << u"kept"_s << monitor;
    QTest::newRow("said in .gitmodules, which is gone") << u".gitmodules"_s << u"gone"_s << monitor;
    QTest::newRow("said in .gitmodules, gone from the index too") << u".gitmodules"_s << u"forgotten"_s << monitor;
    QTest::newRow("said in the settings") << u".git/config"_s << u"kept"_s << monitor;
    QTest::newRow("a filter") << QString() << u"kept"_s << u"filter.evil.clean"_s;
    QTest::newRow("a filter, said in .gitmodules") << u".gitmodules"_s << u"kept"_s << u"filter.evil.clean"_s;
    QTest::newRow("a filter found through an include") << QString() << u"kept"_s << u"include.path"_s;
}

void ForeignProgramsSubmodulesTest::submoduleRunsNothing()
{
    QFETCH(QString, ignore);
    QFETCH(QString, modules);
    QFETCH(QString, key);
    TemporaryRepository inner;
    inner.write(u".gitattributes"_s, "* filter=evil\n");
    inner.write(u"a"_s, "1\n");
    inner.commitAll(u"inner"_s);
    repository_->git({u"submodule"_s, u"--quiet"_s, u"add"_s, inner.path(), u"sub \"x\""_s});
    if (!ignore.isEmpty()) {
        repository_->git({u"config"_s, u"--file"_s, ignore, u"submodule.sub \"x\".ignore"_s, u"none"_s});
    }
    repository_->git({u"add"_s, u".gitmodules"_s});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"with"_s});
    const QString other = folder_->filePath(u"other"_s);
    repository_->git({u"config"_s, u"--file"_s, other, u"filter.evil.clean"_s, program()});
    repository_->git({u"-C"_s, u"sub \"x\""_s, u"config"_s, key, key == u"include.path" ? other : program()});
    if (modules == u"forgotten") {
        repository_->git({u"rm"_s, u"-q"_s, u"--cached"_s, u".gitmodules"_s});
    }
    if (modules != u"kept") {
        QVERIFY(repository_->remove(u".gitmodules"_s));
    }
    repository_->write(u"sub \"x\"/a"_s, "2\n");
    takeMarker();
    readEverything();
    git_->diff(u"sub \"x\""_s, false);
    QVERIFY(!takeMarker());
    verifyTheChangeIsThere();
    // Another commit in it is told.
    repository_->git({u"-C"_s, u"sub \"x\""_s, u"-c"_s, u"core.fsmonitor=false"_s, u"commit"_s, u"-qam"_s, u"more"_s});
    takeMarker();
    QVERIFY(git_->diff(u"sub \"x\""_s, false).contains(u"+Subproject commit"_s));
    QVERIFY(!takeMarker());
}

void ForeignProgramsSubmodulesTest::submoduleThatIsToBePassedOverStaysSo()
{
    TemporaryRepository inner;
    inner.commitAll(u"inner"_s);
    repository_->git({u"submodule"_s, u"--quiet"_s, u"add"_s, inner.path(), u"sub"_s});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"with"_s});
    const auto inSub = [&](const QStringList& words) { repository_->git(QStringList{u"-C"_s, u"sub"_s} + words); };
    inSub({u"commit"_s, u"-q"_s, u"--allow-empty"_s, u"-m"_s, u"more"_s});
    inSub({u"config"_s, u"core.fsmonitor"_s, program()});
    const auto isListed = [&] {
        open();
        return std::any_of(git_->status().begin(), git_->status().end(),
                           [](const GitFileStatus& file) { return file.path == u"sub"; });
    };
    QVERIFY(isListed());
    // Nothing of it is to be looked at, not even which commit it is on.
    for (const QString& place : {u".gitmodules"_s, u".git/config"_s}) {
        repository_->git({u"config"_s, u"--file"_s, place, u"submodule.sub.ignore"_s, u"all"_s});
        QVERIFY2(!isListed(), qPrintable(place));
        repository_->git({u"config"_s, u"--file"_s, place, u"--unset"_s, u"submodule.sub.ignore"_s});
        QVERIFY2(isListed(), qPrintable(place));
    }
    QVERIFY(!takeMarker());
}

void ForeignProgramsSubmodulesTest::submoduleFetchesNothing()
{
    TemporaryRepository inner;
    inner.write(u"a"_s, "1\n");
    inner.commitAll(u"inner"_s);
    repository_->git({u"submodule"_s, u"--quiet"_s, u"add"_s, inner.path(), u"sub"_s});
    repository_->git({u"commit"_s, u"-q"_s, u"-m"_s, u"with"_s});
    const QStringList inSub{u"-C"_s, u"sub"_s};
    const auto setInSub = [&](const QString& key, const QString& value) {
        repository_->git(inSub + QStringList{u"config"_s, key, value});
    };
    setInSub(u"core.repositoryFormatVersion"_s, u"1"_s);
    setInSub(u"extensions.partialClone"_s, u"origin"_s);
    setInSub(u"remote.origin.promisor"_s, u"true"_s);
    setInSub(u"remote.origin.url"_s, u"ssh://host/x"_s);
    setInSub(u"core.sshCommand"_s, command(u"false"_s));
    const QByteArray tree = repository_->git(inSub + QStringList{u"rev-parse"_s, u"HEAD^{tree}"_s}).trimmed();
    const QString object = u"/"_s + QLatin1String(tree.first(2)) + u'/' + QLatin1String(tree.sliced(2));
    const QString objects = repository_->filePath(u".git/modules/sub/objects"_s);
    QVERIFY(QFile::remove(objects + object));
    takeMarker();
    readEverything();
    git_->diff(u"sub"_s, false);
    QVERIFY(!takeMarker());
    // Such a folder does have git fetch, where nothing keeps it from that.
    repository_->tryGit({u"status"_s, u"--porcelain"_s}, {});
    QVERIFY(takeMarker());
}

const Registered<ForeignProgramsSubmodulesTest> registered;

} // namespace foreign_programs_submodules_test

#include "foreign_programs_submodules_test.moc"
