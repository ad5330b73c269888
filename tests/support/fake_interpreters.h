// Interpreters that are this test program under another name.
#pragma once

#include "support/process_roles.h"

#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace kelm::test {

/// A folder of interpreters. Each runs "scripts" that hold a role of `playRole` and its arguments, one a line; with the
/// role "arguments" it prints its own name and arguments, one a line.
class FakeInterpreters
{
public:
    explicit FakeInterpreters(const QStringList& names = {})
    {
        for (const QString& name : names) {
            add(name);
        }
    }

    QString folder() const { return folder_.path(); }
    QString path(const QString& name) const { return folder_.filePath(name); }
    void add(const QString& name) { QFile::link(QCoreApplication::applicationFilePath(), path(name)); }

private:
    QTemporaryDir folder_;
};

/// Plays the interpreter that this program was started as, and does not come back then; returns when it was started
/// under its own name.
inline void playInterpreter(int argc, char** argv)
{
    const std::string name = std::filesystem::path(argv[0]).filename();
    if (name == std::filesystem::read_symlink("/proc/self/exe").filename() || argc < 2) {
        return;
    }
    std::ifstream file(argv[argc - 1]);
    std::vector<std::string> words{name, "--role"};
    for (std::string line; std::getline(file, line);) {
        words.push_back(line);
    }
    if (words.size() == 3 && words[2] == "arguments") {
        std::string text = name + '\n';
        for (int index = 1; index < argc; ++index) {
            text += std::string(argv[index]) + '\n';
        }
        writeAll(1, text);
        std::_Exit(0);
    }
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    playRole(static_cast<int>(arguments.size()), arguments.data());
    std::_Exit(97);
}

} // namespace kelm::test
