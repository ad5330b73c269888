// What a test program does when it starts itself as a child: no shell and no tool of the system is needed.
#pragma once

#include "platform/process/process.h"

#include <QCoreApplication>
#include <QStringList>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

namespace kelm::test {

/// The command that starts this test program in a role.
inline ProcessCommand roleCommand(const QStringList& roleAndArguments)
{
    return {.program = QCoreApplication::applicationFilePath(),
            .arguments = QStringList{QStringLiteral("--role")} + roleAndArguments};
}

inline void writeAll(int descriptor, const std::string& bytes)
{
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count <= 0) {
            std::_Exit(99);
        }
        written += static_cast<std::size_t>(count);
    }
}

/// Waits until the pipe that is written to is empty.
inline void waitUntilRead(int descriptor)
{
    int left = 1;
    while (::ioctl(descriptor, FIONREAD, &left) == 0 && left > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/// Plays the role that the command line names and does not come back then; returns when it names none.
///
/// - flood OUT ERR: writes so many MiB to the two outputs, turn by turn
/// - lines COUNT: writes so many lines, each by itself
/// - say OUT ERR STATUS: writes the two texts and exits
/// - copy: copies the standard input to the standard output
/// - folder, environment NAME: prints where it runs, or one variable ("(unset)" when there is none)
/// - signal NUMBER: ends itself by the signal
/// - ignore-input STATUS: exits without reading its input
/// - close-input: closes its standard input and stays for half a minute
/// - leave-behind: says "left", and exits while a process of its own keeps both outputs open
/// - wait: says "ready" and waits to be ended
/// - wait-with-child: the same, with a process of its own that holds the outputs and waits too
/// - pieces HEX..., error-pieces HEX...: writes each piece of bytes to the standard output or the standard error when
///   the one before has been read
/// - broken-pipes: "default" when a broken pipe would end it, else "ignored"
/// - ends: the same of the signals by which a terminal, a keyboard and a system tell it to end
/// - group: "own" when it leads its process group, else "shared"
inline void playRole(int argc, char** argv)
{
    if (argc < 3 || std::strcmp(argv[1], "--role") != 0) {
        return;
    }
    const std::string role = argv[2];
    const auto argument = [&](int index) { return std::string(index + 3 < argc ? argv[index + 3] : ""); };
    if (role == "flood") {
        const std::string block(1048576, 'x');
        int left[2] = {std::stoi(argument(0)), std::stoi(argument(1))};
        while (left[0] > 0 || left[1] > 0) {
            for (int stream = 0; stream < 2; ++stream) {
                if (left[stream]-- > 0) {
                    writeAll(stream + 1, block);
                }
            }
        }
        std::_Exit(0);
    }
    if (role == "lines") {
        for (int left = std::stoi(argument(0)); left > 0; --left) {
            writeAll(1, "line\n");
        }
        std::_Exit(0);
    }
    if (role == "say") {
        writeAll(1, argument(0));
        writeAll(2, argument(1));
        std::_Exit(std::stoi(argument(2)));
    }
    if (role == "copy") {
        char block[4096];
        ssize_t count = 0;
        while ((count = ::read(0, block, sizeof block)) > 0) {
            writeAll(1, std::string(block, static_cast<std::size_t>(count)));
        }
        std::_Exit(0);
    }
    if (role == "folder") {
        char* folder = ::getcwd(nullptr, 0);
        writeAll(1, folder);
        std::_Exit(0);
    }
    if (role == "environment") {
        const char* value = std::getenv(argument(0).c_str());
        writeAll(1, value != nullptr ? value : "(unset)");
        std::_Exit(0);
    }
    if (role == "signal") {
        ::signal(std::stoi(argument(0)), SIG_DFL);
        ::raise(std::stoi(argument(0)));
    }
    if (role == "ignore-input") {
        std::_Exit(std::stoi(argument(0)));
    }
    if (role == "close-input") {
        ::close(0);
        ::sleep(30);
        std::_Exit(0);
    }
    if (role == "leave-behind") {
        if (::fork() == 0) {
            ::sleep(30);
            std::_Exit(0);
        }
        writeAll(1, "left");
        std::_Exit(0);
    }
    if (role == "wait" || role == "wait-with-child") {
        if (role == "wait-with-child") {
            ::fork();
        }
        writeAll(1, "ready");
        ::sleep(60);
        std::_Exit(0);
    }
    if (role == "pieces" || role == "error-pieces") {
        const int descriptor = role == "pieces" ? 1 : 2;
        for (int index = 0; index + 3 < argc; ++index) {
            writeAll(descriptor, QByteArray::fromHex(argument(index).c_str()).toStdString());
            waitUntilRead(descriptor);
        }
        std::_Exit(0);
    }
    if (role == "broken-pipes") {
        struct sigaction action = {};
        ::sigaction(SIGPIPE, nullptr, &action);
        writeAll(1, action.sa_handler == SIG_DFL ? "default" : "ignored");
        std::_Exit(0);
    }
    if (role == "ends") {
        for (const int number : {SIGHUP, SIGINT, SIGTERM}) {
            struct sigaction action = {};
            ::sigaction(number, nullptr, &action);
            writeAll(1, action.sa_handler == SIG_DFL ? "default " : "ignored ");
        }
        std::_Exit(0);
    }
    if (role == "group") {
        writeAll(1, ::getpgrp() == ::getpid() ? "own" : "shared");
        std::_Exit(0);
    }
    std::_Exit(98);
}

} // namespace kelm::test
