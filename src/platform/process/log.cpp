#include "platform/process/log.h"

#include <QDateTime>

#include <cstdio>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// One call a line, so that lines of several threads do not mix.
void writeLine(std::FILE* stream, const QString& line)
{
    const QByteArray bytes = (line + u'\n').toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stream);
    std::fflush(stream);
}

class SystemLog final : public Log
{
public:
    void write(const QString& line) override
    {
        writeLine(stderr, QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH:mm:ss.zzz ") + line);
    }

    void print(const QString& line) override { writeLine(stdout, line); }
};

} // namespace

Log& Log::system()
{
    static SystemLog log;
    return log;
}

} // namespace kelm
