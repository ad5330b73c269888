#include "app/recovery/recovery_folder.h"
#include "app/recovery/replaced_bytes.h"
#include "app/state/replaced_files.h"
#include "platform/files/file_url.h"
#include "support/test_program.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>
#include <sys/file.h>
#include <sys/stat.h>

namespace replaced_bytes_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 minute = 60 * 1000;

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

class ReplacedBytesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        home_.emplace();
        QVERIFY(home_->isValid());
    }
    void whatIsEncodedComesBack_data();
    void whatIsEncodedComesBack();
    void whatHasNoSuchLineIsContent_data();
    void whatHasNoSuchLineIsContent();
    void whatASaveLeftIsOfferedOnce();
    void aSaveThatGoesOnIsLeftAlone();
    void whatWasSavedIsNotKept();
    void whatIsAboutToBeLockedIsLeftAlone();
    void whatAnotherProgramTakesIsLeftToIt();
    void whatCannotBeKeptStays();
    void ofManySavesThatFailedSomeAreHeld();
    void whatIsKeptIsTheOwnersAlone();

private:
    QStringList left() const { return QDir(home_->path()).entryList({ReplacedBytes::prefix + u'*'}, QDir::Files); }
    /// How many of them are locked.
    int held() const
    {
        int held = 0;
        for (const QString& name : left()) {
            QFile file(home_->filePath(name));
            held += file.open(QIODevice::ReadOnly) && ::flock(file.handle(), LOCK_EX | LOCK_NB) != 0 ? 1 : 0;
        }
        return held;
    }
    QUrl keep(const QByteArray& content)
    {
        ReplacedFilesFolder files(home_->path());
        return files.keepReplaced(url_, content).value_or(QUrl());
    }

    std::optional<QTemporaryDir> home_;
    const QUrl url_ = urlOfFile(u"/home/a b\n한.txt"_s);
};

void ReplacedBytesTest::whatIsEncodedComesBack_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("plain") << urlOfFile(u"/a.txt"_s) << QByteArray("one\ntwo\n");
    QTest::newRow("a line feed in the name") << url_ << QByteArray("x");
    QTest::newRow("undecodable name") << urlOfFile(u"/caf\xdce9"_s) << QByteArray("x");
    QTest::newRow("no bytes") << urlOfFile(u"/a"_s) << QByteArray();
    QTest::newRow("any bytes") << urlOfFile(u"/a"_s) << QByteArray("\0\xff\n\n\x80", 5);
}

void ReplacedBytesTest::whatIsEncodedComesBack()
{
    QFETCH(QUrl, url);
    QFETCH(QByteArray, content);
    const ReplacedBytes bytes{url, content};
    QCOMPARE(ReplacedBytes::decoded(bytes.encoded()), bytes);
}

void ReplacedBytesTest::whatHasNoSuchLineIsContent_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one line") << QByteArray("file:///a.txt");
    QTest::newRow("a line feed first") << QByteArray("\nfile:///a.txt\n");
    QTest::newRow("another scheme") << QByteArray("https://a.b/\ntext");
    QTest::newRow("a text") << QByteArray("one\ntwo\n");
}

void ReplacedBytesTest::whatHasNoSuchLineIsContent()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(ReplacedBytes::decoded(bytes), (ReplacedBytes{{}, bytes}));
}

void ReplacedBytesTest::whatASaveLeftIsOfferedOnce()
{
    QVERIFY(!keep("the old text\n").isEmpty());
    RecoveryFolder folder(home_->path());
    folder.takeReplaced(now() + 2 * minute);
    QCOMPARE(left(), QStringList());
    const QList<UnsavedText> texts = folder.texts();
    QCOMPARE(texts.size(), 1);
    QCOMPARE(texts[0].header.url, std::optional(url_));
    QVERIFY(texts[0].header.isReplaced);
    QCOMPARE(folder.take(texts[0].id, folder.newId())->text.toString(), u"the old text\n"_s);
    folder.takeReplaced(now() + 2 * minute);
    QCOMPARE(folder.texts().size(), 1);
}

void ReplacedBytesTest::aSaveThatGoesOnIsLeftAlone()
{
    std::optional<ReplacedFilesFolder> saving(home_->path());
    const QUrl kept = saving->keepReplaced(url_, "the old text\n").value_or(QUrl());
    RecoveryFolder folder(home_->path());
    folder.takeReplaced(now() + 2 * minute);
    QCOMPARE(left().size(), 1);
    QCOMPARE(folder.texts().size(), 0);
    // Its program ends, and a moment later the next one begins.
    saving.reset();
    folder.takeReplaced(now());
    QCOMPARE(left(), QStringList());
    QCOMPARE(folder.texts().size(), 1);
}

void ReplacedBytesTest::whatWasSavedIsNotKept()
{
    ReplacedFilesFolder saving(home_->path());
    saving.forget(saving.keepReplaced(url_, "the old text\n").value_or(QUrl()));
    QCOMPARE(left(), QStringList());
}

void ReplacedBytesTest::whatIsAboutToBeLockedIsLeftAlone()
{
    QFile file(home_->filePath(ReplacedBytes::prefix + u'1'));
    QVERIFY(file.open(QIODevice::WriteOnly));
    RecoveryFolder folder(home_->path());
    folder.takeReplaced(now());
    QCOMPARE(left().size(), 1);
    folder.takeReplaced(now() + 2 * minute);
    QCOMPARE(left(), QStringList());
    QCOMPARE(folder.texts().size(), 0);
}

void ReplacedBytesTest::whatAnotherProgramTakesIsLeftToIt()
{
    const QUrl kept = keep("the old text\n");
    QFile file(filePath(kept));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(::flock(file.handle(), LOCK_EX), 0);
    int taken = 0;
    const auto take = [&taken](const ReplacedBytes&, qint64) { return ++taken > 0; };
    takeLeftBytes(home_->path(), now() + 2 * minute, take);
    QCOMPARE(taken, 0);
    file.close();
    takeLeftBytes(home_->path(), now() + 2 * minute, take);
    QCOMPARE(taken, 1);
    QCOMPARE(left(), QStringList());
}

void ReplacedBytesTest::whatCannotBeKeptStays()
{
    QVERIFY(!keep("the old text\n").isEmpty());
    takeLeftBytes(home_->path(), now() + 2 * minute, [](const ReplacedBytes&, qint64) { return false; });
    QCOMPARE(left().size(), 1);
}

void ReplacedBytesTest::ofManySavesThatFailedSomeAreHeld()
{
    ReplacedFilesFolder saving(home_->path());
    for (int save = 0; save < 40; ++save) {
        QVERIFY(saving.keepReplaced(url_, "the old text\n"));
    }
    QCOMPARE(left().size(), 40);
    QVERIFY2(held() > 1 && held() < 20, qPrintable(QString::number(held())));
}

void ReplacedBytesTest::whatIsKeptIsTheOwnersAlone()
{
    const auto modeOf = [](const QString& path) {
        struct stat status = {};
        return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    };
    QVERIFY(QFile::setPermissions(home_->path(), QFile::Permissions(0x7755)));
    const QUrl kept = keep("the old text\n");
    QCOMPARE(modeOf(home_->path()), mode_t(0700));
    QCOMPARE(modeOf(filePath(kept)), mode_t(0600));
}

const kelm::test::Registered<ReplacedBytesTest> registered;

} // namespace replaced_bytes_test

#include "replaced_bytes_test.moc"
