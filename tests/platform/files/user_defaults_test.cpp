#include "platform/files/standard_paths.h"
#include "platform/files/user_defaults.h"
#include "support/roles.h"
#include "support/test_program.h"
#include "support/unprivileged.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace user_defaults_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int writesOfEach = 25;

QByteArray allBytes()
{
    QByteArray bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes.append(char(byte));
    }
    return bytes;
}

int writeManyKeys(const QStringList& arguments)
{
    UserDefaults defaults(arguments[0]);
    for (int i = 0; i < writesOfEach; ++i) {
        defaults.setInteger(arguments[1] + QString::number(i), i);
        if (!defaults.synchronize()) {
            return 1;
        }
    }
    return 0;
}

/// Prints what stands under a key, as another process finds it.
int printString(const QStringList& arguments)
{
    const std::optional<QString> value = UserDefaults(arguments[0]).string(arguments[1]);
    std::printf("%s", value ? value->toUtf8().constData() : "(absent)");
    return 0;
}

} // namespace

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aFreshStoreIsEmptyAndMakesNoFile();
    void valuesComeBackFromTheFile();
    void textsComeBackUnitForUnit_data();
    void textsComeBackUnitForUnit();
    void aValueOfAnotherTypeIsAbsent();
    void aWriteReachesTheFileByTheEventLoop();
    void writesAndRemovalsAreTold();
    void aDamagedFileCountsAsEmptyAndStaysUntilAWrite_data();
    void aDamagedFileCountsAsEmptyAndStaysUntilAWrite();
    void aFileThatMayNotBeReadStaysAsItIs();
    void aFolderInPlaceOfTheFileDoesNoHarm();
    void aPipeInPlaceOfTheFileHoldsNobody();
    void twoProgramsLoseNeithersKeys();
    void keysOfAnotherProgramStay();
    void sharedStandsInTheConfigurationFolder();

private:
    QString path() const { return folder_->filePath(u"sub/store.conf"_s); }
    QByteArray bytesOfFile() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeFile(const QByteArray& bytes) const
    {
        QVERIFY(QDir(folder_->path()).mkpath(u"sub"_s));
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

void UserDefaultsTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
}

void UserDefaultsTest::aFreshStoreIsEmptyAndMakesNoFile()
{
    {
        const UserDefaults defaults(path());
        QVERIFY(!defaults.contains(u"fontSize"_s));
        QVERIFY(!defaults.string(u"fontSize"_s));
        QVERIFY(!defaults.boolean(u"fontSize"_s));
        QVERIFY(!defaults.integer(u"fontSize"_s));
        QVERIFY(!defaults.real(u"fontSize"_s));
        QVERIFY(!defaults.data(u"fontSize"_s));
    }
    QVERIFY(!QFile::exists(path()));
}

void UserDefaultsTest::valuesComeBackFromTheFile()
{
    const auto check = [](const UserDefaults& defaults) {
        QVERIFY(defaults.boolean(u"on"_s) == true);
        QVERIFY(defaults.boolean(u"off"_s) == false);
        QVERIFY(defaults.integer(u"least"_s) == std::numeric_limits<qint64>::min());
        QVERIFY(defaults.integer(u"five"_s) == 5);
        QVERIFY(defaults.real(u"size"_s) == 13.0);
        QVERIFY(defaults.real(u"tenth"_s) == 0.1);
        QVERIFY(defaults.real(u"five"_s) == 5.0);
        QVERIFY(defaults.data(u"bytes"_s) == allBytes());
        QVERIFY(defaults.data(u"noBytes"_s) == QByteArray(""));
        QVERIFY(defaults.string(u"name"_s) == u"Neon Kelm"_s);
    };
    {
        UserDefaults defaults(path());
        defaults.setBoolean(u"on"_s, true);
        defaults.setBoolean(u"off"_s, false);
        defaults.setInteger(u"least"_s, std::numeric_limits<qint64>::min());
        defaults.setInteger(u"five"_s, 5);
        defaults.setReal(u"size"_s, 13.0);
        defaults.setReal(u"tenth"_s, 0.1);
        defaults.setData(u"bytes"_s, allBytes());
        defaults.setData(u"noBytes"_s, QByteArray());
        defaults.setString(u"name"_s, u"Neon Kelm"_s);
        check(defaults);
    }
    QVERIFY(!bytesOfFile().isEmpty());
    check(UserDefaults(path()));
}

