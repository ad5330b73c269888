#include "platform/process/log.h"

#include "platform/process/line_writer.h"

#include <QDateTime>

#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::milliseconds momentToFinish(250);

class SystemLog final : public Log
{
public:
    void write(const QString& line) override
    {
        writeBare(QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH:mm:ss.zzz ") + line);
    }
    void print(const QString& line) override { output_.write((line + u'\n').toUtf8()); }

    void writeBare(const QString& line) { error_.write((line + u'\n').toUtf8()); }

    void finish()
    {
        output_.finish(momentToFinish);
        error_.finish(momentToFinish);
    }

private:
    LineWriter output_{STDOUT_FILENO};
    LineWriter error_{STDERR_FILENO};
};

SystemLog& systemLog()
{
    static SystemLog log;
    return log;
}

void takeToolkitMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    systemLog().writeBare(qFormatLogMessage(type, context, message));
    if (type == QtFatalMsg) {
        systemLog().finish();
    }
}

} // namespace

Log& Log::system()
{
    return systemLog();
}

void Log::finishSystem()
{
    systemLog().finish();
}

void Log::takeToolkitMessages()
{
    systemLog();
    qInstallMessageHandler(takeToolkitMessage);
}

} // namespace kelm
