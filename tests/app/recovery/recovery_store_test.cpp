#include "app/recovery/recovery_store.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "support/random_text.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <map>
#include <memory>
#include <optional>

namespace recovery_store_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::seconds patience{30};

std::shared_ptr<Document> untitled(const QString& text = {})
{
    return std::make_shared<Document>(text, std::nullopt, std::nullopt, std::nullopt);
}

} // namespace

class RecoveryStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        home_.emplace();
        scheduler_.emplace();
        store_ = std::make_unique<RecoveryStore>(*scheduler_, path());
    }
    void cleanup() { store_.reset(); }
    void whatIsTypedIsCopiedWithinTwoSeconds();
    void whatIsNotTypedIsNotCopied();
    void aSaveRemovesTheCopy();
    void undoingEverythingRemovesTheCopy();
    void whatIsReadAnewIsNoUnsavedText();
    void whatTheFileHeldBeforeIsAnUnsavedText();
    void whatTheFileDoesNotHoldAnyMoreIsAnUnsavedText();
    void whatTheFileHoldsByNowNeedsNoCopy();
    void theEndOfTheProgramDoesNotWaitForTheDelay();
    void closedTextsAreOfferedAndOpenOnesAreNot();
    void aClosedDocumentThatIsOpenedAgainKeepsItsCopy();
    void aTextThatWasReadBelongsToItsDocument();
    void aRemovedTextIsOfferedNoMore();
    void replacedTextsAreKept();
    void theHeaderNamesTheStateOfTheFile();
    void languageAndPlaceAreCopiedToo();
    void aFailureIsToldOnceAndTriedAgain();
    void allThatFailedIsTriedAgain();
    void whatFailedIsTriedAgainAtTheEnd();
    void aStoreWithoutAFolderKeepsNothing();
    void randomLivesOfDocuments();

private:
    QString path() const { return home_->filePath(u"unsaved"_s); }
    /// Lets the time of a copy pass, and the copy be written.
    void settle()
    {
        scheduler_->advance(RecoveryStore::delay);
        finish();
    }
    void finish()
    {
        QVERIFY(store_->finish(patience));
        // What the worker has told.
        QCoreApplication::processEvents();
    }
    /// The texts that another program would find, were this one to end now.
    QStringList onDisk()
    {
        QStringList texts;
        const QDir folder(path());
        for (const QString& name : folder.entryList({u"*.copy"_s}, QDir::Files)) {
            QFile file(folder.filePath(name));
            const bool isOpen = file.open(QIODevice::ReadOnly);
            const std::optional<CopyContent> content = isOpen ? readCopy(file) : std::nullopt;
            texts << (content ? content->text.toString() : u"(damaged)"_s);
        }
        texts.sort();
        return texts;
    }
    QStringList offered()
    {
        QStringList words;
        for (const UnsavedText& text : store_->texts()) {
            words << text.firstWords;
        }
        words.sort();
        return words;
    }

    std::optional<QTemporaryDir> home_;
    std::optional<ManualScheduler> scheduler_;
    std::unique_ptr<RecoveryStore> store_;
};

void RecoveryStoreTest::whatIsTypedIsCopiedWithinTwoSeconds()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    scheduler_->advance(RecoveryStore::delay - 1ms);
    document->setContent(u"typed on"_s);
    // Typing on puts nothing off.
    scheduler_->advance(1ms);
    finish();
    QCOMPARE(onDisk(), QStringList(u"typed on"_s));
    QVERIFY(RecoveryStore::delay < 2s);
}

void RecoveryStoreTest::whatIsNotTypedIsNotCopied()
{
    const auto snippet = untitled(u"a lesson's"_s);
    store_->setDocuments({untitled(), snippet});
    snippet->setCursorPosition({1, 2, 0});
    settle();
    QCOMPARE(onDisk(), QStringList());
    QVERIFY(!QFileInfo::exists(path()));
    snippet->setContent(u"a lesson's, changed"_s);
    settle();
    QCOMPARE(onDisk(), QStringList(u"a lesson's, changed"_s));
}

void RecoveryStoreTest::aSaveRemovesTheCopy()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    settle();
    QCOMPARE(onDisk().size(), 1);
    document->setIsModified(false);
    store_->noteSaved(*document);
    settle();
    QCOMPARE(onDisk(), QStringList());
    document->setContent(u"typed again"_s);
    settle();
    QCOMPARE(onDisk(), QStringList(u"typed again"_s));
}

