#include "platform/files/user_defaults.h"

#include "platform/files/standard_paths.h"

#include <QFileInfo>
#include <QLocale>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A path for the toolkit, which would wait at a pipe for whoever writes to it: in the place of what is neither file
/// nor folder, one at which there can be nothing.
QString pathOfFile(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir() ? path + u"/none"_s : path;
}

} // namespace

UserDefaults::UserDefaults(const QString& path) : settings_(pathOfFile(path), QSettings::IniFormat) {}

QVariant UserDefaults::stored(const QString& key) const
{
    return settings_.value(key);
}

void UserDefaults::store(const QString& key, const QVariant& value)
{
    settings_.setValue(key, value);
    Q_EMIT valueChanged(key);
}

std::optional<QString> UserDefaults::string(const QString& key) const
{
    const QVariant value = stored(key);
    if (value.typeId() == QMetaType::QString) {
        return value.toString();
    }
    // A text with commas that somebody wrote by hand, without quotes around it, comes as a list.
    if (value.typeId() == QMetaType::QStringList) {
        return value.toStringList().join(u", "_s);
    }
    return std::nullopt;
}

std::optional<bool> UserDefaults::boolean(const QString& key) const
{
    const QVariant value = stored(key);
    if (value == QVariant(u"true"_s) || value == QVariant(u"1"_s)) {
        return true;
    }
    if (value == QVariant(u"false"_s) || value == QVariant(u"0"_s)) {
        return false;
    }
    return std::nullopt;
}

std::optional<qint64> UserDefaults::integer(const QString& key) const
{
    bool isNumber = false;
    const QVariant value = stored(key);
    const qint64 number = value.typeId() == QMetaType::QString ? value.toString().toLongLong(&isNumber) : 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<double> UserDefaults::real(const QString& key) const
{
    bool isNumber = false;
    const QVariant value = stored(key);
    const double number = value.typeId() == QMetaType::QString ? value.toString().toDouble(&isNumber) : 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

std::optional<QByteArray> UserDefaults::data(const QString& key) const
{
    const QVariant value = stored(key);
    return value.typeId() == QMetaType::QByteArray ? std::optional(value.toByteArray()) : std::nullopt;
}

// Numbers and Booleans are kept as texts, which is what they are once the file has been read again.

void UserDefaults::setString(const QString& key, const QString& value)
{
    store(key, value.isNull() ? u""_s : value);
}

void UserDefaults::setBoolean(const QString& key, bool value)
{
    store(key, value ? u"true"_s : u"false"_s);
}

void UserDefaults::setInteger(const QString& key, qint64 value)
{
    store(key, QString::number(value));
}

void UserDefaults::setReal(const QString& key, double value)
{
    store(key, QString::number(value, 'g', QLocale::FloatingPointShortest));
}

void UserDefaults::setData(const QString& key, const QByteArray& value)
{
    store(key, value.isNull() ? QByteArray("") : value);
}

void UserDefaults::remove(const QString& key)
{
    settings_.remove(key);
    Q_EMIT valueChanged(key);
}

bool UserDefaults::contains(const QString& key) const
{
    return settings_.contains(key);
}

bool UserDefaults::synchronize()
{
    settings_.sync();
    return settings_.status() == QSettings::NoError;
}

UserDefaults& UserDefaults::shared()
{
    static UserDefaults defaults(standardPaths::preferences());
    return defaults;
}

} // namespace kelm
