#include "platform/desktop/motion_wishes.h"

#include <QSettings>
#include <QStandardPaths>

#ifndef Q_OS_MACOS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#endif

#include <functional>
#include <optional>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString settingsGroup = u"org.gnome.desktop.interface"_s;
const QString animationsKey = u"enable-animations"_s;
const QString blinkKey = u"cursor-blink"_s;

/// The first that a person's files, and then the system's, have of a setting.
std::optional<QString> configured(const QString& file, const QString& key)
{
    for (const QString& path : QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, file)) {
        const QSettings settings(path, QSettings::IniFormat);
        if (settings.contains(key)) {
            return settings.value(key).toString();
        }
    }
    return std::nullopt;
}

bool isOff(const std::optional<QString>& value)
{
    return value && (*value == u"0" || value->compare(u"false", Qt::CaseInsensitive) == 0);
}

/// A factor by which one desktop multiplies the time of all that moves.
bool isZero(const std::optional<QString>& value)
{
    bool isNumber = false;
    return value && value->toDouble(&isNumber) == 0 && isNumber;
}

} // namespace

MotionWishes::MotionWishes(QObject* parent) : QObject(parent)
{
    readFiles();
    // Not on the road of a start.
    QMetaObject::invokeMethod(this, &MotionWishes::askService, Qt::QueuedConnection);
}

void MotionWishes::readFiles()
{
    const bool isKde = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(u"KDE"_s);
    if (isKde && isZero(configured(u"kdeglobals"_s, u"KDE/AnimationDurationFactor"_s))) {
        doFilesAnimate_ = false;
    }
    for (const QString& file : {u"gtk-4.0/settings.ini"_s, u"gtk-3.0/settings.ini"_s}) {
        doFilesAnimate_ = doFilesAnimate_ && !isOff(configured(file, u"Settings/gtk-enable-animations"_s));
        doFilesBlink_ = doFilesBlink_ && !isOff(configured(file, u"Settings/gtk-cursor-blink"_s));
    }
}

void MotionWishes::take(const QString& key, const QVariant& value)
{
    bool* const wish = key == animationsKey ? &doesServiceAnimate_ : key == blinkKey ? &doesServiceBlink_ : nullptr;
    const bool isKnown = wish != nullptr && value.metaType() == QMetaType::fromType<bool>();
    if (isKnown && *wish != value.toBool()) {
        *wish = value.toBool();
        Q_EMIT changed();
    }
}

#ifndef Q_OS_MACOS

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString object = u"/org/freedesktop/portal/desktop"_s;
const QString settingsInterface = u"org.freedesktop.portal.Settings"_s;

/// The service wraps an answer once more.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

/// Hands on what the service says of one group of settings.
class SettingsListener final : public QObject
{
    Q_OBJECT

public:
    SettingsListener(std::function<void(const QString&, const QVariant&)> take, QObject* parent)
        : QObject(parent), take_(std::move(take)), bus_(QDBusConnection::sessionBus())
    {
        if (bus_.isConnected()) {
            // The toolkit learns of its own types with the first message, and without them finds no slot.
            QDBusMetaType::typeToSignature(QMetaType::fromType<QDBusVariant>());
            bus_.connect(service, object, settingsInterface, u"SettingChanged"_s, this,
                         SLOT(settingChanged(QString, QString, QDBusVariant)));
        }
    }

    void ask(const QString& key)
    {
        if (!bus_.isConnected()) {
            return;
        }
        QDBusMessage question = QDBusMessage::createMethodCall(service, object, settingsInterface, u"Read"_s);
        question << settingsGroup << key;
        auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, key, watcher] {
            watcher->deleteLater();
            const QDBusPendingReply<QDBusVariant> reply = *watcher;
            if (!reply.isError()) {
                take_(key, unwrapped(reply.value().variant()));
            }
        });
    }

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value)
    {
        if (group == settingsGroup) {
            take_(key, unwrapped(value.variant()));
        }
    }

private:
    std::function<void(const QString&, const QVariant&)> take_;
    QDBusConnection bus_;
};

} // namespace

void MotionWishes::askService()
{
    auto* listener =
        new SettingsListener([this](const QString& key, const QVariant& value) { take(key, value); }, this);
    listener->ask(animationsKey);
    listener->ask(blinkKey);
}

#else

void MotionWishes::askService() {}

#endif

} // namespace kelm

#ifndef Q_OS_MACOS
#include "motion_wishes.moc"
#endif
