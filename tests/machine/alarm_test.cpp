#include "machine/alarm.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <ctime>

namespace board {
namespace {

constexpr int kDeadline = 10'000;

std::uint64_t Now() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 +
         static_cast<std::uint64_t>(now.tv_nsec);
}

/// True when it rings within that time.
bool Rings(const Alarm& alarm, int milliseconds) {
  pollfd entry{.fd = alarm.WatchedFd(), .events = POLLIN, .revents = 0};
  return poll(&entry, 1, milliseconds) == 1;
}

TEST(Alarm, RingsAtItsMomentAndNotBefore) {
  Alarm alarm;
  EXPECT_FALSE(Rings(alarm, 0));
  const std::uint64_t at = Now() + 20'000'000;
  alarm.Set(at);
  EXPECT_TRUE(Rings(alarm, kDeadline));
  EXPECT_GE(Now(), at);
  EXPECT_TRUE(Rings(alarm, 0));
}

TEST(Alarm, RingsAtOnceForAMomentThatHasPassed) {
  Alarm alarm;
  alarm.Set(0);
  EXPECT_TRUE(Rings(alarm, kDeadline));
}

TEST(Alarm, ANewMomentOrNoneEndsIt) {
  Alarm alarm;
  alarm.Set(1);
  ASSERT_TRUE(Rings(alarm, kDeadline));
  alarm.Set(Now() + 3'600'000'000'000);
  EXPECT_FALSE(Rings(alarm, 0));
  alarm.Set(1);
  ASSERT_TRUE(Rings(alarm, kDeadline));
  alarm.Set({});
  EXPECT_FALSE(Rings(alarm, 0));
}

}  // namespace
}  // namespace board
