// The way out of the program.
#pragma once

namespace kelm {

class UserDefaults;

/// Lets the program outlive the readers of what it writes: a write to a pipe whose reader has gone fails from then on
/// and no longer ends the process, with all that is unsaved in it. Children start as if this had not been called.
void outliveReaders();

/// To be called with the status of the event loop when it has ended, and its result returned from `main`. When
/// background work still runs on the global thread pool, such as a push to a server that does not answer, or as a
/// background task, this does not come back: the preferences are written and the process ends with `status`, since the
/// application object would wait for that work. Main thread only.
[[nodiscard]] int leaveWithoutWaiting(int status, UserDefaults& preferences);

} // namespace kelm
