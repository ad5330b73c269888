#include "app/recovery/recovery_folder.h"
#include "support/process_roles.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>
#include <unistd.h>

namespace recovery_folder_bounds_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 hour = 60LL * 60 * 1000;
/// The time of the latest copy of each test.
constexpr qint64 latest = 1000 * hour;

CopyHeader headerAt(qint64 time)
{
    return {QUrl(u"file:///a.txt"_s), time};
}

} // namespace

/// How much of what was left is kept, by the bounds that hold when nobody says others, and what stands in the folder
/// beside it.
class RecoveryFolderBoundsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        home_.emplace();
        QVERIFY(home_->isValid());
    }
    void twoHundredCopiesAreKept();
    void fiveHundredMillionBytesAreKept();
    void nothingYoungerThanADayGoes();
    void whatIsKeptOpenCountsAndStays();
    void aLockThatIsALinkIsNotFollowed();
    void aCopyThatIsALinkIsNone();
    void namesAreOfTheProgramAndInTheirOrder();
    void aNameOfNoCopyTakesNothing();
    void withoutALockNothingIsWritten();
    void whatThisProgramStartsHoldsNoLock();
    void nothingIsHeldOfACopyThatIsNotWrittenAnyMore_data();
    void nothingIsHeldOfACopyThatIsNotWrittenAnyMore();

private:
    QString path(const QString& name = {}) const { return home_->filePath(u"unsaved/"_s + name); }
    QString leave(RecoveryFolder& folder, qint64 time)
    {
        const QString id = folder.newId();
        if (folder.write(id, headerAt(time), TextTree(u"text"_s))) {
            qFatal("cannot set up the copy");
        }
        return id;
    }
    QString leave(qint64 time)
    {
        RecoveryFolder folder(path());
        return leave(folder, time);
    }
    /// Has a copy have that many bytes, of which the disk holds few.
    void grow(const QString& id, qint64 size) { QVERIFY(QFile::resize(path(id + u".copy"_s), size)); }
    bool isThere(const QString& id) const { return QFile::exists(path(id + u".copy"_s)); }

    std::optional<QTemporaryDir> home_;
};

void RecoveryFolderBoundsTest::twoHundredCopiesAreKept()
{
    const QString first = leave(0);
    const QString program = first.section(u'-', 0, 0);
    // All of one time: the order is that of their names.
    const auto copy = [&](int number) {
        const QString id = program + u"-1%1"_s.arg(number, 15, 10, QLatin1Char('0'));
        QVERIFY(QFile::copy(path(first + u".copy"_s), path(id + u".copy"_s)));
    };
    for (int number = 1; number < 200; ++number) {
        copy(number);
    }
    RecoveryFolder folder(path());
    folder.prune({}, latest);
    QCOMPARE(folder.texts().size(), 200);
    copy(200);
    folder.prune({}, latest);
    QCOMPARE(folder.texts().size(), 200);
    QVERIFY(!isThere(first));
}

void RecoveryFolderBoundsTest::fiveHundredMillionBytesAreKept()
{
    RecoveryFolder folder(path());
    const QString old = leave(0);
    const QString young = leave(1);
    grow(old, 200'000'000);
    grow(young, 300'000'000);
    folder.prune({}, latest);
    QVERIFY(isThere(old));
    grow(young, 300'000'001);
    folder.prune({}, latest);
    QVERIFY(!isThere(old));
    QVERIFY(isThere(young));
}

void RecoveryFolderBoundsTest::nothingYoungerThanADayGoes()
{
    RecoveryFolder folder(path());
    const QString copy = leave(latest);
    grow(copy, 600'000'000);
    folder.prune({}, latest + 24 * hour - 1);
    QVERIFY(isThere(copy));
    folder.prune({}, latest + 24 * hour);
    QVERIFY(!isThere(copy));
}

void RecoveryFolderBoundsTest::whatIsKeptOpenCountsAndStays()
{
    RecoveryFolder::Bounds bounds;
    bounds.copies = 1;
    RecoveryFolder folder(path(), bounds);
    const QString oldest = leave(folder, 0);
    const QString open = leave(folder, 1);
    const QString young = leave(folder, 2);
    folder.prune({open}, latest);
    QVERIFY(isThere(young));
    QVERIFY(isThere(open));
    QVERIFY(!isThere(oldest));
    // Where there is room, the open one takes it.
    folder.prune({open}, latest);
    QVERIFY(isThere(young));
}

void RecoveryFolderBoundsTest::aLockThatIsALinkIsNotFollowed()
{
    const QString copy = leave(0);
    const QString lock = path(copy.section(u'-', 0, 0) + u".lock"_s);
    QVERIFY(QFile::remove(lock));
    // Whoever made it wants a file of another folder made, or locked.
    const QString elsewhere = home_->filePath(u"elsewhere"_s);
    QCOMPARE(::symlink(QFile::encodeName(elsewhere).constData(), QFile::encodeName(lock).constData()), 0);
    RecoveryFolder folder(path());
    QVERIFY(folder.texts().isEmpty());
    QVERIFY(!QFile::exists(elsewhere));
    QFile file(elsewhere);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(folder.texts().isEmpty());
    QVERIFY(!folder.take(copy, folder.newId()));
    folder.remove(copy);
    QVERIFY(isThere(copy));
    // Nobody's lock is there once it is gone.
    QVERIFY(QFile::remove(lock));
    QCOMPARE(folder.texts().size(), 1);
}

