// What a terminal session writes on.
#pragma once

#include "run/attributed_text.h"

#include <QColor>
#include <QString>

namespace kelm {

/// The text surface of a terminal. Each write goes to the end of the text, scrolls there, and makes what is typed next
/// the new command line. Main thread only.
class TerminalScreen
{
public:
    virtual ~TerminalScreen() = default;

    virtual void appendText(const QString& text, const QColor& color) = 0;
    /// Appends a piece of what a command writes, of at most 64 KiB.
    virtual void appendOutput(const AttributedText& text) = 0;
    /// Appends the prompt: `TerminalSession::promptText` of the session's folder, in cyan.
    virtual void appendPrompt() = 0;
    /// Takes all text away.
    virtual void clear() = 0;

    /// Takes away what is being typed, and gives it.
    virtual QString takeTyped() { return {}; }
    /// Puts it behind what was written since.
    virtual void putTyped(const QString&) {}
};

} // namespace kelm
