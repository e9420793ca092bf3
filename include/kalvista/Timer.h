/// @file
/// Millisecond stopwatch.
#ifndef KALVISTA_TIMER_H
#define KALVISTA_TIMER_H

#include <kalvista/export.h>

namespace ardo {

/// Stopwatch over the wall clock, in milliseconds.
///
/// The wall clock may be set back while it runs; elapsed times are negative then.
/// Thread context: **any thread**, on different timers.
class KALVISTA_API Timer {
 public:
  /// Starts the stopwatch.
  Timer();

  /// Reads the wall clock.
  /// @return milliseconds since the epoch, with a fractional part
  static long double getTimeNow();

  /// Reads the stopwatch.
  /// @return elapsed milliseconds since construction or the last reset()
  long double getTime() const;

  /// Starts the stopwatch anew.
  /// @return elapsed milliseconds up to this moment, from the former start
  long double reset();

  long double start;  ///< time of the start, in milliseconds since the epoch
};

}  // namespace ardo

#endif  // KALVISTA_TIMER_H
