#include "platform/desktop/recently_used.h"
#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/files/standard_paths.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

namespace recently_used_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What another program has noted, with what it says of itself and a group.
const QByteArray othersList = "<?xml version='1.0' encoding='UTF-8'?>\n"
                              "<xbel version='1.0'\n"
                              "      xmlns:bookmark='http://www.freedesktop.org/standards/desktop-bookmarks'\n"
                              "      xmlns:mime='http://www.freedesktop.org/standards/shared-mime-info'>\n"
                              "  <bookmark href='file:///home/me/letter.odt' added='2026-01-02T03:04:05Z' "
                              "modified='2026-01-02T03:04:05Z' visited='2026-01-02T03:04:05Z'>\n"
                              "    <title>A letter &amp; more</title>\n"
                              "    <desc>To &lt;her&gt;</desc>\n"
                              "    <info>\n"
                              "      <metadata owner='http://freedesktop.org'>\n"
                              "        <mime:mime-type type='application/vnd.oasis.opendocument.text'/>\n"
                              "        <bookmark:groups>\n"
                              "          <bookmark:group>Office</bookmark:group>\n"
                              "        </bookmark:groups>\n"
                              "        <bookmark:applications>\n"
                              "          <bookmark:application name='Writer' exec='&apos;writer %u&apos;' "
                              "modified='2026-01-02T03:04:05Z' count='7'/>\n"
                              "        </bookmark:applications>\n"
                              "        <bookmark:icon href='file:///icon.png' type='image/png'/>\n"
                              "        <bookmark:private/>\n"
                              "      </metadata>\n"
                              "    </info>\n"
                              "  </bookmark>\n"
                              "</xbel>\n";

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

void put(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

/// What a program that reads the list finds under a URL: "type: name exec count, …".
QString entry(const QByteArray& list, const QString& url)
{
    QXmlStreamReader reader(list);
    QString found;
    bool isIt = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement()) {
            continue;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == u"bookmark") {
            isIt = attributes.value(u"href"_s) == url;
        } else if (isIt && reader.name() == u"mime-type") {
            found += attributes.value(u"type"_s).toString() + u':';
        } else if (isIt && reader.name() == u"application") {
            found += u" %1 %2 %3"_s.arg(attributes.value(u"name"_s), attributes.value(u"exec"_s),
                                        attributes.value(u"count"_s));
        }
    }
    return found;
}

const QString ours = u" KelmWright 'kelmwright %u' "_s;

} // namespace

class RecentlyUsedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void filesAreNotedWithTypeAndProgram();
    void namesOfAnyBytesAreNoted();
    void whatOthersHaveNotedStays();
    void aListThatIsNoneIsLeftAlone_data();
    void aListThatIsNoneIsLeftAlone();
    void theListIsItsOwnersAlone();
    void placesOfTheSystemAreNotTold_data();
    void placesOfTheSystemAreNotTold();

private:
    QString list() const { return folder_->filePath(u"data/recently-used.xbel"_s); }

    std::unique_ptr<QTemporaryDir> folder_;
};

void RecentlyUsedTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
}

void RecentlyUsedTest::filesAreNotedWithTypeAndProgram()
{
    const QUrl python(u"file:///home/me/a%20b.py"_s);
    QVERIFY(noteRecentlyUsed(list(), {python, QUrl(u"file:///home/me/unknown.zzyx"_s)}));
    QVERIFY(noteRecentlyUsed(list(), {python}));
    const QByteArray bytes = bytesOf(list());
    QVERIFY2(entry(bytes, u"file:///home/me/a%20b.py"_s).endsWith(ours + u"2"_s), bytes.constData());
    QCOMPARE(entry(bytes, u"file:///home/me/unknown.zzyx"_s), u"text/plain:"_s + ours + u"1"_s);
}

void RecentlyUsedTest::namesOfAnyBytesAreNoted()
{
    const QUrl raw = urlOfFile(pathOfNative("/home/me/\xff.txt"));
    const QUrl korean = urlOfFile(u"/home/me/한글 & <a>.txt"_s);
    QVERIFY(noteRecentlyUsed(list(), {raw, korean}));
    const QByteArray bytes = bytesOf(list());
    QVERIFY2(!entry(bytes, u"file:///home/me/%FF.txt"_s).isEmpty(), bytes.constData());
    QVERIFY2(!entry(bytes, QString::fromLatin1(korean.toEncoded())).isEmpty(), bytes.constData());
}

