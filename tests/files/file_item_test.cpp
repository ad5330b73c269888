#include "files/file_item.h"
#include "files/git_badge.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace file_item_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Fixture
{
    QTemporaryDir folder;

    void makeFile(const QString& name) const
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("no file");
        }
    }
    void makeFolder(const QString& name) const { QDir(folder.path()).mkpath(name); }
    QStringList names() const
    {
        QStringList names;
        const auto listed = listFolder(QUrl::fromLocalFile(folder.path()));
        for (const FileItem& item : std::get<QList<FileItem>>(listed)) {
            names.append(item.name() + (item.isDirectory ? u"/"_s : QString()));
        }
        return names;
    }
    FileItem item(const QString& path, bool isDirectory) const
    {
        return {.url = QUrl::fromLocalFile(u"/repo/"_s + path), .isDirectory = isDirectory};
    }
};

GitFileStatus entry(const QString& path, std::optional<GitFileChange> staged, std::optional<GitFileChange> unstaged)
{
    return {QUuid::createUuid(), path, staged, unstaged};
}

} // namespace

class FileItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersGoFirstAndCaseDoesNotMatter();
    void hiddenEntriesAreLeftOut();
    void aLinkToAFolderIsAFile();
    void oddNamesAreListed();
    void namesThatAreNotUtf8AreListed();
    void whatCannotBeReadIsAnError();
    void identitiesAreFresh();
    void iconsFollowTheExtension_data();
    void iconsFollowTheExtension();
    void badgesOfFiles_data();
    void badgesOfFiles();
    void badgesOfFolders_data();
    void badgesOfFolders();
    void badgesGoByTheRealName();
    void aRenameMarksBothFolders();
    void withoutARepositoryNothingHasABadge();
    void rootAndOutsideHaveNone();
};

void FileItemTest::foldersGoFirstAndCaseDoesNotMatter()
{
    const Fixture fixture;
    for (const char* name : {"b.txt", "A.txt", "c.txt", "가.txt"}) {
        fixture.makeFile(QString::fromUtf8(name));
    }
    fixture.makeFolder(u"zebra"_s);
    fixture.makeFolder(u"Ant"_s);
    QCOMPARE(fixture.names(), (QStringList{u"Ant/"_s, u"zebra/"_s, u"A.txt"_s, u"b.txt"_s, u"c.txt"_s, u"가.txt"_s}));
}

void FileItemTest::hiddenEntriesAreLeftOut()
{
    const Fixture fixture;
    fixture.makeFile(u".hidden"_s);
    fixture.makeFolder(u".git"_s);
    QCOMPARE(fixture.names(), QStringList());
}

void FileItemTest::aLinkToAFolderIsAFile()
{
    const Fixture fixture;
    fixture.makeFolder(u"folder"_s);
    QVERIFY(QFile::link(fixture.folder.filePath(u"folder"_s), fixture.folder.filePath(u"a link"_s)));
    QVERIFY(QFile::link(u"/nowhere"_s, fixture.folder.filePath(u"broken"_s)));
    QCOMPARE(fixture.names(), (QStringList{u"folder/"_s, u"a link"_s, u"broken"_s}));
}

void FileItemTest::oddNamesAreListed()
{
    const Fixture fixture;
    fixture.makeFile(u"two\nlines"_s);
    fixture.makeFile(u"percent%20#?"_s);
    fixture.makeFile(u"🍎 e\u0301"_s);
    QCOMPARE(fixture.names().size(), 3);
    const auto listed = listFolder(QUrl::fromLocalFile(fixture.folder.path()));
    for (const FileItem& item : std::get<QList<FileItem>>(listed)) {
        QVERIFY(QFile::exists(item.url.toLocalFile()));
    }
}

void FileItemTest::namesThatAreNotUtf8AreListed()
{
    const Fixture fixture;
    const QByteArray base = QFile::encodeName(fixture.folder.path()) + '/';
    const QList<QByteArray> made{"caf\xe8", "caf\xe9", "\xff\xfe"};
    for (const QByteArray& name : made) {
        QCOMPARE(::mkdir((base + name).constData(), 0700), 0);
    }
    QCOMPARE(fixture.names(), (QStringList{u"caf\ufffd/"_s, u"caf\ufffd/"_s, u"\ufffd\ufffd/"_s}));
    QList<QByteArray> listed;
    const auto items = listFolder(QUrl::fromLocalFile(fixture.folder.path()));
    for (const FileItem& item : std::get<QList<FileItem>>(items)) {
        QVERIFY(std::holds_alternative<QList<FileItem>>(listFolder(item.url)));
        listed << nativePath(filePath(item.url)).sliced(base.size());
        QCOMPARE(::rmdir(nativePath(filePath(item.url)).constData()), 0);
    }
    std::sort(listed.begin(), listed.end());
    QCOMPARE(listed, made);
}

