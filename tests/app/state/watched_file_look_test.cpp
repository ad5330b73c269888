#include "app/state/watched_file_look.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "support/test_program.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>

namespace watched_file_look_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using Outcome = FileLook::Outcome;
using Sight = FileLook::Sight;

/// One look at a file, beside what was known of it.
class WatchedFileLookTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        folder_.emplace();
        QVERIFY(folder_->isValid());
    }
    void whatIsKnownIsNotRead();
    void whatIsNewHasToBeSeenTwice();
    void whatHasGoneHasToBeMissedTwice();
    void aFileThatComesBackIsReadThoughItIsTheSame();
    void whatWasToldIsReadWhenItIsWanted();
    void theTextTellsWhetherAnythingHasChanged();
    void theTextThatWasReadIsTheFiles_data();
    void theTextThatWasReadIsTheFiles();
    void whatCannotBeReadTellsWhy();
    void aReadingThatIsStoppedFindsNothingOut();
    void aFileThatChangesWhileItIsReadIsLookedAtAgain();

private:
    QString path() const { return folder_->filePath(u"a.txt"_s); }
    Sight write(const QByteArray& bytes) const
    {
        QFile file(path());
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot set up the file");
        }
        file.close();
        return sight();
    }
    Sight sight() const { return identityOf(nativePath(path())); }
    /// A look at the file of which nothing is known, behind one that saw it as it is now.
    FileLook look(const QString& fileText = {}, const QString& documentText = {}) const
    {
        FileLook look;
        look.document = QUuid::createUuid();
        look.age = 7;
        look.url = urlOfFile(path());
        look.before = sight();
        look.fileText = TextTree(fileText);
        look.documentText = TextTree(documentText);
        return look;
    }
    static FileLook::Finding find(const FileLook& look)
    {
        const std::atomic<bool> stop = false;
        return look(stop);
    }

    std::optional<QTemporaryDir> folder_;
};

void WatchedFileLookTest::whatIsKnownIsNotRead()
{
    FileLook known = look();
    known.known = write("text");
    known.before = known.known;
    const FileLook::Finding finding = find(known);
    QCOMPARE(finding.outcome, Outcome::same);
    QCOMPARE(finding.document, known.document);
    QCOMPARE(finding.age, 7U);
    QCOMPARE(finding.sight, known.known);
    QCOMPARE(finding.text.length(), 0);

    FileLook told = look();
    told.told = sight();
    QCOMPARE(find(told).outcome, Outcome::same);

    QVERIFY(QFile::remove(path()));
    FileLook gone = look();
    gone.isGone = true;
    QCOMPARE(find(gone).outcome, Outcome::same);
    // What was told of is there no more.
    told.before = Sight();
    QCOMPARE(find(told).outcome, Outcome::gone);
}

void WatchedFileLookTest::whatIsNewHasToBeSeenTwice()
{
    const Sight first = write("text");
    FileLook fresh = look();
    fresh.before.reset();
    QCOMPARE(find(fresh).outcome, Outcome::unquiet);
    QCOMPARE(find(fresh).sight, first);
    fresh.before = Sight();
    QCOMPARE(find(fresh).outcome, Outcome::unquiet);
    fresh.before = first;
    QCOMPARE(find(fresh).outcome, Outcome::newText);
    write("text, longer");
    QCOMPARE(find(fresh).outcome, Outcome::unquiet);
    QCOMPARE(find(fresh).sight, sight());
}

void WatchedFileLookTest::whatHasGoneHasToBeMissedTwice()
{
    FileLook missing = look();
    missing.known = write("text");
    QVERIFY(QFile::remove(path()));
    missing.before.reset();
    QCOMPARE(find(missing).outcome, Outcome::unquiet);
    QCOMPARE(find(missing).sight, Sight());
    missing.before = Sight();
    QCOMPARE(find(missing).outcome, Outcome::gone);
}

void WatchedFileLookTest::aFileThatComesBackIsReadThoughItIsTheSame()
{
    FileLook back = look(u"text"_s, u"text"_s);
    back.known = write("text");
    back.before = back.known;
    back.isGone = true;
    QCOMPARE(find(back).outcome, Outcome::sameText);
}