void UserDefaultsTest::textsComeBackUnitForUnit_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("commas") << u"a, b,c"_s;
    QTest::newRow("quotes and backslashes") << u"\"a\\b\" ;=#[x]"_s;
    QTest::newRow("blanks around") << u"  a  "_s;
    QTest::newRow("at sign") << u"@ByteArray(x)"_s;
    QTest::newRow("korean") << u"네온 켈름"_s;
    QTest::newRow("line ends") << u"a\r\nb\n"_s;
    QTest::newRow("looks like a number") << u"0012"_s;
    QTest::newRow("astral") << u"\U0001f600"_s;
}

void UserDefaultsTest::textsComeBackUnitForUnit()
{
    QFETCH(QString, text);
    {
        UserDefaults defaults(path());
        defaults.setString(u"key"_s, text);
        QVERIFY(defaults.string(u"key"_s) == text);
    }
    QByteArray output;
    QCOMPARE(runRole(u"print"_s, {path(), u"key"_s}, &output), 0);
    QCOMPARE(QString::fromUtf8(output), text);
}

void UserDefaultsTest::aValueOfAnotherTypeIsAbsent()
{
    UserDefaults defaults(path());
    defaults.setString(u"text"_s, u"yes"_s);
    defaults.setData(u"data"_s, "1");
    defaults.setReal(u"real"_s, 1.5);
    QVERIFY(!defaults.boolean(u"text"_s));
    QVERIFY(!defaults.integer(u"text"_s));
    QVERIFY(!defaults.real(u"text"_s));
    QVERIFY(!defaults.data(u"text"_s));
    QVERIFY(!defaults.string(u"data"_s));
    QVERIFY(!defaults.integer(u"data"_s));
    QVERIFY(!defaults.integer(u"real"_s));
    QVERIFY(defaults.contains(u"data"_s));
}

void UserDefaultsTest::aWriteReachesTheFileByTheEventLoop()
{
    UserDefaults defaults(path());
    defaults.setString(u"selectedTheme"_s, u"Dracula"_s);
    QTRY_VERIFY(bytesOfFile().contains("selectedTheme=Dracula"));
}

void UserDefaultsTest::writesAndRemovalsAreTold()
{
    UserDefaults defaults(path());
    QSignalSpy spy(&defaults, &UserDefaults::valueChanged);
    defaults.setBoolean(u"autoSave"_s, true);
    defaults.remove(u"autoSave"_s);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toString(), u"autoSave"_s);
    QVERIFY(!defaults.contains(u"autoSave"_s));
}

void UserDefaultsTest::aDamagedFileCountsAsEmptyAndStaysUntilAWrite_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("noise") << QByteArray("\x7f"
                                         "ELF\0\1\2\xff\xfe%%[[[\n\n=\n@@@",
                                         20);
    QTest::newRow("no lines of keys") << QByteArray("this is no settings file\nat all\n");
    QTest::newRow("cut off") << QByteArray("[General]\nselec");
    QTest::newRow("bad escapes") << QByteArray("[General]\n%zz=\\xzz\\\n\"");
    QTest::newRow("empty") << QByteArray();
}

void UserDefaultsTest::aDamagedFileCountsAsEmptyAndStaysUntilAWrite()
{
    QFETCH(QByteArray, bytes);
    writeFile(bytes);
    {
        UserDefaults defaults(path());
        QVERIFY(!defaults.string(u"selectedTheme"_s));
        QVERIFY(!defaults.data(u"recentFiles"_s));
        defaults.synchronize();
    }
    QCOMPARE(bytesOfFile(), bytes);
    {
        UserDefaults defaults(path());
        defaults.setString(u"selectedTheme"_s, u"Dracula"_s);
    }
    QVERIFY(bytesOfFile() != bytes);
    QVERIFY(UserDefaults(path()).string(u"selectedTheme"_s) == u"Dracula"_s);
}

