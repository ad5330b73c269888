#include "support/test_program.h"

#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

namespace install_test {

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What a program writes to its standard output.
QByteArray outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(60'000) ? process.readAllStandardOutput() : QByteArray();
}

/// What the first match of a pattern with one group holds.
QString firstIn(const QByteArray& text, const QString& pattern)
{
    return QRegularExpression(pattern, QRegularExpression::MultilineOption).match(QString::fromUtf8(text)).captured(1);
}

/// Runs a program to its end; its output is printed when it fails.
bool run(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setProcessEnvironment(environment.isEmpty() ? QProcessEnvironment::systemEnvironment() : environment);
    process.start(program, arguments);
    const bool isDone =
        process.waitForFinished(60'000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (!isDone) {
        qWarning("%s", process.readAll().constData());
    }
    return isDone;
}

} // namespace

class InstallTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theProgramStandsInThePrefix();
    void theDesktopEntryIsValid();
    void theEntryRegistersTheScheme();
    void theKindsOfFilesAreWellFormed();
    void theDescriptionIsValid();
    void theIconIsThereAtEverySize_data();
    void theIconIsThereAtEverySize();
    void theManualPageIsThere();
    void shellsFindTheirCompletions_data();
    void shellsFindTheirCompletions();
    void theInstalledProgramStarts();
    void theReleaseIsTheSameEverywhere_data();
    void theReleaseIsTheSameEverywhere();

private:
    QString entry() const { return prefix_.filePath(u"share/applications/kelmwright.desktop"_s); }

    QTemporaryDir prefix_;
};

void InstallTest::initTestCase()
{
    QVERIFY(
        run(QStringLiteral(KELM_CMAKE), {u"--install"_s, QStringLiteral(KELM_BUILD), u"--prefix"_s, prefix_.path()}));
}

void InstallTest::theProgramStandsInThePrefix()
{
    QVERIFY(QFileInfo(prefix_.filePath(u"bin/kelmwright"_s)).isExecutable());
}

void InstallTest::theDesktopEntryIsValid()
{
    const QString validator = QStandardPaths::findExecutable(u"desktop-file-validate"_s);
    if (validator.isEmpty()) {
        QSKIP("desktop-file-validate is not installed");
    }
    QVERIFY(run(validator, {entry()}));
}

void InstallTest::theEntryRegistersTheScheme()
{
    QSettings settings(entry(), QSettings::IniFormat);
    settings.beginGroup(u"Desktop Entry"_s);
    QVERIFY(settings.value(u"Exec"_s).toString().endsWith(u" %U"));
    QFile file(entry());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("MimeType=x-scheme-handler/kelmpane;"));
}

void InstallTest::theKindsOfFilesAreWellFormed()
{
    QFile file(prefix_.filePath(u"share/mime/packages/kelmwright.xml"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    QStringList types;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == u"mime-type") {
            types << reader.attributes().value(u"type"_s).toString();
        }
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    // What the desktops do not know by themselves has to be told to them.
    QFile entryFile(entry());
    QVERIFY(entryFile.open(QIODevice::ReadOnly));
    const QByteArray bytes = entryFile.readAll();
    QVERIFY(!types.isEmpty());
    for (const QString& type : std::as_const(types)) {
        QVERIFY2(bytes.contains(type.toUtf8() + ';'), qPrintable(type));
    }
}

void InstallTest::theDescriptionIsValid()
{
    const QString file = prefix_.filePath(u"share/metainfo/com.kelm.KelmWright.metainfo.xml"_s);
    QVERIFY(QFileInfo(file).isFile());
    const QString validator = QStandardPaths::findExecutable(u"appstreamcli"_s);
    if (validator.isEmpty()) {
        QSKIP("appstreamcli is not installed");
    }
    QVERIFY(run(validator, {u"validate"_s, u"--no-net"_s, file}));
}

void InstallTest::theIconIsThereAtEverySize_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        QTest::addRow("%d", size) << size;
    }
}

void InstallTest::theIconIsThereAtEverySize()
{
    QFETCH(int, size);
    const QImage icon(prefix_.filePath(u"share/icons/hicolor/%1x%1/apps/kelmwright.png"_s.arg(size)));
    QCOMPARE(icon.size(), QSize(size, size));
    // Drawn in the middle and clear in the corners.
    QCOMPARE(icon.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(icon.pixelColor(size / 2, size / 4).alpha(), 255);
}

void InstallTest::theManualPageIsThere()
{
    QFile page(prefix_.filePath(u"share/man/man1/kelmwright.1.gz"_s));
    QVERIFY(page.open(QIODevice::ReadOnly));
    QVERIFY(page.read(2) == QByteArray("\x1f\x8b"));
}

void InstallTest::shellsFindTheirCompletions_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("bash") << u"share/bash-completion/completions/kelmwright"_s;
    QTest::newRow("zsh") << u"share/zsh/vendor-completions/_kelmwright"_s;
    QTest::newRow("fish") << u"share/fish/vendor_completions.d/kelmwright.fish"_s;
}

void InstallTest::shellsFindTheirCompletions()
{
    QFETCH(QString, file);
    QFile completion(prefix_.filePath(file));
    QVERIFY(completion.open(QIODevice::ReadOnly));
    QVERIFY(completion.readAll().contains("wait"));
}

void InstallTest::theInstalledProgramStarts()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString picture = prefix_.filePath(u"picture.png"_s);
    environment.insert(u"KELMWRIGHT_PICTURE"_s, picture);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"XDG_CONFIG_HOME"_s, prefix_.filePath(u"home"_s));
    QVERIFY(run(prefix_.filePath(u"bin/kelmwright"_s), {}, environment));
    QVERIFY(QFileInfo(picture).size() > 0);
}

void InstallTest::theReleaseIsTheSameEverywhere_data()
{
    QTest::addColumn<QString>("version");
    const QString share = prefix_.filePath(u"share/"_s);
    const auto unpacked = [](const QString& file) { return outputOf(u"gzip"_s, {u"-dc"_s, file}); };
    QTest::newRow("the program") << firstIn(outputOf(prefix_.filePath(u"bin/kelmwright"_s), {u"--version"_s}),
                                            u"^KelmWright (.*)$"_s);
    QTest::newRow("the manual page") << firstIn(unpacked(share + u"man/man1/kelmwright.1.gz"_s),
                                                u"^\\.TH .*\"KelmWright ([^\"]*)\""_s);
    QTest::newRow("the package's changes")
        << firstIn(unpacked(share + u"doc/kelmwright/changelog.gz"_s), u"\\Akelmwright \\((.*)\\)"_s);
    QTest::newRow("the description") << firstIn(read(share + u"metainfo/com.kelm.KelmWright.metainfo.xml"_s),
                                                u"<release version=\"([^\"]*)\""_s);
    // What is not released yet may stand above.
    QTest::newRow("the changelog") << firstIn(read(QStringLiteral(KELM_SOURCE_ROOT "/CHANGELOG.md")),
                                              u"^## (\\d\\S*)"_s);
}

void InstallTest::theReleaseIsTheSameEverywhere()
{
    QFETCH(QString, version);
    QCOMPARE(version, QStringLiteral(KELM_VERSION));
}

const kelm::test::Registered<InstallTest> registered;

} // namespace install_test

#include "install_test.moc"
