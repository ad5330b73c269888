#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::Literals::StringLiterals;

namespace {

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
    void theInstalledProgramStarts();

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

QTEST_GUILESS_MAIN(InstallTest)
#include "install_test.moc"
