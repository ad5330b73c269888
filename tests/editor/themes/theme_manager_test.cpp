#include "editor/themes/theme_manager.h"
#include "support/captured_log.h"
#include "support/test_program.h"
#include "support/theme_files.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <filesystem>
#include <sys/stat.h>

namespace theme_manager_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

const QStringList builtInNames = {u"Monokai"_s,  u"Dracula"_s,      u"Solarized Dark"_s,
                                  u"One Dark"_s, u"GitHub Light"_s, u"Neon Kelm"_s};

QStringList namesOf(const QList<EditorTheme>& themes)
{
    QStringList names;
    for (const EditorTheme& theme : themes) {
        names << theme.name;
    }
    return names;
}

} // namespace

class ThemeManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void withoutAnythingStoredItStartsAsMonokai();
    void aSavedThemeComesBack();
    void aSavedNameIsComparedExactly_data();
    void aSavedNameIsComparedExactly();
    void aSavedCustomThemeIsListedButNotCurrent();
    void choosingTakesThreeSteps();
    void theAppearanceIsThatOfTheThemeAtTheCall();
    void theAppearanceMayBeAppliedAfterTheManager();
    void customThemesStandBehindTheBuiltInOnes();
    void aNameThatIsTakenIsPassedOver();
    void theFirstListedOfANameIsKept();
    void whatIsNoThemeFileIsPassedOver_data();
    void whatIsNoThemeFileIsPassedOver();
    void aThemeFileMayHaveAnyName_data();
    void aThemeFileMayHaveAnyName();
    void withoutAFolderNothingIsSaidOrMade();
    void aListingThatFailsIsPrinted();
    void loadingAgainAddsOnlyWhatIsNew();
    void tenThousandFilesLoad();

private:
    QString themesFolder() const { return folder_->filePath(u"KelmPane/Themes"_s); }
    void write(const QByteArray& nativeName, const QByteArray& bytes) const
    {
        QVERIFY(QDir().mkpath(themesFolder()));
        const QByteArray path = QFile::encodeName(themesFolder()) + '/' + nativeName;
        FILE* const file = std::fopen(path.constData(), "wb");
        QVERIFY(file != nullptr);
        std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), file);
        std::fclose(file);
    }
    std::unique_ptr<ThemeManager> makeManager()
    {
        return std::make_unique<ThemeManager>(ThemeManager::Services{
            *defaults_, log_, folder_->path(), [this](Appearance appearance) { appearances_ << appearance; }});
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<UserDefaults> defaults_;
    CapturedLog log_;
    QList<Appearance> appearances_;
};

void ThemeManagerTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
    defaults_ = std::make_unique<UserDefaults>(folder_->filePath(u"store.conf"_s));
    QCoreApplication::processEvents();
    log_ = CapturedLog();
    appearances_.clear();
}

void ThemeManagerTest::withoutAnythingStoredItStartsAsMonokai()
{
    const auto manager = makeManager();
    QVERIFY(manager->currentTheme() == EditorTheme::monokai());
    QCOMPARE(namesOf(manager->availableThemes()), builtInNames);
    // Construction stores nothing.
    QVERIFY(!defaults_->contains(u"selectedTheme"_s));
    QVERIFY(appearances_.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(appearances_, (QList{Appearance::dark}));
}

void ThemeManagerTest::aSavedThemeComesBack()
{
    defaults_->setString(u"selectedTheme"_s, u"GitHub Light"_s);
    const auto manager = makeManager();
    QVERIFY(manager->currentTheme() == EditorTheme::githubLight());
    QCoreApplication::processEvents();
    QCOMPARE(appearances_, (QList{Appearance::light}));
}

void ThemeManagerTest::aSavedNameIsComparedExactly_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("letter case") << u"dracula"_s;
    QTest::newRow("blank") << u"Dracula "_s;
    QTest::newRow("unknown") << u"Nord"_s;
    QTest::newRow("empty") << u""_s;
}

void ThemeManagerTest::aSavedNameIsComparedExactly()
{
    QFETCH(QString, name);
    defaults_->setString(u"selectedTheme"_s, name);
    const auto manager = makeManager();
    QVERIFY(manager->currentTheme() == EditorTheme::monokai());
    QVERIFY(defaults_->string(u"selectedTheme"_s) == name);
}