void RecoveryStoreTest::undoingEverythingRemovesTheCopy()
{
    const auto document = untitled(u"as it was"_s);
    const TextTree origin = document->text();
    store_->setDocuments({document});
    document->setContent(u"as it is"_s);
    settle();
    QCOMPARE(onDisk().size(), 1);
    document->setText(origin);
    settle();
    QVERIFY(document->isModified());
    QCOMPARE(onDisk(), QStringList());
    document->setContent(u"redone"_s);
    settle();
    QCOMPARE(onDisk(), QStringList(u"redone"_s));
}

void RecoveryStoreTest::whatIsReadAnewIsNoUnsavedText()
{
    const auto document = untitled(u"old"_s);
    store_->setDocuments({document});
    document->setContent(u"new on disk"_s);
    document->setIsModified(false);
    settle();
    QCOMPARE(onDisk(), QStringList());
    document->setContent(u"typed"_s);
    document->setContent(u"new on disk"_s);
    settle();
    QCOMPARE(onDisk(), QStringList());
}

void RecoveryStoreTest::whatTheFileHeldBeforeIsAnUnsavedText()
{
    const auto document = untitled(u"as it was"_s);
    store_->setDocuments({document});
    // Another program has written the file, and the document was never modified.
    document->takeFileText(TextTree(u"another program's"_s));
    settle();
    QCOMPARE(onDisk(), QStringList());
    document->setContent(u"as it was"_s);
    settle();
    QCOMPARE(onDisk(), QStringList{u"as it was"_s});
    // And one that has come to hold the same keeps nothing.
    document->noteTextOfFile();
    settle();
    QCOMPARE(onDisk(), QStringList());
}

void RecoveryStoreTest::whatTheFileDoesNotHoldAnyMoreIsAnUnsavedText()
{
    const auto document = untitled(u"as it was"_s);
    const auto unmodified = untitled(u"not touched"_s);
    store_->setDocuments({document, unmodified});
    document->setContent(u"typed"_s);
    document->setContent(u"as it was"_s);
    settle();
    QCOMPARE(onDisk(), QStringList());
    // Nothing is typed from here on.
    document->noteOtherTextInFile(std::nullopt);
    unmodified->noteOtherTextInFile(std::nullopt);
    settle();
    QCOMPARE(onDisk(), QStringList{u"as it was"_s});
    document->noteTextOfFile();
    settle();
    QCOMPARE(onDisk(), QStringList());
}

void RecoveryStoreTest::whatTheFileHoldsByNowNeedsNoCopy()
{
    const auto document = untitled(u"as it was"_s);
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    document->noteOtherTextInFile(TextTree(u"by another program"_s));
    settle();
    QCOMPARE(onDisk(), QStringList{u"typed"_s});
    document->setContent(u"by another program"_s);
    settle();
    QCOMPARE(onDisk(), QStringList());
    document->setContent(u"as it was"_s);
    settle();
    QCOMPARE(onDisk(), QStringList{u"as it was"_s});
}

void RecoveryStoreTest::theEndOfTheProgramDoesNotWaitForTheDelay()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"the last key"_s);
    finish();
    QCOMPARE(onDisk(), QStringList(u"the last key"_s));
}

void RecoveryStoreTest::closedTextsAreOfferedAndOpenOnesAreNot()
{
    auto one = untitled();
    const auto other = untitled();
    store_->setDocuments({one, other});
    one->setContent(u"one"_s);
    other->setContent(u"other"_s);
    QSignalSpy changed(store_.get(), &RecoveryStore::textsChanged);
    store_->setDocuments({other});
    // The document itself is needed no more.
    one.reset();
    settle();
    store_->refresh();
    finish();
    QCOMPARE(onDisk(), QStringList({u"one"_s, u"other"_s}));
    QCOMPARE(offered(), QStringList(u"one"_s));
    QCOMPARE(changed.count(), 1);

    // Another program is offered both, once this one has ended.
    store_ = std::make_unique<RecoveryStore>(*scheduler_, path());
    store_->refresh();
    finish();
    QCOMPARE(offered(), QStringList({u"one"_s, u"other"_s}));
}

