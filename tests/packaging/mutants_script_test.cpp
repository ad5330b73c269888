#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace mutants_script_test {

using namespace Qt::Literals::StringLiterals;

namespace {

const char* const plan = R"(cmake_minimum_required(VERSION 3.25)
project(Sizes LANGUAGES CXX)
enable_testing()
add_executable(sizes_tests src/sizes/sizes.cpp tests/sizes/sizes_test.cpp)
file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/rooms SYMBOLIC)
target_include_directories(sizes_tests PRIVATE ${PROJECT_BINARY_DIR}/rooms)
add_test(NAME sizes/sizes_test COMMAND sizes_tests)
file(WRITE ${PROJECT_BINARY_DIR}/tests/index.txt "sizes/sizes_test sizes_tests\n")
)";

/// What the test holds, then what it comes to and does not look at, then what it never comes to.
const char* const code = R"(#include "sizes/sizes.h"

constexpr int most = 4;

int half(int size)
{
    return size / 2; // 3 + 4 is no code
}

bool isFull(int size)
{
    if (size == most) {
        return true;
    }
    return false;
}

int doubled(int size)
{
    return size + size;
}

bool isSmall(int size)
{
    return size < 2;
}
)";

const char* const header = R"(#pragma once
int half(int size);
bool isFull(int size);
int doubled(int size);
bool isSmall(int size);
constexpr int tripled(int size)
{
    return size * 3;
}
)";

const char* const test = R"(#include "sizes/sizes.h"

int main()
{
    doubled(3);
    const bool isRight = half(8) == 4 && isFull(4) && !isFull(3) && !isFull(5) && !isFull(0) &&
                         tripled(2) == 6;
    return isRight ? 0 : 1;
}
)";

/// A project of one room, whose test has a hole.
struct Project
{
    QTemporaryDir folder;

    Project()
    {
        write(u"CMakeLists.txt"_s, plan);
        write(u"src/sizes/sizes.cpp"_s, code);
        write(u"src/sizes/sizes.h"_s, header);
        write(u"tests/sizes/sizes_test.cpp"_s, test);
    }
    void write(const QString& name, const QByteArray& content) const
    {
        QVERIFY(QFileInfo(folder.filePath(name)).dir().mkpath(u"."_s));
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    QByteArray read(const QString& name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// What the script writes to its standard output.
    QString run(const QStringList& arguments) const
    {
        QProcess process;
        process.start(u"python3"_s, QStringList{u"-B"_s, QStringLiteral(KELM_MUTANTS), u"--root"_s, folder.path(),
                                                u"--unguarded"_s, u"sizes"_s} +
                                        arguments);
        if (!process.waitForFinished(-1)) {
            return {};
        }
        return QString::fromUtf8(process.readAllStandardOutput());
    }
    /// The numbers of the table: mutants, noticed, unnoticed, set apart.
    static QStringList row(const QString& text)
    {
        return text.trimmed().section(u'\n', -1).simplified().split(u' ').mid(1, 4);
    }
};

} // namespace

/// The run over the changes of a room's sources finds what its tests do not hold, and nothing else.
class MutantsScriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatNoTestHoldsIsFound();
};

void MutantsScriptTest::whatNoTestHoldsIsFound()
{
    const Project project;
    const QString found = project.run({u"100"_s});
    // "+", the two "return", "<" and "2", each with one of its changes. What is constant is built alone.
    QCOMPARE(Project::row(found), (QStringList{u"15"_s, u"10"_s, u"5"_s, u"0"_s}));
    QVERIFY(found.contains(u"sizes.cpp:20\n- return size + size;\n+ return size - size;\n"_s));
    for (const char* line : {"sizes.cpp:3\n", "sizes.cpp:7\n", "sizes.cpp:12\n", "sizes.cpp:13\n", "sizes.cpp:15\n"}) {
        QVERIFY2(!found.contains(QString::fromLatin1(line)), qPrintable(found));
    }
    // The sources are what they were.
    QCOMPARE(project.read(u"src/sizes/sizes.cpp"_s), QByteArray(code));

    // What is known is not tried again, and what has a reason is set apart.
    project.write(u"tests/mutants/equivalent.txt"_s, "# A list.\n\nsrc/sizes/sizes.cpp\n- return size + size;\n"
                                                     "+ return size - size;\nNobody looks.\n");
    const QString again = project.run({u"100"_s});
    QVERIFY(!again.contains(u"sizes.cpp:"_s));
    QCOMPARE(Project::row(again), (QStringList{u"15"_s, u"10"_s, u"4"_s, u"1"_s}));
    QCOMPARE(project.run({u"100"_s, u"--show"_s}).count(u"sizes.cpp:"_s), 4);

    // A better test notices them.
    QByteArray better = test;
    better.replace("half(8) == 4", "half(8) == 4 && isSmall(1) && !isSmall(2)");
    project.write(u"tests/sizes/sizes_test.cpp"_s, better);
    QVERIFY(Project::row(project.run({u"100"_s, u"--again"_s})).at(2).toInt() < 4);
}

const kelm::test::Registered<MutantsScriptTest> registered;

} // namespace mutants_script_test

#include "mutants_script_test.moc"
