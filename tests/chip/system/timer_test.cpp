// The timers of the model, by raw loads and stores under a clock that the test moves.
#include <gtest/gtest.h>

#include "chip/router_chip.h"

namespace chip {
namespace {

constexpr std::uint64_t kMicrosecond = 1000;

class TimerCounters : public testing::Test {
 protected:
  TimerCounters() {
    chip_.clock = [this] { return now_; };
  }

  void Store8(std::uint32_t offset, std::uint8_t value) { chip_.registers.Store(offset, 1, value); }
  void Store16(std::uint32_t offset, std::uint16_t value) {
    chip_.registers.Store(offset, 2, value);
  }
  std::uint32_t Load16(std::uint32_t offset) { return chip_.registers.Load(offset, 2); }

  void TearDown() override { EXPECT_TRUE(chip_.registers.Complaints().empty()); }

  std::uint64_t now_ = 1'000'000'000'000;
  RouterChip chip_;
};

TEST_F(TimerCounters, AreStoppedAtPowerOn) {
  EXPECT_EQ(chip_.registers.Load(0x20E, 1), 0x03U);
  now_ += 5 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 0U);
  EXPECT_EQ(Load16(0x208), 0U);
}

TEST_F(TimerCounters, HoldTheLoadValueWhileStopped) {
  Store16(0x202, 0x1234);
  EXPECT_EQ(Load16(0x200), 0x1234U);
  now_ += 5 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 0x1234U);
  EXPECT_EQ(Load16(0x208), 0U);
}

TEST_F(TimerCounters, CountDownOnceADivisorOfMicroseconds) {
  Store16(0x202, 0x0100);
  Store16(0x204, 4);
  Store16(0x20A, 0x0200);
  Store16(0x20C, 1);
  Store8(0x20E, 0x00);
  EXPECT_EQ(Load16(0x200), 0x0100U);
  now_ += 4 * kMicrosecond - 1;
  EXPECT_EQ(Load16(0x200), 0x0100U);
  EXPECT_EQ(Load16(0x208), 0x01FDU);
  now_ += 1;
  EXPECT_EQ(Load16(0x200), 0x00FFU);
  EXPECT_EQ(Load16(0x208), 0x01FCU);
  now_ += 40 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 0x00F5U);
}

TEST_F(TimerCounters, ADivisorOf0CountsAs1) {
  Store16(0x202, 9);
  Store8(0x20E, 0x02);
  now_ += 2 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 7U);
}

TEST_F(TimerCounters, StartAgainAfter0) {
  Store16(0x202, 2);
  Store16(0x204, 1);
  Store8(0x20E, 0x02);
  for (const unsigned counter : {2U, 1U, 0U, 2U, 1U, 0U, 2U}) {
    EXPECT_EQ(Load16(0x200), counter);
    now_ += kMicrosecond;
  }
  now_ += 3'000'000 * kMicrosecond;  // a million rounds: 1 would be next
  EXPECT_EQ(Load16(0x200), 1U);
}

TEST_F(TimerCounters, TheLongestRoundHas65536Counts) {
  Store16(0x202, 0xFFFF);
  Store16(0x204, 0xFFFF);
  Store8(0x20E, 0x02);
  now_ += 65535ULL * 65535 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 0U);
  now_ += 65535ULL * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 0xFFFFU);
}

TEST_F(TimerCounters, APauseHoldsTheCounterAndTheCountBegun) {
  Store16(0x202, 100);
  Store16(0x204, 10);
  Store8(0x20E, 0x02);
  now_ += 15 * kMicrosecond;
  Store8(0x20E, 0x06);
  now_ += 1000 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 99U);
  Store8(0x20E, 0x02);
  now_ += 4 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 99U);
  now_ += 1 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 98U);
}

TEST_F(TimerCounters, AStopLoadsTheCounterEvenWhenPaused) {
  Store16(0x20A, 100);
  Store16(0x20C, 10);
  Store8(0x20E, 0x01);
  now_ += 15 * kMicrosecond;
  EXPECT_EQ(Load16(0x208), 99U);
  Store8(0x20E, 0x0B);
  EXPECT_EQ(Load16(0x208), 100U);
  Store8(0x20E, 0x01);
  now_ += 9 * kMicrosecond;
  EXPECT_EQ(Load16(0x208), 100U);
  now_ += 1 * kMicrosecond;
  EXPECT_EQ(Load16(0x208), 99U);
}

TEST_F(TimerCounters, ALoadValueWaitsForTheNextRoundAndADivisorBeginsANewCount) {
  Store16(0x202, 3);
  Store16(0x204, 10);
  Store8(0x20E, 0x02);
  now_ += 15 * kMicrosecond;
  Store16(0x202, 50);
  EXPECT_EQ(Load16(0x200), 2U);
  Store16(0x204, 2);
  now_ += 1 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 2U);
  now_ += 1 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 1U);
  now_ += 4 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 50U);
}

TEST_F(TimerCounters, FollowTheTimeOfAChipWithoutAClock) {
  chip_.clock = nullptr;
  chip_.Advance(now_);
  Store16(0x202, 100);
  Store8(0x20E, 0x02);
  chip_.Advance(now_ + 3 * kMicrosecond);
  EXPECT_EQ(Load16(0x200), 97U);
  EXPECT_EQ(Load16(0x200), 97U);
}

TEST_F(TimerCounters, NeverCountBackwards) {
  Store16(0x202, 100);
  Store8(0x20E, 0x02);
  chip_.Advance(now_ + 3 * kMicrosecond);
  EXPECT_EQ(Load16(0x200), 97U);
  now_ += 2 * kMicrosecond;  // still before what the chip has reached
  EXPECT_EQ(Load16(0x200), 97U);
  now_ += 2 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 96U);
}

TEST_F(TimerCounters, AreStoppedByAReset) {
  Store16(0x202, 100);
  Store8(0x20E, 0x00);
  now_ += 5 * kMicrosecond;
  chip_.Reset();
  now_ += 5 * kMicrosecond;
  EXPECT_EQ(Load16(0x200), 0U);
  EXPECT_EQ(Load16(0x202), 0U);
  EXPECT_EQ(chip_.registers.Load(0x20E, 1), 0x03U);
}

TEST_F(TimerCounters, AreReadOnly) {
  Store16(0x202, 100);
  Store16(0x200, 5);
  EXPECT_EQ(Load16(0x200), 100U);
  EXPECT_EQ(chip_.registers.Complaints().size(), 1U);
  chip_.registers.ForgetComplaints();
}

}  // namespace
}  // namespace chip
