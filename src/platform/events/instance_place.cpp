#include "platform/events/instance_place.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QSysInfo>

#include <unistd.h>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The name of an X display, "[protocol/][host]:number[.screen]", in the one form that all its names share.
QString displayName(const QString& display)
{
    const qsizetype colon = display.lastIndexOf(u':');
    if (colon < 0) {
        return display;
    }
    QString host = display.first(colon);
    QString number = display.sliced(colon + 1);
    if (number.endsWith(".0"_L1)) {
        number.chop(2);
    }
    // By these names the display is reached on this machine's own socket.
    if (host == "unix"_L1 || host == "unix/"_L1 || host == "unix/unix"_L1) {
        host.clear();
    }
    return host + u':' + number;
}

/// What tells this running system from all others. The sockets of all that run under one kernel are the same, whatever
/// they call their machine.
QString machineName()
{
    QFile file(u"/proc/sys/kernel/random/boot_id"_s);
    if (file.open(QIODevice::ReadOnly)) {
        return QString::fromLatin1(file.readAll().trimmed());
    }
    return QSysInfo::machineHostName();
}

} // namespace

QString sessionName(const VariableSource& variable)
{
    if (const QString socket = variable(u"WAYLAND_DISPLAY"_s); !socket.isEmpty()) {
        return u"wayland "_s + QDir::cleanPath(QDir(variable(u"XDG_RUNTIME_DIR"_s)).filePath(socket));
    }
    const QString display = variable(u"DISPLAY"_s);
    return display.isEmpty() ? QString() : u"x11 "_s + displayName(display);
}

InstancePlace instancePlace(const QString& folder, const QString& session, const QString& machine)
{
    const QByteArray hash =
        QCryptographicHash::hash((session + u'\n' + machine).toUtf8(), QCryptographicHash::Sha256).first(8).toHex();
    const QString base = folder + u"/com.kelm.KelmPane-%1-%2"_s.arg(geteuid()).arg(QLatin1StringView(hash));
    return {base + u".lock"_s, base + u".socket"_s};
}

InstancePlace defaultInstancePlace()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) {
        folder = QDir::tempPath();
    }
    const auto variable = [](const QString& name) { return qEnvironmentVariable(name.toUtf8().constData()); };
    return instancePlace(folder, sessionName(variable), machineName());
}

} // namespace kelm
