#include "platform/files/atomic_file.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sched.h>
#include <sys/mount.h>
#include <sys/xattr.h>
#endif

#include "support/file_bytes.h"
#include "support/roles.h"
#include "support/test_program.h"

namespace atomic_file_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int cannotSetUp = 77;
constexpr uid_t nobody = 65534;

int modeOf(const QString& path)
{
    return int(statusOf(path).st_mode & 07777);
}

/// The content of the `generation`th save of the child that is killed: a size of its own, and one byte all through.
QByteArray generationBytes(int generation)
{
    return QByteArray(200000 + generation % 7 * 100000, char('a' + generation % 26));
}

bool isWholeGeneration(const QByteArray& bytes)
{
    for (int generation = 0; generation < 7 * 26; ++generation) {
        if (bytes == generationBytes(generation)) {
            return true;
        }
    }
    return false;
}

// The roles. Each prints the message of the error that it met.

int reportWrite(const QString& path, const QByteArray& bytes)
{
    const std::optional<FileError> error = writeAtomically(path, bytes);
    std::printf("%s\n", error ? qPrintable(error->message) : "written");
    return 0;
}

int writeForever(const QStringList& arguments)
{
    for (int generation = 0;; ++generation) {
        if (writeAtomically(arguments[0], generationBytes(generation))) {
            return 1;
        }
        std::printf(".");
        std::fflush(stdout);
    }
}

int writeWithinFileSizeLimit(const QStringList& arguments)
{
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100000, 100000};
    return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 ? reportWrite(arguments[0], QByteArray(1000000, 'n')) : cannotSetUp;
}

int writeAsNobody(const QStringList& arguments)
{
    if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) {
        return cannotSetUp;
    }
    return reportWrite(arguments[0], "new");
}

/// On a disk of its own that only this process sees.
int writeToSmallDisk(const QStringList& arguments)
{
#ifdef Q_OS_LINUX
    const QByteArray folder = QFile::encodeName(arguments[0]);
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=512k") != 0) {
        return cannotSetUp;
    }
    const QString path = arguments[0] + u"/file"_s;
    const QByteArray old(300000, 'o');
    writeBytes(path, old);
    reportWrite(path, QByteArray(1000000, 'n'));
    const bool isWhole = readBytes(path) == old && entriesOf(arguments[0]) == QStringList{u"file"_s};
    return isWhole ? 0 : 1;
#else
    return cannotSetUp;
#endif
}

} // namespace

class AtomicFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aNewFileIsMade();
    void aNewFileHasThePermissionsOfNewFiles();
    void anOldFileIsReplacedAndNothingElseIsLeft();
    void anEmptyTextEmptiesTheFile();
    void permissionBitsStay_data();
    void permissionBitsStay();
    void ownerAndGroupStay();
    void extendedAttributesStay();
    void aReaderKeepsTheOldContent();
    void symbolicLinksStayLinks_data();
    void symbolicLinksStayLinks();
    void aLinkToNothingMakesItsTarget();
    void linksInACircleAreAnError();
    void aLongNameIsWritten();
    void aPathRelativeToTheCurrentFolderIsWritten();
    void aFolderIsAnError();
    void aPipeIsAnErrorAndStays();
    void aMissingFolderIsAnError();
    void aFileInPlaceOfTheFolderIsAnError();
    void aFullDiskLeavesTheOldFile();
    void aFailedWriteLeavesTheOldFile();
    void aFolderWithoutWritePermissionLeavesTheOldFile();
    void aWriteProtectedFileIsAnError();
    void aKillAtAnyMomentLeavesAWholeFile();

private:
    QString path(const QString& name) const { return folder_->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder_;
};

void AtomicFileTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
}

void AtomicFileTest::aNewFileIsMade()
{
    QVERIFY(!writeAtomically(path(u"안녕 new.txt"_s), QByteArray("a\0\r\n\xef\xbb\xbf", 7)));
    QCOMPARE(readBytes(path(u"안녕 new.txt"_s)), QByteArray("a\0\r\n\xef\xbb\xbf", 7));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"안녕 new.txt"_s}));
}

void AtomicFileTest::aNewFileHasThePermissionsOfNewFiles()
{
    writeBytes(path(u"plain"_s), "x");
    QVERIFY(!writeAtomically(path(u"new"_s), "x"));
    QCOMPARE(modeOf(path(u"new"_s)), modeOf(path(u"plain"_s)));
}

void AtomicFileTest::anOldFileIsReplacedAndNothingElseIsLeft()
{
    writeBytes(path(u"file"_s), QByteArray(100000, 'o'));
    QVERIFY(!writeAtomically(path(u"file"_s), "new"));
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("new"));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"file"_s}));
}

void AtomicFileTest::anEmptyTextEmptiesTheFile()
{
    writeBytes(path(u"file"_s), "old");
    QVERIFY(!writeAtomically(path(u"file"_s), QByteArray()));
    QVERIFY(QFile::exists(path(u"file"_s)));
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray());
}

void AtomicFileTest::permissionBitsStay_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {0644, 0600, 0755, 0664, 0777, 0640, 04755, 02755, 01666}) {
        QTest::addRow("%o", unsigned(mode)) << mode;
    }
}