void RecoveryStoreTest::aClosedDocumentThatIsOpenedAgainKeepsItsCopy()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    store_->setDocuments({});
    finish();
    QCOMPARE(offered(), QStringList(u"typed"_s));
    QCOMPARE(store_->closedDocument(store_->texts().constFirst().id), document);
    store_->setDocuments({document});
    QCOMPARE(offered(), QStringList());
    settle();
    QCOMPARE(onDisk(), QStringList(u"typed"_s));
    document->setContent(u"typed on"_s);
    settle();
    QCOMPARE(onDisk(), QStringList(u"typed on"_s));
}

void RecoveryStoreTest::aTextThatWasReadBelongsToItsDocument()
{
    {
        RecoveryStore before(*scheduler_, path());
        const auto document = untitled();
        before.setDocuments({document});
        document->setContent(u"typed"_s);
        QVERIFY(before.finish(patience));
    }
    store_->refresh();
    finish();
    QCOMPARE(store_->texts().size(), 1);
    const QString id = store_->texts().constFirst().id;
    std::shared_ptr<Document> document;
    int delivered = 0;
    const auto take = [&](const std::optional<CopyContent>& content, const QString& newId) {
        ++delivered;
        document = untitled(content->text.toString());
        document->setIsModified(true);
        store_->adopt(document, newId, content->header.identity);
        store_->setDocuments({document});
    };
    store_->read(id, take);
    QCOMPARE(offered(), QStringList());
    // The second press of a double click.
    store_->read(id, take);
    finish();
    QCOMPARE(delivered, 1);
    QCOMPARE(document->content(), u"typed"_s);
    settle();
    store_->refresh();
    finish();
    QCOMPARE(offered(), QStringList());
    QCOMPARE(onDisk(), QStringList(u"typed"_s));
    document->setIsModified(false);
    store_->noteSaved(*document);
    settle();
    QCOMPARE(onDisk(), QStringList());
}

void RecoveryStoreTest::aRemovedTextIsOfferedNoMore()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    store_->setDocuments({});
    finish();
    const QString id = store_->texts().constFirst().id;
    store_->remove(id);
    QCOMPARE(offered(), QStringList());
    finish();
    QCOMPARE(onDisk(), QStringList());
    // Opened again from memory, it is copied again.
    store_->setDocuments({document});
    settle();
    QCOMPARE(onDisk(), QStringList(u"typed"_s));
}

void RecoveryStoreTest::replacedTextsAreKept()
{
    const QUrl url(u"file:///a/b.txt"_s);
    store_->keepReplaced(url, QByteArray("caf\xc3\xa9"));
    store_->keepReplaced(url, QByteArray("caf\xe9"));
    store_->keepReplaced(url, TextTree(u"tree"_s));
    finish();
    QCOMPARE(onDisk(), QStringList({u"caf\u00e9"_s, u"caf\u00e9"_s, u"tree"_s}));
    // The latest first; bytes that their text does not give again have no file that they would be saved to.
    QStringList titles;
    for (const UnsavedText& text : store_->texts()) {
        QVERIFY(text.header.isReplaced);
        titles << text.header.title();
    }
    QCOMPARE(titles, (QStringList{u"b.txt"_s, u"Untitled"_s, u"b.txt"_s}));
}

void RecoveryStoreTest::theHeaderNamesTheStateOfTheFile()
{
    QFile file(home_->filePath(u"a.txt"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("text") == 4 && file.flush());
    const QUrl url = QUrl::fromLocalFile(file.fileName());
    const auto document = std::make_shared<Document>(u"text"_s, url, std::nullopt, std::nullopt);
    store_->setDocuments({document});
    finish();
    const std::optional<FileIdentity> identity = identityOf(nativePath(filePath(url)));
    QVERIFY(identity);
    QCOMPARE(identity->size, 4);
    // What becomes of the file later is another state.
    QVERIFY(file.write("more") == 4 && file.flush());
    document->setContent(u"typed"_s);
    store_->setDocuments({});
    finish();
    QCOMPARE(store_->texts().size(), 1);
    QCOMPARE(store_->texts().constFirst().header.identity, identity);
    QCOMPARE(store_->texts().constFirst().header.url, std::optional(url));
}

void RecoveryStoreTest::languageAndPlaceAreCopiedToo()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"select 1"_s);
    settle();
    document->setExplicitLanguage(Language(Language::sql));
    settle();
    store_->setDocuments({});
    finish();
    QCOMPARE(store_->texts().size(), 1);
    QCOMPARE(store_->texts().constFirst().header.language, std::optional(Language(Language::sql)));
    QCOMPARE(store_->texts().constFirst().header.url, std::nullopt);
}

