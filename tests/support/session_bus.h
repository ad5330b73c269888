// A message bus for the tests of what is asked of a desktop.
#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QTest>

namespace kelm::test {

/// A bus of a test's own, which the program takes for that of the person's session as long as it runs. The connection
/// of the process to it can be made once only: one bus for each test program.
class SessionBus
{
public:
    /// Whether the daemon of a bus is installed here.
    static bool isInstalled() { return !program().isEmpty(); }

    /// Starts the daemon; false where it does not answer.
    bool start()
    {
        using namespace Qt::Literals::StringLiterals;
        daemon_.start(program(), {u"--session"_s, u"--nofork"_s, u"--nosyslog"_s, u"--print-address"_s});
        if (!QTest::qWaitFor([this] { return daemon_.canReadLine(); }, 30'000)) {
            return false;
        }
        address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
        return qputenv("DBUS_SESSION_BUS_ADDRESS", address_.toUtf8());
    }

    void stop()
    {
        QDBusConnection::disconnectFromBus(QDBusConnection::sessionBus().name());
        daemon_.terminate();
        daemon_.waitForFinished();
    }

    /// Where another connection to it is made.
    QString address() const { return address_; }

private:
    static QString program() { return QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")); }

    QProcess daemon_;
    QString address_;
};

} // namespace kelm::test
