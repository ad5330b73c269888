// Notifications by name between parts of the program that do not know each other.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <vector>

namespace kelm {

struct Notification
{
    QString name;
    QVariant object;
    QVariantMap userInfo;
};

/// Delivers each posted notification to its observers at once, in the order in which they were added. Main thread only.
class NotificationCenter
{
public:
    using Handler = std::function<void(const Notification&)>;

    /// Calls `handler` for each notification of that name for as long as `owner` lives.
    void addObserver(QObject* owner, const QString& name, Handler handler);
    void removeObserver(const QObject* owner);

    void post(const QString& name, const QVariant& object = {}, const QVariantMap& userInfo = {});

    /// The centre that the whole program shares.
    static NotificationCenter& shared();

private:
    struct Observer
    {
        QPointer<QObject> owner;
        QString name;
        Handler handler;
    };

    std::vector<Observer> observers_;
};

/// The names of all notifications of the program.
namespace notifications {

inline const QString clearOutput = QStringLiteral("clearOutput");
inline const QString codeOutput = QStringLiteral("codeOutput");
inline const QString focusEditor = QStringLiteral("focusEditor");
inline const QString runFile = QStringLiteral("runFile");
inline const QString navigateToLine = QStringLiteral("navigateToLine");
inline const QString codeFoldingChanged = QStringLiteral("codeFoldingChanged");
inline const QString bookmarksChanged = QStringLiteral("bookmarksChanged");

} // namespace notifications

} // namespace kelm
