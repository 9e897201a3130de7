#include "core/long_wait.h"

#include <gtest/gtest.h>

#include "console/console.h"
#include "support/scripted_bus.h"
#include "support/scripted_console.h"

namespace monitor {
namespace {

constexpr Reg8 kStatus{0x123};
constexpr Field kDone{3, 3};

class LongWaits : public testing::Test {
 protected:
  void SetUp() override { ClearConsole(); }
};

TEST_F(LongWaits, TheConsoleIsLookedAtAfter100000RoundsThenEach10000) {
  LongWait wait;
  for (unsigned round = 1; round <= 130'000; ++round) {
    EXPECT_FALSE(wait.GivenUp());
    const bool looks = round == 100'000 || round == 110'000 || round == 120'000 || round == 130'000;
    ASSERT_EQ(TakeLooks(), looks ? 1U : 0U) << "round " << round;
  }
}

TEST_F(LongWaits, AreGivenUpAtTheLookThatFindsCtrlC) {
  LongWait wait;
  for (unsigned round = 1; round <= 105'000; ++round) ASSERT_FALSE(wait.GivenUp());
  PressCtrlCInWaits(true);
  for (unsigned round = 105'001; round < 110'000; ++round) ASSERT_FALSE(wait.GivenUp());
  EXPECT_TRUE(wait.GivenUp());
}

TEST_F(LongWaits, EachWaitCountsItsOwnRounds) {
  PressCtrlCInWaits(true);
  LongWait first;
  for (unsigned round = 1; round < 100'000; ++round) ASSERT_FALSE(first.GivenUp());
  LongWait second;
  for (unsigned round = 1; round < 100'000; ++round) ASSERT_FALSE(second.GivenUp());
  EXPECT_TRUE(first.GivenUp());
  EXPECT_TRUE(second.GivenUp());
}

TEST_F(LongWaits, AWaitLoadsAtLeastOnce) {
  ScriptedBus bus("r8 0123 08");
  EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
}

TEST_F(LongWaits, OtherBitsDoNotEndAWait) {
  ScriptedBus bus(R"(
    r8 0123 f7
    r8 0123 00
    r8 0123 f7 x500
    r8 0123 ff
  )");
  EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
}

TEST_F(LongWaits, AWaitOf100000LoadsNeedsNoLook) {
  PressCtrlCInWaits(true);
  ScriptedBus bus("r8 0123 f7 x99999\n r8 0123 08");
  EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
  EXPECT_EQ(TakeLooks(), 0U);
}

TEST_F(LongWaits, WithoutCtrlCAWaitHasNoEnd) {
  ScriptedBus bus("r8 0123 f7 x250000\n r8 0123 08");
  EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
  EXPECT_EQ(TakeLooks(), 16U);
}

TEST_F(LongWaits, CtrlCEndsAWaitAfter100000Loads) {
  PressCtrlCInWaits(true);
  ScriptedBus bus("r8 0123 f7 x100000");
  EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kNotReady);
  EXPECT_EQ(TakeLooks(), 1U);
}

TEST_F(LongWaits, ReportAtEachLookWhatTheyWaitForAndWhetherItIsTheFirst) {
  {
    ScriptedBus bus("r8 0123 00 x109999\n r8 0123 08");
    EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
  }
  EXPECT_EQ(LastAwaited().offset, 0x123U);
  EXPECT_EQ(LastAwaited().mask, 0x08U);
  EXPECT_TRUE(LastAwaited().first_look);
  {
    ScriptedBus bus("r8 0123 00 x110000\n r8 0123 08");
    EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
  }
  EXPECT_FALSE(LastAwaited().first_look);

  LongWait wait;
  for (unsigned round = 1; round <= 100'000; ++round) ASSERT_FALSE(wait.GivenUp());
  EXPECT_EQ(LastAwaited().mask, 0U);
  EXPECT_TRUE(LastAwaited().first_look);
}

TEST_F(LongWaits, TheOperatorSeesWhatWasPrintedBeforeTheWait) {
  ConsolePuts("waiting");
  EXPECT_EQ(UnflushedOutput(), 7U);
  ScriptedBus bus("r8 0123 00 x100000\n r8 0123 08");
  EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
  EXPECT_EQ(UnflushedOutput(), 0U);
}

TEST_F(LongWaits, TakeNoKeysThatWereTypedAhead) {
  Type("l3 0\n");
  ScriptedBus bus("r8 0123 00 x120000\n r8 0123 08");
  EXPECT_EQ(WaitForBit(kStatus, kDone), DriverStatus::kOk);
  EXPECT_EQ(UnreadKeys(), 5U);
  EXPECT_EQ(TakeOutput(), "");
}

}  // namespace
}  // namespace monitor
