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
        for (const char* name : {"bash", "cat", "chmod", "cut", "df", "dirname", "env", "grep", "mkdir", "paste", "rm",
                                 "sed", "sort", "tail", "uname"}) {
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

    /// Puts a file below the script's folder.
    void write(const QString& name, const QByteArray& content) const
    {
        QVERIFY(QFileInfo(folder.filePath(name)).dir().mkpath(u"."_s));
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    Outcome run(const QStringList& arguments, const QString& display = {}) const
    {
        QProcess process;
        QProcessEnvironment environment;
        environment.insert(u"PATH"_s, folder.filePath(u"bin"_s));
        environment.insert(u"HOME"_s, folder.path());
        if (!display.isEmpty()) {
            environment.insert(u"DISPLAY"_s, display);
        }
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
    void aBuildFolderThatCannotBeWrittenToIsTold();
    void aFullDiskIsTold();
    void aDisplayThatDoesNotAnswerIsTold();
    void namedTestsAloneAreBuiltAndRun_data();
    void namedTestsAloneAreBuiltAndRun();
    void aTestThatThereIsNotIsTold();
    void theTrialOfThePackageIsRootsAlone();
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

void KelmScriptTest::aBuildFolderThatCannotBeWrittenToIsTold()
{
    const Machine machine;
    machine.give("dpkg-query", "echo 'install ok installed'");
    machine.write(u"build"_s, "a file in the folder's place");
    for (const char* command : {"run", "test", "bench"}) {
        const Machine::Outcome outcome = machine.run({QString::fromLatin1(command)});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY2(outcome.lastLine().contains(u"see to its permissions and its disk, and try again"),
                 qPrintable(outcome.lines.join(u'\n')));
    }
}

void KelmScriptTest::aFullDiskIsTold()
{
    const Machine machine;
    machine.give("cmake", "[ \"$1\" != --build ]");
    machine.take("df");
    machine.give(
        "df", "printf 'Filesystem 1024-blocks Used Available Capacity Mounted\\n/dev/x 100000 99900 100 100%% /\\n'");
    const Machine::Outcome outcome = machine.run({u"test"_s});
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY2(outcome.lastLine().endsWith(u"is full; free some space and try again: the build goes on where it stopped"),
             qPrintable(outcome.lines.join(u'\n')));
}

void KelmScriptTest::aDisplayThatDoesNotAnswerIsTold()
{
    const Machine machine;
    machine.give("cmake", "if [ \"$1\" = --build ]; then mkdir -p build/release/bin\n"
                          "printf '#!/usr/bin/env bash\\nexit 134\\n' >build/release/bin/kelmwright\n"
                          "chmod +x build/release/bin/kelmwright; fi");
    const Machine::Outcome outcome = machine.run({u"run"_s}, u":999"_s);
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY2(outcome.lastLine().startsWith(u"kelm: the display :999 could not be used"),
             qPrintable(outcome.lines.join(u'\n')));
}

void KelmScriptTest::namedTestsAloneAreBuiltAndRun_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("programs");
    QTest::addColumn<QString>("selection");
    QTest::newRow("a class") << QStringList{u"row_test"_s} << u"text_tests"_s << u"-R ^(text/row_test)$"_s;
    QTest::newRow("a class with its folder, at all its scales")
        << QStringList{u"text/view/bar_test"_s} << u"text_view_tests"_s
        << u"-R ^(text/view/bar_test|text/view/bar_test_at_1[.]5)$"_s;
    QTest::newRow("a folder, and all below it")
        << QStringList{u"text"_s} << u"text_tests text_view_tests"_s
        << u"-R ^(text/row_test|text/view/bar_test|text/view/bar_test_at_1[.]5)$"_s;
    QTest::newRow("two, and what is the test runner's")
        << QStringList{u"row_test"_s, u"app"_s, u"--repeat"_s, u"until-fail:5"_s} << u"app_tests text_tests"_s
        << u"-R ^(text/row_test|app/row_table_test)$ --repeat until-fail:5"_s;
}

void KelmScriptTest::namedTestsAloneAreBuiltAndRun()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, programs);
    QFETCH(QString, selection);
    const Machine machine;
    machine.give("dpkg-query", "echo 'install ok installed'");
    machine.give("cmake", "echo \"cmake $*\"");
    machine.give("ctest", "echo \"ctest $*\"");
    machine.write(u"build/release/build.ninja"_s, {});
    machine.write(u"build/release/tests/index.txt"_s, "text/row_test text_tests\n"
                                                      "text/view/bar_test text_view_tests\n"
                                                      "text/view/bar_test_at_1.5 text_view_tests\n"
                                                      "app/row_table_test app_tests\n");
    const Machine::Outcome outcome = machine.run(QStringList{u"test"_s} + arguments);
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(outcome.lines.contains(u"cmake --build --preset release --target "_s + programs),
             qPrintable(outcome.lines.join(u'\n')));
    QCOMPARE(outcome.lastLine(), u"ctest --preset release "_s + selection);
}

void KelmScriptTest::aTestThatThereIsNotIsTold()
{
    const Machine machine;
    machine.give("dpkg-query", "echo 'install ok installed'");
    machine.give("cmake", "exit 0");
    machine.write(u"build/release/build.ninja"_s, {});
    machine.write(u"build/release/tests/index.txt"_s, "text/row_test text_tests\n");
    const Machine::Outcome outcome = machine.run({u"test"_s, u"row"_s});
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.lastLine(), u"kelm: there is no test and no folder of tests of the name \"row\""_s);
}

void KelmScriptTest::theTrialOfThePackageIsRootsAlone()
{
    const Machine machine;
    machine.give("id", "echo 1000");
    machine.give("cmake", "echo 'not to be asked'");
    const Machine::Outcome outcome = machine.run({u"package"_s, u"--try"_s});
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.lines, QStringList{u"kelm: package --try makes a system of its own, which only root can"_s});
}

const kelm::test::Registered<KelmScriptTest> registered;

} // namespace kelm_script_test

#include "kelm_script_test.moc"
