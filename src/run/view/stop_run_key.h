// The key that ends a run.
#pragma once

#include <QKeySequence>

class QWidget;

namespace kelm {

class CodeRunner;

/// Shift+F5.
QKeySequence stopRunKey();

/// Has the key end what runs, wherever the keyboard is in the program. While nothing runs the key is nobody's. The
/// runner outlives the window.
void installStopRunKey(CodeRunner& runner, QWidget& window);

} // namespace kelm
