#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace kelm_script_test {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A copy of the script on a machine that has only what a test gives it.
struct Machine
{
    QTemporaryDir folder;

    Machine()
    {
        QVERIFY(QDir(folder.path()).mkpath(u"bin"_s));
        QVERIFY(QFile::copy(QStringLiteral(KELM_SCRIPT), folder.filePath(u"kelm"_s)));
        for (const char* name : {"bash", "cat", "dirname", "env", "grep", "mkdir", "rm", "sed", "tail", "uname"}) {
            const QString real = QStandardPaths::findExecutable(QString::fromLatin1(name));
            QVERIFY2(QFile::link(real, folder.filePath(u"bin/"_s + QString::fromLatin1(name))), name);
        }
        give("dpkg-query", "exit 1");
        give("id", "echo 0");
        give("apt-get", "exit 0");
    }

    /// A program of the machine, as a shell script.
    void give(const char* name, const char* script) const
    {
        QFile file(folder.filePath(u"bin/"_s + QString::fromLatin1(name)));
        file.remove();
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("#!/usr/bin/env bash\n") + script + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    void take(const char* name) const
    {
        QVERIFY(QFile::remove(folder.filePath(u"bin/"_s + QString::fromLatin1(name))));
    }

    struct Outcome
    {
        int exitCode = -1;
        QStringList lines;

        QString lastLine() const { return lines.isEmpty() ? QString() : lines.last(); }
    };

    Outcome run(const QStringList& arguments) const
    {
        QProcess process;
        QProcessEnvironment environment;
        environment.insert(u"PATH"_s, folder.filePath(u"bin"_s));
        environment.insert(u"HOME"_s, folder.path());
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(folder.filePath(u"bin/bash"_s), QStringList{folder.filePath(u"kelm"_s)} + arguments);
        if (!process.waitForFinished(30'000)) {
            return {};
        }
        QString text = QString::fromUtf8(process.readAll());
        text.remove(u"\x1b[1m"_s).remove(u"\x1b[0m"_s);
        return {process.exitCode(), text.split(u'\n', Qt::SkipEmptyParts)};
    }
};

/// Configures, and builds a program that says what it was given.
const char* const workingCmake =
    "if [ \"$1\" = --build ]; then\n"
    "  mkdir -p build/release/bin; printf '#!/usr/bin/env bash\\necho \"opened $*\"\\n' >build/release/bin/kelmwright\n"
    "  chmod +x build/release/bin/kelmwright\n"
    "fi";

} // namespace

/// What a person sees who starts the program for the first time.
class KelmScriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failuresEndInOneSentence_data();
    void failuresEndInOneSentence();
    void itTellsWhatItDoes();
    void whatIsThereIsNotInstalled();
    void anotherSystemIsToldWhatIsNeeded();
    void anUnknownCommandShowsTheUsage();
};

void KelmScriptTest::failuresEndInOneSentence_data()
{
    QTest::addColumn<QByteArray>("program");
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("no rights and no sudo")
        << QByteArray("id") << QByteArray("echo 1000")
        << u"kelm: packages are missing and there is no sudo; as root, run: apt-get install --no-install-recommends "
           "build-essential"_s;
    QTest::newRow("no network")
        << QByteArray("apt-get") << QByteArray("exit 100")
        << u"kelm: the packages could not be installed; see to the network and the package sources, and try again"_s;
    QTest::newRow("too old a compiler")
        << QByteArray("cmake")
        << QByteArray("printf 'CMake Error:\\n   kelm: this compiler is too old (GNU 10.2.1); install GCC 12 or Clang "
                      "14\\n\\n'; exit 1")
        << u"kelm: this compiler is too old (GNU 10.2.1); install GCC 12 or Clang 14"_s;
    QTest::newRow("configuring fails otherwise")
        << QByteArray("cmake") << QByteArray("echo broken; exit 1")
        << u"kelm: the build could not be configured; the lines above say why"_s;
    QTest::newRow("building fails") << QByteArray("cmake") << QByteArray("[ \"$1\" != --build ]")
                                    << u"kelm: the build failed; the lines above say where"_s;
}

void KelmScriptTest::failuresEndInOneSentence()
{
    QFETCH(QByteArray, program);
    QFETCH(QByteArray, script);
    QFETCH(QString, sentence);
    const Machine machine;
    machine.give("cmake", workingCmake);
    machine.give(program.constData(), script.constData());
    for (const char* command : {"run", "test"}) {
        const Machine::Outcome outcome = machine.run({QString::fromLatin1(command)});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY2(outcome.lastLine().startsWith(sentence), qPrintable(outcome.lines.join(u'\n')));
    }
}

void KelmScriptTest::itTellsWhatItDoes()
{
    const Machine machine;
    machine.give("cmake", workingCmake);
    QVERIFY(QFile::link(QStandardPaths::findExecutable(u"chmod"_s), machine.folder.filePath(u"bin/chmod"_s)));
    const Machine::Outcome outcome = machine.run({u"run"_s, u"README.md"_s});
    QCOMPARE(outcome.exitCode, 0);
    const QString text = outcome.lines.join(u'\n');
    qsizetype from = 0;
    for (const char* said : {"Three steps", "Installing packages", "Configuring (release)", "Building (release)",
                             "Opening the window", "opened README.md", "There is no display here"}) {
        const qsizetype at = text.indexOf(QString::fromLatin1(said), from);
        QVERIFY2(at >= 0, qPrintable(text));
        from = at;
    }
}

void KelmScriptTest::whatIsThereIsNotInstalled()
{
    const Machine machine;
    machine.give("cmake", workingCmake);
    QVERIFY(QFile::link(QStandardPaths::findExecutable(u"chmod"_s), machine.folder.filePath(u"bin/chmod"_s)));
    machine.give("dpkg-query", "echo 'install ok installed'");
    machine.give("apt-get", "echo 'not to be asked'; exit 1");
    const Machine::Outcome outcome = machine.run({u"run"_s});
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(!outcome.lines.join(u'\n').contains(u"Installing packages"));
}

void KelmScriptTest::anotherSystemIsToldWhatIsNeeded()
{
    const Machine machine;
    machine.take("dpkg-query");
    machine.give("cmake", "exit 1");
    const Machine::Outcome outcome = machine.run({u"run"_s});
    QVERIFY(outcome.lines.join(u'\n').contains(u"This is no Debian system: please see to it that these are installed"));
}

void KelmScriptTest::anUnknownCommandShowsTheUsage()
{
    const Machine machine;
    const Machine::Outcome outcome = machine.run({u"fly"_s});
    QCOMPARE(outcome.exitCode, 2);
    QVERIFY(outcome.lines.first().startsWith(u"Usage: ./kelm COMMAND"));
}

const kelm::test::Registered<KelmScriptTest> registered;

} // namespace kelm_script_test

#include "kelm_script_test.moc"