void RecoveryFolderBoundsTest::aCopyThatIsALinkIsNone()
{
    const QString copy = leave(0);
    const QString elsewhere = home_->filePath(u"elsewhere"_s);
    QVERIFY(QFile::rename(path(copy + u".copy"_s), elsewhere));
    QVERIFY(QFile::link(elsewhere, path(copy + u".copy"_s)));
    RecoveryFolder folder(path());
    QVERIFY(folder.texts().isEmpty());
    folder.prune({}, latest);
    QVERIFY(QFile::exists(elsewhere));
}

void RecoveryFolderBoundsTest::namesAreOfTheProgramAndInTheirOrder()
{
    RecoveryFolder folder(path());
    QStringList names;
    for (int each = 0; each < 300; ++each) {
        names << folder.newId();
    }
    QStringList sorted = names;
    sorted.sort();
    QCOMPARE(sorted, names);
    QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 300);
    const QString program = names.constFirst().section(u'-', 0, 0);
    QCOMPARE(program.size(), 16);
    for (const QString& name : std::as_const(names)) {
        QCOMPARE(name.section(u'-', 0, 0), program);
    }
    QVERIFY(RecoveryFolder(path()).newId().section(u'-', 0, 0) != program);
}

void RecoveryFolderBoundsTest::aNameOfNoCopyTakesNothing()
{
    const QString copy = leave(0);
    RecoveryFolder folder(path());
    QVERIFY(!folder.take(folder.newId(), folder.newId()));
    QVERIFY(!folder.take(copy.section(u'-', 0, 0) + u"-ffff"_s, folder.newId()));
    QCOMPARE(folder.texts().size(), 1);
    QCOMPARE(folder.texts().constFirst().id, copy);
}

void RecoveryFolderBoundsTest::withoutALockNothingIsWritten()
{
    RecoveryFolder folder(path());
    const QString id = folder.newId();
    // Something else has the name of the lock.
    QVERIFY(QDir().mkpath(path(id.section(u'-', 0, 0) + u".lock"_s)));
    const std::optional<FileError> error = folder.write(id, headerAt(0), TextTree(u"text"_s));
    QVERIFY(error);
    QVERIFY2(error->message.contains(u"directory"_s), qPrintable(error->message));
    QVERIFY(!isThere(id));
    const QString copy = leave(0);
    QVERIFY(!folder.take(copy, folder.newId()));
    QVERIFY(isThere(copy));
}

void RecoveryFolderBoundsTest::whatThisProgramStartsHoldsNoLock()
{
    std::optional<RecoveryFolder> folder(path());
    const QString copy = leave(*folder, 0);
    QProcess child;
    const ProcessCommand command = kelm::test::roleCommand({u"wait"_s});
    child.start(command.program, command.arguments);
    QTRY_VERIFY(child.bytesAvailable() > 0);
    // The child lives on.
    folder.reset();
    RecoveryFolder other(path());
    QCOMPARE(other.texts().size(), 1);
    QCOMPARE(other.texts().constFirst().id, copy);
    child.kill();
    QVERIFY(child.waitForFinished(kelm::test::patience));
}

void RecoveryFolderBoundsTest::nothingIsHeldOfACopyThatIsNotWrittenAnyMore_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("let go") << 0;
    QTest::newRow("removed") << 1;
    QTest::newRow("taken") << 2;
    QTest::newRow("pruned") << 3;
}

void RecoveryFolderBoundsTest::nothingIsHeldOfACopyThatIsNotWrittenAnyMore()
{
    QFETCH(const int, way);
    RecoveryFolder::Bounds bounds;
    bounds.copies = 0;
    RecoveryFolder folder(path(), bounds);
    const auto openFiles = [] {
        int count = 0;
        const QDir files(u"/proc/self/fd"_s);
        for (const QString& name : files.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
            count += QFile::symLinkTarget(files.filePath(name)).contains(u".copy"_s) ? 1 : 0;
        }
        return count;
    };
    const QString copy = folder.newId();
    // A long one is gone on with, and its file is open for that; where it is removed, its room on the disk is not free.
    QVERIFY(!folder.write(copy, headerAt(0), TextTree(QString(CopyFile::leastLong, u'x'))));
    QCOMPARE(openFiles(), 1);
    if (way == 0) {
        folder.letGo(copy);
    } else if (way == 1) {
        folder.remove(copy);
    } else if (way == 2) {
        QVERIFY(folder.take(copy, folder.newId()));
    } else {
        folder.prune({}, latest);
    }
    QCOMPARE(openFiles(), 0);
}

const kelm::test::Registered<RecoveryFolderBoundsTest> registered(kelm::test::Toolkit::core);

} // namespace recovery_folder_bounds_test

#include "recovery_folder_bounds_test.moc"
