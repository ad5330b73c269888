#include "support/test_program.h"

#include "support/fake_interpreters.h"
#include "support/process_roles.h"

#include <QApplication>

#include <cstdio>
#include <filesystem>
#include <string>

namespace kelm::test {

namespace {

std::map<std::string, TestClass>& testClasses()
{
    static std::map<std::string, TestClass> classes;
    return classes;
}

const TestClass* classWithRole(const QString& role)
{
    for (const auto& [name, testClass] : testClasses()) {
        if (testClass.roles.contains(role)) {
            return &testClass;
        }
    }
    return nullptr;
}

std::unique_ptr<QCoreApplication> makeApplication(Toolkit toolkit, int& argc, char** argv)
{
    switch (toolkit) {
    case Toolkit::core:
        return std::make_unique<QCoreApplication>(argc, argv);
    case Toolkit::gui:
        return std::make_unique<QGuiApplication>(argc, argv);
    case Toolkit::widgets:
        return std::make_unique<QApplication>(argc, argv);
    }
    return nullptr;
}

/// Does what `--role` names, which a test class knows or else every program, and gives the exit code.
int carryOutRole(int argc, char** argv)
{
    const QString role = QString::fromLocal8Bit(argv[2]);
    const TestClass* testClass = classWithRole(role);
    if (testClass == nullptr) {
        playRole(argc, argv);
        return 98;
    }
    const auto application = makeApplication(testClass->toolkit, argc, argv);
    return testClass->roles.at(role)(QCoreApplication::arguments().sliced(3));
}

int runClass(const TestClass& testClass, int argc, char** argv)
{
    // The class's name is for this program; what follows is the test framework's.
    argv[1] = argv[0];
    int count = argc - 1;
    const auto application = makeApplication(testClass.toolkit, count, argv + 1);
    return testClass.run(count, argv + 1);
}

} // namespace

void registerTestClass(const char* file, TestClass testClass)
{
    const std::string name = std::filesystem::path(file).stem().string();
    for (const auto& role : testClass.roles) {
        if (classWithRole(role.first) != nullptr) {
            qFatal("%s: another class has the role %s", name.c_str(), qPrintable(role.first));
        }
    }
    if (!testClasses().emplace(name, std::move(testClass)).second) {
        qFatal("there are two test classes of the name %s", name.c_str());
    }
}

} // namespace kelm::test

int main(int argc, char** argv)
{
    using namespace kelm::test;
    playInterpreter(argc, argv);
    if (argc > 2 && std::string(argv[1]) == "--role") {
        return carryOutRole(argc, argv);
    }
    const auto found = argc > 1 ? testClasses().find(argv[1]) : testClasses().end();
    if (found == testClasses().end()) {
        std::fprintf(stderr, "Usage: %s CLASS [ARGUMENT ...], with one of these classes:\n", argv[0]);
        for (const auto& [name, testClass] : testClasses()) {
            std::fprintf(stderr, "  %s\n", name.c_str());
        }
        return 2;
    }
    return runClass(found->second, argc, argv);
}