void WatchedFileLookTest::whatWasToldIsReadWhenItIsWanted()
{
    write("theirs");
    FileLook wanted = look(u"old"_s, u"mine"_s);
    wanted.told = sight();
    wanted.wantsReload = true;
    QCOMPARE(find(wanted).outcome, Outcome::newText);
    QCOMPARE(find(wanted).text.toString(), u"theirs"_s);
    // Also what is known.
    wanted.known = sight();
    QCOMPARE(find(wanted).outcome, Outcome::newText);
    QVERIFY(QFile::remove(path()));
    wanted.before = Sight();
    QCOMPARE(find(wanted).outcome, Outcome::gone);
}

void WatchedFileLookTest::theTextTellsWhetherAnythingHasChanged()
{
    write("text");
    QCOMPARE(find(look(u"text"_s, u"mine"_s)).outcome, Outcome::sameText);
    QCOMPARE(find(look(u"text"_s, u"mine"_s)).text.toString(), u"text"_s);
    QCOMPARE(find(look(u"old"_s, u"text"_s)).outcome, Outcome::newText);
    QCOMPARE(find(look(u"old"_s, u"text"_s)).text.toString(), u"text"_s);
}

void WatchedFileLookTest::theTextThatWasReadIsTheFiles_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("document");
    QTest::newRow("nothing in common") << QByteArray("abc") << u"xyz"_s;
    QTest::newRow("the start") << QByteArray("abc") << u"abx"_s;
    QTest::newRow("the end") << QByteArray("abc") << u"xbc"_s;
    QTest::newRow("both ends") << QByteArray("one two three") << u"one three"_s;
    QTest::newRow("both ends, longer there") << QByteArray("one three") << u"one two three"_s;
    QTest::newRow("all") << QByteArray("same") << u"same"_s;
    QTest::newRow("repeated") << QByteArray("aaaa") << u"aa"_s;
    QTest::newRow("an empty file") << QByteArray() << u"text"_s;
    QTest::newRow("an empty document") << QByteArray("text") << QString();
    QTest::newRow("long") << QByteArray("0123456789").repeated(10'000)
                          << QString(u"0123456789"_s.repeated(10'000) + u"x"_s);
}

void WatchedFileLookTest::theTextThatWasReadIsTheFiles()
{
    QFETCH(const QByteArray, file);
    QFETCH(const QString, document);
    write(file);
    const FileLook::Finding finding = find(look(u"something else"_s, document));
    QCOMPARE(finding.outcome, Outcome::newText);
    QCOMPARE(finding.text.toString().toUtf8(), file);
    QCOMPARE(finding.error.has_value(), false);
}

void WatchedFileLookTest::whatCannotBeReadTellsWhy()
{
    const Sight there = write("\xff\xfe");
    const FileLook::Finding finding = find(look());
    QCOMPARE(finding.outcome, Outcome::unreadable);
    QCOMPARE(finding.sight, there);
    QVERIFY(finding.error);
    QCOMPARE(finding.error->reason, u"it is no text in UTF-8"_s);
}

void WatchedFileLookTest::aReadingThatIsStoppedFindsNothingOut()
{
    write(QByteArray(3'000'000, 'x'));
    const std::atomic<bool> stop = true;
    const FileLook::Finding finding = look()(stop);
    QVERIFY(finding.outcome != Outcome::newText);
    QVERIFY(finding.outcome != Outcome::sameText);
}

void WatchedFileLookTest::aFileThatChangesWhileItIsReadIsLookedAtAgain()
{
    write(QByteArray(3'000'000, 'x'));
    std::atomic<bool> isOver = false;
    // Each time is another, whatever the grain of the system's clock.
    std::thread writer([&isOver, native = nativePath(path())] {
        for (timespec time{1, 0}; !isOver; time.tv_nsec = (time.tv_nsec + 1) % 1'000'000'000) {
            const timespec times[2] = {time, time};
            ::utimensat(AT_FDCWD, native.constData(), times, 0);
            std::this_thread::yield();
        }
    });
    bool wasSeen = false;
    const QDeadlineTimer end(kelm::test::patience);
    while (!wasSeen && !end.hasExpired()) {
        const FileLook::Finding finding = find(look());
        // It was as before when the look began, and is another by the end: there is nothing that it was seen as.
        wasSeen = finding.outcome == Outcome::unquiet && !finding.sight;
    }
    isOver = true;
    writer.join();
    QVERIFY(wasSeen);
}

const kelm::test::Registered<WatchedFileLookTest> registered(kelm::test::Toolkit::core);

} // namespace watched_file_look_test

#include "watched_file_look_test.moc"
