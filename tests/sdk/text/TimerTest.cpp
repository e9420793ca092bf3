#include <gtest/gtest.h>
#include <kalvista/Timer.h>

#include "support/Clock.h"

TEST(Timer, CountsFromItsStartOrItsReset) {
  support::stopClock(1700000000123500);
  ardo::Timer timer;
  EXPECT_EQ(timer.start, 1700000000123.5L);
  support::stopClock(1700000002000250);
  EXPECT_EQ(timer.getTime(), 1876.75L);
  EXPECT_EQ(timer.reset(), 1876.75L);
  EXPECT_EQ(timer.start, 1700000002000.25L);
}
