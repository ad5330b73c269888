#include "platform/files/atomic_file.h"
#include "platform/files/native_path.h"
#include "platform/files/temporary_file.h"
#include "support/file_bytes.h"
#include "support/roles.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <optional>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sched.h>
#include <sys/mount.h>
#endif

namespace atomic_file_saving_test {

using namespace kelm;
using namespace kelm::test;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int cannotSetUp = 77;
constexpr uid_t nobody = 65534;

QString described(const std::variant<Saved, FileError>& result)
{
    if (const auto* error = std::get_if<FileError>(&result)) {
        return error->reason;
    }
    switch (std::get<Saved>(result)) {
    case Saved::byReplacing:
        return u"replaced"_s;
    case Saved::inPlaceForItsNames:
        return u"in place for its names"_s;
    case Saved::inPlaceForItsFolder:
        break;
    }
    return u"in place for its folder"_s;
}

/// Saves over a file of two names with a limit that the new text is beyond, and keeps what it held.
int saveBeyondLimit(const QStringList& arguments)
{
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100'000, 100'000};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
        return cannotSetUp;
    }
    bool isKept = false;
    const auto result = saveFile(arguments[0], QByteArray(1'000'000, 'n'), [&](const QByteArray&) {
        isKept = true;
        return true;
    });
    std::printf("%s\n", qPrintable(described(result)));
    return isKept ? 0 : 1;
}

/// On a disk of its own that only this process sees: too small, or one that nothing can be written to.
int saveOnOtherDisk(const QStringList& arguments)
{
#ifdef Q_OS_LINUX
    const QByteArray folder = QFile::encodeName(arguments[0]);
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=512k") != 0) {
        return cannotSetUp;
    }
    const QString path = arguments[0] + u"/file"_s;
    const QByteArray old(300'000, 'o');
    writeBytes(path, old);
    if (arguments[1] == u"two names" && ::link(qPrintable(path), qPrintable(arguments[0] + u"/name"_s)) != 0) {
        return cannotSetUp;
    }
    if (arguments[1] == u"read-only" &&
        ::mount("none", folder.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
        return cannotSetUp;
    }
    std::printf("%s\n",
                qPrintable(described(saveFile(path, QByteArray(1'000'000, 'n'), [](const auto&) { return true; }))));
    const qsizetype names = arguments[1] == u"two names" ? 2 : 1;
    return readBytes(path) == old && entriesOf(arguments[0]).size() == names ? 0 : 1;
#else
    Q_UNUSED(arguments)
    return cannotSetUp;
#endif
}

/// The content of the `generation`th save of the child that is killed: one letter all through.
QByteArray generationBytes(int generation)
{
    constexpr qsizetype size = 10'000'000;
    return QByteArray(size + generation % 3 * 1000, char('a' + generation % 26));
}

bool isWholeGeneration(const QByteArray& bytes)
{
    const qsizetype extra = bytes.size() - generationBytes(0).size();
    return !bytes.isEmpty() && (extra == 0 || extra == 1000 || extra == 2000) &&
           bytes.count(bytes.front()) == bytes.size();
}

int saveForever(const QStringList& arguments)
{
    for (int generation = 0;; ++generation) {
        if (!std::holds_alternative<Saved>(saveFile(arguments[0], generationBytes(generation), {}))) {
            return 1;
        }
        std::printf(".");
        std::fflush(stdout);
    }
}

} // namespace

class AtomicFileSavingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void anOrdinaryFileIsReplaced();
    void aHardLinkStaysOneFile();
    void aFolderThatLetsNothingBeReplaced_data();
    void aFolderThatLetsNothingBeReplaced();
    void whatIsNotKeptIsNotWritten();
    void aWriteThatFailsInPlaceIsTakenBack();
    void otherDisks_data();
    void otherDisks();
    void setIdBitsGoWithTheOwner();
    void aNullInThePathIsRefused();
    void namesOfAllKindsAreSaved();
    void leftFilesGoAndOthersStay();
    void aKillAtAnyMomentLeavesAWholeFile();

private:
    QString path(const QString& name) const { return folder_->filePath(name); }
    /// Saves, and remembers what was kept.
    QString saved(const QString& name, const QByteArray& bytes)
    {
        return described(saveFile(path(name), bytes, [this](const QByteArray& old) {
            kept_ << old;
            return true;
        }));
    }

    std::unique_ptr<QTemporaryDir> folder_;
    QList<QByteArray> kept_;
};

void AtomicFileSavingTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>(QDir::rootPath() + u"tmp/atomic_file_saving_test-XXXXXX"_s);
    kept_.clear();
    QVERIFY(folder_->isValid());
}

void AtomicFileSavingTest::anOrdinaryFileIsReplaced()
{
    QCOMPARE(saved(u"file"_s, "one"), u"replaced"_s);
    QCOMPARE(saved(u"file"_s, "two"), u"replaced"_s);
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("two"));
    QVERIFY(kept_.isEmpty());
}

