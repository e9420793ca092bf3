#ifndef KALVISTA_TESTS_SUPPORT_CLOCK_H
#define KALVISTA_TESTS_SUPPORT_CLOCK_H

#include <cstdint>

namespace support {

// From here on the clock that the library asks stands still, so many microseconds after 1970.
void stopClock(std::int64_t microseconds);

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_CLOCK_H