void RecoveryStoreTest::aFailureIsToldOnceAndTriedAgain()
{
    QFile inTheWay(path());
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QSignalSpy failed(store_.get(), &RecoveryStore::failed);
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    settle();
    QCOMPARE(failed.count(), 1);
    document->setContent(u"typed on"_s);
    settle();
    QCOMPARE(failed.count(), 1);
    QVERIFY(inTheWay.remove());
    scheduler_->advance(RecoveryStore::retryDelay);
    finish();
    QCOMPARE(onDisk(), QStringList(u"typed on"_s));
}

void RecoveryStoreTest::allThatFailedIsTriedAgain()
{
    QFile inTheWay(path());
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    const auto one = untitled();
    const auto other = untitled();
    store_->setDocuments({one, other});
    one->setContent(u"one"_s);
    other->setContent(u"other"_s);
    settle();
    QVERIFY(inTheWay.remove());
    scheduler_->advance(RecoveryStore::retryDelay);
    QTRY_COMPARE(onDisk(), (QStringList{u"one"_s, u"other"_s}));
}

void RecoveryStoreTest::whatFailedIsTriedAgainAtTheEnd()
{
    const auto document = untitled();
    store_->setDocuments({document});
    document->setContent(u"typed"_s);
    settle();
    const QFile::Permissions own = QFile::permissions(path());
    QVERIFY(QFile::setPermissions(path(), {}));
    document->setContent(u"typed on"_s);
    {
        const test::Unprivileged unprivileged;
        scheduler_->advance(RecoveryStore::delay);
        QVERIFY(store_->finish(patience));
    }
    QVERIFY(QFile::setPermissions(path(), own));
    QCOMPARE(onDisk(), QStringList(u"typed"_s));
    finish();
    QCOMPARE(onDisk(), QStringList(u"typed on"_s));
}

void RecoveryStoreTest::aStoreWithoutAFolderKeepsNothing()
{
    RecoveryStore store(*scheduler_, {});
    const auto document = untitled();
    store.setDocuments({document});
    document->setContent(u"typed"_s);
    scheduler_->advance(RecoveryStore::delay);
    store.noteSaved(*document);
    QCOMPARE(store.keepReplaced(QUrl(), TextTree()), QString());
    store.remove(u"x"_s);
    store.read(u"x"_s, {});
    store.setDocuments({});
    QVERIFY(store.finish(patience));
    QVERIFY(store.texts().isEmpty());
    QVERIFY(!QFileInfo::exists(path()));
}

/// Beside a model: which texts have to be in the store after each step.
void RecoveryStoreTest::randomLivesOfDocuments()
{
    test::RandomText random;
    struct Life
    {
        std::shared_ptr<Document> document;
        TextTree origin;
        bool isOpen = true;
    };
    QList<Life> lives;
    const auto show = [&] {
        RecoveryStore::Documents open;
        for (const Life& life : lives) {
            if (life.isOpen) {
                open << life.document;
            }
        }
        store_->setDocuments(open);
    };
    for (int step = 0; step < 60; ++step) {
        Life* const life = lives.isEmpty() ? nullptr : &lives[random.below(lives.size())];
        switch (life == nullptr ? 0 : random.below(8)) {
        case 0: {
            const auto document = untitled(random.below(8) == 0 ? random.text(60'000) : random.text(5));
            lives.append({document, document->text()});
            show();
            break;
        }
        case 1:
            // Only modified ones live on when they are closed.
            life->isOpen = !life->isOpen;
            show();
            break;
        case 2:
            if (life->isOpen) {
                life->origin = life->document->text();
                life->document->setIsModified(false);
                store_->noteSaved(*life->document);
            }
            break;
        case 3:
            if (life->isOpen) {
                life->document->setText(life->origin);
            }
            break;
        default:
            if (life->isOpen) {
                TextTree text = life->document->text();
                text.replace(random.range(text.length()), random.text(4));
                life->document->setText(text);
            }
        }
        lives.removeIf([](const Life& each) { return !each.isOpen && !each.document->isModified(); });
        if (random.below(3) == 0) {
            settle();
            QStringList wanted;
            for (const Life& each : lives) {
                if (!(each.document->text() == each.origin)) {
                    wanted << each.document->content();
                }
            }
            wanted.sort();
            QCOMPARE(onDisk(), wanted);
        }
    }
}

const kelm::test::Registered<RecoveryStoreTest> registered;

} // namespace recovery_store_test

#include "recovery_store_test.moc"