void AtomicFileTest::permissionBitsStay()
{
    QFETCH(int, mode);
    writeBytes(path(u"file"_s), "old");
    QCOMPARE(::chmod(QFile::encodeName(path(u"file"_s)).constData(), mode_t(mode)), 0);
    const int before = modeOf(path(u"file"_s));
    QVERIFY(!writeAtomically(path(u"file"_s), "new"));
    QCOMPARE(modeOf(path(u"file"_s)), before);
    QCOMPARE(before, mode);
}

void AtomicFileTest::ownerAndGroupStay()
{
    if (::geteuid() != 0) {
        QSKIP("only a privileged user can make a file of somebody else");
    }
    writeBytes(path(u"file"_s), "old");
    QCOMPARE(::chown(QFile::encodeName(path(u"file"_s)).constData(), 1234, 4321), 0);
    QVERIFY(!writeAtomically(path(u"file"_s), "new"));
    QCOMPARE(statusOf(path(u"file"_s)).st_uid, uid_t(1234));
    QCOMPARE(statusOf(path(u"file"_s)).st_gid, gid_t(4321));
}

void AtomicFileTest::extendedAttributesStay()
{
#ifdef Q_OS_LINUX
    writeBytes(path(u"file"_s), "old");
    const QByteArray native = QFile::encodeName(path(u"file"_s));
    if (::setxattr(native.constData(), "user.origin", "lesson", 6, 0) != 0) {
        QSKIP("this file system keeps no extended attributes");
    }
    QVERIFY(!writeAtomically(path(u"file"_s), "new"));
    char value[16] = {};
    QCOMPARE(::getxattr(native.constData(), "user.origin", value, sizeof value), ssize_t(6));
    QCOMPARE(QByteArray(value), QByteArray("lesson"));
#else
    QSKIP("kept on Linux only");
#endif
}

void AtomicFileTest::aReaderKeepsTheOldContent()
{
    writeBytes(path(u"file"_s), "old");
    QFile reader(path(u"file"_s));
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(!writeAtomically(path(u"file"_s), "new"));
    QCOMPARE(reader.readAll(), QByteArray("old"));
}

void AtomicFileTest::symbolicLinksStayLinks_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("relative") << u"real"_s;
    QTest::newRow("in another folder") << u"sub/real"_s;
    QTest::newRow("through a second link") << u"sub/again"_s;
    QTest::newRow("absolute") << u"/"_s;
}

void AtomicFileTest::symbolicLinksStayLinks()
{
    QFETCH(QString, target);
    QVERIFY(QDir(folder_->path()).mkdir(u"sub"_s));
    writeBytes(path(u"real"_s), "old");
    writeBytes(path(u"sub/real"_s), "old");
    QCOMPARE(::symlink("../real", QFile::encodeName(path(u"sub/again"_s)).constData()), 0);
    const QString absolute = target == u"/" ? path(u"sub/real"_s) : target;
    const QString real = target == u"sub/real" || target == u"/" ? path(u"sub/real"_s) : path(u"real"_s);
    QCOMPARE(::symlink(QFile::encodeName(absolute).constData(), QFile::encodeName(path(u"link"_s)).constData()), 0);

    QVERIFY(!writeAtomically(path(u"link"_s), "new"));
    QVERIFY(S_ISLNK(statusOf(path(u"link"_s)).st_mode));
    QVERIFY(S_ISREG(statusOf(real).st_mode));
    QCOMPARE(readBytes(real), QByteArray("new"));
    QCOMPARE(readBytes(path(u"link"_s)), QByteArray("new"));
    QVERIFY(S_ISLNK(statusOf(path(u"sub/again"_s)).st_mode));
}

void AtomicFileTest::aLinkToNothingMakesItsTarget()
{
    QCOMPARE(::symlink("later", QFile::encodeName(path(u"link"_s)).constData()), 0);
    QVERIFY(!writeAtomically(path(u"link"_s), "new"));
    QVERIFY(S_ISLNK(statusOf(path(u"link"_s)).st_mode));
    QCOMPARE(readBytes(path(u"later"_s)), QByteArray("new"));
}

void AtomicFileTest::linksInACircleAreAnError()
{
    QCOMPARE(::symlink("b", QFile::encodeName(path(u"a"_s)).constData()), 0);
    QCOMPARE(::symlink("a", QFile::encodeName(path(u"b"_s)).constData()), 0);
    const std::optional<FileError> error = writeAtomically(path(u"a"_s), "new");
    QVERIFY(error.has_value());
    QVERIFY(error->message.startsWith(path(u"a"_s) + u": "_s));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"a"_s, u"b"_s}));
}

void AtomicFileTest::aLongNameIsWritten()
{
    const QString name(255, u'x');
    QVERIFY(!writeAtomically(path(name), "one"));
    QVERIFY(!writeAtomically(path(name), "two"));
    QCOMPARE(readBytes(path(name)), QByteArray("two"));
    QVERIFY(writeAtomically(path(name + u'x'), "new").has_value());
    QCOMPARE(entriesOf(folder_->path()), (QStringList{name}));
}

