#include "run/command_interrupt.h"

#include "platform/process/child_process.h"
#include "platform/process/process_tree.h"

#include <utility>

namespace kelm {

void CommandInterrupt::interrupt(ChildProcess& command)
{
    command.interrupt();
    if (command.isRunning() && !patience_) {
        patience_ = std::make_unique<QObject>();
        scheduler_.after(patience, patience_.get(), [this] { setIsOutlasted(true); });
    }
}

void CommandInterrupt::end(const ChildProcess& command)
{
    if (command.isRunning()) {
        endTree(command.processId());
    }
}

void CommandInterrupt::reset()
{
    patience_.reset();
    setIsOutlasted(false);
}

void CommandInterrupt::setIsOutlasted(bool isOutlasted)
{
    if (std::exchange(isOutlasted_, isOutlasted) != isOutlasted) {
        Q_EMIT isOutlastedChanged();
    }
}

} // namespace kelm
