// Single values under string keys that outlive the process.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <optional>

namespace kelm {

/// A persistent map from string keys to plain values, in one INI file.
///
/// A read says nothing where the key is missing or its value is of another type, so the caller's default applies. A
/// missing, unreadable or damaged file counts as empty as far as it cannot be read, and is left as it is until a value
/// is written. So does whatever is no file, such as a pipe, and it stays as it is. A written value can be read at once;
/// it reaches the file with the next turn of the event loop, with `synchronize`, or at the end of the last store on
/// that file. Values that another program wrote meanwhile stay. When the file cannot be written the values last as long
/// as the process. Main thread only.
class UserDefaults : public QObject
{
    Q_OBJECT

public:
    /// The store in the file at `path`, which is made, with its folder, on the first write.
    explicit UserDefaults(const QString& path);

    std::optional<QString> string(const QString& key) const;
    std::optional<bool> boolean(const QString& key) const;
    std::optional<qint64> integer(const QString& key) const;
    std::optional<double> real(const QString& key) const;
    std::optional<QByteArray> data(const QString& key) const;

    void setString(const QString& key, const QString& value);
    void setBoolean(const QString& key, bool value);
    void setInteger(const QString& key, qint64 value);
    void setReal(const QString& key, double value);
    void setData(const QString& key, const QByteArray& value);

    void remove(const QString& key);
    bool contains(const QString& key) const;

    /// Writes what is not written yet and reads what other programs wrote. False when the file cannot be read or
    /// written.
    bool synchronize();

    /// The program's own store, in the user's configuration folder.
    static UserDefaults& shared();

Q_SIGNALS:
    /// A value was written or removed through this store.
    void valueChanged(const QString& key);

private:
    /// The value of `key` in the file's own form: a text, or a byte array.
    QVariant stored(const QString& key) const;
    void store(const QString& key, const QVariant& value);

    QSettings settings_;
};

} // namespace kelm