void ThemeManagerTest::aSavedCustomThemeIsListedButNotCurrent()
{
    write("custom.json", themeJson(u"Custom"_s));
    {
        const auto manager = makeManager();
        manager->setCurrentTheme(manager->availableThemes().last());
        manager->saveTheme();
        QCOMPARE(manager->currentTheme().name, u"Custom"_s);
    }
    const auto manager = makeManager();
    QVERIFY(manager->currentTheme() == EditorTheme::monokai());
    QCOMPARE(namesOf(manager->availableThemes()), builtInNames + QStringList{u"Custom"_s});
    QVERIFY(defaults_->string(u"selectedTheme"_s) == u"Custom"_s);
}

void ThemeManagerTest::choosingTakesThreeSteps()
{
    const auto manager = makeManager();
    QCoreApplication::processEvents();
    appearances_.clear();
    QSignalSpy spy(manager.get(), &ThemeManager::currentThemeChanged);

    manager->setCurrentTheme(EditorTheme::githubLight());
    manager->setCurrentTheme(EditorTheme::githubLight());
    QCOMPARE(spy.count(), 1);
    QCoreApplication::processEvents();
    QVERIFY(!defaults_->contains(u"selectedTheme"_s));
    QVERIFY(appearances_.isEmpty());

    manager->saveTheme();
    QVERIFY(defaults_->string(u"selectedTheme"_s) == u"GitHub Light"_s);
    QCoreApplication::processEvents();
    QVERIFY(appearances_.isEmpty());

    manager->applyAppearance();
    QVERIFY(appearances_.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(appearances_, (QList{Appearance::light}));
}

void ThemeManagerTest::theAppearanceIsThatOfTheThemeAtTheCall()
{
    const auto manager = makeManager();
    manager->setCurrentTheme(EditorTheme::githubLight());
    manager->applyAppearance();
    manager->setCurrentTheme(EditorTheme::dracula());
    QCoreApplication::processEvents();
    QCOMPARE(appearances_, (QList{Appearance::dark, Appearance::light}));
}

void ThemeManagerTest::theAppearanceMayBeAppliedAfterTheManager()
{
    makeManager().reset();
    QCoreApplication::processEvents();
    QCOMPARE(appearances_, (QList{Appearance::dark}));
}

void ThemeManagerTest::customThemesStandBehindTheBuiltInOnes()
{
    for (const QString& name : {u"Zeta"_s, u"Alpha"_s, u"Mid"_s}) {
        write(QFile::encodeName(name) + ".json", themeJson(name));
    }
    // The order of the folder itself, which no sorting touches.
    QStringList listed;
    for (const auto& entry : std::filesystem::directory_iterator(themesFolder().toStdString())) {
        listed << QString::fromStdString(entry.path().stem().string());
    }
    QCOMPARE(namesOf(makeManager()->availableThemes()), builtInNames + listed);
    QVERIFY(log_.printed.isEmpty());
}

void ThemeManagerTest::aNameThatIsTakenIsPassedOver()
{
    QJsonObject object = EditorTheme::githubLight().encode();
    object.insert(u"name"_s, u"Monokai"_s);
    write("monokai.json", QJsonDocument(object).toJson());
    write("lower.json", themeJson(u"monokai"_s));
    const auto manager = makeManager();
    QCOMPARE(namesOf(manager->availableThemes()), builtInNames + QStringList{u"monokai"_s});
    QVERIFY(manager->availableThemes().first() == EditorTheme::monokai());
}

void ThemeManagerTest::theFirstListedOfANameIsKept()
{
    for (int i = 0; i < 20; ++i) {
        QJsonObject object = themeObject(u"Twin"_s);
        object.insert(u"textColor"_s, CodableColor{double(i), 0, 0, 1}.encode());
        write("twin" + QByteArray::number(i) + ".json", QJsonDocument(object).toJson());
    }
    const auto first = std::filesystem::directory_iterator(themesFolder().toStdString());
    const QString number = QString::fromStdString(first->path().stem().string()).mid(4);
    const auto manager = makeManager();
    QCOMPARE(manager->availableThemes().size(), 7);
    QCOMPARE(manager->availableThemes().last().textColor.red, number.toDouble());
}

void ThemeManagerTest::whatIsNoThemeFileIsPassedOver_data()
{
    QTest::addColumn<QByteArray>("fileName");
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = themeJson(u"Custom"_s);
    QTest::newRow("extension in capitals") << QByteArray("custom.JSON") << good;
    QTest::newRow("another extension") << QByteArray("custom.json5") << good;
    QTest::newRow("extension before another") << QByteArray("custom.json.bak") << good;
    QTest::newRow("no extension") << QByteArray("json") << good;
    QTest::newRow("name of the extension alone") << QByteArray(".json") << good;
    QTest::newRow("empty file") << QByteArray("custom.json") << QByteArray();
    QTest::newRow("malformed") << QByteArray("custom.json") << good.left(100);
    QTest::newRow("array") << QByteArray("custom.json") << QByteArray("[" + good + "]");
    QJsonObject object = themeObject(u"Custom"_s);
    object.remove(u"gutterColor"_s);
    QTest::newRow("18 of the 19 keys") << QByteArray("custom.json") << QJsonDocument(object).toJson();
    object.insert(u"gutterColor"_s, u"#000000"_s);
    QTest::newRow("hexadecimal colour") << QByteArray("custom.json") << QJsonDocument(object).toJson();
    QTest::newRow("invalid UTF-8") << QByteArray("custom.json") << QByteArray(good).replace("Custom", "\xff");
}

void ThemeManagerTest::whatIsNoThemeFileIsPassedOver()
{
    QFETCH(QByteArray, fileName);
    QFETCH(QByteArray, bytes);
    write(fileName, bytes);
    write("other.json", themeJson(u"Other"_s));
    // A folder, a pipe and a link to nothing cannot be read as a file.
    QVERIFY(QDir(themesFolder()).mkdir(u"folder.json"_s));
    QCOMPARE(::mkfifo(QFile::encodeName(themesFolder() + u"/pipe.json"_s).constData(), 0600), 0);
    QVERIFY(QFile::link(u"none"_s, themesFolder() + u"/link.json"_s));
    // What lies deeper is not looked at.
    QVERIFY(QDir(themesFolder()).mkdir(u"sub"_s));
    write("sub/deep.json", themeJson(u"Deep"_s));

    QCOMPARE(namesOf(makeManager()->availableThemes()), builtInNames + QStringList{u"Other"_s});
    QVERIFY(log_.printed.isEmpty());
    QVERIFY(log_.written.isEmpty());
}

void ThemeManagerTest::aThemeFileMayHaveAnyName_data()
{
    QTest::addColumn<QByteArray>("fileName");
    QTest::newRow("hidden") << QByteArray(".custom.json");
    QTest::newRow("blanks and dots") << QByteArray("my theme..json");
    QTest::newRow("korean") << QByteArray("테마.json");
    QTest::newRow("not UTF-8") << QByteArray("caf\xe9.json");
}

void ThemeManagerTest::aThemeFileMayHaveAnyName()
{
    QFETCH(QByteArray, fileName);
    write(fileName, themeJson(u"사용자 \U0001f3a8"_s));
    QCOMPARE(makeManager()->availableThemes().last().name, u"사용자 \U0001f3a8"_s);
}

void ThemeManagerTest::withoutAFolderNothingIsSaidOrMade()
{
    QCOMPARE(makeManager()->availableThemes().size(), 6);
    QVERIFY(!QFile::exists(folder_->filePath(u"KelmPane"_s)));
    const ThemeManager nowhere({*defaults_, log_, QString(), [](Appearance) {}});
    QCOMPARE(nowhere.availableThemes().size(), 6);
    QVERIFY(log_.printed.isEmpty());
}

void ThemeManagerTest::aListingThatFailsIsPrinted()
{
    QVERIFY(QDir(folder_->path()).mkdir(u"KelmPane"_s));
    QFile file(themesFolder());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QCOMPARE(makeManager()->availableThemes().size(), 6);
    QCOMPARE(log_.printed, (QStringList{u"Error loading custom themes: Not a directory"_s}));
}

void ThemeManagerTest::loadingAgainAddsOnlyWhatIsNew()
{
    write("one.json", themeJson(u"One"_s));
    const auto manager = makeManager();
    QSignalSpy spy(manager.get(), &ThemeManager::availableThemesChanged);
    manager->loadCustomThemes();
    QCOMPARE(spy.count(), 0);
    write("two.json", themeJson(u"Two"_s));
    manager->loadCustomThemes();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(namesOf(manager->availableThemes()), (builtInNames + QStringList{u"One"_s, u"Two"_s}));
}

void ThemeManagerTest::tenThousandFilesLoad()
{
    const QByteArray json = themeJson(u"@@"_s);
    for (int i = 0; i < 10000; ++i) {
        write(QByteArray::number(i) + ".json", QByteArray(json).replace("@@", "T" + QByteArray::number(i / 2)));
    }
    QCOMPARE(makeManager()->availableThemes().size(), 6 + 5000);
}

const kelm::test::Registered<ThemeManagerTest> registered;

} // namespace theme_manager_test

#include "theme_manager_test.moc"
