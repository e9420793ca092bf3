#include <gtest/gtest.h>
#include <kalvista/Timer.h>

#include "support/Clock.h"

using support::microsecondsNow;
using support::milliseconds;

TEST(Timer, CountsFromItsStartOrItsReset) {
  const long double before = milliseconds(microsecondsNow());
  ardo::Timer timer;
  const long double between = milliseconds(microsecondsNow());
  EXPECT_GE(timer.start, before);
  EXPECT_LE(timer.start, between);
  timer.start = before - 5000;
  const long double first = timer.getTime();
  const long double second = timer.reset();
  const long double after = milliseconds(microsecondsNow());
  EXPECT_GE(first, 5000);
  EXPECT_GE(second, first);
  EXPECT_LE(second, after - before + 5000);
  EXPECT_EQ(timer.start, second + before - 5000);
}
