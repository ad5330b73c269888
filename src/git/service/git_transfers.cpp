#include "git/service/git_transfers.h"

#include "platform/process/process_stop.h"

#include <utility>

namespace kelm {

void GitTransfers::stop(quint64 id)
{
    for (const GitTransfer& transfer : all_) {
        if (transfer.id == id) {
            transfer.stop->stop();
        }
    }
}

quint64 GitTransfers::add(const QString& name, std::shared_ptr<ProcessStop> stop)
{
    const quint64 id = ++lastId_;
    all_.push_back({id, name, std::chrono::steady_clock::now(), std::move(stop)});
    Q_EMIT began(id);
    return id;
}

void GitTransfers::remove(quint64 id)
{
    if (all_.remove_if([id](const GitTransfer& transfer) { return transfer.id == id; }) > 0) {
        Q_EMIT ended(id);
    }
}

} // namespace kelm
