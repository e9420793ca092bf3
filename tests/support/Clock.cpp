#include "support/Clock.h"

#include <sys/time.h>

#include <ctime>
#include <optional>

namespace {

std::optional<timeval> stopped;

}  // namespace

void support::stopClock(std::int64_t microseconds) {
  stopped = {static_cast<time_t>(microseconds / 1000000),
             static_cast<suseconds_t>(microseconds % 1000000)};
}

// The library finds this one ahead of the C library's.
extern "C" int gettimeofday(timeval* now, void* /*zone*/) noexcept {
  timespec running{};
  clock_gettime(CLOCK_REALTIME, &running);
  *now =
      stopped.value_or(timeval{running.tv_sec, static_cast<suseconds_t>(running.tv_nsec / 1000)});
  return 0;
}
