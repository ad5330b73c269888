#include "app/recovery/recovery_folder.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace recovery_folder_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 day = 24LL * 60 * 60 * 1000;

CopyHeader headerAt(qint64 time)
{
    return {QUrl(u"file:///a.txt"_s), time};
}

QStringList idsOf(const QList<UnsavedText>& texts)
{
    QStringList ids;
    for (const UnsavedText& text : texts) {
        ids << text.id;
    }
    return ids;
}

mode_t modeOf(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
}

} // namespace

class RecoveryFolderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        home_.emplace();
        path_ = home_->filePath(u"state/saved/unsaved"_s);
    }
    void nothingIsMadeBeforeThereIsACopy();
    void folderAndFilesAreTheOwnersAlone();
    void copiesOfAProgramThatRunsAreNotOffered();
    void copiesOfAProgramThatWasKilledAreOffered();
    void theLatestComeFirst();
    void aCopyIsTakenByOneAlone();
    void aDamagedCopyStaysWhereItIs();
    void theOldestGoFirstAndNoneBeforeItsAge();
    void theBytesAreBounded();
    void openCopiesAreNeverPruned();
    void whatWasLeftHalfWrittenGoes();
    void locksGoWithTheLastCopy();
    void aFolderThatWasRemovedIsMadeAnew();
    void aFailureIsToldWithItsReason();

private:
    /// A copy of a program that has ended.
    QString leave(qint64 time, const QString& text)
    {
        RecoveryFolder folder(path_);
        const QString id = folder.newId();
        if (folder.write(id, headerAt(time), TextTree(text))) {
            qFatal("cannot set up the copy");
        }
        return id;
    }
    QStringList files() const { return QDir(path_).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    std::optional<QTemporaryDir> home_;
    QString path_;
};

void RecoveryFolderTest::nothingIsMadeBeforeThereIsACopy()
{
    RecoveryFolder folder(path_);
    QVERIFY(folder.texts().isEmpty());
    folder.prune({}, day);
    folder.remove(folder.newId());
    QVERIFY(!QFileInfo::exists(home_->filePath(u"state"_s)));
}

void RecoveryFolderTest::folderAndFilesAreTheOwnersAlone()
{
    const mode_t mask = ::umask(0);
    const QString id = leave(1, u"secret"_s);
    ::umask(mask);
    QCOMPARE(modeOf(path_), mode_t(0700));
    QCOMPARE(modeOf(path_ + u'/' + id + u".copy"_s), mode_t(0600));

    QVERIFY(QFile::setPermissions(path_, QFile::Permissions(0x7755)));
    leave(2, u"more"_s);
    QCOMPARE(modeOf(path_), mode_t(0700));
}

void RecoveryFolderTest::copiesOfAProgramThatRunsAreNotOffered()
{
    auto running = std::make_unique<RecoveryFolder>(path_);
    const QString id = running->newId();
    QVERIFY(!running->write(id, headerAt(1), TextTree(u"text"_s)));
    QCOMPARE(idsOf(running->texts()), QStringList(id));

    RecoveryFolder other(path_);
    QVERIFY(other.texts().isEmpty());
    QVERIFY(!other.take(id, other.newId()));
    other.remove(id);
    other.prune({}, 100 * day);
    QCOMPARE(idsOf(running->texts()), QStringList(id));

    running.reset();
    QCOMPARE(idsOf(other.texts()), QStringList(id));
}

void RecoveryFolderTest::copiesOfAProgramThatWasKilledAreOffered()
{
    int ready[2] = {};
    QCOMPARE(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        auto* folder = std::make_unique<RecoveryFolder>(path_).release();
        folder->write(folder->newId(), headerAt(7), TextTree(u"typed"_s));
        [[maybe_unused]] const auto told = ::write(ready[1], "x", 1);
        for (;;) {
            ::pause();
        }
    }
    char byte = 0;
    QCOMPARE(::read(ready[0], &byte, 1), ssize_t(1));
    RecoveryFolder other(path_);
    QVERIFY(other.texts().isEmpty());
    QCOMPARE(::kill(child, SIGKILL), 0);
    QCOMPARE(::waitpid(child, nullptr, 0), child);
    const QList<UnsavedText> texts = other.texts();
    QCOMPARE(texts.size(), 1);
    QCOMPARE(texts[0].header, headerAt(7));
    QCOMPARE(texts[0].firstWords, u"typed"_s);
    ::close(ready[0]);
    ::close(ready[1]);
}

void RecoveryFolderTest::theLatestComeFirst()
{
    RecoveryFolder folder(path_);
    QStringList ids;
    // Many are of the same millisecond.
    for (const qint64 time : {1, 1, 1, 1, 1, 1, 1, 1, 2, 0}) {
        ids.prepend(folder.newId());
        QVERIFY(!folder.write(ids.constFirst(), headerAt(time), TextTree(u"text"_s)));
    }
    ids.append(ids.takeFirst());
    QCOMPARE(idsOf(folder.texts()), ids);
}

