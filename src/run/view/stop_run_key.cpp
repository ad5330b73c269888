#include "run/view/stop_run_key.h"

#include "run/code_runner.h"

#include <QShortcut>
#include <QWidget>

namespace kelm {

QKeySequence stopRunKey()
{
    return QKeySequence(Qt::SHIFT | Qt::Key_F5);
}

void installStopRunKey(CodeRunner& runner, QWidget& window)
{
    auto* key = new QShortcut(stopRunKey(), &window);
    key->setContext(Qt::ApplicationShortcut);
    key->setAutoRepeat(false);
    key->setEnabled(runner.isRunning());
    QObject::connect(&runner, &CodeRunner::isRunningChanged, key,
                     [&runner, key] { key->setEnabled(runner.isRunning()); });
    QObject::connect(key, &QShortcut::activated, &runner, &CodeRunner::stop);
}

} // namespace kelm
