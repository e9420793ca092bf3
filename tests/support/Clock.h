#ifndef KALVISTA_TESTS_SUPPORT_CLOCK_H
#define KALVISTA_TESTS_SUPPORT_CLOCK_H

#include <sys/time.h>

#include <cstdint>

namespace support {

inline std::int64_t microsecondsNow() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return std::int64_t{now.tv_sec} * 1000000 + now.tv_usec;
}

// As the library's clock tells it.
inline long double milliseconds(std::int64_t microseconds) {
  return static_cast<double>(microseconds / 1000000) * 1000.0 +
         static_cast<double>(microseconds % 1000000) / 1000.0;
}

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_CLOCK_H