void RecentlyUsedTest::whatOthersHaveNotedStays()
{
    QVERIFY(QDir().mkpath(folder_->filePath(u"data"_s)));
    put(list(), othersList);
    QVERIFY(noteRecentlyUsed(list(), {QUrl(u"file:///home/me/a.py"_s), QUrl(u"file:///home/me/letter.odt"_s)}));
    const QByteArray bytes = bytesOf(list());
    const QString letter = entry(bytes, u"file:///home/me/letter.odt"_s);
    QVERIFY2(letter.contains(u"Writer 'writer %u' 7"_s), bytes.constData());
    QVERIFY2(letter.contains(ours + u"1"_s), bytes.constData());
    for (const QByteArray kept : {"A letter &amp; more", "To &lt;her&gt;", "icon.png", "Office", "bookmark:private",
                                  "added=\"2026-01-02T03:04:05"}) {
        QVERIFY2(bytes.contains(kept), (kept + " in " + bytes).constData());
    }
    QVERIFY(!entry(bytes, u"file:///home/me/a.py"_s).isEmpty());
}

void RecentlyUsedTest::aListThatIsNoneIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("a text") << QByteArray("my own notes\n");
    QTest::newRow("cut off") << othersList.first(othersList.size() / 2);
    QTest::newRow("another XML") << QByteArray("<html><body/></html>");
    QTest::newRow("bytes") << QByteArray("\xff\x00\xfe", 3);
    QTest::newRow("an entry that would be lost the next time")
        << QByteArray(othersList).replace("count='7'", "count='0'");
    QTest::newRow("what would be lost") << QByteArray(othersList).replace("http://freedesktop.org", "http://other.org");
}

void RecentlyUsedTest::aListThatIsNoneIsLeftAlone()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(QDir().mkpath(folder_->filePath(u"data"_s)));
    put(list(), bytes);
    QVERIFY(!noteRecentlyUsed(list(), {QUrl(u"file:///home/me/a.py"_s)}));
    QCOMPARE(bytesOf(list()), bytes);
    QCOMPARE(QDir(folder_->filePath(u"data"_s)).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void RecentlyUsedTest::theListIsItsOwnersAlone()
{
    QVERIFY(noteRecentlyUsed(list(), {QUrl(u"file:///home/me/a.py"_s)}));
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QCOMPARE(QFile::permissions(list()) & others, QFile::Permissions());
    QVERIFY(noteRecentlyUsed(list(), {QUrl(u"file:///home/me/b.py"_s)}));
    QCOMPARE(QFile::permissions(list()) & others, QFile::Permissions());
}

void RecentlyUsedTest::placesOfTheSystemAreNotTold_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<bool>("isTold");
    const auto row = [](const char* name, const QUrl& url, bool isTold) { QTest::newRow(name) << url << isTold; };
    row("a file at home", QUrl(u"file:///home/me/a.py"_s), true);
    row("a hidden file of the person's", QUrl(u"file:///home/me/.bashrc"_s), true);
    row("a name that begins like the place", QUrl(u"file:///tmpfiles/a"_s), true);
    row("temporary", QUrl(u"file:///tmp/a.py"_s), false);
    row("temporary for longer", QUrl(u"file:///var/tmp/a.py"_s), false);
    row("a device", QUrl(u"file:///dev/null"_s), false);
    row("the text of a commit", QUrl(u"file:///home/me/project/.git/COMMIT_EDITMSG"_s), false);
    row("unsaved texts", QUrl::fromLocalFile(standardPaths::savedState() + u"/unsaved/a"_s), false);
    row("a theme", QUrl::fromLocalFile(standardPaths::applicationSupport() + u"/Themes/a.json"_s), false);
    row("a cache",
        QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/a"_s), false);
    row("a page", QUrl(u"https://host/a.py"_s), false);
    row("another machine's", QUrl(u"file://host/home/me/a.py"_s), false);
}

void RecentlyUsedTest::placesOfTheSystemAreNotTold()
{
    QFETCH(QUrl, url);
    QTEST(isToldToDesktop(url), "isTold");
}

const kelm::test::Registered<RecentlyUsedTest> registered;

} // namespace recently_used_test

#include "recently_used_test.moc"
