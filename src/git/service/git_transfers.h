// What goes to other repositories, and comes from them, at the moment.
#pragma once

#include <QObject>
#include <QString>

#include <chrono>
#include <list>
#include <memory>

namespace kelm {

class ProcessStop;

/// One command that goes over the network.
struct GitTransfer
{
    quint64 id = 0;
    /// Such as "git fetch".
    QString name;
    std::chrono::steady_clock::time_point begin;
    std::shared_ptr<ProcessStop> stop;
};

/// The commands that run in the background, each of which may take as long as its server likes and can be stopped. Main
/// thread only.
class GitTransfers final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// In the order in which they began.
    const std::list<GitTransfer>& all() const { return all_; }
    /// Ends one with all that it has started; it then fails, and says that it was stopped. Nothing for one that has
    /// ended.
    void stop(quint64 id);

    /// Notes that a command begins, and gives what tells it from others.
    quint64 add(const QString& name, std::shared_ptr<ProcessStop> stop);
    void remove(quint64 id);

Q_SIGNALS:
    void began(quint64 id);
    void ended(quint64 id);

private:
    std::list<GitTransfer> all_;
    quint64 lastId_ = 0;
};

} // namespace kelm
