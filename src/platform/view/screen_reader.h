// Telling whoever listens.
#pragma once

#include <functional>

class QAccessibleEvent;

namespace kelm::screenReader {

/// Whether a screen reader, or anything else that wants to be told, runs. While none does, nothing is gathered that
/// only it would want. Main thread only.
bool isListening();

/// Tells what happened; nothing while nobody listens.
void tell(QAccessibleEvent& event);

/// For tests, whose platform knows of no screen readers: tells `ear` instead, until it is told otherwise by an empty
/// one.
void tellInstead(std::function<void(QAccessibleEvent&)> ear);

} // namespace kelm::screenReader
