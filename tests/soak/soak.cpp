// soak [--seed N] [--seconds N] [--steps N] [--calm-every N]: uses the window at random, beside a model that knows what
// must be seen and what must be on disk. It ends with the first difference, and tells the seed that shows it again.
#include "platform/style/view/style.h"
#include "soak/driver.h"
#include "soak/world.h"

#include <QApplication>
#include <QCommandLineParser>

#include <random>

namespace {

using namespace Qt::Literals::StringLiterals;

/// What the toolkit warns of is a failure as well, but for what it says of the platform without a window system.
QStringList warnings;

void takeMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (message.startsWith("This plugin does not support"_L1)) {
        return;
    }
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    if (type == QtFatalMsg) {
        std::abort();
    }
    if (type != QtDebugMsg && type != QtInfoMsg) {
        warnings.append(message);
    }
}

kelm::soak::RunOptions optionsOf(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    const QList<QCommandLineOption> options{
        {u"seed"_s, u"repeats a run"_s, u"number"_s},
        {u"seconds"_s, u"how long the run is"_s, u"number"_s},
        {u"steps"_s, u"how many steps the run has at most"_s, u"number"_s},
        {u"calm-every"_s, u"steps between two calm points"_s, u"number"_s, u"500"_s}};
    parser.addOptions(options);
    parser.process(arguments);
    kelm::soak::RunOptions run;
    run.seed = parser.isSet(options[0]) ? parser.value(options[0]).toUInt() : std::random_device()();
    run.seconds = parser.value(options[1]).toLongLong();
    run.steps = parser.value(options[2]).toLongLong();
    run.calmEvery = std::max<qint64>(1, parser.value(options[3]).toLongLong());
    if (run.seconds == 0 && run.steps == 0) {
        run.seconds = 60;
    }
    return run;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"KelmPane"_s);
    kelm::style::installOn(application);
    const kelm::soak::RunOptions options = optionsOf(QApplication::arguments());
    qInstallMessageHandler(takeMessage);
    bool isGood = false;
    {
        kelm::soak::World world(options.seed);
        isGood = kelm::soak::Driver(world, options).run();
    }
    for (const QString& warning : std::as_const(warnings)) {
        std::fprintf(stdout, "FAILED: a warning: %s\n", warning.toUtf8().constData());
    }
    return isGood && warnings.isEmpty() ? 0 : 1;
}