void FileItemTest::whatCannotBeReadIsAnError()
{
    const Fixture fixture;
    const auto missing = listFolder(QUrl::fromLocalFile(fixture.folder.filePath(u"nothing"_s)));
    QVERIFY(std::get<FileError>(missing).message.contains(fixture.folder.filePath(u"nothing"_s)));
    fixture.makeFile(u"file"_s);
    QVERIFY(std::holds_alternative<FileError>(listFolder(QUrl::fromLocalFile(fixture.folder.filePath(u"file"_s)))));
}

void FileItemTest::identitiesAreFresh()
{
    const Fixture fixture;
    fixture.makeFile(u"a"_s);
    const QUrl url = QUrl::fromLocalFile(fixture.folder.path());
    const auto first = std::get<QList<FileItem>>(listFolder(url));
    const auto second = std::get<QList<FileItem>>(listFolder(url));
    QCOMPARE(first.first().url, second.first().url);
    QVERIFY(first.first().id != second.first().id);
}

void FileItemTest::iconsFollowTheExtension_data()
{
    QTest::addColumn<bool>("isDirectory");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<SystemColor>("color");
    const auto row = [](const char* name, bool isDirectory, const char* icon, SystemColor color) {
        QTest::newRow(name) << isDirectory << QString::fromLatin1(icon) << color;
    };
    row("a.swift", false, "swift", SystemColor::orange);
    row("a.PY", false, "chevron.left.forwardslash.chevron.right", SystemColor::blue);
    row("a.js", false, "curlybraces", SystemColor::yellow);
    row("a.ts", false, "curlybraces", SystemColor::blue);
    row("a.json", false, "doc.text", SystemColor::green);
    row("a.md", false, "doc.richtext", SystemColor::purple);
    row("a.html", false, "globe", SystemColor::secondaryLabel);
    row("a.css", false, "globe", SystemColor::secondaryLabel);
    row("a.go", false, "doc", SystemColor::secondaryLabel);
    row("Makefile", false, "doc", SystemColor::secondaryLabel);
    row("Sources", true, "folder.fill", SystemColor::secondaryLabel);
    row("Package.swift", true, "folder.fill", SystemColor::orange);
}

void FileItemTest::iconsFollowTheExtension()
{
    QFETCH(bool, isDirectory);
    QFETCH(QString, icon);
    QFETCH(SystemColor, color);
    const FileItem item{.url = QUrl::fromLocalFile(u"/x/"_s + QString::fromLatin1(QTest::currentDataTag())),
                        .isDirectory = isDirectory};
    QCOMPARE(item.icon(), icon);
    QCOMPARE(item.iconColor(), color);
}

void FileItemTest::badgesOfFiles_data()
{
    QTest::addColumn<std::optional<GitFileChange>>("staged");
    QTest::addColumn<std::optional<GitFileChange>>("unstaged");
    QTest::addColumn<QString>("letter");
    QTest::addColumn<SystemColor>("color");
    using Change = std::optional<GitFileChange>;
    const auto row = [](const char* name, Change staged, Change unstaged, const char* letter, SystemColor color) {
        QTest::newRow(name) << staged << unstaged << QString::fromLatin1(letter) << color;
    };
    row("modified", {}, GitFileChange::modified, "M", SystemColor::yellow);
    row("added", GitFileChange::added, {}, "A", SystemColor::green);
    row("deleted", {}, GitFileChange::deleted, "D", SystemColor::red);
    row("renamed", GitFileChange::renamed, {}, "R", SystemColor::blue);
    row("copied", GitFileChange::copied, {}, "C", SystemColor::blue);
    row("untracked", {}, GitFileChange::untracked, "U", SystemColor::green);
    row("conflicted", GitFileChange::conflicted, GitFileChange::conflicted, "!", SystemColor::orange);
    row("the unstaged change goes first", GitFileChange::added, GitFileChange::modified, "M", SystemColor::yellow);
}

void FileItemTest::badgesOfFiles()
{
    QFETCH(std::optional<GitFileChange>, staged);
    QFETCH(std::optional<GitFileChange>, unstaged);
    QFETCH(QString, letter);
    QFETCH(SystemColor, color);
    const Fixture fixture;
    const GitBadges badges({entry(u"src/a.txt"_s, staged, unstaged)}, QUrl::fromLocalFile(u"/repo"_s));
    QCOMPARE(badges.badge(fixture.item(u"src/a.txt"_s, false)), std::optional(FileStatusMark{letter, color}));
    QCOMPARE(badges.badge(fixture.item(u"src/b.txt"_s, false)), std::nullopt);
    QCOMPARE(badges.badge(fixture.item(u"a.txt"_s, false)), std::nullopt);
}