void AtomicFileSavingTest::aHardLinkStaysOneFile()
{
    writeBytes(path(u"file"_s), "a longer old text");
    QVERIFY(QFile::setPermissions(path(u"file"_s), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(::link(qPrintable(path(u"file"_s)), qPrintable(path(u"name"_s))), 0);
    QCOMPARE(::symlink("name", qPrintable(path(u"link"_s))), 0);
    const auto before = statusOf(path(u"file"_s)).st_ino;
    for (const auto& [name, bytes] : {std::pair(u"file"_s, QByteArray("new")), std::pair(u"link"_s, QByteArray()),
                                      std::pair(u"name"_s, QByteArray(500'000, 'n'))}) {
        QCOMPARE(saved(name, bytes), u"in place for its names"_s);
        QCOMPARE(readBytes(path(u"file"_s)), bytes);
        QCOMPARE(readBytes(path(u"name"_s)), bytes);
    }
    QCOMPARE(kept_, (QList<QByteArray>{"a longer old text", "new", ""}));
    QCOMPARE(statusOf(path(u"file"_s)).st_ino, before);
    QCOMPARE(statusOf(path(u"file"_s)).st_nlink, nlink_t(2));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"file"_s, u"link"_s, u"name"_s}));
}

void AtomicFileSavingTest::aFolderThatLetsNothingBeReplaced_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("read-only") << 0555;
    QTest::newRow("sticky") << 01777;
}

void AtomicFileSavingTest::aFolderThatLetsNothingBeReplaced()
{
    if (::geteuid() != 0) {
        QSKIP("only a privileged user can make a file that another one may write but not replace");
    }
    QFETCH(int, mode);
    writeBytes(path(u"file"_s), "old");
    QCOMPARE(::chmod(qPrintable(path(u"file"_s)), 0666), 0);
    QCOMPARE(::chmod(qPrintable(folder_->path()), mode_t(mode)), 0);
    QString result;
    QString resultOfNew;
    {
        const test::Unprivileged ordinaryUser;
        result = saved(u"file"_s, "new");
        resultOfNew = mode == 0555 ? saved(u"another"_s, "new") : u"you have no permission for that"_s;
    }
    QCOMPARE(::chmod(qPrintable(folder_->path()), 0755), 0);
    QCOMPARE(result, u"in place for its folder"_s);
    QCOMPARE(resultOfNew, u"you have no permission for that"_s);
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("new"));
    QCOMPARE(kept_, (QList<QByteArray>{"old"}));
    QCOMPARE(entriesOf(folder_->path()), (QStringList{u"file"_s}));
}

void AtomicFileSavingTest::whatIsNotKeptIsNotWritten()
{
    writeBytes(path(u"file"_s), "old");
    QCOMPARE(::link(qPrintable(path(u"file"_s)), qPrintable(path(u"name"_s))), 0);
    const auto result = saveFile(path(u"file"_s), "new", [](const QByteArray&) { return false; });
    QCOMPARE(described(result), u"what it holds could not be put in a safe place first"_s);
    QCOMPARE(described(saveFile(path(u"file"_s), "new", {})),
             u"what it holds could not be put in a safe place first"_s);
    QCOMPARE(readBytes(path(u"name"_s)), QByteArray("old"));
}

void AtomicFileSavingTest::aWriteThatFailsInPlaceIsTakenBack()
{
    const QByteArray old(50'000, 'o');
    writeBytes(path(u"file"_s), old);
    QCOMPARE(::link(qPrintable(path(u"file"_s)), qPrintable(path(u"name"_s))), 0);
    QByteArray output;
    QCOMPARE(runRole(u"saveBeyondLimit"_s, {path(u"file"_s)}, &output), 0);
    QCOMPARE(output.trimmed(), QByteArray("it is larger than files may be there"));
    QCOMPARE(readBytes(path(u"file"_s)), old);
    QCOMPARE(readBytes(path(u"name"_s)), old);
}

void AtomicFileSavingTest::otherDisks_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("full") << u"full"_s << QByteArray("the disk is full");
    QTest::newRow("full, written in place") << u"two names"_s << QByteArray("the disk is full");
    QTest::newRow("read-only") << u"read-only"_s << QByteArray("nothing can be written to that disk");
}

void AtomicFileSavingTest::otherDisks()
{
    QFETCH(QString, kind);
    QFETCH(QByteArray, reason);
    QByteArray output;
    const int code = runRole(u"saveOnOtherDisk"_s, {folder_->path(), kind}, &output);
    if (code == cannotSetUp) {
        QSKIP("no file system can be mounted here; a write that fails part way is covered by "
              "aWriteThatFailsInPlaceIsTakenBack");
    }
    QCOMPARE(output.trimmed(), reason);
    QCOMPARE(code, 0);
}

