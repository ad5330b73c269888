#include "app/recovery/recovery_store.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <optional>

namespace recovery_store_times_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

std::shared_ptr<Document> untitled(const QString& text = {})
{
    return std::make_shared<Document>(text, std::nullopt, std::nullopt, std::nullopt);
}

} // namespace

/// When copies are made while nobody asks for them: nothing here waits for the store to be done.
class RecoveryStoreTimesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        home_.emplace();
        scheduler_.emplace();
        store_ = std::make_unique<RecoveryStore>(*scheduler_, home_->filePath(u"unsaved"_s));
    }
    void cleanup() { store_.reset(); }
    void whatIsTypedIsCopiedByItself();
    void typingGoesOnAndOn();
    void whatIsModifiedWhenItOpensIsCopied();
    void nothingIsDueWhereNothingHasChanged();
    void allThatHasChangedIsCopiedAtOnce();
    void whatIsUndoneIsRemovedByItself();
    void aFailureIsTriedAgainAndAgain();
    void nothingIsHeldForADocumentThatIsGone();

private:
    QStringList onDisk() const
    {
        QStringList texts;
        const QDir folder(home_->filePath(u"unsaved"_s));
        for (const QString& name : folder.entryList({u"*.copy"_s}, QDir::Files)) {
            QFile file(folder.filePath(name));
            if (const auto content = file.open(QIODevice::ReadOnly) ? readCopy(file) : std::nullopt) {
                texts << content->text.toString();
            }
        }
        texts.sort();
        return texts;
    }

    std::optional<QTemporaryDir> home_;
    std::optional<ManualScheduler> scheduler_;
    std::unique_ptr<RecoveryStore> store_;
};

void RecoveryStoreTimesTest::whatIsTypedIsCopiedByItself()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    QCOMPARE(scheduler_->pending(), std::size_t(1));
    scheduler_->advance(RecoveryStore::delay);
    QTRY_COMPARE(onDisk(), QStringList(u"typed"_s));
}

void RecoveryStoreTimesTest::typingGoesOnAndOn()
{
    const auto document = untitled();
    store_->setDocuments({document});
    for (int key = 1; key <= 5; ++key) {
        // Of many keys one time is due.
        document->setContent(QString(2 * key - 1, u'x'));
        document->setContent(QString(2 * key, u'x'));
        QVERIFY(scheduler_->pending() <= 1);
        scheduler_->advance(RecoveryStore::delay);
        // What is typed before the copy is made is in the next.
        document->setContent(QString(2 * key, u'y'));
        QTRY_COMPARE((scheduler_->advance(RecoveryStore::delay), onDisk()), QStringList(QString(2 * key, u'y')));
    }
}

void RecoveryStoreTimesTest::whatIsModifiedWhenItOpensIsCopied()
{
    const auto document = untitled(u"reopened"_s);
    document->setIsModified(true);
    store_->setDocuments({document});
    scheduler_->advance(RecoveryStore::delay);
    QTRY_COMPARE(onDisk(), QStringList(u"reopened"_s));
}

void RecoveryStoreTimesTest::nothingIsDueWhereNothingHasChanged()
{
    const auto document = untitled(u"a lesson's"_s);
    store_->setDocuments({document});
    QCOMPARE(scheduler_->pending(), std::size_t(0));
    document->setContent(u"typed"_s);
    scheduler_->advance(RecoveryStore::delay);
    QTRY_COMPARE(onDisk(), QStringList(u"typed"_s));
    // And what was copied is copied once.
    QVERIFY(store_->finish(std::chrono::milliseconds(kelm::test::patience)));
    QCoreApplication::processEvents();
    scheduler_->advance(10 * RecoveryStore::delay);
    QCOMPARE(scheduler_->pending(), std::size_t(0));
}

void RecoveryStoreTimesTest::allThatHasChangedIsCopiedAtOnce()
{
    const auto one = untitled();
    const auto other = untitled();
    store_->setDocuments({one, other});
    one->setContent(u"one"_s);
    scheduler_->advance(RecoveryStore::delay - 1ms);
    other->setContent(u"other"_s);
    scheduler_->advance(1ms);
    QTRY_COMPARE(onDisk(), QStringList({u"one"_s, u"other"_s}));
}

void RecoveryStoreTimesTest::whatIsUndoneIsRemovedByItself()
{
    const auto document = untitled(u"as it was"_s);
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    scheduler_->advance(RecoveryStore::delay);
    QTRY_COMPARE(onDisk(), QStringList(u"typed"_s));
    document->setContent(u"as it was"_s);
    QTRY_COMPARE((scheduler_->advance(RecoveryStore::delay), onDisk()), QStringList());
}

void RecoveryStoreTimesTest::aFailureIsTriedAgainAndAgain()
{
    QFile inTheWay(home_->filePath(u"unsaved"_s));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    int failures = 0;
    connect(store_.get(), &RecoveryStore::failed, this, [&failures] { ++failures; });
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    scheduler_->advance(RecoveryStore::delay);
    for (int time = 0; time < 3; ++time) {
        // Each failure has the next try be due, and is told once.
        QTRY_COMPARE(scheduler_->pending(), std::size_t(1));
        QCOMPARE(failures, 1);
        scheduler_->advance(RecoveryStore::retryDelay);
    }
    QVERIFY(inTheWay.remove());
    QTRY_COMPARE((scheduler_->advance(RecoveryStore::retryDelay), onDisk()), QStringList(u"typed"_s));
}

void RecoveryStoreTimesTest::nothingIsHeldForADocumentThatIsGone()
{
    const auto openFiles = [] {
        int count = 0;
        const QDir files(u"/proc/self/fd"_s);
        for (const QString& name : files.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
            count += QFile::symLinkTarget(files.filePath(name)).contains(u".copy"_s) ? 1 : 0;
        }
        return count;
    };
    auto document = untitled();
    store_->setDocuments({document});
    document->setContent(QString(CopyFile::leastLong, u'x'));
    scheduler_->advance(RecoveryStore::delay);
    // The copy of a long text is gone on with.
    QTRY_COMPARE(onDisk().size(), 1);
    QTRY_COMPARE(openFiles(), 1);
    store_->setDocuments({});
    document.reset();
    QTRY_COMPARE(openFiles(), 0);
    QCOMPARE(onDisk().size(), 1);
}

const kelm::test::Registered<RecoveryStoreTimesTest> registered(kelm::test::Toolkit::core);

} // namespace recovery_store_times_test

#include "recovery_store_times_test.moc"