void FileItemTest::badgesOfFolders_data()
{
    QTest::addColumn<QList<GitFileStatus>>("status");
    QTest::addColumn<QString>("letter");
    const GitFileStatus modified = entry(u"dir/deep/a"_s, {}, GitFileChange::modified);
    const GitFileStatus untracked = entry(u"dir/b"_s, {}, GitFileChange::untracked);
    const GitFileStatus conflicted = entry(u"dir/c"_s, GitFileChange::conflicted, GitFileChange::modified);
    using Status = QList<GitFileStatus>;
    QTest::newRow("nothing") << Status{entry(u"director"_s, {}, GitFileChange::modified)} << QString();
    QTest::newRow("modified, deep below") << Status{modified} << u"M"_s;
    QTest::newRow("untracked goes before modified") << Status{untracked, modified} << u"U"_s;
    QTest::newRow("conflicted goes before all") << Status{modified, conflicted, untracked} << u"!"_s;
    QTest::newRow("deleted counts as modified") << Status{entry(u"dir/x"_s, GitFileChange::deleted, {})} << u"M"_s;
    QTest::newRow("an untracked folder itself") << Status{entry(u"dir/"_s, {}, GitFileChange::untracked)} << u"U"_s;
}

void FileItemTest::badgesOfFolders()
{
    QFETCH(QList<GitFileStatus>, status);
    QFETCH(QString, letter);
    const Fixture fixture;
    const GitBadges badges(status, QUrl::fromLocalFile(u"/repo"_s));
    const auto badge = badges.badge(fixture.item(u"dir"_s, true));
    QCOMPARE(badge ? badge->letter : QString(), letter);
}

void FileItemTest::badgesGoByTheRealName()
{
    const Fixture fixture;
    const GitBadges badges({entry(u"\"d r/a b\""_s, {}, GitFileChange::untracked),
                            entry(u"old -> \"\\355\\225\\234\""_s, GitFileChange::renamed, {})},
                           QUrl::fromLocalFile(u"/repo"_s));
    QCOMPARE(badges.badge(fixture.item(u"d r/a b"_s, false))->letter, u"U"_s);
    QCOMPARE(badges.badge(fixture.item(u"d r"_s, true))->letter, u"U"_s);
    QCOMPARE(badges.badge(fixture.item(u"한"_s, false))->letter, u"R"_s);
    QVERIFY(!badges.badge(fixture.item(u"old"_s, false)));
}

void FileItemTest::aRenameMarksBothFolders()
{
    const Fixture fixture;
    const GitBadges badges({entry(u"old/in/a -> new/a"_s, GitFileChange::renamed, {}),
                            entry(u"\"b c/d\" -> e"_s, {}, GitFileChange::renamed),
                            entry(u"kept/f -> to/f"_s, GitFileChange::copied, {})},
                           QUrl::fromLocalFile(u"/repo"_s));
    const FileStatusMark modified{u"M"_s, SystemColor::yellow};
    for (const char* folder : {"old", "old/in", "new", "b c", "kept", "to"}) {
        QCOMPARE(badges.badge(fixture.item(QString::fromLatin1(folder), true)), std::optional(modified));
    }
    QVERIFY(!badges.badge(fixture.item(u"old/in/a"_s, false)));
    QCOMPARE(badges.badge(fixture.item(u"new/a"_s, false))->letter, u"R"_s);
}

void FileItemTest::withoutARepositoryNothingHasABadge()
{
    const Fixture fixture;
    const GitBadges badges({entry(u"a"_s, {}, GitFileChange::modified)}, std::nullopt);
    QCOMPARE(badges.badge(fixture.item(u"a"_s, false)), std::nullopt);
    QCOMPARE(GitBadges().badge(fixture.item(u"a"_s, false)), std::nullopt);
}

void FileItemTest::rootAndOutsideHaveNone()
{
    const GitBadges badges({entry(u"a/b"_s, {}, GitFileChange::modified)}, QUrl::fromLocalFile(u"/repo"_s));
    for (const char* path : {"/repo", "/repo/", "/", "/other/a", "/repository/a"}) {
        const FileItem item{.url = QUrl::fromLocalFile(QString::fromLatin1(path)), .isDirectory = true};
        QCOMPARE(badges.badge(item), std::nullopt);
    }
}

const kelm::test::Registered<FileItemTest> registered;

} // namespace file_item_test

#include "file_item_test.moc"
