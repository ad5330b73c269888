#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace program_test {

using namespace kelm;
using kelm::test::patience;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A home of its own, and the program as a person's shell starts it there.
struct Home
{
    QTemporaryDir folder;
    QString runtime = folder.filePath(u"r"_s);

    Home()
    {
        if (!QDir(folder.path()).mkdir(u"r"_s) ||
            !QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)) {
            qFatal("no folder");
        }
    }
    QString write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("no file");
        }
        return file.fileName();
    }
    void start(QProcess& program, const QStringList& arguments) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, folder.path());
        environment.insert(u"XDG_RUNTIME_DIR"_s, runtime);
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        for (const QString& name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s,
                                    u"XDG_CACHE_HOME"_s, u"XDG_STATE_HOME"_s, u"KELMWRIGHT_PICTURE"_s}) {
            environment.remove(name);
        }
        program.setProcessEnvironment(environment);
        program.setWorkingDirectory(folder.path());
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QStringLiteral(KELM_PROGRAM), arguments);
    }
};

/// One that is started and told to end when the test is over.
struct Running
{
    QProcess process;
    QString said;

    Running(const Home& home, const QStringList& arguments) { home.start(process, arguments); }
    ~Running()
    {
        process.kill();
        process.waitForFinished(patience);
    }

    /// Whether it comes to write these words.
    bool says(const QString& words)
    {
        return QTest::qWaitFor(
            [&] {
                said += QString::fromUtf8(process.readAll());
                return said.contains(words);
            },
            patience);
    }
    qsizetype count(const QString& words) const { return said.count(words); }
};

} // namespace

/// The program itself, in processes of its own.
class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSecondStartHandsOverAndEnds();
    void aLinkOfASecondStartReachesTheFirst();
    void homesDoNotShareAProgram();
    void aWrongCommandLineStartsNothing();
};

void ProgramTest::aSecondStartHandsOverAndEnds()
{
    const Home home;
    home.write(u"a.txt"_s, "a");
    home.write(u"b.py"_s, "b");
    Running first(home, {u"a.txt"_s});
    QVERIFY2(first.says(u"  ✅ Document created with language: Plain Text"_s), qPrintable(first.said));
    QProcess second;
    home.start(second, {u"b.py"_s, u"none.txt"_s});
    QVERIFY(second.waitForFinished(patience));
    QCOMPARE(second.exitStatus(), QProcess::NormalExit);
    QCOMPARE(second.exitCode(), 0);
    QVERIFY2(!second.readAll().contains("openFile called with"), "the second start has opened a file itself");
    QVERIFY2(first.says(u"  ❌ Error opening file: "_s), qPrintable(first.said));
    QVERIFY(first.said.contains(u"  ✅ Document created with language: Python"_s));
    QCOMPARE(first.count(u"📂 openFile called with: "_s), 3);
    // It goes on, and ends in order when it is told to.
    QCOMPARE(first.process.state(), QProcess::Running);
    first.process.terminate();
    QVERIFY(first.process.waitForFinished(patience));
    // A start after that is the first again.
    Running third(home, {u"b.py"_s});
    QVERIFY2(third.says(u"  ✅ Document created with language: Python"_s), qPrintable(third.said));
}

void ProgramTest::aLinkOfASecondStartReachesTheFirst()
{
    const Home home;
    Running first(home, {home.write(u"a.txt"_s, "a")});
    QVERIFY2(first.says(u"Document created"_s), qPrintable(first.said));
    QProcess second;
    home.start(second, {u"kelmpane://close?code=YQ=="_s});
    QVERIFY(second.waitForFinished(patience));
    QCOMPARE(second.exitCode(), 0);
    QVERIFY2(first.says(u"kelmpane:// "_s), qPrintable(first.said));
    QCOMPARE(first.count(u"📂 openFile called with: "_s), 1);
}

void ProgramTest::homesDoNotShareAProgram()
{
    const Home one;
    const Home other;
    Running first(one, {one.write(u"a.txt"_s, "a")});
    QVERIFY(first.says(u"Document created"_s));
    Running second(other, {other.write(u"b.txt"_s, "b")});
    QVERIFY2(second.says(u"Document created"_s), qPrintable(second.said));
    QCOMPARE(first.process.state(), QProcess::Running);
    QCOMPARE(second.process.state(), QProcess::Running);
}

void ProgramTest::aWrongCommandLineStartsNothing()
{
    const Home home;
    QProcess program;
    home.start(program, {u"--no-such-option"_s});
    QVERIFY(program.waitForFinished(patience));
    QVERIFY(program.exitCode() != 0);
    QVERIFY(program.readAll().startsWith("kelmwright: "));
    QVERIFY(QDir(home.runtime).isEmpty());
}

const kelm::test::Registered<ProgramTest> registered;

} // namespace program_test

#include "program_test.moc"