void UserDefaultsTest::aFileThatMayNotBeReadStaysAsItIs()
{
    const QByteArray bytes("[General]\nselectedTheme=Nord\n");
    writeFile(bytes);
    QVERIFY(QFile::setPermissions(folder_->path(), QFile::Permissions(0x7777)));
    QVERIFY(QFile::setPermissions(folder_->filePath(u"sub"_s), QFile::Permissions(0x7777)));
    QVERIFY(QFile::setPermissions(path(), QFile::Permissions()));
    {
        const test::Unprivileged ordinary;
        UserDefaults defaults(path());
        QVERIFY(!defaults.string(u"selectedTheme"_s));
        defaults.setString(u"selectedTheme"_s, u"Dracula"_s);
        QVERIFY(!defaults.synchronize());
        // The program goes on with what it was given.
        QVERIFY(defaults.string(u"selectedTheme"_s) == u"Dracula"_s);
    }
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(bytesOfFile(), bytes);
}

void UserDefaultsTest::aFolderInPlaceOfTheFileDoesNoHarm()
{
    QVERIFY(QDir(folder_->path()).mkpath(u"sub/store.conf"_s));
    UserDefaults defaults(path());
    QVERIFY(!defaults.string(u"selectedTheme"_s));
    defaults.setString(u"selectedTheme"_s, u"Dracula"_s);
    QVERIFY(!defaults.synchronize());
    QVERIFY(defaults.string(u"selectedTheme"_s) == u"Dracula"_s);
    QVERIFY(QFileInfo(path()).isDir());
}

void UserDefaultsTest::aPipeInPlaceOfTheFileHoldsNobody()
{
    QVERIFY(QDir(folder_->path()).mkpath(u"sub"_s));
    QCOMPARE(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
    UserDefaults defaults(path());
    QVERIFY(!defaults.string(u"selectedTheme"_s));
    defaults.setString(u"selectedTheme"_s, u"Dracula"_s);
    QVERIFY(!defaults.synchronize());
    QVERIFY(defaults.string(u"selectedTheme"_s) == u"Dracula"_s);
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(path()).constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

void UserDefaultsTest::twoProgramsLoseNeithersKeys()
{
    QProcess first;
    QProcess second;
    startRole(first, u"writeMany"_s, {path(), u"first"_s});
    startRole(second, u"writeMany"_s, {path(), u"second"_s});
    QVERIFY(first.waitForFinished());
    QVERIFY(second.waitForFinished());
    QCOMPARE(first.exitCode(), 0);
    QCOMPARE(second.exitCode(), 0);
    const UserDefaults defaults(path());
    for (int i = 0; i < writesOfEach; ++i) {
        QVERIFY(defaults.integer(u"first%1"_s.arg(i)) == i);
        QVERIFY(defaults.integer(u"second%1"_s.arg(i)) == i);
    }
}

void UserDefaultsTest::keysOfAnotherProgramStay()
{
    UserDefaults defaults(path());
    defaults.setString(u"mine"_s, u"before"_s);
    QVERIFY(defaults.synchronize());
    // The other program writes while this store is open, and holds what it has read.
    QCOMPARE(runRole(u"writeMany"_s, {path(), u"other"_s}), 0);
    defaults.setString(u"mine"_s, u"after"_s);
    QVERIFY(defaults.synchronize());
    QVERIFY(defaults.integer(u"other24"_s) == 24);
    QByteArray output;
    QCOMPARE(runRole(u"print"_s, {path(), u"mine"_s}, &output), 0);
    QCOMPARE(output, QByteArray("after"));
    QCOMPARE(runRole(u"print"_s, {path(), u"other0"_s}, &output), 0);
    QCOMPARE(output, QByteArray("0"));
}

void UserDefaultsTest::sharedStandsInTheConfigurationFolder()
{
    QFile::remove(standardPaths::preferences());
    UserDefaults::shared().setString(u"key"_s, u"value"_s);
    QVERIFY(UserDefaults::shared().synchronize());
    QVERIFY(QFile::exists(standardPaths::preferences()));
    QVERIFY(UserDefaults(standardPaths::preferences()).string(u"key"_s) == u"value"_s);
}

const kelm::test::Registered<UserDefaultsTest> registered(kelm::test::Toolkit::core,
                                                          {{u"writeMany"_s, writeManyKeys}, {u"print"_s, printString}});

} // namespace user_defaults_test

#include "user_defaults_test.moc"