void RecoveryFolderTest::aCopyIsTakenByOneAlone()
{
    const QString id = leave(1, u"text\n"_s);
    RecoveryFolder one(path_);
    RecoveryFolder other(path_);
    QCOMPARE(idsOf(one.texts()), QStringList(id));
    QCOMPARE(idsOf(other.texts()), QStringList(id));
    const QString newId = one.newId();
    const std::optional<CopyContent> content = one.take(id, newId);
    QVERIFY(content);
    QCOMPARE(content->text.toString(), u"text\n"_s);
    QVERIFY(!other.take(id, other.newId()));
    QVERIFY(other.texts().isEmpty());
    QCOMPARE(idsOf(one.texts()), QStringList(newId));
}

void RecoveryFolderTest::aDamagedCopyStaysWhereItIs()
{
    const QString id = leave(1, u"text"_s);
    QFile file(path_ + u'/' + id + u".copy"_s);
    QVERIFY(file.resize(file.size() - 1));
    RecoveryFolder folder(path_);
    QVERIFY(folder.texts().isEmpty());
    QVERIFY(!folder.take(id, folder.newId()));
    folder.prune({}, 100 * day);
    QVERIFY(file.exists());
}

void RecoveryFolderTest::theOldestGoFirstAndNoneBeforeItsAge()
{
    QStringList ids;
    for (int each = 0; each < 6; ++each) {
        ids << leave(each * day, u"text"_s);
    }
    RecoveryFolder::Bounds bounds;
    bounds.copies = 2;
    RecoveryFolder folder(path_, bounds);
    // The third and the fourth latest have not come to a day.
    folder.prune({}, 4 * day - 1);
    QCOMPARE(idsOf(folder.texts()), QStringList({ids[5], ids[4], ids[3]}));
    folder.prune({}, 4 * day);
    QCOMPARE(idsOf(folder.texts()), QStringList({ids[5], ids[4]}));
}

void RecoveryFolderTest::theBytesAreBounded()
{
    QStringList ids;
    for (int each = 0; each < 4; ++each) {
        ids << leave(each, QString(each == 1 ? 40'000 : 10'000, u'x'));
    }
    RecoveryFolder::Bounds bounds;
    bounds.bytes = 45'000;
    RecoveryFolder folder(path_, bounds);
    folder.prune({}, 2 * day);
    // What is too large goes, and what is older and has room stays.
    QCOMPARE(idsOf(folder.texts()), QStringList({ids[3], ids[2], ids[0]}));
}

void RecoveryFolderTest::openCopiesAreNeverPruned()
{
    RecoveryFolder::Bounds bounds;
    bounds.copies = 0;
    RecoveryFolder folder(path_, bounds);
    const QString open = folder.newId();
    const QString closed = folder.newId();
    QVERIFY(!folder.write(open, headerAt(1), TextTree(u"open"_s)));
    QVERIFY(!folder.write(closed, headerAt(1), TextTree(u"closed"_s)));
    folder.prune({open}, 2 * day);
    QCOMPARE(idsOf(folder.texts()), QStringList(open));
}

void RecoveryFolderTest::whatWasLeftHalfWrittenGoes()
{
    const QString id = leave(1, u"text"_s);
    const QString part = path_ + u'/' + id + u".copy.part"_s;
    QVERIFY(QFile::copy(path_ + u'/' + id + u".copy"_s, part));
    RecoveryFolder folder(path_);
    folder.prune({}, 2);
    QVERIFY(!QFileInfo::exists(part));
    QCOMPARE(idsOf(folder.texts()), QStringList(id));
}

void RecoveryFolderTest::locksGoWithTheLastCopy()
{
    const QString first = leave(1, u"text"_s);
    QCOMPARE(files().size(), 2);
    RecoveryFolder other(path_);
    other.prune({}, 2);
    QCOMPARE(files().size(), 2);
    other.remove(first);
    other.prune({}, 2);
    QCOMPARE(files(), QStringList());
    {
        RecoveryFolder folder(path_);
        const QString id = folder.newId();
        QVERIFY(!folder.write(id, headerAt(1), TextTree(u"text"_s)));
        folder.remove(id);
        QCOMPARE(files().size(), 1);
    }
    QCOMPARE(files(), QStringList());
}

void RecoveryFolderTest::aFolderThatWasRemovedIsMadeAnew()
{
    RecoveryFolder folder(path_);
    const QString id = folder.newId();
    QVERIFY(!folder.write(id, headerAt(1), TextTree(u"text"_s)));
    QVERIFY(QDir(path_).removeRecursively());
    QVERIFY(!folder.write(id, headerAt(2), TextTree(u"text again"_s)));
    RecoveryFolder other(path_);
    QVERIFY(other.texts().isEmpty());
    QCOMPARE(idsOf(folder.texts()), QStringList(id));
}

void RecoveryFolderTest::aFailureIsToldWithItsReason()
{
    QVERIFY(QDir().mkpath(QFileInfo(path_).path()));
    QFile inTheWay(path_);
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    RecoveryFolder folder(path_);
    const std::optional<FileError> error = folder.write(folder.newId(), headerAt(1), TextTree(u"text"_s));
    QVERIFY(error);
    QVERIFY2(error->message.contains(u"Not a directory"_s), qPrintable(error->message));
}

const kelm::test::Registered<RecoveryFolderTest> registered;

} // namespace recovery_folder_test

#include "recovery_folder_test.moc"
