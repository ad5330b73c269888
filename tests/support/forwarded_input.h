// A text in the place of the process's own standard input.
#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <unistd.h>

namespace kelm::test {

/// While it lives, the standard input of this process, and of the children that it is forwarded to, gives `text`.
class ForwardedInput
{
public:
    explicit ForwardedInput(const QByteArray& text) : before_(::dup(STDIN_FILENO))
    {
        file_.open();
        file_.write(text);
        file_.flush();
        file_.seek(0);
        ::lseek(file_.handle(), 0, SEEK_SET);
        ::dup2(file_.handle(), STDIN_FILENO);
    }
    ~ForwardedInput()
    {
        ::dup2(before_, STDIN_FILENO);
        ::close(before_);
    }
    ForwardedInput(const ForwardedInput&) = delete;
    ForwardedInput& operator=(const ForwardedInput&) = delete;

private:
    QTemporaryFile file_;
    int before_;
};

} // namespace kelm::test
