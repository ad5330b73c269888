// How long a test waits for what is to come.
#pragma once

#include <QTest>

// Five seconds, as the toolkit has it, are not enough for a machine that does much else: what comes late there is no
// failure. A test waits no longer for it than it takes.
#undef QTRY_VERIFY
#define QTRY_VERIFY(expr) QTRY_VERIFY_WITH_TIMEOUT(expr, kelm::test::patience)
#undef QTRY_VERIFY2
#define QTRY_VERIFY2(expr, message) QTRY_VERIFY2_WITH_TIMEOUT(expr, message, kelm::test::patience)
#undef QTRY_COMPARE
#define QTRY_COMPARE(expr, expected) QTRY_COMPARE_WITH_TIMEOUT(expr, expected, kelm::test::patience)

namespace kelm::test {

/// In milliseconds; also for what else waits for an event. The toolkit waits twice as long again before it says what
/// failed, and all of it has to fit into a test's time.
constexpr int patience = 30'000;

} // namespace kelm::test
