// The ways in which the program is made to end from outside.
#pragma once

namespace kelm {

class UserDefaults;

/// From now on the program ends in order (`endInOrder`) when it is told to from outside:
///
/// - SIGHUP, SIGINT and SIGTERM end the event loop, and `endBySignal` behind it then ends the process. When the main
///   thread does not get there within five seconds, the process ends all the same, and so it does at once when a signal
///   comes a second time; what comes within a quarter of a second counts as the same one, since a terminal that closes
///   and its shell both say so. A signal that whoever started the program had ignored stays ignored.
/// - The desktop's session asks for data to be saved. The program goes on then.
/// - The display dies, which the toolkit answers by ending the process, or something else calls `exit` from inside the
///   event loop. The process ends with status 1, its preferences written.
///
/// To be called once, by the main thread, with an application object, when what the closers need has been made, the
/// preferences and the log among it.
void watchWaysToEnd(UserDefaults& preferences);

/// When a signal has ended the event loop, ends the process by that very signal, as its parent will see: preferences
/// have to be written before. Otherwise it tells that `exit` is a way like any other from now on. Main thread only.
void endBySignal();

} // namespace kelm
