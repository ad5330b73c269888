// The way out of the program.
#pragma once

namespace kelm {

class UserDefaults;

/// To be called with the status of the event loop when it has ended, and its result returned from `main`. When
/// background work still runs on the global thread pool, such as a push to a server that does not answer, this does not
/// come back: the preferences are written and the process ends with `status`, since the application object would wait
/// for that work. Main thread only.
[[nodiscard]] int leaveWithoutWaiting(int status, UserDefaults& preferences);

} // namespace kelm
