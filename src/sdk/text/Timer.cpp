#include <kalvista/Timer.h>
#include <sys/time.h>

namespace ardo {

Timer::Timer() : start(getTimeNow()) {}

long double Timer::getTimeNow() {
  timeval now{};
  gettimeofday(&now, nullptr);
  const double milliseconds =
      static_cast<double>(now.tv_sec) * 1000.0 + static_cast<double>(now.tv_usec) / 1000.0;
  return milliseconds;
}

long double Timer::getTime() const { return getTimeNow() - start; }

long double Timer::reset() {
  const long double now = getTimeNow();
  const long double elapsed = now - start;
  start = now;
  return elapsed;
}

}  // namespace ardo