void AtomicFileTest::aPathRelativeToTheCurrentFolderIsWritten()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder_->path()));
    const auto error = writeAtomically(u"file"_s, "new");
    QDir::setCurrent(before);
    QVERIFY(!error);
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("new"));
}

void AtomicFileTest::aFolderIsAnError()
{
    QVERIFY(QDir(folder_->path()).mkdir(u"sub"_s));
    for (const QString& name : {u"sub"_s, u"sub/"_s}) {
        const std::optional<FileError> error = writeAtomically(path(name), "new");
        QVERIFY(error.has_value());
        QVERIFY(error->message.contains(u"directory"));
    }
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"sub"_s}));
    QVERIFY(entriesOf(path(u"sub"_s)).isEmpty());
}

void AtomicFileTest::aPipeIsAnErrorAndStays()
{
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
    QVERIFY(writeAtomically(path(u"pipe"_s), "new").has_value());
    QVERIFY(S_ISFIFO(statusOf(path(u"pipe"_s)).st_mode));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"pipe"_s}));
}

void AtomicFileTest::aMissingFolderIsAnError()
{
    QVERIFY(writeAtomically(path(u"none/file"_s), "new").has_value());
    QVERIFY(writeAtomically(QString(), "new").has_value());
    QVERIFY(entriesOf(folder_->path()).isEmpty());
}

void AtomicFileTest::aFileInPlaceOfTheFolderIsAnError()
{
    writeBytes(path(u"file"_s), "old");
    QVERIFY(writeAtomically(path(u"file/inner"_s), "new").has_value());
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("old"));
}

void AtomicFileTest::aFullDiskLeavesTheOldFile()
{
    QByteArray output;
    const int code = runRole(u"smallDisk"_s, {folder_->path()}, &output);
    if (code == cannotSetUp) {
        QSKIP("no file system can be mounted here; a write that fails part way is covered by "
              "aFailedWriteLeavesTheOldFile");
    }
    QVERIFY2(output.contains("No space left"), output.constData());
    QCOMPARE(code, 0);
}

void AtomicFileTest::aFailedWriteLeavesTheOldFile()
{
    const QByteArray old(50000, 'o');
    writeBytes(path(u"file"_s), old);
    QByteArray output;
    QCOMPARE(runRole(u"sizeLimit"_s, {path(u"file"_s)}, &output), 0);
    QVERIFY2(output.contains("File too large"), output.constData());
    QCOMPARE(readBytes(path(u"file"_s)), old);
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"file"_s}));
    // Where there was no file there is none after the failure.
    QCOMPARE(runRole(u"sizeLimit"_s, {path(u"new"_s)}, &output), 0);
    QVERIFY(output.contains("File too large"));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"file"_s}));
}

void AtomicFileTest::aFolderWithoutWritePermissionLeavesTheOldFile()
{
    writeBytes(path(u"file"_s), "old");
    ::chmod(QFile::encodeName(path(u"file"_s)).constData(), 0666);
    ::chmod(QFile::encodeName(folder_->path()).constData(), 0555);
    QByteArray output;
    const int code = runRole(u"nobody"_s, {path(u"file"_s)}, &output);
    ::chmod(QFile::encodeName(folder_->path()).constData(), 0755);
    QCOMPARE(code, 0);
    QVERIFY2(output.contains("Permission denied"), output.constData());
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("old"));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"file"_s}));
}

void AtomicFileTest::aWriteProtectedFileIsAnError()
{
    writeBytes(path(u"file"_s), "old");
    ::chmod(QFile::encodeName(path(u"file"_s)).constData(), 0444);
    ::chmod(QFile::encodeName(folder_->path()).constData(), 0777);
    QByteArray output;
    QCOMPARE(runRole(u"nobody"_s, {path(u"file"_s)}, &output), 0);
    QVERIFY2(output.contains("Permission denied"), output.constData());
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("old"));
    QCOMPARE(modeOf(path(u"file"_s)), 0444);
}

void AtomicFileTest::aKillAtAnyMomentLeavesAWholeFile()
{
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    qInfo("seed %u", seed);
    const QString file = path(u"file"_s);
    writeBytes(file, generationBytes(0));
    for (int round = 0; round < 30; ++round) {
        QProcess child;
        startRole(child, u"forever"_s, {file});
        QVERIFY(child.waitForReadyRead());
        QThread::usleep(random.bounded(5000));
        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY2(isWholeGeneration(readBytes(file)), qPrintable(u"seed %1, round %2"_s.arg(seed).arg(round)));
    }
    // What a killed save leaves behind does not stand in the way of the next one.
    QVERIFY(!writeAtomically(file, "new"));
    QCOMPARE(readBytes(file), QByteArray("new"));
}

const kelm::test::Registered<AtomicFileTest> registered(kelm::test::Toolkit::core,
                                                        {{u"forever"_s, writeForever},
                                                         {u"sizeLimit"_s, writeWithinFileSizeLimit},
                                                         {u"nobody"_s, writeAsNobody},
                                                         {u"smallDisk"_s, writeToSmallDisk}});

} // namespace atomic_file_test

#include "atomic_file_test.moc"