void AtomicFileSavingTest::setIdBitsGoWithTheOwner()
{
    if (::geteuid() != 0) {
        QSKIP("only a privileged user can make a file of somebody else");
    }
    writeBytes(path(u"theirs"_s), "old");
    writeBytes(path(u"mine"_s), "old");
    QCOMPARE(::chmod(qPrintable(folder_->path()), 0777), 0);
    QCOMPARE(::chown(qPrintable(path(u"theirs"_s)), 1234, 4321), 0);
    QCOMPARE(::chown(qPrintable(path(u"mine"_s)), nobody, gid_t(-1)), 0);
    QCOMPARE(::chmod(qPrintable(path(u"theirs"_s)), 06777), 0);
    QCOMPARE(::chmod(qPrintable(path(u"mine"_s)), 04755), 0);
    {
        const test::Unprivileged ordinaryUser;
        QCOMPARE(saved(u"theirs"_s, "new"), u"replaced"_s);
        QCOMPARE(saved(u"mine"_s, "new"), u"replaced"_s);
    }
    QCOMPARE(statusOf(path(u"theirs"_s)).st_mode & 07777, mode_t(0777));
    QCOMPARE(statusOf(path(u"theirs"_s)).st_uid, nobody);
    QCOMPARE(statusOf(path(u"mine"_s)).st_mode & 07777, mode_t(04755));
}

void AtomicFileSavingTest::aNullInThePathIsRefused()
{
    writeBytes(path(u"file"_s), "old");
    const QString cut = path(u"file"_s) + QChar(0) + u"more"_s;
    QCOMPARE(described(saveFile(cut, "new", {})), u"its name holds a NUL"_s);
    QCOMPARE(writeAtomically(cut, "new")->reason, u"its name holds a NUL"_s);
    QCOMPARE(readBytes(path(u"file"_s)), QByteArray("old"));
}

void AtomicFileSavingTest::namesOfAllKindsAreSaved()
{
    const QByteArray base = nativePath(folder_->path()) + '/';
    for (const char* name :
         {"caf\xe9", "\xc7\xd1\xb1\xdb.txt", "a\nb", "\xff", "'\"\\", "-x", " ", "%E9", "\x1b[31m"}) {
        QCOMPARE(described(saveFile(pathOfNative(base + name), name, {})), u"replaced"_s);
        QCOMPARE(::access((base + name).constData(), F_OK), 0);
        QCOMPARE(described(saveFile(pathOfNative(base + name), "again", {})), u"replaced"_s);
        // The toolkit cannot tidy all of them away.
        QCOMPARE(::unlink((base + name).constData()), 0);
    }
}

void AtomicFileSavingTest::leftFilesGoAndOthersStay()
{
    for (const QString& name : {u".kelm-1abc"_s, u".kelm-zzzzzzzzzzzzz"_s, u".kelm-"_s, u".kelm-rc.txt"_s,
                                u".kelm-ABC"_s, u".kelm-12345678901234"_s, u"kelm-1"_s, u".kelm-held"_s}) {
        writeBytes(path(name), "text");
    }
    QVERIFY(QDir(folder_->path()).mkdir(u".kelm-folder"_s));
    QCOMPARE(::symlink("kelm-1", qPrintable(path(u".kelm-link"_s))), 0);
    QCOMPARE(::mkfifo(qPrintable(path(u".kelm-pipe"_s)), 0600), 0);
    const OpenFile held = OpenFile::openForReading(nativePath(path(u".kelm-held"_s)));
    QCOMPARE(::flock(held.get(), LOCK_EX | LOCK_NB), 0);
    removeLeftFiles(folder_->path());
    QStringList left = entriesOf(folder_->path());
    left.sort();
    QCOMPARE(left, (QStringList{u".kelm-"_s, u".kelm-12345678901234"_s, u".kelm-ABC"_s, u".kelm-folder"_s,
                                u".kelm-held"_s, u".kelm-link"_s, u".kelm-pipe"_s, u".kelm-rc.txt"_s, u"kelm-1"_s}));
    removeLeftFiles(path(u"none"_s));
}

void AtomicFileSavingTest::aKillAtAnyMomentLeavesAWholeFile()
{
    bool isGiven = false;
    const int given = qEnvironmentVariable("KELM_TEST_KILLS").toInt(&isGiven);
    const int kills = isGiven ? given : 25;
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    qInfo("seed %u", seed);
    const QString file = path(u"file"_s);
    writeBytes(file, generationBytes(0));
    int leftBehind = 0;
    for (int round = 0; round < kills; ++round) {
        QProcess child;
        startRole(child, u"saveForever"_s, {file});
        QVERIFY(child.waitForReadyRead());
        QThread::usleep(random.bounded(40'000));
        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        QVERIFY2(isWholeGeneration(readBytes(file)), qPrintable(u"seed %1, round %2"_s.arg(seed).arg(round)));
        leftBehind += entriesOf(folder_->path()).size() > 1 ? 1 : 0;
        removeLeftFiles(folder_->path());
        QCOMPARE(entriesOf(folder_->path()), (QStringList{u"file"_s}));
    }
    qInfo("%d kills, %d of them left a temporary file, which was found", kills, leftBehind);
}

const kelm::test::Registered<AtomicFileSavingTest> registered(kelm::test::Toolkit::core,
                                                              {{u"saveForever"_s, saveForever},
                                                               {u"saveBeyondLimit"_s, saveBeyondLimit},
                                                               {u"saveOnOtherDisk"_s, saveOnOtherDisk}});

} // namespace atomic_file_saving_test

#include "atomic_file_saving_test.moc"
