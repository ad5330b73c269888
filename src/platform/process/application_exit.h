// The way out of the program.
#pragma once

namespace kelm {

class UserDefaults;

/// Lets the program outlive what stands behind its standard streams. A write to a pipe whose reader has gone fails from
/// then on and no longer ends the process, with all that is unsaved in it; children start as if this had not been
/// called. A stream that was closed leads nowhere, so that no file that is opened takes its number and, with it, the
/// lines that are written there. To be called first of all.
void outliveReaders();

/// To be called with the status of the event loop when it has ended, and its result returned from `main`. When
/// background work still runs on the global thread pool, such as a push to a server that does not answer, or as a
/// background task, this does not come back: the preferences are written and the process ends with `status`, since the
/// application object would wait for that work. Nor does it when a signal has ended the loop: then the process ends by
/// that signal. Main thread only.
[[nodiscard]] int leaveWithoutWaiting(int status, UserDefaults& preferences);

} // namespace kelm
