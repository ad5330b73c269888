// One program holds the test classes of a room. CTest starts it anew for each class, so that a class has a process, a
// home folder and a time limit of its own.
#pragma once

#include "support/patience.h"

#include <QString>
#include <QStringList>
#include <QTest>

#include <functional>
#include <map>

namespace kelm::test {

/// The kind of application object that stands behind a test.
enum class Toolkit { core, gui, widgets };

/// What this program does when a test starts it as a child: `PROGRAM --role NAME ARGUMENT …`. It gets the arguments,
/// and its result is the exit code.
using ChildRole = std::function<int(const QStringList& arguments)>;
using ChildRoles = std::map<QString, ChildRole>;

struct TestClass
{
    Toolkit toolkit;
    int (*run)(int argc, char** argv);
    ChildRoles roles;
};

/// Makes a class known under the name of the file that it stands in, without folder and ending. Ends the program when
/// the name or a role's is taken.
void registerTestClass(const char* file, TestClass testClass);

/// `const Registered<SomeTest> registered;` in a test's file makes its class part of the room's program.
template <typename Class>
class Registered
{
public:
    explicit Registered(Toolkit toolkit = Toolkit::core, ChildRoles roles = {}, const char* file = __builtin_FILE())
    {
        registerTestClass(file, {toolkit, run, std::move(roles)});
    }

private:
    static int run(int argc, char** argv)
    {
        Class test;
        return QTest::qExec(&test, argc, argv);
    }
};

} // namespace kelm::test
